// The short way of reading plain numbers gives what the exact way gives, on every text.
#include <gtest/gtest.h>

#include <charconv>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "inference/NumberParsing.h"
#include "inference/PlainCells.h"
#include "support/ShowText.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

constexpr FieldType kTypes[] = {FieldType::kSmallInteger, FieldType::kInteger,
                                FieldType::kBigInteger, FieldType::kSingle, FieldType::kDouble};

std::uint64_t BitsOf(FieldType type, const NumberValue& value) {
  if (type == FieldType::kSingle) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value.single, sizeof(bits));
    return bits;
  }
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value.real, sizeof(bits));
  return bits;
}

// UTF-16 and UTF-8 are read the same way, and whatever the processor can do gives what can be done
// everywhere.
void ExpectSamePlainNumber(char16_t decimalSymbol, const std::u16string& text) {
  const std::string bytes = quenra::test::ToUtf8(text);
  const std::string padded = bytes + std::string(kPlainNumberBytes, '7');
  PlainNumber ofUnits{};
  PlainNumber ofBytes{};
  PlainNumber quick{};
  const bool isPlain = ReadPlainNumber(decimalSymbol, text, ofUnits);
  ASSERT_EQ(ReadPlainNumber(decimalSymbol, bytes, ofBytes), isPlain) << Show(text);
  const std::string_view view = std::string_view(padded).substr(0, bytes.size());
  ASSERT_EQ(QuickestPlainCells().readNumber(decimalSymbol, view, quick), isPlain) << Show(text);
  if (!isPlain) return;
  for (const PlainNumber& number : {ofBytes, quick}) {
    ASSERT_EQ(number.digits, ofUnits.digits) << Show(text);
    ASSERT_EQ(number.decimals, ofUnits.decimals) << Show(text);
    ASSERT_EQ(number.hasDecimalSymbol, ofUnits.hasDecimalSymbol) << Show(text);
    ASSERT_EQ(number.negative, ofUnits.negative) << Show(text);
  }
}

void ExpectBothWaysAgree(const NumberFormat::Settings& settings, const std::u16string& text) {
  ExpectSamePlainNumber(settings.decimalSymbol, text);
  for (const FieldType type : kTypes) {
    NumberValue shortWay;
    NumberValue exactWay;
    const bool isNumber = NumberFormat::ConvertExactly(settings, text, type, exactWay);
    ASSERT_EQ(NumberFormat::Convert(settings, text, type, shortWay), isNumber) << Show(text);
    if (isNumber) {
      ASSERT_EQ(BitsOf(type, shortWay), BitsOf(type, exactWay)) << Show(text);
    }
    // What the bytes are read as, if they are, is the same.
    NumberValue ofBytes;
    if (NumberFormat::ConvertBytes(settings.decimalSymbol, quenra::test::ToUtf8(text), type,
                                   ofBytes)) {
      ASSERT_TRUE(isNumber) << Show(text);
      ASSERT_EQ(BitsOf(type, ofBytes), BitsOf(type, exactWay)) << Show(text);
    }
  }
}

NumberFormat::Settings WithDecimalSymbol(char16_t symbol) {
  NumberFormat::Settings settings;
  settings.decimalSymbol = symbol;
  return settings;
}

TEST(PlainNumberTest, LongNumbersAndExponentsAreReadFromBytes) {
  NumberValue value;
  EXPECT_TRUE(NumberFormat::ConvertBytes(u'.', "0.04250929956315441", FieldType::kDouble, value));
  EXPECT_EQ(value.real, 0.04250929956315441);
  EXPECT_TRUE(NumberFormat::ConvertBytes(u'.', "-7.5e-17", FieldType::kDouble, value));
  EXPECT_EQ(value.real, -7.5e-17);
  EXPECT_TRUE(NumberFormat::ConvertBytes(u',', "85,97005365533665", FieldType::kDouble, value));
  EXPECT_EQ(value.real, 85.97005365533665);
  EXPECT_TRUE(
      NumberFormat::ConvertBytes(u'.', "-9223372036854775808", FieldType::kBigInteger, value));
  EXPECT_EQ(value.integer, std::numeric_limits<std::int64_t>::min());
  EXPECT_FALSE(
      NumberFormat::ConvertBytes(u'.', "9223372036854775808", FieldType::kBigInteger, value));
  for (const char* other : {"1,234.5", " 12.5", "+12.5", "\"12.5\"", "12.5\xC2\xA0", "12.5x", ""})
    EXPECT_FALSE(NumberFormat::ConvertBytes(u'.', other, FieldType::kDouble, value)) << other;
  for (const char* other : {"1.234,5", "12.5", "12,5,"})
    EXPECT_FALSE(NumberFormat::ConvertBytes(u',', other, FieldType::kDouble, value)) << other;
}

TEST(PlainNumberTest, RandomTextsOfNumberCharactersReadTheSameBothWays) {
  std::mt19937 random(20240229);
  constexpr std::u16string_view kCharacters = u"00112233445566778899--+.,,.e E\u0660";
  for (const char16_t symbol : {u'.', u',', u'5', u'-', u';', u'\u066B'}) {
    const NumberFormat::Settings settings = WithDecimalSymbol(symbol);
    for (int i = 0; i < 20000; ++i) {
      std::u16string text;
      for (std::size_t length = random() % 24; length > 0; --length)
        text += kCharacters[random() % kCharacters.size()];
      ExpectBothWaysAgree(settings, text);
    }
  }
}

TEST(PlainNumberTest, RandomDecimalsReadTheSameBothWays) {
  std::mt19937_64 random(7);
  const NumberFormat::Settings settings = WithDecimalSymbol(u'.');
  for (int i = 0; i < 100000; ++i) {
    std::string digits = std::to_string(random() >> (random() % 60));
    if (random() % 2 == 0) digits.insert(random() % (digits.size() + 1), ".");
    if (random() % 3 == 0) digits.insert(0, "-");
    ExpectBothWaysAgree(settings, std::u16string(digits.begin(), digits.end()));
  }
}

TEST(PlainNumberTest, NumbersOfEveryLengthAndSymbolPositionReadTheSameBothWays) {
  const NumberFormat::Settings settings = WithDecimalSymbol(u',');
  for (std::size_t length = 0; length <= 24; ++length) {
    const std::u16string digits = std::u16string(u"123456789012345678901234", length);
    for (std::size_t at = 0; at <= length; ++at) {
      for (const char16_t other : {u',', u'.', u'-', u'+', u'e', u' ', u'\u0031', u'\u0131',
                                   u'\u0660', u'\u8031', u'\uFF11', u'\0'}) {
        std::u16string text = digits;
        text.insert(at, 1, other);
        ExpectBothWaysAgree(settings, text);
        ExpectBothWaysAgree(settings, u"-" + text);
      }
    }
  }
}

TEST(PlainNumberTest, RandomDoublesReadTheSameBothWays) {
  std::mt19937_64 random(11);
  const NumberFormat::Settings settings = WithDecimalSymbol(u'.');
  for (int i = 0; i < 100000; ++i) {
    const std::uint64_t bits = random();
    double number = 0;
    std::memcpy(&number, &bits, sizeof(number));
    char text[64];
    auto* const end = std::to_chars(text, text + sizeof(text), number).ptr;
    ExpectBothWaysAgree(settings, std::u16string(text, end));
  }
}

}  // namespace
}  // namespace TextFile
