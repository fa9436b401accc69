// The locale calls elsewhere than on Windows, where ICU's values are brought to Windows' forms.
#ifndef _WIN32

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include "platform/CodePages.h"
#include "platform/LocaleInfo.h"
#include "platform/icu/IcuServices.h"

namespace {

std::u16string Value(LCID lcid, LCTYPE type) {
  char16_t text[80];
  const int count = ::GetLocaleInfoW(lcid, type, text, 80);
  if (count == 0) return u"(failed)";
  EXPECT_EQ(::GetLocaleInfoW(lcid, type, nullptr, 0), count);
  EXPECT_EQ(text[count - 1], 0);
  return std::u16string(text, static_cast<std::size_t>(count) - 1);
}

std::u16string NameOf(LCID lcid) {
  char16_t name[LOCALE_NAME_MAX_LENGTH];
  // NOLINTNEXTLINE(readability-suspicious-call-argument): its first parameter is called locale
  const int count = ::LCIDToLocaleName(lcid, name, LOCALE_NAME_MAX_LENGTH, 0);
  return count == 0 ? u"(failed)" : std::u16string(name, static_cast<std::size_t>(count) - 1);
}

DWORD NumberOf(LCID lcid, LCTYPE type) {
  DWORD number = 0;
  EXPECT_EQ(::GetLocaleInfoW(lcid, type | LOCALE_RETURN_NUMBER, reinterpret_cast<LPWSTR>(&number),
                             sizeof number / sizeof(WCHAR)),
            2);
  return number;
}

// The library that the platform loads; it stays loaded.
const IcuServices* IcuLibrary() {
  // Any other locale makes the platform load it.
  EXPECT_NE(::LocaleNameToLCID(u"de-DE", 0), 0u);
  void* const library = ::dlopen("libquenraIcu.so", RTLD_LAZY | RTLD_NOLOAD);
  if (library == nullptr) return nullptr;
  const auto entry =
      reinterpret_cast<decltype(&quenraIcuServices)>(::dlsym(library, kIcuServicesEntry));
  return entry == nullptr ? nullptr : entry();
}

using Variables = std::map<std::string, std::string>;

// Sets the variables that name the user's locale and puts the old ones back.
class UserEnvironment {
 public:
  explicit UserEnvironment(const Variables& values) {
    for (const char* name : {"LC_ALL", "LC_NUMERIC", "LC_TIME", "LC_MONETARY", "LANG"}) {
      const char* const old = std::getenv(name);
      if (old != nullptr) old_[name] = old;
      const auto found = values.find(name);
      if (found != values.end()) {
        ::setenv(name, found->second.c_str(), 1);
      } else {
        ::unsetenv(name);
      }
    }
  }
  UserEnvironment(const UserEnvironment&) = delete;
  UserEnvironment& operator=(const UserEnvironment&) = delete;
  ~UserEnvironment() {
    for (const char* name : {"LC_ALL", "LC_NUMERIC", "LC_TIME", "LC_MONETARY", "LANG"}) {
      ::unsetenv(name);
    }
    for (const auto& [name, value] : old_) ::setenv(name.c_str(), value.c_str(), 1);
  }

 private:
  Variables old_;
};

struct LocaleCase {
  std::u16string name;
  LCID lcid;
  std::u16string shortDate;
  std::u16string timeFormat;
  std::u16string order;
  std::u16string decimal;
  std::u16string thousand;
  std::u16string currency;
  std::u16string currencyDigits;
  std::u16string ansi;
};

// Windows 10's values; a comment says where ICU's data is another and Windows' value cannot be
// given.
const LocaleCase kLocales[] = {
    {u"en-US", 0x0409, u"M/d/yyyy", u"h:mm:ss tt", u"0", u".", u",", u"$", u"2", u"1252"},
    {u"en-GB", 0x0809, u"dd/MM/yyyy", u"HH:mm:ss", u"1", u".", u",", u"\u00A3", u"2", u"1252"},
    {u"de-DE", 0x0407, u"dd.MM.yyyy", u"HH:mm:ss", u"1", u",", u".", u"\u20AC", u"2", u"1252"},
    // Windows before 10 grouped with the straight apostrophe.
    {u"de-CH", 0x0807, u"dd.MM.yyyy", u"HH:mm:ss", u"1", u".", u"\u2019", u"CHF", u"2", u"1252"},
    // U+00A0 in Windows before version 1903.
    {u"fr-FR", 0x040C, u"dd/MM/yyyy", u"HH:mm:ss", u"1", u",", u"\u202F", u"\u20AC", u"2", u"1252"},
    {u"sv-SE", 0x041D, u"yyyy-MM-dd", u"HH:mm:ss", u"2", u",", u"\u00A0", u"kr", u"2", u"1252"},
    // Windows: dd.MM.yyyy; ICU does not pad the day.
    {u"pl-PL", 0x0415, u"d.MM.yyyy", u"HH:mm:ss", u"1", u",", u"\u00A0", u"z\u0142", u"2", u"1250"},
    {u"ru-RU", 0x0419, u"dd.MM.yyyy", u"HH:mm:ss", u"1", u",", u"\u00A0", u"\u20BD", u"2", u"1251"},
    {u"ja-JP", 0x0411, u"yyyy/MM/dd", u"H:mm:ss", u"2", u".", u",", u"\u00A5", u"0", u"932"},
    {u"pt-BR", 0x0416, u"dd/MM/yyyy", u"HH:mm:ss", u"1", u",", u".", u"R$", u"2", u"1252"},
    // Windows: dd-MM-yyyy and HH:mm:ss; ICU has slashes and the twelve-hour clock.
    {u"hi-IN", 0x0439, u"d/M/yyyy", u"h:mm:ss tt", u"1", u".", u",", u"\u20B9", u"2", u"0"},
    // Windows: hh:mm:ss tt; ICU has the twenty-four-hour clock.
    {u"es-MX", 0x080A, u"dd/MM/yyyy", u"HH:mm:ss", u"1", u".", u",", u"$", u"2", u"1252"},
};

TEST(LocaleInfoTest, LocalesFollowTable) {
  for (const LocaleCase& c : kLocales) {
    SCOPED_TRACE(std::string(c.name.begin(), c.name.end()));
    const LCID lcid = ::LocaleNameToLCID(c.name.c_str(), 0);
    EXPECT_EQ(lcid, c.lcid);
    EXPECT_EQ(NameOf(lcid), c.name);
    const auto value = [lcid](LCTYPE type) { return Value(lcid, type | LOCALE_NOUSEROVERRIDE); };
    EXPECT_EQ(value(LOCALE_SNAME), c.name);
    EXPECT_EQ(value(LOCALE_SSHORTDATE), c.shortDate);
    EXPECT_EQ(value(LOCALE_STIMEFORMAT), c.timeFormat);
    EXPECT_EQ(value(LOCALE_IDATE), c.order);
    EXPECT_EQ(value(LOCALE_SDECIMAL), c.decimal);
    EXPECT_EQ(value(LOCALE_STHOUSAND), c.thousand);
    EXPECT_EQ(value(LOCALE_SCURRENCY), c.currency);
    EXPECT_EQ(value(LOCALE_ICURRDIGITS), c.currencyDigits);
    EXPECT_EQ(value(LOCALE_IDEFAULTANSICODEPAGE), c.ansi);
    EXPECT_EQ(value(LOCALE_IDIGITS), u"2");
    EXPECT_EQ(value(LOCALE_ILZERO), u"1");
  }
}

// The values of en-US are known without ICU. They are no others than those that it has.
TEST(LocaleInfoTest, DefaultLocaleIsAsInIcu) {
  const IcuServices* const library = IcuLibrary();
  ASSERT_NE(library, nullptr);
  const IcuServices& icu = *library;
  const LCID lcid = 0x0409;
  EXPECT_EQ(icu.lcidOf("en_US"), lcid);
  EXPECT_EQ(icu.localeFromLcid(lcid), "en_US");
  EXPECT_EQ(icu.localeFromTag("en-US"), "en_US");
  EXPECT_EQ(icu.withRegion("en_US"), "en_US");
  EXPECT_EQ(icu.tagOf("en_US"), "en-US");
  const LocaleValues values = icu.readLocale("en_US");
  EXPECT_EQ(Value(lcid, LOCALE_SDECIMAL), values.decimal);
  EXPECT_EQ(Value(lcid, LOCALE_STHOUSAND), values.thousand);
  EXPECT_EQ(Value(lcid, LOCALE_SCURRENCY), values.currency);
  EXPECT_EQ(Value(lcid, LOCALE_SSHORTDATE), values.shortDate);
  EXPECT_EQ(Value(lcid, LOCALE_STIMEFORMAT), values.timeFormat);
  EXPECT_EQ(Value(lcid, LOCALE_S1159), values.beforeNoon);
  EXPECT_EQ(Value(lcid, LOCALE_S2359), values.afterNoon);
  EXPECT_EQ(NumberOf(lcid, LOCALE_ICURRDIGITS), static_cast<DWORD>(values.currencyDigits));
  EXPECT_EQ(NumberOf(lcid, LOCALE_IDATE), static_cast<DWORD>(values.dateOrder));
  EXPECT_EQ(NumberOf(lcid, LOCALE_IDEFAULTANSICODEPAGE), values.ansiCodePage);
  EXPECT_EQ(NumberOf(lcid, LOCALE_IDEFAULTCODEPAGE), values.oemCodePage);
}

TEST(LocaleInfoTest, InvariantLocaleHasFixedValues) {
  EXPECT_EQ(::LocaleNameToLCID(u"", 0), LOCALE_INVARIANT);
  EXPECT_EQ(Value(LOCALE_INVARIANT, LOCALE_SSHORTDATE), u"MM/dd/yyyy");
  EXPECT_EQ(Value(LOCALE_INVARIANT, LOCALE_STIMEFORMAT), u"HH:mm:ss");
  EXPECT_EQ(Value(LOCALE_INVARIANT, LOCALE_SDECIMAL), u".");
  EXPECT_EQ(Value(LOCALE_INVARIANT, LOCALE_SNAME), u"");
}

TEST(LocaleInfoTest, BuffersAreCountedWithTheTerminatingZero) {
  char16_t text[9] = u"########";
  EXPECT_EQ(::GetLocaleInfoW(0x0409, LOCALE_SSHORTDATE, nullptr, 0), 9);
  EXPECT_EQ(::GetLocaleInfoW(0x0409, LOCALE_SSHORTDATE, text, 9), 9);
  EXPECT_EQ(std::u16string(text), u"M/d/yyyy");
  ::SetLastError(ERROR_SUCCESS);
  EXPECT_EQ(::GetLocaleInfoW(0x0409, LOCALE_SSHORTDATE, text, 8), 0);
  EXPECT_EQ(::GetLastError(), ERROR_INSUFFICIENT_BUFFER);
}

TEST(LocaleInfoTest, BadArgumentsFail) {
  char16_t text[8];
  const auto fails = [](int result, DWORD error) {
    EXPECT_EQ(result, 0);
    EXPECT_EQ(::GetLastError(), error);
  };
  fails(::GetLocaleInfoW(0x0409, LOCALE_SDECIMAL, nullptr, 8), ERROR_INVALID_PARAMETER);
  fails(::GetLocaleInfoW(0x0409, LOCALE_SDECIMAL, text, -1), ERROR_INVALID_PARAMETER);
  fails(::GetLocaleInfoW(0x9999, LOCALE_SDECIMAL, text, 8), ERROR_INVALID_PARAMETER);
  fails(::GetLocaleInfoW(0x0409, 0x0FFF, text, 8), ERROR_INVALID_FLAGS);
  for (const char16_t* name : {u"xx-YY", u"de_DE", u"de-", u"\u00E9", u"nonsense", u"de-QQ"}) {
    EXPECT_EQ(::LocaleNameToLCID(name, 0), 0u);
    EXPECT_EQ(::GetLastError(), ERROR_INVALID_PARAMETER);
  }
}

TEST(LocaleInfoTest, NumbersCanBeReturnedAsSuch) {
  DWORD digits = 99;
  EXPECT_EQ(::GetLocaleInfoW(0x0411, LOCALE_ICURRDIGITS | LOCALE_RETURN_NUMBER,
                             reinterpret_cast<LPWSTR>(&digits), 2),
            2);
  EXPECT_EQ(digits, 0u);
}

TEST(LocaleInfoTest, LocalesWithoutNumberGetOneThatWorks) {
  const LCID first = ::LocaleNameToLCID(u"en-DE", 0);
  const LCID second = ::LocaleNameToLCID(u"de-NO", 0);
  EXPECT_NE(first, 0u);
  EXPECT_NE(first, second);
  EXPECT_EQ(::LocaleNameToLCID(u"en-DE", 0), first);
  EXPECT_EQ(first & 0xFFFF, LOCALE_CUSTOM_UNSPECIFIED);
  EXPECT_NE(first, LOCALE_CUSTOM_UNSPECIFIED);
  EXPECT_EQ(NameOf(first), u"en-DE");
  EXPECT_EQ(Value(first, LOCALE_SDECIMAL), u",");
}

TEST(LocaleInfoTest, BareLanguagesStandForTheirMainCountry) {
  EXPECT_EQ(::LocaleNameToLCID(u"de", 0), 0x0407u);
  EXPECT_EQ(::LocaleNameToLCID(u"de", LOCALE_ALLOW_NEUTRAL_NAMES), 0x0007u);
  EXPECT_EQ(Value(0x0007, LOCALE_SDECIMAL), u",");
  EXPECT_EQ(NameOf(::LocaleNameToLCID(u"zh-TW", 0)), u"zh-TW");
  EXPECT_EQ(NameOf(::LocaleNameToLCID(u"sr-Latn-RS", 0)), u"sr-Latn-RS");
}

TEST(LocaleInfoTest, UserLocaleComesFromTheEnvironment) {
  struct Case {
    Variables environment;
    std::u16string name;
    std::u16string decimal;
    std::u16string order;
    std::u16string currency;
  };
  const Case cases[] = {
      {{}, u"en-US", u".", u"0", u"$"},
      {{{"LANG", "C"}}, u"en-US", u".", u"0", u"$"},
      {{{"LANG", "POSIX"}}, u"en-US", u".", u"0", u"$"},
      {{{"LANG", "C.UTF-8"}}, u"en-US", u".", u"0", u"$"},
      {{{"LANG", "nonsense"}}, u"en-US", u".", u"0", u"$"},
      {{{"LANG", "de_DE.UTF-8"}}, u"de-DE", u",", u"1", u"\u20AC"},
      {{{"LANG", "de_DE@euro"}}, u"de-DE", u",", u"1", u"\u20AC"},
      {{{"LANG", "sv"}}, u"sv-SE", u",", u"2", u"kr"},
      {{{"LC_ALL", ""}, {"LANG", "de_DE"}}, u"de-DE", u",", u"1", u"\u20AC"},
      {{{"LC_ALL", "C"}, {"LC_NUMERIC", "de_DE"}, {"LANG", "sv_SE"}}, u"en-US", u".", u"0", u"$"},
      {{{"LC_NUMERIC", "de_DE.UTF-8"}, {"LANG", "en_US.UTF-8"}}, u"en-US", u",", u"0", u"$"},
      {{{"LC_TIME", "sv_SE"}, {"LC_MONETARY", "en_GB"}, {"LANG", "de_DE"}},
       u"de-DE",
       u",",
       u"2",
       u"\u00A3"},
      {{{"LANG", "sr_RS@latin"}}, u"sr-Latn-RS", u",", u"1", u"RSD"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name.begin(), c.name.end()));
    const UserEnvironment environment(c.environment);
    EXPECT_EQ(Value(LOCALE_USER_DEFAULT, LOCALE_SNAME), c.name);
    EXPECT_EQ(NameOf(::GetUserDefaultLCID()), c.name);
    for (const LCID lcid : {LOCALE_USER_DEFAULT, ::GetUserDefaultLCID()}) {
      EXPECT_EQ(Value(lcid, LOCALE_SDECIMAL), c.decimal);
      EXPECT_EQ(Value(lcid, LOCALE_IDATE), c.order);
      EXPECT_EQ(Value(lcid, LOCALE_SCURRENCY), c.currency);
    }
    EXPECT_EQ(::LocaleNameToLCID(nullptr, 0), ::GetUserDefaultLCID());
  }
}

TEST(LocaleInfoTest, UserOverridesCanBeLeftOut) {
  const UserEnvironment environment(Variables{{"LC_NUMERIC", "de_DE"}, {"LANG", "en_US"}});
  EXPECT_EQ(Value(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL), u",");
  EXPECT_EQ(Value(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL | LOCALE_NOUSEROVERRIDE), u".");
}

TEST(LocaleInfoTest, AnsiCodePageIsThatOfTheUsersLanguage) {
  struct Case {
    const char* lang;
    UINT ansi;
    UINT oem;
  };
  const Case cases[] = {
      {"C", 1252, 437},     {"en_US.UTF-8", 1252, 437}, {"de_DE.UTF-8", 1252, 850},
      {"pl_PL", 1250, 852}, {"ru_RU", 1251, 866},       {"el_GR", 1253, 737},
      {"tr_TR", 1254, 857}, {"he_IL", 1255, 862},       {"ar_EG", 1256, 720},
      {"lv_LV", 1257, 775}, {"vi_VN", 1258, 1258},      {"th_TH", 874, 874},
      {"ja_JP", 932, 932},  {"ko_KR", 949, 949},        {"zh_CN", 936, 936},
      {"zh_TW", 950, 950},  {"zh_HK", 950, 950},        {"sr_RS@latin", 1250, 852},
      {"hi_IN", 1252, 437},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.lang);
    const UserEnvironment environment(Variables{{"LANG", c.lang}});
    EXPECT_EQ(::GetACP(), c.ansi);
    EXPECT_EQ(::GetOEMCP(), c.oem);
    EXPECT_TRUE(::IsValidCodePage(::GetACP()));
  }
  const UserEnvironment environment(Variables{{"LANG", "ru_RU"}});
  char16_t text[2];
  EXPECT_EQ(::MultiByteToWideChar(CP_ACP, 0, "\xCC", 1, text, 2), 1);
  EXPECT_EQ(text[0], u'\u041C');
}

}  // namespace

#endif
