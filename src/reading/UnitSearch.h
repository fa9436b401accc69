// Finds the next special character of a line.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

// How many zero units must follow the zero that ends a text, so that it can be searched in steps.
inline constexpr std::size_t kSearchPadding = 8;

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

}  // namespace TextFile
