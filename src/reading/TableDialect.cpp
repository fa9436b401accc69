#include "reading/TableDialect.h"

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/QUENRALocale.h"

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

}  // namespace

std::optional<RecordDialect> DialectOf(const TextDatasetDescription& description, char terminator,
                                       TextEncoding encoding) {
  const SchemaOptions& options = description.options;
  RecordDialect dialect;
  dialect.terminator = terminator;
  if (options.fixedLength || options.textDelimiter == u'\0') {
    dialect.textDelimiter = '\0';
    const auto unit = static_cast<unsigned char>(terminator);
    const bool hasRecords =
        options.fixedLength ? !description.fields.empty() : options.delimiter != unit;
    return hasRecords ? std::optional(dialect) : std::nullopt;
  }
  if (!IsPlainByte(options.delimiter) || !IsPlainByte(options.textDelimiter) ||
      options.delimiter == options.textDelimiter || quenra::IsWhiteSpace(options.textDelimiter) ||
      !IsAsciiForItself(encoding))
    return std::nullopt;
  dialect.delimiter = static_cast<char>(options.delimiter);
  dialect.textDelimiter = static_cast<char>(options.textDelimiter);
  return dialect;
}

}  // namespace TextFile
