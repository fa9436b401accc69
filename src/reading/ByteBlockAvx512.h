// ByteBlock.h for processors with AVX-512 that can sort bytes out (VBMI2). Included where code is
// compiled for these alone, behind <immintrin.h>.
#pragma once

#include <cstddef>
#include <cstdint>

namespace TextFile {

struct BytePositions {
  alignas(64) std::uint8_t bytes[64] = {};
  constexpr BytePositions() noexcept {
    for (unsigned i = 0; i < 64; ++i) bytes[i] = static_cast<std::uint8_t>(i);
  }
};

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
  static void WritePlaces(std::uint64_t bits, const char* bytes, const char** places) noexcept {
    static constexpr BytePositions kAll;
    const __m512i positions = _mm512_maskz_compress_epi8(bits, _mm512_load_si512(kAll.bytes));
    const int count = __builtin_popcountll(bits);
    WriteEight(_mm512_castsi512_si128(positions), bytes, places);
    if (count <= 8) return;
    alignas(64) std::uint8_t packed[64];
    _mm512_store_si512(packed, positions);
    for (int i = 8; i < count; i += 8)
      WriteEight(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(packed + i)), bytes, places + i);
  }

 private:
  // The positions are the eight lowest bytes.
  static void WriteEight(__m128i positions, const char* bytes, const char** places) noexcept {
    const __m512i from = _mm512_set1_epi64(reinterpret_cast<long long>(bytes));
    _mm512_storeu_si512(places, _mm512_add_epi64(from, _mm512_cvtepu8_epi64(positions)));
  }

  __m512i bytes_;
};

}  // namespace TextFile
