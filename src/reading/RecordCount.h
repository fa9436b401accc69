// How many rows a table has.
#pragma once

#include <cstdint>

#include "reading/TextDatasetDescription.h"

namespace TextFile {

// The number of records that a reader of the opened table gives, without the header row. Most of
// them are counted from the file's bytes (see RecordScan), the rest is read. 0 when the file cannot
// be read.
std::int64_t CountDataRecords(const TextDatasetDescription& description);

}  // namespace TextFile
