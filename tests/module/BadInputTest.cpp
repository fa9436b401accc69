// Files that no one should have written: each has its outcome, and nothing crashes or leaks.
#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using ::testing::ElementsAre;

constexpr auto kTableNotFound = static_cast<HRESULT>(0x80040351u);

class BadInputTest : public ModuleTest {
 protected:
  // Opens, counts and reads; the two ways of counting must agree.
  void ExpectConsistent(std::u16string_view name, std::string_view bytes) const {
    const auto table = Table(name, bytes);
    ASSERT_TRUE(table);
    EXPECT_FALSE(Fields(table).empty());
    LONG count = -7;
    EXPECT_EQ(table.As<IPlugInRowCount>()->CountRows(0, &count), S_OK);
    EXPECT_EQ(Rows(table).size(), static_cast<std::size_t>(count));
  }

  static std::vector<std::string> TextsOfErrors() {
    std::vector<std::string> texts;
    for (const ErrorSeen& error : TakeErrors()) texts.push_back(error.text);
    return texts;
  }

  static std::vector<FieldSeen> EmptyTable() { return {FieldSeen{"Field0", 4, 8000, 0, ""}}; }
};

TEST_F(BadInputTest, MissingFile) { EXPECT_EQ(OpenResult(u"missing.csv"), kTableNotFound); }

TEST_F(BadInputTest, LoopOfLinks) {
  folder_.MakeLink(u"a.csv", u"b.csv");
  folder_.MakeLink(u"b.csv", u"a.csv");
  EXPECT_EQ(OpenResult(u"a.csv"), kTableNotFound);
}

TEST_F(BadInputTest, EmptyFilesHaveOneTextField) {
  for (const std::string_view bytes : {""sv, "\n"sv, "\n\n\n"sv, "\r\n"sv, "\xEF\xBB\xBF"sv}) {
    const auto table = Table(u"a.csv", bytes);
    EXPECT_EQ(Fields(table), EmptyTable()) << bytes.size();
    EXPECT_THAT(Rows(table), ElementsAre());
  }
}

TEST_F(BadInputTest, UnreadableEncodingsAreEmpty) {
  for (const std::string_view bytes :
       {"\xFE\xFF\0I\0d\0\n\0\x31\0\n"sv, "\xFF\xFE\0\0I\0\0\0\n\0\0\0"sv}) {
    const auto table = Table(u"a.csv", bytes);
    EXPECT_EQ(Fields(table), EmptyTable());
    EXPECT_THAT(Rows(table), ElementsAre());
  }
}

TEST_F(BadInputTest, FilesOfOneByte) {
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    ExpectConsistent(u"a.csv", std::string(1, static_cast<char>(byte)));
  }
}

TEST_F(BadInputTest, FilesOfTwoTellingBytes) {
  const std::string bytes =
      "\n\r\"',;\t| \x1A\xEF\xFE\xFF"
      "a1" +
      std::string(1, '\0');
  for (const char first : bytes)
    for (const char second : bytes) ExpectConsistent(u"a.csv", std::string{first, second});
}

TEST_F(BadInputTest, ZeroByteEndsItsLine) {
  const auto table = Table(u"a.csv", "Name,N\na\0b,1\nc,2\n"sv);
  EXPECT_THAT(Rows(table), ElementsAre("BSTR:a|untouched", "BSTR:c|I4:2"));
}

TEST_F(BadInputTest, InvalidUtf8IsReadAsAnsi) {
  ExpectConsistent(u"a.csv", "Name\n\xC3\n\xF5\x80\n\xED\xA0\x80\n");
  EXPECT_THAT(Rows(Table(u"a.csv", "Name\na\xC3(\n")), ElementsAre("BSTR:a\u00C3("));
}

TEST_F(BadInputTest, TenMegabytesInOneField) {
  constexpr std::size_t kSize = 10'000'000;
  const auto table = Table(u"a.csv", "Name,N\n" + std::string(kSize, 'x') + ",1\n");
  const auto rows = Rows(table);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].size(), "BSTR:"sv.size() + kSize + "|I4:1"sv.size());
}

TEST_F(BadInputTest, HundredThousandColumns) {
  constexpr int kColumns = 100'000;
  std::string names = "c0";
  std::string values = "0";
  for (int i = 1; i < kColumns; ++i) {
    names += ",c" + std::to_string(i);
    values += ",1";
  }
  const auto table = Table(u"a.csv", names + "\n" + values + "\n" + values + "\n");
  EXPECT_EQ(Fields(table).size(), static_cast<std::size_t>(kColumns));
  EXPECT_EQ(Rows(table).size(), 2u);
}

// The end of the last line counts as a line end, so it is part of the quoted text.
TEST_F(BadInputTest, UnterminatedQuoteEndsWithTheFile) {
  EXPECT_THAT(Rows(Table(u"a.csv", "Name,B\n\"x\ny,2\n3")),
              ElementsAre("BSTR:x\ny,2\n3\n|untouched"));
}

TEST_F(BadInputTest, LineOfDelimitersAlone) {
  ExpectConsistent(u"a.csv", std::string(10'000, ',') + "\n");
  ExpectConsistent(u"b.csv", ",\n,\n,\n");
}

TEST_F(BadInputTest, FixedWidthWithoutColumnsFails) {
  folder_.Write(u"schema.ini", "[a.csv]\nFormat=FixedLength\n");
  folder_.Write(u"a.csv", "abc\n");
  EXPECT_EQ(OpenResult(u"a.csv"), E_FAIL);
  EXPECT_THAT(TextsOfErrors(),
              ElementsAre("a.csv: schema.ini declares no columns for its fixed-length records"));
}

// Which record it is that speaks against every layout, with the counts that do not agree.
TEST_F(BadInputTest, MisfitsAreTold) {
  struct {
    const char* section;
    const char* bytes;
    const char* text;
  } const cases[] = {
      {"Format=CSVDelimited\nColNameHeader=True\nCol1=A Long\nCol2=B Text\n", "a,b\n1,x,y\n2,z\n",
       "a.csv: row 1 (record 2 with the header line) has 3 values for 2 columns"},
      {"Format=TabDelimited\nColNameHeader=True\n", "a\n\n1\n2\t3\t4\n",
       "a.csv: row 2 (record 3 with the header line) has 3 values for 1 column"},
      {"Format=FixedLength\nColNameHeader=False\nCol1=A Text Width 2\nCol2=B Text Width 2\n"
       "Col3=C Text Width 2\n",
       "1122\n112233\n", "a.csv: row 1 has 2 values for 3 columns"},
      {"Format=FixedLength\nColNameHeader=True\nCol1=A Text Width 2\nCol2=B Text Width 2\n", "aa\n",
       "a.csv: the header line has 1 value for 2 columns"},
      {"Format=FixedLength\nCol1=A Text Width 2\n", "",
       "a.csv: there is no record for its 1 column"},
      // Tabs and "|" are found in row 3, all others before.
      {"MaxScanRows=5\nColNameHeader=True\n", "a\n1,2;3 4\n1,2;3 4\n1\t2|3,4 5;6\n",
       "a.csv: no delimiter fits; between tabs, row 3 (record 4 with the header line) has 2 values "
       "for 1 column"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    folder_.Write(u"schema.ini", std::string("[a.csv]\n") + c.section);
    folder_.Write(u"a.csv", c.bytes);
    EXPECT_EQ(OpenResult(u"a.csv"), E_FAIL);
    EXPECT_THAT(TextsOfErrors(), ElementsAre(c.text));
  }
}

// No text ever reaches such a width, so the column takes the rest of the record and the next one
// stays without a text.
TEST_F(BadInputTest, FixedWidthWithOddWidths) {
  for (const std::string_view width : {"0", "-1", "-2147483648", "2147483647"}) {
    SCOPED_TRACE(width);
    const std::string section =
        "[a.csv]\nFormat=FixedLength\nColNameHeader=False\n"
        "Col1=A Text Width " +
        std::string(width);
    folder_.Write(u"schema.ini", section + "\n");
    EXPECT_THAT(Rows(Table(u"a.csv", "abcd\nef\n\n")), ElementsAre("BSTR:abcd", "BSTR:ef"));
    folder_.Write(u"schema.ini", section + "\nCol2=B Text Width 2\n");
    EXPECT_EQ(OpenResult(u"a.csv"), E_FAIL);
  }
}

}  // namespace
}  // namespace quenra::test
