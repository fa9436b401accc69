// The steps of RecordScan and PlainRowIndex for processors with wide vectors.
#pragma once

#include <string_view>

#include "reading/PlainRowIndex.h"
#include "reading/RecordScan.h"

namespace TextFile {

// Whether this processor can run them, and this build has them. Not to be called otherwise.
bool HasAvx2Kernels() noexcept;
void RunAvx2Scan(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes,
                 bool last);
void IndexRowsAvx2(const PlainRowDialect& dialect, PlainRowState& state);

bool HasAvx512Kernels() noexcept;
void RunAvx512Scan(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes,
                   bool last);
void IndexRowsAvx512(const PlainRowDialect& dialect, PlainRowState& state);

}  // namespace TextFile
