#include "reading/PlainRowIndexVector.h"

// GCC for Windows does not align the stack for wide values.
#if defined(__x86_64__) && !defined(_WIN32)

#include <immintrin.h>

// What the kernel uses of the library is read before the switch, so that no code of the library
// gets compiled for these processors and then taken for all.
#include <cstddef>
#include <cstdint>

#include "reading/PlainRow.h"

#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2,bmi,pclmul,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,bmi,pclmul,popcnt")
#endif

#include "reading/ByteBlockAvx2.h"
#include "reading/PlainRowKernel.h"

namespace TextFile {

void IndexRowsAvx2(const PlainRowDialect& dialect, PlainRowState& state) {
  PlainRowKernel<Avx2Block>(dialect, state).TakeBlocks();
}

}  // namespace TextFile

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#else

namespace TextFile {

void IndexRowsAvx2(const PlainRowDialect&, PlainRowState&) {}

}  // namespace TextFile

#endif
