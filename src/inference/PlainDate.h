// Reads plain dates: a year of four digits, months, days and times of two, and nothing else, as
// most programs write them.
//
//   PlainDate date;
//   if (HasPlainDates(format) && ReadPlainDate(format, u"2024-02-29 10:30:00", date)) ...
//
// What is refused here is not refused for good: the caller goes on with the exact way, which gives
// the same value for everything that is read here.
#pragma once

#include <string_view>

#include "host/CoreSupport/OleDays.h"
#include "schema/FieldDefinition.h"

namespace TextFile {

struct PlainDate {
  quenra::CivilDay day{};  // not checked against its month
  int seconds = 0;         // since midnight
};

namespace PlainDateSteps {

// Two digits; 100 or more for anything else.
constexpr int TwoDigits(const char16_t* units) noexcept {
  const unsigned tens = static_cast<unsigned>(units[0]) - u'0';
  const unsigned ones = static_cast<unsigned>(units[1]) - u'0';
  return tens <= 9 && ones <= 9 ? static_cast<int>(tens * 10 + ones) : 100;
}

// Ten characters: "2024-02-29", or with the year at the end.
constexpr bool ReadDay(DateOrder order, const char16_t* units, quenra::CivilDay& day) noexcept {
  const bool yearFirst = order == DateOrder::kYearMonthDay;
  const char16_t separator = units[yearFirst ? 4 : 2];
  if (separator != u'-' && separator != u'.' && separator != u'/') return false;
  if (units[yearFirst ? 7 : 5] != separator) return false;

  const char16_t* const year = yearFirst ? units : units + 6;
  const int first = TwoDigits(yearFirst ? units + 5 : units);
  const int second = TwoDigits(yearFirst ? units + 8 : units + 3);
  const int century = TwoDigits(year);
  const int yearOfCentury = TwoDigits(year + 2);
  const bool dayFirst = order == DateOrder::kDayMonthYear;
  day = {century * 100 + yearOfCentury, dayFirst ? second : first, dayFirst ? first : second};
  return century < 100 && yearOfCentury < 100 && day.month >= 1 && day.month <= 12 &&
         day.day >= 1 && day.day <= 31;
}

// "T10:30", " 10:30" or the same with seconds.
constexpr bool ReadTimeOfDay(std::u16string_view text, int& seconds) noexcept {
  if (text.size() != 6 && text.size() != 9) return false;
  if ((text[0] != u'T' && text[0] != u' ') || text[3] != u':') return false;
  const int hour = TwoDigits(text.data() + 1);
  const int minute = TwoDigits(text.data() + 4);
  int second = 0;
  if (text.size() == 9) second = text[6] == u':' ? TwoDigits(text.data() + 7) : 100;
  seconds = (hour * 60 + minute) * 60 + second;
  return hour <= 23 && minute <= 59 && second <= 59;
}

}  // namespace PlainDateSteps

// Whether values of the format may be plain.
constexpr bool HasPlainDates(const DateFieldFormat& format) noexcept {
  return (format.type == FieldType::kDate || format.type == FieldType::kDateOnly) &&
         format.order != DateOrder::kAny;
}

// Whether `text` is a plain value of the format, which may have plain ones. False for every other
// text, which says nothing about whether it is a date; `date`, a fresh one, is then unspecified.
constexpr bool ReadPlainDate(const DateFieldFormat& format, std::u16string_view text,
                             PlainDate& date) noexcept {
  constexpr std::size_t kDayLength = 10;
  if (text.size() < kDayLength) return false;
  if (!PlainDateSteps::ReadDay(format.order, text.data(), date.day)) return false;
  text.remove_prefix(kDayLength);
  if (format.type == FieldType::kDateOnly) return text.empty();
  return PlainDateSteps::ReadTimeOfDay(text, date.seconds);
}

}  // namespace TextFile
