// Bytes of one line to UTF-16. Each function replaces `line`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reading/UnitBuffer.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

// Finds the line feed that ends the line at the start of `bytes`, and decodes the line on the way.
// Answers its length in bytes; kNoPlainLine, and `line` is unspecified, when it holds a zero, when
// `line` has no room for it, when it ends within the last bytes or is not well-formed UTF-8 (or not
// ASCII, with `asUtf8` false).
inline constexpr std::size_t kNoPlainLine = static_cast<std::size_t>(-1);
[[nodiscard]] std::size_t WidenLine(std::string_view bytes, bool asUtf8, UnitBuffer& line);

// Decodes the bytes of a field, which are well-formed UTF-8 without zeros, and can be read up to
// kFieldStep behind their end. With a text delimiter (not 0) as their first byte they are quoted:
// it stands for nothing, nor does the one that closes it, and doubled ones stand for one.
inline constexpr std::size_t kFieldStep = 16;
void WidenField(std::string_view bytes, char textDelimiter, UnitBuffer& text);

// Widens `bytes`, behind which kShortField more can be read, into `text`, which has room for
// kShortField units. False when they are more than that or not all ASCII; `text` is then
// unspecified. Most texts of tables are short and plain, and need no loop.
inline constexpr std::size_t kShortField = 32;
inline bool WidenShortAscii(std::string_view bytes, char16_t* text) noexcept {
#if defined(__SSE2__)
  if (bytes.size() > kShortField) return false;
  const auto* const narrow = reinterpret_cast<const __m128i*>(bytes.data());
  auto* const wide = reinterpret_cast<__m128i*>(text);
  const __m128i zeros = _mm_setzero_si128();
  const __m128i low = _mm_loadu_si128(narrow);
  const __m128i high = _mm_loadu_si128(narrow + 1);
  _mm_storeu_si128(wide, _mm_unpacklo_epi8(low, zeros));
  _mm_storeu_si128(wide + 1, _mm_unpackhi_epi8(low, zeros));
  _mm_storeu_si128(wide + 2, _mm_unpacklo_epi8(high, zeros));
  _mm_storeu_si128(wide + 3, _mm_unpackhi_epi8(high, zeros));
  const auto above = static_cast<std::uint32_t>(_mm_movemask_epi8(low)) |
                     static_cast<std::uint64_t>(_mm_movemask_epi8(high)) << 16;
  return (above & ((std::uint64_t{1} << bytes.size()) - 1)) == 0;
#else
  static_cast<void>(bytes);
  static_cast<void>(text);
  return false;
#endif
}

// Ill-formed sequences become U+FFFD.
void DecodeUtf8(std::string_view bytes, UnitBuffer& line);

// False when `bytes` are not well-formed UTF-8; `line` is then unspecified.
[[nodiscard]] bool DecodeStrictUtf8(std::string_view bytes, UnitBuffer& line);

// The process's ANSI code page; bytes without a meaning become what the system makes of them.
void DecodeAnsi(std::string_view bytes, UnitBuffer& line);

// Two bytes a unit, low byte first; an odd last byte is dropped.
void DecodeUtf16LE(std::string_view bytes, UnitBuffer& line);

}  // namespace TextFile
