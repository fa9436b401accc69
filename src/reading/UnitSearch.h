// Finds the special characters of a line.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

// How many zero units must follow the zero that ends a text, so that it can be searched in steps.
inline constexpr std::size_t kSearchPadding = 16;

// The first unit at or behind `text` that is `first`, `second` or zero. A zero must come, with
// kSearchPadding more units that can be read behind it.
inline const char16_t* FindEither(const char16_t* text, char16_t first, char16_t second) noexcept {
#if defined(__SSE2__)
  // Every x86-64 processor has these instructions.
  const __m128i firsts = _mm_set1_epi16(static_cast<short>(first));
  const __m128i seconds = _mm_set1_epi16(static_cast<short>(second));
  const __m128i zeros = _mm_setzero_si128();
  for (;; text += 8) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    const __m128i hits =
        _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(units, firsts), _mm_cmpeq_epi16(units, seconds)),
                     _mm_cmpeq_epi16(units, zeros));
    const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(hits));
    if (mask != 0) return text + std::countr_zero(mask) / 2;
  }
#else
  while (*text != first && *text != second && *text != 0) ++text;
  return text;
#endif
}

// Where the special units among sixteen stand, a bit each, the first unit lowest.
struct SpecialUnits {
  std::uint32_t delimiters;
  std::uint32_t stops;  // text delimiters and zeros
};

// Looks at the sixteen units at `text`, which can be read. Behind the first stop nothing is said
// about them.
inline SpecialUnits LookAtSixteen(const char16_t* text, char16_t delimiter,
                                  char16_t textDelimiter) noexcept {
#if defined(__SSE2__)
  const auto* const source = reinterpret_cast<const __m128i*>(text);
  const __m128i low = _mm_loadu_si128(source);
  const __m128i high = _mm_loadu_si128(source + 1);
  const auto bits = [](__m128i lowHits, __m128i highHits) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(lowHits, highHits)));
  };
  const __m128i delimiters = _mm_set1_epi16(static_cast<short>(delimiter));
  const __m128i quotes = _mm_set1_epi16(static_cast<short>(textDelimiter));
  const __m128i zeros = _mm_setzero_si128();
  return {bits(_mm_cmpeq_epi16(low, delimiters), _mm_cmpeq_epi16(high, delimiters)),
          bits(_mm_or_si128(_mm_cmpeq_epi16(low, quotes), _mm_cmpeq_epi16(low, zeros)),
               _mm_or_si128(_mm_cmpeq_epi16(high, quotes), _mm_cmpeq_epi16(high, zeros)))};
#else
  SpecialUnits found{};
  for (std::uint32_t bit = 1; bit <= 0x8000 && found.stops == 0; bit <<= 1, ++text) {
    if (*text == delimiter)
      found.delimiters |= bit;
    else if (*text == textDelimiter || *text == 0)
      found.stops |= bit;
  }
  return found;
#endif
}

}  // namespace TextFile
