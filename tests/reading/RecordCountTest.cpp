// Counting gives the number of rows that reading gives, whatever the bytes are.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/QUENRALocale.h"
#include "reading/ReaderFactory.h"
#include "reading/RecordCount.h"
#include "reading/RecordScan.h"
#include "reading/TextLineStream.h"
#include "support/TemporaryFolder.h"

namespace TextFile {
namespace {

using namespace std::string_view_literals;

// What files are made of here. Later entries are the odder ones.
constexpr std::string_view kPieces[] = {
    "abc"sv,
    ","sv,
    "\n"sv,
    "\""sv,
    "\"quoted, text\""sv,
    "\"two\nlines\""sv,
    "\"\""sv,
    "\r\n"sv,
    "a text that is longer than one of the blocks that are looked at together"sv,
    " "sv,
    ";"sv,
    "x\"y"sv,
    "'"sv,
    ", \"b\""sv,
    "|"sv,
    "\n\n"sv,
    "\r"sv,
    "\t"sv,
    "\xC3\xBC"sv,
    "\xC3\xA0"sv,
    "\xC2\xA0"sv,
    "\xE2\x80\x83"sv,
    "\xE3\x80\x80"sv,
    "\xA0"sv,
    "\x85"sv,
    "\x83"sv,
    "\0"sv,
    "\x1A"sv,
};

// Rows of which several blocks are full, for what is done with such blocks together.
constexpr std::string_view kRows[] = {
    "12345,some text\n"sv,           "123,\"text\",\"more, \"\"text\"\"\"\n"sv,
    "12345,\"two\nlines\"\r\n"sv,    "a\n"sv,
    "a row that goes on and on, "sv,
};

std::string RandomBytes(std::mt19937& random) {
  const bool withRows = random() % 2 == 0;
  const std::size_t kinds = 3 + random() % (std::size(kPieces) - 2);
  std::string bytes;
  for (std::size_t pieces = random() % 120; pieces > 0; --pieces) {
    // Bytes that stop everything are rare, so that something stands behind other odd ones.
    std::string_view piece = kPieces[random() % kinds];
    if ((piece == "\x1A" || piece == "\0"sv) && random() % 8 != 0) piece = "z";
    bytes += piece;
    if (!withRows || random() % 16 != 0) continue;
    const std::string_view row = kRows[random() % std::size(kRows)];
    for (std::size_t rows = random() % 60; rows > 0; --rows) bytes += row;
  }
  return bytes;
}

std::string WithMark(std::mt19937& random, const std::string& bytes) {
  switch (random() % 8) {
    case 0:
      return "\xEF\xBB\xBF" + bytes;
    case 1: {
      std::string wide = "\xFF\xFE";
      for (const char byte : bytes) (wide += byte) += random() % 64 == 0 ? '\x0A' : '\0';
      return wide;
    }
    case 2:
      return "\xFF\xFE" + bytes;
    default:
      return bytes;
  }
}

TextDatasetDescription RandomDialect(std::mt19937& random) {
  constexpr char16_t kDelimiters[] = {u',', u',', u',', u';', u'\t', u'|', u' ', u'a', u'\u00FC'};
  constexpr char16_t kTextDelimiters[] = {u'"', u'"', u'"', u'"', u'\'', 0, u',', u' ', u'\u00FC'};
  TextDatasetDescription table;
  table.options.delimiter = kDelimiters[random() % std::size(kDelimiters)];
  table.options.textDelimiter = kTextDelimiters[random() % std::size(kTextDelimiters)];
  table.options.recordTerminator = random() % 4 == 0 ? '\r' : '\n';
  table.options.columnNameHeader = random() % 2 == 0;
  table.options.fixedLength = random() % 8 == 0;
  for (std::size_t columns = random() % 4; columns > 0; --columns) {
    table.fields.emplace_back();
    table.fields.back().width = static_cast<std::int32_t>(random() % 6) - 1;
  }
  return table;
}

std::int64_t CountByReading(const TextDatasetDescription& table) {
  const ReaderPtr reader = MakeDataReader(table);
  std::int64_t rows = 0;
  for (bool found = !reader->record().empty(); found; found = reader->ReadRecord()) ++rows;
  return rows;
}

class RecordCountTest : public ::testing::Test {
 protected:
  ~RecordCountTest() override { quenra::QUENRALocale::SetAnsiCodePage(0); }

  std::int64_t Count(std::string_view bytes, TextDatasetDescription table = {}) {
    table.path = folder_.Write(u"t.csv", bytes);
    return CountDataRecords(table);
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(RecordCountTest, RandomFilesHaveAsManyRowsAsAreRead) {
  std::mt19937 random(44);
  for (const UINT codePage : {1252u, 932u, 65001u}) {
    ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(codePage));
    folder_.Write(u"t.csv", {});
    for (int i = 0; i < 4000; ++i) {
      const std::string bytes = WithMark(random, RandomBytes(random));
      TextDatasetDescription table = RandomDialect(random);
      // Some file systems hurry to the disk with a file that is cut and written again.
      folder_.Remove(u"t.csv");
      table.path = folder_.Write(u"t.csv", bytes);
      ASSERT_EQ(CountDataRecords(table), CountByReading(table))
          << ::testing::PrintToString(bytes) << " delimiter " << int{table.options.delimiter}
          << " text delimiter " << int{table.options.textDelimiter} << " terminator "
          << int{table.options.recordTerminator} << " fixed " << table.options.fixedLength
          << " columns " << table.fields.size() << " header " << table.options.columnNameHeader
          << " code page " << codePage;
    }
  }
}

TEST_F(RecordCountTest, LineEndsInQuotesEndNoRow) {
  EXPECT_EQ(Count("a,\"b\nc\"\nd,e\n"), 2);
  EXPECT_EQ(Count("a,\"b \"\"\n\"\" c\"\nd,e\n"), 2);
  // A quote inside unquoted text is a character.
  EXPECT_EQ(Count("a,5'10\"\nd,6'2\"\n"), 2);
  // White space in front of an opening quote is dropped.
  EXPECT_EQ(Count("a, \t\"b\nc\"\n \"d\ne\",f\n"), 2);
}

TEST_F(RecordCountTest, BlankLinesAreNoRows) {
  EXPECT_EQ(Count("\n\r\na\n\n\n\r\nb\r\n\r\n"), 2);
  EXPECT_EQ(Count(" \n"), 1);
  // Nothing but quotes around nothing is a blank line, too.
  EXPECT_EQ(Count("a\n\"\"\nb\n\"\"\r\n\"\""), 2);
  EXPECT_EQ(Count("a\n\"\",\nb\n"), 3);
  EXPECT_EQ(Count("\r"), 1);
}

// Many bytes are looked at together; where a blank line stands among them is no matter.
TEST_F(RecordCountTest, BlankLinesAreNoRowsAnywhere) {
  folder_.Write(u"t.csv", {});
  const std::string_view blanks[] = {"\n", "\r\n", "\"\"\n", "\"\"\r\n"};
  const std::string_view rows[] = {"y,2\n", "y,\"2\"\n"};
  for (const std::string_view blank : blanks) {
    for (const std::string_view row : rows) {
      for (std::size_t before = 180; before < 270; ++before) {
        std::string bytes = std::string(before, 'x') + ",1\n" + std::string(blank);
        for (int i = 0; i < 150; ++i) bytes += row;
        folder_.Remove(u"t.csv");
        ASSERT_EQ(Count(bytes), 151) << before << blank << row;
      }
    }
  }
}

TEST_F(RecordCountTest, TheLastRowNeedsNoLineEnd) {
  EXPECT_EQ(Count("a\nb"), 2);
  EXPECT_EQ(Count("a\n\"b"), 2);
  // The end of the last line belongs to a quoted field that is still open.
  EXPECT_EQ(Count("a\n\""), 2);
  EXPECT_EQ(Count(""), 0);
}

TEST_F(RecordCountTest, TheHeaderIsNoRow) {
  TextDatasetDescription table;
  table.options.columnNameHeader = true;
  EXPECT_EQ(Count("id,name\n1,a\n", table), 1);
  EXPECT_EQ(Count("id,name\n", table), 0);
  EXPECT_EQ(Count("", table), 0);
}

TEST_F(RecordCountTest, TheTextEndsAtItsMark) { EXPECT_EQ(Count("a\nb\x1A\nc\nd\n"), 2); }

TEST_F(RecordCountTest, TheTextEndsAtItsMarkInLaterBlocks) {
  std::string rows;
  while (rows.size() < 3 * TextLineStream::kDefaultBlockSize) rows += "a row,1\n";
  const auto before = static_cast<std::int64_t>(rows.size() / 8);
  EXPECT_EQ(Count(rows + "\x1A" + rows), before);
  // In the middle of the last row that is read.
  EXPECT_EQ(Count(rows + "a ro\x1Aw,1\n" + rows), before + 1);
  EXPECT_EQ(Count(rows + "\"\n\x1A\"\n" + rows), before + 1) << "in quotes as well";
}

// In this code page the second byte of a character may be the delimiter's: 83 7C is U+30DD.
TEST_F(RecordCountTest, HalvesOfCharactersDelimitNothing) {
  ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(932));
  TextDatasetDescription table;
  table.options.delimiter = u'|';
  EXPECT_EQ(Count("a|\x83|\"x\ny\"\n", table), 2) << "the quote stands behind text";
  EXPECT_EQ(Count("a||\"x\ny\"\n", table), 1) << "and here behind a delimiter";
}

// U+0085 is white space, which may stand in front of an opening quote; in code page 1252 its byte
// is an ellipsis.
TEST_F(RecordCountTest, NextLineCharacterIsWhiteSpaceInFrontOfAQuote) {
  ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(1252));
  EXPECT_EQ(Count("a,\xC2\x85\"x\ny\"\n"), 1);
  EXPECT_EQ(Count("\xEF\xBB\xBF\xC2\x85\"x\ny\"\n"), 1);
  EXPECT_EQ(Count("a,\x85\"x\ny\"\n"), 2);
}

// No-break spaces open a quoted field in UTF-8; the same bytes in another encoding are text.
TEST_F(RecordCountTest, AnEarlierLineDecidesWhatBytesMean) {
  ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(1252));
  const std::string quoted = "a,\xC2\xA0\"b\nc\"\n";
  EXPECT_EQ(Count("x,y\n" + quoted), 2);
  EXPECT_EQ(Count("x,\xFC\n" + quoted), 3);
}

TEST_F(RecordCountTest, LongRecordsAreCountedOnce) {
  std::string bytes = "a,\"";
  for (int i = 0; i < 100000; ++i) bytes += "line,\"\"\n";
  bytes += "\"\n";
  EXPECT_EQ(Count(bytes + "b\n" + bytes + "c"), 4);
}

// Every processor's code stops at the same places, however the bytes come in.
TEST(RecordScanTest, AllCodeCountsTheSame) {
  std::mt19937 random(45);
  for (int i = 0; i < 3000; ++i) {
    const std::string bytes = RandomBytes(random);
    RecordDialect dialect;
    dialect.terminator = random() % 4 == 0 ? '\r' : '\n';
    if (random() % 4 == 0) dialect.textDelimiter = '\0';
    RecordScan plain(dialect, RecordScan::Code::kPlain);
    const std::size_t whole = plain.Take(bytes, true);
    for (const auto code :
         {RecordScan::Code::kBest, RecordScan::Code::kAvx2, RecordScan::Code::kBaseline}) {
      RecordScan scan(dialect, code);
      ASSERT_EQ(scan.Take(bytes, true), whole) << ::testing::PrintToString(bytes);
      ASSERT_EQ(scan.records(), plain.records()) << ::testing::PrintToString(bytes);
      ASSERT_EQ(scan.undecided(), plain.undecided());
      ASSERT_TRUE(scan.undecided() || scan.sawNonAscii() == plain.sawNonAscii());
    }
    RecordScan pieces(dialect);
    std::size_t taken = 0;
    for (std::size_t end = 0; !pieces.undecided();) {
      end = std::min(bytes.size(), end + 1 + random() % 300);
      const bool last = end == bytes.size();
      taken += pieces.Take(std::string_view(bytes).substr(taken, end - taken), last);
      if (last) break;
    }
    ASSERT_EQ(taken, whole) << ::testing::PrintToString(bytes);
    ASSERT_EQ(pieces.records(), plain.records()) << ::testing::PrintToString(bytes);
  }
}

}  // namespace
}  // namespace TextFile
