#include "inference/PlainNumberVector.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace TextFile {

#if defined(__x86_64__)
namespace {

constexpr std::size_t kLanes = 16;
constexpr std::size_t kLeast = 4;  // characters: two loads of four units can take their places
using Lanes = std::array<std::uint8_t, kLanes>;
constexpr std::uint8_t kNothing = 0x80;  // a lane that a shuffle makes zero

// Where the characters of a number of each length stand after the two loads: the first half of the
// lanes holds its beginning, the second its end. Moves them to the last lanes.
constexpr std::array<Lanes, kLanes - kLeast + 1> AlignmentsByLength() {
  std::array<Lanes, kLanes - kLeast + 1> alignments{};
  for (std::size_t length = kLeast; length <= kLanes; ++length) {
    const std::size_t loaded = length >= 8 ? 8 : 4;  // units a load
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const std::size_t character = lane + length - kLanes;  // wraps in front of the number
      std::uint8_t from = kNothing;
      if (lane + length >= kLanes)
        from = static_cast<std::uint8_t>(character < loaded ? character
                                                            : 8 + character + loaded - length);
      alignments[length - kLeast][lane] = from;
    }
  }
  return alignments;
}

// Takes one lane out: those in front of it move back by one.
constexpr std::array<Lanes, kLanes> DropsByLane() {
  std::array<Lanes, kLanes> drops{};
  for (std::size_t dropped = 0; dropped < kLanes; ++dropped) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const std::size_t from = lane > dropped ? lane : lane == 0 ? kNothing : lane - 1;
      drops[dropped][lane] = static_cast<std::uint8_t>(from);
    }
  }
  return drops;
}

alignas(16) constexpr auto kAlignments = AlignmentsByLength();
alignas(16) constexpr auto kDrops = DropsByLane();

[[gnu::target("sse4.1")]] __m128i Shuffle(__m128i lanes, const Lanes& from) noexcept {
  return _mm_shuffle_epi8(lanes, _mm_load_si128(reinterpret_cast<const __m128i*>(from.data())));
}

// Sixteen digits, one a lane, as a number: neighbours are joined until two numbers of eight digits
// are left.
[[gnu::target("sse4.1")]] std::uint64_t Weigh(__m128i digits) noexcept {
  const __m128i twos = _mm_maddubs_epi16(digits, _mm_set1_epi16(0x010A));  // tens, ones
  const __m128i fours = _mm_madd_epi16(twos, _mm_set1_epi32(0x00010064));
  const __m128i narrowed = _mm_packus_epi32(fours, fours);
  const __m128i eights = _mm_madd_epi16(narrowed, _mm_set1_epi32(0x00012710));
  const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  return (both & 0xFFFFFFFF) * 100000000 + (both >> 32);
}

[[gnu::target("sse4.1")]] bool ReadPlainNumberAtOnce(char16_t decimalSymbol,
                                                     std::u16string_view text,
                                                     PlainNumber& number) noexcept {
  const char16_t* units = text.data();
  std::size_t length = text.size();
  const bool negative = length != 0 && *units == u'-';
  units += negative;
  length -= negative;
  if (length < kLeast || length > kLanes || (decimalSymbol != u'.' && decimalSymbol != u','))
    return ReadPlainNumber(decimalSymbol, text, number);

  const auto* const begin = reinterpret_cast<const __m128i*>(units);
  const __m128i loaded =
      length >= 8
          ? _mm_packus_epi16(_mm_loadu_si128(begin),
                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + length - 8)))
          : _mm_packus_epi16(_mm_loadl_epi64(begin),
                             _mm_loadl_epi64(reinterpret_cast<const __m128i*>(units + length - 4)));
  __m128i digits = Shuffle(_mm_sub_epi8(loaded, _mm_set1_epi8('0')), kAlignments[length - kLeast]);
  const __m128i areDigits = _mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits);
  const auto others = static_cast<std::uint32_t>(_mm_movemask_epi8(areDigits)) ^ 0xFFFF;
  if (others != 0) {
    const auto lane = static_cast<std::size_t>(std::countr_zero(others));
    if ((others & (others - 1)) != 0 || units[lane + length - kLanes] != decimalSymbol)
      return false;
    digits = Shuffle(digits, kDrops[lane]);
    number.hasDecimalSymbol = true;
    number.decimals = static_cast<unsigned>(kLanes - 1 - lane);
  }
  number.negative = negative;
  number.digits = Weigh(digits);
  return true;
}

}  // namespace

PlainNumberReader QuickestPlainNumberReader() noexcept {
  return __builtin_cpu_supports("sse4.1") ? &ReadPlainNumberAtOnce : &ReadPlainNumber;
}

#else

PlainNumberReader QuickestPlainNumberReader() noexcept { return &ReadPlainNumber; }

#endif

}  // namespace TextFile
