#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "reading/DelimitedReader.h"
#include "reading/TextEnd.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"
#include "support/Utf16Bytes.h"

namespace TextFile {
namespace {

using namespace std::string_literals;
using State = TextEnd::State;

class TextEndTest : public EnglishTest {
 protected:
  TextDatasetDescription Table(std::string_view bytes) {
    TextDatasetDescription table;
    table.name = u"t.csv";
    table.path = folder_.Write(u"t.csv", bytes);
    table.options = options_;
    return table;
  }

  TextEnd Find(std::string_view bytes, std::uint64_t from = 0) {
    const TextDatasetDescription table = Table(bytes);
    TextLineStream stream;
    EXPECT_TRUE(stream.Open(table.path, TextLineStream::kPlainLines));
    RegularFile file;
    EXPECT_TRUE(file.Open(NativeFromFileName(table.path), RegularFile::Access::kRead));
    return FindTextEnd(table, stream.encoding(), file, from);
  }

  // Whether a row behind the text is read as a row, which is asked of the reader.
  bool TakesRow(std::string_view bytes) {
    std::string more(bytes.substr(0, bytes.find('\x1A')));
    if (!more.ends_with(options_.recordTerminator)) more += options_.recordTerminator;
    more += "one,two";
    more += options_.recordTerminator;
    DelimitedReader reader(Table(more));
    bool last = false;
    while (reader.ReadRecord())
      last = reader.record().size() == 2 && reader.record()[0] == u"one" &&
             reader.record()[1] == u"two";
    return last;
  }

  SchemaOptions options_;
  quenra::test::TemporaryFolder folder_;
};

struct EndCase {
  std::string bytes;
  State state;
  bool endsLine;
  const char* why;
};

const EndCase kEndCases[] = {
    {"", State::kTakesRows, true, "there is no line"},
    {"\xEF\xBB\xBF", State::kTakesRows, true, "a mark is no line"},
    {"a,b\n1,2\n", State::kTakesRows, true, "plain rows"},
    {"a,b\n1,2", State::kTakesRows, false, "plain rows, the last one without an end"},
    {"a,b\n1,\"2\"", State::kTakesRows, false, "the end of the line closes the quotes"},
    {"a,b\n1,\"2", State::kInQuotes, false, "an open quote"},
    {"a,b\n1,\"2\n3,4\n5,6\n", State::kInQuotes, true, "an open quote with rows behind it"},
    {"a,b\n1,\"2\"\"\n", State::kInQuotes, true, "a doubled quote closes nothing"},
    {"a,b\n1,x\"y\n", State::kTakesRows, true, "a quote inside unquoted text"},
    {"a,b\n1, \t\"y\n", State::kInQuotes, true, "white space in front of a quote"},
    {"a,b\n\"\"\"\n", State::kInQuotes, true, "the second quote is doubled by the third"},
    {"a,b\n\"\" \"y\n", State::kInQuotes, true, "blank quotes open again"},
    {"a,b\n\"x\" \"y\n", State::kTakesRows, true, "quotes with text do not"},
    {"a,b\n1,\0\"y\n"s, State::kTakesRows, true, "a zero hides the rest of its line"},
    {"a,b\n1,\"\0\"y\n"s, State::kInQuotes, true, "also a quote that would close"},
    {"\xEF\xBB\xBF\"a\n", State::kInQuotes, true, "a quote behind the mark"},
    {"a,b\n\xC2\xA0\"y\n", State::kInQuotes, true, "a no-break space of UTF-8"},
    {"a,b\n\xC3\xA9,1\n\xFF\n\xC2\xA0\"y\n", State::kTakesRows, true, "the same in a code page"},
    {"a,b\n\xE3\x80\x80\"y\n", State::kInQuotes, true, "an ideographic space"},
    {"a,b\n\xE3\x81\x82\"y\n", State::kTakesRows, true, "a letter"},
    {"a,b\n1,2\n\x1A", State::kTakesRows, true, "a byte 1A at the end"},
    {"a,b\n1,2\x1A\x1A", State::kTakesRows, false, "two of them"},
    {"a,b\n\x1A"
     "1,2\n",
     State::kBehindTextEnd, true, "a byte 1A in the middle"},
    {"a,b\n1,2\n\x1A\n", State::kBehindTextEnd, true, "a byte 1A and a line end"},
    {"a,b\n1,\"\x1A\"\n", State::kBehindTextEnd, true, "quotes do not help"},
};

TEST_F(TextEndTest, TellsWhatRowsWouldBecome) {
  for (const EndCase& c : kEndCases) {
    SCOPED_TRACE(c.why);
    const TextEnd end = Find(c.bytes);
    EXPECT_EQ(end.state, c.state);
    if (c.state == State::kTakesRows) {
      EXPECT_EQ(end.endsLine, c.endsLine);
      EXPECT_EQ(end.size, c.bytes.find_last_not_of('\x1A') + 1);
    }
    if (c.state == State::kBehindTextEnd) continue;
    EXPECT_EQ(TakesRow(c.bytes), c.state == State::kTakesRows);
  }
}

TEST_F(TextEndTest, WithoutQuotesNothingIsOpen) {
  options_.textDelimiter = 0;
  EXPECT_EQ(Find("a,b\n1,\"2").state, State::kTakesRows);
  options_.textDelimiter = u'\'';
  EXPECT_EQ(Find("a,b\n1,\"2").state, State::kTakesRows);
  EXPECT_EQ(Find("a,b\n1,'2").state, State::kInQuotes);
  options_.fixedLength = true;
  EXPECT_EQ(Find("a,b\n1,'2").state, State::kTakesRows);
}

TEST_F(TextEndTest, Utf16IsReadAndHasNoTextEnd) {
  const auto bytes = [](std::u16string_view text) { return Utf16Bytes(text); };
  EXPECT_EQ(Find(bytes(u"\uFEFFa,b\n1,\x1A\n")).state, State::kTakesRows);
  EXPECT_TRUE(Find(bytes(u"\uFEFFa,b\n1,2\n")).endsLine);
  EXPECT_FALSE(Find(bytes(u"\uFEFFa,b\n1,\u010A")).endsLine);
  EXPECT_EQ(Find(bytes(u"\uFEFFa,b\n1,\"2\n3,4\n")).state, State::kInQuotes);
  EXPECT_EQ(Find(bytes(u"\uFEFFa,b\n1,\"2\"\n")).state, State::kTakesRows);
  EXPECT_EQ(Find(bytes(u"\uFEFFa,b\n1,2\n") + "x").state, State::kHalfCharacter);
}

TEST_F(TextEndTest, CarriageReturnsThatEndRowsAreReadToo) {
  options_.recordTerminator = '\r';
  EXPECT_EQ(Find("a,b\r1,\"2\r3,4\r").state, State::kInQuotes);
  EXPECT_EQ(Find("a,b\r1,\"2\"\r").state, State::kTakesRows);
  EXPECT_TRUE(Find("a,b\r1,2\r").endsLine);
  EXPECT_FALSE(Find("a,b\r1,2").endsLine);
}

TEST_F(TextEndTest, CodePagesOfSeveralBytesAreRead) {
  ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(932));
  EXPECT_EQ(Find("a,b\n\x83\x5C,\"2\n").state, State::kInQuotes);
  EXPECT_EQ(Find("a,b\n\x83\x5C,\"2\"\n").state, State::kTakesRows);
}

// The only quote is at the front, further away than anything that is read at once.
TEST_F(TextEndTest, AnOpenQuoteIsFoundHoweverFarBack) {
  std::string rows;
  while (rows.size() < 3'000'000) rows += "1,two\n";
  EXPECT_EQ(Find("a,b\n" + rows).state, State::kTakesRows);
  EXPECT_EQ(Find("a,b\n1,\"2\n" + rows).state, State::kInQuotes);
  EXPECT_EQ(Find("a,b\n1,\"2\"\n" + rows).state, State::kTakesRows);
  EXPECT_EQ(Find("a,b\n\x1A" + rows).state, State::kBehindTextEnd);
  EXPECT_EQ(Find("a,b\n1,2" + std::string(3'000'000, '\x1A')).size, 7U);
  // Quotes that leave it open which of them opens, and one line of all.
  std::string blanks;
  while (blanks.size() < 3'000'000) blanks += "\"\",";
  EXPECT_EQ(Find("a,b\n" + blanks).state, State::kTakesRows);
  EXPECT_EQ(Find("a,b\n\"" + blanks).state, State::kInQuotes);
}

TEST_F(TextEndTest, WhatIsInFrontOfARowThatIsKnownIsNotLookedAt) {
  const std::string front = "a,b\n1,\"2\n";
  EXPECT_EQ(Find(front + "3,4\n").state, State::kInQuotes);
  EXPECT_EQ(Find(front + "3,4\n", front.size()).state, State::kTakesRows);
  EXPECT_EQ(Find(front + "3,\"4\n", front.size()).state, State::kInQuotes);
}

// Bytes that mean something, in any order; enough of them for several pieces now and then.
TEST_F(TextEndTest, AgreesWithTheReaderWhateverTheBytes) {
  static const std::string kPieces[] = {"\"",           "\"",       "\"",    ",",    ",",
                                        "\n",           "\r\n",     "\r",    " ",    "a",
                                        "bc",           "\t",       "1",     "\0"s,  "\xC2\xA0",
                                        "\xE3\x80\x80", "\xC3\xA9", "\xA0",  "\x85", "\xE2\x80\x8A",
                                        "\"\"",         "\",\"",    "\"\n\""};
  std::mt19937 random(11);
  int open = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string bytes = round % 3 == 0 ? "\xEF\xBB\xBF" : "";
    const std::size_t kinds = 4 + random() % (std::size(kPieces) - 3);
    const std::size_t count = round % 50 == 0 ? 6000 : random() % 40;
    for (std::size_t i = 0; i < count; ++i) bytes += kPieces[random() % kinds];
    const State found = Find(bytes).state;
    ASSERT_EQ(found == State::kTakesRows, TakesRow(bytes)) << testing::PrintToString(bytes);
    open += found == State::kInQuotes ? 1 : 0;
  }
  EXPECT_GT(open, 300);
}

}  // namespace
}  // namespace TextFile
