#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "host/CoreSupport/QUENRALocale.h"
#include "schema/LocaleDefaults.h"
#include "schema/SchemaIniFile.h"
#include "schema/SchemaIniReader.h"
#include "schema/SchemaIniWriter.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

using quenra::QUENRALocale;
using quenra::test::ToUtf8;
using testing::Test;

class SchemaIniFileTest : public Test {
 protected:
  void SetUp() override { QUENRALocale::SetLocale(u"en-US"); }
  void TearDown() override { QUENRALocale::ResetLocale(); }

  SchemaIniPaths Paths() const { return SchemaIniPaths(folder_.Path()); }
  std::string Text() const { return folder_.Read(u"schema.ini"); }
  void SetText(std::string_view text) const { folder_.Write(u"schema.ini", text); }

  static std::string ReasonOf(const std::function<void()>& action) {
    try {
      action();
      return "";
    } catch (const SchemaIniFailure& failure) {
      return ToUtf8(failure.reason);
    }
  }

  void ExpectNoSections() const {
    SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
    EXPECT_EQ(file.FindOwn(u"a"), nullptr);
    EXPECT_FALSE(file.Remove(u"a"));
    EXPECT_FALSE(file.Rename(u"a", u"b"));
    EXPECT_FALSE(file.Duplicate(u"a", u"b").made);
    EXPECT_NE(ReasonOf([&] { file.Save(); }), "");
    EXPECT_NE(ReasonOf([&] { file.SaveAndHold(); }), "");
  }

  bool WriteColumn(std::u16string_view name, FieldDefinition column,
                   std::u16string* failure = nullptr) const {
    SchemaOptions options;
    options.columns.emplace(0, std::move(column));
    return WriteSchemaSection(Paths(), name, options, failure);
  }

  quenra::test::TemporaryFolder folder_;
};

constexpr std::string_view kThreeSections =
    "; a line before the first section\n"
    "[one.csv]\nCol1=A Text\n\n\nFormat=CSVDelimited\n"
    "[TWO.CSV]\n  odd line \n"
    "[three.csv]\nCol1=C Long\n";

TEST_F(SchemaIniFileTest, ASectionHiddenByAnotherLineIsNotLost) {
  constexpr std::string_view kHidden = "; [a.csv]\n[a.csv]\nFormat=CSVDelimited\nCol2=p Double\n";
  SetText(kHidden);
  FieldDefinition column;
  column.name = u"b";
  std::u16string failure;
  EXPECT_FALSE(WriteColumn(u"a.csv", column, &failure));
  EXPECT_NE(failure, u"");
  EXPECT_EQ(Text(), kHidden);
  EXPECT_TRUE(WriteColumn(u"b.csv", column));
}

TEST_F(SchemaIniFileTest, ASectionThatWouldBeHiddenIsNotAdded) {
  constexpr std::string_view kHiding = " [b.csv]\nCol2=p Double\n[a.csv]\nCol1=x Long\n";
  SetText(kHiding);
  FieldDefinition column;
  column.name = u"b";
  std::u16string failure;
  EXPECT_FALSE(WriteColumn(u"b.csv", column, &failure));
  EXPECT_EQ(failure, u"Another line of schema.ini is taken for the section's header.");
  const std::string hidden = "Another line of schema.ini is taken for the section's header.";
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  EXPECT_EQ(ReasonOf([&] { file.Rename(u"a.csv", u"b.csv"); }), hidden);
  EXPECT_EQ(ReasonOf([&] { file.Duplicate(u"a.csv", u"b.csv"); }), hidden);
  EXPECT_EQ(ReasonOf([&] { file.Insert(u"b.csv", {}); }), hidden);
  EXPECT_TRUE(file.Rename(u"a.csv", u"c.csv"));
  file.Save();
  EXPECT_EQ(Text(), " [b.csv]\nCol2=p Double\n[c.csv]\nCol1=x Long\n");
}

TEST_F(SchemaIniFileTest, AReplacedSectionKeepsItsPlaceAndItsHeader) {
  SetText(kThreeSections);
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  file.Replace(u"two.csv", {u"Col1=B Double"});
  file.Save();
  EXPECT_EQ(Text(),
            "; a line before the first section\n"
            "[one.csv]\nCol1=A Text\nFormat=CSVDelimited\n"
            "[TWO.CSV]\nCol1=B Double\n"
            "[three.csv]\nCol1=C Long\n");
}

TEST_F(SchemaIniFileTest, ANewSectionIsAppended) {
  SetText("[one.csv]\nA=1");  // without a last line end
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  file.Replace(u"four.csv", {u"Col1=D Text"});
  file.Save();
  EXPECT_EQ(Text(), "[one.csv]\nA=1\n[four.csv]\nCol1=D Text\n");
}

TEST_F(SchemaIniFileTest, AHeaderWithSomethingBehindItIsAnother) {
  SetText("[a.csv] \nA=1\n");
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  EXPECT_EQ(file.Find(u"a.csv"), nullptr);
  file.Replace(u"a.csv", {u"B=2"});
  file.Save();
  EXPECT_EQ(Text(), "[a.csv] \nA=1\n[a.csv]\nB=2\n");
}

TEST_F(SchemaIniFileTest, DuplicatesGoWithAReplacement) {
  SetText("[a.csv]\nA=1\n[b.csv]\nB=1\n[A.csv]\nA=2\n");
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  ASSERT_NE(file.Find(u"A.CSV"), nullptr);
  EXPECT_EQ(file.Find(u"A.CSV")->front(), u"A=1");
  file.Replace(u"a.csv", {u"A=3"});
  file.Save();
  EXPECT_EQ(Text(), "[a.csv]\nA=3\n[b.csv]\nB=1\n");
}

TEST_F(SchemaIniFileTest, SectionsAreRemovedRenamedAndDuplicated) {
  SetText(kThreeSections);
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  file.Duplicate(u"ONE.csv", u"copy.csv");
  file.Rename(u"two.csv", u"Zwei.csv");
  file.Remove(u"THREE.csv");
  file.Duplicate(u"nobody.csv", u"nothing.csv");
  file.Save();
  EXPECT_EQ(Text(),
            "; a line before the first section\n"
            "[one.csv]\nCol1=A Text\nFormat=CSVDelimited\n"
            "[copy.csv]\nCol1=A Text\nFormat=CSVDelimited\n"
            "[Zwei.csv]\n  odd line \n");
}

TEST_F(SchemaIniFileTest, AMarkIsKeptAndNoneIsAdded) {
  SetText("\xEF\xBB\xBF[a.csv]\nA=\xC3\xA9\n");
  SchemaIniFile(Paths(), SchemaIniFile::Access::kWrite).Save();
  EXPECT_EQ(Text(), "\xEF\xBB\xBF[a.csv]\nA=\xC3\xA9\n");
  SetText("[a.csv]\r\nA=\xC3\xA9\r\n");
  SchemaIniFile(Paths(), SchemaIniFile::Access::kWrite).Save();
  EXPECT_EQ(Text(), "[a.csv]\nA=\xC3\xA9\n");
}

TEST_F(SchemaIniFileTest, EncodingsThatAreNotReadStayUntouched) {
  using namespace std::string_view_literals;
  for (const std::string_view text :
       {"\xFE\xFF\0[\0a\0]"sv, "\xFF\xFE\0\0[\0\0\0"sv, "\xFF\xFE"sv}) {
    SetText(text);
    EXPECT_FALSE(WriteSchemaSection(Paths(), u"a", SchemaOptions()));
    ExpectNoSections();
    EXPECT_EQ(Text(), text);
    EXPECT_FALSE(folder_.Exists(u"~scheam.ini"));
  }
}

TEST_F(SchemaIniFileTest, FailuresAreToldApart) {
  EXPECT_EQ(ReasonOf([] {
              SchemaIniFile(SchemaIniPaths(u"/no/such/folder"), SchemaIniFile::Access::kWrite);
            }),
            "Could not create schema.ini.");
  SetText("[a]\n");
  folder_.MakeFolder(u"~scheam.ini");
  EXPECT_EQ(ReasonOf([&] { SchemaIniFile(Paths(), SchemaIniFile::Access::kWrite); }),
            "Could not write to temp schema.ini.");
  EXPECT_EQ(Text(), "[a]\n");
}

TEST_F(SchemaIniFileTest, AFolderInItsPlaceHasNoSections) {
  folder_.MakeFolder(u"schema.ini");
  ExpectNoSections();
  std::u16string failure;
  EXPECT_FALSE(WriteSchemaSection(Paths(), u"a.csv", SchemaOptions(), &failure));
  EXPECT_NE(failure, u"");
  EXPECT_EQ(folder_.Names(), std::vector<std::u16string>{u"schema.ini"});
}

TEST_F(SchemaIniFileTest, ANameThatIsNoTextIsRefused) {
  const std::u16string name = {u'a', 0xDC80, u'.', u'c', u's', u'v'};
  EXPECT_FALSE(WriteSchemaSection(Paths(), name, SchemaOptions()));
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(SchemaIniFileTest, NamesThatCouldNotBeReadBackAreRefused) {
  SetText("[other.csv]\nA=1\n");
  const std::u16string names[] = {u"",
                                  u"a\"b",
                                  u"\"",
                                  u"a\r\nb",
                                  u"a\n\nb",
                                  u"a\n[b",
                                  u"a\x1A",
                                  std::u16string(u"a\0b", 3),
                                  std::u16string(1, 0xD83D)};
  for (const std::u16string& name : names) {
    FieldDefinition column;
    column.name = name;
    std::u16string failure;
    EXPECT_FALSE(WriteColumn(u"a.csv", column, &failure)) << ToUtf8(name);
    EXPECT_NE(failure, u"");
  }
  EXPECT_EQ(Text(), "[other.csv]\nA=1\n");
  EXPECT_FALSE(folder_.Exists(u"~scheam.ini"));
}

struct ColumnCase {
  std::u16string_view name;
  FieldType type;
  std::u16string_view pattern;
  std::int32_t width;  // 0: none
  std::u16string_view line;
};

constexpr ColumnCase kColumnCases[] = {
    {u"Id", FieldType::kObjectId, u"", 0, u"Id Long"},
    {u"First Name", FieldType::kString, u"", 20, u"\"First Name\" Text Width 20"},
    {u"two\nlines", FieldType::kString, u"", 0, u"\"two\nlines\" Text"},
    {u"=[x];", FieldType::kGuid, u"", 0, u"=[x]; Text"},
    {u"\tTab", FieldType::kGlobalId, u"", 0, u"\"\tTab\" Text"},
    {u"D", FieldType::kDate, u"", 0, u"D Date"},
    {u"D", FieldType::kDate, u"dd.MM.yyyy HH:mm", 16, u"D Date dd.MM.yyyy HH:mm Width 16"},
    {u"D", FieldType::kDateOnly, u"yyyy-MM-dd", 0, u"D Date yyyy-MM-dd"},
    {u"D", FieldType::kDateOnly, u"yyyy-MM-dd", 10, u"D Date yyyy-MM-dd \" \" Width 10"},
    {u"D", FieldType::kTimeOnly, u"HH:mm", 5, u"D Date HH:mm \" \" Width 5"},
    {u"D", FieldType::kDate, u"yyyy. MM. dd. H:mm:ss", 0, u"D Date \"yyyy. MM. dd.\" H:mm:ss"},
    {u"D", FieldType::kDateOnly, u"yyyy. MM. dd.", 0, u"D Date \"yyyy. MM.\" dd."},
    {u"D", FieldType::kDate, u"d  M  yyyy h", 9, u"D Date \"d  M  yyyy\" h Width 9"},
    {u"D", FieldType::kTimestampOffset, u"yyyy-MM-ddTHH:mm:ss", 0, u"D Date"},
};

TEST_F(SchemaIniFileTest, ColumnLinesFollowTheTable) {
  for (const ColumnCase& c : kColumnCases) {
    SCOPED_TRACE(ToUtf8(c.line));
    FieldDefinition column;
    column.name = c.name;
    column.type = c.type;
    column.dateFormat.pattern = c.pattern;
    column.hasWidth = c.width > 0;
    column.width = c.width > 0 ? c.width : kDefaultTextWidth;
    ASSERT_TRUE(WriteColumn(u"a.csv", column));
    EXPECT_EQ(Text(), "[a.csv]\nCol1=" + ToUtf8(c.line) + "\n");

    SchemaOptions read;
    ASSERT_TRUE(ReadSchemaSection(Paths(), u"a.csv", read));
    const FieldDefinition& back = read.columns.at(0);
    EXPECT_EQ(back.name, c.name);
    EXPECT_EQ(back.hasWidth, c.width > 0);
    EXPECT_EQ(back.width, column.width);
    if (c.type == FieldType::kTimestampOffset) continue;  // is told from the values
    EXPECT_EQ(ToUtf8(back.dateFormat.pattern), ToUtf8(c.pattern));
    EXPECT_EQ(back.type, TypeOfKeyword(KeywordOfType(c.type)) == FieldType::kDate
                             ? c.type
                             : TypeOfKeyword(KeywordOfType(c.type)));
  }
}

TEST_F(SchemaIniFileTest, AColumnIsAddedToWhatOthersHaveWritten) {
  folder_.Write(u"A.csv", "A\tB\n");
  SetText("[b.csv]\nFormat=TabDelimited\n[a.csv]\nCol2=B Text\n");
  const auto named = [](std::int32_t index, std::u16string name) {
    ColumnToAdd added;
    added.index = index;
    added.column.name = std::move(name);
    added.column.type = FieldType::kDouble;
    return added;
  };
  ColumnToAdd columns[] = {named(0, u"A"), named(1, u"B"), named(2, u"a\"b"), named(3, u"D")};
  AddSchemaColumns(Paths(), u"A.csv", columns);
  EXPECT_TRUE(columns[0].added);
  EXPECT_FALSE(columns[1].added);
  ASSERT_TRUE(columns[1].declared.has_value());
  EXPECT_EQ(columns[1].declared->type, FieldType::kString);
  EXPECT_FALSE(columns[2].added) << "its line would not read back";
  EXPECT_FALSE(columns[2].declared.has_value());
  EXPECT_TRUE(columns[3].added);
  EXPECT_EQ(Text(),
            "[b.csv]\nFormat=TabDelimited\n[a.csv]\nCol1=A Double\nCol2=B Text\nCol4=D Double\n");
}

TEST_F(SchemaIniFileTest, NothingIsAddedForAFileThatHasGone) {
  SetText("[b.csv]\nFormat=TabDelimited\n");
  ColumnToAdd columns[1];
  columns[0].column.name = u"A";
  AddSchemaColumns(Paths(), u"a.csv", columns);
  EXPECT_FALSE(columns[0].added);
  EXPECT_EQ(Text(), "[b.csv]\nFormat=TabDelimited\n");
}

// ---------------------------------------------------------------------------------------------
// Operations of several steps
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniFileTest, WhatWasSavedOnTheWayIsTakenBackByteForByte) {
  constexpr std::string_view kBefore = "; \xE9\r\n\r\n[a.csv]\r\nA=1\r\n[A.csv]\nA=2\n[a.csv]\n";
  SetText(kBefore);
  {
    SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
    file.Replace(u"a.csv", {u"A=3"});
    file.SaveAndHold();
    EXPECT_NE(Text(), kBefore);
    EXPECT_TRUE(folder_.Exists(u"~scheam.ini")) << "others go on waiting";
    file.Insert(u"b.csv", {u"B=1"});
    file.SaveAndHold();
    file.Restore();
    EXPECT_EQ(Text(), kBefore);
    file.Restore();
  }
  EXPECT_EQ(Text(), kBefore);
  EXPECT_EQ(folder_.Names(), std::vector<std::u16string>{u"schema.ini"});
}

TEST_F(SchemaIniFileTest, AFileThatWasMadeOnTheWayGoesAgain) {
  {
    SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
    file.Replace(u"a.csv", {u"A=3"});
    file.SaveAndHold();
    EXPECT_EQ(Text(), "[a.csv]\nA=3\n");
    file.Restore();
  }
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(SchemaIniFileTest, WhatSomebodyElseHasWrittenMeanwhileStays) {
  SetText("[a.csv]\nA=1\n");
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  file.Remove(u"a.csv");
  file.SaveAndHold();
  SetText("[mine.csv]\n");
  file.Restore();
  EXPECT_EQ(Text(), "[mine.csv]\n");
}

TEST_F(SchemaIniFileTest, ASectionIsInsertedInFrontOfThoseOfItsName) {
  const struct {
    std::string_view before, after;
    bool made, stood;
  } cases[] = {
      {"[a.csv]\nA=1\n", "[a.csv]\nA=1\n[b.csv]\nB=1\n", true, false},
      {"[a.csv]\n[B.CSV]\nB=2\n[b.csv]\n", "[a.csv]\n[b.csv]\nB=1\n[B.CSV]\nB=2\n[b.csv]\n", true,
       true},
      {"[b.csv]\nB=1\n[b.csv]\nB=2\n", "[b.csv]\nB=1\n[b.csv]\nB=2\n", false, false},
  };
  for (const auto& c : cases) {
    SetText(c.before);
    SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
    const SchemaIniFile::Change change = file.Insert(u"b.csv", {u"B=1"});
    EXPECT_EQ(change.made, c.made);
    EXPECT_EQ(change.stood, c.stood);
    file.Save();
    EXPECT_EQ(Text(), c.after);
  }
}

TEST_F(SchemaIniFileTest, ARenamedSectionComesBeforeThoseOfItsNewName) {
  const struct {
    std::string_view before, between, after;
    bool stood;
  } cases[] = {
      {"[a]\nA=1\n[c]\n", "[a]\nA=1\n[b]\nA=1\n[c]\n", "[b]\nA=1\n[c]\n", false},
      {"[B]\nB=1\n[c]\n[b]\n[A]\nA=1\n[a]\nA=2\n[b]\nB=3\n",
       "[c]\n[A]\nA=1\n[b]\nA=1\n[B]\nB=1\n[b]\n[a]\nA=2\n[b]\nB=3\n",
       "[c]\n[b]\nA=1\n[B]\nB=1\n[b]\n[b]\nA=2\n[b]\nB=3\n", true},
      // As a renaming that was ended half-way leaves it.
      {"[a]\nA=1\n[b]\nA=1\n[B]\nB=1\n", "[a]\nA=1\n[b]\nA=1\n[B]\nB=1\n", "[b]\nA=1\n[B]\nB=1\n",
       true},
      {"[b]\nB=1\n", "[b]\nB=1\n", "[b]\nB=1\n", false},
  };
  for (const auto& c : cases) {
    SetText(c.before);
    SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
    EXPECT_EQ(file.Duplicate(u"a", u"b").stood, c.stood) << c.before;
    file.SaveAndHold();
    EXPECT_EQ(Text(), c.between);
    file.Rename(u"a", u"b");
    file.Save();
    EXPECT_EQ(Text(), c.after);
  }
}

// ---------------------------------------------------------------------------------------------
// Files whose names differ in letter case alone
// ---------------------------------------------------------------------------------------------

class NamesakesTest : public SchemaIniFileTest {
 protected:
  void SetUp() override {
    SchemaIniFileTest::SetUp();
    folder_.Write(u"a.csv", "Id\n");
    if (folder_.Exists(u"A.CSV")) GTEST_SKIP() << "one name for the file system";
    folder_.Write(u"A.CSV", "Id\n");
    SetText(kText);
  }
  static constexpr std::string_view kText = "[A.CSV]\nB=1\n[A.csv]\nA=1\n[a.csv]\nA=2\n";
};

TEST_F(NamesakesTest, ASectionSpelledAsAnotherFileIsThatFiles) {
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  EXPECT_EQ(*file.Find(u"a.csv"), SectionLines{u"B=1"}) << "as it is read";
  EXPECT_EQ(*file.FindOwn(u"a.csv"), SectionLines{u"A=1"});
  EXPECT_EQ(*file.FindOwn(u"A.CSV"), SectionLines{u"B=1"});
  EXPECT_TRUE(file.ReadsAnothers(u"a.csv"));
  EXPECT_FALSE(file.ReadsAnothers(u"A.CSV"));
  file.Replace(u"a.csv", {u"A=3"});
  file.Save();
  EXPECT_EQ(Text(), "[A.CSV]\nB=1\n[A.csv]\nA=3\n");
}

TEST_F(NamesakesTest, OnlyOnesOwnSectionsAreRemovedAndRenamed) {
  {
    SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
    file.Rename(u"a.csv", u"b.csv");
    file.Save();
  }
  EXPECT_EQ(Text(), "[A.CSV]\nB=1\n[b.csv]\nA=1\n[b.csv]\nA=2\n");
  SetText(kText);
  {
    SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
    file.Remove(u"A.CSV");
    file.Save();
  }
  EXPECT_EQ(Text(), "[a.csv]\nA=2\n") << "[A.csv] is nobody's, and was found for both";
}

TEST_F(NamesakesTest, AnothersSectionIsNotMovedForANewName) {
  SetText("[A.CSV]\nB=1\n[c.csv]\nC=1\n");
  folder_.Remove(u"a.csv");
  SchemaIniFile file(Paths(), SchemaIniFile::Access::kWrite);
  EXPECT_FALSE(file.Duplicate(u"c.csv", u"a.csv").stood);
  EXPECT_FALSE(file.Insert(u"a.csv", {u"C=1"}).stood);
}

TEST_F(NamesakesTest, ColumnsAreNotAddedToAnothersSection) {
  SetText("[A.CSV]\nFormat=TabDelimited\n");
  ColumnToAdd columns[1];
  columns[0].column.name = u"A";
  AddSchemaColumns(Paths(), u"a.csv", columns);
  EXPECT_FALSE(columns[0].added);
  EXPECT_EQ(Text(), "[A.CSV]\nFormat=TabDelimited\n");
  AddSchemaColumns(Paths(), u"A.CSV", columns);
  EXPECT_TRUE(columns[0].added);
}

// ---------------------------------------------------------------------------------------------
// Random schemas
// ---------------------------------------------------------------------------------------------

class RandomSchema {
 public:
  explicit RandomSchema(std::uint32_t seed) : random_(seed) {}

  SchemaOptions Make() {
    SchemaOptions options;
    MakeOptions(options);
    MakeNumber(options.number);
    MakeCurrency(options.currency);
    std::int32_t index = 0;
    for (int count = Below(8); count > 0; --count) {
      options.columns.emplace(index, MakeColumn());
      // Gaps are for delimited tables.
      index += options.fixedLength ? 1 : 1 + Below(3);
    }
    return options;
  }

 private:
  int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
  std::uint32_t Number() { return static_cast<std::uint32_t>(random_()); }
  bool Coin() { return Below(2) == 0; }
  template <class Value, std::size_t kCount>
  Value Pick(const Value (&values)[kCount]) {
    return values[Below(static_cast<int>(kCount))];
  }

  void MakeOptions(SchemaOptions& options) {
    options.specified = static_cast<std::uint32_t>(Below(64));
    if (options.IsSpecified(SchemaOptions::kFormat)) {
      options.fixedLength = Below(4) == 0;
      constexpr char16_t kDelimiters[] = {u',', u'\t', u';', u'|', u' ', u')', u'\u6708', u'='};
      options.delimiter = options.fixedLength ? u'\0' : Pick(kDelimiters);
    }
    options.columnNameHeader = options.IsSpecified(SchemaOptions::kColNameHeader) && Coin();
    if (options.IsSpecified(SchemaOptions::kMaxScanRows)) options.maxScanRows = Number();
    options.ansi = options.IsSpecified(SchemaOptions::kCharacterSet) && Coin();
    constexpr std::u16string_view kPatterns[] = {u"dd.MM.yyyy HH:mm", u"", u"\"x\ny\"", u"M/d/yy"};
    if (options.IsSpecified(SchemaOptions::kDateTimeFormat))
      options.dateTimeFormat = Pick(kPatterns);
    constexpr char16_t kQuotes[] = {u'"', u'\'', u'\0', u'$'};
    if (options.IsSpecified(SchemaOptions::kTextDelimiter)) options.textDelimiter = Pick(kQuotes);
  }

  void MakeNumber(NumberFormat::Settings& number) {
    number.specified = static_cast<std::uint16_t>(Below(8));
    constexpr char16_t kSymbols[] = {u'.', u',', u'\u066B', u'='};
    if (number.specified & NumberFormat::Settings::kDecimalSymbol)
      number.decimalSymbol = Pick(kSymbols);
    if (number.specified & NumberFormat::Settings::kNumberDigits) number.digits = Number();
    if (number.specified & NumberFormat::Settings::kLeadingZeros) number.leadingZeros = Coin();
  }

  void MakeCurrency(CurrencySettings& currency) {
    currency.specified = static_cast<std::uint32_t>(Below(64));
    constexpr std::u16string_view kTexts[] = {u"", u"$", u"kr. x", u"\u20AC", u"a=b [c]"};
    constexpr char16_t kSymbols[] = {u'.', u',', u'\''};
    if (currency.specified & CurrencySettings::kSymbol) currency.symbol = Pick(kTexts);
    if (currency.specified & CurrencySettings::kPositiveFormat)
      currency.positiveFormat = Pick(kTexts);
    if (currency.specified & CurrencySettings::kNegativeFormat)
      currency.negativeFormat = Pick(kTexts);
    if (currency.specified & CurrencySettings::kDigits) currency.digits = Number();
    if (currency.specified & CurrencySettings::kThousandSymbol)
      currency.thousandSymbol = Pick(kSymbols);
    if (currency.specified & CurrencySettings::kDecimalSymbol)
      currency.decimalSymbol = Pick(kSymbols);
  }

  FieldDefinition MakeColumn() {
    constexpr FieldType kTypes[] = {
        FieldType::kSmallInteger, FieldType::kInteger,  FieldType::kBigInteger,
        FieldType::kSingle,       FieldType::kDouble,   FieldType::kString,
        FieldType::kDate,         FieldType::kDateOnly, FieldType::kTimeOnly};
    constexpr std::u16string_view kNames[] = {u"Id",    u"First Name", u"a=b", u"\U0001F600",
                                              u"Width", u" x",         u"[q]", u";",
                                              u"Col1=", u"\tz",        u"x "};
    FieldDefinition column;
    column.type = Pick(kTypes);
    column.name = Pick(kNames);
    column.hasWidth = Coin();
    if (column.hasWidth) column.width = 1 + Below(10000);
    constexpr std::u16string_view kDates[] = {u"yyyy-MM-dd HH:mm", u"d.M.yy h", u"",
                                              u"M-d-yyyyTHH:mm:ss", u"yyyy. MM. dd. H:mm:ss"};
    constexpr std::u16string_view kDays[] = {u"yyyy-MM-dd", u"d. M. yyyy.", u"MM/dd/yyyy"};
    constexpr std::u16string_view kTimes[] = {u"HH:mm", u"h", u"H:mm:ss tt x"};
    if (column.type == FieldType::kDate) column.dateFormat.pattern = Pick(kDates);
    if (column.type == FieldType::kDateOnly) column.dateFormat.pattern = Pick(kDays);
    if (column.type == FieldType::kTimeOnly) column.dateFormat.pattern = Pick(kTimes);
    return column;
  }

  std::mt19937 random_;
};

std::string Dump(const SchemaOptions& options) {
  std::string dump;
  for (const std::u16string& line : SchemaSectionLines(options)) dump += ToUtf8(line) + "\n";
  for (const auto& [index, column] : options.columns)
    dump += std::to_string(index) + " " + ToUtf8(column.name) + " " +
            std::to_string(static_cast<int>(column.type)) + " " +
            (column.hasWidth ? std::to_string(column.width) : "-") + " " +
            ToUtf8(column.dateFormat.pattern) + "\n";
  dump += std::to_string(options.specified) + " " + std::to_string(options.number.specified) + " " +
          std::to_string(options.currency.specified) + " " + std::to_string(options.delimiter) +
          " " + std::to_string(options.textDelimiter) + " " + std::to_string(options.fixedLength) +
          " " + ToUtf8(options.currency.symbol);
  return dump;
}

// What the locale fills in is the same on both sides.
SchemaOptions Completed(SchemaOptions options) {
  CompleteFromLocale(options);
  return options;
}

TEST_F(SchemaIniFileTest, WhatIsWrittenIsRead) {
  for (std::uint32_t seed = 0; seed < 600; ++seed) {
    SCOPED_TRACE(seed);
    QUENRALocale::SetLocale(seed % 2 == 0 ? u"en-US" : u"de-DE");
    const SchemaOptions options = RandomSchema(seed).Make();
    SetText("[first.csv]\nFormat=CSVDelimited\n[t.csv]\n\nold\n[last.csv]\nx\n");
    ASSERT_TRUE(WriteSchemaSection(Paths(), u"T.csv", options));
    SchemaOptions read;
    ASSERT_TRUE(ReadSchemaSection(Paths(), u"t.csv", read)) << Text();
    ASSERT_EQ(Dump(read), Dump(Completed(options))) << Text();
    const std::string text = Text();
    EXPECT_TRUE(text.starts_with("[first.csv]\nFormat=CSVDelimited\n[t.csv]\n"));
    EXPECT_TRUE(text.ends_with("\n[last.csv]\nx\n"));
    EXPECT_EQ(text.find("old"), std::string::npos);
  }
}

}  // namespace
}  // namespace TextFile
