#include <gtest/gtest.h>

#include <vector>

#include "inference/DateFormatting.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

using quenra::test::ToUtf8;

SYSTEMTIME Time(int year, int month, int day, int hour, int minute, int second, int ms = 0) {
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(year);
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(day);
  time.wHour = static_cast<WORD>(hour);
  time.wMinute = static_cast<WORD>(minute);
  time.wSecond = static_cast<WORD>(second);
  time.wMilliseconds = static_cast<WORD>(ms);
  return time;
}

std::string Written(std::u16string_view pattern, const SYSTEMTIME& time) {
  std::string bytes;
  DatePattern(pattern).Append(time, bytes);
  return bytes;
}

struct PatternCase {
  std::u16string_view pattern;
  const char* text;
};

// Of 2003-02-01 04:05:06.
constexpr PatternCase kPatternCases[] = {
    {u"yyyy-MM-dd", "2003-02-01"},
    {u"d.M.yyyy", "1.2.2003"},
    {u"dd/MM/yy", "01/02/03"},
    {u"DD/MM/YYYY", "01/02/2003"},
    {u"M/d/y", "2/1/03"},
    {u"mm/dd/yyyy hh:mm:ss", "02/01/2003 04:05:06"},
    {u"H:m:s", "4:5:6"},
    {u"HH:MM:SS", "04:05:06"},
    {u"hh:mm tt", "04:05"},
    {u"M/d/yyyy h:mm:ss tt", "2/1/2003 4:05:06"},
    {u"yyyy-MM-ddTHH:mm:ss", "2003-02-01T04:05:06"},
    {u"yyyy. MM. dd. H:mm:ss", "2003. 02. 01. 4:05:06"},
    {u"dddd, d. MMMM yyyy", ", 1. 02 2003"},
    {u"yyyy'dd'MM", "2003dd02"},
    {u"yyyy\u5E74M\u6708",
     "2003\xE5\xB9\xB4"
     "2\xE6\x9C\x88"},
    {u"", ""},
};

TEST(DateFormattingTest, PatternsFollowTheTable) {
  for (const PatternCase& c : kPatternCases)
    EXPECT_EQ(Written(c.pattern, Time(2003, 2, 1, 4, 5, 6)), c.text) << ToUtf8(c.pattern);
}

TEST(DateFormattingTest, TheShortWayWritesTheSame) {
  std::vector<SYSTEMTIME> times;
  for (int i = 0; i < 100; ++i)
    times.push_back(Time(100 + 99 * i + i % 2, 1 + i % 12, 1 + i % 31, i % 24, i % 60, i * 7 % 60));
  std::vector<std::u16string_view> patterns = {u"'a text of many more than eight letters'yyyy",
                                               u"ss", u"s", u"MMMM"};
  for (const PatternCase& c : kPatternCases) patterns.push_back(c.pattern);
  for (const std::u16string_view text : patterns) {
    const DatePattern pattern(text);
    std::string bytes(pattern.Room(), '?');
    for (const SYSTEMTIME& time : times) {
      const char* const end = pattern.Write(time, bytes.data());
      ASSERT_NE(end, nullptr);
      EXPECT_EQ(bytes.substr(0, static_cast<std::size_t>(end - bytes.data())), Written(text, time));
    }
  }
}

TEST(DateFormattingTest, TheShortWayLeavesFractionsToTheOther) {
  const SYSTEMTIME time = Time(2003, 2, 1, 4, 5, 6, 7);
  char bytes[200];
  EXPECT_EQ(DatePattern(u"HH:mm:ss").Write(time, bytes), nullptr);
  EXPECT_EQ(std::string(bytes, DatePattern(u"HH:mm").Write(time, bytes)), "04:05");
}

TEST(DateFormattingTest, HoursCountTo23) {
  EXPECT_EQ(Written(u"h:mm:ss tt", Time(2020, 1, 5, 15, 0, 0)), "15:00:00");
  EXPECT_EQ(Written(u"hh", Time(2020, 1, 5, 0, 0, 0)), "00");
}

TEST(DateFormattingTest, MillisecondsFollowTheSecondsWhenThereAreAny) {
  EXPECT_EQ(Written(u"HH:mm:ss", Time(2020, 1, 5, 1, 2, 3, 40)), "01:02:03.040");
  EXPECT_EQ(Written(u"HH:mm:ss", Time(2020, 1, 5, 1, 2, 3, 0)), "01:02:03");
  EXPECT_EQ(Written(u"HH:mm", Time(2020, 1, 5, 1, 2, 3, 40)), "01:02");
}

TEST(DateFormattingTest, YearsHaveFourDigitsOrTwo) {
  EXPECT_EQ(Written(u"yyyy", Time(476, 9, 4, 0, 0, 0)), "0476");
  EXPECT_EQ(Written(u"yyyyy", Time(1999, 1, 1, 0, 0, 0)), "1999");
  EXPECT_EQ(Written(u"yy", Time(1905, 1, 1, 0, 0, 0)), "05");
}

struct ChoiceCase {
  FieldType type;
  std::u16string_view own;
  std::u16string_view table;
  std::u16string_view chosen;
};

constexpr ChoiceCase kChoiceCases[] = {
    {FieldType::kDate, u"", u"M/d/yyyy H:mm:ss", u"M/d/yyyy H:mm:ss"},
    {FieldType::kDate, u"yyyy-MM-dd HH:mm", u"M/d/yyyy H:mm:ss", u"yyyy-MM-dd HH:mm"},
    {FieldType::kDate, u"", u"", u"yyyy-MM-dd HH:mm:ss"},
    {FieldType::kDateOnly, u"", u"", u"yyyy-MM-dd"},
    {FieldType::kTimestampOffset, u"", u"M/d/yyyy H:mm:ss", u"M/d/yyyy H:mm:ss"},
    {FieldType::kDateOnly, u"", u"M/d/yyyy H:mm:ss", u"M/d/yyyy"},
    {FieldType::kDateOnly, u"", u"dd.MM.yyyy hh:mm", u"dd.MM.yyyy"},
    {FieldType::kDateOnly, u"", u"yyyy. MM. dd. H:mm", u"yyyy. MM. dd."},
    {FieldType::kDateOnly, u"", u"yyyy-MM-ddTHH:mm:ss", u"yyyy-MM-dd"},
    {FieldType::kDateOnly, u"", u"dd.MM.yyyy", u"dd.MM.yyyy"},
    {FieldType::kDateOnly, u"", u"H:mm", u"yyyy-MM-dd"},
    {FieldType::kDateOnly, u"d.M.yy", u"M/d/yyyy H:mm:ss", u"d.M.yy"},
    {FieldType::kTimeOnly, u"", u"M/d/yyyy H:mm:ss", u"H:mm:ss"},
    {FieldType::kTimeOnly, u"", u"dd.MM.yyyy hh:mm", u"hh:mm"},
    {FieldType::kTimeOnly, u"", u"dd.MM.yyyy", u"hh:mm:ss"},
    {FieldType::kTimeOnly, u"HH:mm", u"M/d/yyyy H:mm:ss", u"HH:mm"},
};

TEST(DateFormattingTest, AColumnTakesItsPartOfTheTablesPattern) {
  for (const ChoiceCase& c : kChoiceCases) {
    DateFieldFormat format;
    format.pattern = c.own;
    EXPECT_EQ(ToUtf8(WritingPattern(format, c.type, c.table)), ToUtf8(c.chosen))
        << ToUtf8(c.own) << " of " << ToUtf8(c.table);
  }
}

TEST(DateFormattingTest, TheFirstLetterTellsTheOrder) {
  EXPECT_EQ(OrderOfPattern(u"M/d/yyyy"), DateOrder::kMonthDayYear);
  EXPECT_EQ(OrderOfPattern(u"dd.MM.yyyy"), DateOrder::kDayMonthYear);
  EXPECT_EQ(OrderOfPattern(u"YYYY-MM-dd"), DateOrder::kYearMonthDay);
  EXPECT_EQ(OrderOfPattern(u"'on' d.M."), DateOrder::kAny);
  EXPECT_EQ(OrderOfPattern(u""), DateOrder::kAny);
}

TEST(DateFormattingTest, OffsetsHaveASignAndFourDigits) {
  const auto written = [](int minutes) {
    std::string bytes;
    AppendOffset(minutes, bytes);
    return bytes;
  };
  EXPECT_EQ(written(0), "+00:00");
  EXPECT_EQ(written(120), "+02:00");
  EXPECT_EQ(written(-210), "-03:30");
  EXPECT_EQ(written(-32768), "-546:08");
}

}  // namespace
}  // namespace TextFile
