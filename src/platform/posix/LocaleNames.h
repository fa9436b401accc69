// Locale names of three kinds: BCP 47 ("de-DE"), ICU ("de_DE") and POSIX ("de_DE.UTF-8@euro"), and
// the numbers that Windows gives them.
//
//   IcuLocaleFromTag("sr-Latn-RS");           // "sr_Latn_RS"
//   IcuLocaleFromEnvironment("de_AT.UTF-8");  // "de_AT"
//   LcidOf("de_DE");                          // 0x0407
#pragma once

#include <optional>
#include <string>

#include "platform/ComTypes.h"

// The ICU name of a BCP 47 name, without its extensions. Nothing when it is no such name, or its
// language or region is not known.
std::optional<std::string> IcuLocaleFromTag(const std::string& tag);

// C, POSIX, the empty name and names of languages that nobody knows are en_US.
std::string IcuLocaleFromEnvironment(const std::string& value);

// A language without region gets its main one: de is de_DE.
std::string WithRegion(const std::string& locale);

// The BCP 47 name as Windows writes it.
std::string TagOf(const std::string& locale);

// A locale that Windows has no number for is given one of this process's own.
LCID LcidOf(const std::string& locale);

// Nothing for a number that stands for no locale. LOCALE_INVARIANT and LOCALE_USER_DEFAULT are the
// caller's to treat.
std::optional<std::string> IcuLocaleFromLcid(LCID lcid);
