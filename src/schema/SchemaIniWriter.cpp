#include "schema/SchemaIniWriter.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <fstream>
#include <stdexcept>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/DataCore/DataCoreUtil.h"
#include "platform/CodePages.h"
#include "platform/FileNames.h"
#include "platform/OleText.h"
#include "reading/TextLineStream.h"
#include "schema/ParseError.h"
#include "schema/SchemaColumnLine.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

// Why a write has failed. Never leaves this file.
struct WriteFailure {
  std::u16string_view reason;
};

constexpr std::u16string_view kCouldNotCreate = u"Could not create schema.ini.";
constexpr std::u16string_view kCouldNotWrite = u"Could not write to schema.ini.";
constexpr std::u16string_view kCouldNotWriteTemporary = u"Could not write to temp schema.ini.";
constexpr std::u16string_view kCouldNotRead = u"Could not read schema.ini.";
constexpr std::u16string_view kNameNotText = u"The file's name is not valid text.";
constexpr std::u16string_view kColumnNotWritable = u"A field cannot be described in schema.ini.";
constexpr std::u16string_view kCouldNotReplace = u"Could not replace schema.ini.";

// ---------------------------------------------------------------------------------------------
// Section text
// ---------------------------------------------------------------------------------------------

class SectionText {
 public:
  explicit SectionText(std::u16string_view name) : text_(u"[") {
    text_ += name;
    text_ += u"]\n";
  }

  void Line(std::u16string_view key, std::u16string_view value) {
    text_ += key;
    text_ += u'=';
    text_ += value;
    text_ += u'\n';
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

  std::u16string Take() { return std::move(text_); }

 private:
  std::u16string text_;
};

std::u16string FormatOf(const SchemaOptions& options) {
  if (options.fixedLength) return u"FixedLength";
  if (options.delimiter == u',') return u"CSVDelimited";
  if (options.delimiter == u'\t') return u"TabDelimited";
  return u"Delimited(" + std::u16string(1, options.delimiter) + u")";
}

// What stands behind the type word of a date column: its own pattern, else, for a column of days
// or of times alone, that part of the table's format, so that it reads back as what it is.
std::u16string_view PatternOf(const FieldDefinition& field, std::u16string_view tableFormat) {
  const bool dated = IsDateType(field.type) || field.type == FieldType::kTimeOnly;
  if (dated && !field.dateFormat.pattern.empty()) return field.dateFormat.pattern;
  const std::size_t cut = tableFormat.find_first_of(u"T ");
  if (field.type == FieldType::kDateOnly) return tableFormat.substr(0, cut);
  if (field.type == FieldType::kTimeOnly && cut != std::u16string_view::npos)
    return tableFormat.substr(cut + 1);
  return {};
}

std::u16string ColumnLine(const FieldDefinition& field, std::u16string_view tableFormat) {
  const bool quoted = std::any_of(field.name.begin(), field.name.end(), quenra::IsWhiteSpace);
  std::u16string line = quoted ? u'"' + field.name + u'"' : field.name;
  line += u' ';
  line += KeywordOfType(field.type);
  const std::u16string_view pattern = PatternOf(field, tableFormat);
  if (!pattern.empty()) line.append(1, u' ').append(pattern);
  if (field.hasWidth && field.width >= 1) line += u" Width " + SectionText::Decimal(field.width);
  return line;
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

// ---------------------------------------------------------------------------------------------
// Files
// ---------------------------------------------------------------------------------------------

std::string ToUtf8(std::u16string_view text) {
  if (text.empty()) return {};
  // No UTF-16 unit needs more than three bytes.
  std::string bytes(3 * text.size(), '\0');
  const int size =
      ::WideCharToMultiByte(CP_UTF8, 0, AsOle(text.data()), static_cast<int>(text.size()),
                            bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
  bytes.resize(static_cast<std::size_t>(std::max(size, 0)));
  return bytes;
}

// Characters that a text file cannot hold within a line or within quotes.
bool HoldsControl(std::u16string_view text) noexcept {
  constexpr std::u16string_view kEndsOfText(u"\0\x1A", 2);
  return text.find_first_of(kEndsOfText) != std::u16string_view::npos ||
         text.find(u"\r\n") != std::u16string_view::npos;
}

// Whether a file's name can stand in a header line and be read back: it has no line end and no
// lone surrogate.
bool FitsHeader(std::u16string_view text) {
  if (HoldsControl(text) || text.find(u'\n') != std::u16string_view::npos) return false;
  return text.empty() ||
         ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, AsOle(text.data()),
                               static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr) > 0;
}

// Whether the reader gets the column's name back from its line. The format cannot hold every name:
// a double quote has no way to be written, and a line it is misread in makes the reader refuse the
// whole section, so that the table could not be opened any more.
bool ReadsBack(const FieldDefinition& field, std::u16string_view line) {
  if (HoldsControl(line) || std::count(line.begin(), line.end(), u'"') % 2 != 0) return false;
  try {
    FieldDefinition read;
    ParseColumnLine({}, quenra::TrimWhiteSpace(line), read);
    return read.name == field.name;
  } catch (const ParseError&) {
    return false;
  }
}

// Every line of the old file but its blank ones, with the section put in place of the old one.
class SectionReplacer {
 public:
  SectionReplacer(std::u16string_view name, std::u16string_view section)
      : header_(u'[' + std::u16string(name) + u']'), section_(section) {}

  void AddLine(std::u16string_view line) {
    const bool isHeader = line.starts_with(u'[');
    if (isHeader) skipping_ = quenra::DataCoreUtil::CompareFoldCase(line, header_);
    if (isHeader && skipping_) AddSection(line);
    if (skipping_ || line.empty()) return;
    text_ += line;
    text_ += u'\n';
  }

  // The whole new file.
  std::u16string Finish() {
    if (!added_) text_ += section_;
    return std::move(text_);
  }

 private:
  // The header line stays as the user has written it.
  void AddSection(std::u16string_view header) {
    if (added_) return;
    added_ = true;
    text_ += header;
    text_ += section_.substr(section_.find(u'\n'));
  }

  const std::u16string header_;
  const std::u16string_view section_;
  std::u16string text_;
  bool skipping_ = false;
  bool added_ = false;
};

struct NewFile {
  std::u16string text;
  bool hadMark = false;
};

NewFile ReplaceIn(const std::u16string& schemaIni, SectionReplacer replacer) {
  TextLineStream stream;
  if (!stream.Open(schemaIni, TextLineStream::kPlainLines)) throw WriteFailure{kCouldNotRead};
  switch (stream.encoding()) {
    case TextEncoding::kUtf16BE:
    case TextEncoding::kUtf32LE:
    case TextEncoding::kUtf32BE:
      throw WriteFailure{kCouldNotRead};
    default:
      break;
  }
  NewFile file;
  file.hadMark = stream.encoding() != TextEncoding::kUndetermined;
  std::u16string line;
  while (stream.ReadLine(line)) replacer.AddLine(line);
  file.text = replacer.Finish();
  return file;
}

// Writes the finished file under its temporary name and gives it its own; nothing stays behind
// when that fails.
void Replace(const SchemaIniPaths& paths, const std::string& bytes, bool existed) {
  const fs::path temporary(NativeFromFileName(paths.temporary));
  std::ofstream stream(temporary.c_str(), std::ios::binary | std::ios::trunc);
  if (!stream.is_open()) throw WriteFailure{existed ? kCouldNotWriteTemporary : kCouldNotCreate};
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  boost::system::error_code error;
  if (stream.fail()) {
    fs::remove(temporary, error);
    throw WriteFailure{existed ? kCouldNotWriteTemporary : kCouldNotWrite};
  }
  fs::rename(temporary, fs::path(NativeFromFileName(paths.schemaIni)), error);
  if (!error) return;
  fs::remove(temporary, error);
  throw WriteFailure{existed ? kCouldNotReplace : kCouldNotCreate};
}

void WriteOrThrow(const SchemaIniPaths& paths, std::u16string_view name,
                  const SchemaOptions& options) {
  if (!FitsHeader(name)) throw WriteFailure{kNameNotText};
  for (const auto& [index, field] : options.columns)
    if (!ReadsBack(field, ColumnLine(field, options.dateTimeFormat)))
      throw WriteFailure{kColumnNotWritable};
  const std::u16string section = SchemaSectionText(name, options);
  boost::system::error_code ignored;
  const fs::file_status status =
      fs::symlink_status(fs::path(NativeFromFileName(paths.schemaIni)), ignored);
  const bool exists = fs::exists(status);
  const NewFile file =
      exists ? ReplaceIn(paths.schemaIni, SectionReplacer(name, section)) : NewFile{section};
  const std::string mark = file.hadMark ? "\xEF\xBB\xBF" : "";
  Replace(paths, mark + ToUtf8(file.text), exists);
}

}  // namespace

std::u16string SchemaSectionText(std::u16string_view sectionName, const SchemaOptions& options) {
  SectionText text(sectionName);
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

bool WriteSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName,
                        const SchemaOptions& options, std::u16string* failure) noexcept {
  try {
    WriteOrThrow(paths, sectionName, options);
    return true;
  } catch (const WriteFailure& reason) {
    if (failure != nullptr) *failure = reason.reason;
  } catch (const std::exception& other) {
    if (failure != nullptr) {
      const std::string_view what = other.what();
      failure->assign(what.begin(), what.end());
    }
  }
  return false;
}

}  // namespace TextFile
