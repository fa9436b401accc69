// Decimal digits of numbers, the short way.
//
//   char text[kWholeRoom];
//   const char* end = WriteWhole(1234567, text);  // "1234567"
//
// Every function writes ASCII at `to`, answers the end of it, and may scribble over the rest of the
// room that its constant asks for. Nothing is terminated.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace TextFile {

// Digits of a whole number, a sign, and what the eight bytes written last reach beyond them.
inline constexpr std::size_t kWholeRoom = 32;
// The sign, 20 digits, the decimal symbol, 19 digits, and the same.
inline constexpr std::size_t kFixedRoom = 56;
// More digits behind the decimal symbol are left to the exact way.
inline constexpr int kMostPlainDigits = 19;

// The eight digits of a number below 10^8, as ASCII, the most significant one in the lowest byte.
// Halves of four digits are made side by side in one word, then pairs, then single digits. A
// division becomes a multiplication that is exact below the lane's limit: 10486 / 2^20 is 1/100
// and a 43,690th of it too much, which no value below 10,000 carries over the next whole number;
// 103 / 2^10 is 1/10 and a 170th of it too much, which no value below 100 does.
constexpr std::uint64_t EightDigits(std::uint32_t value) noexcept {
  const std::uint64_t fours = value / 10'000 | std::uint64_t{value % 10'000} << 32;
  const std::uint64_t hundreds = fours * 10'486 >> 20 & 0x0000'007F'0000'007F;
  const std::uint64_t twos = hundreds | (fours - 100 * hundreds) << 16;
  const std::uint64_t tens = twos * 103 >> 10 & 0x000F'000F'000F'000F;
  return (tens | (twos - 10 * tens) << 8) + 0x3030'3030'3030'3030;
}

// Stores eight characters, the lowest byte first.
inline void StoreEight(std::uint64_t characters, char* to) noexcept {
  if constexpr (std::endian::native == std::endian::big)
    for (int i = 0; i < 8; ++i) to[i] = static_cast<char>(characters >> 8 * i & 0xFF);
  else
    std::memcpy(to, &characters, sizeof characters);
}

// The last `count` digits (1 to 8) of a number below 10^8.
inline char* WriteLastDigits(std::uint32_t value, int count, char* to) noexcept {
  StoreEight(EightDigits(value) >> 8 * (8 - count), to);
  return to + count;
}

// A number below 100; one digit when it has no more and is not padded. `to` has two bytes.
inline char* WriteUpToTwoDigits(unsigned value, bool padded, char* to) noexcept {
  const unsigned tens = value * 103 >> 10;
  const auto first = static_cast<char>('0' + tens);
  const auto last = static_cast<char>('0' + (value - 10 * tens));
  const bool two = padded || tens != 0;
  to[0] = two ? first : last;
  to[1] = last;
  return to + (two ? 2 : 1);
}

// A number below 10^8 without leading zeros.
inline char* WriteShort(std::uint32_t value, char* to) noexcept {
  const std::uint64_t digits = EightDigits(value);
  // The lowest byte that is not '0' is the first digit; the last one counts whatever it is.
  const std::uint64_t different = (digits ^ 0x3030'3030'3030'3030) | std::uint64_t{1} << 63;
  const int zeros = std::countr_zero(different) / 8;
  StoreEight(digits >> 8 * zeros, to);
  return to + (8 - zeros);
}

// Without leading zeros. `to` has kWholeRoom.
inline char* WriteWhole(std::uint64_t value, char* to) noexcept {
  constexpr std::uint64_t kEight = 100'000'000;
  if (value < kEight) return WriteShort(static_cast<std::uint32_t>(value), to);
  const std::uint64_t high = value / kEight;
  to = high < kEight ? WriteShort(static_cast<std::uint32_t>(high), to)
                     : WriteLastDigits(static_cast<std::uint32_t>(high % kEight), 8,
                                       WriteShort(static_cast<std::uint32_t>(high / kEight), to));
  return WriteLastDigits(static_cast<std::uint32_t>(value % kEight), 8, to);
}

// With a "-" where it is needed. `to` has kWholeRoom.
inline char* WriteInteger(std::int64_t value, char* to) noexcept {
  *to = '-';
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? WriteWhole(0 - bits, to + 1) : WriteWhole(bits, to);
}

// The number in fixed notation with `digits` (0 to kMostPlainDigits) digits behind `point`, the
// last of them rounded, of two equally near ones to the even one: what std::to_chars writes. Null,
// and nothing of use is written, for numbers from 2^64 on, infinity and not-a-number, and where the
// processor multiplies no 64-bit numbers to 128 bits. `to` has kFixedRoom.
char* WriteFixed(double value, int digits, char point, char* to) noexcept;

}  // namespace TextFile
