// The short way of writing numbers gives what the C++ library gives, for every number.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "inference/Digits.h"
#include "inference/NumberFormatting.h"

namespace TextFile {
namespace {

constexpr int kRounds = 60'000;

template <class... How>
std::string Expected(How... how) {
  char text[400];
  return {text, std::to_chars(text, text + sizeof text, how...).ptr};
}

std::string Whole(std::uint64_t value) {
  char text[kWholeRoom];
  return {text, WriteWhole(value, text)};
}

std::string Integer(std::int64_t value) {
  char text[kWholeRoom];
  return {text, WriteInteger(value, text)};
}

// Empty when the number is left to the exact way.
std::string Fixed(double value, int digits) {
  char text[kFixedRoom];
  char* const end = WriteFixed(value, digits, '.', text);
  return end == nullptr ? std::string() : std::string(text, end);
}

void ExpectFixed(double value, int digits) {
  const std::string text = Fixed(value, digits);
  if (text.empty() && !(std::fabs(value) < 18446744073709551616.0)) return;
#ifdef __SIZEOF_INT128__
  ASSERT_EQ(text, Expected(value, std::chars_format::fixed, digits)) << digits;
#else
  ASSERT_EQ(text, "");
#endif
}

void ExpectFixedWithAllDigits(double value) {
  for (int digits = 0; digits <= kMostPlainDigits; ++digits) {
    ExpectFixed(value, digits);
    ExpectFixed(-value, digits);
  }
}

TEST(DigitsTest, EveryGroupOfFourDigitsIsRight) {
  for (std::uint32_t value = 0; value < 10'000; ++value) {
    char text[8];
    StoreEight(EightDigits(value * 10'000 + (9'999 - value)), text);
    const std::string digits = Expected(100'000'000 + value * 10'000 + (9'999 - value));
    ASSERT_EQ(std::string(text, 8), digits.substr(1));
  }
}

TEST(DigitsTest, WholeNumbersOfEveryLengthAreRight) {
  std::mt19937_64 random(1);
  for (int length = 0; length <= 64; ++length)
    for (int i = 0; i < 500; ++i) {
      const std::uint64_t value = length == 0 ? 0 : random() >> (64 - length);
      ASSERT_EQ(Whole(value), Expected(value));
      ASSERT_EQ(Integer(static_cast<std::int64_t>(value)),
                Expected(static_cast<std::int64_t>(value)));
    }
  for (std::uint64_t power = 1;; power *= 10) {
    for (const std::uint64_t value : {power - 1, power, power + 1})
      ASSERT_EQ(Whole(value), Expected(value));
    if (power > std::numeric_limits<std::uint64_t>::max() / 10) break;
  }
  EXPECT_EQ(Integer(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(Whole(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(DigitsTest, FixedNotationRoundsTiesToTheEvenDigit) {
  for (const double value : {0.0, 0.5, 1.5, 2.5, 0.25, 0.75, 0.125, 0.375, 9.5, 99.5, 999.96875,
                             0.99951171875, 8.5, 1234567.0625, 4503599627370495.5,
                             9007199254740991.0, 9223372036854775808.0, 18446744073709549568.0})
    ExpectFixedWithAllDigits(value);
}

TEST(DigitsTest, NumbersThatAreTooLargeAreLeftToTheExactWay) {
  for (const double value :
       {18446744073709551616.0, 1e300, std::numeric_limits<double>::max(),
        std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
    for (const int digits : {0, 15}) {
      EXPECT_EQ(Fixed(value, digits), "");
      EXPECT_EQ(Fixed(-value, digits), "");
    }
}

TEST(DigitsTest, EveryPowerOfTwoIsRight) {
  for (int exponent = -1074; exponent < 64; ++exponent) {
    const double power = std::ldexp(1.0, exponent);
    ExpectFixedWithAllDigits(power);
    ExpectFixedWithAllDigits(std::nextafter(power, 0.0));
    ExpectFixedWithAllDigits(std::nextafter(power, 1e30));
  }
}

TEST(DigitsTest, RandomBitsAreRight) {
  std::mt19937_64 random(2);
  for (int i = 0; i < kRounds; ++i)
    ExpectFixed(std::bit_cast<double>(random()), static_cast<int>(random() % 20));
}

TEST(DigitsTest, RandomBitsOfUsualSizeAreRight) {
  std::mt19937_64 random(3);
  for (int i = 0; i < kRounds; ++i) {
    // From 2^-70 to 2^70.
    const std::uint64_t exponent = 1023 - 70 + random() % 140;
    ExpectFixed(std::bit_cast<double>(random() >> 12 | exponent << 52),
                static_cast<int>(random() % 20));
  }
}

TEST(DigitsTest, RandomDecimalsAreRight) {
  std::mt19937_64 random(4);
  for (int i = 0; i < kRounds; ++i) {
    const auto whole = static_cast<double>(static_cast<std::int64_t>(random() >> random() % 64));
    const double value = whole / std::pow(10.0, static_cast<double>(random() % 18));
    ExpectFixed(value, static_cast<int>(random() % 20));
    ExpectFixed(std::nextafter(value, 0.0), static_cast<int>(random() % 20));
  }
}

// Halves of the last digit that are written: few bits behind the point.
TEST(DigitsTest, RandomTiesAreRight) {
  std::mt19937_64 random(5);
  for (int i = 0; i < kRounds; ++i) {
    const auto odd = static_cast<double>((random() >> (12 + random() % 50)) | 1);
    const int bits = static_cast<int>(random() % 20) + 1;
    ExpectFixed(std::ldexp(odd, -bits), bits - 1);
  }
}

TEST(DigitsTest, FormattedNumbersAreThoseOfTheExactWay) {
  std::mt19937_64 random(6);
  constexpr FieldType kTypes[] = {FieldType::kSmallInteger, FieldType::kInteger,
                                  FieldType::kBigInteger, FieldType::kSingle, FieldType::kDouble};
  constexpr char16_t kSymbols[] = {u'.', u',', u'\u066B', u'7'};
  for (int i = 0; i < kRounds; ++i) {
    NumberFormat::Settings settings;
    settings.decimalSymbol = kSymbols[random() % 4];
    settings.digits = static_cast<std::uint32_t>(random() % 30);
    settings.specified = random() % 2 == 0 ? NumberFormat::Settings::kNumberDigits : 0;
    const FieldType type = kTypes[random() % 5];
    NumberValue value;
    if (type == FieldType::kSingle)
      value.single = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    else
      value.integer = static_cast<std::int64_t>(random());  // any double's bits as well
    std::string shortWay;
    std::string exactWay;
    NumberFormat::AppendNumber(settings, type, value, shortWay);
    NumberFormat::AppendNumberExactly(settings, type, value, exactWay);
    ASSERT_EQ(shortWay, exactWay);
  }
}

}  // namespace
}  // namespace TextFile
