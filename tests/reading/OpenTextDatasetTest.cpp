#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reading/OpenTextDataset.h"
#include "reading/ReaderFactory.h"
#include "schema/ParseError.h"
#include "support/EventRecorder.h"
#include "support/RecordTexts.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"
#include "support/Utf16Bytes.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::u16string>;

class OpenTextDatasetTest : public EnglishTest {
 protected:
  // Opens a table that is expected to open.
  TextDatasetDescription Open(std::u16string_view name, std::string_view bytes) {
    folder_.Write(name, bytes);
    TextDatasetDescription table = DescribeFile(folder_.Path(), name);
    OpenDatasetStatus status = OpenDatasetStatus::kScanFailed;
    EXPECT_TRUE(OpenTextDataset(table, OpenOptions(), status));
    EXPECT_EQ(status, OpenDatasetStatus::kOpened);
    EXPECT_TRUE(table.loaded);
    return table;
  }

  static void ExpectFailure(TextDatasetDescription table, OpenDatasetStatus expected) {
    table.fields.resize(2);
    OpenDatasetStatus status = OpenDatasetStatus::kOpened;
    EXPECT_FALSE(OpenTextDataset(table, OpenOptions(), status));
    EXPECT_EQ(status, expected);
    EXPECT_FALSE(table.loaded);
    EXPECT_TRUE(table.fields.empty());
  }

  TemporaryFolder folder_;
};

Texts NamesOf(const TextDatasetDescription& table) {
  Texts names;
  for (const FieldDefinition& field : table.fields) names.push_back(field.name);
  return names;
}

// ---------------------------------------------------------------------------------------------
// Outcomes
// ---------------------------------------------------------------------------------------------

TEST_F(OpenTextDatasetTest, StatusValuesAreTheHostsNumbers) {
  EXPECT_EQ(static_cast<int>(OpenDatasetStatus::kOpened), 0);
  EXPECT_EQ(static_cast<int>(OpenDatasetStatus::kFileNotOpened), 1);
  EXPECT_EQ(static_cast<int>(OpenDatasetStatus::kScanFailed), 2);
}

TEST_F(OpenTextDatasetTest, DescribesATable) {
  const TextDatasetDescription table = Open(u"a.csv", "id,name\r\n1,x\r\n");
  EXPECT_EQ(table.name, u"a.csv");
  EXPECT_EQ(table.path, folder_.Path(u"a.csv"));
  EXPECT_EQ(NamesOf(table), (Texts{u"id", u"name"}));
  EXPECT_EQ(table.fields[0].type, FieldType::kInteger);
  EXPECT_EQ(table.fields[1].type, FieldType::kString);
  EXPECT_TRUE(table.options.columnNameHeader);
  EXPECT_EQ(table.options.specified, 0u) << "what was found out was not specified";
}

TEST_F(OpenTextDatasetTest, FilesWithoutContentHaveOneColumn) {
  for (const std::string& bytes : {""s, "\n"s, "\r\n\r\n"s, "\r"s, "\r\r\r"s, "\xEF\xBB\xBF"s,
                                   "\x1A"s, "\xFE\xFF\0a\0,\0b"s, "\xFF\xFE\0\0a\0\0\0"s}) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    const TextDatasetDescription table = Open(u"a.csv", bytes);
    ASSERT_EQ(NamesOf(table), (Texts{u"Field0"}));
    EXPECT_EQ(table.fields[0].type, FieldType::kString);
    EXPECT_EQ(table.fields[0].width, 8000);
    EXPECT_EQ(table.fields[0].dateFormat.pattern, u"");
    EXPECT_EQ(MakeDataReader(table)->ReadRecord(), false);
  }
}

TEST_F(OpenTextDatasetTest, OneByteIsAColumn) {
  EXPECT_EQ(NamesOf(Open(u"a.csv", "x")), (Texts{u"x"}));
  EXPECT_EQ(NamesOf(Open(u"b.csv", "7")), (Texts{u"Field1"}));
  EXPECT_EQ(NamesOf(Open(u"c.csv", "\xFF")), (Texts{u"\u00FF"}));
}

TEST_F(OpenTextDatasetTest, FileThatCannotBeOpened) {
  ExpectFailure(DescribeFile(folder_.Path(), u"gone.csv"), OpenDatasetStatus::kFileNotOpened);
  boost::filesystem::create_directory(folder_.Native(u"folder.csv"));
  ExpectFailure(DescribeFile(folder_.Path(), u"folder.csv"), OpenDatasetStatus::kFileNotOpened);
  // Not every system lets a user make links; without them the name is just missing.
  boost::system::error_code ignored;
  boost::filesystem::create_symlink(folder_.Native(u"b.csv"), folder_.Native(u"c.csv"), ignored);
  boost::filesystem::create_symlink(folder_.Native(u"c.csv"), folder_.Native(u"b.csv"), ignored);
  ExpectFailure(DescribeFile(folder_.Path(), u"b.csv"), OpenDatasetStatus::kFileNotOpened);
}

TEST_F(OpenTextDatasetTest, FileThatFitsNothing) {
  folder_.Write(u"a.csv", "a\n1,2;3\t4|5 6\n");
  ExpectFailure(DescribeFile(folder_.Path(), u"a.csv"), OpenDatasetStatus::kScanFailed);
  folder_.Write(u"fixed.txt", "abc\n");
  folder_.Write(u"schema.ini", "[fixed.txt]\nFormat=FixedLength\n");
  ExpectFailure(DescribeFile(folder_.Path(), u"fixed.txt"), OpenDatasetStatus::kScanFailed);
}

TEST_F(OpenTextDatasetTest, ParseErrorsReachTheCaller) {
  folder_.Write(u"a.csv", "a,b\n1,2\n");
  folder_.Write(u"schema.ini", "[a.csv]\nColNameHeader=true\n");
  TextDatasetDescription table = DescribeFile(folder_.Path(), u"a.csv");
  table.fields.resize(2);
  OpenDatasetStatus status = OpenDatasetStatus::kOpened;
  EXPECT_THROW(OpenTextDataset(table, OpenOptions(), status), ParseError);
  EXPECT_FALSE(table.loaded);
  EXPECT_TRUE(table.fields.empty());
}

// ---------------------------------------------------------------------------------------------
// schema.ini
// ---------------------------------------------------------------------------------------------

TEST_F(OpenTextDatasetTest, FixedWidthColumnsOfSchemaIniStay) {
  folder_.Write(u"schema.ini",
                "[a.txt]\nFormat=FixedLength\nColNameHeader=False\nCol1=id Long Width 3\n"
                "Col2=\"the name\" Text Width 4\nCol3=value Double Width 5\n");
  const TextDatasetDescription table = Open(u"a.txt", "  1abcd 1.50\n 22ef   2.25\n");
  EXPECT_EQ(NamesOf(table), (Texts{u"id", u"the name", u"value"}));
  EXPECT_EQ(table.fields[0].type, FieldType::kInteger);
  EXPECT_EQ(table.fields[1].type, FieldType::kString);
  EXPECT_EQ(table.fields[2].type, FieldType::kDouble);
  EXPECT_EQ(table.fields[1].width, 4);
  const ReaderPtr reader = MakeDataReader(table);
  EXPECT_EQ(RecordText(reader->record()), u"[1] [abcd] [1.50]");
}

TEST_F(OpenTextDatasetTest, SectionOfAnotherFileDoesNotMatter) {
  folder_.Write(u"schema.ini", "[b.csv]\nFormat=TabDelimited\nNonsense=1\n");
  EXPECT_EQ(NamesOf(Open(u"a.csv", "x,y\n1,2\n")), (Texts{u"x", u"y"}));
}

TEST_F(OpenTextDatasetTest, SchemaIniInAnotherLetterCaseIsFound) {
  folder_.Write(u"SCHEMA.INI", "[a.csv]\nColNameHeader=False\n");
  EXPECT_EQ(NamesOf(Open(u"a.csv", "x,y\nz,w\n")), (Texts{u"Field1", u"Field2"}));
}

TEST_F(OpenTextDatasetTest, HeaderIsSkippedOrNotAsTheOptionsSay) {
  const TextDatasetDescription named = Open(u"a.csv", "x,y\n\n1,2\n3,4\n");
  const ReaderPtr rows = MakeDataReader(named);
  EXPECT_EQ(RecordText(rows->record()), u"[1] [2]");
  EXPECT_EQ(RecordTexts(*rows), (Texts{u"[3] [4]"}));
  EXPECT_EQ(RecordText(MakeDataReader(Open(u"b.csv", "1,2\n3,4\n"))->record()), u"[1] [2]");
}

TEST_F(OpenTextDatasetTest, CarriageReturnsAreKeptForTheCursors) {
  const TextDatasetDescription table = Open(u"a.csv", "x,y\r1,2\r3,4");
  EXPECT_EQ(table.options.recordTerminator, '\r');
  EXPECT_EQ(NamesOf(table), (Texts{u"x", u"y"}));
  const ReaderPtr rows = MakeDataReader(table);
  EXPECT_EQ(RecordText(rows->record()), u"[1] [2]");
  EXPECT_EQ(RecordTexts(*rows), (Texts{u"[3] [4]"}));
}

// The first reading takes the whole file for one record, and its fields for names.
TEST_F(OpenTextDatasetTest, NamesOfAReadingThatDidNotEndLinesAreForgotten) {
  const TextDatasetDescription table = Open(u"a.csv", "a,b\rx,y\rz,w\r");
  EXPECT_EQ(table.options.recordTerminator, '\r');
  EXPECT_EQ(NamesOf(table), (Texts{u"a", u"b"}));
  EXPECT_EQ(RecordText(MakeDataReader(table)->record()), u"[x] [y]");
  // Neither record terminator cuts this file: what the first reading found stands.
  const TextDatasetDescription single = Open(u"b.csv", "a,b\n");
  EXPECT_EQ(single.options.recordTerminator, '\n');
  EXPECT_EQ(NamesOf(single), (Texts{u"a", u"b"}));
}

// Without a header the first line may still be all there is, so one more record is read.
TEST_F(OpenTextDatasetTest, FirstRowOfDataIsNotTheWholeFileUntilAnotherWasLookedFor) {
  const TextDatasetDescription table = Open(u"a.csv", "1,2\r3,4\n");
  EXPECT_EQ(table.options.recordTerminator, '\r') << "a line feed ends one record alone";
  EXPECT_EQ(NamesOf(table), (Texts{u"Field1", u"Field2"}));
  EXPECT_EQ(MakeDataReader(table)->record().size(), 2u);
  // The second row is the last record read when single fields are refused.
  const TextDatasetDescription wider = Open(u"b.csv", "1\n2;3\n");
  EXPECT_EQ(wider.options.delimiter, u';');
  EXPECT_EQ(NamesOf(wider), (Texts{u"Field1", u"Field2"}));
}

// A zero ends each line's text, so with line feeds there is no record at all.
TEST_F(OpenTextDatasetTest, RecordTerminatorStaysWhereNoRecordWasFound) {
  const TextDatasetDescription table = Open(u"a.csv", "\0\r1,2\r3,4\n"s);
  EXPECT_EQ(table.options.recordTerminator, '\n');
  EXPECT_EQ(NamesOf(table), (Texts{u"Field0"}));
}

// With commas the quote opens and the whole file is one record, so carriage returns are tried and
// cut it; the semicolon, which splits the header, is tried on from there.
TEST_F(OpenTextDatasetTest, NextDelimiterIsTriedWithTheRecordTerminatorOfTheOneBefore) {
  const TextDatasetDescription table = Open(u"a.csv", "a;b\rc,\"d\ne;f\n");
  EXPECT_EQ(table.options.delimiter, u';');
  EXPECT_EQ(table.options.recordTerminator, '\r');
  EXPECT_EQ(NamesOf(table), (Texts{u"a", u"b"}));
}

// A reading with the other line ends finds no record where a zero ends the line.
TEST_F(OpenTextDatasetTest, ALineCutToNothingHidesNoRecord) {
  const TextDatasetDescription table = Open(u"a.csv", "\0\n1,2\n"s);
  EXPECT_EQ(NamesOf(table), (Texts{u"Field1", u"Field2"}));
  EXPECT_EQ(MakeDataReader(table)->record().size(), 2U);
  EXPECT_EQ(NamesOf(Open(u"b.csv", "\0\nabc"s)), (Texts{u"abc"}));
}

// ---------------------------------------------------------------------------------------------
// Delimiters of extensions and locales
// ---------------------------------------------------------------------------------------------

TEST_F(OpenTextDatasetTest, ExtensionTellsTheFirstDelimiter) {
  // Every row fits the comma and the extension's delimiter alike.
  struct {
    std::u16string name;
    std::string bytes;
    char16_t delimiter;
  } const cases[] = {
      {u"a.csv", "a,b\tc|d\n1,2\t3|4\n", u','},  {u"a.txt", "a,b\tc|d\n1,2\t3|4\n", u','},
      {u"a.asc", "a,b\tc|d\n1,2\t3|4\n", u','},  {u"a.tab", "a,b\tc|d\n1,2\t3|4\n", u'\t'},
      {u"a.TSV", "a,b\tc|d\n1,2\t3|4\n", u'\t'}, {u"a.Psv", "a,b\tc|d\n1,2\t3|4\n", u'|'},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Open(c.name, c.bytes).options.delimiter, c.delimiter) << c.bytes;
  // A wrong guess is put right.
  EXPECT_EQ(Open(u"b.tsv", "a,b\n1,2\n").options.delimiter, u',');
}

TEST_F(OpenTextDatasetTest, CandidateThatIsTheTextDelimiterSeparatesNothing) {
  folder_.Write(u"schema.ini", "[a.psv]\nTextDelimiter=,\nColNameHeader=False\n");
  // A comma behind text is a character of it.
  const TextDatasetDescription table = Open(u"a.psv", "1,9\n2,8\n");
  EXPECT_EQ(table.options.delimiter, u',') << "the first one when no candidate gives two fields";
  EXPECT_EQ(table.fields.size(), 1u);
  // With the comma as delimiter both rows would have two fields.
  const TextDatasetDescription blanks = Open(u"a.psv", "1,9 x\n2,8 y\n");
  EXPECT_EQ(blanks.options.delimiter, u' ');
}

TEST_F(OpenTextDatasetTest, DecimalCommaOfTheLocaleMeansSemicolons) {
  locale_.Set(u"de-DE");
  const std::string bytes = "a;b,c\n1;2,3\n";
  EXPECT_EQ(Open(u"a.csv", bytes).options.delimiter, u';');
  EXPECT_EQ(Open(u"a.tsv", "a;b\tc\n1;2\t3\n").options.delimiter, u';') << "whatever the extension";
  folder_.Write(u"schema.ini", "[b.csv]\nFormat=CSVDelimited\n");
  const TextDatasetDescription given = Open(u"b.csv", bytes);
  EXPECT_EQ(given.options.delimiter, u',');
  EXPECT_EQ(NamesOf(given), (Texts{u"a;b", u"c"}));
}

TEST_F(OpenTextDatasetTest, LocaleCompletesTheOptionsWithAndWithoutASection) {
  locale_.Set(u"de-DE");
  EXPECT_EQ(Open(u"a.csv", "a;b\n1;2\n").options.dateTimeFormat, u"dd.MM.yyyy HH:mm:ss");
  folder_.Write(u"schema.ini", "[b.csv]\nColNameHeader=True\n");
  EXPECT_EQ(Open(u"b.csv", "a;b\n1;2\n").options.dateTimeFormat, u"dd.MM.yyyy HH:mm:ss");
}

// So long a row of names is not copied name by name.
TEST_F(OpenTextDatasetTest, LongHeaderGivesTheSameFieldsAsAShortOne) {
  const std::string longName(70000, 'n');
  for (const std::string& last : {"n"s, longName}) {
    SCOPED_TRACE(last.size());
    folder_.Write(u"schema.ini", "[a.csv]\nCol4=Declared Text Width 7\n");
    const TextDatasetDescription table =
        Open(u"a.csv", "  id ,\"a name\",,x,\xC3\xA9t\xC3\xA9," + last + "\n1,a,b,c,d,e\n2,b\n");
    EXPECT_EQ(NamesOf(table), (Texts{u"id", u"a name", u"Field3", u"Declared", u"\u00E9t\u00E9",
                                     std::u16string(last.begin(), last.end())}));
    ASSERT_EQ(table.fields.size(), 6u);
    EXPECT_EQ(table.fields[0].type, FieldType::kInteger);
    EXPECT_EQ(table.fields[3].width, 7);
    EXPECT_EQ(table.fields[5].type, FieldType::kString);
    EXPECT_TRUE(table.options.columnNameHeader);
  }
}

TEST_F(OpenTextDatasetTest, LongHeaderOfCoordinatesGetsVirtualFields) {
  const std::string longName(70000, 'n');
  const TextDatasetDescription table =
      Open(u"a.csv", "Place,b," + longName + "\n47.3769N 8.5417E,x,y\n46.2044N 6.1432E,x,y\n");
  EXPECT_EQ(NamesOf(table), (Texts{u"Place", u"Place_X", u"Place_Y", u"b",
                                   std::u16string(longName.begin(), longName.end())}));
}

TEST_F(OpenTextDatasetTest, LongHeaderWithDoubledQuotesKeepsItsNames) {
  const std::string longName(70000, 'n');
  const TextDatasetDescription table = Open(u"a.csv", "\"a\"\"b\"," + longName + ",c\n1,x,2\n");
  EXPECT_EQ(NamesOf(table),
            (Texts{u"a\"b", std::u16string(longName.begin(), longName.end()), u"c"}));
  EXPECT_EQ(table.fields[2].type, FieldType::kInteger);
}

TEST_F(OpenTextDatasetTest, ReadsUtf16AndAnsiAlike) {
  const TextDatasetDescription wide = Open(u"a.csv", Utf16File(u"n\u00E9,b\r\n1,\u0142\r\n"));
  EXPECT_EQ(NamesOf(wide), (Texts{u"n\u00E9", u"b"}));
  EXPECT_EQ(RecordText(MakeDataReader(wide)->record()), u"[1] [\u0142]");
  EXPECT_EQ(NamesOf(Open(u"b.csv", "n\xE9,b\r\n1,2\r\n")), (Texts{u"n\u00E9", u"b"}));
}

// ---------------------------------------------------------------------------------------------
// Events
// ---------------------------------------------------------------------------------------------

void ExpectOneOpening(const EventRecorder& events, const std::u16string& path) {
  using Kind = quenra::EventLogRecord::Kind;
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events.at(0).kind, Kind::kBegin);
  EXPECT_EQ(events.at(0).text, u"BeginOpenDataset");
  EXPECT_EQ(events.at(1).kind, Kind::kEnd);
  EXPECT_EQ(events.at(1).text, u"EndOpenDataset");
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(events.at(i).type, 2);
    EXPECT_EQ(events.at(i).argument, 0);
    EXPECT_EQ(events.at(i).name, u"Korvanet.TextFile.OpenDataset");
    EXPECT_EQ(events.at(i).context, path);
  }
}

TEST_F(OpenTextDatasetTest, EveryOpeningIsOneBeginAndOneEndEvent) {
  folder_.Write(u"good.csv", "a,b\n1,2\n");
  folder_.Write(u"misfit.csv", "a\n1,2;3\t4|5 6\n");
  folder_.Write(u"error.csv", "a,b\n1,2\n");
  folder_.Write(u"schema.ini", "[error.csv]\nnonsense\n");
  for (const std::u16string_view name :
       {u"good.csv", u"misfit.csv", u"missing.csv", u"error.csv"}) {
    TextDatasetDescription table = DescribeFile(folder_.Path(), name);
    const EventRecorder events;
    OpenDatasetStatus status = OpenDatasetStatus::kOpened;
    bool thrown = false;
    try {
      OpenTextDataset(table, OpenOptions(), status);
    } catch (const ParseError&) {
      thrown = true;
    }
    EXPECT_EQ(thrown, name == u"error.csv");
    ExpectOneOpening(events, folder_.Path(name));
  }
}

// ---------------------------------------------------------------------------------------------
// Cost
// ---------------------------------------------------------------------------------------------

// What this process has read so far, by the system's account. Nothing where there is none.
std::optional<std::int64_t> BytesReadByProcess() {
#ifdef _WIN32
  // Wine can see an account too, of what passes between it and its server besides.
  return std::nullopt;
#endif
  std::ifstream account("/proc/self/io");
  std::string key;
  std::int64_t bytes = 0;
  if (!(account >> key >> bytes) || key != "rchar:") return std::nullopt;
  return bytes;
}

TEST_F(OpenTextDatasetTest, ReadsOnlyTheBeginningOfAFileOfAnySize) {
  if (!BytesReadByProcess().has_value()) GTEST_SKIP() << "bytes are not counted here";
  std::string rows = "id,name,seen,amount\n";
  for (int i = 0; i < 200; ++i) rows += std::to_string(i) + ",a name,2020-01-05,1.5\n";
  const auto bytesReadFor = [&](std::uintmax_t size) {
    folder_.Write(u"t.csv", rows);
    boost::filesystem::resize_file(folder_.Native(u"t.csv"), size);
    TextDatasetDescription table = DescribeFile(folder_.Path(), u"t.csv");
    OpenDatasetStatus status = OpenDatasetStatus::kScanFailed;
    const std::int64_t before = BytesReadByProcess().value();
    EXPECT_TRUE(OpenTextDataset(table, OpenOptions(), status));
    return BytesReadByProcess().value() - before;
  };
  constexpr std::int64_t kLengthOfTheAccount = 256;  // is read, too
  const std::int64_t small = bytesReadFor(1000000);
  const std::int64_t large = bytesReadFor(10'000'000'000);
  EXPECT_NEAR(static_cast<double>(large), static_cast<double>(small), kLengthOfTheAccount);
  // A header and a hundred rows are less than one read, and none is repeated.
  EXPECT_LE(large, 32 * 1024 + kLengthOfTheAccount);
}

}  // namespace
}  // namespace TextFile
