#include "inference/PlainCells.h"

#if defined(__x86_64__)

#include <immintrin.h>

// What is used of the library and of the common code is read before the switch, so that none of it
// gets compiled for these processors and then taken for all.
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/Variant.h"
#include "inference/CellValues.h"

#ifdef __clang__
#pragma clang attribute push(__attribute__((target("sse4.1"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("sse4.1")
#endif

#include "inference/PlainCellsKernel.h"
#include "inference/PlainValuesSse41.h"

namespace TextFile {

namespace {

struct Sse41Values {
  [[gnu::always_inline]] static inline bool ReadNumber(char16_t decimalSymbol,
                                                       std::string_view text,
                                                       PlainNumber& number) noexcept {
    return Sse41::ReadNumber(decimalSymbol, text, number);
  }
  [[gnu::always_inline]] static inline bool ReadDate(const DateFieldFormat& format,
                                                     std::string_view text,
                                                     PlainDate& date) noexcept {
    return Sse41::ReadDate(format, text, date);
  }
};

const CellStep* Convert(const PlainRow& row, const CellStep* step, const CellStep* end,
                        const CellFormats& formats, UnitBuffer& text) {
  return PlainCellsKernel<Sse41Values>::Convert(row, step, end, formats, text);
}

bool ReadNumber(char16_t decimalSymbol, std::string_view text, PlainNumber& number) noexcept {
  return HasPlainNumbers(decimalSymbol) && Sse41Values::ReadNumber(decimalSymbol, text, number);
}

bool ReadDate(const DateFieldFormat& format, std::string_view text, PlainDate& date) noexcept {
  return Sse41Values::ReadDate(format, text, date);
}

}  // namespace

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

const PlainCells* VectorPlainCells() noexcept {
  static constexpr PlainCells kCells = {&Convert, &ReadNumber, &ReadDate};
  return __builtin_cpu_supports("sse4.1") ? &kCells : nullptr;
}

}  // namespace TextFile

#else

namespace TextFile {

const PlainCells* VectorPlainCells() noexcept { return nullptr; }

}  // namespace TextFile

#endif
