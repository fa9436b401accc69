// Reads arbitrary bytes as schema.ini.
//
// Holds: a section is found, missing or refused with a ParseError, whose code is one of the twelve
// and which leaves the options alone; what was read, written as a section and read again, gives the
// same options. Left out of that are values that the format cannot carry: control characters,
// names with quotes or with white space that is no blank, and a few of the lines' own ambiguities.

#include <algorithm>
#include <memory>
#include <optional>

#include "FuzzInput.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "platform/CodePages.h"
#include "platform/OleText.h"
#include "schema/SchemaIniReader.h"
#include "schema/SchemaIniWriter.h"
#include "tests/support/SectionText.h"

namespace {

using Fuzz::Check;
using TextFile::CurrencySettings;
using TextFile::FieldDefinition;
using TextFile::SchemaOptions;

constexpr std::u16string_view kFileName = u"t.csv";

std::optional<SchemaOptions> Read(std::string_view schemaIni) {
  SchemaOptions options;
  try {
    const bool found = TextFile::ReadSchemaSection(std::make_unique<Fuzz::MemoryFile>(schemaIni),
                                                   kFileName, options);
    if (found) return options;
  } catch (const TextFile::ParseError& error) {
    Check(error.code() <= TextFile::ParseErrorCode::kUnknownOption);
  }
  Check(options.specified == 0 && options.columns.empty() && options.sectionName.empty());
  return std::nullopt;
}

// Text that a line of UTF-8 gives back as it was.
bool FitsLine(std::u16string_view text) {
  return std::all_of(
             text.begin(), text.end(),
             [](char16_t unit) { return unit >= 0x20 && (unit < 0xD800 || unit > 0xDFFF); }) &&
         std::count(text.begin(), text.end(), u'"') % 2 == 0;
}

bool FitsName(std::u16string_view name) {
  return FitsLine(name) && std::all_of(name.begin(), name.end(), [](char16_t unit) {
           return unit != u'"' && (unit == u' ' || !quenra::IsWhiteSpace(unit));
         });
}

bool FitsColumn(const FieldDefinition& field) {
  const std::u16string& pattern = field.dateFormat.pattern;
  const auto blanks = std::count(pattern.begin(), pattern.end(), u' ');
  // Behind a pattern of one part, Width would be taken for the second.
  if (!pattern.empty() && blanks == 0 && field.hasWidth) return false;
  return FitsName(field.name) && FitsName(pattern) && blanks <= 1 &&
         (pattern.empty() || (pattern.front() != u' ' && pattern.back() != u' '));
}

// A single quote is a value for TextDelimiter alone.
bool FitsCharacter(char16_t unit) { return FitsLine(std::u16string_view(&unit, 1)); }

bool FitsFormat(const SchemaOptions& options) {
  const CurrencySettings& currency = options.currency;
  return std::all_of(options.columns.begin(), options.columns.end(),
                     [](const auto& entry) { return FitsColumn(entry.second); }) &&
         FitsLine(options.dateTimeFormat) && FitsLine(currency.symbol) &&
         FitsLine(currency.positiveFormat) && FitsLine(currency.negativeFormat) &&
         FitsCharacter(options.number.decimalSymbol) && FitsCharacter(currency.thousandSymbol) &&
         FitsCharacter(currency.decimalSymbol) &&
         (options.delimiter == u'\t' || options.delimiter == u'\0' ||
          FitsCharacter(options.delimiter)) &&
         (options.textDelimiter == u'"' || options.textDelimiter == u'\0' ||
          FitsCharacter(options.textDelimiter));
}

std::string ToUtf8(std::u16string_view text) {
  std::string bytes(3 * text.size(), '\0');
  const int length =
      ::WideCharToMultiByte(CP_UTF8, 0, AsOle(text.data()), static_cast<int>(text.size()),
                            bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
  Check(length > 0);
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

void CheckSameColumn(const FieldDefinition& first, const FieldDefinition& second) {
  Check(first.name == second.name && first.type == second.type);
  const bool hasWidth = first.hasWidth && first.width >= 1;
  Check(second.hasWidth == hasWidth);
  if (hasWidth) Check(first.width == second.width);
  if (!TextFile::IsDateType(first.type) && first.type != TextFile::FieldType::kTimeOnly) return;
  Check(first.dateFormat.pattern == second.dateFormat.pattern);
  Check(first.dateFormat.order == second.dateFormat.order);
}

void CheckSameColumns(const SchemaOptions& first, const SchemaOptions& second) {
  Check(first.columns.size() == second.columns.size());
  for (auto a = first.columns.begin(), b = second.columns.begin(); a != first.columns.end();
       ++a, ++b) {
    Check(a->first == b->first);
    CheckSameColumn(a->second, b->second);
  }
}

// Options that were not given come from the locale, the same both times.
void CheckSame(const SchemaOptions& first, const SchemaOptions& second) {
  Check(first.specified == second.specified);
  Check(first.fixedLength == second.fixedLength && first.delimiter == second.delimiter);
  Check(first.textDelimiter == second.textDelimiter);
  Check(first.columnNameHeader == second.columnNameHeader);
  Check(first.maxScanRows == second.maxScanRows && first.ansi == second.ansi);
  Check(first.dateTimeFormat == second.dateTimeFormat);
  Check(first.number.specified == second.number.specified);
  Check(first.number.decimalSymbol == second.number.decimalSymbol);
  Check(first.number.digits == second.number.digits);
  Check(first.number.leadingZeros == second.number.leadingZeros);
  Check(first.currency.specified == second.currency.specified);
  Check(first.currency.symbol == second.currency.symbol);
  Check(first.currency.thousandSymbol == second.currency.thousandSymbol);
  Check(first.currency.decimalSymbol == second.currency.decimalSymbol);
  Check(first.currency.digits == second.currency.digits);
  Check(first.currency.positiveFormat == second.currency.positiveFormat);
  Check(first.currency.negativeFormat == second.currency.negativeFormat);
  CheckSameColumns(first, second);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Check(quenra::QUENRALocale::SetLocale(u"en-US"));
  const std::optional<SchemaOptions> options = Read({reinterpret_cast<const char*>(data), size});
  if (!options.has_value() || !FitsFormat(*options)) return 0;

  const std::string section = ToUtf8(TextFile::SchemaSectionText(kFileName, *options));
  const std::optional<SchemaOptions> again = Read(section);
  Check(again.has_value());
  CheckSame(*options, *again);
  // What is written is settled after the first time.
  Check(ToUtf8(TextFile::SchemaSectionText(kFileName, *again)) == section);
  return 0;
}
