// ByteBlock.h for processors with AVX2. Included where code is compiled for these alone, behind
// <immintrin.h>.
#pragma once

#include <cstddef>
#include <cstdint>

namespace TextFile {

class Avx2Block {
 public:
  explicit Avx2Block(const char* bytes) noexcept
      : low_(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes))),
        high_(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes) + 1)) {}

  std::uint64_t Equal(char byte) const noexcept {
    const __m256i wanted = _mm256_set1_epi8(byte);
    return Bits(_mm256_cmpeq_epi8(low_, wanted)) | Bits(_mm256_cmpeq_epi8(high_, wanted)) << 32;
  }
  std::uint64_t AboveAscii() const noexcept { return Bits(low_) | Bits(high_) << 32; }
  std::uint64_t BelowSigned(char limit) const noexcept {
    const __m256i limits = _mm256_set1_epi8(limit);
    return Bits(_mm256_cmpgt_epi8(limits, low_)) | Bits(_mm256_cmpgt_epi8(limits, high_)) << 32;
  }
  static bool AnyEqual(const Avx2Block (&blocks)[4], char byte) noexcept {
    const __m256i wanted = _mm256_set1_epi8(byte);
    __m256i hits = _mm256_setzero_si256();
    for (const Avx2Block& block : blocks)
      hits = _mm256_or_si256(hits, _mm256_or_si256(_mm256_cmpeq_epi8(block.low_, wanted),
                                                   _mm256_cmpeq_epi8(block.high_, wanted)));
    return Bits(hits) != 0;
  }
  static bool AnyAboveAscii(const Avx2Block (&blocks)[4]) noexcept {
    __m256i all = _mm256_setzero_si256();
    for (const Avx2Block& block : blocks)
      all = _mm256_or_si256(all, _mm256_or_si256(block.low_, block.high_));
    return Bits(all) != 0;
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
  static std::uint64_t Bits(__m256i bytes) noexcept {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
  }

  __m256i low_;
  __m256i high_;
};

}  // namespace TextFile
