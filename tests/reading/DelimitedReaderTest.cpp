#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/CharacterClasses.h"
#include "reading/DelimitedReader.h"
#include "support/PlainTextLines.h"
#include "support/RecordTexts.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"
#include "support/Utf16Bytes.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::u16string>;

struct Cut {
  char16_t delimiter = u',';
  char16_t textDelimiter = u'\'';
  char terminator = '\n';
};

class DelimitedReaderTest : public EnglishTest {
 protected:
  TextDatasetDescription Describe(std::string_view bytes, const Cut& cut = {}) {
    TextDatasetDescription description;
    description.name = u"a.csv";
    description.path = folder_.Write(u"a.csv", bytes);
    description.options.delimiter = cut.delimiter;
    description.options.textDelimiter = cut.textDelimiter;
    description.options.recordTerminator = cut.terminator;
    // Without a currency symbol, as options are before the locale completes them, whole numbers
    // would be amounts of money.
    description.options.currency.symbol = u"$";
    return description;
  }

  Texts Records(std::string_view bytes, const Cut& cut = {}) {
    DelimitedReader reader(Describe(bytes, cut));
    EXPECT_TRUE(reader.IsOpen());
    return RecordTexts(reader);
  }

  TemporaryFolder folder_;
};

// ---------------------------------------------------------------------------------------------
// Splitting
// ---------------------------------------------------------------------------------------------

TEST_F(DelimitedReaderTest, QuotedAndPlainFields) {
  struct {
    std::string line;
    std::u16string record;
    const char* why;
  } const cases[] = {
      {"a,'b,c',d", u"[a] [b,c] [d]", "a delimiter inside quotes"},
      {"a,'say ''hi''',b", u"[a] [say 'hi'] [b]", "a doubled quote is one"},
      {"x, 'q',y", u"[x] [q] [y]", "a blank before the opening quote goes"},
      {"x, \t\xC2\xA0'q',y", u"[x] [q] [y]", "so does all white space"},
      {"x,ab'c,y", u"[x] [ab'c] [y]", "a quote inside text is a character"},
      {"'ab'cd,e", u"[abcd] [e]", "text behind the closing quote belongs to the field"},
      {"'ab' ,e", u"[ab ] [e]", "so does white space"},
      {"ab''c", u"[ab'c]", "a doubled quote is one outside quotes too"},
      {"ab'", u"[ab']", "a quote at the end of text"},
      {"a,b,", u"[a] [b] []", "a delimiter at the end"},
      {",", u"[] []", "nothing but a delimiter"},
      {",,x", u"[] [] [x]", "empty fields"},
      {" a , b ", u"[ a ] [ b ]", "fields are not trimmed"},
      {"  ", u"[  ]", "two blanks are a field"},
      {"'',x", u"[] [x]", "an empty quoted field"},
      {"'''a'''", u"['a']", "quotes at both ends of quoted text"},
      {"'a''b''c'", u"[a'b'c]", "quotes within"},
      {"'' 'a',b", u"[a] [b]", "quoted again behind nothing but blanks"},
      {"'a' 'b'", u"[a 'b']", "not quoted again behind text"},
      {"\"a,b\"", u"[\"a] [b\"]", "another quote is a character"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Records(c.line + "\n"), (Texts{c.record}));
    EXPECT_EQ(Records(c.line), (Texts{c.record})) << "unterminated";
    EXPECT_EQ(Records(c.line + "\r\nz\r\n"), (Texts{c.record, u"[z]"})) << "CR LF";
  }
}

TEST_F(DelimitedReaderTest, QuotedFieldSpansLines) {
  EXPECT_EQ(Records("'line1\nline2',z\nx\n"), (Texts{u"[line1\nline2] [z]", u"[x]"}));
  EXPECT_EQ(Records("'line1\r\n\r\nline2',z\r\n"), (Texts{u"[line1\n\nline2] [z]"}));
  EXPECT_EQ(Records("'line1\rline2',z\r", {.terminator = '\r'}), (Texts{u"[line1\rline2] [z]"}));
}

TEST_F(DelimitedReaderTest, UnterminatedQuoteEndsWithTheFile) {
  EXPECT_EQ(Records("a,'b\nc,d\n"), (Texts{u"[a] [b\nc,d\n]"}));
  EXPECT_EQ(Records("a,'b"), (Texts{u"[a] [b\n]"})) << "every line has an end";
  EXPECT_EQ(Records("'"), (Texts{u"[\n]"}));
}

TEST_F(DelimitedReaderTest, BlankLinesAreNoRecords) {
  EXPECT_EQ(Records("a\n\nb\n\n\n"), (Texts{u"[a]", u"[b]"}));
  EXPECT_EQ(Records("\n\na\n  \nb"), (Texts{u"[a]", u"[  ]", u"[b]"})) << "two blanks are one";
  EXPECT_EQ(Records("a\n''\nb\n"), (Texts{u"[a]", u"[b]"}))
      << "an empty quoted field alone is none";
  EXPECT_EQ(Records("\n\n\n"), Texts{});
  EXPECT_EQ(Records("\r\n"), Texts{});
}

TEST_F(DelimitedReaderTest, WithoutTextDelimiterQuotesAreCharacters) {
  EXPECT_EQ(Records("'a,b',\"c,d\"\n", {.textDelimiter = 0}), (Texts{u"['a] [b'] [\"c] [d\"]"}));
}

TEST_F(DelimitedReaderTest, AnyCharacterDelimits) {
  EXPECT_EQ(Records("a b  c\n", {.delimiter = u' '}), (Texts{u"[a] [b] [] [c]"}));
  EXPECT_EQ(Records("a\t'b\tc'\n", {.delimiter = u'\t'}), (Texts{u"[a] [b\tc]"}));
  EXPECT_EQ(Records("a\xC2\xA7"
                    "b\n",
                    {.delimiter = u'\u00A7'}),
            (Texts{u"[a] [b]"}));
  EXPECT_EQ(Records("a'b'c\n", {.delimiter = u'\''}), (Texts{u"[a'b'c]"}))
      << "the text delimiter comes first";
}

TEST_F(DelimitedReaderTest, EmptyFileHasNoRecordAndIsAtItsEnd) {
  DelimitedReader reader(Describe(""));
  EXPECT_TRUE(reader.IsOpen());
  EXPECT_TRUE(reader.AtEnd());
  EXPECT_FALSE(reader.ReadRecord());
  EXPECT_FALSE(reader.ReadRecord());
  EXPECT_TRUE(reader.AtEnd());
}

TEST_F(DelimitedReaderTest, IsNotAtItsEndWhileARecordIsHeld) {
  DelimitedReader reader(Describe("a\nb"));
  EXPECT_FALSE(reader.AtEnd());
  ASSERT_TRUE(reader.ReadRecord());
  EXPECT_FALSE(reader.StreamAtEnd());
  ASSERT_TRUE(reader.ReadRecord());
  EXPECT_TRUE(reader.StreamAtEnd());
  EXPECT_FALSE(reader.AtEnd());
  EXPECT_FALSE(reader.ReadRecord());
  EXPECT_TRUE(reader.record().empty());
  EXPECT_TRUE(reader.AtEnd());
  EXPECT_FALSE(reader.ReadRecord());
}

TEST_F(DelimitedReaderTest, RewindReadsFromTheStartAgain) {
  DelimitedReader reader(
      Describe("\xEF\xBB\xBF"
               "a,b\nc,d\n"));
  ASSERT_TRUE(reader.ReadRecord());
  reader.Rewind();
  EXPECT_EQ(RecordTexts(reader), (Texts{u"[a] [b]", u"[c] [d]"}));
  reader.Rewind();
  EXPECT_EQ(RecordTexts(reader), (Texts{u"[a] [b]", u"[c] [d]"}));
}

TEST_F(DelimitedReaderTest, MissingFileIsNotOpen) {
  TextDatasetDescription description = Describe("a\n");
  description.path = folder_.Path(u"missing.csv");
  DelimitedReader reader(description);
  EXPECT_FALSE(reader.IsOpen());
  EXPECT_FALSE(reader.ReadRecord());
  FieldList fields;
  EXPECT_FALSE(reader.Scan(description.options, fields, OpenOptions()));
}

TEST_F(DelimitedReaderTest, RecordTerminatorOtherThanLineFeedIsCarriageReturn) {
  EXPECT_EQ(Records("a,b\rc,d\r", {.terminator = '\r'}), (Texts{u"[a] [b]", u"[c] [d]"}));
  EXPECT_EQ(Records("a,b\rc,d\r"), (Texts{u"[a] [b\rc] [d\r]"}));
  EXPECT_EQ(Records("a\rb\r\n", {.terminator = '\0'}), (Texts{u"[a]", u"[b\n]"}));
}

TEST_F(DelimitedReaderTest, ZeroCharactersEndTheirLine) {
  EXPECT_EQ(Records("a\0x,y\nb\n"s), (Texts{u"[a]", u"[b]"}));
  EXPECT_EQ(Records(Utf16File(u"a,b\0x,y\nc\n"s)), (Texts{u"[a] [b]", u"[c]"}));
}

TEST_F(DelimitedReaderTest, UnreadableEncodingsHoldNoRecords) {
  EXPECT_EQ(Records("\xFE\xFF\0a\0\n"s), Texts{});
  EXPECT_EQ(Records("\xFF\xFE\n\0a\0"s), Texts{});
}

TEST_F(DelimitedReaderTest, HugeFieldAndManyColumns) {
  // NOLINTNEXTLINE(bugprone-string-constructor): as large as that
  const std::string huge(10'000'000, 'x');
  DelimitedReader longField(Describe("a,'" + huge + "'\n"));
  ASSERT_TRUE(longField.ReadRecord());
  ASSERT_EQ(longField.record().size(), 2u);
  EXPECT_EQ(longField.record()[1].size(), huge.size());

  DelimitedReader manyFields(Describe(std::string(99'999, ',') + "\n"));
  ASSERT_TRUE(manyFields.ReadRecord());
  EXPECT_EQ(manyFields.record().size(), 100'000u);
}

// ---------------------------------------------------------------------------------------------
// Against a splitter that follows the rules word for word
// ---------------------------------------------------------------------------------------------

class PlainSplitter {
 public:
  PlainSplitter(std::string_view file, const Cut& cut)
      : cut_(cut),
        terminator_(cut.terminator == '\n' ? u'\n' : u'\r'),
        lines_(file, static_cast<char>(terminator_)) {}

  bool ReadRecord() {
    if (record_.empty() && lines_.AtEnd()) return false;
    record_.clear();
    field_.clear();
    quoting_ = false;
    for (;;) {
      char16_t unit = 0;
      if (Take(unit) && !Add(unit)) continue;
      if (!record_.empty() || !field_.empty()) EndField();
      if (!record_.empty()) return true;
      if (lines_.AtEnd()) return false;
    }
  }

  std::u16string Text() const {
    std::u16string text;
    for (const std::u16string& field : record_)
      text += (text.empty() ? u"[" : u" [") + field + u"]";
    return text;
  }
  bool AtEnd() const { return record_.empty() && lines_.AtEnd(); }

 private:
  // Answers whether the character ends the record.
  bool Add(char16_t unit) {
    if (cut_.textDelimiter != 0 && unit == cut_.textDelimiter) {
      AddTextDelimiter();
    } else if (quoting_) {  // NOLINT(bugprone-branch-clone): one of two reasons
      field_ += unit;
    } else if (unit == cut_.delimiter) {
      EndField();
    } else if (unit == terminator_) {
      return true;
    } else {
      field_ += unit;
    }
    return false;
  }

  void AddTextDelimiter() {
    if (!quoting_ && quenra::IsBlank(field_)) {
      field_.clear();
      quoting_ = true;
    } else if (Peek() == cut_.textDelimiter) {
      char16_t second = 0;
      Take(second);
      field_ += cut_.textDelimiter;
    } else if (quoting_) {
      quoting_ = false;
    } else {
      field_ += cut_.textDelimiter;
    }
  }

  void EndField() {
    record_.push_back(field_);
    field_.clear();
  }

  bool Take(char16_t& unit) {
    if (line_.empty()) {
      if (!lines_.ReadLine(line_)) {
        line_.clear();
        return false;
      }
      cursor_ = 0;
    }
    unit = line_[cursor_++];
    if (unit != 0) return true;
    unit = terminator_;
    line_.clear();
    return true;
  }
  char16_t Peek() const { return line_[cursor_] == 0 ? terminator_ : line_[cursor_]; }

  const Cut cut_;
  const char16_t terminator_;
  PlainTextLines lines_;
  std::u16string line_;
  std::size_t cursor_ = 0;
  std::vector<std::u16string> record_;
  std::u16string field_;
  bool quoting_ = false;
};

std::string RandomFile(std::mt19937& random) {
  static const std::string kPieces[] = {
      "a",  "b1", ",",    ",",  "'",        "'",        "''",           "\"",   " ",   "\t",
      "\n", "\n", "\r\n", "\r", "\xC3\xA9", "\xC2\xA0", "\xE2\x82\xAC", "\xFF", "\0"s, "\x1A"};
  // The rare ones of the list are rarer than it makes them.
  const std::size_t choices = random() % 3 == 0 ? std::size(kPieces) : std::size(kPieces) - 3;
  std::string file = random() % 4 == 0 ? "\xEF\xBB\xBF" : "";
  for (std::size_t count = random() % 30; count > 0; --count) file += kPieces[random() % choices];
  return file;
}

std::string RandomUtf16File(std::mt19937& random) {
  static const std::u16string kUnits = u"abc,,''\" \t\n\n\r\0\u4E0A\u010D\x1A"s;
  std::u16string text = u"a";
  for (std::size_t count = random() % 30; count > 0; --count)
    text += kUnits[random() % kUnits.size()];
  return Utf16File(text);
}

TEST_F(DelimitedReaderTest, AgreesWithThePlainSplitterOnRandomFiles) {
  std::mt19937 random(7);
  for (int round = 0; round < 1500; ++round) {
    const std::string file = round % 4 == 0 ? RandomUtf16File(random) : RandomFile(random);
    const Cut cut{.delimiter = u",\t "[random() % 3],
                  .textDelimiter = u"''\"\0"[random() % 4],
                  .terminator = random() % 4 == 0 ? '\r' : '\n'};
    SCOPED_TRACE(::testing::PrintToString(file));
    DelimitedReader reader(Describe(file, cut));
    PlainSplitter plain(file, cut);
    for (bool more = true; more;) {
      more = plain.ReadRecord();
      ASSERT_EQ(reader.ReadRecord(), more) << "round " << round;
      if (more) {
        ASSERT_EQ(RecordText(reader.record()), plain.Text()) << "round " << round;
      }
      ASSERT_EQ(reader.AtEnd(), plain.AtEnd()) << "round " << round;
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Scan
// ---------------------------------------------------------------------------------------------

// "name:type" of every field, the type as the host's code.
std::u16string FieldsText(const FieldList& fields) {
  std::u16string text;
  for (const FieldDefinition& field : fields) {
    const std::string code = std::to_string(static_cast<int>(field.type));
    text +=
        (text.empty() ? u"" : u" ") + field.name + u':' + std::u16string(code.begin(), code.end());
  }
  return text;
}

struct ScanCase {
  const char* why;
  std::string bytes;
  bool succeeds;
  char16_t delimiter;
  char16_t decimal;
  char terminator;
  bool header;
  std::u16string fields;
};

class DelimitedScanTest : public DelimitedReaderTest {
 protected:
  static void Check(const ScanCase& c, TextDatasetDescription description) {
    SCOPED_TRACE(c.why);
    DelimitedReader reader(description);
    SchemaOptions& options = description.options;
    EXPECT_EQ(reader.Scan(options, description.fields, OpenOptions()), c.succeeds);
    EXPECT_EQ(options.delimiter, c.delimiter);
    EXPECT_EQ(options.number.decimalSymbol, c.decimal);
    EXPECT_EQ(options.recordTerminator, c.terminator);
    if (!c.succeeds) return;
    EXPECT_EQ(options.columnNameHeader, c.header);
    EXPECT_EQ(FieldsText(description.fields), c.fields);
  }
};

TEST_F(DelimitedScanTest, FindsDelimiterTerminatorHeaderAndDecimalSymbol) {
  const ScanCase cases[] = {
      {"comma", "id,name\n1,x\n", true, u',', u'.', '\n', true, u"id:1 name:4"},
      {"semicolon with decimal commas", "id;v\n1;1,5\n2;2,25\n", true, u';', u',', '\n', true,
       u"id:1 v:3"},
      {"tab", "id\tname\n1\tx\n", true, u'\t', u'.', '\n', true, u"id:1 name:4"},
      {"pipe", "id|name\n1|x\n", true, u'|', u'.', '\n', true, u"id:1 name:4"},
      {"blank, on the first pass already", "New York\nLos Angeles\n", true, u' ', u'.', '\n', true,
       u"New:4 York:4"},
      {"blank without a header", "1 2\n3 4\n", true, u' ', u'.', '\n', false, u"Field1:1 Field2:1"},
      {"one column, no candidate in it", "name\napple\npear\n", true, u',', u'.', '\n', true,
       u"name:4"},
      {"one column of numbers", "1\n2\n", true, u',', u'.', '\n', false, u"Field1:1"},
      {"CR line ends", "a,b\r1,2\r3,4\r", true, u',', u'.', '\r', true, u"a:1 b:1"},
      {"CR line ends, none at the end", "a,b\r1,2\r3,4", true, u',', u'.', '\r', true, u"a:1 b:1"},
      {"CR line ends without a header", "1,x\r2,y\r", true, u',', u'.', '\r', false,
       u"Field1:1 Field2:4"},
      {"CR line ends and semicolons", "a;b\r1;2,5\r", true, u';', u',', '\r', true, u"a:1 b:3"},
      {"a header alone, unterminated", "a,b", true, u',', u'.', '\n', true, u"a:4 b:4"},
      {"a header alone", "a,b\n", true, u',', u'.', '\n', true, u"a:4 b:4"},
      {"one row of numbers", "1,2\n", true, u',', u'.', '\n', false, u"Field1:1 Field2:1"},
      {"one row of numbers, unterminated", "1,2", true, u',', u'.', '\n', false,
       u"Field1:1 Field2:1"},
      {"empty", "", true, u',', u'.', '\n', false, u""},
      {"line ends only", "\n\n\n", true, u',', u'.', '\n', false, u""},
      {"comma first where both fit", "a,b;c\n1,2;3\n", true, u',', u'.', '\n', true, u"a:1 b;c:4"},
  };
  for (const ScanCase& c : cases) Check(c, Describe(c.bytes, {.textDelimiter = u'"'}));
}

TEST_F(DelimitedScanTest, RowsWiderThanTheHeaderRefuseADelimiter) {
  // Split at commas, the second row has a value without a name; split at semicolons it fits.
  Check({"next candidate", "a,b;c\n1,2,3;4\n", true, u';', u',', '\n', true, u"a,b:4 c:1"},
        Describe("a,b;c\n1,2,3;4\n", {.textDelimiter = u'"'}));
  Check(
      {"empty extra fields do not count", "a,b\n1,2,,\n", true, u',', u'.', '\n', true, u"a:1 b:1"},
      Describe("a,b\n1,2,,\n", {.textDelimiter = u'"'}));
}

TEST_F(DelimitedScanTest, FormatOfSchemaIniIsNotGuessedAt) {
  TextDatasetDescription given = Describe("a;b\n1;2\n", {.textDelimiter = u'"'});
  given.options.specified = SchemaOptions::kFormat;
  Check({"one field accepted", "", true, u',', u'.', '\n', true, u"a;b:4"}, given);

  TextDatasetDescription misfit = Describe("a,b\n1,2,3\n", {.textDelimiter = u'"'});
  misfit.options.specified = SchemaOptions::kFormat;
  Check({"no other delimiter is tried", "", false, u',', u'.', '\n', true, u""}, misfit);
}

TEST_F(DelimitedScanTest, FailureLeavesTheLastValuesTried) {
  // A header of one name and rows of two values under every candidate.
  const std::string bytes = "a\n1,2;3\t4|5 6\n";
  Check({"nothing fits", bytes, false, u'|', u'.', '\n', true, u""},
        Describe(bytes, {.textDelimiter = u'"'}));
}

TEST_F(DelimitedScanTest, SwappedDecimalSymbolComesBackAsCommaOrPoint) {
  // ";" is no decimal symbol when it is tried as delimiter; the swap back makes it a point.
  TextDatasetDescription odd = Describe("x\ny\n", {.textDelimiter = u'"'});
  odd.options.number.decimalSymbol = u';';
  Check({"any other symbol", "", true, u',', u'.', '\n', true, u"x:4"}, odd);

  // The comma, tried on the second pass first, takes the decimal comma away.
  TextDatasetDescription comma = Describe("x\ny\n", {.delimiter = u';', .textDelimiter = u'"'});
  comma.options.number.decimalSymbol = u',';
  Check({"comma", "", true, u',', u'.', '\n', true, u"x:4"}, comma);
}

TEST_F(DelimitedScanTest, SecondPassTriesTheInitialDelimiterAgainAndNotTheLastOneTried) {
  // The initial delimiter is no candidate here, so the first pass tries all five and the second
  // skips the blank. Every candidate gives one column; the comma is the first to be accepted.
  TextDatasetDescription description =
      Describe("x\ny\n", {.delimiter = u'#', .textDelimiter = u'"'});
  Check({"foreign initial delimiter", "", true, u',', u'.', '\n', true, u"x:4"}, description);

  // Started with the pipe, the second pass begins with the comma too.
  TextDatasetDescription pipe = Describe("x\ny\n", {.delimiter = u'|', .textDelimiter = u'"'});
  Check({"pipe", "", true, u',', u'.', '\n', true, u"x:4"}, pipe);
}

TEST_F(DelimitedScanTest, HeaderCellsAreTrimmedOfBlanksAndEmptyOnesNumbered) {
  TextDatasetDescription description =
      Describe("  Name  ,   ,\tid,\nx,y,z,w\n", {.textDelimiter = u'"'});
  Check({"names", "", true, u',', u'.', '\n', true, u"Name:4 Field2:4 \tid:4 Field4:4"},
        description);
}

TEST_F(DelimitedScanTest, HeaderFlagOfSchemaIniHolds) {
  TextDatasetDescription named = Describe("1,2\n3,4\n", {.textDelimiter = u'"'});
  named.options.specified = SchemaOptions::kColNameHeader;
  named.options.columnNameHeader = true;
  Check({"a header of numbers", "", true, u',', u'.', '\n', true, u"1:1 2:1"}, named);

  TextDatasetDescription plain = Describe("a,b\nc,d\n", {.textDelimiter = u'"'});
  plain.options.specified = SchemaOptions::kColNameHeader;
  plain.options.columnNameHeader = false;
  Check({"text that is data", "", true, u',', u'.', '\n', false, u"Field1:4 Field2:4"}, plain);
}

TEST_F(DelimitedScanTest, OneNumberOrDateInTheFirstRecordMakesItData) {
  const std::string first[] = {"a,b,3", "a,2020-01-05,c", "a,1.5,c", "a,$5,c"};
  for (const std::string& row : first) {
    TextDatasetDescription description = Describe(row + "\na,b,c\n", {.textDelimiter = u'"'});
    DelimitedReader reader(description);
    ASSERT_TRUE(reader.Scan(description.options, description.fields, OpenOptions()));
    EXPECT_FALSE(description.options.columnNameHeader) << row;
    EXPECT_EQ(description.fields[0].name, u"Field1") << row;
  }
}

TEST_F(DelimitedScanTest, DeclaredNamesStayAndOpenOnesComeFromTheHeader) {
  TextDatasetDescription description = Describe("a,b,c\n1,2,3\n", {.textDelimiter = u'"'});
  FieldDefinition declared;
  declared.name = u"Second";
  declared.type = FieldType::kDouble;
  description.options.columns.emplace(1, declared);
  Check({"gap below a declared column", "", true, u',', u'.', '\n', true, u"a:1 Second:3 c:1"},
        description);
}

TEST_F(DelimitedScanTest, ReaderFollowsTheDelimiterThatWasFound) {
  TextDatasetDescription description = Describe("a;b\r1;2\r", {.textDelimiter = u'"'});
  DelimitedReader reader(description);
  ASSERT_TRUE(reader.Scan(description.options, description.fields, OpenOptions()));
  reader.Rewind();
  EXPECT_EQ(RecordTexts(reader), (Texts{u"[a] [b]", u"[1] [2]"}));
  DelimitedReader afresh(description);
  EXPECT_EQ(RecordTexts(afresh), (Texts{u"[a] [b]", u"[1] [2]"}));
}

}  // namespace
}  // namespace TextFile
