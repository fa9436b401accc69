// Reads plain numbers and dates by comparing and weighing their characters at once. Included where
// code is compiled for processors with SSE4.1 alone, behind <immintrin.h>.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "inference/PlainDate.h"
#include "inference/PlainNumber.h"

namespace TextFile::Sse41 {

constexpr std::size_t kLanes = 16;
using Lanes = std::array<std::uint8_t, kLanes>;
constexpr std::uint8_t kNone = 0x80;  // a lane that a shuffle makes zero

// Moves the characters of a number, by its length less one, from the first lanes to the last.
constexpr std::array<Lanes, kLanes> AlignmentsByLength() noexcept {
  std::array<Lanes, kLanes> alignments{};
  for (std::size_t length = 1; length <= kLanes; ++length) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const std::size_t from = lane + length >= kLanes ? lane + length - kLanes : kNone;
      alignments[length - 1][lane] = static_cast<std::uint8_t>(from);
    }
  }
  return alignments;
}

// Takes one lane out: those in front of it move back by one.
constexpr std::array<Lanes, kLanes> DropsByLane() noexcept {
  std::array<Lanes, kLanes> drops{};
  for (std::size_t dropped = 0; dropped < kLanes; ++dropped) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const std::size_t from = lane > dropped ? lane : lane == 0 ? kNone : lane - 1;
      drops[dropped][lane] = static_cast<std::uint8_t>(from);
    }
  }
  return drops;
}

alignas(16) inline constexpr auto kAlignments = AlignmentsByLength();
alignas(16) inline constexpr auto kDrops = DropsByLane();

// The digits of a date to pairs of lanes: century, year, month, day, hour, minute, second.
alignas(16) inline constexpr Lanes kDay = {0,     1,     2,     3,     5,     6,     8,     9,
                                           kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone};
alignas(16) inline constexpr Lanes kDayAndMinute = {0,  1,  2,  3,  5,     6,     8,     9,
                                                    11, 12, 14, 15, kNone, kNone, kNone, kNone};
// Of the characters from the fourth on.
alignas(16) inline constexpr Lanes kSecond = {kNone, kNone, kNone, kNone, kNone, kNone,
                                              kNone, kNone, kNone, kNone, kNone, kNone,
                                              14,    15,    kNone, kNone};

// Of sixteen characters, as differences from "0".
inline __m128i LoadDifferences(const char* bytes) noexcept {
  return _mm_sub_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), _mm_set1_epi8('0'));
}

inline __m128i Shuffle(__m128i lanes, const Lanes& from) noexcept {
  return _mm_shuffle_epi8(lanes, _mm_load_si128(reinterpret_cast<const __m128i*>(from.data())));
}

inline __m128i BelowTen(__m128i lanes) noexcept {
  return _mm_cmpeq_epi8(_mm_min_epu8(lanes, _mm_set1_epi8(9)), lanes);
}

// Neighbours joined: tens and ones.
inline __m128i Pairs(__m128i digits) noexcept {
  return _mm_maddubs_epi16(digits, _mm_set1_epi16(0x010A));
}

// Sixteen digits, one a lane, as a number: neighbours are joined until two numbers of eight
// digits are left.
inline std::uint64_t Weigh(__m128i digits) noexcept {
  const __m128i fours = _mm_madd_epi16(Pairs(digits), _mm_set1_epi32(0x00010064));
  const __m128i narrowed = _mm_packus_epi32(fours, fours);
  const __m128i eights = _mm_madd_epi16(narrowed, _mm_set1_epi32(0x00012710));
  const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  return (both & 0xFFFFFFFF) * 100000000 + (both >> 32);
}

// One of four lanes.
inline int Pair(std::uint64_t pairs, unsigned index) noexcept {
  return static_cast<int>(pairs >> (16 * index) & 0xFF);
}

// The pairs of a date, if all lanes are digits and the numbers within their ranges.
[[gnu::always_inline]] inline bool Judge(__m128i digits, PlainDate& date) noexcept {
  const __m128i pairs = Pairs(digits);
  const __m128i aboveLeast = _mm_sub_epi16(pairs, _mm_setr_epi16(0, 0, 1, 1, 0, 0, 0, 0));
  const __m128i most = _mm_setr_epi16(99, 99, 11, 30, 23, 59, 59, 0);
  const __m128i inRange = _mm_cmpeq_epi16(_mm_min_epu16(aboveLeast, most), aboveLeast);
  if (_mm_movemask_epi8(_mm_and_si128(inRange, BelowTen(digits))) != 0xFFFF) return false;
  const auto day = static_cast<std::uint64_t>(_mm_cvtsi128_si64(pairs));
  const auto time = static_cast<std::uint64_t>(_mm_extract_epi64(pairs, 1));
  date.day = {Pair(day, 0) * 100 + Pair(day, 1), Pair(day, 2), Pair(day, 3)};
  date.seconds = (Pair(time, 0) * 60 + Pair(time, 1)) * 60 + Pair(time, 2);
  return true;
}

// ReadPlainNumber with a symbol that has plain ones; kPlainNumberBytes can be read from the start
// of `text` on.
[[gnu::always_inline]] inline bool ReadNumber(char16_t decimalSymbol, std::string_view text,
                                              PlainNumber& number) noexcept {
  const char* bytes = text.data();
  std::size_t length = text.size();
  const bool negative = length != 0 && *bytes == '-';
  bytes += negative;
  length -= negative;
  if (length - 1 >= kLanes) return false;

  __m128i digits = Shuffle(LoadDifferences(bytes), kAlignments[length - 1]);
  const auto others = static_cast<std::uint32_t>(_mm_movemask_epi8(BelowTen(digits))) ^ 0xFFFF;
  number.hasDecimalSymbol = others != 0;
  number.decimals = 0;
  if (others != 0) {
    const auto lane = static_cast<std::size_t>(std::countr_zero(others));
    const char symbol = bytes[lane + length - kLanes];
    if ((others & (others - 1)) != 0 || symbol != static_cast<char>(decimalSymbol) || length == 1)
      return false;
    digits = Shuffle(digits, kDrops[lane]);
    number.decimals = static_cast<unsigned>(kLanes - 1 - lane);
  }
  number.negative = negative;
  number.digits = Weigh(digits);
  return true;
}

// ReadPlainDate; kPlainDateBytes can be read from the start of `text` on.
[[gnu::always_inline]] inline bool ReadDate(const DateFieldFormat& format, std::string_view text,
                                            PlainDate& date) noexcept {
  if (format.order != DateOrder::kYearMonthDay) return ReadPlainDate(format, text, date);
  const char* const bytes = text.data();
  if (text.size() < 10 || bytes[4] != bytes[7] || bytes[4] < '-' || bytes[4] > '/') return false;
  if (format.type == FieldType::kDateOnly)
    return text.size() == 10 && Judge(Shuffle(LoadDifferences(bytes), kDay), date);

  if ((bytes[10] != 'T' && bytes[10] != ' ') || bytes[13] != ':') return false;
  __m128i digits = Shuffle(LoadDifferences(bytes), kDayAndMinute);
  if (text.size() == 19 && bytes[16] == ':')
    digits = _mm_or_si128(digits, Shuffle(LoadDifferences(bytes + 3), kSecond));
  else if (text.size() != 16)
    return false;
  return Judge(digits, date);
}

}  // namespace TextFile::Sse41
