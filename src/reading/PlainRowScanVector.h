// PlainRowScan's steps for processors with wide vectors.
#pragma once

#include <string_view>

#include "reading/PlainRowScan.h"

namespace TextFile {

// Not to be called where HasAvx2Scan or HasAvx512Scan (RecordScanVector.h) say no.
PlainRowEnd TakePlainRowAvx2(const PlainRowDialect& dialect, std::string_view bytes, PlainRow& row);
PlainRowEnd TakePlainRowAvx512(const PlainRowDialect& dialect, std::string_view bytes,
                               PlainRow& row);

}  // namespace TextFile
