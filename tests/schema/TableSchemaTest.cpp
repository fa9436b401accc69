#include <gtest/gtest.h>

#include <string_view>

#include "schema/TableSchema.h"
#include "support/UserLocale.h"

namespace TextFile {
namespace {

class TableSchemaTest : public EnglishTest {};

TEST_F(TableSchemaTest, FieldTypesAreTheHostsNumbers) {
  const struct {
    FieldType type;
    int code;
  } cases[] = {
      {FieldType::kSmallInteger, 0},     {FieldType::kInteger, 1},       {FieldType::kSingle, 2},
      {FieldType::kDouble, 3},           {FieldType::kString, 4},        {FieldType::kDate, 5},
      {FieldType::kObjectId, 6},         {FieldType::kGuid, 10},         {FieldType::kGlobalId, 11},
      {FieldType::kBigInteger, 13},      {FieldType::kDateOnly, 14},     {FieldType::kTimeOnly, 15},
      {FieldType::kTimestampOffset, 16}, {FieldType::kUndetermined, -1},
  };
  for (const auto& c : cases) EXPECT_EQ(static_cast<int>(c.type), c.code);
}

TEST_F(TableSchemaTest, DateOrdersAreTheHostsNumbers) {
  EXPECT_EQ(static_cast<int>(DateOrder::kAny), 0);
  EXPECT_EQ(static_cast<int>(DateOrder::kMonthDayYear), 1);
  EXPECT_EQ(static_cast<int>(DateOrder::kDayMonthYear), 2);
  EXPECT_EQ(static_cast<int>(DateOrder::kYearMonthDay), 3);
}

TEST_F(TableSchemaTest, KeywordsReadInAnyLetterCase) {
  struct {
    std::u16string_view word;
    FieldType type;
  } const cases[] = {
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
      {u"Integer", FieldType::kSmallInteger},
      {u"LONG", FieldType::kInteger},
      {u"LongLong", FieldType::kBigInteger},
      {u"Currency", FieldType::kDouble},
      {u"dAtEtImE", FieldType::kDate},
      {u"MEMO", FieldType::kString},
      {u"", FieldType::kUndetermined},
      {u"int", FieldType::kUndetermined},
      {u"texts", FieldType::kUndetermined},
      {u"tex", FieldType::kUndetermined},
      {u"dateonly", FieldType::kUndetermined},
      {u"guid", FieldType::kUndetermined},
      {u"date ", FieldType::kUndetermined},
      {u"string", FieldType::kUndetermined},
      {u"\u0442\u0435xt", FieldType::kUndetermined},
  };
  for (const auto& c : cases)
    EXPECT_EQ(TypeOfKeyword(c.word), c.type) << ::testing::PrintToString(std::u16string(c.word));
}

TEST_F(TableSchemaTest, WrittenKeywords) {
  struct {
    FieldType type;
    std::u16string_view word;
  } const cases[] = {
      {FieldType::kSmallInteger, u"Short"},   {FieldType::kInteger, u"Long"},
      {FieldType::kObjectId, u"Long"},        {FieldType::kBigInteger, u"LongLong"},
      {FieldType::kSingle, u"Single"},        {FieldType::kDouble, u"Double"},
      {FieldType::kString, u"Text"},          {FieldType::kGuid, u"Text"},
      {FieldType::kGlobalId, u"Text"},        {FieldType::kDate, u"Date"},
      {FieldType::kDateOnly, u"Date"},        {FieldType::kTimeOnly, u"Date"},
      {FieldType::kTimestampOffset, u"Date"}, {FieldType::kUndetermined, u""},
      {static_cast<FieldType>(7), u""},       {static_cast<FieldType>(8), u""},
      {static_cast<FieldType>(9), u""},       {static_cast<FieldType>(12), u""},
      {static_cast<FieldType>(17), u""},
  };
  for (const auto& c : cases) EXPECT_EQ(KeywordOfType(c.type), c.word) << static_cast<int>(c.type);
}

TEST_F(TableSchemaTest, WrittenKeywordsReadBack) {
  for (const FieldType type :
       {FieldType::kSmallInteger, FieldType::kInteger, FieldType::kBigInteger, FieldType::kSingle,
        FieldType::kDouble, FieldType::kString, FieldType::kDate})
    EXPECT_EQ(TypeOfKeyword(KeywordOfType(type)), type);
  EXPECT_EQ(TypeOfKeyword(KeywordOfType(FieldType::kObjectId)), FieldType::kInteger);
  EXPECT_EQ(TypeOfKeyword(KeywordOfType(FieldType::kGuid)), FieldType::kString);
  EXPECT_EQ(TypeOfKeyword(KeywordOfType(FieldType::kGlobalId)), FieldType::kString);
}

TEST_F(TableSchemaTest, NewOptions) {
  const SchemaOptions options;
  EXPECT_EQ(options.specified, 0u);
  EXPECT_EQ(options.sectionName, u"");
  EXPECT_FALSE(options.fixedLength);
  EXPECT_EQ(options.delimiter, u',');
  EXPECT_EQ(options.textDelimiter, u'"');
  EXPECT_EQ(options.recordTerminator, '\n');
  EXPECT_FALSE(options.columnNameHeader);
  EXPECT_EQ(options.maxScanRows, 4294967295u);
  EXPECT_FALSE(options.ansi);
  EXPECT_EQ(options.dateTimeFormat, u"");
  EXPECT_EQ(options.number.specified, 0);
  EXPECT_EQ(options.number.decimalSymbol, u'.');
  EXPECT_EQ(options.number.digits, 2u);
  EXPECT_FALSE(options.number.leadingZeros);
  EXPECT_EQ(options.number.localeDecimalSymbol, u'.');
  EXPECT_EQ(options.currency.specified, 0u);
  EXPECT_EQ(options.currency.symbol, u"");
  EXPECT_EQ(options.currency.thousandSymbol, u',');
  EXPECT_EQ(options.currency.decimalSymbol, u'.');
  EXPECT_EQ(options.currency.digits, 2u);
  EXPECT_EQ(options.currency.positiveFormat, u"");
  EXPECT_EQ(options.currency.negativeFormat, u"");
  EXPECT_TRUE(options.columns.empty());
}

TEST_F(TableSchemaTest, FallbackDecimalSymbolIsTheLocales) {
  for (const std::u16string_view name : {u"de-DE", u"sv-SE", u"fr-FR"}) {
    locale_.Set(name);
    const SchemaOptions options;
    EXPECT_EQ(options.number.localeDecimalSymbol, u',');
    EXPECT_EQ(options.number.decimalSymbol, u'.') << "only completing the options takes it";
  }
}

TEST_F(TableSchemaTest, NewFieldHasTheDefaultTextWidth) {
  const FieldDefinition field;
  EXPECT_EQ(field.width, 8000);
  EXPECT_FALSE(field.hasWidth);
  EXPECT_FALSE(field.isCoordinate);
  EXPECT_FALSE(field.isPair);
  EXPECT_EQ(field.coordinateFormat, 0);
  EXPECT_FALSE(field.hasDatePrecision);
  EXPECT_EQ(field.dateFormat.version, 340u);
}

TEST_F(TableSchemaTest, DelimiterOfExtension) {
  struct {
    std::u16string_view name;
    char16_t delimiter;
  } const cases[] = {
      {u"a.csv", u','},  {u"a.txt", u','}, {u"a.asc", u','},     {u"a.tab", u'\t'},
      {u"a.tsv", u'\t'}, {u"a.psv", u'|'}, {u"a.TAB", u'\t'},    {u"a.Tsv", u'\t'},
      {u"a.PSV", u'|'},  {u"a", u','},     {u"a.tsv.csv", u','}, {u"tsv", u','},
      {u"a.tsvx", u','},
  };
  for (const auto& c : cases)
    EXPECT_EQ(DelimiterOfExtension(c.name), c.delimiter)
        << ::testing::PrintToString(std::u16string(c.name));
}

TEST_F(TableSchemaTest, GroupingSymbolIsTheOtherOfPointAndComma) {
  NumberFormat::Settings number;
  number.decimalSymbol = u'.';
  EXPECT_EQ(number.GroupingSymbol(), u',');
  number.decimalSymbol = u',';
  EXPECT_EQ(number.GroupingSymbol(), u'.');
  number.decimalSymbol = u'-';
  EXPECT_EQ(number.GroupingSymbol(), u'.');
  EXPECT_EQ(NumberFormat::SwappedDecimalSymbol(u','), u'.');
  EXPECT_EQ(NumberFormat::SwappedDecimalSymbol(u'.'), u',');
  EXPECT_EQ(NumberFormat::SwappedDecimalSymbol(u';'), u',');
}

}  // namespace
}  // namespace TextFile
