#include "reading/VectorKernels.h"

// GCC for Windows does not align the stack for wide values.
#if defined(__x86_64__) && !defined(_WIN32)

#include <immintrin.h>

// What the kernels use of the library is read before the switch, so that no code of the library
// gets compiled for these processors and then taken for all.
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __clang__
#pragma clang attribute push(                                                  \
    __attribute__((target("avx512f,avx512bw,avx512vbmi2,bmi,pclmul,popcnt"))), \
    apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512vbmi2,bmi,pclmul,popcnt")
#endif

#include "reading/ByteBlockAvx512.h"
#include "reading/PlainRowKernel.h"
#include "reading/RecordScanKernel.h"

namespace TextFile {

void RunAvx512Scan(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes,
                   bool last) {
  state = RecordScanKernel<Avx512Block>(dialect, state, bytes.data()).Take(bytes.size(), last);
}

void IndexRowsAvx512(const PlainRowDialect& dialect, PlainRowState& state) {
  PlainRowKernel<Avx512Block>(dialect, state).TakeBlocks();
}

}  // namespace TextFile

#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

namespace TextFile {

bool HasAvx512Kernels() noexcept {
  return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi2") &&
         __builtin_cpu_supports("bmi") && __builtin_cpu_supports("pclmul") &&
         __builtin_cpu_supports("popcnt");
}

}  // namespace TextFile

#else

namespace TextFile {

bool HasAvx512Kernels() noexcept { return false; }

void RunAvx512Scan(const RecordDialect&, RecordScanState&, std::string_view, bool) {}

void IndexRowsAvx512(const PlainRowDialect&, PlainRowState&) {}

}  // namespace TextFile

#endif
