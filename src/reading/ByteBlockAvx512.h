// ByteBlock.h for processors with AVX-512. Included where code is compiled for these alone, behind
// <immintrin.h>.
#pragma once

#include <cstddef>
#include <cstdint>

namespace TextFile {

class Avx512Block {
 public:
  explicit Avx512Block(const char* bytes) noexcept : bytes_(_mm512_loadu_si512(bytes)) {}

  std::uint64_t Equal(char byte) const noexcept {
    return _mm512_cmpeq_epi8_mask(bytes_, _mm512_set1_epi8(byte));
  }
  std::uint64_t AboveAscii() const noexcept { return _mm512_movepi8_mask(bytes_); }
  std::uint64_t BelowSigned(char limit) const noexcept {
    return _mm512_cmplt_epi8_mask(bytes_, _mm512_set1_epi8(limit));
  }
  static bool AnyEqual(const Avx512Block (&blocks)[4], char byte) noexcept {
    return (blocks[0].Equal(byte) | blocks[1].Equal(byte) | blocks[2].Equal(byte) |
            blocks[3].Equal(byte)) != 0;
  }
  static bool AnyAboveAscii(const Avx512Block (&blocks)[4]) noexcept {
    const __m512i low = _mm512_or_si512(blocks[0].bytes_, blocks[1].bytes_);
    const __m512i high = _mm512_or_si512(blocks[2].bytes_, blocks[3].bytes_);
    return _mm512_movepi8_mask(_mm512_or_si512(low, high)) != 0;
  }
  static std::uint64_t PrefixXor(std::uint64_t bits) noexcept {
    const __m128i value = _mm_cvtsi64_si128(static_cast<long long>(bits));
    const __m128i product = _mm_clmulepi64_si128(value, _mm_set1_epi8(-1), 0);
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(product));
  }
  static std::size_t PositionOf(std::uint64_t bits) noexcept {
    return static_cast<std::size_t>(_tzcnt_u64(bits));
  }

 private:
  __m512i bytes_;
};

}  // namespace TextFile
