#include "reading/RecordCount.h"

#include <optional>

#include "reading/ReaderFactory.h"
#include "reading/RecordScan.h"
#include "reading/TableDialect.h"

namespace TextFile {

namespace {

std::int64_t CountByReading(const TextDatasetDescription& description) {
  const ReaderPtr reader = MakeReader(description);
  std::int64_t records = 0;
  while (reader->ReadRecord()) ++records;
  return records;
}

std::int64_t CountRecords(const TextDatasetDescription& description) {
  const ReaderPtr reader = MakeReader(description);
  const auto dialect = DialectOf(description, reader->recordTerminator(), reader->encoding());
  if (!dialect.has_value()) return CountByReading(description);

  RecordScan scan(*dialect);
  std::int64_t read = 0;
  for (;;) {
    reader->SkipRecords(scan);
    if (!reader->ReadRecord()) return scan.records() + read;
    ++read;
    // What looks like UTF-8 is of the ANSI code page when an earlier line was not UTF-8, and the
    // scan does not look at that. White space in front of a quote may be the difference.
    if (scan.sawNonAscii() && reader->HasGuessedUtf8()) return CountByReading(description);
  }
}

}  // namespace

std::int64_t CountDataRecords(const TextDatasetDescription& description) {
  const std::int64_t records = CountRecords(description);
  return records > 0 && description.options.columnNameHeader ? records - 1 : records;
}

}  // namespace TextFile
