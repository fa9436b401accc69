// RecordScan's steps for processors with AVX2.
#pragma once

#include <string_view>

#include "reading/RecordScan.h"

namespace TextFile {

// Whether this processor can run them, and this build has them.
bool HasAvx2Scan() noexcept;

// Not to be called otherwise.
void RunAvx2Scan(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes,
                 bool last);

}  // namespace TextFile
