// Reads plain numbers: at most sixteen digits and decimal symbols with nothing but a minus in
// front, which is what most numbers are.
//
//   PlainNumber number;
//   double value;
//   if (ReadPlainNumber(u'.', u"-12.75", number) && PlainDouble(number, value)) ...  // -12.75
//
// All digits are judged and weighed at once, eight to a 64-bit word, so that a number costs no
// branch for each of its characters. What is refused here is not refused for good: the caller goes
// on with the exact way, which gives the same value for everything that is read here.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>

#include "inference/NarrowUnits.h"

namespace TextFile {

// A number of the value digits / 10^decimals.
struct PlainNumber {
  std::uint64_t digits;  // below 10^16
  unsigned decimals;     // at most 16
  bool hasDecimalSymbol;
  bool negative;
};

// Whether numbers with the decimal symbol may be plain.
constexpr bool HasPlainNumbers(char16_t decimalSymbol) noexcept {
  return decimalSymbol == u'.' || decimalSymbol == u',';
}

namespace PlainNumberSteps {

// The number whose digits are the bytes of `digits`, the lowest one first.
constexpr std::uint64_t WeighEight(std::uint64_t digits) noexcept {
  digits = digits * 10 + (digits >> 8);  // pairs, in every other byte
  return ((digits & 0x000000FF000000FF) * (100 + (std::uint64_t{1000000} << 32)) +
          (digits >> 16 & 0x000000FF000000FF) * (1 + (std::uint64_t{10000} << 32))) >>
         32;
}

constexpr std::uint64_t BytesBelow(unsigned count) noexcept {  // `count` is below 8
  return (std::uint64_t{1} << (8 * count)) - 1;
}

// Drops byte `index` (below 8): those above it move down.
constexpr std::uint64_t DropByte(std::uint64_t bytes, unsigned index) noexcept {
  const std::uint64_t below = BytesBelow(index);
  return (bytes & below) | (bytes >> 8 & ~below);
}

// Judges the characters that `notDigits` marks in a word: none, or one that is the decimal symbol.
constexpr bool IsOneSymbol(std::uint64_t bytes, std::uint64_t notDigits,
                           unsigned char symbolByte) noexcept {
  if ((notDigits & (notDigits - 1)) != 0) return false;
  const unsigned shift = static_cast<unsigned>(std::countr_zero(notDigits)) & ~7U;
  return (bytes >> shift & 0xFF) == symbolByte;
}

// One to eight characters in `bytes`, as differences from "0".
constexpr bool ReadUpToEight(std::uint64_t bytes, unsigned length, unsigned char symbolByte,
                             PlainNumber& number) noexcept {
  const std::uint64_t notDigits = NotBelowTen(bytes);
  if (notDigits != 0) {
    if (length == 1 || !IsOneSymbol(bytes, notDigits, symbolByte)) return false;
    const unsigned index = static_cast<unsigned>(std::countr_zero(notDigits)) / 8;
    bytes = DropByte(bytes, index);
    --length;
    number.hasDecimalSymbol = true;
    number.decimals = length - index;
  }
  number.digits = WeighEight(bytes << (64 - 8 * length));
  return true;
}

// Nine to sixteen characters: the first eight in `first`, the others in the low bytes of `second`.
constexpr bool ReadUpToSixteen(std::uint64_t first, std::uint64_t second, unsigned length,
                               unsigned char symbolByte, PlainNumber& number) noexcept {
  const std::uint64_t notFirst = NotBelowTen(first);
  const std::uint64_t notSecond = NotBelowTen(second);
  if ((notFirst | notSecond) != 0) {
    unsigned index = 0;
    if (notSecond == 0) {
      if (!IsOneSymbol(first, notFirst, symbolByte)) return false;
      index = static_cast<unsigned>(std::countr_zero(notFirst)) / 8;
      // The byte that moves down from the second word fills the first one up again.
      first = DropByte(first, index) | second << 56;
      second >>= 8;
    } else {
      if (notFirst != 0 || !IsOneSymbol(second, notSecond, symbolByte)) return false;
      index = static_cast<unsigned>(std::countr_zero(notSecond)) / 8;
      second = DropByte(second, index);
      index += 8;
    }
    --length;
    number.hasDecimalSymbol = true;
    number.decimals = length - index;
  }
  // The last eight digits end the second word; the ones before them end the first.
  const unsigned shift = 8 * (16 - length);  // 0 to 64
  if (shift == 64) {
    number.digits = WeighEight(first);
    return true;
  }
  const std::uint64_t last = shift == 0 ? second : second << shift | first >> (64 - shift);
  number.digits = WeighEight(first << shift) * 100000000 + WeighEight(last);
  return true;
}

template <class Character>
bool Read(char16_t decimalSymbol, std::basic_string_view<Character> text,
          PlainNumber& number) noexcept {
  number = {};
  if (!HasPlainNumbers(decimalSymbol)) return false;
  const auto symbolByte = static_cast<unsigned char>(decimalSymbol ^ u'0');
  number.negative = !text.empty() && text.front() == Character{'-'};
  text.remove_prefix(number.negative);
  const Character* const units = text.data();
  const std::size_t size = text.size();
  const auto length = static_cast<unsigned>(size);
  if (size > 16 || size == 0) return false;
  if (size > 8) {
    // The second load ends with the text and overlaps the first.
    const std::uint64_t second = NarrowUnits<8>(units + size - 8) ^ kDigitZeros;
    return ReadUpToSixteen(NarrowUnits<8>(units) ^ kDigitZeros, second >> (8 * (16 - length)),
                           length, symbolByte, number);
  }
  std::uint64_t bytes = 0;
  if (size >= 4) {
    bytes = (NarrowUnits<4>(units) ^ (kDigitZeros & 0xFFFFFFFF)) |
            (NarrowUnits<4>(units + size - 4) ^ (kDigitZeros & 0xFFFFFFFF)) << (8 * (length - 4));
  } else {
    for (std::size_t i = size; i-- > 0;)
      bytes = bytes << 8 | static_cast<std::uint64_t>(NarrowUnit(units[i]) ^ u'0');
  }
  return ReadUpToEight(bytes, length, symbolByte, number);
}

}  // namespace PlainNumberSteps

// Whether `text` is a plain number with this decimal symbol. False for every other text, which says
// nothing about whether it is a number; `number` is then unspecified.
inline bool ReadPlainNumber(char16_t decimalSymbol, std::u16string_view text,
                            PlainNumber& number) noexcept {
  return PlainNumberSteps::Read(decimalSymbol, text, number);
}
// The same of the bytes of UTF-8.
inline bool ReadPlainNumber(char16_t decimalSymbol, std::string_view text,
                            PlainNumber& number) noexcept {
  return PlainNumberSteps::Read(decimalSymbol, text, number);
}

// The value as a whole number. False with a decimal symbol, and beyond the type's range.
template <class Integer>
constexpr bool PlainInteger(const PlainNumber& number, Integer& value) noexcept {
  if (number.hasDecimalSymbol) return false;
  const auto magnitude = static_cast<std::int64_t>(number.digits);
  const std::int64_t sign = number.negative ? -1 : 0;
  const std::int64_t integer = (magnitude ^ sign) - sign;
  if (integer < std::numeric_limits<Integer>::min() ||
      integer > std::numeric_limits<Integer>::max())
    return false;
  value = static_cast<Integer>(integer);
  return true;
}

// Whether the digits are exact in the type.
constexpr bool IsPlainDouble(const PlainNumber& number) noexcept {
  return number.digits <= std::uint64_t{1} << 53;
}

// The value, correctly rounded: both the digits and the power of ten are exact, so the one
// division rounds once (W. D. Clinger, How to read floating point numbers accurately, 1990).
// False when the digits are not exact in the type.
inline bool PlainDouble(const PlainNumber& number, double& value) noexcept {
  static constexpr double kPowers[] = {1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                       1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
  if (!IsPlainDouble(number)) return false;
  const double magnitude =
      static_cast<double>(static_cast<std::int64_t>(number.digits)) / kPowers[number.decimals];
  // The sign is put in without a branch, which in many columns nothing could foretell.
  const std::uint64_t sign = std::uint64_t{number.negative} << 63;
  value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | sign);
  return true;
}

inline bool PlainSingle(const PlainNumber& number, float& value) noexcept {
  static constexpr float kPowers[] = {1e0F, 1e1F, 1e2F, 1e3F, 1e4F, 1e5F,
                                      1e6F, 1e7F, 1e8F, 1e9F, 1e10F};
  if (number.digits > std::uint64_t{1} << 24 || number.decimals >= std::size(kPowers)) return false;
  const float magnitude =
      static_cast<float>(static_cast<std::int64_t>(number.digits)) / kPowers[number.decimals];
  value = number.negative ? -magnitude : magnitude;
  return true;
}

}  // namespace TextFile
