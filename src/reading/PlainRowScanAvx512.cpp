#include "reading/PlainRowScanVector.h"

// GCC for Windows does not align the stack for wide values.
#if defined(__x86_64__) && !defined(_WIN32)

#include <immintrin.h>

// What the kernel uses of the library is read before the switch, so that no code of the library
// gets compiled for these processors and then taken for all.
#include <cstddef>
#include <cstdint>

#include "reading/PlainRow.h"

#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,bmi,pclmul,popcnt")

#include "reading/ByteBlockAvx512.h"
#include "reading/PlainRowKernel.h"

namespace TextFile {

PlainRowEnd TakePlainRowAvx512(const PlainRowDialect& dialect, std::string_view bytes,
                               PlainRow& row) {
  return PlainRowKernel<Avx512Block>(dialect, bytes).Take(row);
}

}  // namespace TextFile

#pragma GCC pop_options

#else

namespace TextFile {

PlainRowEnd TakePlainRowAvx512(const PlainRowDialect&, std::string_view, PlainRow&) { return {}; }

}  // namespace TextFile

#endif
