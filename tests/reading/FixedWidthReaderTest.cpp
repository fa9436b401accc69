#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reading/FixedWidthReader.h"
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
using Widths = std::vector<std::int32_t>;

class FixedWidthReaderTest : public EnglishTest {
 protected:
  // A description as an opened table has it.
  TextDatasetDescription Describe(std::string_view bytes, const Widths& widths,
                                  char terminator = '\n') {
    TextDatasetDescription description;
    description.name = u"a.txt";
    description.path = folder_.Write(u"a.txt", bytes);
    description.options.fixedLength = true;
    description.options.delimiter = 0;
    description.options.specified = SchemaOptions::kFormat;
    description.options.recordTerminator = terminator;
    for (const std::int32_t width : widths) {
      FieldDefinition field;
      field.name = static_cast<char16_t>(u'a' + description.fields.size());
      field.width = width;
      field.hasWidth = true;
      description.options.columns.emplace(static_cast<std::int32_t>(description.fields.size()),
                                          field);
      description.fields.push_back(field);
    }
    return description;
  }

  Texts Records(std::string_view bytes, const Widths& widths, char terminator = '\n') {
    FixedWidthReader reader(Describe(bytes, widths, terminator));
    EXPECT_TRUE(reader.IsOpen());
    return RecordTexts(reader);
  }

  TemporaryFolder folder_;
};

TEST_F(FixedWidthReaderTest, CutsByWidth) {
  struct {
    std::string line;
    Widths widths;
    std::u16string record;
    const char* why;
  } const cases[] = {
      {"abcde fgh", {3, 2}, u"[abc] [de]", "what lies behind the last column is dropped"},
      {"ab", {3, 4}, u"[ab]", "a short line has fewer fields"},
      {"abcd", {3, 4}, u"[abc] [d]", "the last field may be short"},
      {"abc", {3, 4}, u"[abc]", "no empty field for a missing column"},
      {"abc ", {3, 4}, u"[abc] []", "a blank is a short field"},
      {"  x  ", {5}, u"[x]", "blanks at both ends go"},
      {"\ta\t ", {4}, u"[\ta\t]", "tabs stay"},
      {"   ", {3}, u"[]", "a column of blanks is an empty field"},
      {"  ", {5}, u"[]", "so is a short one"},
      {"   b", {3, 1}, u"[] [b]", "an empty field in front"},
      {"a,'b'", {3, 2}, u"[a,'] [b']", "neither delimiters nor quotes"},
      {"abcdef", {2, 0, 2}, u"[ab] [cdef]", "a width of zero takes the rest"},
      {"abcdef", {-1, 2}, u"[abcdef]", "so does a negative one"},
      {"ab", {2, 0, 2}, u"[ab]", "if there is a rest"},
      {"Z\xC3\xBCrich", {2, 4}, u"[Z\u00FC] [rich]", "characters, not bytes"},
      {"\xF0\x9F\x98\x80x", {2, 1}, u"[\xD83D\xDE00] [x]", "UTF-16 code units"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Records(c.line, c.widths), (Texts{c.record})) << "unterminated";
    EXPECT_EQ(Records(c.line + "\r\n" + c.line + "\n", c.widths), (Texts{c.record, c.record}));
  }
}

TEST_F(FixedWidthReaderTest, BlankLinesAreNoRecords) {
  EXPECT_EQ(Records("\nab\n\n\ncd\n\n", {2}), (Texts{u"[ab]", u"[cd]"}));
  EXPECT_EQ(Records("\n\n", {2}), Texts{});
  EXPECT_EQ(Records("", {2}), Texts{});
}

TEST_F(FixedWidthReaderTest, WithoutColumnsThereAreNoRecords) {
  EXPECT_EQ(Records("ab\ncd\n", {}), Texts{});
}

TEST_F(FixedWidthReaderTest, CarriageReturnsEndRecordsWhenTheOptionsSaySo) {
  EXPECT_EQ(Records("ab\rcd\r", {2}, '\r'), (Texts{u"[ab]", u"[cd]"}));
  EXPECT_EQ(Records("ab\rcd\r", {2}), (Texts{u"[ab]"}));
}

TEST_F(FixedWidthReaderTest, Utf16FileIsCutByCharacters) {
  EXPECT_EQ(Records(Utf16File(u"\u00FC\u4E0Ax\r\nyz"), {2, 1}),
            (Texts{u"[\u00FC\u4E0A] [x]", u"[yz]"}));
}

TEST_F(FixedWidthReaderTest, EndIsSeenOnceNoRecordIsHeld) {
  FixedWidthReader reader(Describe("ab", {2}));
  EXPECT_FALSE(reader.AtEnd());
  ASSERT_TRUE(reader.ReadRecord());
  EXPECT_FALSE(reader.AtEnd());
  EXPECT_FALSE(reader.ReadRecord());
  EXPECT_TRUE(reader.AtEnd());
}

// ---------------------------------------------------------------------------------------------
// Against a reader that follows the rules word for word
// ---------------------------------------------------------------------------------------------

std::u16string TrimmedBlanks(const std::u16string& text) {
  const std::size_t first = text.find_first_not_of(u' ');
  if (first == std::u16string::npos) return u"";
  return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

class PlainCutter {
 public:
  PlainCutter(std::string_view file, Widths widths, char terminator)
      : widths_(std::move(widths)), lines_(file, terminator) {}

  bool ReadRecord() {
    for (;;) {
      if (record_.empty() && lines_.AtEnd()) return false;
      record_.clear();
      if (widths_.empty()) return false;
      std::u16string line;
      std::u16string field;
      if (!lines_.ReadLine(line)) line = u"\0"s;
      for (std::size_t i = 0; line[i] != 0 && record_.size() < widths_.size(); ++i) {
        field += line[i];
        if (static_cast<std::int64_t>(field.size()) != widths_[record_.size()]) continue;
        record_.push_back(TrimmedBlanks(field));
        field.clear();
      }
      if (!field.empty()) record_.push_back(TrimmedBlanks(field));
      if (!record_.empty()) return true;
    }
  }

  std::u16string Text() const {
    std::u16string text;
    for (const std::u16string& field : record_)
      text += (text.empty() ? u"[" : u" [") + field + u"]";
    return text;
  }

 private:
  const Widths widths_;
  PlainTextLines lines_;
  std::vector<std::u16string> record_;
};

TEST_F(FixedWidthReaderTest, AgreesWithThePlainCutterOnRandomFiles) {
  std::mt19937 random(11);
  const std::string pieces[] = {"a",    "b",  " ",  "  ",       ",",   "\"",  "\n",
                                "\r\n", "\r", "\t", "\xC3\xA9", "\0"s, "\x1A"};
  for (int round = 0; round < 1000; ++round) {
    std::string file;
    for (std::size_t count = random() % 30; count > 0; --count)
      file += pieces[random() % (random() % 4 == 0 ? 13 : 11)];
    Widths widths;
    for (std::size_t count = random() % 5; count > 0; --count)
      widths.push_back(static_cast<std::int32_t>(random() % 6) - 1);
    const char terminator = random() % 4 == 0 ? '\r' : '\n';
    SCOPED_TRACE(::testing::PrintToString(file) + " " + ::testing::PrintToString(widths));
    FixedWidthReader reader(Describe(file, widths, terminator));
    PlainCutter plain(file, widths, terminator);
    for (bool more = true; more;) {
      more = plain.ReadRecord();
      ASSERT_EQ(reader.ReadRecord(), more) << "round " << round;
      if (more) {
        ASSERT_EQ(RecordText(reader.record()), plain.Text()) << "round " << round;
      }
    }
  }
}

// ---------------------------------------------------------------------------------------------
// Scan
// ---------------------------------------------------------------------------------------------

struct ScanCase {
  const char* why;
  std::string bytes;
  Widths widths;
  bool succeeds;
  char terminator;
};

TEST_F(FixedWidthReaderTest, ScanKeepsTheDeclaredColumnsOrFails) {
  const ScanCase cases[] = {
      {"rows of full width", "abcde\nfghij\n", {3, 2}, true, '\n'},
      {"wider rows", "abcdefgh\nabcdefgh\n", {3, 2}, true, '\n'},
      {"the last row is short", "abcde\nfg\n", {3, 2}, false, '\n'},
      {"the last row is short within its last column", "abcde\nfghi\n", {3, 2}, true, '\n'},
      {"CR line ends", "abcde\rfghij\r", {3, 2}, true, '\r'},
      {"one row, unterminated", "abcde", {3, 2}, true, '\n'},
      {"one row", "abcde\n", {3, 2}, true, '\n'},
      {"columns but no content", "", {3, 2}, false, '\n'},
      {"content but no columns", "abcde\n", {}, false, '\n'},
      {"neither", "", {}, true, '\n'},
  };
  for (const ScanCase& c : cases) {
    SCOPED_TRACE(c.why);
    TextDatasetDescription description = Describe(c.bytes, c.widths);
    const FieldList declared = description.fields;
    description.fields.clear();  // as the open sequence has it
    FixedWidthReader reader(description);
    EXPECT_EQ(reader.Scan(description.options, description.fields, OpenOptions()), c.succeeds);
    EXPECT_EQ(description.options.recordTerminator, c.terminator);
    if (!c.succeeds) continue;
    ASSERT_EQ(description.fields.size(), declared.size());
    for (std::size_t i = 0; i < declared.size(); ++i) {
      EXPECT_EQ(description.fields[i].name, declared[i].name);
      EXPECT_EQ(description.fields[i].type, declared[i].type);
      EXPECT_EQ(description.fields[i].width, declared[i].width);
    }
  }
}

TEST_F(FixedWidthReaderTest, ScanTakesNamesFromTheHeaderForColumnsWithoutOne) {
  TextDatasetDescription description = Describe(" id  nm\n 17  ab\n", {3, 4});
  description.options.columns[1].name.clear();
  description.fields.clear();
  FixedWidthReader reader(description);
  ASSERT_TRUE(reader.Scan(description.options, description.fields, OpenOptions()));
  EXPECT_TRUE(description.options.columnNameHeader);
  EXPECT_EQ(description.fields[0].name, u"a");
  EXPECT_EQ(description.fields[1].name, u"nm");
}

TEST_F(FixedWidthReaderTest, ScanOfAMissingFileFails) {
  TextDatasetDescription description = Describe("abc\n", {3});
  description.path = folder_.Path(u"missing.txt");
  FixedWidthReader reader(description);
  EXPECT_FALSE(reader.IsOpen());
  EXPECT_FALSE(reader.ReadRecord());
  EXPECT_FALSE(reader.Scan(description.options, description.fields, OpenOptions()));
}

}  // namespace
}  // namespace TextFile
