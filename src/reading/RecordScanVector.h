// RecordScan's steps for processors with wide vectors.
#pragma once

#include <string_view>

#include "reading/RecordScan.h"

namespace TextFile {

// Whether this processor can run them, and this build has them. Not to be called otherwise.
bool HasAvx2Scan() noexcept;
void RunAvx2Scan(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes,
                 bool last);

bool HasAvx512Scan() noexcept;
void RunAvx512Scan(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes,
                   bool last);

}  // namespace TextFile
