#include "inference/Digits.h"

namespace TextFile {

#ifdef __SIZEOF_INT128__

namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t kPowersOfTen[] = {
    1,
    10,
    100,
    1'000,
    10'000,
    100'000,
    1'000'000,
    10'000'000,
    100'000'000,
    1'000'000'000,
    10'000'000'000,
    100'000'000'000,
    1'000'000'000'000,
    10'000'000'000'000,
    100'000'000'000'000,
    1'000'000'000'000'000,
    10'000'000'000'000'000,
    100'000'000'000'000'000,
    1'000'000'000'000'000'000,
    10'000'000'000'000'000'000u,
};
static_assert(sizeof kPowersOfTen / sizeof kPowersOfTen[0] == kMostPlainDigits + 1);

constexpr int kMantissaBits = 52;
constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << kMantissaBits;

// Exactly `digits` digits (1 to 19) of a number below 10^digits.
char* WriteDigits(std::uint64_t value, int digits, char* to) noexcept {
  constexpr std::uint64_t kEight = 100'000'000;
  if (digits <= 8) return WriteLastDigits(static_cast<std::uint32_t>(value), digits, to);
  const std::uint64_t high = value / kEight;
  const auto last = static_cast<std::uint32_t>(value % kEight);
  if (digits <= 16) {
    to = WriteLastDigits(static_cast<std::uint32_t>(high), digits - 8, to);
    return WriteLastDigits(last, 8, to);
  }
  to = WriteLastDigits(static_cast<std::uint32_t>(high / kEight), digits - 16, to);
  to = WriteLastDigits(static_cast<std::uint32_t>(high % kEight), 8, to);
  return WriteLastDigits(last, 8, to);
}

}  // namespace

// Every step is exact. The number is mantissa / 2^shift with a mantissa below 2^53. Its whole part
// is what a shift leaves. The rest is below both 2^53 and 2^shift; times 10^digits, below 2^64, it
// stays below 2^117, and a shift parts that product into the digits and what is left behind them,
// to be compared with one half.
char* WriteFixed(double value, int digits, char point, char* to) noexcept {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const auto exponent = static_cast<int>(bits >> kMantissaBits & 0x7FF);
  const int shift = exponent == 0 ? 1074 : 1075 - exponent;
  // 2^53 times 2^11 is the first number that is too large; infinity and not-a-number look larger.
  if (shift < -11) return nullptr;
  const std::uint64_t mantissa = (bits & (kHiddenBit - 1)) | (exponent == 0 ? 0 : kHiddenBit);

  std::uint64_t whole = 0;
  std::uint64_t decimals = 0;
  if (shift <= 0) {
    whole = mantissa << -shift;
  } else {
    std::uint64_t rest = mantissa;
    if (shift <= kMantissaBits) {
      whole = mantissa >> shift;
      rest = mantissa & ((std::uint64_t{1} << shift) - 1);
    }
    const std::uint64_t power = kPowersOfTen[digits];
    const Wide product = Wide{rest} * power;
    // From 2^118 on the product is less than half of what the last digit counts.
    if (shift < 118) {
      const Wide half = Wide{1} << (shift - 1);
      const Wide behind = product & (half + (half - 1));
      decimals = static_cast<std::uint64_t>(product >> shift);
      const bool odd = ((digits == 0 ? whole : decimals) & 1) != 0;
      if (behind > half || (behind == half && odd)) ++decimals;
      if (decimals == power) {
        decimals = 0;
        ++whole;
      }
    }
  }

  *to = '-';
  to = WriteWhole(whole, to + (bits >> 63));
  if (digits == 0) return to;
  *to++ = point;
  return WriteDigits(decimals, digits, to);
}

#else

char* WriteFixed(double, int, char, char*) noexcept { return nullptr; }

#endif

}  // namespace TextFile
