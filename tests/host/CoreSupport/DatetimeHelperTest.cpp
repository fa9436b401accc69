#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "host/CoreSupport/DatetimeHelper.h"

namespace quenra {
namespace {

SYSTEMTIME Time(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                int milliseconds = 0) {
  SYSTEMTIME time = {};
  time.wYear = static_cast<WORD>(year);
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(day);
  time.wHour = static_cast<WORD>(hour);
  time.wMinute = static_cast<WORD>(minute);
  time.wSecond = static_cast<WORD>(second);
  time.wMilliseconds = static_cast<WORD>(milliseconds);
  return time;
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
struct DateRow {
  SYSTEMTIME time;
  std::optional<DATE> date;
  const char* why;
};

const DateRow kDateRows[] = {
    {Time(1899, 12, 30), 0.0, "day 0"},
    {Time(1899, 12, 30, 6), 0.25, "day 0 counts forward"},
    {Time(1899, 12, 31), 1.0, "day 1"},
    {Time(1899, 12, 29), -1.0, "the day before"},
    {Time(1899, 12, 29, 6), -1.25, "the fraction counts away from zero"},
    {Time(1899, 12, 28, 18), -2.75, "the same a day earlier"},
    {Time(1970, 1, 1), 25569.0, "the Unix epoch"},
    {Time(2000, 2, 29, 12), 36585.5, "leap day of a 400th year"},
    {Time(2024, 2, 29), 45351.0, "leap day"},
    {Time(100, 1, 1), -657434.0, "first day"},
    {Time(9999, 12, 31), 2958465.0, "last day"},
    {Time(2020, 1, 2, 0, 0, 0, 1), 43832.0 + 1.0 / 86400000, "one millisecond"},
    {Time(2020, 1, 2, 23, 59, 59, 999), 43832.0 + 86399999.0 / 86400000, "the last millisecond"},
    {Time(2020, 2, 31), std::nullopt, "31 February"},
    {Time(2023, 2, 29), std::nullopt, "29 February of a common year"},
    {Time(1900, 2, 29), std::nullopt, "a hundredth year is common"},
    {Time(2020, 4, 31), std::nullopt, "31 April"},
    {Time(2020, 0, 1), std::nullopt, "month 0"},
    {Time(2020, 13, 1), std::nullopt, "month 13"},
    {Time(2020, 1, 0), std::nullopt, "day 0 of a month"},
    {Time(99, 12, 31), std::nullopt, "before year 100"},
    {Time(10000, 1, 1), std::nullopt, "after year 9999"},
    {Time(2020, 1, 1, 24), std::nullopt, "hour 24"},
    {Time(2020, 1, 1, 0, 60), std::nullopt, "minute 60"},
    {Time(2020, 1, 1, 0, 0, 60), std::nullopt, "leap second"},
    {Time(2020, 1, 1, 0, 0, 0, 1000), std::nullopt, "millisecond 1000"},
};

TEST(DatetimeHelperTest, DateFollowsTable) {
  for (const DateRow& row : kDateRows) {
    SCOPED_TRACE(row.why);
    constexpr DATE kUntouched = 12345.0;
    DATE date = kUntouched;
    EXPECT_EQ(DatetimeHelper::ToOADate(row.time, date), row.date.has_value());
    EXPECT_DOUBLE_EQ(date, row.date.value_or(kUntouched));
  }
}

TEST(DatetimeHelperTest, DayOfWeekIsNotLookedAt) {
  SYSTEMTIME time = Time(2024, 2, 29);
  time.wDayOfWeek = 99;
  DATE date = 0;
  EXPECT_TRUE(DatetimeHelper::ToOADate(time, date));
  EXPECT_EQ(date, 45351.0);
}

TEST(DatetimeHelperTest, EveryDayComesBack) {
  SYSTEMTIME before = {};
  ASSERT_TRUE(DatetimeHelper::FromOADate(-657434.0, before));
  EXPECT_EQ(before.wYear, 100);
  EXPECT_EQ(before.wDayOfWeek, 5) << "1 January 100 was a Friday";
  // In steps that meet every day of the week and of the month, with a time of day that changes.
  for (int day = -657434; day <= 2958465; day += 13) {
    const int milliseconds = static_cast<int>((day + 700000) * 7919LL % 86400000);
    const double fraction = milliseconds / 86400000.0;
    const DATE date = day < 0 ? day - fraction : day + fraction;
    SYSTEMTIME time = {};
    ASSERT_TRUE(DatetimeHelper::FromOADate(date, time)) << day;
    ASSERT_EQ(time.wDayOfWeek, (day + 700006) % 7) << day;
    DATE back = 0;
    ASSERT_TRUE(DatetimeHelper::ToOADate(time, back)) << day;
    ASSERT_DOUBLE_EQ(back, date) << day;
  }
}

TEST(DatetimeHelperTest, RoundsToTheNextDay) {
  SYSTEMTIME time = {};
  ASSERT_TRUE(DatetimeHelper::FromOADate(45350.9999999999, time));
  EXPECT_EQ(time.wYear, 2024);
  EXPECT_EQ(time.wMonth, 2);
  EXPECT_EQ(time.wDay, 29);
  EXPECT_EQ(time.wHour, 0);
  EXPECT_EQ(time.wMilliseconds, 0);
  ASSERT_TRUE(DatetimeHelper::FromOADate(-1.9999999999, time));
  EXPECT_EQ(time.wDay, 30) << "the time of day of 1899-12-29 runs forward";
  EXPECT_EQ(time.wHour, 0);
}

TEST(DatetimeHelperTest, RefusesDatesOutOfRange) {
  SYSTEMTIME time = Time(1, 2, 3);
  for (const DATE date :
       {-657435.0, 2958466.0, 2958465.9999999999, 1e300, -1e300,
        std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(DatetimeHelper::FromOADate(date, time)) << date;
    EXPECT_EQ(time.wYear, 1) << date;
  }
}

}  // namespace
}  // namespace quenra
