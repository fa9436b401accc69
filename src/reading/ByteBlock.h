// Blocks of 64 bytes that are compared as a whole: each bit of a mask stands for a byte, the first
// byte lowest.
//
//   const BaselineBlock block(bytes);  // 64 of them
//   const std::uint64_t commas = block.Equal(',');
//
// ByteBlockAvx2.h and ByteBlockAvx512.h have the same for the code of newer processors. A Block has
//   explicit Block(const char* bytes);
//   std::uint64_t Equal(char byte) const;
//   std::uint64_t AboveAscii() const;
//   std::uint64_t BelowSigned(char limit) const;  // all bytes, and the limit, taken as signed
//   static bool AnyEqual(const Block (&blocks)[4], char byte);
//   static bool AnyAboveAscii(const Block (&blocks)[4]);
//   static std::uint64_t PrefixXor(std::uint64_t bits);  // bit i: xor of the bits 0 to i
//   static std::size_t PositionOf(std::uint64_t bits);   // of the lowest one; 64 without any
// and, where that is quicker than one after the other,
//   // Writes bytes + PositionOf each of `bits`, and up to 8 places more.
//   static void WritePlaces(std::uint64_t bits, const char* bytes, const char** places);
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextFile {

// For processors that nothing is known of, and the measure for the others.
class PlainBlock {
 public:
  explicit PlainBlock(const char* bytes) noexcept : bytes_(bytes) {}

  std::uint64_t Equal(char byte) const noexcept {
    std::uint64_t mask = 0;
    for (unsigned i = 0; i < 64; ++i) mask |= static_cast<std::uint64_t>(bytes_[i] == byte) << i;
    return mask;
  }
  std::uint64_t AboveAscii() const noexcept {
    std::uint64_t mask = 0;
    for (unsigned i = 0; i < 64; ++i)
      mask |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes_[i]) >> 7) << i;
    return mask;
  }
  std::uint64_t BelowSigned(char limit) const noexcept {
    std::uint64_t mask = 0;
    for (unsigned i = 0; i < 64; ++i)
      mask |= static_cast<std::uint64_t>(static_cast<signed char>(bytes_[i]) <
                                         static_cast<signed char>(limit))
              << i;
    return mask;
  }
  static bool AnyEqual(const PlainBlock (&blocks)[4], char byte) noexcept {
    std::uint64_t all = 0;
    for (const PlainBlock& block : blocks) all |= block.Equal(byte);
    return all != 0;
  }
  static bool AnyAboveAscii(const PlainBlock (&blocks)[4]) noexcept {
    std::uint64_t all = 0;
    for (const PlainBlock& block : blocks) all |= block.AboveAscii();
    return all != 0;
  }
  static std::uint64_t PrefixXor(std::uint64_t bits) noexcept {
    for (unsigned step = 1; step < 64; step *= 2) bits ^= bits << step;
    return bits;
  }
  static std::size_t PositionOf(std::uint64_t bits) noexcept {
    return static_cast<std::size_t>(std::countr_zero(bits));
  }

 private:
  const char* bytes_;
};

#if defined(__SSE2__)

// Every x86-64 processor has these instructions.
class Sse2Block {
 public:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  explicit Sse2Block(const char* bytes) noexcept {
    for (int i = 0; i < 4; ++i)
      parts_[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes) + i);
  }

  std::uint64_t Equal(char byte) const noexcept {
    const __m128i wanted = _mm_set1_epi8(byte);
    std::uint64_t mask = 0;
    for (int i = 0; i < 4; ++i) mask |= Bits(_mm_cmpeq_epi8(parts_[i], wanted)) << 16 * i;
    return mask;
  }
  std::uint64_t AboveAscii() const noexcept {
    std::uint64_t mask = 0;
    for (int i = 0; i < 4; ++i) mask |= Bits(parts_[i]) << 16 * i;
    return mask;
  }
  std::uint64_t BelowSigned(char limit) const noexcept {
    const __m128i limits = _mm_set1_epi8(limit);
    std::uint64_t mask = 0;
    for (int i = 0; i < 4; ++i) mask |= Bits(_mm_cmplt_epi8(parts_[i], limits)) << 16 * i;
    return mask;
  }
  static bool AnyEqual(const Sse2Block (&blocks)[4], char byte) noexcept {
    const __m128i wanted = _mm_set1_epi8(byte);
    __m128i hits = _mm_setzero_si128();
    for (const Sse2Block& block : blocks)
      for (const __m128i& part : block.parts_)
        hits = _mm_or_si128(hits, _mm_cmpeq_epi8(part, wanted));
    return Bits(hits) != 0;
  }
  static bool AnyAboveAscii(const Sse2Block (&blocks)[4]) noexcept {
    __m128i all = _mm_setzero_si128();
    for (const Sse2Block& block : blocks)
      for (const __m128i& part : block.parts_) all = _mm_or_si128(all, part);
    return Bits(all) != 0;
  }
  static std::uint64_t PrefixXor(std::uint64_t bits) noexcept {
    return PlainBlock::PrefixXor(bits);
  }
  static std::size_t PositionOf(std::uint64_t bits) noexcept {
    return PlainBlock::PositionOf(bits);
  }

 private:
  static std::uint64_t Bits(__m128i bytes) noexcept {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
  }

  __m128i parts_[4];
};

using BaselineBlock = Sse2Block;

#else

using BaselineBlock = PlainBlock;

#endif

}  // namespace TextFile
