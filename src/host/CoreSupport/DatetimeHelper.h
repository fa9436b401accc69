// The OLE date of a broken-down date and time.
#pragma once

#include "host/HostApi.h"
#include "platform/OleAutomation.h"

namespace quenra {

class DatetimeHelper {
 public:
  // Days since 1899-12-30 with milliseconds kept; before that day the fraction counts away from
  // zero (-1.25 is 1899-12-29 06:00). False, and `date` is left alone, for a day that does not
  // exist, a time that does not exist, or a year outside 100..9999. wDayOfWeek is not looked at.
  // Called for every date of a table: no allocation, no locale.
  QUENRA_HOST_API static bool ToOADate(const SYSTEMTIME& time, DATE& date) noexcept;

  // The reverse, rounded to the millisecond. False outside the years 100..9999.
  QUENRA_HOST_API static bool FromOADate(DATE date, SYSTEMTIME& time) noexcept;
};

}  // namespace quenra
