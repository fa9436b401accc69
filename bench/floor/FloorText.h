// Texts: UTF-8 to UTF-16 and back, and the strings that a row's values own.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "FloorNumbers.h"

namespace Floor {

// Where strings come from: malloc, a pool of size classes, or Windows' own BSTRs.
enum class Texts { kMalloc, kPool, kSystem };

// [size class, 4 bytes][length in bytes, 4 bytes][text ... NUL]; the pointer handed out is to the
// text.
template <bool kPool>
class Strings {
 public:
  // Room for `units` code units, and for a 32-byte store that starts at any unit before the end.
  char16_t* Allocate(std::size_t units) {
    const std::size_t bytes =
        (8 + 2 * units + 2 + kClassBytes - 1) / kClassBytes * kClassBytes + kClassBytes;
    const std::size_t group = bytes / kClassBytes;
    char* block;
    if (kPool && group < kClasses && free_[group]) {
      block = static_cast<char*>(free_[group]);
      std::memcpy(&free_[group], block, sizeof(void*));
      --count_[group];
    } else {
      block = static_cast<char*>(std::malloc(bytes));
    }
    const auto stored = static_cast<std::uint32_t>(group);
    std::memcpy(block, &stored, 4);
    return reinterpret_cast<char16_t*>(block + 8);
  }
  void Release(char16_t* text) {
    char* const block = reinterpret_cast<char*>(text) - 8;
    if (kPool) {
      const std::size_t group = *reinterpret_cast<std::uint32_t*>(block);
      if (group < kClasses && count_[group] < kKept) {
        std::memcpy(block, &free_[group], sizeof(void*));
        free_[group] = block;
        ++count_[group];
        return;
      }
    }
    std::free(block);
  }

 private:
  static constexpr std::size_t kClassBytes = 32, kClasses = 32, kKept = 1024;
  void* free_[kClasses]{};
  unsigned count_[kClasses]{};
};

inline void SetLength(char16_t* text, std::size_t units) {
  *(reinterpret_cast<std::uint32_t*>(text) - 1) = static_cast<std::uint32_t>(2 * units);
  text[units] = 0;
}
inline std::size_t LengthOf(const char16_t* text) {
  return *(reinterpret_cast<const std::uint32_t*>(text) - 1) / 2;
}

// One character after the other.
inline std::size_t WidenCharacters(const Byte* s, std::size_t size, char16_t* out) {
  char16_t* const begin = out;
  for (std::size_t i = 0; i < size;) {
    const Byte lead = s[i];
    const auto tail = [&](std::size_t k) { return s[i + k] & 0x3Fu; };
    if (lead < 0x80) {
      *out++ = lead;
      ++i;
    } else if (lead < 0xE0 && i + 1 < size) {
      *out++ = static_cast<char16_t>((lead & 0x1Fu) << 6 | tail(1));
      i += 2;
    } else if (lead < 0xF0 && i + 2 < size) {
      *out++ = static_cast<char16_t>((lead & 0x0Fu) << 12 | tail(1) << 6 | tail(2));
      i += 3;
    } else if (i + 3 < size) {
      const std::uint32_t code =
          ((lead & 7u) << 18 | tail(1) << 12 | tail(2) << 6 | tail(3)) - 0x10000;
      *out++ = static_cast<char16_t>(0xD800 + (code >> 10));
      *out++ = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
      i += 4;
    } else {
      *out++ = 0xFFFD;
      ++i;
    }
  }
  return static_cast<std::size_t>(out - begin);
}

// 16 bytes at a time while ASCII. May read 15 bytes past the text and write 30 past the result.
inline std::size_t Widen(const Byte* s, std::size_t size, char16_t* out) {
  for (std::size_t i = 0; i < size; i += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
    auto high = static_cast<unsigned>(_mm_movemask_epi8(bytes));
    if (size - i < 16) high &= (1u << (size - i)) - 1;
    if (high) {
      const auto ascii = static_cast<std::size_t>(__builtin_ctz(high));
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), _mm256_cvtepu8_epi16(bytes));
      return i + ascii + WidenCharacters(s + i + ascii, size - i - ascii, out + i + ascii);
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), _mm256_cvtepu8_epi16(bytes));
  }
  return size;
}

// UTF-16 to UTF-8 while it is ASCII with nothing to quote; the code units done.
inline std::size_t NarrowPlain(const char16_t* s, std::size_t size, char* out) {
  const auto low = [](__m256i x) {
    return _mm256_castsi256_si128(_mm256_permute4x64_epi64(x, 0x88));
  };
  for (std::size_t i = 0; i < size; i += 16) {
    const __m256i units = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i));
    const __m128i bytes = low(_mm256_packus_epi16(units, units));
    const __m256i ascii =
        _mm256_cmpeq_epi16(_mm256_and_si256(units, _mm256_set1_epi16(static_cast<short>(0xFF80))),
                           _mm256_setzero_si256());
    const __m128i special = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')),
                                                      _mm_cmpeq_epi8(bytes, _mm_set1_epi8(','))),
                                         _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')),
                                                      _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r'))));
    unsigned stop = static_cast<unsigned>(_mm_movemask_epi8(
                        _mm_andnot_si128(special, low(_mm256_packs_epi16(ascii, ascii))))) ^
                    0xFFFF;
    if (size - i < 16) stop &= (1u << (size - i)) - 1;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), bytes);
    if (stop) return i + static_cast<std::size_t>(__builtin_ctz(stop));
  }
  return size;
}

inline char* PutUtf8(char* out, const char16_t* s, std::size_t size, std::size_t& i) {
  const auto put = [&](std::uint32_t byte) { *out++ = static_cast<char>(byte); };
  std::uint32_t unit = s[i];
  if (unit < 0x800) {
    put(0xC0 | unit >> 6);
  } else if (unit - 0xD800 < 0x400 && i + 1 < size) {
    unit = 0x10000 + ((unit - 0xD800) << 10) + (s[++i] - 0xDC00u);
    put(0xF0 | unit >> 18);
    put(0x80 | (unit >> 12 & 0x3F));
    put(0x80 | (unit >> 6 & 0x3F));
  } else {
    put(0xE0 | unit >> 12);
    put(0x80 | (unit >> 6 & 0x3F));
  }
  put(0x80 | (unit & 0x3F));
  return out;
}

// A field: quoted where it has to be. Room for three bytes a unit, and 32 more, is the caller's.
inline char* PutText(char* out, const char16_t* s, std::size_t size) {
  char* const begin = out;
  std::size_t i = NarrowPlain(s, size, out);
  out += i;
  if (i == size) return out;
  bool quote = false;
  for (std::size_t k = i; k < size; ++k)
    quote |= s[k] == '"' || s[k] == ',' || s[k] == '\n' || s[k] == '\r';
  if (quote) {
    std::memmove(begin + 1, begin, static_cast<std::size_t>(out - begin));
    *begin = '"';
    ++out;
  }
  for (; i < size; ++i) {
    if (s[i] < 0x80) {
      if (s[i] == '"') *out++ = '"';
      *out++ = static_cast<char>(s[i]);
    } else {
      out = PutUtf8(out, s, size, i);
    }
  }
  if (quote) *out++ = '"';
  return out;
}

}  // namespace Floor
