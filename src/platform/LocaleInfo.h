// Number, currency, date and time conventions of a locale.
//
// On Windows this is the SDK's header. Elsewhere the values come from ICU, brought to Windows'
// forms; docs/locales.md tells where they cannot be the same. The user's locale is taken from
// LC_ALL, else LC_NUMERIC, LC_TIME and LC_MONETARY each for its own values, else LANG.
//
//   WCHAR symbol[4];
//   const int count = ::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, symbol, 4);
//   if (count == 2) unit = symbol[0];  // one character and the terminating zero
#pragma once

#include "platform/ComTypes.h"
#include "platform/LastError.h"

#ifndef _WIN32

using LCTYPE = DWORD;

inline constexpr LCID LOCALE_NEUTRAL = 0x0000;
inline constexpr LCID LOCALE_INVARIANT = 0x007F;
inline constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x0800;
inline constexpr LCID LOCALE_CUSTOM_DEFAULT = 0x0C00;
inline constexpr LCID LOCALE_CUSTOM_UNSPECIFIED = 0x1000;

inline constexpr int LOCALE_NAME_MAX_LENGTH = 85;
inline constexpr LPCWSTR LOCALE_NAME_USER_DEFAULT = nullptr;
inline constexpr LPCWSTR LOCALE_NAME_INVARIANT = u"";
inline constexpr DWORD LOCALE_ALLOW_NEUTRAL_NAMES = 0x08000000;

inline constexpr LCTYPE LOCALE_ILANGUAGE = 0x01;
inline constexpr LCTYPE LOCALE_IDEFAULTCODEPAGE = 0x0B;
inline constexpr LCTYPE LOCALE_SDECIMAL = 0x0E;
inline constexpr LCTYPE LOCALE_STHOUSAND = 0x0F;
inline constexpr LCTYPE LOCALE_IDIGITS = 0x11;
inline constexpr LCTYPE LOCALE_ILZERO = 0x12;
inline constexpr LCTYPE LOCALE_SCURRENCY = 0x14;
inline constexpr LCTYPE LOCALE_ICURRDIGITS = 0x19;
inline constexpr LCTYPE LOCALE_SSHORTDATE = 0x1F;
inline constexpr LCTYPE LOCALE_IDATE =
    0x21;  // 0 month-day-year, 1 day-month-year, 2 year-month-day
inline constexpr LCTYPE LOCALE_S1159 = 0x28;
inline constexpr LCTYPE LOCALE_S2359 = 0x29;
inline constexpr LCTYPE LOCALE_SNAME = 0x5C;
inline constexpr LCTYPE LOCALE_STIMEFORMAT = 0x1003;
inline constexpr LCTYPE LOCALE_IDEFAULTANSICODEPAGE = 0x1004;

// Joined with a type by `|`. RETURN_NUMBER stores a DWORD in the buffer and answers 2.
inline constexpr LCTYPE LOCALE_NOUSEROVERRIDE = 0x80000000;
inline constexpr LCTYPE LOCALE_USE_CP_ACP = 0x40000000;
inline constexpr LCTYPE LOCALE_RETURN_NUMBER = 0x20000000;

extern "C" {

// Answers the characters written with the terminating zero, or needed when `size` is 0. Answers 0
// after a failure, with the last error
//   ERROR_INSUFFICIENT_BUFFER  `size` characters do not hold the value; the buffer is untouched
//   ERROR_INVALID_PARAMETER    unknown locale, null buffer with a size, negative size
//   ERROR_INVALID_FLAGS        a type that is not listed above
// The user's own settings (LC_NUMERIC and its kin where they differ from the user's locale) count
// for LOCALE_USER_DEFAULT and for the same locale by its number, unless LOCALE_NOUSEROVERRIDE is
// set.
PLATFORM_API int GetLocaleInfoW(LCID locale, LCTYPE type, LPWSTR text, int size);

PLATFORM_API LCID GetUserDefaultLCID();

// The number of a BCP 47 name; null is the user's locale, "" the invariant one. A name with a
// language that nobody knows, or that is no name, answers 0 and ERROR_INVALID_PARAMETER. A known
// locale that has no number gets one when it is first named, valid until the process ends.
// A bare language stands for its main country unless LOCALE_ALLOW_NEUTRAL_NAMES is set.
PLATFORM_API LCID LocaleNameToLCID(LPCWSTR name, DWORD flags);

// Counts and failures as GetLocaleInfoW.
PLATFORM_API int LCIDToLocaleName(LCID locale, LPWSTR name, int size, DWORD flags);

}  // extern "C"

#endif
