#include "reading/RecordScanVector.h"

// GCC for Windows does not align the stack for 32-byte values.
#if defined(__x86_64__) && !defined(_WIN32)

#include <immintrin.h>

// What the kernel uses of the library is read before the switch, so that no code of the library
// gets compiled for these processors and then taken for all.
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2,bmi,pclmul,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,bmi,pclmul,popcnt")
#endif

#include "reading/RecordScanKernel.h"

namespace TextFile {

namespace {

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

 private:
  static std::uint64_t Bits(__m256i bytes) noexcept {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
  }

  __m256i low_;
  __m256i high_;
};

}  // namespace

void RunAvx2Scan(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes,
                 bool last) {
  state = RecordScanKernel<Avx2Block>(dialect, state, bytes.data()).Take(bytes.size(), last);
}

}  // namespace TextFile

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace TextFile {

bool HasAvx2Scan() noexcept {
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
         __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("popcnt");
}

}  // namespace TextFile

#else

namespace TextFile {

bool HasAvx2Scan() noexcept { return false; }

void RunAvx2Scan(const RecordDialect&, RecordScanState&, std::string_view, bool) {}

}  // namespace TextFile

#endif
