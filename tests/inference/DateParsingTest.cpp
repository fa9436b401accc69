#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "host/CoreSupport/CharacterClasses.h"
#include "inference/DateParsing.h"
#include "support/ShowText.h"

namespace TextFile {
namespace {

constexpr std::uint32_t kOld = kOldFieldTypeVersion;         // 310
constexpr std::uint32_t kFirst = kFirstVersionWithNewTypes;  // 320
constexpr std::uint32_t kNew = kCurrentFieldTypeVersion;     // 340
constexpr DateOrder kMdy = DateOrder::kMonthDayYear;
constexpr DateOrder kDmy = DateOrder::kDayMonthYear;
constexpr DateOrder kYmd = DateOrder::kYearMonthDay;

std::u16string Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

// "date mdy+dmy", "offset ymd .", "time", "none"; a trailing dot for fractions of a second.
std::string Class(std::u16string_view text, std::uint32_t version, bool allowTimeOnly = false) {
  DateClass found;
  if (!ClassifyDate(text, version, allowTimeOnly, found)) return "none";
  std::string shown;
  switch (found.type) {
    case FieldType::kDate:
      shown = "datetime";
      break;
    case FieldType::kDateOnly:
      shown = "date";
      break;
    case FieldType::kTimeOnly:
      shown = "time";
      break;
    case FieldType::kTimestampOffset:
      shown = "offset";
      break;
    default:
      return "another type";
  }
  const char* separator = " ";
  for (const auto& [order, name] : {std::pair(kMdy, "mdy"), {kDmy, "dmy"}, {kYmd, "ymd"}}) {
    if (!found.orders.Contains(order)) continue;
    shown += separator;
    shown += name;
    separator = "+";
  }
  if (found.fractionalSeconds) shown += " .";
  return shown;
}

// "2020-01-05 10:30:15.500", with the offset behind it where one is read; "none".
std::string Value(FieldType type, DateOrder order, std::uint32_t version,
                  std::u16string_view text) {
  DateFieldFormat format;
  format.type = type;
  format.order = order;
  format.version = version;
  ParsedDateTime value;
  if (!ParseDateTime(format, text, value)) return "none";
  EXPECT_EQ(value.time.wDayOfWeek, 0);
  char shown[80];
  std::snprintf(shown, sizeof(shown), "%04d-%02d-%02d %02d:%02d:%02d.%03d", value.time.wYear,
                value.time.wMonth, value.time.wDay, value.time.wHour, value.time.wMinute,
                value.time.wSecond, value.time.wMilliseconds);
  std::string result(static_cast<const char*>(shown));
  if (type == FieldType::kTimestampOffset) result += " " + std::to_string(value.offsetMinutes);
  return result;
}

// ---------------------------------------------------------------------------------------------
// Classification
// ---------------------------------------------------------------------------------------------

struct ClassCase {
  std::u16string_view text;
  const char* current;  // with field type versions 320 and 340
  const char* old;      // with 310
  const char* why;
};

constexpr ClassCase kClassCases[] = {
    // Separators and orders.
    {u"2020-01-05", "date ymd", "datetime ymd", "the time may be missing below 320 alone"},
    {u"2020/01/05", "date ymd", "datetime ymd", "slashes"},
    {u"2020.01.05", "date ymd", "datetime ymd", "dots"},
    {u"05.01.2020", "date mdy+dmy", "datetime mdy+dmy", "day and month may change places"},
    {u"13/02/2020", "date dmy", "datetime dmy", "there is no month 13"},
    {u"02/13/2020", "date mdy", "datetime mdy", "there is no month 13"},
    {u"01/02/2020", "date mdy+dmy", "datetime mdy+dmy", "two orders"},
    {u"01/02/03", "date mdy+dmy+ymd", "datetime mdy+dmy+ymd", "three orders"},
    {u"32/01/02", "date ymd", "datetime ymd", "no day 32"},
    {u"2020/02/31", "date ymd", "datetime ymd", "days are checked against 31 alone"},
    {u"5.1.20", "date mdy+dmy+ymd", "datetime mdy+dmy+ymd", "short components"},
    {u"5-1-2020", "date mdy+dmy", "datetime mdy+dmy", "short components"},
    {u"1-2-65535", "date mdy+dmy", "datetime mdy+dmy", "the largest year"},
    {u"1-2-65536", "none", "none", "a year beyond 16 bits"},
    {u"1-2-99999999999999999999", "none", "none", "a year beyond every integer"},
    {u"0-1-2", "date ymd", "datetime ymd", "year 0; neither month nor day may be 0"},
    {u"2020-00-05", "none", "none", "no month 0"},
    {u"2020-13-05", "none", "none", "no month 13, and no order with the year second"},
    {u"2020-01-00", "none", "none", "no day 0"},
    {u"2020-01-32", "none", "none", "no day 32"},
    {u"2020-01/05", "none", "none", "the separators differ"},
    {u"2020:01:05", "none", "none", "not a separator"},
    {u"2020 01 05", "none", "none", "not a separator"},
    {u"2020,01,05", "none", "none", "not a separator"},
    {u"20200105", "none", "none", "no separator"},
    {u"2020-01", "none", "none", "two components"},
    {u"2020-01-", "none", "none", "two components"},
    {u"2020-01-05-", "none", "none", "something left over"},
    {u"2020-01-05x", "none", "none", "something left over"},
    {u"x2020-01-05", "none", "none", "something before it"},
    {u"abc", "none", "none", "no date"},
    {u"", "none", "none", "nothing"},
    {u" ", "none", "none", "nothing"},
    {u"T", "none", "none", "nothing"},
    {u"Jan 5 2020", "none", "none", "no names of months"},

    // White space and signs that number reading takes.
    {u" 2020-01-05", "date ymd", "datetime ymd", "white space before a number"},
    {u"\t\u00A02020-01-05", "date ymd", "datetime ymd", "white space before a number"},
    {u"2020- 1- 5", "date ymd", "datetime ymd", "white space before a number"},
    {u"+2020-+01-+05", "date ymd", "datetime ymd", "plus signs"},
    {u"2020--1-05", "none", "none", "a negative month"},
    {u"-2020-01-05", "none", "none", "a negative year"},
    {u"-0-1-2", "date ymd", "datetime ymd", "minus zero is zero"},
    {u"2020 -01-05", "none", "none", "a blank before a separator"},
    {u"- 2020-01-05", "none", "none", "a blank behind a sign"},

    // Behind the date.
    {u"2020-01-05 ", "date ymd", "datetime ymd", "blanks behind a date belong to it"},
    {u"2020-01-05    ", "date ymd", "datetime ymd", "blanks behind a date belong to it"},
    {u"2020-01-05\t", "none", "none", "other white space does not"},
    {u"05.01.2020.", "date mdy+dmy", "datetime mdy+dmy", "a dot closes a dotted date"},
    {u"05.01.2020. ", "date mdy+dmy", "datetime mdy+dmy", "and blanks behind it"},
    {u"05.01.2020..", "none", "none", "one dot alone"},
    {u"05-01-2020.", "none", "none", "the date is not dotted"},
    {u"05.01.2020 .", "none", "none", "not directly behind it"},
    {u"2020-01-05Z", "none", "none", "a Z, but no time"},

    // The separator skip.
    {u"2020-. 01-. 05", "date ymd", "datetime ymd", "behind both date separators"},
    {u"5.. 1.. 2020", "date mdy+dmy", "datetime mdy+dmy", "with dots as separators"},
    {u"2020-.01-05", "none", "none", "no blank behind the dot"},
    {u"2020-.. 01-05", "none", "none", "two dots"},
    {u"2020-01-05 10:. 30:. 15", "datetime ymd", "datetime ymd", "behind the colons of the time"},
    {u"2020-01-05 10:.30", "none", "none", "no blank behind the dot"},
    {u"2020-01-05 10:30:.15", "none", "none", "no blank behind the dot"},
    {u"2020-01-05 10:30+02:. 00", "offset ymd", "none", "behind the colon of the offset"},
    {u"2020-01-05 10:30+02:.00", "none", "none", "no blank behind the dot"},

    // Time.
    {u"2020-01-05 10:30", "datetime ymd", "datetime ymd", "hours and minutes"},
    {u"2020-01-05T10:30", "datetime ymd", "datetime ymd", "a T"},
    {u"2020-01-05 T10:30", "datetime ymd", "datetime ymd", "a T behind a blank"},
    {u"2020-01-05   10:30", "datetime ymd", "datetime ymd", "several blanks"},
    {u"2020-01-05TT10:30", "none", "none", "one T alone"},
    {u"2020-01-05t10:30", "none", "none", "the letter is a capital"},
    {u"2020-01-05 10:30:15", "datetime ymd", "datetime ymd", "seconds"},
    {u"2020-01-05 0:0:0", "datetime ymd", "datetime ymd", "short components"},
    {u"2020-01-05 23:59:59", "datetime ymd", "datetime ymd", "the last second"},
    {u"2020-01-05 24:00", "none", "none", "no hour 24"},
    {u"2020-01-05 10:60", "none", "none", "no minute 60"},
    {u"2020-01-05 10:30:60", "none", "none", "no second 60"},
    {u"2020-01-05 -1:30", "none", "none", "a negative hour"},
    {u"2020-01-05 +1:30", "datetime ymd", "datetime ymd", "a plus sign"},
    {u"2020-01-05 10", "none", "none", "no minutes"},
    {u"2020-01-05 10:", "none", "none", "no minutes"},
    {u"2020-01-05 10:30:", "none", "none", "no seconds"},
    {u"2020-01-05 10:30x", "none", "none", "something left over"},
    {u"2020-01-05 10:30 AM", "none", "none", "no halves of the day"},
    {u"2020-01-05 10:30 ", "offset ymd", "none",
     "one blank is where an offset would begin, and none need follow"},
    {u"2020-01-05 10:30:15 ", "offset ymd", "none", "the same behind seconds"},
    {u"2020-01-05 10:30  ", "none", "none", "one blank alone"},

    // Fractions.
    {u"2020-01-05T10:30:15.5", "datetime ymd .", "none", "fractions are read from 320 on"},
    {u"2020-01-05 10:30:15.999", "datetime ymd .", "none", "milliseconds"},
    {u"2020-01-05 10:30:15.0123", "datetime ymd .", "none", "any digits, below 1000"},
    {u"2020-01-05 10:30:15.1000", "none", "none", "1000 and above"},
    {u"2020-01-05 10:30:15.123456", "none", "none", "1000 and above"},
    {u"2020-01-05 10:30:15.", "none", "none", "no digit"},
    {u"2020-01-05 10:30:15,5", "none", "none", "a comma"},
    {u"2020-01-05 10:30.5", "none", "none", "a fraction of a minute"},
    {u"2020-01-05 10:30:15.. 5", "datetime ymd .", "none", "the separator skip"},
    {u"2020-01-05 10:30:15.-5", "none", "none", "a negative number"},

    // Z.
    {u"2020-01-05T10:30:00Z", "none", "datetime ymd",
     "from 320 on what follows the seconds must be a fraction or an offset"},
    {u"2020-01-05T10:30:00.5Z", "datetime ymd .", "none", "a Z behind a fraction"},
    {u"2020-01-05T10:30Z", "none", "none", "a Z behind the minutes"},
    {u"2020-01-05T10:30:00ZZ", "none", "none", "one Z alone"},
    {u"2020-01-05T10:30:00z", "none", "none", "the letter is a capital"},
    {u"2020-01-05T10:30:00 Z", "none", "none", "a blank before it"},
    {u"2020-01-05T10:30:00Z ", "none", "none", "a blank behind it"},

    // Offsets.
    {u"2020-01-05T10:30:00+02:00", "offset ymd", "none", "an offset"},
    {u"2020-01-05T10:30:00-02:00", "offset ymd", "none", "an offset"},
    {u"2020-01-05T10:30:00.25+02:00", "offset ymd .", "none", "behind a fraction"},
    {u"2020-01-05T10:30+02:00", "offset ymd", "none", "behind the minutes"},
    {u"2020-01-05 10:30:00 +02:00", "offset ymd", "none", "one blank before it"},
    {u"2020-01-05 10:30:00. +02:00", "none", "none", "blank, sign and hours make the fraction"},
    {u"2020-01-05 10:30:00 . +02:00", "none", "none",
     "behind the dropped dot stands a blank, which is no sign"},
    {u"2020-01-05 10:30:00  +02:00", "none", "none", "two blanks before it"},
    {u"2020-01-05 10:30:00\t+02:00", "none", "none", "no blank"},
    {u"01/02/2020 10:30:00+02:00", "offset mdy+dmy", "none", "orders"},
    {u"2020-01-05T10:30:00+99:99", "offset ymd", "none", "no range is checked"},
    {u"2020-01-05T10:30:00+32767:32767", "offset ymd", "none", "both fit 16 bits"},
    {u"2020-01-05T10:30:00+32768:00", "none", "none", "beyond 16 bits"},
    {u"2020-01-05T10:30:00+00:32768", "none", "none", "beyond 16 bits"},
    {u"2020-01-05T10:30:00+0200", "none", "none", "no colon"},
    {u"2020-01-05T10:30:00+02", "none", "none", "no colon"},
    {u"2020-01-05T10:30:00+02:", "none", "none", "no minutes"},
    {u"2020-01-05T10:30:00+:00", "none", "none", "no hours"},
    {u"2020-01-05T10:30:00+", "none", "none", "no hours"},
    {u"2020-01-05T10:30:00+02:00Z", "none", "none", "something left over"},
    {u"2020-01-05T10:30:00+02:00 ", "none", "none", "something left over"},
    {u"2020-01-05+02:00", "datetime ymd", "datetime ymd", "the sign is that of the hour"},

    // A time alone.
    {u"10:30", "none", "none", "no date"},
    {u"10:30:15", "none", "none", "no date"},
};

TEST(DateParsingTest, ClassifiesByTheTable) {
  for (const ClassCase& c : kClassCases) {
    SCOPED_TRACE(Show(c.text) + ": " + c.why);
    EXPECT_EQ(Class(c.text, kNew), c.current);
    EXPECT_EQ(Class(c.text, kFirst), c.current);
    EXPECT_EQ(Class(c.text, kOld), c.old);
    EXPECT_EQ(Class(c.text, kFirst - 1), c.old);
  }
}

struct TimeCase {
  std::u16string_view text;
  const char* shown;
  const char* why;
};

constexpr TimeCase kTimeCases[] = {
    {u"10:30", "time", "hours and minutes"},
    {u"T10:30", "time", "a T"},
    {u" 10:30", "time", "white space before a number"},
    {u"T 10:30", "time", "white space before a number"},
    {u"+1:30", "time", "a plus sign"},
    {u"0:00", "time", "midnight"},
    {u"23:59:59", "time", "the last second"},
    {u"10:30:15.5", "time .", "a fraction"},
    {u"10:. 30:. 15", "time", "the separator skip"},
    {u"24:00", "none", "never a time"},
    {u"10:60", "none", "no minute 60"},
    {u"10:30:60", "none", "no second 60"},
    {u"10", "none", "no minutes"},
    {u"10:30 ", "none", "a blank left over"},
    {u"10:30+02:00", "none", "an offset left over"},
    {u"10:30Z", "none", "no Z"},
    {u"10:30:00Z", "none", "no Z"},
    {u"10:30 AM", "none", "something left over"},
    {u"-1:30", "none", "a negative hour"},
    {u"", "none", "nothing"},
    {u"2020-01-05", "date ymd", "dates go first"},
    {u"2020-01-05 10:30", "datetime ymd", "dates go first"},
};

TEST(DateParsingTest, ClassifiesTimesAloneWhereTheyAreAllowed) {
  for (const TimeCase& c : kTimeCases) {
    SCOPED_TRACE(Show(c.text) + ": " + c.why);
    EXPECT_EQ(Class(c.text, kNew, true), c.shown);
    EXPECT_EQ(Class(c.text, kFirst, true), c.shown);
  }
  EXPECT_EQ(Class(u"10:30", kOld, true), "none") << "times alone exist from 320 on";
  EXPECT_EQ(Class(u"10:30", kNew, false), "none");
}

// ---------------------------------------------------------------------------------------------
// Conversion
// ---------------------------------------------------------------------------------------------

TEST(DateParsingTest, TwoCharactersMakeAYearOfOurTime) {
  const auto year = [](std::u16string_view text) {
    return Value(FieldType::kDateOnly, kYmd, kNew, std::u16string(text) + u"-01-05").substr(0, 4);
  };
  EXPECT_EQ(year(u"20"), "2020");
  EXPECT_EQ(year(u"50"), "2050") << "the last of this century";
  EXPECT_EQ(year(u"51"), "1951") << "the first of the last century";
  EXPECT_EQ(year(u"99"), "1999");
  EXPECT_EQ(year(u"00"), "2000");
  EXPECT_EQ(year(u"5"), "0005") << "one character";
  EXPECT_EQ(year(u"005"), "0005") << "three characters";
  EXPECT_EQ(year(u"0020"), "0020") << "four characters";
  EXPECT_EQ(year(u"+5"), "2005") << "the sign is a character";
  EXPECT_EQ(year(u" 5"), "2005") << "so is the blank";
  EXPECT_EQ(year(u"-0"), "2000") << "and minus zero is zero";
  EXPECT_EQ(year(u"+20"), "0020") << "three characters with the sign";
  EXPECT_EQ(year(u" 20"), "0020") << "three characters with the blank";
  EXPECT_EQ(year(u"  5"), "0005") << "three characters with the blanks";
  EXPECT_EQ(Value(FieldType::kDateOnly, kDmy, kNew, u"5.1.20"), "2020-01-05 00:00:00.000");
  EXPECT_EQ(Value(FieldType::kDateOnly, kDmy, kNew, u"5.1.51"), "1951-01-05 00:00:00.000");
  EXPECT_EQ(Value(FieldType::kDateOnly, kDmy, kNew, u"5.1. 5"), "2005-01-05 00:00:00.000");
}

TEST(DateParsingTest, ConvertsByTheOrder) {
  const FieldType day = FieldType::kDateOnly;
  EXPECT_EQ(Value(day, kMdy, kNew, u"01/02/2003"), "2003-01-02 00:00:00.000");
  EXPECT_EQ(Value(day, kDmy, kNew, u"01/02/2003"), "2003-02-01 00:00:00.000");
  EXPECT_EQ(Value(day, kYmd, kNew, u"01/02/2003"), "none") << "no day 2003";
  EXPECT_EQ(Value(day, kMdy, kNew, u"13/02/2003"), "none") << "the order is fixed";
  EXPECT_EQ(Value(day, kYmd, kNew, u"01/02/03"), "2001-02-03 00:00:00.000");
  EXPECT_EQ(Value(day, kYmd, kNew, u"2020/02/31"), "2020-02-31 00:00:00.000")
      << "whether the day exists is not asked here";
}

TEST(DateParsingTest, WithoutAnOrderTheMonthComesFirstThenTheDayThenTheYear) {
  const FieldType day = FieldType::kDateOnly;
  EXPECT_EQ(Value(day, DateOrder::kAny, kNew, u"01/02/03"), "2003-01-02 00:00:00.000");
  EXPECT_EQ(Value(day, DateOrder::kAny, kNew, u"13/02/03"), "2003-02-13 00:00:00.000");
  EXPECT_EQ(Value(day, DateOrder::kAny, kNew, u"32/02/03"), "2032-02-03 00:00:00.000");
  EXPECT_EQ(Value(day, DateOrder::kAny, kNew, u"2003/02/01"), "2003-02-01 00:00:00.000");
  EXPECT_EQ(Value(day, DateOrder::kAny, kNew, u"32/13/03"), "none");
  EXPECT_EQ(Value(FieldType::kDate, DateOrder::kAny, kNew, u"13/02/03 10:30"),
            "2003-02-13 10:30:00.000");
}

TEST(DateParsingTest, ConvertsByTheType) {
  const FieldType both = FieldType::kDate;
  const FieldType day = FieldType::kDateOnly;
  const FieldType time = FieldType::kTimeOnly;
  const FieldType offset = FieldType::kTimestampOffset;
  EXPECT_EQ(Value(both, kYmd, kNew, u"2020-01-05 10:30"), "2020-01-05 10:30:00.000");
  EXPECT_EQ(Value(both, kYmd, kNew, u"2020-01-05T10:30:15.5"), "2020-01-05 10:30:15.500");
  EXPECT_EQ(Value(both, kYmd, kNew, u"2020-01-05"), "none") << "the time is required";
  EXPECT_EQ(Value(both, kYmd, kFirst, u"2020-01-05"), "none");
  EXPECT_EQ(Value(both, kYmd, kOld, u"2020-01-05"), "2020-01-05 00:00:00.000");
  EXPECT_EQ(Value(both, kYmd, kOld, u"2020-01-05  "), "2020-01-05 00:00:00.000");
  EXPECT_EQ(Value(both, kYmd, kOld, u"2020-01-05T10:30:15Z"), "2020-01-05 10:30:15.000");
  EXPECT_EQ(Value(both, kYmd, kNew, u"2020-01-05T10:30:15Z"), "none");
  EXPECT_EQ(Value(both, kYmd, kNew, u"2020-01-05T10:30:15.5Z"), "2020-01-05 10:30:15.500");
  EXPECT_EQ(Value(both, kYmd, kOld, u"2020-01-05T10:30:15.5"), "none");
  EXPECT_EQ(Value(both, kYmd, kNew, u"2020-01-05 10:30+02:00"), "none") << "an offset left over";
  EXPECT_EQ(Value(both, kYmd, kNew, u"2020-01-05 10:30 "), "none") << "a blank left over";
  EXPECT_EQ(Value(day, kYmd, kNew, u"2020-01-05"), "2020-01-05 00:00:00.000");
  EXPECT_EQ(Value(day, kYmd, kNew, u"2020-01-05  "), "2020-01-05 00:00:00.000");
  EXPECT_EQ(Value(day, kYmd, kNew, u"2020-01-05 10:30"), "none") << "a time left over";
  EXPECT_EQ(Value(day, kYmd, kNew, u"2020-01-05Z"), "none") << "a Z left over";
  EXPECT_EQ(Value(time, DateOrder::kAny, kNew, u"10:30:15.25"), "0000-00-00 10:30:15.250");
  EXPECT_EQ(Value(time, DateOrder::kAny, kNew, u"T10:30"), "0000-00-00 10:30:00.000");
  EXPECT_EQ(Value(time, DateOrder::kAny, kNew, u"10:30Z"), "none");
  EXPECT_EQ(Value(time, DateOrder::kAny, kNew, u"10:30 "), "none");
  EXPECT_EQ(Value(time, DateOrder::kAny, kNew, u"2020-01-05 10:30"), "none");
  EXPECT_EQ(Value(offset, kYmd, kNew, u"2020-01-05T10:30:00+02:00"), "2020-01-05 10:30:00.000 120");
  EXPECT_EQ(Value(offset, kYmd, kNew, u"2020-01-05T10:30:00"), "2020-01-05 10:30:00.000 0")
      << "the offset may be missing";
  EXPECT_EQ(Value(offset, kYmd, kNew, u"2020-01-05T10:30:00+02:00Z"), "none");
  EXPECT_EQ(Value(offset, kYmd, kNew, u"2020-01-05"), "none");
  for (const FieldType type : {both, day, time, offset})
    EXPECT_EQ(Value(type, DateOrder::kAny, kNew, u"abc"), "none");
}

TEST(DateParsingTest, FractionsCountByTheirCharacters) {
  const auto milliseconds = [](std::u16string_view fraction) {
    const std::string shown =
        Value(FieldType::kDate, kYmd, kNew, u"2020-01-05 10:30:15." + std::u16string(fraction));
    return shown == "none" ? shown : shown.substr(shown.size() - 3);
  };
  EXPECT_EQ(milliseconds(u"5"), "500");
  EXPECT_EQ(milliseconds(u"0"), "000");
  EXPECT_EQ(milliseconds(u"25"), "250");
  EXPECT_EQ(milliseconds(u"05"), "050");
  EXPECT_EQ(milliseconds(u"123"), "123");
  EXPECT_EQ(milliseconds(u"005"), "005");
  EXPECT_EQ(milliseconds(u"999"), "999");
  EXPECT_EQ(milliseconds(u"0123"), "123");
  EXPECT_EQ(milliseconds(u"0000000007"), "007");
  EXPECT_EQ(milliseconds(u"+5"), "050") << "the sign is a character";
  EXPECT_EQ(milliseconds(u" 5"), "050") << "so is the blank";
  EXPECT_EQ(milliseconds(u". 5"), "050") << "the dot before a blank is skipped";
  EXPECT_EQ(milliseconds(u"1000"), "none");
  EXPECT_EQ(milliseconds(u"1234"), "none");
}

TEST(DateParsingTest, OffsetsAreMinutesIn16Bits) {
  const auto offset = [](std::u16string_view text) {
    const std::string shown = Value(FieldType::kTimestampOffset, kYmd, kNew,
                                    u"2020-01-05T10:30:00" + std::u16string(text));
    return shown == "none" ? shown : shown.substr(24);
  };
  EXPECT_EQ(offset(u""), "0");
  EXPECT_EQ(offset(u" "), "0");
  EXPECT_EQ(offset(u"+02:00"), "120");
  EXPECT_EQ(offset(u"-02:30"), "-150");
  EXPECT_EQ(offset(u" -02:30"), "-150");
  EXPECT_EQ(offset(u"+5:5"), "305");
  EXPECT_EQ(offset(u"+00:00"), "0");
  EXPECT_EQ(offset(u"+-2:00"), "-120") << "the hours have a sign of their own";
  EXPECT_EQ(offset(u"--2:00"), "120") << "and are negated with it";
  EXPECT_EQ(offset(u"+2:-30"), "90") << "so have the minutes";
  EXPECT_EQ(offset(u"+ 2: 30"), "150") << "white space before numbers";
  EXPECT_EQ(offset(u"+99:99"), "6039") << "no range is checked";
  EXPECT_EQ(offset(u"+546:07"), "32767") << "the largest of 16 bits";
  EXPECT_EQ(offset(u"+546:08"), "-32768") << "one more wraps around";
  EXPECT_EQ(offset(u"-546:08"), "-32768");
  EXPECT_EQ(offset(u"-546:09"), "32767");
  EXPECT_EQ(offset(u"+32767:32767"), "32707") << "1998787 less 30 times 65536";
  EXPECT_EQ(offset(u"+-32768:00"), "0") << "-1966080 is 30 times -65536";
  EXPECT_EQ(offset(u"+32768:00"), "none");
  EXPECT_EQ(offset(u"+-32769:00"), "none");
  EXPECT_EQ(offset(u"+2"), "none");
  EXPECT_EQ(offset(u"+2:"), "none");
}

TEST(DateParsingTest, PartsMoveThePositionBehindWhatTheyRead) {
  SYSTEMTIME time{};
  std::size_t position = 2;
  ASSERT_TRUE(ParseDatePart(u"x,5.1.2020.  y", position, kDmy, time));
  EXPECT_EQ(position, 13u);
  EXPECT_EQ(time.wDay, 5);
  EXPECT_EQ(time.wMonth, 1);
  EXPECT_EQ(time.wYear, 2020);

  ParsedDateTime value;
  position = 1;
  ASSERT_TRUE(ParseTimePart(kNew, u" T10:30:15.25+02:00", position, value));
  EXPECT_EQ(position, 13u);
  EXPECT_EQ(value.time.wMilliseconds, 250);
  EXPECT_TRUE(value.fractionalSeconds);
  position = 0;
  ASSERT_TRUE(ParseTimePart(kOld, u"10:30:15.25", position, value));
  EXPECT_EQ(position, 8u) << "the fraction is left";
  EXPECT_FALSE(value.fractionalSeconds);
  EXPECT_EQ(value.time.wMilliseconds, 0);
  position = 0;
  ASSERT_TRUE(ParseTimePart(kNew, u"10:30 x", position, value));
  EXPECT_EQ(position, 5u);
  EXPECT_EQ(value.time.wSecond, 0);
  position = 3;
  EXPECT_FALSE(ParseTimePart(kNew, u"abc", position, value)) << "no time at the end of the text";
  position = 3;
  EXPECT_TRUE(ParseTimePart(kOld, u"abc", position, value));
  EXPECT_EQ(value.time.wHour, 0);

  std::int16_t offset = 7;
  position = 0;
  ASSERT_TRUE(ParseOffsetPart(u" +01:30x", position, offset));
  EXPECT_EQ(position, 7u);
  EXPECT_EQ(offset, 90);
  position = 0;
  ASSERT_TRUE(ParseOffsetPart(u"x", position, offset));
  EXPECT_EQ(position, 0u);
  EXPECT_EQ(offset, 0);
  position = 0;
  ASSERT_TRUE(ParseOffsetPart(u" . x", position, offset));
  EXPECT_EQ(position, 2u) << "the blank, and the dot before a blank";
}

// ---------------------------------------------------------------------------------------------
// Sweeps
// ---------------------------------------------------------------------------------------------

constexpr int DaysIn(int year, int month) {
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2                                              ? (leap ? 29 : 28)
         : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                 : 31;
}

TEST(DateParsingTest, EveryDayIsReadBackInEachOrderWithEachSeparator) {
  for (const int year : {1900, 1999, 2000, 2023, 2024}) {
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= DaysIn(year, month); ++day) {
        char expected[64];
        std::snprintf(expected, sizeof(expected), "%04d-%02d-%02d 00:00:00.000", year, month, day);
        for (const char separator : {'-', '.', '/'}) {
          for (const DateOrder order : {kMdy, kDmy, kYmd}) {
            const int first = order == kMdy ? month : order == kDmy ? day : year;
            const int second = order == kDmy || order == kYmd ? month : day;
            const int third = order == kYmd ? day : year;
            char padded[64];
            char plain[64];
            std::snprintf(padded, sizeof(padded), "%02d%c%02d%c%02d", first, separator, second,
                          separator, third);
            std::snprintf(plain, sizeof(plain), "%d%c%d%c%d", first, separator, second, separator,
                          third);
            for (const char* printed : {&padded[0], &plain[0]}) {
              const std::u16string text = Wide(printed);
              ASSERT_EQ(Value(FieldType::kDateOnly, order, kNew, text), expected) << printed;
              DateClass found;
              ASSERT_TRUE(ClassifyDate(text, kNew, false, found)) << printed;
              ASSERT_EQ(found.type, FieldType::kDateOnly) << printed;
              ASSERT_TRUE(found.orders.Contains(order)) << printed;
              const bool exchangeable = order != kYmd && day <= 12;
              ASSERT_EQ(found.orders.size(), exchangeable ? 2 : 1) << printed;
              ASSERT_EQ(found.orders.Single(), exchangeable ? DateOrder::kAny : order) << printed;
            }
          }
        }
      }
    }
  }
}

TEST(DateParsingTest, EverySecondOfADayIsReadBack) {
  for (int second = 0; second < 86400; ++second) {
    char printed[64];
    std::snprintf(printed, sizeof(printed), "%02d:%02d:%02d.%03d", second / 3600, second / 60 % 60,
                  second % 60, second % 1000);
    const std::string text(static_cast<const char*>(printed));
    ASSERT_EQ(Value(FieldType::kTimeOnly, DateOrder::kAny, kNew, Wide(text)), "0000-00-00 " + text);
  }
}

// The algorithm as a list of steps over a copy of the text, with the C library's own reading of
// numbers: slow, and written without a look at the scanner's economies.
class Reference {
 public:
  Reference(std::u16string_view text, std::uint32_t version)
      : text_(text.begin(), text.end()), version_(version) {}

  std::string Classify(bool allowTimeOnly) {
    for (const FieldType type :
         {FieldType::kDate, FieldType::kTimestampOffset, FieldType::kDateOnly}) {
      if (version_ < 320 && type != FieldType::kDate) continue;
      bool ymd = As(type, "ymd");
      bool fraction = ymd && fraction_;
      bool dmy = As(type, "dmy");
      fraction = fraction || (dmy && fraction_);
      bool mdy = As(type, "mdy");
      fraction = fraction || (mdy && fraction_);
      if (!ymd && !dmy && !mdy) continue;
      std::string shown = type == FieldType::kDate              ? "datetime"
                          : type == FieldType::kTimestampOffset ? "offset"
                                                                : "date";
      const char* separator = " ";
      for (const auto& [present, name] :
           {std::pair(mdy, "mdy"), std::pair(dmy, "dmy"), std::pair(ymd, "ymd")}) {
        if (!present) continue;
        shown += separator;
        shown += name;
        separator = "+";
      }
      return shown + (fraction ? " ." : "");
    }
    if (allowTimeOnly && version_ >= 320) {
      at_ = 0;
      fraction_ = false;
      if (Time() && at_ == text_.size()) return fraction_ ? "time ." : "time";
    }
    return "none";
  }

 private:
  wchar_t Next(std::size_t ahead = 0) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : L'\0';
  }
  bool Is(wchar_t unit) const { return at_ < text_.size() && text_[at_] == unit; }
  bool White() const {
    return at_ < text_.size() && quenra::IsWhiteSpace(static_cast<char16_t>(text_[at_]));
  }
  void Skip() {
    if (Next() == L'.' && Next(1) == L' ') ++at_;
  }
  bool Number(long low, long high, long& value, std::size_t& consumed) {
    const wchar_t* begin = text_.c_str() + at_;
    wchar_t* end = nullptr;
    value = std::wcstol(begin, &end, 10);
    consumed = static_cast<std::size_t>(end - begin);
    if (consumed == 0 || value < low || value > high) return false;
    at_ += consumed;
    return true;
  }
  bool Component(char letter) {
    long value = 0;
    std::size_t consumed = 0;
    if (letter == 'y') return Number(0, 65535, value, consumed);
    return Number(1, letter == 'm' ? 12 : 31, value, consumed);
  }
  bool Date(const char* pattern) {
    if (!Component(pattern[0])) return false;
    const wchar_t separator = Next();
    if (separator != L'-' && separator != L'.' && separator != L'/') return false;
    ++at_;
    Skip();
    if (!Component(pattern[1]) || !Is(separator)) return false;
    ++at_;
    Skip();
    if (!Component(pattern[2])) return false;
    if (separator == L'.' && Is(L'.')) ++at_;
    while (Is(L' ')) ++at_;
    return true;
  }
  bool Time() {
    if (at_ == text_.size()) return version_ < 320;
    if (Is(L'T')) ++at_;
    long value = 0;
    std::size_t consumed = 0;
    if (!Number(0, 23, value, consumed) || !Is(L':')) return false;
    ++at_;
    Skip();
    if (!Number(0, 59, value, consumed)) return false;
    if (at_ == text_.size() || White() || Is(L'+') || Is(L'-')) return true;
    if (!Is(L':')) return false;
    ++at_;
    Skip();
    if (!Number(0, 59, value, consumed)) return false;
    if (version_ < 320 || at_ == text_.size()) return true;
    if (White() || Is(L'+') || Is(L'-')) return true;
    if (!Is(L'.')) return false;
    ++at_;
    Skip();
    if (!Number(0, 999, value, consumed)) return false;
    fraction_ = true;
    return true;
  }
  bool Offset() {
    if (Is(L' ')) {
      ++at_;
      Skip();
    }
    if (!Is(L'+') && !Is(L'-')) return true;
    ++at_;
    long value = 0;
    std::size_t consumed = 0;
    if (!Number(-32768, 32767, value, consumed) || !Is(L':')) return false;
    ++at_;
    Skip();
    return Number(-32768, 32767, value, consumed);
  }
  bool As(FieldType type, const char* pattern) {
    at_ = 0;
    fraction_ = false;
    if (!Date(pattern)) return false;
    if (type != FieldType::kDateOnly && !Time()) return false;
    if (type == FieldType::kTimestampOffset && !Offset()) return false;
    if (type == FieldType::kDate && Is(L'Z')) ++at_;
    return at_ == text_.size();
  }

  const std::wstring text_;
  const std::uint32_t version_;
  std::size_t at_ = 0;
  bool fraction_ = false;
};

TEST(DateParsingTest, ChangedDatesAgreeWithTheReference) {
  constexpr std::u16string_view kSeeds[] = {u"2020-01-05T10:30:15.5+02:00",
                                            u"5.1.20",
                                            u"12/11/10 9:08:07 -1:30",
                                            u"05.. 01.. 2020. ",
                                            u"T10:30:15Z",
                                            u"1-2-3 4:. 5:. 6.. 7 +8:. 9"};
  constexpr std::u16string_view kUnits = u"0123459-./:+ TZ.  x\t";
  std::mt19937 random(1);
  int dates = 0;
  for (int n = 0; n < 150000; ++n) {
    std::u16string text(kSeeds[random() % std::size(kSeeds)]);
    for (auto changes = random() % 4; changes > 0; --changes) {
      const std::size_t at = random() % (text.size() + 1);
      const char16_t unit = kUnits[random() % kUnits.size()];
      switch (random() % 4) {
        case 0:
          text.insert(at, 1, unit);
          break;
        case 1:
          if (at < text.size()) text.erase(at, 1);
          break;
        case 2:
          if (at < text.size()) text[at] = unit;
          break;
        default:
          text.resize(at);
          break;
      }
      if (text.empty()) break;
    }
    for (const std::uint32_t version : {kOld, kFirst, kNew}) {
      const std::string expected = Reference(text, version).Classify(true);
      ASSERT_EQ(Class(text, version, true), expected) << Show(text) << " version " << version;
      if (expected != "none") ++dates;
    }
  }
  EXPECT_GT(dates, 1000);
}

TEST(DateParsingTest, RandomTextsNeverCrashAndClassifiedOnesConvert) {
  constexpr std::u16string_view kUnits = u"0123456789-./:+ TZ.\t\u00A0\u0661\xD800";
  std::mt19937 random(2);
  std::u16string text;
  for (int n = 0; n < 300000; ++n) {
    text.clear();
    for (auto length = random() % 20; length > 0; --length)
      text += kUnits[random() % kUnits.size()];
    DateClass found;
    if (!ClassifyDate(text, kNew, true, found)) continue;
    for (const DateOrder order : {kMdy, kDmy, kYmd}) {
      const bool expected = found.type == FieldType::kTimeOnly || found.orders.Contains(order);
      ASSERT_EQ(Value(found.type, order, kNew, text) != "none", expected) << Show(text);
    }
  }
}

}  // namespace
}  // namespace TextFile
