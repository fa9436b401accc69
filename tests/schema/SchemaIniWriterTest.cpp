#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "schema/SchemaColumnLine.h"
#include "schema/SchemaIniReader.h"
#include "schema/SchemaIniWriter.h"
#include "support/SectionText.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"
#include "support/Utf16Bytes.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

using namespace std::string_literals;

FieldDefinition Field(std::u16string_view name, FieldType type) {
  FieldDefinition field;
  field.name = name;
  field.type = type;
  field.dateFormat.type = type;
  return field;
}

SchemaOptions WithColumn(const FieldDefinition& field) {
  SchemaOptions options;
  options.columns.emplace(0, field);
  return options;
}

class SchemaIniWriterTest : public EnglishTest {
 protected:
  bool Write(const SchemaOptions& options, std::u16string* failure = nullptr) {
    return WriteSchemaSection(SchemaIniPaths(folder_.Path()), u"data.csv", options, failure);
  }

  // What schema.ini holds after a section with one Long column "a" is written into it.
  std::string Rewritten(std::string_view schemaIni) {
    folder_.Write(u"schema.ini", schemaIni);
    EXPECT_TRUE(Write(WithColumn(Field(u"a", FieldType::kInteger))));
    EXPECT_FALSE(folder_.Exists(u"~scheam.ini"));
    return folder_.Read(u"schema.ini");
  }

  TemporaryFolder folder_;
};

// ---------------------------------------------------------------------------------------------
// Section text
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniWriterTest, OnlyWhatIsSpecifiedIsWritten) {
  EXPECT_EQ(SchemaSectionText(u"data.csv", SchemaOptions()), u"[data.csv]\n");
  SchemaOptions completed;
  completed.dateTimeFormat = u"M/d/yyyy H:mm:ss";
  completed.currency.symbol = u"$";
  completed.columnNameHeader = true;
  EXPECT_EQ(SchemaSectionText(u"data.csv", completed), u"[data.csv]\n");
}

TEST_F(SchemaIniWriterTest, OptionsStandInTheirOrder) {
  SchemaOptions options;
  options.specified = 63;
  options.delimiter = u';';
  options.columnNameHeader = true;
  options.maxScanRows = 25;
  options.ansi = true;
  options.dateTimeFormat = u"dd.MM.yyyy HH:mm";
  options.textDelimiter = u'\'';
  options.number.specified = 7;
  options.number.decimalSymbol = u',';
  options.number.digits = 3;
  options.number.leadingZeros = true;
  options.currency.specified = 63;
  options.currency.symbol = u"\u20AC";
  options.currency.positiveFormat = u"1 $";
  options.currency.digits = 4;
  options.currency.negativeFormat = u"-1 $";
  options.currency.thousandSymbol = u'.';
  options.currency.decimalSymbol = u',';
  options.columns.emplace(2, Field(u"Third", FieldType::kDouble));
  options.columns.emplace(0, Field(u"First Name", FieldType::kString));
  EXPECT_EQ(SchemaSectionText(u"data.csv", options),
            u"[data.csv]\n"
            u"Format=Delimited(;)\n"
            u"ColNameHeader=True\n"
            u"MaxScanRows=25\n"
            u"Col1=\"First Name\" Text\n"
            u"Col3=Third Double\n"
            u"CharacterSet=ANSI\n"
            u"DateTimeFormat=dd.MM.yyyy HH:mm\n"
            u"TextDelimiter='\n"
            u"DecimalSymbol=,\n"
            u"NumberDigits=3\n"
            u"NumberLeadingZeros=True\n"
            u"CurrencySymbol=\u20AC\n"
            u"CurrencyPosFormat=1 $\n"
            u"CurrencyDigits=4\n"
            u"CurrencyNegFormat=-1 $\n"
            u"CurrencyThousandSymbol=.\n"
            u"CurrencyDecimalSymbol=,\n");
}

TEST_F(SchemaIniWriterTest, OtherValuesOfTheOptions) {
  SchemaOptions options;
  options.specified = 63;
  options.number.specified = 4;
  options.textDelimiter = 0;
  EXPECT_EQ(SchemaSectionText(u"x", options),
            u"[x]\nFormat=CSVDelimited\nColNameHeader=False\nMaxScanRows=4294967295\n"
            u"CharacterSet=OEM\nDateTimeFormat=\nTextDelimiter=NONE\nNumberLeadingZeros=False\n");
  options.specified = SchemaOptions::kFormat;
  options.number.specified = 0;
  options.delimiter = u'\t';
  EXPECT_EQ(SchemaSectionText(u"x", options), u"[x]\nFormat=TabDelimited\n");
  options.delimiter = u'|';
  EXPECT_EQ(SchemaSectionText(u"x", options), u"[x]\nFormat=Delimited(|)\n");
  options.fixedLength = true;
  options.delimiter = 0;
  EXPECT_EQ(SchemaSectionText(u"x", options), u"[x]\nFormat=FixedLength\n");
}

// The column line of a field in a table with this date-time format.
std::u16string ColumnLine(const FieldDefinition& field, std::u16string_view tableFormat = u"") {
  SchemaOptions options = WithColumn(field);
  options.dateTimeFormat = tableFormat;
  const std::u16string text = SchemaSectionText(u"x", options);
  const std::u16string_view start = u"[x]\nCol1=";
  EXPECT_EQ(text.substr(0, start.size()), start);
  return text.substr(start.size(), text.size() - start.size() - 1);
}

TEST_F(SchemaIniWriterTest, ColumnLinesOfEveryType) {
  struct {
    FieldType type;
    std::u16string_view line;
  } const cases[] = {
      {FieldType::kSmallInteger, u"a Short"}, {FieldType::kInteger, u"a Long"},
      {FieldType::kObjectId, u"a Long"},      {FieldType::kBigInteger, u"a LongLong"},
      {FieldType::kSingle, u"a Single"},      {FieldType::kDouble, u"a Double"},
      {FieldType::kString, u"a Text"},        {FieldType::kGuid, u"a Text"},
      {FieldType::kGlobalId, u"a Text"},      {FieldType::kDate, u"a Date"},
  };
  for (const auto& c : cases) EXPECT_EQ(ColumnLine(Field(u"a", c.type)), c.line);
}

TEST_F(SchemaIniWriterTest, NamesWithBlanksAreQuoted) {
  EXPECT_EQ(ColumnLine(Field(u"First Name", FieldType::kString)), u"\"First Name\" Text");
  EXPECT_EQ(ColumnLine(Field(u" a", FieldType::kString)), u"\" a\" Text");
  EXPECT_EQ(ColumnLine(Field(u"a\nb", FieldType::kString)), u"\"a\nb\" Text") << "a line end";
  EXPECT_EQ(ColumnLine(Field(u"a\u00A0", FieldType::kString)), u"\"a\u00A0\" Text")
      << "white space at the end";
  EXPECT_EQ(ColumnLine(Field(u"a\tb", FieldType::kString)), u"a\tb Text");
  EXPECT_EQ(ColumnLine(Field(u"FirstName", FieldType::kString)), u"FirstName Text");
}

TEST_F(SchemaIniWriterTest, WidthIsWrittenWhenItWasSetAndIsPositive) {
  FieldDefinition field = Field(u"a", FieldType::kString);
  field.width = 12;
  EXPECT_EQ(ColumnLine(field), u"a Text");
  field.hasWidth = true;
  EXPECT_EQ(ColumnLine(field), u"a Text Width 12");
  field.width = 1;
  EXPECT_EQ(ColumnLine(field), u"a Text Width 1");
  field.width = 0;
  EXPECT_EQ(ColumnLine(field), u"a Text");
  field.width = -3;
  EXPECT_EQ(ColumnLine(field), u"a Text");
}

TEST_F(SchemaIniWriterTest, PatternOfTheFieldStandsBehindDate) {
  for (const FieldType type : {FieldType::kDate, FieldType::kDateOnly, FieldType::kTimeOnly}) {
    FieldDefinition field = Field(u"a", type);
    field.dateFormat.pattern = u"HH:mm dd";
    field.hasWidth = true;
    field.width = 9;
    EXPECT_EQ(ColumnLine(field, u"yyyy-MM-dd HH:mm"), u"a Date HH:mm dd Width 9");
  }
  FieldDefinition text = Field(u"a", FieldType::kString);
  text.dateFormat.pattern = u"HH:mm";
  EXPECT_EQ(ColumnLine(text), u"a Text") << "of date columns only";
}

TEST_F(SchemaIniWriterTest, BlanksOfAPatternReadBack) {
  struct {
    std::u16string_view pattern;
    std::u16string_view line;
    std::u16string_view withWidth;
  } const cases[] = {
      {u"dd", u"a Date dd", u"a Date dd \" \" Width 9"},
      {u"dd ", u"a Date \"dd \"", u"a Date \"dd \" \" \" Width 9"},
      {u"dd MM", u"a Date dd MM", u"a Date dd MM Width 9"},
      {u"dd MM  ", u"a Date \"dd MM  \"", u"a Date \"dd MM  \" \" \" Width 9"},
      {u"d  M", u"a Date \"d \" M", u"a Date \"d \" M Width 9"},
      {u"d. M. y H:mm", u"a Date \"d. M. y\" H:mm", u"a Date \"d. M. y\" H:mm Width 9"},
  };
  for (const auto& c : cases) {
    FieldDefinition field = Field(u"a", FieldType::kDate);
    field.dateFormat.pattern = c.pattern;
    EXPECT_EQ(ColumnLine(field), c.line);
    field.hasWidth = true;
    field.width = 9;
    EXPECT_EQ(ColumnLine(field), c.withWidth);
    for (const std::u16string_view line : {c.line, c.withWidth}) {
      FieldDefinition read;
      ParseColumnLine(u"Col1", line, read);
      EXPECT_EQ(read.dateFormat.pattern, c.pattern);
      EXPECT_EQ(read.hasWidth, line == c.withWidth);
    }
  }
}

TEST_F(SchemaIniWriterTest, PartsOfTheTablesFormatStandInForAMissingPattern) {
  struct {
    FieldType type;
    std::u16string_view tableFormat;
    std::u16string_view line;
  } const cases[] = {
      {FieldType::kDateOnly, u"M/d/yyyy H:mm:ss", u"a Date M/d/yyyy"},
      {FieldType::kDateOnly, u"yyyy-MM-ddTHH:mm", u"a Date yyyy-MM-dd"},
      {FieldType::kDateOnly, u"yyyy-MM-dd", u"a Date yyyy-MM-dd"},
      {FieldType::kTimeOnly, u"M/d/yyyy H:mm:ss", u"a Date H:mm:ss"},
      {FieldType::kTimeOnly, u"yyyy-MM-ddTHH:mm", u"a Date HH:mm"},
      {FieldType::kTimeOnly, u"yyyy-MM-dd", u"a Date"},
  };
  for (const auto& c : cases) EXPECT_EQ(ColumnLine(Field(u"a", c.type), c.tableFormat), c.line);
}

// ---------------------------------------------------------------------------------------------
// Replacing
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniWriterTest, CreatesSchemaIni) {
  EXPECT_TRUE(Write(WithColumn(Field(u"a", FieldType::kInteger))));
  EXPECT_EQ(folder_.Read(u"schema.ini"), "[data.csv]\nCol1=a Long\n");
  EXPECT_EQ(folder_.Names(), std::vector<std::u16string>{u"schema.ini"});
}

TEST_F(SchemaIniWriterTest, ReplacesOneSectionAndKeepsTheOthers) {
  struct {
    std::string before;
    std::string after;
    const char* why;
  } const cases[] = {
      {"", "[data.csv]\nCol1=a Long\n", "an empty file"},
      {"[b.csv]\nx=1\n[a.csv]\ny=2\n", "[b.csv]\nx=1\n[a.csv]\ny=2\n[data.csv]\nCol1=a Long\n",
       "appended"},
      {"[b.csv]\nx=1", "[b.csv]\nx=1\n[data.csv]\nCol1=a Long\n", "behind an unterminated line"},
      {"[b.csv]\nx=1\n[data.csv]\nold=1\nCol1=b Text\n[c.csv]\ny=2\n",
       "[b.csv]\nx=1\n[data.csv]\nCol1=a Long\n[c.csv]\ny=2\n", "in its place"},
      {"[DATA.CSV]\nold=1\n", "[DATA.CSV]\nCol1=a Long\n", "its header as it was found"},
      {"\n\n[b.csv]\n\nx=1\n\n[data.csv]\n\nold=1\n\n", "[b.csv]\nx=1\n[data.csv]\nCol1=a Long\n",
       "blank lines go"},
      {"[b.csv]\n \nx=1\n", "[b.csv]\n \nx=1\n[data.csv]\nCol1=a Long\n",
       "a line of a blank is not blank"},
      {"[b.csv]\r\nx=1\r\n[data.csv]\r\nold\r\n", "[b.csv]\nx=1\n[data.csv]\nCol1=a Long\n",
       "CR LF"},
      {"; note\n[data.csv]\n", "; note\n[data.csv]\nCol1=a Long\n", "what stands before a section"},
      {"[data.csv]\nold\n[b.csv]\nx\n[data.csv]\nolder\n[c.csv]\n",
       "[data.csv]\nCol1=a Long\n[b.csv]\nx\n[c.csv]\n", "once, and no other of the name is kept"},
      {"[data.csv] \nx\n", "[data.csv] \nx\n[data.csv]\nCol1=a Long\n", "not a header of the file"},
      {"[data.csv\nx\n", "[data.csv\nx\n[data.csv]\nCol1=a Long\n", "not a header of the file"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Rewritten(c.before), c.after);
  }
}

TEST_F(SchemaIniWriterTest, RewritesInTheEncodingOfTheFile) {
  const std::string added = "[data.csv]\nCol1=a Long\n";
  const std::string utf8 = "[\xC3\xA9.csv]\nx=\xE2\x82\xAC\n";
  EXPECT_EQ(Rewritten(utf8), utf8 + added);
  EXPECT_EQ(Rewritten("\xEF\xBB\xBF" + utf8), "\xEF\xBB\xBF" + utf8 + added);
  EXPECT_EQ(Rewritten("[\xE9.csv]\nx=\x80\n"), "[\xE9.csv]\nx=\x80\n" + added);
  EXPECT_EQ(Rewritten(Utf16File(u"[\u00E9.csv]\r\nx=\u20AC\r\n")),
            Utf16File(u"[\u00E9.csv]\nx=\u20AC\n[data.csv]\nCol1=a Long\n"));
}

TEST_F(SchemaIniWriterTest, ReplacesTheFileInAnotherLetterCase) {
  folder_.Write(u"SCHEMA.INI", "[data.csv]\nold\n");
  if (folder_.Exists(u"schema.ini")) return;  // one name for the file system
  EXPECT_TRUE(Write(WithColumn(Field(u"a", FieldType::kInteger))));
  EXPECT_EQ(folder_.Names(), std::vector<std::u16string>{u"SCHEMA.INI"});
  EXPECT_EQ(folder_.Read(u"SCHEMA.INI"), "[data.csv]\nCol1=a Long\n");
}

// ---------------------------------------------------------------------------------------------
// Failures
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniWriterTest, FolderThatTakesNoFile) {
  std::u16string failure;
  const SchemaIniPaths paths(folder_.Path(u"missing"));
  EXPECT_FALSE(WriteSchemaSection(paths, u"data.csv", SchemaOptions(), &failure));
  EXPECT_EQ(failure, u"Could not create schema.ini.");
  EXPECT_FALSE(WriteSchemaSection(paths, u"data.csv", SchemaOptions(), nullptr));
}

TEST_F(SchemaIniWriterTest, TemporaryFileThatCannotBeWritten) {
  folder_.Write(u"schema.ini", "[data.csv]\nold\n");
  boost::filesystem::create_directory(folder_.Native(u"~scheam.ini"));
  std::u16string failure;
  EXPECT_FALSE(Write(SchemaOptions(), &failure));
  EXPECT_EQ(failure, u"Could not write to temp schema.ini.");
  EXPECT_EQ(folder_.Read(u"schema.ini"), "[data.csv]\nold\n");
}

TEST_F(SchemaIniWriterTest, EncodingsThatAreNotReadAreNotRewritten) {
  for (const std::string& bytes : {"\xFE\xFF\0[\0a\0]"s, "\xFF\xFE\0\0[\0\0\0"s, "\xFF\xFE"s}) {
    folder_.Write(u"schema.ini", bytes);
    std::u16string failure;
    EXPECT_FALSE(Write(SchemaOptions(), &failure));
    EXPECT_NE(failure, u"");
    EXPECT_EQ(folder_.Read(u"schema.ini"), bytes);
    EXPECT_FALSE(folder_.Exists(u"~scheam.ini"));
  }
}

TEST_F(SchemaIniWriterTest, FolderNamedSchemaIniStays) {
  boost::filesystem::create_directory(folder_.Native(u"schema.ini"));
  EXPECT_FALSE(Write(SchemaOptions()));
  EXPECT_EQ(folder_.Names(), std::vector<std::u16string>{u"schema.ini"});
}

TEST_F(SchemaIniWriterTest, NamesThatWouldNotReadBackAreRefused) {
  folder_.Write(u"schema.ini", "[b.csv]\nx=1\n");
  for (const std::u16string_view name :
       {u"5\" pipe", u"5\"", u"\"a\"", u"", u"a\x1A", u"a\r\nb", u"a \"b\" c"}) {
    std::u16string failure;
    EXPECT_FALSE(Write(WithColumn(Field(name, FieldType::kString)), &failure))
        << ::testing::PrintToString(std::u16string(name));
    EXPECT_NE(failure, u"");
  }
  EXPECT_FALSE(WriteSchemaSection(SchemaIniPaths(folder_.Path()), u"a\n.csv", SchemaOptions()));
  EXPECT_FALSE(WriteSchemaSection(SchemaIniPaths(folder_.Path()), u"a\xDC80.csv", SchemaOptions()));
  EXPECT_EQ(folder_.Read(u"schema.ini"), "[b.csv]\nx=1\n");
}

// ---------------------------------------------------------------------------------------------
// Write, read back, equal
// ---------------------------------------------------------------------------------------------

class RandomSchema {
 public:
  explicit RandomSchema(unsigned seed) : random_(seed) {}

  SchemaOptions Make() {
    SchemaOptions options;
    options.specified = Below(64);
    options.fixedLength = options.IsSpecified(SchemaOptions::kFormat) && Below(4) == 0;
    options.delimiter = options.fixedLength ? u'\0' : Of(u",;\t| :\u00A7)]=");
    options.columnNameHeader = Below(2) == 0;
    options.maxScanRows = Below(2) == 0 ? Below(1000) : 0xFFFFFFFFu;
    options.ansi = Below(2) == 0;
    options.dateTimeFormat = Of(u"yMdH") + std::u16string(u"-MM HH:mm");
    options.textDelimiter = Of(u"\"'\u00AB\0"s);
    options.number.specified = static_cast<std::uint16_t>(Below(8));
    options.number.decimalSymbol = Of(u".,;'");
    options.number.digits = Below(20);
    options.number.leadingZeros = Below(2) == 0;
    options.currency.specified = Below(64);
    options.currency.symbol = Text();
    options.currency.positiveFormat = Text();
    options.currency.negativeFormat = Text();
    options.currency.digits = Below(9);
    options.currency.thousandSymbol = Of(u".,'_");
    options.currency.decimalSymbol = Of(u".,'_");
    std::int32_t index = -1;
    for (std::uint32_t columns = Below(5); columns > 0; --columns) {
      index += options.fixedLength ? 1 : 1 + static_cast<std::int32_t>(Below(12));
      options.columns.emplace(index, Column());
    }
    return options;
  }

 private:
  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
  char16_t Of(std::u16string_view units) {
    return units[Below(static_cast<std::uint32_t>(units.size()))];
  }
  std::u16string Text() {
    std::u16string text(1, Of(u"a\u20AC$["));
    for (std::uint32_t units = Below(4); units > 0; --units) text += Of(u"b1 =]();\u0416");
    return text + u'.';
  }
  FieldDefinition Column() {
    static constexpr FieldType kTypes[] = {
        FieldType::kSmallInteger, FieldType::kInteger,  FieldType::kBigInteger,
        FieldType::kSingle,       FieldType::kDouble,   FieldType::kString,
        FieldType::kDate,         FieldType::kDateOnly, FieldType::kTimeOnly};
    FieldDefinition field = Field(Text(), kTypes[Below(9)]);
    // A line of a name must not look like a header.
    const std::u16string_view front = field.name[0] == u'[' ? u" \u00A0\t" : u" \u00A0\n\t";
    if (Below(4) == 0) field.name = Of(front) + field.name + Of(u" \u00A0\n\r");
    if (field.type == FieldType::kDate && Below(2) == 0)
      field.dateFormat.pattern = u"dd/MM/yyyy HH:mm";
    if (field.type == FieldType::kDateOnly) field.dateFormat.pattern = u"yyyy-MM dd";
    if (field.type == FieldType::kTimeOnly) field.dateFormat.pattern = u"HH:mm tt";
    field.hasWidth = Below(2) == 0;
    if (field.hasWidth) field.width = 1 + static_cast<std::int32_t>(Below(300));
    return field;
  }

  std::mt19937 random_;
};

void ExpectSameColumns(const SchemaOptions& written, const SchemaOptions& read) {
  ASSERT_EQ(written.columns.size(), read.columns.size());
  for (const auto& [index, field] : written.columns) {
    ASSERT_TRUE(read.columns.contains(index));
    const FieldDefinition& other = read.columns.at(index);
    EXPECT_EQ(field.name, other.name);
    EXPECT_EQ(field.type, other.type);
    EXPECT_EQ(field.hasWidth, other.hasWidth);
    EXPECT_EQ(field.width, other.width);
    EXPECT_EQ(field.dateFormat.pattern, other.dateFormat.pattern);
  }
}

// What is written of the options once more says all that was specified.
void ExpectSame(const SchemaOptions& written, const SchemaOptions& read) {
  EXPECT_EQ(written.specified, read.specified);
  EXPECT_EQ(written.number.specified, read.number.specified);
  EXPECT_EQ(written.currency.specified, read.currency.specified);
  ExpectSameColumns(written, read);
  EXPECT_EQ(SchemaSectionText(u"x", written), SchemaSectionText(u"x", read));
}

TEST_F(SchemaIniWriterTest, RandomSectionsReadBack) {
  RandomSchema schemas(3);
  const SchemaIniPaths paths(folder_.Path());
  for (int round = 0; round < 400; ++round) {
    const SchemaOptions written = schemas.Make();
    const std::u16string name = round % 2 == 0 ? u"data.csv" : u"other [x].txt";
    std::u16string failure;
    ASSERT_TRUE(WriteSchemaSection(paths, name, written, &failure))
        << ::testing::PrintToString(failure);
    SCOPED_TRACE(folder_.Read(u"schema.ini"));
    SchemaOptions read;
    ASSERT_TRUE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), name, read));
    EXPECT_EQ(read.sectionName, name);
    ExpectSame(written, read);
    if (HasFailure()) break;
  }
}

TEST_F(SchemaIniWriterTest, ObjectIdsAndGuidsComeBackAsWhatTheyAreWrittenAs) {
  SchemaOptions options;
  options.columns.emplace(0, Field(u"id", FieldType::kObjectId));
  options.columns.emplace(1, Field(u"g", FieldType::kGuid));
  options.columns.emplace(2, Field(u"h", FieldType::kGlobalId));
  options.columns.emplace(3, Field(u"d", FieldType::kDateOnly));
  options.columns.emplace(4, Field(u"t", FieldType::kTimeOnly));
  options.dateTimeFormat = u"dd.MM.yyyy HH:mm:ss";
  ASSERT_TRUE(Write(options));
  SchemaOptions read;
  ASSERT_TRUE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"data.csv", read));
  EXPECT_EQ(read.columns.at(0).type, FieldType::kInteger);
  EXPECT_EQ(read.columns.at(1).type, FieldType::kString);
  EXPECT_EQ(read.columns.at(2).type, FieldType::kString);
  EXPECT_EQ(read.columns.at(3).type, FieldType::kDateOnly);
  EXPECT_EQ(read.columns.at(4).type, FieldType::kTimeOnly);
}

}  // namespace
}  // namespace TextFile
