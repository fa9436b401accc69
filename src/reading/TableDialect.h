// What separates the records and fields of a table, where its bytes tell that.
//
//   if (const auto dialect = DialectOf(table, '\n', stream.encoding())) RecordScan scan(*dialect);
#pragma once

#include <optional>

#include "reading/RecordScan.h"
#include "reading/TextDatasetDescription.h"
#include "reading/TextLineStream.h"

namespace TextFile {

// How the records of a table of 8-bit text can be told from its bytes, if they can. `terminator` is
// LF or CR.
std::optional<RecordDialect> DialectOf(const TextDatasetDescription& description, char terminator,
                                       TextEncoding encoding);

}  // namespace TextFile
