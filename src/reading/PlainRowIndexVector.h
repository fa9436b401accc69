// PlainRowIndex's steps for processors with wide vectors.
#pragma once

#include "reading/PlainRowIndex.h"

namespace TextFile {

// Not to be called where HasAvx2Scan or HasAvx512Scan (RecordScanVector.h) say no.
void IndexRowsAvx2(const PlainRowDialect& dialect, PlainRowState& state);
void IndexRowsAvx512(const PlainRowDialect& dialect, PlainRowState& state);

}  // namespace TextFile
