#include "schema/SchemaColumnLine.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "host/DataCore/DataCoreUtil.h"
#include "schema/ParseError.h"
#include "schema/TableSchema.h"

namespace TextFile {

namespace {

constexpr std::u16string_view kPrefix = u"Col";
// Far beyond every table; keeps a mistyped number from asking for the machine's memory.
constexpr std::int64_t kMaxColumns = 1000000;
constexpr std::u16string_view kFirstLettersOfPatterns = u"mMdDyYhH";

// A single blank in quotes as a pattern's second part is the writer's own form: it keeps the Width
// behind a pattern of one part from being taken for the second. All other blanks in quotes belong
// to the pattern, also at its end.
constexpr std::u16string_view kNoSecondPart = u" ";

// Blanks separate tokens; a token in double quotes may hold blanks. Empty tokens are dropped.
std::vector<std::u16string_view> Tokens(std::u16string_view value) {
  std::vector<std::u16string_view> tokens;
  std::size_t i = 0;
  while (i < value.size()) {
    const bool quoted = value[i] == u'"';
    const std::size_t begin = quoted ? i + 1 : i;
    const std::size_t end = std::min(value.find(quoted ? u'"' : u' ', begin), value.size());
    if (end > begin) tokens.push_back(value.substr(begin, end - begin));
    i = end + 1;
  }
  return tokens;
}

// A whole number with an optional sign, in the range of 32 bits.
std::optional<std::int32_t> ToInteger(std::u16string_view text) noexcept {
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  if (text.empty()) return std::nullopt;
  std::int64_t number = 0;
  for (const char16_t unit : text) {
    if (unit < u'0' || unit > u'9') return std::nullopt;
    number = number * 10 + (unit - u'0');
    if (number > std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1) return std::nullopt;
  }
  if (negative) number = -number;
  if (number > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<std::int32_t>(number);
}

bool IsWidth(std::u16string_view token) noexcept {
  return quenra::DataCoreUtil::CompareFoldCase(token, u"width");
}

constexpr bool Is(char16_t unit, char16_t lower, char16_t upper) noexcept {
  return unit == lower || unit == upper;
}

// Keeps the pattern, and the type and order that its first letter tells. False when it tells none.
bool SetPattern(std::u16string pattern, DateFieldFormat& format) {
  const char16_t first = pattern.front();
  const bool hasHour = pattern.find_first_of(u"hH") != std::u16string::npos;
  format.type = hasHour ? FieldType::kDate : FieldType::kDateOnly;
  if (Is(first, u'm', u'M')) {
    format.order = DateOrder::kMonthDayYear;
  } else if (Is(first, u'd', u'D')) {
    format.order = DateOrder::kDayMonthYear;
  } else if (Is(first, u'y', u'Y')) {
    format.order = DateOrder::kYearMonthDay;
  } else if (Is(first, u'h', u'H')) {
    format.type = FieldType::kTimeOnly;
    format.order = DateOrder::kAny;
  } else {
    return false;
  }
  format.pattern = std::move(pattern);
  return true;
}

bool IsDateWord(std::u16string_view word) noexcept {
  // "DateTime" has the same type but takes no pattern.
  return word.size() == 4 && TypeOfKeyword(word) == FieldType::kDate;
}

}  // namespace

std::optional<std::int32_t> ColumnOfKey(std::u16string_view key) noexcept {
  if (!key.starts_with(kPrefix) || key.size() == kPrefix.size()) return std::nullopt;
  std::int64_t number = 0;
  for (const char16_t unit : key.substr(kPrefix.size())) {
    if (unit < u'0' || unit > u'9') return std::nullopt;
    number = number * 10 + (unit - u'0');
    if (number > kMaxColumns) return std::nullopt;
  }
  if (number == 0) return std::nullopt;
  return static_cast<std::int32_t>(number - 1);
}

void ParseColumnLine(std::u16string_view key, std::u16string_view value, FieldDefinition& field) {
  const std::vector<std::u16string_view> tokens = Tokens(value);
  const auto fail = [&](ParseErrorCode code) { throw ParseError(code, key, value); };
  if (tokens.empty()) fail(ParseErrorCode::kMissingFieldName);
  if (tokens.size() < 2) fail(ParseErrorCode::kMissingFieldType);
  field.name = tokens[0];
  field.type = TypeOfKeyword(tokens[1]);
  if (field.type == FieldType::kUndetermined) fail(ParseErrorCode::kUnknownFieldType);

  std::size_t next = 2;
  if (IsDateWord(tokens[1]) && next < tokens.size() && !IsWidth(tokens[next])) {
    std::u16string pattern(tokens[next++]);
    // A second part is taken whatever it is, so Width behind a pattern of one part is swallowed.
    if (next < tokens.size()) {
      if (tokens[next] != kNoSecondPart) pattern += u' ' + std::u16string(tokens[next]);
      ++next;
    }
    if (!SetPattern(std::move(pattern), field.dateFormat)) fail(ParseErrorCode::kBadDateFormat);
  }
  if (next < tokens.size()) {
    if (!IsWidth(tokens[next])) fail(ParseErrorCode::kWidthKeywordExpected);
    const auto width = next + 1 < tokens.size() ? ToInteger(tokens[next + 1]) : std::nullopt;
    if (!width.has_value()) fail(ParseErrorCode::kBadFieldWidth);
    field.width = *width;
    field.hasWidth = true;
  }
  if (field.type == FieldType::kDate && !field.dateFormat.pattern.empty())
    field.type = field.dateFormat.type;
}

// The pattern is read as one token, or as two with whatever they hold.
std::u16string DatePatternClause(std::u16string_view pattern, bool widthFollows) {
  pattern.remove_prefix(std::min(pattern.find_first_not_of(u' '), pattern.size()));
  if (pattern.empty() || pattern.find_first_of(u"\"\r\n") != std::u16string_view::npos ||
      kFirstLettersOfPatterns.find(pattern.front()) == std::u16string_view::npos)
    return {};
  const std::u16string text(pattern);
  const std::size_t blank = text.rfind(u' ');
  if (blank != std::u16string::npos && blank + 1 < text.size()) {
    if (text.find(u' ') == blank) return u' ' + text;
    return u" \"" + text.substr(0, blank) + u"\" " + text.substr(blank + 1);
  }
  std::u16string clause = blank == std::u16string::npos ? u' ' + text : u" \"" + text + u'"';
  if (widthFollows) clause += u" \"" + std::u16string(kNoSecondPart) + u'"';
  return clause;
}

}  // namespace TextFile
