#include <gtest/gtest.h>

#include "host/CoreSupport/QUENRALocale.h"
#include "schema/ParseError.h"
#include "schema/SchemaIniReader.h"
#include "schema/TableFiles.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

using quenra::QUENRALocale;
using quenra::test::ToUtf8;

constexpr std::string_view kMark = "\xEF\xBB\xBF";
#ifdef _WIN32
constexpr std::string_view kEnd = "\r\n";
#else
constexpr std::string_view kEnd = "\n";
#endif

std::string Header(std::string_view names) {
  return std::string(kMark) + std::string(names) + std::string(kEnd);
}

FieldDefinition Field(std::u16string_view name, FieldType type, std::int32_t width = 0) {
  FieldDefinition field;
  field.name = name;
  field.type = type;
  field.dateFormat.type = type;
  field.hasWidth = width > 0;
  if (width > 0) field.width = width;
  return field;
}

class TableCreationTest : public testing::Test {
 protected:
  void SetUp() override { QUENRALocale::SetLocale(u"en-US"); }
  void TearDown() override { QUENRALocale::ResetLocale(); }

  void Create(std::u16string_view name, std::vector<FieldDefinition> fields) const {
    CreateTableFiles({folder_.Path(), std::u16string(name)}, std::move(fields));
  }
  // The text of the refusal, empty when there was none; the folder's path left out.
  std::string Refusal(std::u16string_view name, std::vector<FieldDefinition> fields) const {
    try {
      Create(name, std::move(fields));
      return "";
    } catch (const TableFailure& failure) {
      std::string text = ToUtf8(failure.message.text);
      const std::string path = ToUtf8(folder_.Path(u""));
      if (text.starts_with(path)) text.erase(0, path.size());
      return text;
    }
  }
  std::string Ini() const { return folder_.Read(u"schema.ini"); }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(TableCreationTest, EveryTypeHasItsLineAndTheHeaderItsNames) {
  Create(u"t.csv", {Field(u"S", FieldType::kSmallInteger), Field(u"I", FieldType::kInteger),
                    Field(u"F", FieldType::kSingle), Field(u"D", FieldType::kDouble),
                    Field(u"First Name", FieldType::kString, 8000), Field(u"T", FieldType::kDate),
                    Field(u"O", FieldType::kObjectId), Field(u"G", FieldType::kGuid),
                    Field(u"X", FieldType::kGlobalId), Field(u"B", FieldType::kBigInteger),
                    Field(u"Day", FieldType::kDateOnly), Field(u"Time", FieldType::kTimeOnly),
                    Field(u"Z", FieldType::kTimestampOffset)});
  EXPECT_EQ(folder_.Read(u"t.csv"), Header("S,I,F,D,First Name,T,O,G,X,B,Day,Time,Z"));
  EXPECT_EQ(Ini(),
            "[t.csv]\nFormat=CSVDelimited\nColNameHeader=True\n"
            "Col1=S Short\nCol2=I Long\nCol3=F Single\nCol4=D Double\n"
            "Col5=\"First Name\" Text Width 8000\nCol6=T Date M/d/yyyy H:mm:ss\nCol7=O Long\n"
            "Col8=G Text\nCol9=X Text\nCol10=B LongLong\nCol11=Day Date M/d/yyyy\n"
            "Col12=Time Date H:mm:ss\nCol13=Z Date\n");
  EXPECT_EQ(folder_.Names(), (std::vector<std::u16string>{u"schema.ini", u"t.csv"}));
}

struct ExtensionCase {
  std::u16string_view name;
  std::string_view delimiter;
  std::string_view format;
};

constexpr ExtensionCase kExtensionCases[] = {
    {u"a.tab", "\t", "TabDelimited"}, {u"a.TSV", "\t", "TabDelimited"},
    {u"a.psv", "|", "Delimited(|)"},  {u"a.csv", ",", "CSVDelimited"},
    {u"a.txt", ",", "CSVDelimited"},  {u"a", ",", "CSVDelimited"},
};

TEST_F(TableCreationTest, TheExtensionDecidesTheDelimiterInEveryLocale) {
  for (const std::u16string_view locale : {u"en-US", u"de-DE"}) {
    QUENRALocale::SetLocale(locale);
    for (const ExtensionCase& c : kExtensionCases) {
      SCOPED_TRACE(ToUtf8(c.name));
      Create(c.name, {Field(u"A", FieldType::kInteger), Field(u"B", FieldType::kInteger)});
      EXPECT_EQ(folder_.Read(c.name), Header("A" + std::string(c.delimiter) + "B"));
      EXPECT_EQ(Ini(), "[" + ToUtf8(c.name) + "]\nFormat=" + std::string(c.format) +
                           "\nColNameHeader=True\nCol1=A Long\nCol2=B Long\n");
      folder_.Remove(u"schema.ini");
    }
  }
}

TEST_F(TableCreationTest, DatePatternsOfTheLocaleReadBack) {
  for (const std::u16string_view locale :
       {u"en-US", u"en-GB", u"de-DE", u"sv-SE", u"hi-IN", u"hu-HU", u"ja-JP", u"ru-RU", u"fr-FR",
        u"pl-PL", u"pt-BR", u"es-MX", u"ko-KR", u"cs-CZ", u"hr-HR"}) {
    SCOPED_TRACE(ToUtf8(locale));
    ASSERT_TRUE(QUENRALocale::SetLocale(locale));
    folder_.Remove(u"schema.ini");
    Create(u"t.csv", {Field(u"T", FieldType::kDate), Field(u"D", FieldType::kDateOnly),
                      Field(u"H", FieldType::kTimeOnly)});
    SchemaOptions read;
    ASSERT_TRUE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"t.csv", read)) << Ini();
    EXPECT_EQ(read.columns.at(0).type, FieldType::kDate) << Ini();
    EXPECT_EQ(read.columns.at(0).dateFormat.pattern, read.dateTimeFormat) << Ini();
    EXPECT_EQ(read.columns.at(1).type, FieldType::kDateOnly) << Ini();
    EXPECT_EQ(read.columns.at(2).type, FieldType::kTimeOnly) << Ini();
  }
}

TEST_F(TableCreationTest, ASectionThatDescribesTheFileDecidesTypes) {
  folder_.Write(u"schema.ini",
                "[other.csv]\nCol1=X Text\n"
                "[T.CSV]\nFormat=Delimited(;)\nMaxScanRows=7\nCol1=Old Double Width 9\n"
                "Col2=When Date dd.MM.yyyy HH:mm\nCol4=Beyond Text\nCharacterSet=OEM\n"
                "DateTimeFormat=yyyy-MM-dd HH:mm\nNumberDigits=3\n");
  Create(u"t.csv", {Field(u"New", FieldType::kString, 20), Field(u"Time", FieldType::kTimeOnly),
                    Field(u"Plain", FieldType::kDate)});
  EXPECT_EQ(folder_.Read(u"t.csv"), Header("New,Time,Plain"));
  EXPECT_EQ(Ini(),
            "[other.csv]\nCol1=X Text\n"
            "[T.CSV]\nFormat=CSVDelimited\nColNameHeader=True\nMaxScanRows=7\n"
            "Col1=New Double Width 9\nCol2=Time Date dd.MM.yyyy HH:mm\n"
            "Col3=Plain Date yyyy-MM-dd HH:mm\n"
            "CharacterSet=OEM\nDateTimeFormat=yyyy-MM-dd HH:mm\nNumberDigits=3\n");
}

TEST_F(TableCreationTest, AFixedLengthTableKeepsItsFormatAndCutsItsNames) {
  folder_.Write(u"schema.ini",
                "[t.txt]\nFormat=FixedLength\nCol1=A Text Width 4\nCol2=B Long Width 6\n"
                "Col3=C Date Width 10\nDateTimeFormat=yyyy-MM-dd\n");
  Create(u"t.txt", {Field(u"Longer", FieldType::kString, 50), Field(u"Id", FieldType::kString, 50),
                    Field(u"Day", FieldType::kDate)});
  EXPECT_EQ(folder_.Read(u"t.txt"), Header("Long    Id       Day"));
  SchemaOptions read;
  ASSERT_TRUE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"t.txt", read)) << Ini();
  EXPECT_TRUE(read.fixedLength);
  EXPECT_EQ(read.columns.at(0).width, 4);
  EXPECT_EQ(read.columns.at(1).type, FieldType::kInteger);
  EXPECT_EQ(read.columns.at(2).width, 10);
  EXPECT_EQ(read.columns.at(2).dateFormat.pattern, u"yyyy-MM-dd");
}

TEST_F(TableCreationTest, AFixedLengthHeaderDoesNotHalveAPair) {
  folder_.Write(u"schema.ini", "[t.txt]\nFormat=FixedLength\nCol1=A Text Width 2\n");
  Create(u"t.txt", {Field(u"a\U0001F600", FieldType::kString, 50)});
  EXPECT_EQ(folder_.Read(u"t.txt"), Header(" a"));
}

TEST_F(TableCreationTest, AFixedLengthHeaderIsOneLine) {
  folder_.Write(u"schema.ini", "[t.txt]\nFormat=FixedLength\nCol1=A Text Width 6\n");
  Create(u"t.txt", {Field(u"x\ny\rz", FieldType::kString, 50)});
  EXPECT_EQ(folder_.Read(u"t.txt"), Header(" x y z"));
}

TEST_F(TableCreationTest, NamesAreQuotedWhereTheHeaderNeedsIt) {
  Create(u"t.csv", {Field(u"a,b", FieldType::kInteger), Field(u"c d", FieldType::kInteger)});
  EXPECT_EQ(folder_.Read(u"t.csv"), Header("\"a,b\",c d"));
  Create(u"l.csv", {Field(u"two\nlines", FieldType::kInteger), Field(u"x", FieldType::kInteger)});
  EXPECT_EQ(folder_.Read(u"l.csv"), Header("\"two\nlines\",x"));
  folder_.Write(u"schema.ini", "[q.csv]\nTextDelimiter='\n[n.csv]\nTextDelimiter=NONE\n");
  Create(u"q.csv", {Field(u"it's", FieldType::kInteger), Field(u"x", FieldType::kInteger)});
  EXPECT_EQ(folder_.Read(u"q.csv"), Header("'it''s',x"));
  Create(u"n.csv", {Field(u"a,b", FieldType::kInteger), Field(u"x", FieldType::kInteger)});
  EXPECT_EQ(folder_.Read(u"n.csv"), Header("a b,x"));
}

TEST_F(TableCreationTest, WithoutFieldsThereIsAMarkAndALineEnd) {
  Create(u"t.csv", {});
  EXPECT_EQ(folder_.Read(u"t.csv"), Header(""));
  EXPECT_EQ(Ini(), "[t.csv]\nFormat=CSVDelimited\nColNameHeader=True\n");
}

TEST_F(TableCreationTest, AnExistingFileIsReplaced) {
  folder_.Write(u"t.csv", "something\nelse\n");
  Create(u"t.csv", {Field(u"A", FieldType::kInteger)});
  EXPECT_EQ(folder_.Read(u"t.csv"), Header("A"));
}

TEST_F(TableCreationTest, ARefusalLeavesEverythingAsItWas) {
  folder_.Write(u"t.csv", "old\n");
  folder_.MakeFolder(u"folder.csv");
  const std::vector<FieldDefinition> one{Field(u"A", FieldType::kInteger)};
  EXPECT_EQ(Refusal(u"../t.csv", one), "../t.csv: the name holds a path separator");
  EXPECT_EQ(Refusal(u"CON.csv", one), "CON.csv: the name is reserved");
  EXPECT_EQ(Refusal(u"folder.csv", one),
            "folder.csv: the name belongs to something that is no file");
  EXPECT_EQ(Refusal(u"t.csv", {Field(u"a\"b", FieldType::kInteger)}),
            "schema.ini: The field \"a\"b\" cannot be described in schema.ini.");
  EXPECT_EQ(Refusal(u"t.csv", {Field(u"", FieldType::kInteger)}),
            "schema.ini: The field \"\" cannot be described in schema.ini.");
  folder_.MakeFolder(u"schema.ini");
  EXPECT_EQ(Refusal(u"t.csv", one), "schema.ini: Could not read schema.ini.");
  EXPECT_EQ(folder_.Read(u"t.csv"), "old\n");
  EXPECT_EQ(folder_.Names(), (std::vector<std::u16string>{u"folder.csv", u"schema.ini", u"t.csv"}));
}

TEST_F(TableCreationTest, AFileIsKeptWhenThatIsAskedFor) {
  const TableLocation table{folder_.Path(), u"t.csv"};
  CreateTableFiles(table, {Field(u"A", FieldType::kInteger)}, ExistingFile::kKept);
  const std::string ini = Ini();
  try {
    CreateTableFiles(table, {Field(u"B", FieldType::kInteger)}, ExistingFile::kKept);
    ADD_FAILURE() << "replaced";
  } catch (const TableFailure& failure) {
    EXPECT_TRUE(failure.taken);
    EXPECT_EQ(ToUtf8(failure.message.text), ToUtf8(table.Path()) + ": the file exists already");
  }
  EXPECT_EQ(folder_.Read(u"t.csv"), Header("A"));
  EXPECT_EQ(Ini(), ini);
}

TEST_F(TableCreationTest, AMissingFolderIsNamed) {
  try {
    CreateTableFiles({folder_.Path(u"none"), u"t.csv"}, {Field(u"A", FieldType::kInteger)});
    ADD_FAILURE();
  } catch (const TableFailure& failure) {
    EXPECT_EQ(failure.message.text.find(folder_.Path(u"none")), 0u);
    EXPECT_GT(failure.message.text.size(), folder_.Path(u"none/t.csv: ").size());
  }
}

TEST_F(TableCreationTest, ASectionThatCannotBeUnderstoodIsTold) {
  folder_.Write(u"schema.ini", "[t.csv]\nFormat=Nonsense\n");
  EXPECT_THROW(Create(u"t.csv", {Field(u"A", FieldType::kInteger)}), ParseError);
  EXPECT_EQ(folder_.Names(), std::vector<std::u16string>{u"schema.ini"});
}

}  // namespace
}  // namespace TextFile
