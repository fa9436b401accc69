#include "schema/SchemaIniWriter.h"

#include <string>

#include "host/CoreSupport/CharacterClasses.h"
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

bool HasWidthClause(const FieldDefinition& field) noexcept {
  return field.hasWidth && field.width >= 1;
}

// The pattern behind the keyword of a date. It is read as one token, or as two with whatever they
// hold; a part with blanks of its own goes into quotes. Patterns that could not be read back, and
// that of a date with an offset, are left out.
std::u16string PatternClause(const FieldDefinition& field) {
  constexpr std::u16string_view kFirstLetters = u"mMdDyYhH";
  const std::u16string_view pattern = quenra::TrimBlanks(field.dateFormat.pattern);
  const bool dated = field.type == FieldType::kDate || field.type == FieldType::kDateOnly ||
                     field.type == FieldType::kTimeOnly;
  if (!dated || pattern.empty() || pattern.find_first_of(u"\"\r\n") != pattern.npos ||
      kFirstLetters.find(pattern.front()) == pattern.npos)
    return {};
  std::u16string clause(u" ");
  const std::size_t blank = pattern.rfind(u' ');
  if (blank == pattern.npos) {
    clause += pattern;
    // A second part of nothing but a blank, or Width would be taken for the second part.
    if (HasWidthClause(field)) clause += u" \" \"";
  } else if (pattern.find(u' ') == blank) {
    clause += pattern;
  } else {
    ((clause += u'"') += pattern.substr(0, blank)) += u"\" ";
    clause += pattern.substr(blank + 1);
  }
  return clause;
}

// No name can hold what ends its line, its quotes or the file.
void RequireWritableName(const FieldDefinition& field) {
  constexpr std::u16string_view kUnwritable(u"\0\x1A\r\n\"", 5);
  if (field.name.empty()) throw SchemaIniFailure{u"A field without a name cannot be written."};
  if (field.name.find_first_of(kUnwritable) != std::u16string::npos ||
      !IsWellFormedText(field.name))
    throw SchemaIniFailure{u"The name of field \"" + field.name + u"\" cannot be written."};
}

std::u16string ColumnLine(const FieldDefinition& field) {
  RequireWritableName(field);
  // White space in front of a value does not survive being read either.
  const bool quoted = field.name.find(u' ') != std::u16string::npos ||
                      quenra::IsWhiteSpace(field.name.front());
  std::u16string line = quoted ? u'"' + field.name + u'"' : field.name;
  line += u' ';
  line += KeywordOfType(field.type);
  line += PatternClause(field);
  if (HasWidthClause(field)) line += u" Width " + SectionText::Decimal(field.width);
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
  if (given(CurrencySettings::kSymbol))
    text.Line(u"CurrencySymbol", currency.symbol);
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
  if (options.IsSpecified(SchemaOptions::kFormat))
    text.Line(u"Format", FormatOf(options));
  if (options.IsSpecified(SchemaOptions::kColNameHeader))
    text.Flag(u"ColNameHeader", options.columnNameHeader);
  if (options.IsSpecified(SchemaOptions::kMaxScanRows))
    text.Number(u"MaxScanRows", options.maxScanRows);
  for (const auto& [index, field] : options.columns)
    text.Line(u"Col" + SectionText::Decimal(index + 1), ColumnLine(field));
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

// A schema.ini that cannot be read has no sections, here as for those who open tables.
std::optional<SectionLines> LinesOf(const SchemaIniPaths& paths, std::u16string_view name) {
  try {
    const SchemaIniFile file(paths, SchemaIniFile::Access::kRead);
    if (const SectionLines* lines = file.Find(name)) return *lines;
  } catch (const SchemaIniFailure&) {
  }
  return std::nullopt;
}

bool HasSection(const SchemaIniPaths& paths, std::u16string_view name) {
  return LinesOf(paths, name).has_value();
}

}  // namespace

bool WriteSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName,
                        const SchemaOptions& options, std::u16string* failure) noexcept {
  return Guarded(failure, [&] {
    SchemaIniFile file(paths, SchemaIniFile::Access::kWrite);
    file.Replace(sectionName, SchemaSectionLines(options));
    file.Save();
  });
}

bool AddSchemaColumn(const SchemaIniPaths& paths, std::u16string_view sectionName,
                     std::int32_t index, const FieldDefinition& column,
                     std::optional<FieldDefinition>& declared) {
  const auto read = [&] {
    SchemaOptions options;
    ReadSchemaSection(paths, sectionName, options);
    const auto found = options.columns.find(index);
    if (found != options.columns.end()) declared = found->second;
    return options;
  };
  // The first look needs no right to write.
  read();
  if (declared.has_value()) return false;
  return Guarded(nullptr, [&] {
    SchemaIniFile file(paths, SchemaIniFile::Access::kWrite);
    SchemaOptions options = read();
    if (declared.has_value()) throw SchemaIniFailure{u"The column is declared already."};
    options.columns.emplace(index, column);
    file.Replace(sectionName, SchemaSectionLines(options));
    file.Save();
  });
}

SavedSchemaSection::SavedSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName)
    : paths_(paths), name_(sectionName), lines_(LinesOf(paths, sectionName)) {}

void SavedSchemaSection::Restore() const noexcept {
  if (!lines_.has_value()) {
    DropSchemaSection(paths_, name_);
    return;
  }
  Guarded(nullptr, [&] {
    SchemaIniFile file(paths_, SchemaIniFile::Access::kWrite);
    file.Replace(name_, *lines_);
    file.Save();
  });
}

bool DropSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName,
                       std::u16string* failure) noexcept {
  return Guarded(failure, [&] {
    if (!HasSection(paths, sectionName)) return;
    SchemaIniFile file(paths, SchemaIniFile::Access::kWrite);
    file.Remove(sectionName);
    file.Save();
  });
}

bool RenameSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName,
                         std::u16string_view newName, std::u16string* failure) noexcept {
  return Guarded(failure, [&] {
    if (!HasSection(paths, sectionName)) return;
    SchemaIniFile file(paths, SchemaIniFile::Access::kWrite);
    file.Rename(sectionName, newName);
    file.Save();
  });
}

bool DuplicateSchemaSection(const SchemaIniPaths& paths, std::u16string_view sectionName,
                            std::u16string_view newName, std::u16string* failure) noexcept {
  return Guarded(failure, [&] {
    if (!HasSection(paths, sectionName) && !HasSection(paths, newName)) return;
    SchemaIniFile file(paths, SchemaIniFile::Access::kWrite);
    file.Remove(newName);
    file.Duplicate(sectionName, newName);
    file.Save();
  });
}

bool CopySchemaSection(const SchemaIniPaths& from, std::u16string_view sectionName,
                       const SchemaIniPaths& to, std::u16string_view newName,
                       std::u16string* failure) noexcept {
  return Guarded(failure, [&] {
    const std::optional<SectionLines> lines = LinesOf(from, sectionName);
    if (!lines.has_value()) {
      // What an earlier file of the new name has left must not describe the copy.
      if (!HasSection(to, newName)) return;
      SchemaIniFile target(to, SchemaIniFile::Access::kWrite);
      target.Remove(newName);
      target.Save();
      return;
    }
    SchemaIniFile target(to, SchemaIniFile::Access::kWrite);
    target.Replace(newName, *lines);
    target.Save();
  });
}

}  // namespace TextFile
