#include "reading/RecordScanVector.h"

// GCC for Windows does not align the stack for wide values.
#if defined(__x86_64__) && !defined(_WIN32)

#include <immintrin.h>

// What the kernel uses of the library is read before the switch, so that no code of the library
// gets compiled for these processors and then taken for all.
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,bmi,pclmul,popcnt"))), \
                             apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,bmi,pclmul,popcnt")
#endif

#include "reading/RecordScanKernel.h"

namespace TextFile {

namespace {

class Avx512Block {
 public:
  explicit Avx512Block(const char* bytes) noexcept : bytes_(_mm512_loadu_si512(bytes)) {}

  std::uint64_t Equal(char byte) const noexcept {
    return _mm512_cmpeq_epi8_mask(bytes_, _mm512_set1_epi8(byte));
  }
  std::uint64_t AboveAscii() const noexcept { return _mm512_movepi8_mask(bytes_); }
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

 private:
  __m512i bytes_;
};

}  // namespace

void RunAvx512Scan(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes,
                   bool last) {
  state = RecordScanKernel<Avx512Block>(dialect, state, bytes.data()).Take(bytes.size(), last);
}

}  // namespace TextFile

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace TextFile {

bool HasAvx512Scan() noexcept {
  return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("bmi") &&
         __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("popcnt");
}

}  // namespace TextFile

#else

namespace TextFile {

bool HasAvx512Scan() noexcept { return false; }

void RunAvx512Scan(const RecordDialect&, RecordScanState&, std::string_view, bool) {}

}  // namespace TextFile

#endif
