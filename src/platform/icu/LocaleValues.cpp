#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unum.h>

#include <memory>
#include <string_view>

#include "platform/icu/IcuLocales.h"

namespace {

struct LanguageCodePages {
  std::string_view language;
  std::string_view script;  // empty for any
  UINT ansi;
  UINT oem;
};

// The languages whose system code page is not western European, as Windows assigns them. Where a
// language is written in two scripts the script decides. ANSI 0 is a language that Windows writes
// in Unicode only.
constexpr LanguageCodePages kCodePages[] = {
    {"cs", "", 1250, 852},     {"hu", "", 1250, 852},     {"pl", "", 1250, 852},
    {"ro", "", 1250, 852},     {"sk", "", 1250, 852},     {"sl", "", 1250, 852},
    {"hr", "", 1250, 852},     {"sq", "", 1250, 852},     {"tk", "", 1250, 852},
    {"bs", "Latn", 1250, 852}, {"sr", "Latn", 1250, 852}, {"bs", "Cyrl", 1251, 855},
    {"sr", "Cyrl", 1251, 855}, {"ru", "", 1251, 866},     {"uk", "", 1251, 866},
    {"be", "", 1251, 866},     {"bg", "", 1251, 866},     {"mk", "", 1251, 866},
    {"ky", "", 1251, 866},     {"tt", "", 1251, 866},     {"ba", "", 1251, 866},
    {"sah", "", 1251, 866},    {"tg", "", 1251, 866},     {"mn", "Cyrl", 1251, 866},
    {"uz", "Cyrl", 1251, 866}, {"az", "Cyrl", 1251, 866}, {"uz", "Latn", 1254, 857},
    {"az", "Latn", 1254, 857}, {"tr", "", 1254, 857},     {"el", "", 1253, 737},
    {"he", "", 1255, 862},     {"ar", "", 1256, 720},     {"fa", "", 1256, 720},
    {"ur", "", 1256, 720},     {"ug", "", 1256, 720},     {"prs", "", 1256, 720},
    {"et", "", 1257, 775},     {"lv", "", 1257, 775},     {"lt", "", 1257, 775},
    {"vi", "", 1258, 1258},    {"th", "", 874, 874},      {"ja", "", 932, 932},
    {"ko", "", 949, 949},      {"zh", "Hans", 936, 936},  {"zh", "Hant", 950, 950},
    {"hi", "", 0, 1},          {"mr", "", 0, 1},          {"sa", "", 0, 1},
    {"kok", "", 0, 1},         {"ne", "", 0, 1},          {"bn", "", 0, 1},
    {"as", "", 0, 1},          {"gu", "", 0, 1},          {"pa", "", 0, 1},
    {"or", "", 0, 1},          {"ta", "", 0, 1},          {"te", "", 0, 1},
    {"kn", "", 0, 1},          {"ml", "", 0, 1},          {"si", "", 0, 1},
    {"ka", "", 0, 1},          {"hy", "", 0, 1},          {"km", "", 0, 1},
    {"lo", "", 0, 1},          {"my", "", 0, 1},          {"bo", "", 0, 1},
    {"dz", "", 0, 1},          {"am", "", 0, 1},          {"ti", "", 0, 1},
    {"kk", "", 0, 1},          {"ps", "", 0, 1},          {"mt", "", 0, 1},
    {"dv", "", 0, 1},          {"syr", "", 0, 1},         {"ckb", "", 1256, 720},
};

constexpr LanguageCodePages kWestern = {"", "", 1252, 850};

LanguageCodePages CodePagesOf(const std::string& locale) {
  char full[ULOC_FULLNAME_CAPACITY] = {};
  char language[ULOC_LANG_CAPACITY] = {};
  char script[ULOC_SCRIPT_CAPACITY] = {};
  UErrorCode status = U_ZERO_ERROR;
  uloc_addLikelySubtags(locale.c_str(), full, ULOC_FULLNAME_CAPACITY, &status);
  uloc_getLanguage(full, language, ULOC_LANG_CAPACITY, &status);
  uloc_getScript(full, script, ULOC_SCRIPT_CAPACITY, &status);
  if (U_FAILURE(status)) return kWestern;
  for (const LanguageCodePages& entry : kCodePages) {
    if (entry.language == language && (entry.script.empty() || entry.script == script)) {
      return entry;
    }
  }
  LanguageCodePages western = kWestern;
  // Of the western languages only US English keeps the first of all OEM code pages.
  if (locale == "en_US") western.oem = 437;
  return western;
}

// Windows counts years of the Gregorian calendar and writes digits in ASCII in each of these.
std::string Adapted(const std::string& locale) {
  return locale + "@calendar=gregorian;numbers=latn";
}

template <typename Read>
std::u16string ReadText(Read read) {
  UChar text[256];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = read(text, 256, &status);
  return U_SUCCESS(status) && length > 0 ? std::u16string(text, static_cast<std::size_t>(length))
                                         : std::u16string();
}

std::u16string Symbol(const UNumberFormat* format, UNumberFormatSymbol symbol) {
  return ReadText([&](UChar* text, int32_t size, UErrorCode* status) {
    return unum_getSymbol(format, symbol, text, size, status);
  });
}

void ReadNumberValues(const std::string& locale, LocaleValues* values) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UNumberFormat, void (*)(UNumberFormat*)> format(
      unum_open(UNUM_CURRENCY, nullptr, 0, locale.c_str(), nullptr, &status), &unum_close);
  if (U_FAILURE(status)) return;
  values->decimal = Symbol(format.get(), UNUM_DECIMAL_SEPARATOR_SYMBOL);
  values->thousand = Symbol(format.get(), UNUM_GROUPING_SEPARATOR_SYMBOL);
  values->currency = Symbol(format.get(), UNUM_CURRENCY_SYMBOL);
  // Windows' yen sign is the narrow one everywhere.
  if (values->currency == u"\uFFE5") values->currency = u"\u00A5";
  values->currencyDigits = unum_getAttribute(format.get(), UNUM_MAX_FRACTION_DIGITS);
}

std::u16string Pattern(const std::string& locale, UDateFormatStyle time, UDateFormatStyle date) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UDateFormat, void (*)(UDateFormat*)> format(
      udat_open(time, date, locale.c_str(), nullptr, 0, nullptr, 0, &status),
      [](UDateFormat* opened) { udat_close(opened); });
  if (U_FAILURE(status)) return {};
  return ReadText([&](UChar* text, int32_t size, UErrorCode* code) {
    return udat_toPattern(format.get(), false, text, size, code);
  });
}

void ReadDayPeriods(const std::string& locale, LocaleValues* values) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UDateFormat, void (*)(UDateFormat*)> format(
      udat_open(UDAT_MEDIUM, UDAT_NONE, locale.c_str(), nullptr, 0, nullptr, 0, &status),
      [](UDateFormat* opened) { udat_close(opened); });
  if (U_FAILURE(status)) return;
  const auto period = [&](int32_t index) {
    return ReadText([&](UChar* text, int32_t size, UErrorCode* code) {
      return udat_getSymbols(format.get(), UDAT_AM_PMS, index, text, size, code);
    });
  };
  values->beforeNoon = period(0);
  values->afterNoon = period(1);
}

bool IsPatternLetter(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }

bool IsDirectionMark(char16_t c) { return c == 0x200E || c == 0x200F || c == 0x061C; }

bool IsSpecialBlank(char16_t c) { return c == 0x00A0 || c == 0x202F || c == 0x2009; }

// One run of a pattern letter in Windows' letters.
std::u16string WindowsField(char16_t letter, std::size_t count) {
  switch (letter) {
    case u'y':
    case u'u':
      return u"yyyy";
    case u'L':
      return std::u16string(count, u'M');
    case u'E':
    case u'c':
      return count > 3 ? u"dddd" : u"ddd";
    case u'K':
      return std::u16string(count, u'h');
    case u'k':
      return std::u16string(count, u'H');
    case u'a':
    case u'b':
    case u'B':
      return u"tt";
    case u'G':
      return u"gg";
    default:
      return std::u16string(count, letter);
  }
}

// The form in which Windows writes one of ICU's date or time patterns: a day, month and year with
// the letters d, M and y, the year with four digits, tt for the day period, plain blanks for
// U+00A0, U+202F and U+2009, no direction marks. Quoted text stays as it is.
std::u16string WindowsPattern(std::u16string_view pattern) {
  std::u16string result;
  bool quoted = false;
  std::size_t i = 0;
  while (i < pattern.size()) {
    const char16_t c = pattern[i];
    if (c == u'\'') quoted = !quoted;
    if (quoted || !IsPatternLetter(c)) {
      if (!IsDirectionMark(c)) result += IsSpecialBlank(c) ? u' ' : c;
      ++i;
      continue;
    }
    std::size_t end = i;
    while (end < pattern.size() && pattern[end] == c) ++end;
    const std::u16string field = WindowsField(c, end - i);
    // ICU sets the day period right beside the hour in some languages; Windows never does.
    const bool isPeriod = field == u"tt";
    if (isPeriod && !result.empty() && IsPatternLetter(result.back())) result += u' ';
    result += field;
    if (isPeriod && end < pattern.size() && IsPatternLetter(pattern[end])) result += u' ';
    i = end;
  }
  return result;
}

// 0, 1 or 2 (LOCALE_IDATE) by the first of month, day and year in a Windows date pattern.
int DateOrderOf(std::u16string_view pattern) {
  bool quoted = false;
  for (const char16_t c : pattern) {
    if (c == u'\'') quoted = !quoted;
    if (quoted) continue;
    if (c == u'M') return 0;
    if (c == u'd') return 1;
    if (c == u'y') return 2;
  }
  return 0;
}

}  // namespace

LocaleValues IcuLocales::Read(const std::string& locale) {
  LocaleValues values;
  const std::string adapted = Adapted(locale);
  ReadNumberValues(adapted, &values);
  values.shortDate = WindowsPattern(Pattern(adapted, UDAT_NONE, UDAT_SHORT));
  values.timeFormat = WindowsPattern(Pattern(adapted, UDAT_MEDIUM, UDAT_NONE));
  values.dateOrder = DateOrderOf(values.shortDate);
  ReadDayPeriods(adapted, &values);
  const LanguageCodePages pages = CodePagesOf(locale);
  values.ansiCodePage = pages.ansi;
  values.oemCodePage = pages.oem;
  return values;
}
