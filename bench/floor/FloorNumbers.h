// Numbers out of the file's own characters, and back into them.
#pragma once

#include <fast_float/fast_float.h>
#include <immintrin.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace Floor {

using Byte = unsigned char;

// Calls that stay calls: what a compiler chose to inline would move the floor by a tenth.
#define FLOOR_CALL __attribute__((noinline))

// How numbers are read: by the best library calls, or 16 digits at once where that gives the same.
enum class Numbers { kLibrary, kDigits16 };

struct NumberTables {
  alignas(16) Byte keep[48];      // keep + n: the last n of 16 lanes
  alignas(16) Byte drop[17][16];  // the shuffle that takes out the point at a lane; 16 for none
  double power[23];               // of ten

  NumberTables() {
    for (int i = 0; i < 48; ++i) keep[i] = i >= 16 && i < 32 ? 0xFF : 0;
    for (int point = 0; point < 17; ++point)
      for (int i = 0; i < 16; ++i)
        drop[point][i] = static_cast<Byte>(point == 16  ? i
                                           : i == 0     ? 0x80
                                           : i <= point ? i - 1
                                                        : i);
    power[0] = 1;
    for (int i = 1; i < 23; ++i) power[i] = power[i - 1] * 10;
  }
};
inline const NumberTables kNumberTables;

// Up to 16 characters, digits with at most one point, without a loop or a branch on the length: the
// field is loaded right-aligned, the point is shuffled out, and the digits are combined pairwise.
// Reads 16 bytes that end at `end`. False for anything else; the caller sees to the sign.
inline bool ReadDigits16(const Byte* begin, const Byte* end, std::uint64_t& digits,
                         unsigned& decimals) {
  const auto size = static_cast<std::size_t>(end - begin);
  if (size - 1 >= 16) return false;
  const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(end - 16));
  const __m128i field =
      _mm_loadu_si128(reinterpret_cast<const __m128i*>(kNumberTables.keep + size));
  __m128i d = _mm_sub_epi8(text, _mm_set1_epi8('0'));
  const unsigned wanted = 0xFFFFu & ~((1u << (16 - size)) - 1);
  const unsigned digit = static_cast<unsigned>(_mm_movemask_epi8(
                             _mm_cmpeq_epi8(_mm_min_epu8(d, _mm_set1_epi8(9)), d))) &
                         wanted;
  const unsigned other = wanted & ~digit;
  if (other & (other - 1)) return false;
  unsigned point = 16;
  decimals = 0;
  if (other) {
    point = static_cast<unsigned>(__builtin_ctz(other));
    if (end[static_cast<int>(point) - 16] != '.' || size == 1) return false;
    decimals = 15 - point;
  }
  d = _mm_shuffle_epi8(_mm_and_si128(d, field),
                       _mm_load_si128(reinterpret_cast<const __m128i*>(kNumberTables.drop[point])));
  d = _mm_maddubs_epi16(d, _mm_set1_epi16(0x010A));
  d = _mm_madd_epi16(d, _mm_set1_epi32(0x00010064));
  d = _mm_packus_epi32(d, d);
  d = _mm_madd_epi16(d, _mm_set1_epi32(0x00012710));
  const auto halves = static_cast<std::uint64_t>(_mm_cvtsi128_si64(d));
  digits = (halves & 0xFFFFFFFFu) * 100000000u + (halves >> 32);
  return true;
}

template <class Number>
inline bool ReadWhole(const Byte* begin, const Byte* end, Number& value) {
  const auto first = reinterpret_cast<const char*>(begin);
  const auto last = reinterpret_cast<const char*>(end);
  if constexpr (std::is_same_v<Number, double>) {
    const auto read = fast_float::from_chars(first, last, value);
    return read.ec == std::errc() && read.ptr == last;
  } else {
    const auto read = std::from_chars(first, last, value);
    return read.ec == std::errc() && read.ptr == last;
  }
}

FLOOR_CALL inline bool ReadInteger16(const Byte* begin, const Byte* end, std::int64_t& value) {
  std::uint64_t digits;
  unsigned decimals;
  const bool negative = *begin == '-';
  if (ReadDigits16(begin + negative, end, digits, decimals) && decimals == 0 && end[-1] != '.') {
    value = negative ? -static_cast<std::int64_t>(digits) : static_cast<std::int64_t>(digits);
    return true;
  }
  return ReadWhole(begin, end, value);
}

FLOOR_CALL inline bool ReadDouble16(const Byte* begin, const Byte* end, double& value) {
  std::uint64_t digits;
  unsigned decimals;
  const bool negative = *begin == '-';
  if (ReadDigits16(begin + negative, end, digits, decimals) && digits <= 1ull << 53) {
    const double size =
        static_cast<double>(static_cast<std::int64_t>(digits)) / kNumberTables.power[decimals];
    value = negative ? -size : size;
    return true;
  }
  return ReadWhole(begin, end, value);
}

template <Numbers kNumbers>
inline bool ReadInteger(const Byte* begin, const Byte* end, std::int64_t& value) {
  if constexpr (kNumbers == Numbers::kDigits16) return ReadInteger16(begin, end, value);
  return ReadWhole(begin, end, value);
}

template <Numbers kNumbers>
inline bool ReadDouble(const Byte* begin, const Byte* end, double& value) {
  if constexpr (kNumbers == Numbers::kDigits16) return ReadDouble16(begin, end, value);
  return ReadWhole(begin, end, value);
}

// ---------------------------------------------------------------------------------------------

struct DigitPairs {
  char text[200];
  DigitPairs() {
    for (int i = 0; i < 100; ++i) {
      text[2 * i] = static_cast<char>('0' + i / 10);
      text[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
  }
};
inline const DigitPairs kDigitPairs;

inline constexpr std::uint64_t kPowers[17] = {1,
                                              10,
                                              100,
                                              1000,
                                              10000,
                                              100000,
                                              1000000,
                                              10000000,
                                              100000000,
                                              1000000000,
                                              10000000000,
                                              100000000000,
                                              1000000000000,
                                              10000000000000,
                                              100000000000000,
                                              1000000000000000,
                                              10000000000000000};

inline void PutEightDigits(char* out, std::uint32_t value) {
  const std::uint32_t high = value / 10000, low = value % 10000;
  std::memcpy(out, kDigitPairs.text + 2 * (high / 100), 2);
  std::memcpy(out + 2, kDigitPairs.text + 2 * (high % 100), 2);
  std::memcpy(out + 4, kDigitPairs.text + 2 * (low / 100), 2);
  std::memcpy(out + 6, kDigitPairs.text + 2 * (low % 100), 2);
}

// Of a value below 10^16.
inline unsigned DigitCount(std::uint64_t value) {
  const unsigned guess = (64 - static_cast<unsigned>(__builtin_clzll(value | 1))) * 1233 >> 12;
  return guess + (value >= kPowers[guess]) + (value == 0);
}

// Writes up to 16 bytes past the result, and takes no branch on the number of digits.
inline char* PutUnsigned(char* out, std::uint64_t value) {
  char text[40];
  if (value < 100000000) {
    const unsigned size = DigitCount(value);
    PutEightDigits(text, static_cast<std::uint32_t>(value));
    std::memcpy(out, text + 8 - size, 8);
    return out + size;
  }
  if (value < 10000000000000000) {
    const unsigned size = DigitCount(value);
    PutEightDigits(text, static_cast<std::uint32_t>(value / 100000000));
    PutEightDigits(text + 8, static_cast<std::uint32_t>(value % 100000000));
    std::memcpy(out, text + 16 - size, 16);
    return out + size;
  }
  return std::to_chars(out, out + 24, value).ptr;
}

// No value of the column was a short decimal.
inline constexpr Byte kNoDecimals = 255;

// The shortest text of a double. A value that is m / 10^k exactly rounded, m < 2^53, k as the
// column's last value had (`decimals`), needs no general algorithm: m / 10^k is the correctly
// rounded value of that text. The rest goes to std::to_chars.
inline char* PutDouble(char* out, double value, Byte& decimals) {
  const double size = std::fabs(value);
  if (decimals != kNoDecimals && size < 9e15) {
    for (int k = decimals;; ++k) {
      const double scaled = size * kNumberTables.power[k];
      if (k > 15 || !(scaled < 9007199254740992.0)) {
        decimals = kNoDecimals;
        break;
      }
      auto digits = static_cast<std::uint64_t>(scaled + 0.5);
      if (static_cast<double>(static_cast<std::int64_t>(digits)) / kNumberTables.power[k] != size)
        continue;
      decimals = static_cast<Byte>(k);
      auto used = static_cast<unsigned>(k);
      while (used && digits % 10 == 0) {
        digits /= 10;
        --used;
      }
      if (std::signbit(value)) *out++ = '-';
      auto whole = static_cast<std::int64_t>(size);
      auto rest =
          static_cast<std::int64_t>(digits - static_cast<std::uint64_t>(whole) * kPowers[used]);
      if (rest < 0) {
        --whole;
        rest += static_cast<std::int64_t>(kPowers[used]);
      }
      out = PutUnsigned(out, static_cast<std::uint64_t>(whole));
      if (used) {
        *out++ = '.';
        char text[32];
        if (used <= 8) {
          PutEightDigits(text, static_cast<std::uint32_t>(rest));
          std::memcpy(out, text + 8 - used, 8);
        } else {
          PutEightDigits(text, static_cast<std::uint32_t>(rest / 100000000));
          PutEightDigits(text + 8, static_cast<std::uint32_t>(rest % 100000000));
          std::memcpy(out, text + 16 - used, 16);
        }
        out += used;
      }
      return out;
    }
  }
  return std::to_chars(out, out + 32, value).ptr;
}

}  // namespace Floor
