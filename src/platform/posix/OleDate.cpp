#include <cmath>

#include "platform/OleAutomation.h"

namespace {

constexpr int kSecondsPerDay = 86400;
constexpr long kFirstDay = -657434;  // 0100-01-01
constexpr long kLastDay = 2958465;   // 9999-12-31

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

// Days since 0000-03-01, with years that begin in March so that the leap day ends a year.
long DaysFromMarch(long year, long month, long day) {
  const long y = month > 2 ? year : year - 1;
  const long monthFromMarch = month > 2 ? month - 3 : month + 9;
  return y * 365 + y / 4 - y / 100 + y / 400 + (monthFromMarch * 153 + 2) / 5 + day - 1;
}

const long kEpoch = DaysFromMarch(1899, 12, 30);

void SetCalendarDay(long oleDay, SYSTEMTIME* time) {
  const long days = oleDay + kEpoch;
  const long era = days / 146097;  // days in 400 years
  const long dayOfEra = days % 146097;
  const long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const long monthFromMarch = (5 * dayOfYear + 2) / 153;
  const long month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  time->wYear = static_cast<WORD>(era * 400 + yearOfEra + (month <= 2 ? 1 : 0));
  time->wMonth = static_cast<WORD>(month);
  time->wDay = static_cast<WORD>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
  // Day 0, 1899-12-30, was a Saturday. The addend is a multiple of 7 beyond the first day.
  time->wDayOfWeek = static_cast<WORD>((oleDay + 6 + 700000) % 7);
}

}  // namespace

INT SystemTimeToVariantTime(SYSTEMTIME* time, DOUBLE* date) {
  if (time == nullptr || date == nullptr) return FALSE;
  if (time->wYear < 100 || time->wYear > 9999) return FALSE;
  if (time->wMonth < 1 || time->wMonth > 12) return FALSE;
  if (time->wDay < 1 || time->wDay > DaysInMonth(time->wYear, time->wMonth)) return FALSE;
  if (time->wHour > 23 || time->wMinute > 59 || time->wSecond > 59) return FALSE;
  const long day = DaysFromMarch(time->wYear, time->wMonth, time->wDay) - kEpoch;
  const int seconds = (time->wHour * 60 + time->wMinute) * 60 + time->wSecond;
  const double fraction = static_cast<double>(seconds) / kSecondsPerDay;
  // Before day 0 the fraction counts away from zero: -1.25 is six o'clock of the day -1.
  *date = day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction;
  return TRUE;
}

INT VariantTimeToSystemTime(DOUBLE date, SYSTEMTIME* time) {
  if (time == nullptr) return FALSE;
  // Written so that NaN fails as well.
  if (!(date > kFirstDay - 1 && date < kLastDay + 1)) return FALSE;
  const double whole = std::trunc(date);
  auto day = static_cast<long>(whole);
  auto seconds = static_cast<int>(std::floor(std::fabs(date - whole) * kSecondsPerDay + 0.5));
  if (seconds == kSecondsPerDay) {
    seconds = 0;
    ++day;
  }
  if (day > kLastDay) return FALSE;
  SetCalendarDay(day, time);
  time->wHour = static_cast<WORD>(seconds / 3600);
  time->wMinute = static_cast<WORD>(seconds / 60 % 60);
  time->wSecond = static_cast<WORD>(seconds % 60);
  time->wMilliseconds = 0;
  return TRUE;
}
