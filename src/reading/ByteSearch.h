// Finds a byte in a block of a file.
//
//   const char* const hit = FindByte(begin, end, '\n');
//   if (hit != end) ...
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

// FindByte for C libraries that search byte by byte. Only bytes in [begin, end) are read.
inline const char* FindByteInSteps(const char* begin, const char* end, char byte) noexcept {
#if defined(__SSE2__)
  constexpr std::ptrdiff_t kVectorBytes = 16;
  constexpr std::ptrdiff_t kStepBytes = 4 * kVectorBytes;
  const __m128i wanted = _mm_set1_epi8(byte);
  const auto hits = [wanted](const char* at) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    return _mm_cmpeq_epi8(bytes, wanted);
  };
  for (; end - begin >= kStepBytes; begin += kStepBytes) {
    const __m128i low = _mm_or_si128(hits(begin), hits(begin + kVectorBytes));
    const __m128i high =
        _mm_or_si128(hits(begin + 2 * kVectorBytes), hits(begin + 3 * kVectorBytes));
    if (_mm_movemask_epi8(_mm_or_si128(low, high)) != 0) break;
  }
  for (; end - begin >= kVectorBytes; begin += kVectorBytes) {
    const auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(hits(begin)));
    if (mask != 0) return begin + std::countr_zero(mask);
  }
#endif
  while (begin != end && *begin != byte) ++begin;
  return begin;
}

// The first `byte` in [begin, end), or `end`.
inline const char* FindByte(const char* begin, const char* end, char byte) noexcept {
#if defined(__GLIBC__)
  // Knows what the processor has.
  if (begin == end) return end;
  const void* const hit = std::memchr(begin, byte, static_cast<std::size_t>(end - begin));
  return hit == nullptr ? end : static_cast<const char*>(hit);
#else
  return FindByteInSteps(begin, end, byte);
#endif
}

}  // namespace TextFile
