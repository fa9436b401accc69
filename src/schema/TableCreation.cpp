#include <algorithm>
#include <boost/filesystem.hpp>
#include <string>

#include "inference/DateFormatting.h"
#include "inference/DateRoundTrip.h"
#include "inference/OpenOptions.h"
#include "platform/ExclusiveFile.h"
#include "platform/FileHold.h"
#include "reading/OpenTextDataset.h"
#include "reading/ReaderFactory.h"
#include "schema/LocaleDefaults.h"
#include "schema/SchemaIniFile.h"
#include "schema/SchemaIniReader.h"
#include "schema/SchemaIniWriter.h"
#include "schema/TableFiles.h"
#include "schema/TableMetadata.h"
#include "schema/TableNames.h"
#include "schema/TableOperation.h"
#include "schema/TableSchema.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

#ifdef _WIN32
constexpr std::string_view kLineEnd = "\r\n";
#else
constexpr std::string_view kLineEnd = "\n";
#endif

// What the section that describes the file, or else the locale, says of the new table. Columns of
// the section keep their type, width and date format; names are those asked for.
SchemaOptions OptionsOf(const SchemaIniPaths& paths, std::u16string_view name,
                        std::vector<FieldDefinition>& fields) {
  SchemaOptions options;
  if (!ReadSchemaSection(paths, name, options)) CompleteFromLocale(options);
  for (const auto& [index, column] : options.columns) {
    const auto position = static_cast<std::size_t>(index);
    if (position >= fields.size()) continue;
    fields[position].type = column.type;
    fields[position].width = column.width;
    fields[position].hasWidth = column.hasWidth;
    fields[position].dateFormat = column.dateFormat;
  }
  if (!options.fixedLength) options.delimiter = DelimiterOfExtension(name);
  options.columnNameHeader = true;
  options.specified |= SchemaOptions::kFormat | SchemaOptions::kColNameHeader;
  return options;
}

// What the dates of a column without a pattern look like: the column's part of the table's. That of
// the locale gives way where its dates would not be read back.
std::u16string NewPattern(const FieldDefinition& field, const SchemaOptions& options) {
  std::u16string pattern = WritingPattern(field.dateFormat, field.type, options.dateTimeFormat);
  if (options.IsSpecified(SchemaOptions::kDateTimeFormat) || ColumnReadsBack(pattern, field.type))
    return pattern;
  return ReadablePattern(field.type, DateOrder::kAny);
}

// The columns of the section, with a pattern for each column of dates.
void SetColumns(const std::vector<FieldDefinition>& fields, SchemaOptions& options) {
  options.columns.clear();
  std::int32_t index = 0;
  for (FieldDefinition field : fields) {
    const bool dated = field.type == FieldType::kDate || field.type == FieldType::kDateOnly ||
                       field.type == FieldType::kTimeOnly;
    if (dated && field.dateFormat.pattern.empty())
      field.dateFormat.pattern = NewPattern(field, options);
    options.columns.emplace(index++, std::move(field));
  }
}

std::u16string WithBlanksFor(std::u16string_view unwritable, std::u16string_view name) {
  std::u16string plain(name);
  for (char16_t& unit : plain)
    if (unwritable.find(unit) != std::u16string_view::npos) unit = u' ';
  return plain;
}

// A name as the header holds it, quoted where it would not be read back otherwise. What cannot be
// quoted becomes a blank, so that the header has as many names as there are columns.
void AppendName(const SchemaOptions& options, std::u16string_view name, std::string& bytes) {
  const std::u16string special = {options.delimiter, options.textDelimiter, u'\r', u'\n'};
  if (options.textDelimiter == 0) return AppendUtf8(WithBlanksFor(special, name), bytes);
  if (name.find_first_of(special) == std::u16string_view::npos) return AppendUtf8(name, bytes);
  std::u16string text(1, options.textDelimiter);
  for (const char16_t unit : name) {
    text += unit;
    if (unit == options.textDelimiter) text += unit;
  }
  text += options.textDelimiter;
  AppendUtf8(text, bytes);
}

std::string HeaderLine(const SchemaOptions& options, const std::vector<FieldDefinition>& fields) {
  std::string bytes(kByteOrderMark);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (options.fixedLength) {
      // Padded like the values, so that the header has as many fields as there are columns.
      const auto width = static_cast<std::size_t>(std::max(fields[i].width, 0));
      const std::u16string_view name = CutText(fields[i].name, width);
      bytes.append(width - name.size(), ' ');
      AppendUtf8(WithBlanksFor(u"\r\n", name), bytes);
    } else {
      if (i > 0) AppendUtf8(std::u16string_view(&options.delimiter, 1), bytes);
      AppendName(options, fields[i].name, bytes);
    }
  }
  bytes += kLineEnd;
  return bytes;
}

void RequireFileOrNothing(const std::u16string& path) {
  boost::system::error_code ignored;
  const auto status = fs::status(fs::path(NativeFromFileName(path)), ignored);
  if (fs::exists(status) && !fs::is_regular_file(status))
    FailTable(path, u"the name belongs to something that is no file");
}

// Looks at the unfinished table as opening it will, so that nothing is replaced by a table that
// cannot be opened. Where the system lets nobody read the unfinished file, only the section is
// looked at.
void RequireThatItOpens(const TableLocation& table, const std::u16string& unfinished) {
  TextDatasetDescription description = DescribeFile(table.folder, table.name);
  if (!ReadSchemaSection(SchemaIniPaths(table.folder), table.name, description.options))
    CompleteFromLocale(description.options);
  description.path = unfinished;
  const ReaderPtr reader = MakeReader(description);
  if (reader->IsOpen() && !reader->Scan(description.options, description.fields, OpenOptions()))
    FailTable(table.Path(), u"the new table could not be opened with its section of schema.ini");
}

void CreateWhenHeld(const TableLocation& table, std::vector<FieldDefinition>& fields,
                    ExclusiveFile& file, bool replaces, SchemaIniFile& sections) {
  const std::u16string path = table.Path();
  SchemaOptions options = OptionsOf(SchemaIniPaths(table.folder), table.name, fields);
  // It could not be read this time: the columns would not be those that the user has described.
  if (options.sectionName.empty() && sections.Find(table.name) != nullptr)
    FailTable(SchemaIniPaths(table.folder).schemaIni, u"the table's section could not be read");
  SetColumns(fields, options);
  RequireReadableColumns(options);
  if (!file.Write(HeaderLine(options, fields))) FailTable(path, file);
  Rollback rollback;
  sections.Replace(table.name, SchemaSectionLines(options));
  rollback.AddRestoration(sections);
  sections.SaveAndHold();
  RequireThatItOpens(table, TemporaryPath(table.folder, table.name));
  const NativeFileName native = NativeFromFileName(path);
  if (!(replaces ? file.Replace(native) : file.TakeName(native))) {
    if (ExclusiveFile::MeansTaken(file.error())) FailBecauseTaken(path);
    FailTable(path, file);
  }
  rollback.Commit();
}

}  // namespace

void CreateTableFiles(const TableLocation& table, std::vector<FieldDefinition> fields,
                      ExistingFile existing) {
  if (const std::u16string_view reason = WhyNotATableName(table.name); !reason.empty())
    FailTable(table.name, reason);
  RequireNoMetadataName(table);
  const std::u16string path = table.Path();
  RequireFileOrNothing(path);
  // What comes later, while this one waits for others, is somebody's.
  const bool mayReplace = existing == ExistingFile::kReplaced && HasName(path);
  if (!mayReplace) RequireFree(path);
  ExclusiveFile file;
  if (!file.OpenToReplace(NativeFromFileName(TemporaryPath(table.folder, table.name)),
                          NativeFromFileName(path)))
    FailTable(path, file);
  RunOperation(table.folder, [&] {
    FileHold hold;
    const auto sections = HoldTable(table, hold);
    RequireFileOrNothing(path);
    const bool replaces = mayReplace && HasName(path);
    if (!replaces) RequireFree(path);
    CreateWhenHeld(table, fields, file, replaces, *sections);
  });
}

}  // namespace TextFile
