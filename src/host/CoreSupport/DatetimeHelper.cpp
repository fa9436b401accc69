#include "host/CoreSupport/DatetimeHelper.h"

#include <cmath>

#include "host/CoreSupport/OleDays.h"

namespace quenra {
namespace {

constexpr int kDaysIn400Years = 146'097;

constexpr int kFirstDay = DaysFromCivil({kFirstYear, 1, 1}) - kOleEpoch;
constexpr int kLastDay = DaysFromCivil({kLastYear, 12, 31}) - kOleEpoch;
static_assert(kFirstDay == -657434 && kLastDay == 2958465);

void SetDay(int oleDay, SYSTEMTIME& time) noexcept {
  const int days = oleDay + kOleEpoch;
  const int era = days / kDaysIn400Years;
  const int dayOfEra = days % kDaysIn400Years;
  // Takes the leap days of the 4-year and the 100-year cycles out before dividing by 365.
  const int yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / (kDaysIn400Years - 1)) / 365;
  const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int marchMonth = (5 * dayOfYear + 2) / 153;
  const int month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
  time.wYear = static_cast<WORD>(era * 400 + yearOfEra + (month <= 2 ? 1 : 0));
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
  // 0000-03-01 was a Wednesday.
  time.wDayOfWeek = static_cast<WORD>((days + 3) % 7);
}

void SetTimeOfDay(int milliseconds, SYSTEMTIME& time) noexcept {
  time.wMilliseconds = static_cast<WORD>(milliseconds % 1000);
  time.wSecond = static_cast<WORD>(milliseconds / 1000 % 60);
  time.wMinute = static_cast<WORD>(milliseconds / 60'000 % 60);
  time.wHour = static_cast<WORD>(milliseconds / 3'600'000);
}

}  // namespace

bool DatetimeHelper::ToOADate(const SYSTEMTIME& time, DATE& date) noexcept {
  if (time.wHour > 23 || time.wMinute > 59 || time.wSecond > 59 || time.wMilliseconds > 999)
    return false;
  const int milliseconds =
      ((time.wHour * 60 + time.wMinute) * 60 + time.wSecond) * 1000 + time.wMilliseconds;
  return OleDateOf({time.wYear, time.wMonth, time.wDay}, milliseconds, date);
}

bool DatetimeHelper::FromOADate(DATE date, SYSTEMTIME& time) noexcept {
  // One day more at each end: the fraction belongs to the last day, and NaN fails both.
  if (!(date > kFirstDay - 1.0 && date < kLastDay + 1.0)) return false;
  const double wholeDays = std::trunc(date);
  int oleDay = static_cast<int>(wholeDays);
  int milliseconds =
      static_cast<int>(std::lround(std::fabs(date - wholeDays) * kMillisecondsPerDay));
  if (milliseconds == kMillisecondsPerDay) {
    ++oleDay;  // the time of day runs forward on either side of day 0
    milliseconds = 0;
  }
  if (oleDay > kLastDay) return false;
  time = SYSTEMTIME{};
  SetDay(oleDay, time);
  SetTimeOfDay(milliseconds, time);
  return true;
}

}  // namespace quenra
