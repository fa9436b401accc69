#include <algorithm>
#include <string>

#include "inference/DateFormatting.h"
#include "platform/ExclusiveFile.h"
#include "schema/LocaleDefaults.h"
#include "schema/ParseError.h"
#include "schema/SchemaIniFile.h"
#include "schema/SchemaIniReader.h"
#include "schema/SchemaIniWriter.h"
#include "schema/TableFiles.h"
#include "schema/TableNames.h"
#include "schema/TableSchema.h"
#include "schema/Utf8.h"

namespace TextFile {

namespace {

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

// The columns of the section: dates without a pattern of their own take their part of the table's.
void SetColumns(const std::vector<FieldDefinition>& fields, SchemaOptions& options) {
  options.columns.clear();
  std::int32_t index = 0;
  for (FieldDefinition field : fields) {
    const bool dated = field.type == FieldType::kDate || field.type == FieldType::kDateOnly ||
                       field.type == FieldType::kTimeOnly;
    if (dated && field.dateFormat.pattern.empty())
      field.dateFormat.pattern =
          WritingPattern(field.dateFormat, field.type, options.dateTimeFormat);
    options.columns.emplace(index++, std::move(field));
  }
}

// A name as the header holds it, quoted where it would not be read back otherwise.
void AppendName(const SchemaOptions& options, std::u16string_view name, std::string& bytes) {
  const std::u16string special = {options.delimiter, u'\r', u'\n', u'"'};
  const bool quoted =
      name.find_first_of(special) != std::u16string_view::npos && options.textDelimiter != 0;
  if (!quoted) return AppendUtf8(name, bytes);
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
      const std::u16string_view name = std::u16string_view(fields[i].name).substr(0, width);
      bytes.append(width - name.size(), ' ');
      AppendUtf8(name, bytes);
    } else {
      if (i > 0) AppendUtf8(std::u16string_view(&options.delimiter, 1), bytes);
      AppendName(options, fields[i].name, bytes);
    }
  }
  bytes += kLineEnd;
  return bytes;
}

[[noreturn]] void Fail(const std::u16string& path, std::u16string_view reason) {
  throw TableFailure{path + u": " + std::u16string(reason)};
}

[[noreturn]] void Fail(const std::u16string& path, const std::error_code& error) {
  const std::string reason = error.message();
  Fail(path, std::u16string(reason.begin(), reason.end()));
}

// The lines that the section had, to bring them back.
class SavedSection {
 public:
  SavedSection(const SchemaIniPaths& paths, const std::u16string& name)
      : paths_(paths), name_(name) {
    const SchemaIniFile file(paths, SchemaIniFile::Access::kRead);
    if (const SectionLines* lines = file.Find(name)) lines_ = *lines;
  }

  void Restore() noexcept {
    if (!lines_.has_value()) {
      DropSchemaSection(paths_, name_);
      return;
    }
    try {
      SchemaIniFile file(paths_, SchemaIniFile::Access::kWrite);
      file.Replace(name_, *lines_);
      file.Save();
    } catch (const SchemaIniFailure&) {
      // The failure that made this necessary is the one that is reported.
    }
  }

 private:
  const SchemaIniPaths& paths_;
  const std::u16string& name_;
  std::optional<SectionLines> lines_;
};

}  // namespace

void CreateTableFiles(const TableLocation& table, std::vector<FieldDefinition> fields) {
  if (const std::u16string_view reason = WhyNotATableName(table.name); !reason.empty())
    Fail(table.name, reason);
  const SchemaIniPaths paths(table.folder);
  SchemaOptions options = OptionsOf(paths, table.name, fields);
  SetColumns(fields, options);

  const std::u16string path = table.Path();
  ExclusiveFile file;
  if (!file.Open(NativeFromFileName(JoinPath(table.folder, u"~" + table.name + u".tmp"))) ||
      !file.Write(HeaderLine(options, fields)))
    Fail(path, file.error());
  try {
    SavedSection before(paths, table.name);
    std::u16string failure;
    if (!WriteSchemaSection(paths, table.name, options, &failure)) Fail(paths.schemaIni, failure);
    if (file.Replace(NativeFromFileName(path))) return;
    before.Restore();
    Fail(path, file.error());
  } catch (const SchemaIniFailure& failure) {
    Fail(paths.schemaIni, failure.reason);
  }
}

}  // namespace TextFile
