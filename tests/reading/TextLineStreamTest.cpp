#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "reading/FileBytes.h"
#include "reading/TextLineStream.h"
#include "support/PlainTextLines.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"
#include "support/Utf16Bytes.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::u16string>;

std::unique_ptr<std::streambuf> Source(std::string_view bytes) {
  return std::make_unique<std::stringbuf>(std::string(bytes), std::ios::in);
}

// All that one ReadLine shows.
struct Step {
  bool read = false;
  std::u16string line;  // empty when nothing was read
  TextEncoding encoding = TextEncoding::kUndetermined;
  bool atEnd = false;
  bool operator==(const Step&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Step& step) {
  return stream << (step.read ? "line " : "none ") << ::testing::PrintToString(step.line)
                << " encoding " << static_cast<int>(step.encoding) << (step.atEnd ? " end" : "");
}

template <class Lines>
Step ReadStep(Lines& lines) {
  Step step;
  step.read = lines.ReadLine(step.line);
  if (!step.read) step.line.clear();
  step.encoding = lines.encoding();
  step.atEnd = lines.AtEnd();
  return step;
}

template <class Lines>
std::vector<Step> ReadSteps(Lines& lines) {
  std::vector<Step> steps;
  do steps.push_back(ReadStep(lines));
  while (steps.back().read);
  return steps;
}

std::vector<Step> StreamSteps(std::string_view bytes, char delimiter, std::size_t blockSize) {
  TextLineStream stream;
  stream.Open(Source(bytes), TextLineStream::kTerminateLines, blockSize);
  stream.SetLineDelimiter(delimiter);
  return ReadSteps(stream);
}

std::vector<Step> PlainSteps(std::string_view bytes, char delimiter) {
  PlainTextLines lines(bytes, delimiter);
  return ReadSteps(lines);
}

Texts ReadAll(TextLineStream& stream) {
  Texts lines;
  std::u16string line;
  while (stream.ReadLine(line)) lines.push_back(line);
  return lines;
}

// The lines without their zero units.
Texts Lines(std::string_view bytes, char delimiter = '\n') {
  TextLineStream stream;
  stream.Open(Source(bytes), TextLineStream::kPlainLines);
  stream.SetLineDelimiter(delimiter);
  return ReadAll(stream);
}

TextEncoding EncodingOf(std::string_view bytes) {
  TextLineStream stream;
  stream.Open(Source(bytes), TextLineStream::kTerminateLines);
  return stream.encoding();
}

class TextLineStreamTest : public EnglishTest {};

// ---------------------------------------------------------------------------------------------
// Byte-order marks
// ---------------------------------------------------------------------------------------------

TEST_F(TextLineStreamTest, ByteOrderMarkDecidesTheEncoding) {
  struct {
    std::string bytes;
    TextEncoding encoding;
    Texts lines;
    const char* why;
  } const cases[] = {
      {"a\nb\n", TextEncoding::kUndetermined, {u"a", u"b"}, "no mark"},
      {"\xEF\xBB\xBF"s + "a\n", TextEncoding::kUtf8, {u"a"}, "UTF-8"},
      {"\xEF\xBB\xBF", TextEncoding::kUtf8, {}, "UTF-8 mark alone"},
      {"\xFF\xFE"s + "A\0"s, TextEncoding::kUtf16LE, {u"A"}, "low byte first"},
      {"\xFE\xFF\0A\0\n"s, TextEncoding::kUtf16BE, {}, "high byte first"},
      {"\xFE\xFF", TextEncoding::kUtf16BE, {}, "high byte first, mark alone"},
      {"\xFF\xFE\0\0A\0\0\0"s, TextEncoding::kUtf32LE, {}, "32 bits, low byte first"},
      {"\xFF\xFE", TextEncoding::kUtf32LE, {}, "no third byte: the probe holds zeros"},
      {"\xFF\xFE\n\0"s, TextEncoding::kUtf32LE, {}, "the probe stops before a line feed"},
      {"\xFF\xFE\0\x01"s, TextEncoding::kUtf32LE, {}, "U+0100 has a zero low byte"},
      {"\xFF\xFE"s + "A", TextEncoding::kUtf16LE, {u""}, "half a character"},
      {"\0\0\xFE\xFF\nx\n"s,
       TextEncoding::kUndetermined,
       {u"", u"x"},
       "a four-byte mark is not seen"},
      {"\xEF\xBB", TextEncoding::kUndetermined, {u"\u00EF\u00BB"}, "two thirds of a mark"},
      {"\xEF\xBB\n\xBF", TextEncoding::kUndetermined, {u"\u00EF\u00BB", u"\u00BF"}, "broken mark"},
      {"\n\xEF\xBB\xBF", TextEncoding::kUndetermined, {u"", u"\uFEFF"}, "a mark on line 2 is text"},
      {"\xFF", TextEncoding::kUndetermined, {u"\u00FF"}, "one byte"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(EncodingOf(c.bytes), c.encoding);
    EXPECT_EQ(Lines(c.bytes), c.lines);
  }
}

TEST_F(TextLineStreamTest, UnreadableEncodingsAreAtTheirEndFromTheStart) {
  for (const std::string& bytes : {"\xFE\xFF\0A"s, "\xFF\xFE\0\0A\0\0\0"s, "\xFF\xFE\n\0A\0"s}) {
    TextLineStream stream;
    stream.Open(Source(bytes), TextLineStream::kTerminateLines);
    const TextEncoding encoding = stream.encoding();
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_TRUE(stream.AtEnd());
    std::u16string line;
    EXPECT_FALSE(stream.ReadLine(line));
    EXPECT_FALSE(stream.ReadLine(line));
    EXPECT_EQ(stream.encoding(), encoding);
    stream.Rewind();
    EXPECT_TRUE(stream.AtEnd());
    EXPECT_FALSE(stream.SkipTo('A'));
  }
}

// ---------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------

TEST_F(TextLineStreamTest, EmptyFileIsAtItsEndAndEndsAsUtf8) {
  TextLineStream stream;
  stream.Open(Source(""), TextLineStream::kTerminateLines);
  EXPECT_TRUE(stream.IsOpen());
  EXPECT_TRUE(stream.AtEnd());
  EXPECT_EQ(stream.encoding(), TextEncoding::kUndetermined);
  std::u16string line;
  EXPECT_FALSE(stream.ReadLine(line));
  EXPECT_EQ(stream.encoding(), TextEncoding::kUtf8);
}

TEST_F(TextLineStreamTest, EndIsMetByAnUnterminatedLineOrBehindTheLastLine) {
  const auto step = [](const std::u16string& line, bool atEnd) {
    return Step{true, line + u'\0', TextEncoding::kUndetermined, atEnd};
  };
  const Step end{false, u"", TextEncoding::kUtf8, true};
  EXPECT_EQ(StreamSteps("a\nb\n", '\n', 64),
            (std::vector{step(u"a", false), step(u"b", false), end}));
  EXPECT_EQ(StreamSteps("a\nb", '\n', 64), (std::vector{step(u"a", false), step(u"b", true), end}));
  EXPECT_EQ(StreamSteps("\n", '\n', 64), (std::vector{step(u"", false), end}));
}

TEST_F(TextLineStreamTest, TerminatedLinesEndInOneZeroUnit) {
  TextLineStream stream;
  stream.Open(Source("a\n\nb"), TextLineStream::kTerminateLines);
  EXPECT_EQ(ReadAll(stream), (Texts{u"a\0"s, u"\0"s, u"b\0"s}));

  TextLineStream wide;
  wide.Open(Source(Utf16File(u"a\0\nb\n\n"s)), TextLineStream::kTerminateLines);
  EXPECT_EQ(ReadAll(wide), (Texts{u"a\0"s, u"b\0"s, u"\0"s})) << "a zero that is there will do";
}

TEST_F(TextLineStreamTest, PlainLinesLoseAZeroUnitAtTheirEnd) {
  EXPECT_EQ(Lines("a\n\nb"), (Texts{u"a", u"", u"b"}));
  EXPECT_EQ(Lines(Utf16File(u"a\0\nb\0c\n"s)), (Texts{u"a", u"b\0c"s}));
}

TEST_F(TextLineStreamTest, TextModeOf8BitFiles) {
  struct {
    std::string bytes;
    Texts lines;
    const char* why;
  } const cases[] = {
      {"a\r\nb\r\n", {u"a", u"b"}, "CR LF is a line feed"},
      {"a\r\r\nb\r", {u"a\r", u"b\r"}, "a CR alone is a character, in front of CR LF and last"},
      {"a\rb\rc", {u"a\rb\rc"}, "CR line ends make one line"},
      {"a\nb\x1A"s + "c\nd\n", {u"a", u"b"}, "1A ends the input"},
      {"a\n\x1A"s, {u"a"}, "1A behind a line end"},
      {"\x1A"s + "a\n", {}, "1A first"},
      {"a\r\x1A\n"s, {u"a\r"}, "1A between CR and LF"},
      {"\xEF\xBB\xBF"s + "a\r\n\x1A" + "b", {u"a"}, "behind a mark too"},
      {"a\0b\nc\n"s, {u"a", u"c"}, "a zero byte ends the line's text"},
      {"a\0\xFF\n\xC3\xA9\n"s, {u"a", u"\u00E9"}, "bytes behind a zero do not count as text"},
      {"\0\0\n\0"s, {u"", u""}, "nothing but zeros"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Lines(c.bytes), c.lines);
  }
}

TEST_F(TextLineStreamTest, CarriageReturnsAsLineEnds) {
  EXPECT_EQ(Lines("a\rb\r", '\r'), (Texts{u"a", u"b"}));
  EXPECT_EQ(Lines("a\rb\nc\r\nd", '\r'), (Texts{u"a", u"b\nc\nd"})) << "CR LF is a line feed";
  EXPECT_EQ(Lines("a\r\r\nb", '\r'), (Texts{u"a", u"\nb"}));
  EXPECT_EQ(Lines(Utf16File(u"a\rb\r"), '\r'), (Texts{u"a", u"b"}));
}

TEST_F(TextLineStreamTest, Utf16FilesHaveNoTextMode) {
  EXPECT_EQ(Lines("\xFF\xFE"s + "A\0\n\0"s), (Texts{u"A"}));
  EXPECT_EQ(Lines(Utf16File(u"a\r\nb\r\n\r\nc")), (Texts{u"a", u"b", u"", u"c"})) << "no CR stays";
  EXPECT_EQ(Lines(Utf16File(u"a\x1A"
                            u"b\nc\n")),
            (Texts{u"a\x1A"
                   u"b",
                   u"c"}));
  EXPECT_EQ(Lines(Utf16File(u"a\r\r\n")), (Texts{u"a\r"})) << "one CR goes";
}

TEST_F(TextLineStreamTest, DelimiterByteInsideAUtf16CharacterBelongsToTheLine) {
  // U+4E0A has the low byte 0A, U+010A too.
  EXPECT_EQ(Lines(Utf16File(u"a\u4E0A\u010A\nx\n")), (Texts{u"a\u4E0A\u010A", u"x"}));
  EXPECT_EQ(Lines(Utf16File(u"x\u4E0A")), (Texts{u"x\u4E0A"}));
  // The byte that is put back is a line feed even when carriage returns end the lines: the low
  // byte of U+010D comes back as 0A.
  EXPECT_EQ(Lines(Utf16File(u"a\u010Db\rc\r"), '\r'), (Texts{u"a\u010Ab", u"c"}));
}

TEST_F(TextLineStreamTest, OddLastByteOfAUtf16FileIsDropped) {
  EXPECT_EQ(Lines(Utf16File(u"ab") + "c"), (Texts{u"ab"}));
}

// ---------------------------------------------------------------------------------------------
// UTF-8 or ANSI
// ---------------------------------------------------------------------------------------------

TEST_F(TextLineStreamTest, FileWithoutMarkIsUtf8UntilALineIsNot) {
  std::string bytes;
  Texts expected;
  for (int i = 1; i <= 9; ++i) {
    bytes += "Z\xC3\xBCrich\n";
    expected.push_back(u"Z\u00FCrich");
  }
  bytes += "Z\xFCrich\nZ\xC3\xBCrich\n";
  expected.push_back(u"Z\u00FCrich");
  expected.push_back(u"Z\u00C3\u00BCrich");
  EXPECT_EQ(Lines(bytes), expected);

  TextLineStream stream;
  stream.Open(Source(bytes), TextLineStream::kPlainLines);
  std::u16string line;
  for (int i = 1; i <= 9; ++i) {
    ASSERT_TRUE(stream.ReadLine(line));
    EXPECT_EQ(stream.encoding(), TextEncoding::kUndetermined) << "line " << i;
  }
  ASSERT_TRUE(stream.ReadLine(line));
  EXPECT_EQ(stream.encoding(), TextEncoding::kAnsi);
  ASSERT_TRUE(stream.ReadLine(line));
  EXPECT_FALSE(stream.ReadLine(line));
  EXPECT_EQ(stream.encoding(), TextEncoding::kAnsi) << "the end decides undetermined files only";

  stream.Rewind();
  ASSERT_TRUE(stream.ReadLine(line));
  EXPECT_EQ(line, u"Z\u00C3\u00BCrich") << "what has been decided holds after a rewind";
}

TEST_F(TextLineStreamTest, InvalidBytesBehindAMarkBecomeReplacementCharacters) {
  EXPECT_EQ(Lines("\xEF\xBB\xBF"s + "a\xFFz\n\xC3\xA9\n"), (Texts{u"a\uFFFDz", u"\u00E9"}));
}

TEST_F(TextLineStreamTest, AnsiIsTheCodePageOfTheApplication) {
  ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(1250));
  EXPECT_EQ(Lines("\xB3\n"), (Texts{u"\u0142"}));
  ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(1251));
  EXPECT_EQ(Lines("\xE6\n"), (Texts{u"\u0436"}));
  // Two bytes a character, of which the second may look like ASCII.
  ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(932));
  EXPECT_EQ(Lines("a\x83\x65z\n"), (Texts{u"a\u30C6z"}));
  ASSERT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(1252));
  EXPECT_EQ(Lines("\x80\n"), (Texts{u"\u20AC"}));
}

// ---------------------------------------------------------------------------------------------
// Rewind, SkipTo, Open
// ---------------------------------------------------------------------------------------------

TEST_F(TextLineStreamTest, RewindGoesBehindTheMark) {
  for (const std::string& bytes : {"a\nb"s, "\xEF\xBB\xBF"s + "a\nb", Utf16File(u"a\nb")}) {
    for (std::size_t block = 1; block <= bytes.size(); ++block) {
      TextLineStream stream;
      stream.Open(Source(bytes), TextLineStream::kPlainLines, block);
      EXPECT_EQ(ReadAll(stream), (Texts{u"a", u"b"}));
      EXPECT_TRUE(stream.AtEnd());
      stream.Rewind();
      EXPECT_FALSE(stream.AtEnd());
      EXPECT_EQ(ReadAll(stream), (Texts{u"a", u"b"})) << "block size " << block;
    }
  }
}

TEST_F(TextLineStreamTest, LineDelimiterSwitchesBetweenLineFeedAndCarriageReturn) {
  TextLineStream stream;
  stream.Open(Source("a\rb\n"), TextLineStream::kPlainLines);
  EXPECT_EQ(stream.lineDelimiter(), '\n');
  EXPECT_EQ(ReadAll(stream), (Texts{u"a\rb"}));
  stream.SwitchLineDelimiter();
  EXPECT_EQ(stream.lineDelimiter(), '\r');
  stream.Rewind();
  EXPECT_EQ(ReadAll(stream), (Texts{u"a", u"b\n"}));
  stream.SwitchLineDelimiter();
  EXPECT_EQ(stream.lineDelimiter(), '\n');
}

TEST_F(TextLineStreamTest, SkipToFindsTheNextSuchCharacter) {
  // U+5B5B holds the byte of "[" twice without being one, U+5B00 behind "x" across two units.
  for (const std::string& bytes :
       {"ab\xC3\xA9[c]\n[d]"s, Utf16File(u"ab\u5B5Bx\u5B00\u015B[c]\n[d]")}) {
    for (std::size_t block = 1; block <= bytes.size(); ++block) {
      SCOPED_TRACE(block);
      TextLineStream stream;
      stream.Open(Source(bytes), TextLineStream::kPlainLines, block);
      std::u16string line;
      ASSERT_TRUE(stream.SkipTo('['));
      ASSERT_TRUE(stream.ReadLine(line));
      EXPECT_EQ(line, u"[c]");
      ASSERT_TRUE(stream.SkipTo('['));
      ASSERT_TRUE(stream.ReadLine(line));
      EXPECT_EQ(line, u"[d]");
      EXPECT_FALSE(stream.SkipTo('['));
      EXPECT_TRUE(stream.AtEnd());
    }
  }
}

TEST_F(TextLineStreamTest, OpensRegularFilesOnly) {
  const TemporaryFolder folder;
  TextLineStream stream;
  EXPECT_FALSE(stream.Open(folder.Path(u"missing.csv"), TextLineStream::kPlainLines));
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_TRUE(stream.AtEnd());
  std::u16string line;
  EXPECT_FALSE(stream.ReadLine(line));
  EXPECT_FALSE(stream.SkipTo('['));
  stream.Rewind();

  EXPECT_FALSE(stream.Open(folder.Path(), TextLineStream::kPlainLines));
  EXPECT_FALSE(stream.IsOpen());

  ASSERT_TRUE(
      stream.Open(folder.Write(u"\u017C\u00F3\u0142w.csv", "a\r\nb"), TextLineStream::kPlainLines));
  EXPECT_EQ(ReadAll(stream), (Texts{u"a", u"b"}));
}

TEST_F(TextLineStreamTest, SeveralStreamsShareAFileThatIsBeingWritten) {
  const TemporaryFolder folder;
  const std::u16string path = folder.Write(u"a.csv", "a\nb\n");
  TextLineStream first;
  TextLineStream second;
  ASSERT_TRUE(first.Open(path, TextLineStream::kPlainLines));
  ASSERT_TRUE(second.Open(path, TextLineStream::kPlainLines));
  std::ofstream writer(folder.Native(u"a.csv").c_str(), std::ios::app | std::ios::binary);
  EXPECT_TRUE(writer.is_open());
  std::u16string line;
  ASSERT_TRUE(first.ReadLine(line));
  EXPECT_EQ(line, u"a");
  EXPECT_EQ(ReadAll(second), (Texts{u"a", u"b"}));
  ASSERT_TRUE(first.ReadLine(line));
  EXPECT_EQ(line, u"b");
}

// ---------------------------------------------------------------------------------------------
// Sweeps
// ---------------------------------------------------------------------------------------------

TEST_F(TextLineStreamTest, LinesDoNotDependOnTheBlockSize) {
  const std::string files[] = {
      "id;name\r\n1;Z\xC3\xBCrich\r\n2;\r\n\r\n3;\xE2\x82\xAC",
      "id;name\r\n1;Z\xFCrich\r\n2;\xE2\x82\xAC\r\n",
      "\xEF\xBB\xBFid;name\r\n1;Z\xC3\xBCrich\r\n\xFF\xC3\n",
      "a\rb\r\nc\r\r\nd\re\n\nf\r",
      "a\0b\r\n\0\n\0\0c\r\n\xC3\xA9"s,
      "a\r\nb\r\x1A\nc\n"s,
      "\xEF\xBB\xBF\x1A"s + "x\n",
      Utf16File(u"id;name\r\n1;Z\u00FCrich\r\n\u4E0A\u010A\u0D0A\r\n\x1A\0x\n\u20AC"s),
      Utf16File(u"a\rb\r\nc\u010Dd\r\r\n"),
      Utf16File(u"\u0A41\u0100\n\u0A0A\n") + "x",
      "\0\0\xFE\xFF"s + "abc\n",
  };
  for (const std::string& file : files) {
    for (const char delimiter : {'\n', '\r'}) {
      const auto expected = PlainSteps(file, delimiter);
      for (std::size_t block = 1; block <= file.size() + 1; ++block)
        EXPECT_EQ(StreamSteps(file, delimiter, block), expected)
            << ::testing::PrintToString(file) << " block size " << block;
    }
  }
}

TEST_F(TextLineStreamTest, AgreesWithPlainReadingOfRandomBytes) {
  std::mt19937 random(20240229);
  const std::string narrow =
      "ab;\n\n\r\r\x1A\0\xC3\xA9\xC3\xA9\xE2\x82\xAC\xFF\xFE\xEF\xBB\xBF\xF0\x9F\x98\x80"s;
  const std::string wide = "a\0\0\0\n\0\n\0\r\0\x1A\x01N\x0D\x0A"s;
  const std::string marks[] = {"", "", "\xEF\xBB\xBF", "\xFF\xFE"};
  for (int round = 0; round < 6000; ++round) {
    const std::string& mark = marks[random() % 4];
    const std::string& alphabet = mark == "\xFF\xFE" ? wide : narrow;
    std::string file = mark;
    for (std::size_t length = random() % 40; length > 0; --length)
      file += alphabet[random() % alphabet.size()];
    const char delimiter = random() % 3 == 0 ? '\r' : '\n';
    const std::size_t block = 1 + random() % 12;
    ASSERT_EQ(StreamSteps(file, delimiter, block), PlainSteps(file, delimiter))
        << "round " << round << ' ' << ::testing::PrintToString(file) << " delimiter "
        << static_cast<int>(delimiter) << " block size " << block;
  }
}

TEST_F(TextLineStreamTest, LinesAreTheSameAfterARewindAnywhere) {
  const std::string files[] = {
      "a\r\nb\r\n\x1A"s + "c\nd\n",
      "\xEF\xBB\xBF"s + "a\nb\xFF\n\nc",
      Utf16File(u"a\r\nb\u010A\r\n\x1A\nc"),
      "a\rb\n\r\nc",
      "\xFE\xFF\0a"s,
  };
  for (const std::string& file : files) {
    TextLineStream whole;
    whole.Open(Source(file), TextLineStream::kTerminateLines);
    const Texts expected = ReadAll(whole);
    for (std::size_t block = 1; block <= file.size(); ++block) {
      for (std::size_t before = 0; before <= expected.size() + 1; ++before) {
        TextLineStream stream;
        stream.Open(Source(file), TextLineStream::kTerminateLines, block);
        std::u16string line;
        for (std::size_t i = 0; i < before; ++i) stream.ReadLine(line);
        stream.Rewind();
        EXPECT_EQ(stream.AtEnd(), expected.empty());
        EXPECT_EQ(ReadAll(stream), expected) << "block size " << block << " after " << before;
      }
    }
  }
}

TEST_F(TextLineStreamTest, LongLineComesWhole) {
  const std::string bytes(3 * TextLineStream::kDefaultBlockSize + 7, 'x');
  const Texts lines = Lines(bytes + "\ny\n");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], std::u16string(bytes.size(), u'x'));
  EXPECT_EQ(lines[1], u"y");
}

// A device that fails after its first bytes.
class FailingSource : public std::stringbuf {
 public:
  FailingSource() : std::stringbuf("a\nb\nc", std::ios::in) {}

 protected:
  std::streamsize xsgetn(char* bytes, std::streamsize count) override {
    if (reads_++ > 0) throw std::ios_base::failure("read error");
    return std::stringbuf::xsgetn(bytes, std::min<std::streamsize>(count, 3));
  }

 private:
  int reads_ = 0;
};

TEST_F(TextLineStreamTest, FailingReadCountsAsTheEnd) {
  TextLineStream stream;
  stream.Open(std::make_unique<FailingSource>(), TextLineStream::kPlainLines);
  EXPECT_EQ(ReadAll(stream), (Texts{u"a", u"b"}));
  EXPECT_TRUE(stream.AtEnd());
}

// Rows that are read and added to the same file at once would never end.
TEST_F(TextLineStreamTest, WhatIsAddedAfterOpeningIsNotRead) {
  const TemporaryFolder folder;
  const std::u16string path = folder.Write(u"a.csv", "1\n2\n");
  TextLineStream stream;
  ASSERT_TRUE(stream.Open(path, TextLineStream::kPlainLines));
  std::u16string line;
  for (const std::u16string_view expected : {u"1", u"2"}) {
    folder.Append(u"a.csv", "3\n");
    ASSERT_TRUE(stream.ReadLine(line));
    EXPECT_EQ(line, expected);
  }
  EXPECT_FALSE(stream.ReadLine(line));
  stream.Rewind();
  ASSERT_TRUE(stream.ReadLine(line));
  EXPECT_EQ(line, u"1");

  // Beyond the first block as well, and after a rewind that reads anew.
  const std::string many(TextLineStream::kDefaultBlockSize, '\n');
  const std::u16string large = folder.Write(u"b.csv", "x" + many);
  ASSERT_TRUE(stream.Open(large, TextLineStream::kPlainLines));
  folder.Append(u"b.csv", many);
  for (const int pass : {1, 2}) {
    std::size_t lines = 0;
    while (stream.ReadLine(line)) ++lines;
    EXPECT_EQ(lines, many.size()) << pass;
    stream.Rewind();
  }
}

// Somebody is just adding it.
TEST_F(TextLineStreamTest, ALineThatWasNotWholeIsReadToItsEnd) {
  struct {
    std::string there;
    std::string added;
    Texts lines;
  } const cases[] = {
      {"1\n2,t", "wo\n3\n", {u"1", u"2,two"}},
      {"1\n2,t", "wo\r\n3\r\n", {u"1", u"2,two"}},
      {"1\r\n2,two\r", "\n3\r\n", {u"1", u"2,two"}},
      {"1\n2,t", std::string(9000, 'x') + "\n3\n", {u"1", u"2,t" + std::u16string(9000, u'x')}},
      {"1\n2,t", "wo", {u"1", u"2,two"}},
      {"\xFF\xFE"
       "1\0\n\0002\0"s,
       "x\0\n\0003\0\n\0"s,
       {u"1", u"2x"}},
      {"\xFF\xFE"
       "1\0\n\0"s,
       "3\0\n\0"s,
       {u"1"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.there);
    const TemporaryFolder folder;
    const std::u16string path = folder.Write(u"a.csv", c.there);
    TextLineStream stream;
    // The source is read when the stream needs more than it has read on opening.
    auto bytes = std::make_unique<FileBytes>();
    ASSERT_TRUE(bytes->Open(path));
    folder.Append(u"a.csv", c.added);
    stream.Open(std::move(bytes), TextLineStream::kPlainLines);
    Texts lines;
    std::u16string line;
    while (stream.ReadLine(line)) lines.push_back(line);
    EXPECT_EQ(lines, c.lines);
  }
}

}  // namespace
}  // namespace TextFile
