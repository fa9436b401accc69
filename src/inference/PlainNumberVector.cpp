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
using Lanes = std::array<std::uint8_t, kLanes>;
constexpr std::uint8_t kNothing = 0x80;  // a lane that a shuffle makes zero

// Moves the characters of a number, by its length less one, from the first lanes to the last.
constexpr std::array<Lanes, kLanes> AlignmentsByLength() {
  std::array<Lanes, kLanes> alignments{};
  for (std::size_t length = 1; length <= kLanes; ++length) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const std::size_t from = lane + length >= kLanes ? lane + length - kLanes : kNothing;
      alignments[length - 1][lane] = static_cast<std::uint8_t>(from);
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

[[gnu::target("sse4.1")]] bool ReadPlainNumberAtOnce(char16_t decimalSymbol, std::string_view text,
                                                     PlainNumber& number) noexcept {
  const char* bytes = text.data();
  std::size_t length = text.size();
  const bool negative = length != 0 && *bytes == '-';
  bytes += negative;
  length -= negative;
  if (length - 1 >= kLanes || (decimalSymbol != u'.' && decimalSymbol != u',')) return false;

  const __m128i loaded = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  const __m128i differences = _mm_sub_epi8(loaded, _mm_set1_epi8('0'));
  __m128i digits = Shuffle(differences, kAlignments[length - 1]);
  const __m128i areDigits = _mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits);
  const auto others = static_cast<std::uint32_t>(_mm_movemask_epi8(areDigits)) ^ 0xFFFF;
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

}  // namespace

PlainNumberReader QuickestPlainNumberReader() noexcept {
  if (__builtin_cpu_supports("sse4.1")) return &ReadPlainNumberAtOnce;
  return &ReadPlainNumber;
}

#else

PlainNumberReader QuickestPlainNumberReader() noexcept { return &ReadPlainNumber; }

#endif

}  // namespace TextFile
