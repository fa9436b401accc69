#include "schema/TableSchema.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/CoreSupport/QUENRALocale.h"
#include "host/DataCore/DataCoreUtil.h"

namespace TextFile {

namespace {

// The longest decimal symbol of a locale that is asked for, its terminating zero included.
constexpr int kSymbolBufferUnits = 4;

constexpr std::array<std::pair<std::u16string_view, FieldType>, 16> kKeywords = {{
    {u"bit", FieldType::kSmallInteger},
    {u"byte", FieldType::kSmallInteger},
    {u"short", FieldType::kSmallInteger},
    {u"integer", FieldType::kSmallInteger},
    {u"long", FieldType::kInteger},
    {u"longlong", FieldType::kBigInteger},
    {u"currency", FieldType::kDouble},
    {u"single", FieldType::kSingle},
    {u"float", FieldType::kSingle},
    {u"double", FieldType::kDouble},
    {u"datetime", FieldType::kDate},
    {u"date", FieldType::kDate},
    {u"text", FieldType::kString},
    {u"memo", FieldType::kString},
    {u"char", FieldType::kString},
    {u"longchar", FieldType::kString},
}};

constexpr char16_t ToLowerAscii(char16_t unit) noexcept {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

bool EqualsLowered(std::u16string_view word, std::u16string_view keyword) noexcept {
  return std::equal(word.begin(), word.end(), keyword.begin(), keyword.end(),
                    [](char16_t a, char16_t b) { return ToLowerAscii(a) == b; });
}

}  // namespace

NumberFormat::Settings::Settings() {
  const std::u16string symbol = quenra::QUENRALocale::Value(LOCALE_SDECIMAL, kSymbolBufferUnits);
  if (symbol.size() == 1) localeDecimalSymbol = symbol.front();
}

std::u16string_view ExtensionOf(std::u16string_view fileName) noexcept {
  const std::size_t dot = fileName.rfind(u'.');
  if (dot == std::u16string_view::npos || fileName == u"." || fileName == u"..") return {};
  return fileName.substr(dot);
}

char16_t DelimiterOfExtension(std::u16string_view fileName) noexcept {
  using quenra::DataCoreUtil;
  const std::u16string_view extension = ExtensionOf(fileName);
  if (DataCoreUtil::CompareFoldCase(extension, u".tab") ||
      DataCoreUtil::CompareFoldCase(extension, u".tsv"))
    return u'\t';
  return DataCoreUtil::CompareFoldCase(extension, u".psv") ? u'|' : u',';
}

FieldType TypeOfKeyword(std::u16string_view word) noexcept {
  for (const auto& [keyword, type] : kKeywords)
    if (EqualsLowered(word, keyword)) return type;
  return FieldType::kUndetermined;
}

std::u16string_view KeywordOfType(FieldType type) noexcept {
  switch (type) {
    case FieldType::kSmallInteger:
      return u"Short";
    case FieldType::kInteger:
    case FieldType::kObjectId:
      return u"Long";
    case FieldType::kBigInteger:
      return u"LongLong";
    case FieldType::kSingle:
      return u"Single";
    case FieldType::kDouble:
      return u"Double";
    case FieldType::kString:
    case FieldType::kGuid:
    case FieldType::kGlobalId:
      return u"Text";
    case FieldType::kDate:
    case FieldType::kDateOnly:
    case FieldType::kTimeOnly:
    case FieldType::kTimestampOffset:
      return u"Date";
    case FieldType::kUndetermined:
      break;
  }
  return {};
}

}  // namespace TextFile
