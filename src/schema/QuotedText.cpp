#include "schema/QuotedText.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "host/CoreSupport/CharacterClasses.h"
#include "schema/Utf8.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

namespace {

constexpr char16_t kTextEnd = 0x1A;

#if defined(__SSE2__)

// Looks at units as bytes. Packing with saturation makes FF of those from 0100 to 7FFF and 00 of
// those above, which as signed bytes are below the blank: as are control characters and the units
// from 80 to FF. So one comparison finds all of them.
class Narrowing {
 public:
  Narrowing(const char* delimiters, const char* quotes) noexcept
      : delimiters_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(delimiters))),
        quotes_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(quotes))) {}

  static __m128i Load8(const char16_t* units) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
  }
  static __m128i Load4(const char16_t* units) noexcept {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(units));
  }

  // A bit for each byte that is not clean.
  std::uint32_t Marked(__m128i bytes) const noexcept {
    const __m128i hits = _mm_or_si128(
        _mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')),
        _mm_or_si128(_mm_cmpeq_epi8(bytes, delimiters_), _mm_cmpeq_epi8(bytes, quotes_)));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(hits));
  }

 private:
  const __m128i delimiters_;
  const __m128i quotes_;
};

std::size_t FirstOf(std::uint32_t marked) noexcept {
  return static_cast<std::size_t>(std::countr_zero(marked));
}

// Four to seven units: the first four and the last four, which may overlap.
inline std::size_t NarrowFew(const char16_t* text, std::size_t size, const Narrowing& narrowing,
                             char* to) noexcept {
  const std::size_t last = size - 4;
  const __m128i units = _mm_unpacklo_epi64(Narrowing::Load4(text), Narrowing::Load4(text + last));
  const __m128i bytes = _mm_packus_epi16(units, units);
  const auto first4 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(bytes));
  const auto last4 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(bytes, 4)));
  std::memcpy(to, &first4, 4);
  std::memcpy(to + last, &last4, 4);
  const std::uint32_t marked = narrowing.Marked(bytes) & 0xFF;
  if (marked == 0) return size;
  return (marked & 0xF) != 0 ? FirstOf(marked) : last + FirstOf(marked >> 4);
}

// Eight or more units. What is left behind the last full step is looked at in one that ends with
// the text, and writes some bytes a second time.
inline std::size_t NarrowMany(const char16_t* text, std::size_t size, const Narrowing& narrowing,
                              char* to) noexcept {
  std::size_t i = 0;
  for (; i + 16 <= size; i += 16) {
    const __m128i bytes =
        _mm_packus_epi16(Narrowing::Load8(text + i), Narrowing::Load8(text + i + 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), bytes);
    const std::uint32_t marked = narrowing.Marked(bytes);
    if (marked != 0) return i + FirstOf(marked);
  }
  while (i < size) {
    i = std::min(i, size - 8);
    const __m128i units = Narrowing::Load8(text + i);
    const __m128i bytes = _mm_packus_epi16(units, units);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + i), bytes);
    const std::uint32_t marked = narrowing.Marked(bytes) & 0xFF;
    if (marked != 0) return i + FirstOf(marked);
    i += 8;
  }
  return size;
}

#endif

}  // namespace

bool IsUsualMark(char16_t mark) noexcept {
  return mark > 0 && mark < 0x80 && mark != u'\r' && mark != u'\n' && mark != kTextEnd;
}

bool QuotedText::Takes(char16_t delimiter, char16_t quote) noexcept {
  return IsUsualMark(delimiter) && IsUsualMark(quote) && delimiter != quote &&
         !quenra::IsWhiteSpace(quote);
}

QuotedText::QuotedText(char delimiter, char quote) noexcept {
  delimiters_.fill(delimiter);
  quotes_.fill(quote);
}

// Units that are one byte and need no further look. Control characters do get one.
bool QuotedText::IsClean(char16_t unit) const noexcept {
  return unit >= 0x20 && unit < 0x80 && static_cast<char>(unit) != delimiters_[0] &&
         static_cast<char>(unit) != quotes_[0];
}

// Writes the clean units that `text` begins with, and answers how many they are.
inline std::size_t QuotedText::WriteClean(const char16_t* text, std::size_t size,
                                          char* to) const noexcept {
#if defined(__SSE2__)
  // Every x86-64 processor has these instructions.
  const Narrowing narrowing(delimiters_.data(), quotes_.data());
  if (size >= 8) return NarrowMany(text, size, narrowing, to);
  if (size >= 4) return NarrowFew(text, size, narrowing, to);
#endif
  std::size_t i = 0;
  for (; i < size && IsClean(text[i]); ++i) to[i] = static_cast<char>(text[i]);
  return i;
}

char* QuotedText::Write(std::u16string_view text, char* to) const noexcept {
  const std::size_t clean = WriteClean(text.data(), text.size(), to);
  return clean == text.size() ? to + clean : WriteRest(text, clean, to);
}

// Where the first `done` units are clean and written, and the next one is not.
char* QuotedText::WriteRest(std::u16string_view text, std::size_t done, char* to) const noexcept {
  char* const start = to;
  const char quote = quotes_[0];
  bool quoted = false;
  bool anyQuote = false;
  std::size_t i = done;
  to += done;
  while (i < text.size()) {
    const char16_t unit = text[i];
    if (IsClean(unit)) {
      const std::size_t clean = WriteClean(text.data() + i, text.size() - i, to);
      i += clean;
      to += clean;
      continue;
    }
    if (unit >= 0x80) {
      to = WriteCharacter(text, i, to);
      continue;
    }
    if (unit == 0 || unit == kTextEnd) return nullptr;
    const char character = static_cast<char>(unit);
    if (character == quote) {
      quoted = quoted || (!anyQuote && quenra::IsBlank(text.substr(0, i)));
      anyQuote = true;
      *to++ = quote;
    } else if (character == delimiters_[0] || character == '\r' || character == '\n') {
      quoted = true;
    }
    *to++ = character;
    ++i;
  }
  if (!quoted) return to;
  std::memmove(start + 1, start, static_cast<std::size_t>(to - start));
  *start = quote;
  to[1] = quote;
  return to + 2;
}

}  // namespace TextFile
