#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "schema/ParseError.h"
#include "schema/SchemaColumnLine.h"

namespace TextFile {
namespace {

TEST(SchemaColumnLineTest, KeysOfColumns) {
  struct {
    std::u16string_view key;
    std::optional<std::int32_t> column;
  } const cases[] = {
      {u"Col1", 0},
      {u"Col2", 1},
      {u"Col01", 0},
      {u"Col0000000001", 0},
      {u"Col12", 11},
      {u"Col1000000", 999999},
      {u"Col1000001", {}},
      {u"Col99999999999999999999", {}},
      {u"Col0", {}},
      {u"Col-1", {}},
      {u"Col+1", {}},
      {u"Col", {}},
      {u"Col1a", {}},
      {u"Col 1", {}},
      {u"Col1 ", {}},
      {u"Column", {}},
      {u"col1", {}},
      {u"COL1", {}},
      {u"1", {}},
      {u"", {}},
      {u"ColNameHeader", {}},
      {u"Col1.0", {}},
      {u"Col\u0661", {}},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ColumnOfKey(c.key), c.column) << ::testing::PrintToString(std::u16string(c.key));
}

// "name|type|width or -|pattern|type of the pattern|order"
std::u16string Parsed(std::u16string_view value) {
  FieldDefinition field;
  ParseColumnLine(u"Col1", value, field);
  const auto number = [](int n) {
    const std::string digits = std::to_string(n);
    return std::u16string(digits.begin(), digits.end());
  };
  std::u16string text = field.name + u'|' + number(static_cast<int>(field.type)) + u'|' +
                        (field.hasWidth ? number(field.width) : u"-");
  if (!field.dateFormat.pattern.empty())
    text += u'|' + field.dateFormat.pattern + u'|' +
            number(static_cast<int>(field.dateFormat.type)) + u'|' +
            number(static_cast<int>(field.dateFormat.order));
  return text;
}

struct AcceptedCase {
  std::u16string_view value;
  std::u16string_view parsed;
  const char* why;
};

TEST(SchemaColumnLineTest, AcceptedLines) {
  const AcceptedCase cases[] = {
      {u"Name Text", u"Name|4|-", "name and type"},
      {u"  Name   Text  ", u"Name|4|-", "empty tokens are dropped"},
      {u"\"First Name\" Text", u"First Name|4|-", "blanks of a quoted name stay"},
      {u"\" a  b \" Text", u" a  b |4|-", "all of them"},
      {u"\"Name\"Text", u"Name|4|-", "nothing need stand behind a quote"},
      {u"a\"b Text", u"a\"b|4|-", "a quote within a token is a character"},
      {u"Name \"Text\"", u"Name|4|-", "the type word may be quoted"},
      {u"\"Name\" Text \"Width\" \"10\"", u"Name|4|10", "every token may"},
      {u"\"\" Name Text", u"Name|4|-", "an empty quoted token is dropped"},
      {u"N\u00E4m\u0113 lONG", u"N\u00E4m\u0113|1|-", "any letter case of the type"},
      {u"Name Integer", u"Name|0|-", "16 bits"},
      {u"Name Long", u"Name|1|-", "32 bits"},
      {u"Name Currency", u"Name|3|-", "money"},
      {u"Name Text Width 10", u"Name|4|10", "width"},
      {u"Name Text WIDTH 10", u"Name|4|10", "width in any letter case"},
      {u"Name Long width 5", u"Name|1|5", "width of any type"},
      {u"Name Text Width 0", u"Name|4|0", "no range check"},
      {u"Name Text Width -5", u"Name|4|-5", "no range check below zero"},
      {u"Name Text Width 10 and more", u"Name|4|10", "behind the width nothing counts"},
      {u"Name Date", u"Name|5|-", "a date without a pattern"},
      {u"Name DateTime", u"Name|5|-", "the other word"},
      {u"Name Date Width 10", u"Name|5|10", "no pattern but a width"},
      {u"Name Date wIdTh 10", u"Name|5|10", "in any letter case"},
      {u"Name DateTime Width 10", u"Name|5|10", "the other word with a width"},
      {u"When Date dd.MM.yyyy", u"When|14|-|dd.MM.yyyy|14|2", "day first, no hour"},
      {u"When Date MM/dd/yyyy", u"When|14|-|MM/dd/yyyy|14|1", "month first"},
      {u"When Date yyyy-MM-dd", u"When|14|-|yyyy-MM-dd|14|3", "year first"},
      {u"When Date DD.MM", u"When|14|-|DD.MM|14|2", "either letter case"},
      {u"When Date m/d/y", u"When|14|-|m/d/y|14|1", "either letter case"},
      {u"When Date YYYY", u"When|14|-|YYYY|14|3", "either letter case"},
      {u"When Date HH:mm", u"When|15|-|HH:mm|15|0", "hour first"},
      {u"When Date h:mm", u"When|15|-|h:mm|15|0", "either letter case"},
      {u"When Date HH:mm tt", u"When|15|-|HH:mm tt|15|0", "two parts"},
      {u"When Date dd/MM/yyyy hh:mm:ss", u"When|5|-|dd/MM/yyyy hh:mm:ss|5|2", "day and hour"},
      {u"When Date yyyy-MM-ddTHH:mm", u"When|5|-|yyyy-MM-ddTHH:mm|5|3", "in one part"},
      {u"Stamp Date dd/MM/yyyy HH:mm Width 16", u"Stamp|5|16|dd/MM/yyyy HH:mm|5|2", "with a width"},
      {u"When Date \"dd MM yyyy\"", u"When|14|-|dd MM yyyy|14|2", "a quoted pattern"},
      {u"When Date \"dd MM \"", u"When|14|-|dd MM |14|2", "blanks in quotes are kept"},
      {u"When Date dd \"MM  \"", u"When|14|-|dd MM  |14|2", "also of the second part"},
      {u"When Date dd \"  \"", u"When|14|-|dd   |14|2", "a second part of blanks"},
      {u"When Date dd \" \" Width 9", u"When|14|9|dd|14|2", "the writer's form without a second"},
      {u"When Date \"dd \" \" \" Width 9", u"When|14|9|dd |14|2", "the same behind a blank"},
      // The second part of a pattern is taken whatever it is; its "h" is an hour.
      {u"When Date dd/MM/yyyy Width", u"When|5|-|dd/MM/yyyy Width|5|2", "Width is swallowed"},
  };
  for (const AcceptedCase& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Parsed(c.value), c.parsed);
  }
}

struct RefusedCase {
  std::u16string_view value;
  ParseErrorCode code;
  const char* why;
};

TEST(SchemaColumnLineTest, RefusedLines) {
  using enum ParseErrorCode;
  const RefusedCase cases[] = {
      {u"", kMissingFieldName, "nothing"},
      {u"   ", kMissingFieldName, "blanks"},
      {u"\"\"", kMissingFieldName, "an empty quoted token"},
      {u"Name", kMissingFieldType, "a name alone"},
      {u"\"First Name\"", kMissingFieldType, "a quoted name alone"},
      {u"\"Name Text", kMissingFieldType, "an open quote takes the rest"},
      {u"Name Texts", kUnknownFieldType, "no keyword"},
      {u"First Name Text", kUnknownFieldType, "a name of two words needs quotes"},
      {u"Name DateOnly", kUnknownFieldType, "no keyword of its own"},
      {u"Name\tText", kMissingFieldType, "a tab does not separate"},
      {u"Name Text 10", kWidthKeywordExpected, "a number without Width"},
      {u"Name Text Widths 10", kWidthKeywordExpected, "another word"},
      {u"Name DateTime dd/MM/yyyy", kWidthKeywordExpected, "only Date takes a pattern"},
      {u"Stamp Date dd/MM/yyyy Width 10", kWidthKeywordExpected,
       "Width became part of the pattern"},
      {u"Stamp Date dd/MM/yyyy HH:mm 16", kWidthKeywordExpected, "behind two parts"},
      {u"Name Text Width", kBadFieldWidth, "no number"},
      {u"Name Text Width abc", kBadFieldWidth, "no number"},
      {u"Name Text Width 10a", kBadFieldWidth, "not a number to its end"},
      {u"Name Text Width 1.5", kBadFieldWidth, "not a whole number"},
      {u"Name Text Width -", kBadFieldWidth, "a sign alone"},
      {u"Name Text Width 99999999999", kBadFieldWidth, "more than 32 bits"},
      {u"Name Date Width x", kBadFieldWidth, "behind a date without a pattern"},
      {u"When Date x", kBadDateFormat, "another first letter"},
      {u"When Date ss:mm", kBadDateFormat, "seconds first"},
      {u"When Date /MM", kBadDateFormat, "no letter first"},
      {u"When Date 10 Width", kBadDateFormat, "a number"},
  };
  for (const RefusedCase& c : cases) {
    SCOPED_TRACE(c.why);
    try {
      Parsed(c.value);
      ADD_FAILURE() << "accepted";
    } catch (const ParseError& error) {
      EXPECT_EQ(error.code(), c.code);
      EXPECT_EQ(error.text(), u"Col1=" + std::u16string(c.value));
      EXPECT_STREQ(error.what(), "Schema.ini parse error");
    }
  }
}

TEST(SchemaColumnLineTest, LineOverwritesOnlyWhatItGives) {
  FieldDefinition field;
  ParseColumnLine(u"Col01", u"First Text Width 12", field);
  ParseColumnLine(u"Col1", u"Second Long", field);
  EXPECT_EQ(field.name, u"Second");
  EXPECT_EQ(field.type, FieldType::kInteger);
  EXPECT_TRUE(field.hasWidth);
  EXPECT_EQ(field.width, 12);
}

}  // namespace
}  // namespace TextFile
