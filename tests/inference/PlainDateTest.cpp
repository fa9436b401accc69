// The short way of reading plain dates gives what the exact way gives, on every text.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "inference/DateParsing.h"
#include "inference/PlainCells.h"
#include "support/ShowText.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

constexpr FieldType kTypes[] = {FieldType::kDate, FieldType::kDateOnly, FieldType::kTimeOnly,
                                FieldType::kTimestampOffset};
constexpr DateOrder kOrders[] = {DateOrder::kAny, DateOrder::kMonthDayYear,
                                 DateOrder::kDayMonthYear, DateOrder::kYearMonthDay};

// Whether the text is a plain date of any of the formats.
bool ExpectBothWaysAgree(const std::u16string& text) {
  bool plain = false;
  const std::string bytes = quenra::test::ToUtf8(text);
  const std::string padded = bytes + std::string(kPlainDateBytes, '7');
  const std::string_view view = std::string_view(padded).substr(0, bytes.size());
  for (const FieldType type : kTypes) {
    for (const DateOrder order : kOrders) {
      for (const std::uint32_t version : {310u, 340u}) {
        DateFieldFormat format;
        format.type = type;
        format.order = order;
        format.version = version;
        ParsedDateTime exact;
        PlainDate date;
        PlainDate ofBytes;
        PlainDate quick;
        if (!HasPlainDates(format)) continue;
        const bool isPlain = ReadPlainDate(format, text, date);
        EXPECT_EQ(ReadPlainDate(format, bytes, ofBytes), isPlain) << Show(text);
        EXPECT_EQ(QuickestPlainCells().readDate(format, view, quick), isPlain) << Show(text);
        if (!isPlain) continue;
        plain = true;
        for (const PlainDate& other : {ofBytes, quick}) {
          EXPECT_EQ(other.day.year, date.day.year) << Show(text);
          EXPECT_EQ(other.day.month, date.day.month) << Show(text);
          EXPECT_EQ(other.day.day, date.day.day) << Show(text);
          EXPECT_EQ(other.seconds, date.seconds) << Show(text);
        }
        EXPECT_TRUE(ParseDateTime(format, text, exact)) << Show(text);
        const SYSTEMTIME& time = exact.time;
        EXPECT_EQ(date.day.year, time.wYear) << Show(text);
        EXPECT_EQ(date.day.month, time.wMonth) << Show(text);
        EXPECT_EQ(date.day.day, time.wDay) << Show(text);
        EXPECT_EQ(date.seconds, (time.wHour * 60 + time.wMinute) * 60 + time.wSecond) << Show(text);
        EXPECT_EQ(time.wMilliseconds, 0) << Show(text);
        EXPECT_FALSE(exact.fractionalSeconds) << Show(text);
        EXPECT_EQ(exact.offsetMinutes, 0) << Show(text);
      }
    }
  }
  return plain;
}

TEST(PlainDateTest, OrdinaryDatesTakeTheShortWay) {
  for (const char16_t* text : {u"2024-02-29", u"29.02.2024", u"02/29/2024", u"2024-02-29 10:30",
                               u"2024.02.29T23:59:59", u"29-02-0024 00:00:00"})
    EXPECT_TRUE(ExpectBothWaysAgree(text)) << Show(text);
}

TEST(PlainDateTest, DatesWithOneCharacterChangedAreReadTheSameBothWays) {
  constexpr std::u16string_view kOthers = u"0123459 -./:TZ+\u0660\u0130";
  for (const std::u16string whole :
       {u"2024-02-29 10:30:00", u"31.12.1899T23:59", u"10/11/2012", u"2024-10-05"}) {
    for (std::size_t i = 0; i < whole.size(); ++i) {
      for (const char16_t other : kOthers) {
        std::u16string text = whole;
        text[i] = other;
        ExpectBothWaysAgree(text);
        text = whole;
        text.insert(i, 1, other);
        ExpectBothWaysAgree(text);
      }
      ExpectBothWaysAgree(whole.substr(0, i));
      ExpectBothWaysAgree(whole.substr(i));
    }
  }
}

TEST(PlainDateTest, RandomDigitsAreReadTheSameBothWays) {
  std::mt19937 random(3);
  int plain = 0;
  for (int i = 0; i < 20000; ++i) {
    std::u16string text = i % 2 == 0 ? u"dddd-dd-dd dd:dd:dd" : u"dd.dd.ddddTdd:dd";
    for (char16_t& unit : text)
      if (unit == u'd')
        unit = static_cast<char16_t>(u'0' + random() % (random() % 4 == 0 ? 10 : 3));
    if (ExpectBothWaysAgree(text)) ++plain;
  }
  EXPECT_GT(plain, 100);
}

}  // namespace
}  // namespace TextFile
