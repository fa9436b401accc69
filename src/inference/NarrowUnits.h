// Characters as bytes in a 64-bit word, several at once.
//
//   NarrowUnits<4>(u"2024");  // '2' | '0' << 8 | '2' << 16 | '4' << 24
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

static_assert(std::endian::native == std::endian::little,
              "the first character is taken to be the lowest byte of a word");

// `Count` units (4 or 8) as bytes, the first one lowest. A unit above 255 becomes byte 255 or 0:
// never a digit, nor any other character that numbers and dates are made of.
template <std::size_t Count>
std::uint64_t NarrowUnits(const char16_t* units) noexcept {
  static_assert(Count == 4 || Count == 8);
#if defined(__SSE2__)
  const auto* const source = reinterpret_cast<const __m128i*>(units);
  const __m128i wide = Count == 8 ? _mm_loadu_si128(source) : _mm_loadl_epi64(source);
  // Saturates: units above 255 become 255, those above 32767 become 0.
  const __m128i narrow = _mm_packus_epi16(wide, wide);
  const auto bytes = static_cast<std::uint64_t>(_mm_cvtsi128_si64(narrow));
  return Count == 8 ? bytes : bytes & 0xFFFFFFFF;
#else
  std::uint64_t bytes = 0;
  for (std::size_t i = Count; i-- > 0;) bytes = bytes << 8 | (units[i] > 255 ? 255 : units[i]);
  return bytes;
#endif
}

// The same of bytes, which are what they are.
template <std::size_t Count>
std::uint64_t NarrowUnits(const char* bytes) noexcept {
  static_assert(Count == 4 || Count == 8);
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, Count);
  return word;
}

// One character, 255 for any above that.
constexpr unsigned char NarrowUnit(char16_t unit) noexcept {
  return static_cast<unsigned char>(unit > 255 ? 255 : unit);
}
constexpr unsigned char NarrowUnit(char byte) noexcept { return static_cast<unsigned char>(byte); }

// The character "0" in every byte: what digits are told from by their differences.
inline constexpr std::uint64_t kDigitZeros = 0x3030303030303030;

// The bytes of `bytes` that are not below ten, each as its highest bit.
constexpr std::uint64_t NotBelowTen(std::uint64_t bytes) noexcept {
  constexpr std::uint64_t kLow7 = 0x7F7F7F7F7F7F7F7F;
  return (((bytes & kLow7) + 0x7676767676767676) | bytes) & ~kLow7;
}

}  // namespace TextFile
