#include "schema/TextColumns.h"

// GCC for Windows does not align the stack for wide values, and Clang does not know the pragma.
#if defined(__x86_64__) && !defined(_WIN32) && !defined(__clang__)

#include <immintrin.h>

// What the kernel uses is read before the switch, so that nothing but the kernel gets compiled for
// these processors and then taken for all.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/OleText.h"
#include "schema/Utf8.h"

#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512vl,bmi,bmi2")

#include "schema/TextColumnsKernel.h"

namespace TextFile {

namespace {

// CleanUnits in steps of 32. A mask leaves out what is behind the text, which is not touched then;
// so a text needs no other way for being short.
class Avx512Units {
 public:
  static constexpr std::size_t kExcess = 32;

  Avx512Units(char delimiter, char quote) noexcept
      : delimiters_(_mm256_set1_epi8(delimiter)), quotes_(_mm256_set1_epi8(quote)) {}

  std::size_t Write(const char16_t* text, std::size_t size, char* to) const noexcept {
    std::size_t i = 0;
    for (; size - i > kStep; i += kStep)
      if (const std::size_t clean = Step(text + i, kStep, to + i); clean != kStep) return i + clean;
    return i + Step(text + i, size - i, to + i);
  }

 private:
  static constexpr std::size_t kStep = 32;

  // Write for `size` up to kStep.
  std::size_t Step(const char16_t* text, std::size_t size, char* to) const noexcept {
    const std::uint32_t mask = _bzhi_u32(~0U, static_cast<std::uint32_t>(size));
    // Saturation makes FF of the units from 0100 on, which as a signed byte is below the blank.
    const __m512i units = _mm512_maskz_loadu_epi16(mask, text);
    const __m256i bytes = _mm512_maskz_cvtusepi16_epi8(mask, units);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), bytes);
    const std::uint32_t clean = Clean(bytes, mask);
    return clean == mask ? size : static_cast<std::size_t>(_tzcnt_u32(~clean));
  }

  // A bit for each byte of those in `mask` that is clean.
  std::uint32_t Clean(__m256i bytes, __mmask32 mask) const noexcept {
    mask = _mm256_mask_cmpge_epi8_mask(mask, bytes, _mm256_set1_epi8(' '));
    mask = _mm256_mask_cmpneq_epi8_mask(mask, bytes, delimiters_);
    return _mm256_mask_cmpneq_epi8_mask(mask, bytes, quotes_);
  }

  const __m256i delimiters_;
  const __m256i quotes_;
};

std::size_t WriteWithAvx512(const QuotedText& texts, std::span<const TextColumn> columns,
                            const VARIANT* values, TextRun& run) noexcept {
  return RunTextColumns<Avx512Units>(texts, columns, values, run);
}

}  // namespace

}  // namespace TextFile

#pragma GCC pop_options

namespace TextFile {

WriteTextColumns Avx512TextColumns() noexcept {
  const bool has = __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
                   __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
  return has ? &WriteWithAvx512 : nullptr;
}

}  // namespace TextFile

#else

namespace TextFile {

WriteTextColumns Avx512TextColumns() noexcept { return nullptr; }

}  // namespace TextFile

#endif
