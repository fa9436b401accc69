// Numbers and dates as text, by the rules of a locale, for VariantChangeType.
//
// `noUserOverride` leaves out what the user has set apart from the locale (LOCALE_NOUSEROVERRIDE).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ComTypes.h"

struct TextLocale {
  LCID lcid;
  bool noUserOverride;
};

// A number read from text: exact when it has neither fraction nor exponent and fits 64 bits.
struct TextNumber {
  double value = 0;
  bool isExact = false;
  bool isNegative = false;
  std::uint64_t magnitude = 0;  // of an exact number
};

// Blanks around, a sign before or behind or brackets for minus, thousands symbols between digits,
// the currency symbol and an exponent are accepted. Nothing for other text.
std::optional<TextNumber> ReadNumber(std::u16string_view text, const TextLocale& locale);

// `digits` significant digits, with an exponent where %G would have one.
std::u16string WriteReal(double value, int digits, const TextLocale& locale);
std::u16string WriteCurrency(std::int64_t tenThousandths, const TextLocale& locale);

// Date, time, or both; days in the locale's order, or year first when it has four digits; English
// month names. Nothing for other text, and for a day that does not exist.
std::optional<double> ReadDate(std::u16string_view text, const TextLocale& locale);

// The short date, the time, or both; midnight is left out, and so is day 0 beside a time.
std::optional<std::u16string> WriteDate(double date, const TextLocale& locale);
