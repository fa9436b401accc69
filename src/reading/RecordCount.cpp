#include "reading/RecordCount.h"

#include <optional>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "reading/ReaderFactory.h"
#include "reading/RecordScan.h"

namespace TextFile {

namespace {

constexpr char16_t kTextEnd = 0x1A;

bool IsPlainByte(char16_t unit) noexcept {
  return unit > 0 && unit < 0x80 && unit != u'\n' && unit != u'\r' && unit != kTextEnd;
}

// Whether bytes below 128 are never parts of other characters.
bool IsAsciiForItself(TextEncoding encoding) noexcept {
  constexpr UINT kThai = 874;
  constexpr UINT kCentralEurope = 1250;
  constexpr UINT kVietnam = 1258;
  constexpr UINT kUtf8 = 65001;
  if (encoding == TextEncoding::kUtf8) return true;
  const UINT codePage = quenra::QUENRALocale::GetAnsiCodePage();
  return codePage == kThai || (codePage >= kCentralEurope && codePage <= kVietnam) ||
         codePage == kUtf8;
}

// How the table's records can be told from its bytes, if they can.
std::optional<RecordDialect> DialectOf(const TextDatasetDescription& description,
                                       const Reader& reader) {
  const SchemaOptions& options = description.options;
  RecordDialect dialect;
  dialect.terminator = reader.recordTerminator();
  if (options.fixedLength || options.textDelimiter == u'\0') {
    dialect.textDelimiter = '\0';
    const auto terminator = static_cast<unsigned char>(reader.recordTerminator());
    const bool hasRecords =
        options.fixedLength ? !description.fields.empty() : options.delimiter != terminator;
    return hasRecords ? std::optional(dialect) : std::nullopt;
  }
  if (!IsPlainByte(options.delimiter) || !IsPlainByte(options.textDelimiter) ||
      options.delimiter == options.textDelimiter || quenra::IsWhiteSpace(options.textDelimiter) ||
      !IsAsciiForItself(reader.encoding()))
    return std::nullopt;
  dialect.delimiter = static_cast<char>(options.delimiter);
  dialect.textDelimiter = static_cast<char>(options.textDelimiter);
  return dialect;
}

std::int64_t CountByReading(const TextDatasetDescription& description) {
  const ReaderPtr reader = MakeReader(description);
  std::int64_t records = 0;
  while (reader->ReadRecord()) ++records;
  return records;
}

std::int64_t CountRecords(const TextDatasetDescription& description) {
  const ReaderPtr reader = MakeReader(description);
  const auto dialect = DialectOf(description, *reader);
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
