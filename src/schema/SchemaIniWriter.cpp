#include "schema/SchemaIniWriter.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <string>

#include "host/CoreSupport/CharacterClasses.h"
#include "platform/FileNames.h"
#include "schema/ParseError.h"
#include "schema/SchemaColumnLine.h"
#include "schema/SchemaIniFile.h"
#include "schema/SchemaIniReader.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

// Collects the lines of a section.
class SectionText {
 public:
  void Line(std::u16string_view key, std::u16string_view value) {
    std::u16string line(key);
    line += u'=';
    line += value;
    lines_.push_back(std::move(line));
  }
  void Character(std::u16string_view key, char16_t value) {
    Line(key, std::u16string_view(&value, 1));
  }
  void Flag(std::u16string_view key, bool value) { Line(key, value ? u"True" : u"False"); }
  void Number(std::u16string_view key, std::uint32_t value) { Line(key, Decimal(value)); }

  static std::u16string Decimal(std::int64_t value) {
    const std::string digits = std::to_string(value);
    return std::u16string(digits.begin(), digits.end());
  }

  SectionLines Take() { return std::move(lines_); }

 private:
  SectionLines lines_;
};

std::u16string FormatOf(const SchemaOptions& options) {
  if (options.fixedLength) return u"FixedLength";
  if (options.delimiter == u',') return u"CSVDelimited";
  if (options.delimiter == u'\t') return u"TabDelimited";
  return u"Delimited(" + std::u16string(1, options.delimiter) + u")";
}

// What stands behind the type word of a date column: its own pattern, else, for a column of days
// or of times alone, that part of the table's format, so that it reads back as what it is. A date
// with an offset has none: with a pattern it would be read as a date.
std::u16string_view PatternOf(const FieldDefinition& field, std::u16string_view tableFormat) {
  if (field.type == FieldType::kDate) return field.dateFormat.pattern;
  if (field.type != FieldType::kDateOnly && field.type != FieldType::kTimeOnly) return {};
  if (!field.dateFormat.pattern.empty()) return field.dateFormat.pattern;
  const std::size_t cut = tableFormat.find_first_of(u"T ");
  if (field.type == FieldType::kDateOnly) return tableFormat.substr(0, cut);
  return cut == std::u16string_view::npos ? tableFormat.substr(0, 0) : tableFormat.substr(cut + 1);
}

bool HasWidthClause(const FieldDefinition& field) noexcept {
  return field.hasWidth && field.width >= 1;
}

// Quotes keep blanks and line ends in a name, and white space at its ends.
bool NeedsQuotes(std::u16string_view name) noexcept {
  return name.find_first_of(u" \r\n") != std::u16string_view::npos ||
         quenra::TrimWhiteSpace(name) != name;
}

std::u16string ColumnLine(const FieldDefinition& field, std::u16string_view tableFormat) {
  std::u16string line = NeedsQuotes(field.name) ? u'"' + field.name + u'"' : field.name;
  line += u' ';
  line += KeywordOfType(field.type);
  line += DatePatternClause(PatternOf(field, tableFormat), HasWidthClause(field));
  if (HasWidthClause(field)) line += u" Width " + SectionText::Decimal(field.width);
  return line;
}

// Whether the reader gets the column's name back from its line. The format cannot hold every name:
// a double quote has no way to be written, and a line it is misread in makes the reader refuse the
// whole section, so that the table could not be opened any more. A name with line ends must also
// survive rewrites, which drop blank lines and take "[" for a header.
bool ReadsBack(const FieldDefinition& field, std::u16string_view line) {
  constexpr std::u16string_view kEndsOfText(u"\0\x1A", 2);
  if (line.find_first_of(kEndsOfText) != std::u16string_view::npos ||
      line.find(u"\r\n") != std::u16string_view::npos ||
      line.find(u"\n\n") != std::u16string_view::npos ||
      line.find(u"\n[") != std::u16string_view::npos || !IsWellFormedText(line) ||
      std::count(line.begin(), line.end(), u'"') % 2 != 0)
    return false;
  try {
    FieldDefinition read;
    ParseColumnLine({}, quenra::TrimWhiteSpace(line), read);
    return read.name == field.name;
  } catch (const ParseError&) {
    return false;
  }
}

void AddNumberLines(const NumberFormat::Settings& number, SectionText& text) {
  using NumberFormat::Settings;
  const auto given = [&](Settings::Option option) { return (number.specified & option) != 0; };
  if (given(Settings::kDecimalSymbol)) text.Character(u"DecimalSymbol", number.decimalSymbol);
  if (given(Settings::kNumberDigits)) text.Number(u"NumberDigits", number.digits);
  if (given(Settings::kLeadingZeros)) text.Flag(u"NumberLeadingZeros", number.leadingZeros);
}

void AddCurrencyLines(const CurrencySettings& currency, SectionText& text) {
  const auto given = [&](CurrencySettings::Option option) {
    return (currency.specified & option) != 0;
  };
  if (given(CurrencySettings::kSymbol)) text.Line(u"CurrencySymbol", currency.symbol);
  if (given(CurrencySettings::kPositiveFormat))
    text.Line(u"CurrencyPosFormat", currency.positiveFormat);
  if (given(CurrencySettings::kDigits)) text.Number(u"CurrencyDigits", currency.digits);
  if (given(CurrencySettings::kNegativeFormat))
    text.Line(u"CurrencyNegFormat", currency.negativeFormat);
  if (given(CurrencySettings::kThousandSymbol))
    text.Character(u"CurrencyThousandSymbol", currency.thousandSymbol);
  if (given(CurrencySettings::kDecimalSymbol))
    text.Character(u"CurrencyDecimalSymbol", currency.decimalSymbol);
}

}  // namespace

SectionLines SchemaSectionLines(const SchemaOptions& options) {
  SectionText text;
  if (options.IsSpecified(SchemaOptions::kFormat)) text.Line(u"Format", FormatOf(options));
  if (options.IsSpecified(SchemaOptions::kColNameHeader))
    text.Flag(u"ColNameHeader", options.columnNameHeader);
  if (options.IsSpecified(SchemaOptions::kMaxScanRows))
    text.Number(u"MaxScanRows", options.maxScanRows);
  for (const auto& [index, field] : options.columns)
    text.Line(u"Col" + SectionText::Decimal(index + 1), ColumnLine(field, options.dateTimeFormat));
  if (options.IsSpecified(SchemaOptions::kCharacterSet))
    text.Line(u"CharacterSet", options.ansi ? u"ANSI" : u"OEM");
  if (options.IsSpecified(SchemaOptions::kDateTimeFormat))
    text.Line(u"DateTimeFormat", options.dateTimeFormat);
  if (options.IsSpecified(SchemaOptions::kTextDelimiter)) {
    if (options.textDelimiter == 0)
      text.Line(u"TextDelimiter", u"NONE");
    else
      text.Character(u"TextDelimiter", options.textDelimiter);
  }
  AddNumberLines(options.number, text);
  AddCurrencyLines(options.currency, text);
  return text.Take();
}

namespace {

bool IsFile(const std::u16string& path) {
  boost::system::error_code ignored;
  return boost::filesystem::is_regular_file(boost::filesystem::path(NativeFromFileName(path)),
                                            ignored);
}

// Runs a change of a schema.ini; whatever goes wrong becomes false and the reason.
template <class Change>
bool Guarded(std::u16string* failure, const Change& change) noexcept {
  std::u16string reason;
  try {
    change();
    return true;
  } catch (const SchemaIniFailure& known) {
    reason = known.reason;
  } catch (const std::exception& other) {
    const std::string_view what = other.what();
    reason.assign(what.begin(), what.end());
  }
  if (failure != nullptr) *failure = std::move(reason);
  return false;
}

}  // namespace

void RequireReadableColumns(const SchemaOptions& options) {
  for (const auto& [index, field] : options.columns)
    if (!ReadsBack(field, ColumnLine(field, options.dateTimeFormat)))
      throw SchemaIniFailure{u"The field \"" + field.name +
                             u"\" cannot be described in schema.ini."};
}

bool WriteSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName,
                        const SchemaOptions& options, std::u16string* failure) noexcept {
  return Guarded(failure, [&] {
    RequireReadableColumns(options);
    SchemaIniFile file(paths, SchemaIniFile::Access::kWrite);
    file.Replace(sectionName, SchemaSectionLines(options));
    file.Save();
  });
}

void AddSchemaColumns(const SchemaIniPaths& paths, std::u16string_view sectionName,
                      std::span<ColumnToAdd> columns) {
  const auto read = [&] {
    SchemaOptions options;
    ReadSchemaSection(paths, sectionName, options);
    for (ColumnToAdd& column : columns) {
      const auto found = options.columns.find(column.index);
      if (found != options.columns.end()) column.declared = found->second;
    }
    return options;
  };
  const auto isDeclared = [](const ColumnToAdd& column) { return column.declared.has_value(); };
  // The first look needs no right to write.
  read();
  if (std::all_of(columns.begin(), columns.end(), isDeclared)) return;
  Guarded(nullptr, [&] {
    SchemaIniFile file(paths, SchemaIniFile::Access::kUpdate);
    // Now that others wait: a section of a file that has gone would describe the next of its name.
    if (!IsFile(JoinPath(FolderOf(paths.schemaIni), sectionName)) ||
        file.ReadsAnothers(sectionName))
      return;
    SchemaOptions options = read();
    // It could not be read this time: nothing of it would stay.
    if (options.sectionName.empty() && file.Find(sectionName) != nullptr) return;
    RequireReadableColumns(options);
    std::vector<ColumnToAdd*> added;
    for (ColumnToAdd& column : columns) {
      // One that cannot be described does not keep the others out.
      if (isDeclared(column) ||
          !ReadsBack(column.column, ColumnLine(column.column, options.dateTimeFormat)))
        continue;
      options.columns.emplace(column.index, column.column);
      added.push_back(&column);
    }
    if (added.empty()) return;
    file.Replace(sectionName, SchemaSectionLines(options));
    file.Save();
    for (ColumnToAdd* column : added) column->added = true;
  });
}

}  // namespace TextFile
