// Values that contradict the type of their column: what the host receives, what is logged, and what
// schema.ini says afterwards.
#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr auto kFieldValueError = static_cast<HRESULT>(0x80040955u);

constexpr char kGenerated[] =
    "In file a.csv, field value 7.5 does not match inferred type of field N. Generated schema.ini. "
    "Restart and try again.";
constexpr char kAlreadyUpdated[] =
    "In file a.csv, field value 7.5 does not match inferred type of field N, and has already been "
    "updated in schema.ini. Restart and try again.";
constexpr char kDefinedOtherwise[] =
    "In file a.csv, field value abc does not match defined type of field N. Update schema.ini file "
    "and try again.";
constexpr char kNotWritten[] =
    "In file a.csv, field value 7.5 does not match inferred type of field N. Create schema.ini "
    "file and try again.";

class MismatchTest : public ModuleTest {
 protected:
  // Whole numbers for as long as inference looks, and then `last`.
  static std::string NumbersThen(std::string_view last) {
    std::string bytes = "N,Name\n";
    for (int i = 0; i < 110; ++i) bytes += std::to_string(i) + ",x\n";
    return bytes + std::string(last);
  }

  static std::vector<std::string> LastRows(const ComPtr<IPlugInDatasetHelper>& table,
                                           std::size_t count) {
    const auto rows = Rows(table);
    EXPECT_GE(rows.size(), count);
    return {rows.end() - static_cast<std::ptrdiff_t>(std::min(count, rows.size())), rows.end()};
  }

  static std::vector<std::string> ErrorTexts() {
    std::vector<std::string> texts;
    for (const ErrorSeen& error : TakeErrors()) {
      EXPECT_EQ(error.code, kFieldValueError);
      EXPECT_TRUE(IsEqualGUID(error.source, kTextFileErrorSource));
      texts.push_back(error.text);
    }
    return texts;
  }
};

TEST_F(MismatchTest, FirstValueIsReportedAndRecordedLaterOnesAreNot) {
  const auto table = Table(u"a.csv", NumbersThen("7.5,x\n8.5,x\nabc,x\n9,x\n"));
  EXPECT_EQ(Fields(table).at(0).type, 1);
  EXPECT_THAT(LastRows(table, 4),
              ElementsAre("NULL|BSTR:x", "R8:8.5|BSTR:x", "NULL|BSTR:x", "I4:9|BSTR:x"));
  EXPECT_THAT(ErrorTexts(), ElementsAre(kGenerated));
  EXPECT_THAT(Messages(), ElementsAre(kGenerated));
  EXPECT_THAT(folder_.Read(u"schema.ini"), HasSubstr("[a.csv]\n"));
  EXPECT_THAT(folder_.Read(u"schema.ini"), HasSubstr("Col1=N Double"));
  EXPECT_THAT(folder_.Names(), ElementsAre(u"a.csv", u"schema.ini")) << "no temporary file is left";
}

TEST_F(MismatchTest, SecondCursorFindsItRecorded) {
  const auto table = Table(u"a.csv", NumbersThen("7.5,x\n"));
  Rows(table);
  EXPECT_THAT(ErrorTexts(), ElementsAre(kGenerated));
  const std::string recorded = folder_.Read(u"schema.ini");
  EXPECT_THAT(LastRows(table, 1), ElementsAre("NULL|BSTR:x"));
  EXPECT_THAT(ErrorTexts(), ElementsAre(kAlreadyUpdated));
  EXPECT_THAT(Messages(), ElementsAre(kGenerated, kAlreadyUpdated));
  EXPECT_EQ(folder_.Read(u"schema.ini"), recorded);
}

TEST_F(MismatchTest, ReopenedTableHasTheRightType) {
  Rows(Table(u"a.csv", NumbersThen("7.5,x\n")));
  ErrorTexts();
  const auto table = OpenTable(u"a.csv");
  EXPECT_EQ(Fields(table).at(0).type, 3);
  EXPECT_THAT(LastRows(table, 1), ElementsAre("R8:7.5|BSTR:x"));
  EXPECT_THAT(ErrorTexts(), ElementsAre());
  EXPECT_EQ(Messages().size(), 1u);
}

TEST_F(MismatchTest, TextIsRecordedAsText) {
  const auto table = Table(u"a.csv", NumbersThen("abc,x\n"));
  EXPECT_THAT(LastRows(table, 1), ElementsAre("NULL|BSTR:x"));
  EXPECT_EQ(ErrorTexts().size(), 1u);
  EXPECT_THAT(folder_.Read(u"schema.ini"), HasSubstr("Col1=N Text"));
  EXPECT_THAT(LastRows(OpenTable(u"a.csv"), 1), ElementsAre("BSTR:abc|BSTR:x"));
}

TEST_F(MismatchTest, DeclaredTypeIsLeftAlone) {
  const std::string section = "[a.csv]\nColNameHeader=True\nCol1=N Long\n";
  folder_.Write(u"schema.ini", section);
  const auto table = Table(u"a.csv", "N\nabc\nabc\n");
  EXPECT_THAT(Rows(table), ElementsAre("NULL", "NULL"));
  EXPECT_THAT(ErrorTexts(), ElementsAre(kDefinedOtherwise));
  EXPECT_THAT(Messages(), ElementsAre(kDefinedOtherwise));
  EXPECT_EQ(folder_.Read(u"schema.ini"), section);
}

TEST_F(MismatchTest, SchemaIniThatCannotBeWrittenIsSaid) {
  folder_.MakeFolder(u"schema.ini");  // what keeps the file from being written, whoever asks
  const auto table = Table(u"a.csv", NumbersThen("7.5,x\n"));
  EXPECT_THAT(LastRows(table, 1), ElementsAre("NULL|BSTR:x"));
  EXPECT_THAT(ErrorTexts(), ElementsAre(kNotWritten));
  EXPECT_THAT(Messages(), ElementsAre(kNotWritten));
  EXPECT_THAT(folder_.Names(), ElementsAre(u"a.csv", u"schema.ini"));
}

TEST_F(MismatchTest, OtherSectionsAreKept) {
  folder_.Write(u"schema.ini", "[b.csv]\nFormat=TabDelimited\n");
  Rows(Table(u"a.csv", NumbersThen("7.5,x\n")));
  EXPECT_THAT(ErrorTexts(), ElementsAre(kGenerated));
  EXPECT_THAT(folder_.Read(u"schema.ini"), HasSubstr("[b.csv]\nFormat=TabDelimited\n"));
  EXPECT_THAT(folder_.Read(u"schema.ini"), HasSubstr("[a.csv]\n"));
}

TEST_F(MismatchTest, EachColumnIsReportedOnce) {
  folder_.Write(u"schema.ini", "[a.csv]\nColNameHeader=True\nCol1=A Long\nCol2=B Short\n");
  const auto table = Table(u"a.csv", "A,B\nx,y\nz,z\n");
  EXPECT_THAT(Rows(table), ElementsAre("NULL|NULL", "NULL|NULL"));
  const auto texts = ErrorTexts();
  ASSERT_EQ(texts.size(), 2u);
  EXPECT_THAT(texts[0], HasSubstr("field value y does not match defined type of field B"));
  EXPECT_THAT(texts[1], HasSubstr("field value x does not match defined type of field A"));
}

TEST_F(MismatchTest, UnwantedColumnIsLoggedButNotChained) {
  folder_.Write(u"schema.ini", "[a.csv]\nColNameHeader=True\nCol1=N Long\nCol2=M Long\n");
  const auto table = Table(u"a.csv", "N,M\nabc,1\n");
  const FieldMapArray map({-1, 0});
  ComPtr<IPlugInCursorHelper> cursor;
  ASSERT_EQ(table->FetchAllRows(0, nullptr, map.AsVariant(), cursor.Receive()), S_OK);
  Slots slots(1);
  EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(slots.Data()), S_OK);
  EXPECT_THAT(slots.Dump(), ElementsAre("I4:1"));
  EXPECT_THAT(Messages(), ElementsAre(kDefinedOtherwise));
  EXPECT_THAT(ErrorTexts(), ElementsAre());
}

TEST_F(MismatchTest, VirtualFieldsDoNotShiftTheRecordedColumn) {
  std::string bytes = "Place,N\n";
  for (int i = 0; i < 110; ++i) bytes += "40.123N 74.456W,1\n";
  const auto table = Table(u"a.csv", bytes + "40.123N 74.456W,7.5\n");
  EXPECT_EQ(Fields(table).size(), 4u);
  Rows(table);
  EXPECT_THAT(ErrorTexts(), ElementsAre(kGenerated));
  EXPECT_THAT(folder_.Read(u"schema.ini"), HasSubstr("Col2=N Double"));
}

TEST_F(MismatchTest, RowFetchedTwiceIsReportedOnce) {
  folder_.Write(u"schema.ini", "[a.csv]\nColNameHeader=True\nCol1=N Long\n");
  const auto table = Table(u"a.csv", "N\n7.5\n");
  CursorOverAll cursor(table);
  EXPECT_EQ(cursor.Row(), "NULL");
  EXPECT_EQ(cursor.Row(), "R8:7.5");
  EXPECT_EQ(ErrorTexts().size(), 1u);
}

}  // namespace
}  // namespace quenra::test
