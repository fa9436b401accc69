// Reads plain dates: a year of four digits, months, days and times of two, and nothing else, as
// most programs write them.
//
//   ReadPlainDateTime(format, u"2024-02-29 10:30:00", value);
//
// What is refused here is not refused for good: the caller goes on with the exact way, which gives
// the same value for everything that is read here.
#pragma once

#include <string_view>

#include "inference/DateParsing.h"

namespace TextFile {

namespace PlainDateSteps {

// Two digits, at most `most`.
constexpr bool ReadTwoDigits(const char16_t* units, unsigned most, unsigned& value) noexcept {
  const unsigned tens = static_cast<unsigned>(units[0]) - u'0';
  const unsigned ones = static_cast<unsigned>(units[1]) - u'0';
  value = tens * 10 + ones;
  return tens <= 9 && ones <= 9 && value <= most;
}

// Ten characters: "2024-02-29", or with the year at the end.
constexpr bool ReadDay(DateOrder order, const char16_t* units, SYSTEMTIME& time) noexcept {
  const bool yearFirst = order == DateOrder::kYearMonthDay;
  const char16_t* const year = yearFirst ? units : units + 6;
  const char16_t* const first = yearFirst ? units + 5 : units;  // month or day
  const char16_t* const second = yearFirst ? units + 8 : units + 3;
  const char16_t separator = units[yearFirst ? 4 : 2];
  if (separator != u'-' && separator != u'.' && separator != u'/') return false;
  if (units[yearFirst ? 7 : 5] != separator) return false;

  const bool dayFirst = order == DateOrder::kDayMonthYear;
  unsigned century = 0;
  unsigned yearOfCentury = 0;
  unsigned month = 0;
  unsigned day = 0;
  if (!ReadTwoDigits(year, 99, century) || !ReadTwoDigits(year + 2, 99, yearOfCentury) ||
      !ReadTwoDigits(dayFirst ? second : first, 12, month) ||
      !ReadTwoDigits(dayFirst ? first : second, 31, day) || month == 0 || day == 0)
    return false;
  time.wYear = static_cast<WORD>(century * 100 + yearOfCentury);
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(day);
  return true;
}

// "T10:30", " 10:30" or the same with seconds.
constexpr bool ReadTimeOfDay(std::u16string_view text, SYSTEMTIME& time) noexcept {
  if (text.size() != 6 && text.size() != 9) return false;
  if ((text[0] != u'T' && text[0] != u' ') || text[3] != u':') return false;
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  if (!ReadTwoDigits(text.data() + 1, 23, hour) || !ReadTwoDigits(text.data() + 4, 59, minute))
    return false;
  if (text.size() == 9 && (text[6] != u':' || !ReadTwoDigits(text.data() + 7, 59, second)))
    return false;
  time.wHour = static_cast<WORD>(hour);
  time.wMinute = static_cast<WORD>(minute);
  time.wSecond = static_cast<WORD>(second);
  return true;
}

}  // namespace PlainDateSteps

// Whether `text` is a plain value of the format. False for every other text, which says nothing
// about whether it is a date; `value`, a fresh one, is then unspecified.
constexpr bool ReadPlainDateTime(const DateFieldFormat& format, std::u16string_view text,
                                 ParsedDateTime& value) noexcept {
  constexpr std::size_t kDayLength = 10;
  if (format.type != FieldType::kDate && format.type != FieldType::kDateOnly) return false;
  if (format.order == DateOrder::kAny || text.size() < kDayLength) return false;
  if (!PlainDateSteps::ReadDay(format.order, text.data(), value.time)) return false;
  text.remove_prefix(kDayLength);
  if (format.type == FieldType::kDateOnly) return text.empty();
  return PlainDateSteps::ReadTimeOfDay(text, value.time);
}

}  // namespace TextFile
