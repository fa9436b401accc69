#include "schema/SchemaIniReader.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/DataCore/DataCoreUtil.h"
#include "reading/TextLineStream.h"
#include "schema/LocaleDefaults.h"
#include "schema/SchemaColumnLine.h"

namespace TextFile {

namespace {

using quenra::DataCoreUtil;

// The options of one section. Keys are compared unit by unit, so letter case matters.
using OptionMap = std::map<std::u16string, std::u16string, std::less<>>;

// ---------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------

// Moves behind the header line of the file's section and answers the name as it is written there.
std::optional<std::u16string> FindSection(TextLineStream& stream, std::u16string_view fileName) {
  std::u16string line;
  while (stream.SkipTo('[') && stream.ReadLine(line)) {
    if (line.size() < 2 || line.back() != u']') continue;
    std::u16string name = line.substr(1, line.size() - 2);
    if (DataCoreUtil::CompareFoldCase(name, fileName)) return name;
  }
  return std::nullopt;
}

struct KeyAndValue {
  std::u16string_view key;
  std::u16string_view value;
};

// A line without "=" is key and value in one.
KeyAndValue SplitAtEquals(std::u16string_view line) noexcept {
  const std::size_t equals = line.find(u'=');
  if (equals == std::u16string_view::npos) return {line, line};
  return {line.substr(0, equals), line.substr(equals + 1)};
}

bool HoldsOddQuotes(std::u16string_view line) noexcept {
  return std::count(line.begin(), line.end(), u'"') % 2 != 0;
}

// The one option whose value is a single quote; its line is complete by itself.
bool IsQuoteAsTextDelimiter(std::u16string_view line) noexcept {
  const KeyAndValue parts = SplitAtEquals(line);
  return quenra::TrimBlanks(parts.key) == u"TextDelimiter" &&
         quenra::TrimBlanks(parts.value) == u"\"";
}

// The next line of the section; a quoted value may span lines. False at the next section's header
// and at the end.
bool ReadOptionLine(TextLineStream& stream, std::u16string& line) {
  if (!stream.ReadLine(line) || line.starts_with(u'[')) return false;
  // Each line is counted once: an open quote may run to the end of a file of any length.
  bool open = HoldsOddQuotes(line) && !IsQuoteAsTextDelimiter(line);
  std::u16string next;
  while (open && stream.ReadLine(next)) {
    line += u'\n';
    line += next;
    open = !HoldsOddQuotes(next);
  }
  return true;
}

OptionMap ReadOptions(TextLineStream& stream) {
  OptionMap options;
  std::u16string line;
  while (ReadOptionLine(stream, line)) {
    if (line.empty()) continue;
    const KeyAndValue parts = SplitAtEquals(line);
    const bool inserted =
        options.emplace(quenra::TrimWhiteSpace(parts.key), quenra::TrimWhiteSpace(parts.value))
            .second;
    if (!inserted) throw ParseError(ParseErrorCode::kDuplicateOption, line);
  }
  return options;
}

// ---------------------------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------------------------

// Reads a number as a stream of the C++ library does: a sign may stand in front, a negative number
// wraps around, and what follows the digits is not looked at. Nothing when there are no digits or
// the number needs more than 32 bits.
std::optional<std::uint32_t> ExtractUnsigned(std::u16string_view text) noexcept {
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  std::uint64_t number = 0;
  std::size_t digits = 0;
  for (; digits < text.size() && text[digits] >= u'0' && text[digits] <= u'9'; ++digits) {
    number = number * 10 + static_cast<std::uint64_t>(text[digits] - u'0');
    if (number > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  }
  if (digits == 0) return std::nullopt;
  const auto value = static_cast<std::uint32_t>(number);
  return negative ? 0u - value : value;
}

// Takes options out of the map one by one and stores their values.
class OptionApplier {
 public:
  OptionApplier(OptionMap& map, SchemaOptions& options) : map_(map), options_(options) {}

  void Apply() {
    ApplyFormat();
    if (Boolean(u"ColNameHeader", options_.columnNameHeader))
      options_.specified |= SchemaOptions::kColNameHeader;
    if (Number(u"MaxScanRows", options_.maxScanRows))
      options_.specified |= SchemaOptions::kMaxScanRows;
    ApplyColumns();
    ApplyCharacterSet();
    for (const std::u16string_view key : {u"DateTimeFormat", u"DateDateTimeFormat"})
      if (Text(key, options_.dateTimeFormat)) options_.specified |= SchemaOptions::kDateTimeFormat;
    if (options_.fixedLength) RequireEveryColumn();
    ApplyTextDelimiter();
    ApplyNumber(options_.number);
    ApplyCurrency(options_.currency);
  }

 private:
  std::optional<std::u16string> Take(std::u16string_view key) {
    const auto found = map_.find(key);
    if (found == map_.end()) return std::nullopt;
    std::u16string value = std::move(found->second);
    map_.erase(found);
    return value;
  }

  [[noreturn]] static void Refuse(std::u16string_view key, std::u16string_view value) {
    throw ParseError(ParseErrorCode::kInvalidOptionValue, key, value);
  }

  bool Text(std::u16string_view key, std::u16string& stored) {
    auto value = Take(key);
    if (value.has_value()) stored = std::move(*value);
    return value.has_value();
  }

  // One of two words, compared exactly.
  bool Choice(std::u16string_view key, std::u16string_view yes, std::u16string_view no,
              bool& stored) {
    const auto value = Take(key);
    if (!value.has_value()) return false;
    if (*value != yes && *value != no) Refuse(key, *value);
    stored = *value == yes;
    return true;
  }

  bool Boolean(std::u16string_view key, bool& stored) {
    return Choice(key, u"True", u"False", stored);
  }

  bool Number(std::u16string_view key, std::uint32_t& stored) {
    const auto value = Take(key);
    if (!value.has_value()) return false;
    const auto number = ExtractUnsigned(*value);
    if (!number.has_value()) Refuse(key, *value);
    stored = *number;
    return true;
  }

  bool Character(std::u16string_view key, char16_t& stored) {
    const auto value = Take(key);
    if (!value.has_value()) return false;
    if (value->size() != 1) Refuse(key, *value);
    stored = value->front();
    return true;
  }

  void ApplyFormat();
  void ApplyColumns();
  void ApplyCharacterSet();
  void RequireEveryColumn() const;
  void ApplyTextDelimiter();
  void ApplyNumber(NumberFormat::Settings& number);
  void ApplyCurrency(CurrencySettings& currency);

  OptionMap& map_;
  SchemaOptions& options_;
};

// The delimiter of a Format value. Characters behind "Delimited(x)" are let through.
char16_t CustomDelimiter(std::u16string_view format) {
  constexpr std::u16string_view kPrefix = u"Delimited(";
  if (!format.starts_with(kPrefix) || format.size() == kPrefix.size())
    throw ParseError(ParseErrorCode::kInvalidFormat, format);
  const char16_t delimiter = format[kPrefix.size()];
  if (delimiter == u'"') throw ParseError(ParseErrorCode::kDoubleQuoteDelimiter, format);
  if (!format.substr(kPrefix.size() + 1).starts_with(u')'))
    throw ParseError(ParseErrorCode::kInvalidFormat, format);
  return delimiter;
}

void OptionApplier::ApplyFormat() {
  const auto value = Take(u"Format");
  if (!value.has_value()) return;
  options_.fixedLength = *value == u"FixedLength";
  if (options_.fixedLength)
    options_.delimiter = u'\0';
  else if (*value == u"TabDelimited")
    options_.delimiter = u'\t';
  else if (*value == u"CSVDelimited")
    options_.delimiter = u',';
  else
    options_.delimiter = CustomDelimiter(*value);
  options_.specified |= SchemaOptions::kFormat;
}

void OptionApplier::ApplyColumns() {
  for (auto entry = map_.begin(); entry != map_.end();) {
    const auto column = ColumnOfKey(entry->first);
    if (!column.has_value()) {
      ++entry;
      continue;
    }
    ParseColumnLine(entry->first, entry->second, options_.columns[*column]);
    entry = map_.erase(entry);
  }
}

void OptionApplier::ApplyCharacterSet() {
  if (Choice(u"CharacterSet", u"ANSI", u"OEM", options_.ansi))
    options_.specified |= SchemaOptions::kCharacterSet;
}

void OptionApplier::RequireEveryColumn() const {
  std::int32_t expected = 0;
  for (const auto& [index, definition] : options_.columns)
    if (index != expected++) throw ParseError(ParseErrorCode::kFixedWidthFieldsMissing, {});
}

// Any other value counts as given but leaves the text delimiter as it is.
void OptionApplier::ApplyTextDelimiter() {
  const auto value = Take(u"TextDelimiter");
  if (!value.has_value()) return;
  options_.specified |= SchemaOptions::kTextDelimiter;
  if (value->size() == 1)
    options_.textDelimiter = value->front();
  else if (DataCoreUtil::CompareFoldCase(*value, u"NONE"))
    options_.textDelimiter = u'\0';
}

void OptionApplier::ApplyNumber(NumberFormat::Settings& number) {
  using NumberFormat::Settings;
  const auto mark = [&](bool given, Settings::Option option) {
    if (given) number.specified = static_cast<std::uint16_t>(number.specified | option);
  };
  mark(Character(u"DecimalSymbol", number.decimalSymbol), Settings::kDecimalSymbol);
  mark(Number(u"NumberDigits", number.digits), Settings::kNumberDigits);
  mark(Boolean(u"NumberLeadingZeros", number.leadingZeros), Settings::kLeadingZeros);
}

void OptionApplier::ApplyCurrency(CurrencySettings& currency) {
  const auto mark = [&](bool given, CurrencySettings::Option option) {
    if (given) currency.specified |= option;
  };
  mark(Text(u"CurrencySymbol", currency.symbol), CurrencySettings::kSymbol);
  mark(Text(u"CurrencyPosFormat", currency.positiveFormat), CurrencySettings::kPositiveFormat);
  mark(Number(u"CurrencyDigits", currency.digits), CurrencySettings::kDigits);
  mark(Text(u"CurrencyNegFormat", currency.negativeFormat), CurrencySettings::kNegativeFormat);
  mark(Character(u"CurrencyThousandSymbol", currency.thousandSymbol),
       CurrencySettings::kThousandSymbol);
  mark(Character(u"CurrencyDecimalSymbol", currency.decimalSymbol),
       CurrencySettings::kDecimalSymbol);
}

bool ReadSection(TextLineStream& stream, std::u16string_view fileName, SchemaOptions& options) {
  auto name = FindSection(stream, fileName);
  if (!name.has_value()) return false;

  SchemaOptions applied = options;
  applied.sectionName = std::move(*name);
  OptionMap map = ReadOptions(stream);
  OptionApplier(map, applied).Apply();
  CompleteFromLocale(applied);
  if (!map.empty())
    throw ParseError(ParseErrorCode::kUnknownOption, map.begin()->first, map.begin()->second);
  options = std::move(applied);
  return true;
}

}  // namespace

bool ReadSchemaSection(const SchemaIniPaths& paths, std::u16string_view fileName,
                       SchemaOptions& options) {
  TextLineStream stream;
  return stream.Open(paths.schemaIni, TextLineStream::kPlainLines) &&
         ReadSection(stream, fileName, options);
}

bool ReadSchemaSection(std::unique_ptr<std::streambuf> schemaIni, std::u16string_view fileName,
                       SchemaOptions& options) {
  constexpr std::size_t kBlockSize = 16 * 1024;  // holds most of them
  TextLineStream stream;
  stream.Open(std::move(schemaIni), TextLineStream::kPlainLines, kBlockSize);
  return ReadSection(stream, fileName, options);
}

}  // namespace TextFile
