// Finds the special characters of a line.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/CoreSupport/CharacterClasses.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

// How many zero units must follow the zero that ends a text, so that it can be searched in steps.
inline constexpr std::size_t kSearchPadding = 32;

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

// quenra::TrimBlanks of [text, text + length), behind which kSearchPadding units can be read.
inline std::u16string_view TrimBlanksInSteps(const char16_t* text, std::size_t length) noexcept {
#if defined(__SSE2__)
  constexpr std::size_t kStep = 8;
  const __m128i blanks = _mm_set1_epi16(u' ');
  // Two bits for each unit of a step that is no blank.
  const auto others = [blanks](const char16_t* units) {
    const __m128i loaded = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi16(loaded, blanks))) ^ 0xFFFF;
  };
  std::size_t begin = 0;
  for (; begin < length; begin += kStep) {
    const std::uint32_t found = others(text + begin);
    if (found == 0) continue;
    begin += static_cast<std::size_t>(std::countr_zero(found)) / 2;
    break;
  }
  // NOLINTNEXTLINE(bugprone-string-constructor): empty, but at its place
  if (begin >= length) return {text + length, 0};
  // From here on a unit that is no blank comes in front of every place that is looked at.
  while (length >= begin + kStep && others(text + length - kStep) == 0) length -= kStep;
  while (text[length - 1] == u' ') --length;
  return {text + begin, length - begin};
#else
  return quenra::TrimBlanks({text, length});
#endif
}

// The same of bytes, behind which 32 more can be read.
inline std::string_view TrimBlanksInSteps(const char* text, std::size_t length) noexcept {
#if defined(__SSE2__)
  constexpr std::size_t kStep = 32;
  const __m128i blanks = _mm_set1_epi8(' ');
  const auto areBlank = [blanks](const char* bytes) {
    const __m128i loaded = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(loaded, blanks)));
  };
  // A bit for each byte of a step that is no blank.
  const auto others = [areBlank](const char* bytes) {
    return ~(areBlank(bytes) | areBlank(bytes + kStep / 2) << kStep / 2);
  };
  while (length > kStep && others(text) == 0) {
    text += kStep;
    length -= kStep;
  }
  while (length > kStep && others(text + length - kStep) == 0) length -= kStep;
  if (length <= kStep) {
    const std::uint32_t found =
        others(text) & static_cast<std::uint32_t>((std::uint64_t{1} << length) - 1);
    // NOLINTNEXTLINE(bugprone-string-constructor): empty, but at its place
    if (found == 0) return {text + length, 0};
    const auto begin = static_cast<std::size_t>(std::countr_zero(found));
    return {text + begin, static_cast<std::size_t>(std::bit_width(found)) - begin};
  }
#endif
  std::string_view kept(text, length);
  while (!kept.empty() && kept.front() == ' ') kept.remove_prefix(1);
  while (!kept.empty() && kept.back() == ' ') kept.remove_suffix(1);
  return kept;
}

// Where the special units among kBlockUnits stand, a bit each, the first unit lowest.
struct SpecialUnits {
  std::uint32_t delimiters;
  std::uint32_t stops;  // text delimiters and zeros
};

// Looks for the special units of a line, a block at a time.
class SpecialUnitFinder {
 public:
  static constexpr std::size_t kBlockUnits = 32;

#if defined(__SSE2__)
  SpecialUnitFinder(char16_t delimiter, char16_t textDelimiter) noexcept
      : delimiters_(_mm_set1_epi16(static_cast<short>(delimiter))),
        textDelimiters_(_mm_set1_epi16(static_cast<short>(textDelimiter))) {}

  // Looks at the units at `text`, which can be read. Behind the first zero nothing is said about
  // them.
  SpecialUnits Look(const char16_t* text) const noexcept {
    const SpecialUnits low = LookAtSixteen(text);
    const SpecialUnits high = LookAtSixteen(text + 16);
    return {low.delimiters | high.delimiters << 16, low.stops | high.stops << 16};
  }

 private:
  SpecialUnits LookAtSixteen(const char16_t* text) const noexcept {
    const auto* const source = reinterpret_cast<const __m128i*>(text);
    const __m128i low = _mm_loadu_si128(source);
    const __m128i high = _mm_loadu_si128(source + 1);
    return {Bits(_mm_cmpeq_epi16(low, delimiters_), _mm_cmpeq_epi16(high, delimiters_)),
            Bits(Stops(low), Stops(high))};
  }

  __m128i Stops(__m128i units) const noexcept {
    return _mm_or_si128(_mm_cmpeq_epi16(units, textDelimiters_),
                        _mm_cmpeq_epi16(units, _mm_setzero_si128()));
  }

  static std::uint32_t Bits(__m128i low, __m128i high) noexcept {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
  }

  __m128i delimiters_;
  __m128i textDelimiters_;
#else
  SpecialUnitFinder(char16_t delimiter, char16_t textDelimiter) noexcept
      : delimiter_(delimiter), textDelimiter_(textDelimiter) {}

  SpecialUnits Look(const char16_t* text) const noexcept {
    SpecialUnits found{};
    for (std::uint32_t bit = 1; bit != 0; bit <<= 1, ++text) {
      if (*text == delimiter_)
        found.delimiters |= bit;
      else if (*text == textDelimiter_ || *text == 0)
        found.stops |= bit;
      if (*text == 0) break;
    }
    return found;
  }

 private:
  char16_t delimiter_;
  char16_t textDelimiter_;
#endif
};

}  // namespace TextFile
