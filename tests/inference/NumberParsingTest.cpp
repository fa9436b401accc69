#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/CharacterClasses.h"
#include "inference/NumberParsing.h"
#include "support/ShowText.h"
#include "support/UserLocale.h"

namespace TextFile {
namespace {

constexpr std::uint32_t kNew = kCurrentFieldTypeVersion;
constexpr std::uint32_t kOld = kOldFieldTypeVersion;
constexpr FieldType kNone = FieldType::kUndetermined;

class NumberParsingTest : public ::testing::Test {
 protected:
  static NumberFormat::Settings With(char16_t decimal) {
    NumberFormat::Settings settings;
    settings.decimalSymbol = decimal;
    return settings;
  }

  UserLocale locale_{u"en-US"};
  NumberFormat::Settings point_ = With(u'.');
  NumberFormat::Settings comma_ = With(u',');
};

// ---------------------------------------------------------------------------------------------
// Grouping
// ---------------------------------------------------------------------------------------------

TEST_F(NumberParsingTest, GroupingSymbolIsTheOtherOfPointAndComma) {
  EXPECT_EQ(With(u'.').GroupingSymbol(), u',');
  EXPECT_EQ(With(u',').GroupingSymbol(), u'.');
  for (const char16_t symbol : {u';', u'\'', u' ', u':', u'\u066B', u'5'})
    EXPECT_EQ(With(symbol).GroupingSymbol(), u'.') << static_cast<unsigned>(symbol);
}

TEST_F(NumberParsingTest, SwappingMakesAPointOfACommaAndACommaOfAnythingElse) {
  EXPECT_EQ(NumberFormat::SwappedDecimalSymbol(u','), u'.');
  EXPECT_EQ(NumberFormat::SwappedDecimalSymbol(u'.'), u',');
  EXPECT_EQ(NumberFormat::SwappedDecimalSymbol(u';'), u',');
}

struct GroupingCase {
  std::u16string_view text;
  bool valid;
  const char* why;
};

constexpr GroupingCase kPointGrouping[] = {
    {u"1,234", true, "one group"},
    {u"12,345", true, "a first group of two"},
    {u"123,456", true, "a first group of three"},
    {u"1,234,567.5", true, "groups and decimals"},
    {u"1,000,", true, "an empty last group is not counted"},
    {u"1,", true, "the same behind a single digit"},
    {u"1,000,.5", true, "the empty last group stands before the decimal symbol"},
    {u",123", true, "the first group may be empty"},
    {u",", true, "an empty first group, and an empty last one that is not counted"},
    {u"abc,def", true, "groups are counted in characters, whatever they are"},
    {u" 1,234", true, "a blank is one of the three characters of the first group"},
    {u"1234", false, "no grouping symbol at all"},
    {u"", false, "no grouping symbol at all"},
    {u"1.5", false, "no grouping symbol at all"},
    {u"1234,567", false, "a first group of four"},
    {u"-123,456", false, "the sign is the fourth character of the first group"},
    {u"  12,345", false, "so are blanks"},
    {u"1,5", false, "a last group of one"},
    {u"12,34", false, "a last group of two"},
    {u"1,2345", false, "a last group of four"},
    {u"1,234 ", false, "a blank is the fourth character of the last group"},
    {u"1,23,456", false, "a middle group of two"},
    {u"1,,", false, "only the last group may be empty"},
    {u"1,,234", false, "an empty middle group"},
    {u"1.2,345", false, "a grouping symbol behind the decimal symbol"},
    {u"1,234.5,6", false, "a grouping symbol behind the decimal symbol"},
    {u"1,234.5.6", false, "a second decimal symbol"},
};

TEST_F(NumberParsingTest, GroupingFollowsTheTable) {
  for (const GroupingCase& c : kPointGrouping) {
    SCOPED_TRACE(Show(c.text) + ": " + c.why);
    EXPECT_EQ(NumberFormat::IsValidGrouping(point_, c.text), c.valid);
    // The same with the two symbols exchanged.
    std::u16string mirrored(c.text);
    for (char16_t& unit : mirrored) unit = unit == u'.' ? u',' : unit == u',' ? u'.' : unit;
    EXPECT_EQ(NumberFormat::IsValidGrouping(comma_, mirrored), c.valid);
  }
}

// The rules read one after the other, without the scan's economy.
bool GroupingByTheRules(char16_t decimal, std::u16string_view text) {
  const char16_t grouping = decimal == u'.' ? u',' : u'.';
  const std::size_t point = text.find(decimal);
  const std::u16string_view whole = text.substr(0, point);
  const std::u16string_view rest =
      point == std::u16string_view::npos ? std::u16string_view() : text.substr(point + 1);
  if (rest.find(grouping) != std::u16string_view::npos) return false;
  if (rest.find(decimal) != std::u16string_view::npos) return false;
  std::vector<std::size_t> groups(1, 0);
  for (const char16_t unit : whole) {
    if (unit == grouping)
      groups.push_back(0);
    else
      ++groups.back();
  }
  if (groups.size() < 2) return false;
  if (groups.back() == 0) groups.pop_back();
  if (groups.front() > 3) return false;
  for (std::size_t i = 1; i < groups.size(); ++i)
    if (groups[i] != 3) return false;
  return true;
}

TEST_F(NumberParsingTest, GroupingAgreesWithTheRulesOnEveryShortText) {
  constexpr std::u16string_view kUnits = u"1,.";
  std::u16string text;
  for (int length = 0; length <= 9; ++length) {
    int count = 1;
    for (int i = 0; i < length; ++i) count *= 3;
    for (int n = 0; n < count; ++n) {
      text.clear();
      for (int rest = n, i = 0; i < length; ++i, rest /= 3)
        text += kUnits[static_cast<std::size_t>(rest % 3)];
      ASSERT_EQ(NumberFormat::IsValidGrouping(point_, text), GroupingByTheRules(u'.', text))
          << Show(text);
      ASSERT_EQ(NumberFormat::IsValidGrouping(comma_, text), GroupingByTheRules(u',', text))
          << Show(text);
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Conversion
// ---------------------------------------------------------------------------------------------

struct IntegerCase {
  std::u16string_view text;
  bool small;  // what each of the three types makes of it
  bool whole;
  bool big;
  std::int64_t value;
  const char* why;
};

constexpr IntegerCase kIntegerCases[] = {
    {u"0", true, true, true, 0, "zero"},
    {u"-0", true, true, true, 0, "zero with a sign"},
    {u"007", true, true, true, 7, "leading zeros"},
    {u"+7", true, true, true, 7, "one plus sign is skipped"},
    {u"+-5", true, true, true, -5, "the minus sign belongs to the number behind the plus sign"},
    {u" 42 ", true, true, true, 42, "white space around it"},
    {u"\u00A0\t42\u3000", true, true, true, 42, "white space beyond ASCII"},
    {u"32767", true, true, true, 32767, "largest of 16 bits"},
    {u"-32768", true, true, true, -32768, "smallest of 16 bits"},
    {u"32768", false, true, true, 32768, "one past 16 bits"},
    {u"-32769", false, true, true, -32769, "one past 16 bits"},
    {u"2147483647", false, true, true, 2147483647, "largest of 32 bits"},
    {u"-2147483648", false, true, true, -2147483648LL, "smallest of 32 bits"},
    {u"2147483648", false, false, true, 2147483648LL, "one past 32 bits"},
    {u"-2147483649", false, false, true, -2147483649LL, "one past 32 bits"},
    {u"9223372036854775807", false, false, true, 9223372036854775807LL, "largest of 64 bits"},
    {u"-9223372036854775808", false, false, true, -9223372036854775807LL - 1,
     "smallest of 64 bits"},
    {u"9223372036854775808", false, false, false, 0, "one past 64 bits"},
    {u"-9223372036854775809", false, false, false, 0, "one past 64 bits"},
    {u"99999999999999999999999999", false, false, false, 0, "far past 64 bits"},
    {u"00000000000000000000000000000000000001", true, true, true, 1, "zeros do not overflow"},
    {u"1,234", true, true, true, 1234, "grouped"},
    {u"1,000,", true, true, true, 1000, "an empty last group"},
    {u"1,", true, true, true, 1, "an empty last group"},
    {u",123", true, true, true, 123, "an empty first group"},
    {u"-12,345", true, true, true, -12345, "sign and two digits make a group of three"},
    {u"-123,456", false, false, false, 0, "the sign makes the first group four characters"},
    {u"1,000 ", false, false, false, 0, "the blank makes the last group four characters"},
    {u" 123,456", false, false, false, 0, "the blank makes the first group four characters"},
    {u" 12,345", true, true, true, 12345, "blank and two digits make a group of three"},
    {u"", false, false, false, 0, "nothing"},
    {u"  ", false, false, false, 0, "nothing but blanks"},
    {u"+", false, false, false, 0, "a sign alone"},
    {u"-", false, false, false, 0, "a sign alone"},
    {u",", false, false, false, 0, "grouping alone"},
    {u"++7", false, false, false, 0, "only one plus sign is skipped"},
    {u"-+7", false, false, false, 0, "a plus sign behind the minus sign"},
    {u"--7", false, false, false, 0, "two minus signs"},
    {u"- 7", false, false, false, 0, "a blank behind the sign"},
    {u"+ 7", false, false, false, 0, "a blank behind the sign"},
    {u"1 000", false, false, false, 0, "a blank inside"},
    {u"1.0", false, false, false, 0, "a decimal symbol, even before zero"},
    {u"7.", false, false, false, 0, "a decimal symbol with nothing behind it"},
    {u"4e2", false, false, false, 0, "an exponent"},
    {u"0x10", false, false, false, 0, "no hexadecimal numbers"},
    {u"12abc", false, false, false, 0, "something left over"},
    {u"\u0664\u0662", false, false, false, 0, "digits beyond 7 bits"},
    {u"\uFF14\uFF12", false, false, false, 0, "digits beyond 7 bits"},
    {u"\u0131", false, false, false, 0, "is '1' only if the high byte is dropped"},
    {std::u16string_view(u"1\u00002", 3), false, false, false, 0, "a zero inside"},
};

TEST_F(NumberParsingTest, ConvertsWholeNumbersWithinTheRangeOfTheType) {
  for (const IntegerCase& c : kIntegerCases) {
    SCOPED_TRACE(Show(c.text) + ": " + c.why);
    const auto expect = [&](FieldType type, bool converts) {
      NumberValue value;
      ASSERT_EQ(NumberFormat::Convert(point_, c.text, type, value), converts)
          << "type " << static_cast<int>(type);
      if (converts) {
        EXPECT_EQ(value.integer, c.value);
      }
    };
    expect(FieldType::kSmallInteger, c.small);
    expect(FieldType::kInteger, c.whole);
    expect(FieldType::kBigInteger, c.big);
  }
}

struct RealCase {
  std::u16string_view text;
  bool converts;
  double value;
  const char* why;
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr RealCase kRealCases[] = {
    {u"1.5", true, 1.5, "a fraction"},
    {u".5", true, 0.5, "nothing before the decimal symbol"},
    {u"5.", true, 5.0, "nothing behind it"},
    {u"-.5", true, -0.5, "a sign before it"},
    {u"+1.5", true, 1.5, "a plus sign"},
    {u"+-5.5", true, -5.5, "a plus sign before the minus sign"},
    {u"4e2", true, 400.0, "an exponent"},
    {u"4E+2", true, 400.0, "an exponent with a sign"},
    {u"4e-2", true, 0.04, "an exponent with a sign"},
    {u" 1.5\t", true, 1.5, "white space around it"},
    {u"1,234,567.5", true, 1234567.5, "grouped"},
    {u"1,234", true, 1234.0, "grouped"},
    {u"1,000,.5", true, 1000.5, "an empty group before the decimal symbol"},
    {u"12,345.", true, 12345.0, "grouped, nothing behind the decimal symbol"},
    {u"0.1", true, 0.1, "rounded correctly"},
    {u"9007199254740993", true, 9007199254740992.0, "a tie goes to the even neighbour"},
    {u"1.7976931348623157e308", true, 1.7976931348623157e308, "the largest"},
    {u"2.2250738585072014e-308", true, 2.2250738585072014e-308, "the smallest normal one"},
    {u"1e-310", true, 1e-310, "a denormal"},
    {u"4.9e-324", true, 4.9406564584124654e-324, "the smallest denormal"},
    {u"0e999999", true, 0.0, "zero, whatever the exponent"},
    {u"inf", true, kInfinity, "a word for infinity"},
    {u"-infinity", true, -kInfinity, "a word for infinity"},
    {u"INF", true, kInfinity, "a word for infinity"},
    {u"1e400", false, 0, "beyond the largest"},
    {u"-1e400", false, 0, "beyond the largest"},
    {u"1e-400", false, 0, "below the smallest"},
    {u"1.7976931348623159e308", false, 0, "rounds beyond the largest"},
    {u"1e99999999999999999999", false, 0, "an exponent beyond every integer"},
    {u"", false, 0, "nothing"},
    {u" ", false, 0, "nothing but a blank"},
    {u".", false, 0, "no digit"},
    {u"e5", false, 0, "no digit"},
    {u"1e", false, 0, "no digit in the exponent"},
    {u"1e+", false, 0, "no digit in the exponent"},
    {u"1.5.2", false, 0, "two decimal symbols"},
    {u"++1.5", false, 0, "two plus signs"},
    {u"- 7", false, 0, "a blank behind the sign"},
    {u"1,5", false, 0, "a last group of one"},
    {u"12,34", false, 0, "a last group of two"},
    {u"-123,456.5", false, 0, "the sign makes the first group four characters"},
    {u"1,234.5,", false, 0, "a grouping symbol behind the decimal symbol"},
    {u"0x1p3", false, 0, "no hexadecimal numbers"},
    {u"1.5f", false, 0, "something left over"},
    {u"$1.5", false, 0, "a currency symbol"},
    {u"1\u00BD", false, 0, "a character beyond 7 bits"},
};

TEST_F(NumberParsingTest, ConvertsDoubles) {
  for (const RealCase& c : kRealCases) {
    SCOPED_TRACE(Show(c.text) + ": " + c.why);
    NumberValue value;
    ASSERT_EQ(NumberFormat::Convert(point_, c.text, FieldType::kDouble, value), c.converts);
    if (c.converts) {
      EXPECT_EQ(value.real, c.value);
    }
  }
}

TEST_F(NumberParsingTest, ConvertsWordsForNotANumber) {
  for (const std::u16string_view text : {u"nan", u"NaN", u"-nan", u" nan "}) {
    NumberValue value;
    ASSERT_TRUE(NumberFormat::Convert(point_, text, FieldType::kDouble, value)) << Show(text);
    EXPECT_TRUE(std::isnan(value.real));
    ASSERT_TRUE(NumberFormat::Convert(point_, text, FieldType::kSingle, value)) << Show(text);
    EXPECT_TRUE(std::isnan(value.single));
  }
}

TEST_F(NumberParsingTest, ConvertsSinglesInTheirOwnRange) {
  const auto single = [&](std::u16string_view text, float& value) {
    NumberValue number;
    const bool converted = NumberFormat::Convert(point_, text, FieldType::kSingle, number);
    value = number.single;
    return converted;
  };
  float value = 0;
  ASSERT_TRUE(single(u"1.5", value));
  EXPECT_EQ(value, 1.5f);
  ASSERT_TRUE(single(u"0.1", value));
  EXPECT_EQ(value, 0.1f);
  ASSERT_TRUE(single(u"16777217", value));
  EXPECT_EQ(value, 16777216.0f);
  ASSERT_TRUE(single(u"3.4028235e38", value));
  EXPECT_EQ(value, std::numeric_limits<float>::max());
  ASSERT_TRUE(single(u"1e-45", value));
  EXPECT_EQ(value, std::numeric_limits<float>::denorm_min());
  EXPECT_FALSE(single(u"3.5e38", value)) << "beyond the largest";
  EXPECT_FALSE(single(u"1e-50", value)) << "below the smallest";
  EXPECT_FALSE(single(u"abc", value));
}

TEST_F(NumberParsingTest, ZeroKeepsItsSign) {
  for (const std::u16string_view text : {u"-0", u"-0.0", u"-00000000.0000000", u"-0e5", u" -0 ",
                                         u"-0,000", u"-0.00000000000000000000000"}) {
    for (const FieldType type : {FieldType::kSingle, FieldType::kDouble}) {
      for (const bool plainToo : {true, false}) {
        NumberValue value;
        ASSERT_TRUE(plainToo ? NumberFormat::Convert(point_, text, type, value)
                             : NumberFormat::ConvertOther(point_, text, type, value));
        const double real = type == FieldType::kSingle ? double{value.single} : value.real;
        EXPECT_TRUE(real == 0 && std::signbit(real)) << Show(text);
      }
    }
  }
}

TEST_F(NumberParsingTest, RefusesTypesThatAreNotNumeric) {
  NumberValue value;
  for (const FieldType type :
       {FieldType::kUndetermined, FieldType::kString, FieldType::kDate, FieldType::kObjectId,
        FieldType::kGuid, FieldType::kGlobalId, FieldType::kDateOnly, FieldType::kTimeOnly,
        FieldType::kTimestampOffset, static_cast<FieldType>(7), static_cast<FieldType>(99)})
    EXPECT_FALSE(NumberFormat::Convert(point_, u"1", type, value)) << static_cast<int>(type);
}

TEST_F(NumberParsingTest, ConvertsWithADecimalComma) {
  const auto real = [&](std::u16string_view text) {
    NumberValue value;
    return NumberFormat::Convert(comma_, text, FieldType::kDouble, value) ? value.real : -99.0;
  };
  EXPECT_EQ(real(u"1,5"), 1.5);
  EXPECT_EQ(real(u"1.234.567,5"), 1234567.5);
  EXPECT_EQ(real(u"1.234"), 1234.0) << "the point groups";
  EXPECT_EQ(real(u",5"), 0.5);
  EXPECT_EQ(real(u"1.5"), -99.0) << "a last group of one";
  EXPECT_EQ(real(u"1,5,2"), -99.0);
  EXPECT_EQ(real(u"1,5.2"), -99.0);
}

TEST_F(NumberParsingTest, ConvertsWithADecimalSymbolThatIsNeither) {
  const NumberFormat::Settings semicolon = With(u';');
  NumberValue value;
  ASSERT_TRUE(NumberFormat::Convert(semicolon, u"1;5", FieldType::kDouble, value));
  EXPECT_EQ(value.real, 1.5);
  ASSERT_TRUE(NumberFormat::Convert(semicolon, u"1.234;5", FieldType::kDouble, value));
  EXPECT_EQ(value.real, 1234.5) << "the point groups";
  ASSERT_TRUE(NumberFormat::Convert(semicolon, u"1.500", FieldType::kDouble, value));
  EXPECT_EQ(value.real, 1500.0);
  EXPECT_FALSE(NumberFormat::Convert(semicolon, u"1.5", FieldType::kDouble, value));
  EXPECT_FALSE(NumberFormat::Convert(semicolon, u"1,5", FieldType::kDouble, value))
      << "the comma has no meaning";
}

TEST_F(NumberParsingTest, ConvertsNumbersOfManyDigits) {
  NumberValue value;
  const std::u16string zeros(5000, u'0');
  ASSERT_TRUE(NumberFormat::Convert(point_, zeros + u"7", FieldType::kSmallInteger, value));
  EXPECT_EQ(value.integer, 7);
  ASSERT_TRUE(NumberFormat::Convert(point_, u"1." + zeros + u"1", FieldType::kDouble, value));
  EXPECT_EQ(value.real, 1.0);
  ASSERT_TRUE(NumberFormat::Convert(point_, u"0." + zeros.substr(0, 299) + u"1", FieldType::kDouble,
                                    value));
  EXPECT_EQ(value.real, 1e-300);
  const std::u16string nines(400, u'9');
  EXPECT_FALSE(NumberFormat::Convert(point_, nines, FieldType::kDouble, value));
  EXPECT_FALSE(NumberFormat::Convert(point_, nines, FieldType::kBigInteger, value));
  ASSERT_TRUE(NumberFormat::Convert(point_, nines + u"e-400", FieldType::kDouble, value));
  EXPECT_EQ(value.real, 1.0) << "the exponent brings it back into range";
  const std::u16string wide(1000, u' ');
  ASSERT_TRUE(NumberFormat::Convert(point_, wide + u"42" + wide, FieldType::kInteger, value));
  EXPECT_EQ(value.integer, 42);
}

// ---------------------------------------------------------------------------------------------
// Classification
// ---------------------------------------------------------------------------------------------

struct ClassCase {
  std::u16string_view text;
  FieldType current;  // with field type version 320 and above
  FieldType old;      // below
  const char* why;
};

constexpr ClassCase kClassCases[] = {
    {u"42", FieldType::kInteger, FieldType::kInteger, "a whole number"},
    {u" 42 ", FieldType::kInteger, FieldType::kInteger, "blanks around it"},
    {u"\t42\u00A0", FieldType::kInteger, FieldType::kInteger, "white space around it"},
    {u"7", FieldType::kInteger, FieldType::kInteger, "never 16 bits, however small"},
    {u"+7", FieldType::kInteger, FieldType::kInteger, "a plus sign"},
    {u"+-5", FieldType::kInteger, FieldType::kInteger, "a plus sign before a minus sign"},
    {u"-0", FieldType::kInteger, FieldType::kInteger, "equal to 0"},
    {u"007", FieldType::kInteger, FieldType::kInteger, "leading zeros"},
    {u"1,234", FieldType::kInteger, FieldType::kInteger, "grouped"},
    {u"1,000,", FieldType::kInteger, FieldType::kInteger, "an empty last group"},
    {u"1,", FieldType::kInteger, FieldType::kInteger, "an empty last group"},
    {u"1,000 ", FieldType::kInteger, FieldType::kInteger, "trimmed before the groups are judged"},
    {u" 123,456", FieldType::kInteger, FieldType::kInteger, "trimmed before they are judged"},
    {u"2147483647", FieldType::kInteger, FieldType::kInteger, "largest of 32 bits"},
    {u"-2147483648", FieldType::kInteger, FieldType::kInteger, "smallest of 32 bits"},
    {u"2147483648", FieldType::kBigInteger, FieldType::kDouble, "one past 32 bits"},
    {u"-2147483649", FieldType::kBigInteger, FieldType::kDouble, "one past 32 bits"},
    {u"9007199254740993", FieldType::kBigInteger, FieldType::kDouble,
     "the same once both are doubles"},
    {u"9223372036854775807", FieldType::kBigInteger, FieldType::kDouble, "largest of 64 bits"},
    {u"-9223372036854775808", FieldType::kBigInteger, FieldType::kDouble, "smallest of 64 bits"},
    {u"9223372036854775808", FieldType::kDouble, FieldType::kDouble, "one past 64 bits"},
    {u"1.5", FieldType::kDouble, FieldType::kDouble, "a fraction"},
    {u"1.0", FieldType::kDouble, FieldType::kDouble, "a decimal symbol, even before zero"},
    {u"5.", FieldType::kDouble, FieldType::kDouble, "a decimal symbol"},
    {u".5", FieldType::kDouble, FieldType::kDouble, "a decimal symbol"},
    {u"4e2", FieldType::kDouble, FieldType::kDouble, "whole numbers have no exponent"},
    {u"4E2", FieldType::kDouble, FieldType::kDouble, "whole numbers have no exponent"},
    {u"1e-310", FieldType::kDouble, FieldType::kDouble, "a denormal"},
    {u"1,234.5", FieldType::kDouble, FieldType::kDouble, "grouped"},
    {u"", kNone, kNone, "nothing"},
    {u"  ", kNone, kNone, "nothing but blanks"},
    {u"abc", kNone, kNone, "letters"},
    {u"inf", kNone, kNone, "a word that only conversion knows"},
    {u"nan", kNone, kNone, "a word that only conversion knows"},
    {u"infinity", kNone, kNone, "a word that only conversion knows"},
    {u"$5", kNone, kNone, "a currency symbol"},
    {u"1 000", kNone, kNone, "a blank inside"},
    {u"0x10", kNone, kNone, "a letter other than e"},
    {u"1f", kNone, kNone, "a letter other than e"},
    {u"e", kNone, kNone, "allowed characters, but no number"},
    {u"E5", kNone, kNone, "allowed characters, but no number"},
    {u"+", kNone, kNone, "allowed characters, but no number"},
    {u"-", kNone, kNone, "allowed characters, but no number"},
    {u".", kNone, kNone, "allowed characters, but no number"},
    {u",", kNone, kNone, "allowed characters, but no number"},
    {u"++7", kNone, kNone, "two plus signs"},
    {u"1-2", kNone, kNone, "allowed characters, but no number"},
    {u"1.2.3", kNone, kNone, "two decimal symbols"},
    {u"1,5", kNone, kNone, "a last group of one"},
    {u"12,34", kNone, kNone, "a last group of two"},
    {u"-123,456", kNone, kNone, "the sign makes the first group four characters"},
    {u"1e400", kNone, kNone, "out of range"},
    {u"1e-400", kNone, kNone, "out of range"},
    {u"\u0661", kNone, kNone, "a digit beyond 7 bits"},
};

TEST_F(NumberParsingTest, ClassifiesByTheTable) {
  for (const ClassCase& c : kClassCases) {
    SCOPED_TRACE(Show(c.text) + ": " + c.why);
    EXPECT_EQ(NumberFormat::Classify(point_, c.text, kNew), c.current);
    EXPECT_EQ(NumberFormat::Classify(point_, c.text, kFirstVersionWithNewTypes), c.current);
    EXPECT_EQ(NumberFormat::Classify(point_, c.text, kOld), c.old);
    EXPECT_EQ(NumberFormat::Classify(point_, c.text, kFirstVersionWithNewTypes - 1), c.old);
  }
}

TEST_F(NumberParsingTest, ClassifiesWithOtherDecimalSymbols) {
  EXPECT_EQ(NumberFormat::Classify(comma_, u"1,5", kNew), FieldType::kDouble);
  EXPECT_EQ(NumberFormat::Classify(comma_, u"1.234", kNew), FieldType::kInteger);
  EXPECT_EQ(NumberFormat::Classify(comma_, u"1.234.567,5", kNew), FieldType::kDouble);
  EXPECT_EQ(NumberFormat::Classify(comma_, u"1.5", kNew), kNone);
  const NumberFormat::Settings semicolon = With(u';');
  EXPECT_EQ(NumberFormat::Classify(semicolon, u"1;5", kNew), kNone)
      << "not one of the characters that make numbers";
  EXPECT_EQ(NumberFormat::Classify(semicolon, u"1.234", kNew), FieldType::kInteger);
}

// What classifies must convert to the type found, once it has no white space around it.
TEST_F(NumberParsingTest, RandomTextsClassifyOnlyAsWhatTheyConvertTo) {
  constexpr std::u16string_view kUnits = u"0123456789..,,--++eE x\u00A0";
  std::mt19937 random(20240229);
  std::u16string text;
  for (int n = 0; n < 200000; ++n) {
    text.clear();
    for (auto length = random() % 12; length > 0; --length)
      text += kUnits[random() % kUnits.size()];
    for (const NumberFormat::Settings& settings : {point_, comma_}) {
      const FieldType type = NumberFormat::Classify(settings, text, kNew);
      ASSERT_TRUE(type == kNone || type == FieldType::kInteger || type == FieldType::kBigInteger ||
                  type == FieldType::kDouble)
          << Show(text);
      if (type == kNone) continue;
      NumberValue value;
      ASSERT_TRUE(NumberFormat::Convert(settings, quenra::TrimWhiteSpace(text), type, value))
          << Show(text);
    }
  }
}

TEST_F(NumberParsingTest, WholeNumbersPrintedAndReadBackAreTheSame) {
  std::mt19937_64 random(7);
  for (int n = 0; n < 100000; ++n) {
    const auto number = static_cast<std::int64_t>(random()) >> (random() % 64);
    const std::string digits = std::to_string(number);
    const std::u16string text(digits.begin(), digits.end());
    NumberValue value;
    ASSERT_TRUE(NumberFormat::Convert(point_, text, FieldType::kBigInteger, value)) << digits;
    ASSERT_EQ(value.integer, number);
    const bool fits32 = number >= std::numeric_limits<std::int32_t>::min() &&
                        number <= std::numeric_limits<std::int32_t>::max();
    const bool fits16 = number >= std::numeric_limits<std::int16_t>::min() &&
                        number <= std::numeric_limits<std::int16_t>::max();
    ASSERT_EQ(NumberFormat::Convert(point_, text, FieldType::kInteger, value), fits32) << digits;
    ASSERT_EQ(NumberFormat::Convert(point_, text, FieldType::kSmallInteger, value), fits16)
        << digits;
    ASSERT_EQ(NumberFormat::Classify(point_, text, kNew),
              fits32 ? FieldType::kInteger : FieldType::kBigInteger)
        << digits;
  }
}

TEST_F(NumberParsingTest, DoublesPrintedAndReadBackAreTheSame) {
  std::mt19937_64 random(11);
  for (int n = 0; n < 100000; ++n) {
    const std::uint64_t bits = random();
    double number = 0;
    static_assert(sizeof(number) == sizeof(bits));
    std::memcpy(&number, &bits, sizeof(number));
    if (!std::isfinite(number)) continue;
    char printed[64];
    const char* end = std::to_chars(printed, printed + sizeof(printed), number).ptr;
    const std::string digits(static_cast<const char*>(printed), end);
    const std::u16string text(digits.begin(), digits.end());
    NumberValue value;
    ASSERT_TRUE(NumberFormat::Convert(point_, text, FieldType::kDouble, value)) << Show(text);
    ASSERT_EQ(value.real, number) << Show(text);
  }
}

}  // namespace
}  // namespace TextFile
