#include "platform/LocaleInfo.h"

#include <optional>
#include <string>

#include "platform/posix/LocaleNames.h"
#include "platform/posix/LocaleValues.h"
#include "platform/posix/UserLocale.h"

namespace {

constexpr LCTYPE kFlags = LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP | LOCALE_RETURN_NUMBER;

// ICU has no such settings; these are what nearly every locale of Windows has.
constexpr int kDigits = 2;
constexpr int kLeadingZeros = 1;

int Fail(DWORD error) {
  SetLastError(error);
  return 0;
}

// Copies `value` with its terminating zero, by the contract that all calls here share.
int Answer(const std::u16string& value, LPWSTR text, int size) {
  const auto needed = static_cast<int>(value.size()) + 1;
  if (size == 0) return needed;
  if (size < needed) return Fail(ERROR_INSUFFICIENT_BUFFER);
  value.copy(text, value.size());
  text[value.size()] = 0;
  return needed;
}

int AnswerNumber(DWORD value, LPWSTR text, int size) {
  constexpr int kNeeded = sizeof(DWORD) / sizeof(WCHAR);
  if (size == 0) return kNeeded;
  if (size < kNeeded) return Fail(ERROR_INSUFFICIENT_BUFFER);
  std::memcpy(text, &value, sizeof value);
  return kNeeded;
}

std::u16string Widen(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

std::u16string HexNumber(LCID lcid) {
  constexpr char16_t kHexDigits[] = u"0123456789abcdef";
  std::u16string text;
  for (int shift = 12; shift >= 0; shift -= 4) text += kHexDigits[(lcid >> shift) & 0xF];
  return text;
}

bool IsUserDefault(LCID locale) {
  return locale == LOCALE_USER_DEFAULT || locale == LOCALE_SYSTEM_DEFAULT ||
         locale == LOCALE_CUSTOM_DEFAULT || locale == LOCALE_NEUTRAL;
}

// The ICU names that answer the values of `locale`, a kind each. Nothing for no locale.
std::optional<UserLocale> Resolve(LCID locale, bool userOverride) {
  if (locale == LOCALE_INVARIANT) return UserLocale();
  const bool isUsers = IsUserDefault(locale) || locale == GetUserDefaultLCID();
  if (isUsers) {
    UserLocale user = UserLocale::Current();
    if (userOverride) return user;
    return UserLocale{user.language, user.language, user.language, user.language};
  }
  const std::optional<std::string> found = IcuLocaleFromLcid(locale);
  if (!found.has_value()) return std::nullopt;
  // A bare language has no customs of its own; its main country's stand for them.
  const std::string name = WithRegion(*found);
  return UserLocale{name, name, name, name};
}

// A value that is a number, nothing for a type that is text or unknown.
std::optional<DWORD> NumberValue(const UserLocale& names, LCTYPE type) {
  switch (type) {
    case LOCALE_IDIGITS:
      return kDigits;
    case LOCALE_ILZERO:
      return kLeadingZeros;
    case LOCALE_ICURRDIGITS:
      return static_cast<DWORD>(LocaleValues::Of(names.currency).currencyDigits);
    case LOCALE_IDATE:
      return static_cast<DWORD>(LocaleValues::Of(names.time).dateOrder);
    case LOCALE_IDEFAULTANSICODEPAGE:
      return LocaleValues::Of(names.language).ansiCodePage;
    case LOCALE_IDEFAULTCODEPAGE:
      return LocaleValues::Of(names.language).oemCodePage;
    default:
      return std::nullopt;
  }
}

std::optional<std::u16string> TextValue(const UserLocale& names, LCTYPE type) {
  switch (type) {
    case LOCALE_SDECIMAL:
      return LocaleValues::Of(names.number).decimal;
    case LOCALE_STHOUSAND:
      return LocaleValues::Of(names.number).thousand;
    case LOCALE_SCURRENCY:
      return LocaleValues::Of(names.currency).currency;
    case LOCALE_SSHORTDATE:
      return LocaleValues::Of(names.time).shortDate;
    case LOCALE_STIMEFORMAT:
      return LocaleValues::Of(names.time).timeFormat;
    case LOCALE_S1159:
      return LocaleValues::Of(names.time).beforeNoon;
    case LOCALE_S2359:
      return LocaleValues::Of(names.time).afterNoon;
    case LOCALE_SNAME:
      return Widen(names.language.empty() ? std::string() : TagOf(names.language));
    case LOCALE_ILANGUAGE:
      return HexNumber(names.language.empty() ? LOCALE_INVARIANT : LcidOf(names.language));
    default:
      return std::nullopt;
  }
}

// Nothing when a character is not ASCII, since no locale's name has such.
std::optional<std::string> Narrow(LPCWSTR text) {
  std::string ascii;
  for (; *text != 0; ++text) {
    if (*text > 0x7E) return std::nullopt;
    ascii += static_cast<char>(*text);
  }
  return ascii;
}

}  // namespace

int GetLocaleInfoW(LCID locale, LCTYPE type, LPWSTR text, int size) {
  if (size < 0 || (size > 0 && text == nullptr)) return Fail(ERROR_INVALID_PARAMETER);
  const std::optional<UserLocale> names = Resolve(locale, (type & LOCALE_NOUSEROVERRIDE) == 0);
  if (!names.has_value()) return Fail(ERROR_INVALID_PARAMETER);
  const bool asNumber = (type & LOCALE_RETURN_NUMBER) != 0;
  type &= ~kFlags;
  if (const std::optional<DWORD> number = NumberValue(*names, type)) {
    return asNumber ? AnswerNumber(*number, text, size)
                    : Answer(Widen(std::to_string(*number)), text, size);
  }
  const std::optional<std::u16string> value = TextValue(*names, type);
  if (!value.has_value() || asNumber) return Fail(ERROR_INVALID_FLAGS);
  return Answer(*value, text, size);
}

LCID LocaleNameToLCID(LPCWSTR name, DWORD flags) {
  if (name == nullptr) return GetUserDefaultLCID();
  if (*name == 0) return LOCALE_INVARIANT;
  const std::optional<std::string> tag = Narrow(name);
  const std::optional<std::string> locale = tag.has_value() ? IcuLocaleFromTag(*tag) : std::nullopt;
  if (!locale.has_value()) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  return LcidOf((flags & LOCALE_ALLOW_NEUTRAL_NAMES) != 0 ? *locale : WithRegion(*locale));
}

int LCIDToLocaleName(LCID locale, LPWSTR name, int size, DWORD flags) {
  if (size < 0 || (size > 0 && name == nullptr)) return Fail(ERROR_INVALID_PARAMETER);
  if (locale == LOCALE_INVARIANT) return Answer({}, name, size);
  if (IsUserDefault(locale))
    return Answer(Widen(TagOf(UserLocale::Current().language)), name, size);
  const std::optional<std::string> found = IcuLocaleFromLcid(locale);
  if (!found.has_value()) return Fail(ERROR_INVALID_PARAMETER);
  const bool allowNeutral = (flags & LOCALE_ALLOW_NEUTRAL_NAMES) != 0;
  return Answer(Widen(TagOf(allowNeutral ? *found : WithRegion(*found))), name, size);
}
