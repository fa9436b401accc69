// Rows that are told by their bytes alone.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/CharacterClasses.h"
#include "reading/DelimitedReader.h"
#include "reading/FixedWidthReader.h"
#include "reading/PlainRowIndex.h"
#include "reading/UnitSearch.h"
#include "support/RecordTexts.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

using Rows = RecordFields;
using Fields = std::vector<std::string>;
using quenra::test::ToUtf8;

constexpr PlainRowIndex::Code kCodes[] = {PlainRowIndex::Code::kBest, PlainRowIndex::Code::kAvx2,
                                          PlainRowIndex::Code::kBaseline,
                                          PlainRowIndex::Code::kPlain};

// Bytes with what may be read behind them.
class Padded {
 public:
  explicit Padded(std::string bytes) : size_(bytes.size()), bytes_(std::move(bytes)) {
    bytes_ += std::string(kPlainRowPadding, '\n');
  }
  std::string_view View() const noexcept { return std::string_view(bytes_).substr(0, size_); }

 private:
  std::size_t size_;
  std::string bytes_;
};

Fields FieldsOf(const PlainRow& row) {
  Fields fields;
  UnitBuffer buffer;
  for (std::size_t i = 0; i < row.size(); ++i)
    fields.push_back(ToUtf8(std::u16string(row.Text(i, buffer))));
  return fields;
}

// What an index finds at the start of bytes.
struct Found {
  bool operator==(const Found&) const = default;

  std::size_t length = 0;  // of the line with its end; 0: no plain row
  bool nonAscii = false;
  Fields fields;
};

Found FindRow(std::string bytes, const PlainRowDialect& dialect, bool asciiOnly,
              PlainRowIndex::Code code) {
  const Padded padded(std::move(bytes));
  const std::string_view view = padded.View();
  PlainRowIndex index(dialect, code);
  PlainRow row;
  const char* const end = index.Take({view, 0, asciiOnly}, view.data(), row);
  if (end == nullptr) return {};
  return {static_cast<std::size_t>(end - view.data()), index.TookNonAscii(), FieldsOf(row)};
}

// All codes agree.
Found FindRow(const std::string& bytes, const PlainRowDialect& dialect = {},
              bool asciiOnly = false) {
  Found found = FindRow(bytes, dialect, asciiOnly, PlainRowIndex::Code::kBest);
  for (const PlainRowIndex::Code code : kCodes)
    EXPECT_EQ(FindRow(bytes, dialect, asciiOnly, code), found) << bytes;
  return found;
}

// The fields of the row at the start of `bytes`; none when it is not plain.
Fields PlainFields(const std::string& bytes, const PlainRowDialect& dialect = {}) {
  return FindRow(bytes, dialect).fields;
}

TEST(PlainRowIndexTest, DelimitersCutTheLine) {
  EXPECT_EQ(PlainFields("a,,b c,\nnext"), (Fields{"a", "", "b c", ""}));
  EXPECT_EQ(PlainFields("a;b\n", {.delimiter = ';'}), (Fields{"a", "b"}));
  EXPECT_EQ(PlainFields("one field\n"), (Fields{"one field"}));
  EXPECT_EQ(PlainFields(" , \n"), (Fields{" ", " "}));
}

TEST(PlainRowIndexTest, TheNextRowBeginsBehindTheLinesEnd) {
  EXPECT_EQ(FindRow("a,b\r\nc,d\n").length, 5u);
  EXPECT_EQ(FindRow("a\n").length, 2u);
}

TEST(PlainRowIndexTest, BlankLinesAreNoRows) {
  EXPECT_EQ(FindRow("\n\r\n\na,b\n"), (Found{8, false, {"a", "b"}}));
}

TEST(PlainRowIndexTest, OneCarriageReturnBelongsToTheLinesEnd) {
  EXPECT_EQ(PlainFields("a,b\r\n"), (Fields{"a", "b"}));
  EXPECT_EQ(PlainFields("a,b\r\r\n"), (Fields{"a", "b\r"}));
  EXPECT_EQ(PlainFields("a,\r\n"), (Fields{"a", ""}));
  EXPECT_EQ(PlainFields("a\rb,c\n"), (Fields{"a\rb", "c"}));
  EXPECT_EQ(PlainFields("\"a\",\"b\"\r\n"), (Fields{"a", "b"}));
}

TEST(PlainRowIndexTest, QuotedFieldsAreUnquoted) {
  EXPECT_EQ(PlainFields("\"a,b\",c\n"), (Fields{"a,b", "c"}));
  EXPECT_EQ(PlainFields("\"say \"\"hi\"\"\",\"\"\"\"\n"), (Fields{"say \"hi\"", "\""}));
  EXPECT_EQ(PlainFields("\"\",x\n"), (Fields{"", "x"}));
  // What follows the closing quote belongs to the field.
  EXPECT_EQ(PlainFields("\"ab\"cd,x\n"), (Fields{"abcd", "x"}));
  EXPECT_EQ(PlainFields("'a,b',\"c\"\n", {.textDelimiter = '\''}), (Fields{"a,b", "\"c\""}));
  EXPECT_EQ(PlainFields("\"a,b\"\n", {.textDelimiter = '\0'}), (Fields{"\"a", "b\""}));
}

TEST(PlainRowIndexTest, WhatBytesDoNotTellIsLeftToTheReaders) {
  for (const char* bytes : {
           "no end",
           "a,\"goes on\nbehind the end\"\n",
           "a, \"blank in front\"\n",
           "a,5\" pipe\n",
           "\"a\" \"b\"\n",
           "\n",
           "\r\n\n",
           "\"\"\n",
           "\"alone\"\n",
       })
    EXPECT_EQ(PlainFields(bytes), Fields()) << bytes;
  EXPECT_EQ(PlainFields(std::string("a\0,b\n", 5)), Fields());
  EXPECT_EQ(FindRow("Z\xC3\xBCrich\n", {}, true), Found());
  EXPECT_EQ(PlainFields("Z\xFCrich\n"), Fields());
}

TEST(PlainRowIndexTest, CharactersBeyondAsciiAreSeen) {
  EXPECT_TRUE(FindRow("Z\xC3\xBCrich,1\nBern,2\n").nonAscii);
  EXPECT_FALSE(FindRow("Bern,2\nZ\xC3\xBCrich,1\n").nonAscii);
  EXPECT_EQ(PlainFields("Z\xC3\xBCrich,\xE2\x82\xAC,\xF0\x9F\x8C\x8D\n"),
            (Fields{"Z\xC3\xBCrich", "\xE2\x82\xAC", "\xF0\x9F\x8C\x8D"}));
}

// Every lead with continuations at the ends of their ranges, at the ends of blocks.
TEST(PlainRowIndexTest, IllFormedSequencesAreFound) {
  const std::string seconds = "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0";
  const std::string others = "a\x80\xBF\xC2";
  UnitBuffer decoded;
  for (int lead = 0x80; lead <= 0xFF; ++lead) {
    for (const char second : seconds) {
      for (const char third : others) {
        for (const char fourth : others) {
          for (const std::size_t offset : {1u, 61u, 62u, 63u}) {
            std::string line(offset, '-');
            line += {static_cast<char>(lead), second, third, fourth, '-'};
            if (line.find('\0') != std::string::npos) continue;
            const bool wellFormed = DecodeStrictUtf8(line, decoded);
            ASSERT_EQ(!PlainFields(line + "\n").empty(), wellFormed)
                << std::hex << lead << ' ' << int{second} << ' ' << int{third} << ' ' << int{fourth}
                << " at " << offset;
          }
        }
      }
    }
  }
}

TEST(PlainRowIndexTest, LongRowsHaveAllTheirFields) {
  std::string line;
  Fields expected;
  for (int i = 0; i < 5000; ++i) {
    expected.push_back(i % 7 == 0 ? "" : i % 11 == 0 ? "x,\"y" : std::to_string(i));
    line += (i == 0 ? "" : ",") + (i % 7 != 0 && i % 11 == 0 ? "\"x,\"\"y\"" : expected.back());
  }
  EXPECT_EQ(PlainFields(line + "\n"), expected);
}

// Walks a file by plain rows and records, as cursors do.
Rows RowsOf(Reader& reader, std::size_t& plainRows) {
  Rows rows;
  PlainRow row;
  UnitBuffer buffer;
  bool plain = false;
  for (;;) {
    // Now and then the reader is asked although the row could go on.
    plain = (plain && rows.size() % 5 != 0 && row.GoOn()) || reader.ReadPlainRow(row);
    if (!plain && !reader.ReadRecord()) return rows;
    plainRows += plain;
    EXPECT_EQ(reader.record().empty(), plain);
    rows.emplace_back();
    for (std::size_t i = 0; i < (plain ? row.size() : reader.record().size()); ++i)
      rows.back().emplace_back(plain ? row.Text(i, buffer) : reader.record()[i]);
  }
}

class PlainRowTest : public ::testing::Test {
 protected:
  TextDatasetDescription Table(std::string_view bytes) {
    TextDatasetDescription table;
    table.name = u"t.csv";
    table.path = folder_.Write(u"t.csv", bytes);
    return table;
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(PlainRowTest, RowsGoOnToThoseFoundWithThem) {
  DelimitedReader reader(Table("a,b\r\n\"c,\",\nd,e\n\nf,g\n\"\"\nh,i\nj\"k,l\nm,n\n"));
  PlainRow row;
  ASSERT_TRUE(reader.ReadPlainRow(row));
  EXPECT_TRUE(row.GoOn());
  EXPECT_EQ(FieldsOf(row), (Fields{"c,", ""}));
  EXPECT_TRUE(row.GoOn());
  EXPECT_EQ(FieldsOf(row), (Fields{"d", "e"}));
  EXPECT_FALSE(row.GoOn()) << "a blank line is left to the reader";
  EXPECT_EQ(FieldsOf(row), (Fields{"d", "e"})) << "and the row stays";
  ASSERT_TRUE(reader.ReadPlainRow(row));
  EXPECT_EQ(FieldsOf(row), (Fields{"f", "g"}));
  EXPECT_FALSE(row.GoOn()) << "so is one of quotes alone";
  EXPECT_FALSE(reader.ReadPlainRow(row));
  ASSERT_TRUE(reader.ReadRecord());
  EXPECT_EQ(RecordText(reader.record()), u"[h] [i]");
  EXPECT_FALSE(reader.ReadPlainRow(row)) << "a quote inside of a text";
  ASSERT_TRUE(reader.ReadRecord());
  EXPECT_EQ(RecordText(reader.record()), u"[j\"k] [l]");
  ASSERT_TRUE(reader.ReadPlainRow(row));
  EXPECT_FALSE(row.GoOn());
  EXPECT_FALSE(reader.ReadPlainRow(row));
  EXPECT_FALSE(reader.ReadRecord());
}

// "5125" between such delimiters is 12, which the bytes alone do not show.
TEST_F(PlainRowTest, NoRowIsPlainWhenValuesMayHaveTheTextDelimiter) {
  for (const char16_t delimiter : std::u16string(u"5eETn+-.:/")) {
    TextDatasetDescription table = Table("5125;7\n");
    table.options.delimiter = u';';
    table.options.textDelimiter = delimiter;
    DelimitedReader reader(table);
    PlainRow row;
    EXPECT_FALSE(reader.ReadPlainRow(row)) << static_cast<int>(delimiter);
    EXPECT_TRUE(reader.ReadRecord());
    EXPECT_EQ(RecordText(reader.record()), delimiter == u'5' ? u"[12] [7]" : u"[5125] [7]");
  }
}

// Lines of ordinary fields, and now and then something that is not.
std::string RandomTable(std::mt19937& random) {
  constexpr const char* kPieces[] = {"a", "bc", " ",    "42", "\xC3\xBC", "\xE2\x82\xAC",
                                     ",", "\"", "\"\"", "\t", "word",     "long piece of a text",
                                     "\r"};
  const auto piece = [&] { return kPieces[random() % std::size(kPieces)]; };
  std::string bytes = random() % 4 == 0 ? "\xEF\xBB\xBF" : "";
  for (std::size_t lines = random() % 12; lines > 0; --lines) {
    for (std::size_t fields = random() % 12; fields > 0; --fields) {
      const std::size_t shape = random() % 8;
      if (shape == 0) bytes += "\"quoted, \"\"it\"\" is\"";
      if (shape == 1) bytes += "\"\"";
      if (shape > 1)
        for (std::size_t pieces = random() % 4; pieces > 0; --pieces)
          bytes += random() % 8 == 0 ? piece() : kPieces[random() % 6];
      bytes += ',';
    }
    if (random() % 40 == 0) bytes += std::string("\0\xFF\x1A", 3)[random() % 3];
    bytes += random() % 4 == 0 ? "\r\n" : "\n";
  }
  return bytes;
}

TEST_F(PlainRowTest, CursorsOfDelimitedFilesSeeTheSameRows) {
  std::mt19937 random(44);
  std::size_t rows = 0;
  std::size_t plainRows = 0;
  constexpr char16_t kDelimiters[] = {u',', u',', u',', u' ', u'"', u'\r', u'\u00FC'};
  constexpr char16_t kTextDelimiters[] = {u'"', u'"', u'"', u'a', 0, u'\u00FC'};
  for (int i = 0; i < 3000; ++i) {
    const std::string bytes = RandomTable(random);
    TextDatasetDescription table = Table(bytes);
    table.options.delimiter = kDelimiters[random() % std::size(kDelimiters)];
    table.options.textDelimiter = kTextDelimiters[random() % std::size(kTextDelimiters)];
    if (random() % 8 == 0) table.options.recordTerminator = '\r';
    DelimitedReader quick(table);
    DelimitedReader exact(table);
    exact.SplitExactly();
    const Rows expected = FieldsOfRecords(exact);
    ASSERT_EQ(RowsOf(quick, plainRows), expected) << ::testing::PrintToString(bytes);
    EXPECT_EQ(quick.StreamAtEnd(), exact.StreamAtEnd());
    EXPECT_EQ(quick.encoding(), exact.encoding());
    EXPECT_EQ(quick.HasGuessedUtf8(), exact.HasGuessedUtf8());
    rows += expected.size();
  }
  EXPECT_GT(plainRows, rows / 4);
}

TEST_F(PlainRowTest, CursorsOfFixedWidthFilesSeeTheSameRows) {
  std::mt19937 random(45);
  std::size_t rows = 0;
  std::size_t plainRows = 0;
  for (int i = 0; i < 2000; ++i) {
    const std::string bytes = RandomTable(random);
    TextDatasetDescription table = Table(bytes);
    table.options.fixedLength = true;
    for (std::size_t columns = random() % 5; columns > 0; --columns) {
      table.fields.emplace_back();
      table.fields.back().width = static_cast<std::int32_t>(random() % 50) - 1;
    }
    FixedWidthReader quick(table);
    FixedWidthReader exact(table);
    exact.CutExactly();
    const Rows expected = FieldsOfRecords(exact);
    ASSERT_EQ(RowsOf(quick, plainRows), expected) << ::testing::PrintToString(bytes);
    EXPECT_EQ(quick.StreamAtEnd(), exact.StreamAtEnd());
    EXPECT_EQ(quick.encoding(), exact.encoding());
    rows += expected.size();
  }
  EXPECT_GT(plainRows, rows / 10);
}

TEST_F(PlainRowTest, RowsAmongOthersInLongFilesAreTheSame) {
  std::mt19937 random(48);
  for (int i = 0; i < 8; ++i) {
    std::string bytes;
    while (bytes.size() < 100'000) {
      std::string piece = RandomTable(random);
      // One would end it all, the other make all text behind it ANSI.
      std::erase_if(piece, [](char byte) { return byte == '\x1A' || byte == '\xFF'; });
      bytes += piece;
      for (std::size_t lines = random() % 40; lines > 0; --lines) bytes += "12,plain,\"x\"\n";
    }
    DelimitedReader quick(Table(bytes));
    DelimitedReader exact(Table(bytes));
    exact.SplitExactly();
    std::size_t plainRows = 0;
    const Rows expected = FieldsOfRecords(exact);
    ASSERT_EQ(RowsOf(quick, plainRows), expected) << "round " << i;
    EXPECT_GT(plainRows, expected.size() / 2);
  }
}

TEST_F(PlainRowTest, RowsBehindALineThatIsNotUtf8AreAnsi) {
  const TextDatasetDescription table = Table("a,\xC3\xBC\nb,\xFC\nc,\xC3\xBC\nd,e\n");
  DelimitedReader reader(table);
  std::size_t plainRows = 0;
  EXPECT_EQ(RowsOf(reader, plainRows),
            (Rows{{u"a", u"\u00FC"}, {u"b", u"\u00FC"}, {u"c", u"\u00C3\u00BC"}, {u"d", u"e"}}));
  EXPECT_EQ(reader.encoding(), TextEncoding::kAnsi);
  EXPECT_EQ(plainRows, 2u);
}

TEST_F(PlainRowTest, RowsOverTheEndsOfBlocksAreWhole) {
  std::string bytes;
  Rows expected;
  for (int i = 0; bytes.size() < 3 * TextLineStream::kDefaultBlockSize; ++i) {
    const std::string number = std::to_string(i);
    bytes += number + ",\"text " + number + "\"\r\n";
    const std::u16string wide(number.begin(), number.end());
    expected.push_back({wide, u"text " + wide});
  }
  DelimitedReader reader(Table(bytes));
  std::size_t plainRows = 0;
  EXPECT_EQ(RowsOf(reader, plainRows), expected);
  // Only lines that a read cuts are put together.
  EXPECT_GT(plainRows, expected.size() - 10);
}

TEST(TextDecodingTest, ShortAsciiFieldsAreWidened) {
  char16_t units[kShortField];
  for (std::size_t length = 0; length <= kShortField + 1; ++length) {
    const Padded text(std::string(length, 'x'));
    const bool widened = WidenShortAscii(text.View(), units);
    EXPECT_TRUE(!widened || length <= kShortField);
    if (!widened) continue;
    EXPECT_EQ(std::u16string_view(units, length), std::u16string(length, u'x'));
    if (length == 0) continue;
    const Padded other(std::string(length - 1, 'x') + "\xC3");
    EXPECT_FALSE(WidenShortAscii(other.View(), units));
  }
}

TEST(UnitSearchTest, BytesLoseTheirBlanksAtBothEnds) {
  std::mt19937 random(46);
  for (int i = 0; i < 20000; ++i) {
    std::string text(random() % 100, ' ');
    for (char& byte : text)
      if (random() % 24 == 0) byte = "a\t"[random() % 2];
    const std::u16string wide(text.begin(), text.end());
    const Padded padded(text + "b");
    const std::string_view kept = TrimBlanksInSteps(padded.View().data(), text.size());
    ASSERT_EQ(std::u16string(kept.begin(), kept.end()), quenra::TrimBlanks(wide)) << text;
  }
}

}  // namespace
}  // namespace TextFile
