// OLE dates from days of the Gregorian calendar.
//
//   DATE date = 0;
//   OleDateOf({2024, 2, 29}, 0, date);  // 45351
#pragma once

#include "platform/OleAutomation.h"

namespace quenra {

struct CivilDay {
  int year;
  int month;
  int day;
};

inline constexpr int kMillisecondsPerDay = 86'400'000;
// The years that OLE dates reach.
inline constexpr int kFirstYear = 100;
inline constexpr int kLastYear = 9999;

constexpr bool IsLeapYear(int year) noexcept {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

// `month` is 1 to 12.
constexpr int DaysInMonth(int year, int month) noexcept {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

// Days since 0000-03-01. Years that begin in March have their leap day at the end, so that the
// months before it start on the same day of every year.
constexpr int DaysFromCivil(CivilDay day) noexcept {
  const int marchYear = day.month > 2 ? day.year : day.year - 1;
  const int marchMonth = day.month > 2 ? day.month - 3 : day.month + 9;
  // The five months from March have 153 days, and so have the five from August.
  return marchYear * 365 + marchYear / 4 - marchYear / 100 + marchYear / 400 +
         (marchMonth * 153 + 2) / 5 + day.day - 1;
}

inline constexpr int kOleEpoch = DaysFromCivil({1899, 12, 30});

// Whether the day exists, in a year that OLE dates reach.
constexpr bool IsOleDay(CivilDay day) noexcept {
  if (day.year < kFirstYear || day.year > kLastYear || day.month < 1 || day.month > 12)
    return false;
  // Only days from 29 on need the calendar.
  return day.day >= 1 && (day.day <= 28 || day.day <= DaysInMonth(day.year, day.month));
}

// The date of a day and the milliseconds since its midnight, below kMillisecondsPerDay. Before the
// epoch the fraction counts away from zero. False, and `date` is left alone, for any other day.
constexpr bool OleDateOf(CivilDay day, int milliseconds, DATE& date) noexcept {
  if (!IsOleDay(day)) return false;
  const int oleDay = DaysFromCivil(day) - kOleEpoch;
  const double fraction = static_cast<double>(milliseconds) / kMillisecondsPerDay;
  date = oleDay < 0 ? oleDay - fraction : oleDay + fraction;
  return true;
}

}  // namespace quenra
