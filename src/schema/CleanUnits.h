// UTF-16 to bytes while it is ASCII without marks: the units that make up nearly every text.
//
//   const CleanUnits units(',', '"');
//   const std::size_t written = units.Write(text.data(), text.size(), place);  // often all of it
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

class CleanUnits {
 public:
  static constexpr std::size_t kExcess = 0;  // bytes that Write may write behind the text

  // Two ASCII characters that are not clean.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  CleanUnits(char delimiter, char quote) noexcept {
    delimiters_.fill(delimiter);
    quotes_.fill(quote);
  }

  char Delimiter() const noexcept { return delimiters_[0]; }
  char Quote() const noexcept { return quotes_[0]; }

  // Whether a unit is one byte and needs no further look. Control characters do get one.
  bool IsClean(char16_t unit) const noexcept {
    return unit >= 0x20 && unit < 0x80 && static_cast<char>(unit) != Delimiter() &&
           static_cast<char>(unit) != Quote();
  }

  // Writes the clean units that `text` begins with, and answers how many they are. `to` has room
  // for all `size`, what is behind the answer is of no use.
  std::size_t Write(const char16_t* text, std::size_t size, char* to) const noexcept {
#if defined(__SSE2__)
    // Every x86-64 processor has these instructions. One way for each range of sizes, since the
    // processor foresees sizes better than steps.
    if (size > 16) return WriteMany(text, size, to);
    if (size >= 8) return WriteSome(text, size, to);
    if (size >= 4) return WriteFew(text, size, to);
    if (size > 0) return WriteThree(text, size, to);
    return 0;
#else
    std::size_t i = 0;
    for (; i < size && IsClean(text[i]); ++i) to[i] = static_cast<char>(text[i]);
    return i;
#endif
  }

 private:
  // The same character in each place, to be compared with sixteen at once.
  using Vector = std::array<char, 16>;

#if defined(__SSE2__)
  static __m128i Load8(const char16_t* units) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
  }
  static __m128i Load4(const char16_t* units) noexcept {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(units));
  }
  static __m128i Load(const Vector& vector) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(vector.data()));
  }

  // A bit for each byte that is not clean. Packing with saturation has made FF of units from 0100
  // to 7FFF and 00 of those above, which as signed bytes are below the blank: as are control
  // characters and the units from 80 to FF. So one comparison finds all of them.
  std::uint32_t Marked(__m128i bytes) const noexcept {
    const __m128i hits = _mm_or_si128(_mm_cmpgt_epi8(_mm_set1_epi8(' '), bytes),
                                      _mm_or_si128(_mm_cmpeq_epi8(bytes, Load(delimiters_)),
                                                   _mm_cmpeq_epi8(bytes, Load(quotes_))));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(hits));
  }

  static std::size_t FirstOf(std::uint32_t marked) noexcept {
    return static_cast<std::size_t>(std::countr_zero(marked));
  }

  // The first of the units in the lower half of a vector, or else of those in the upper one, which
  // begin at `upper`.
  static std::size_t FirstOf(std::uint32_t marked, std::uint32_t half, std::size_t upper) noexcept {
    const std::uint32_t lower = marked & ((1U << half) - 1);
    return lower != 0 ? FirstOf(lower) : upper + FirstOf(marked >> half);
  }

  // One to three units: the first, the middle and the last one, which may be the same.
  std::size_t WriteThree(const char16_t* text, std::size_t size, char* to) const noexcept {
    const std::size_t middle = size / 2;
    const std::size_t last = size - 1;
    const std::uint64_t units =
        text[0] | std::uint64_t{text[middle]} << 16 | std::uint64_t{text[last]} << 32;
    const __m128i wide = _mm_cvtsi64_si128(static_cast<long long>(units));
    const __m128i bytes = _mm_packus_epi16(wide, wide);
    const auto packed = static_cast<std::uint32_t>(_mm_cvtsi128_si32(bytes));
    to[0] = static_cast<char>(packed);
    to[middle] = static_cast<char>(packed >> 8);
    to[last] = static_cast<char>(packed >> 16);
    const std::uint32_t marked = Marked(bytes) & 7;
    if (marked == 0) return size;
    return (marked & 1) != 0 ? 0 : (marked & 2) != 0 ? middle : last;
  }

  // Four to seven units: the first four and the last four, which may overlap.
  std::size_t WriteFew(const char16_t* text, std::size_t size, char* to) const noexcept {
    const std::size_t last = size - 4;
    const __m128i units = _mm_unpacklo_epi64(Load4(text), Load4(text + last));
    const __m128i bytes = _mm_packus_epi16(units, units);
    const auto packed = static_cast<std::uint64_t>(_mm_cvtsi128_si64(bytes));
    const auto first4 = static_cast<std::uint32_t>(packed);
    const auto last4 = static_cast<std::uint32_t>(packed >> 32);
    std::memcpy(to, &first4, 4);
    std::memcpy(to + last, &last4, 4);
    const std::uint32_t marked = Marked(bytes) & 0xFF;
    return marked == 0 ? size : FirstOf(marked, 4, last);
  }

  // Eight to sixteen units: the first eight and the last eight.
  std::size_t WriteSome(const char16_t* text, std::size_t size, char* to) const noexcept {
    const std::size_t last = size - 8;
    const __m128i bytes = _mm_packus_epi16(Load8(text), Load8(text + last));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), bytes);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + last), _mm_unpackhi_epi64(bytes, bytes));
    const std::uint32_t marked = Marked(bytes);
    return marked == 0 ? size : FirstOf(marked, 8, last);
  }

  // More than sixteen units. The last step ends with the text, and writes some bytes a second time.
  std::size_t WriteMany(const char16_t* text, std::size_t size, char* to) const noexcept {
    for (std::size_t i = 0;;) {
      const __m128i bytes = _mm_packus_epi16(Load8(text + i), Load8(text + i + 8));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), bytes);
      const std::uint32_t marked = Marked(bytes);
      if (marked != 0) return i + FirstOf(marked);
      i += 16;
      if (i >= size) return size;
      if (i > size - 16) i = size - 16;
    }
  }
#endif

  Vector delimiters_;
  Vector quotes_;
};

}  // namespace TextFile
