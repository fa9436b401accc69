#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "inference/NumberFormatting.h"

namespace TextFile::NumberFormat {
namespace {

Settings WithDigits(std::uint32_t digits, char16_t decimal = u'.') {
  Settings settings;
  settings.decimalSymbol = decimal;
  settings.digits = digits;
  settings.specified = Settings::kNumberDigits;
  return settings;
}

Settings Plain(char16_t decimal = u'.') {
  Settings settings;
  settings.decimalSymbol = decimal;
  // What the locale says of digits is not what the section says.
  settings.digits = 2;
  settings.specified = 0;
  return settings;
}

std::string Written(const Settings& settings, FieldType type, double value) {
  NumberValue number;
  if (type == FieldType::kSingle)
    number.single = static_cast<float>(value);
  else
    number.real = value;
  std::string bytes = "<";
  AppendNumber(settings, type, number, bytes);
  return bytes;
}

std::string Whole(FieldType type, std::int64_t value) {
  NumberValue number;
  number.integer = value;
  std::string bytes;
  AppendNumber(Plain(u','), type, number, bytes);
  return bytes;
}

TEST(NumberFormattingTest, WholeNumbersHaveNeitherGroupingNorDecimals) {
  EXPECT_EQ(Whole(FieldType::kSmallInteger, -32768), "-32768");
  EXPECT_EQ(Whole(FieldType::kInteger, 2147483647), "2147483647");
  EXPECT_EQ(Whole(FieldType::kObjectId, 1234567), "1234567");
  EXPECT_EQ(Whole(FieldType::kBigInteger, std::numeric_limits<std::int64_t>::min()),
            "-9223372036854775808");
}

TEST(NumberFormattingTest, WithoutNumberDigitsASingleHas7AndADouble15) {
  EXPECT_EQ(Written(Plain(), FieldType::kSingle, 1.5), "<1.5000000");
  EXPECT_EQ(Written(Plain(), FieldType::kDouble, 2), "<2.000000000000000");
}

TEST(NumberFormattingTest, NumberDigitsCountForBothKinds) {
  EXPECT_EQ(Written(WithDigits(3), FieldType::kSingle, 1.5), "<1.500");
  EXPECT_EQ(Written(WithDigits(3), FieldType::kDouble, -1234567.0625), "<-1234567.062");
  EXPECT_EQ(Written(WithDigits(0), FieldType::kDouble, 2.75), "<3");
}

TEST(NumberFormattingTest, TheDecimalSymbolIsTheTables) {
  EXPECT_EQ(Written(WithDigits(2, u','), FieldType::kDouble, 1234.5), "<1234,50");
  EXPECT_EQ(Written(WithDigits(1, u'\u066B'), FieldType::kDouble, 1.5),
            "<1\xD9\xAB"
            "5");
}

TEST(NumberFormattingTest, TheLargestNumberAndManyDigitsFitTheBuffer) {
  const std::string huge =
      Written(WithDigits(4'000'000'000), FieldType::kDouble, -std::numeric_limits<double>::max());
  EXPECT_EQ(huge.substr(0, 8), "<-179769");
  EXPECT_EQ(huge.find('.'), 311u);
  const std::string tiny = Written(WithDigits(2000), FieldType::kDouble, 4.9e-324);
  EXPECT_NE(tiny.find_first_of("123456789"), std::string::npos);
}

TEST(NumberFormattingTest, WordsStandForWhatIsNoNumber) {
  EXPECT_EQ(Written(Plain(), FieldType::kDouble, std::numeric_limits<double>::infinity()), "<inf");
  EXPECT_EQ(Written(Plain(), FieldType::kDouble, std::nan("")), "<nan");
}

struct WidthCase {
  double value;
  std::size_t width;
  const char* text;  // null: does not fit
};

constexpr WidthCase kWidthCases[] = {
    {1.5, 20, "1.500000000000000"},
    {1.5, 5, "1.500"},
    {1.5, 3, "1.5"},
    {1.25, 2, "1"},
    {-1.25, 2, "-1"},
    {12.25, 1, nullptr},
    {9.96, 3, "10"},  // "10.0" is what rounding makes of it
    {99.96, 2, nullptr},
    {0.5, 0, nullptr},
};

TEST(NumberFormattingTest, DecimalsGoUntilTheNumberFits) {
  for (const WidthCase& c : kWidthCases) {
    SCOPED_TRACE(std::to_string(c.value) + " in " + std::to_string(c.width));
    NumberValue number;
    number.real = c.value;
    std::string bytes = "<";
    EXPECT_EQ(AppendNumberWithin(Plain(), FieldType::kDouble, number, c.width, bytes),
              c.text != nullptr);
    EXPECT_EQ(bytes, "<" + std::string(c.text != nullptr ? c.text : ""));
  }
}

TEST(NumberFormattingTest, AWholeNumberThatIsTooLongIsNotCut) {
  NumberValue number;
  number.integer = 12345;
  std::string bytes;
  EXPECT_FALSE(AppendNumberWithin(Plain(), FieldType::kInteger, number, 4, bytes));
  EXPECT_EQ(bytes, "");
  EXPECT_TRUE(AppendNumberWithin(Plain(), FieldType::kInteger, number, 5, bytes));
  EXPECT_EQ(bytes, "12345");
}

}  // namespace
}  // namespace TextFile::NumberFormat
