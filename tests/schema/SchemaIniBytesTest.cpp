// What a rewrite of schema.ini does to the bytes of lines that it has nothing to do with.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <sstream>
#include <utility>
#include <vector>

#include "host/CoreSupport/QUENRALocale.h"
#include "reading/TextLineStream.h"
#include "schema/SchemaIniFile.h"
#include "schema/SchemaIniReader.h"
#include "schema/SchemaIniWriter.h"
#include "support/SchemaSections.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"
#include "support/Utf16Bytes.h"

namespace TextFile {
namespace {

using namespace std::string_literals;
using quenra::QUENRALocale;
using quenra::test::ToUtf8;

class SchemaIniBytesTest : public testing::Test {
 protected:
  void SetUp() override { QUENRALocale::SetLocale(u"en-US"); }
  void TearDown() override {
    QUENRALocale::SetAnsiCodePage(0);
    QUENRALocale::ResetLocale();
  }

  SchemaIniPaths Paths() const { return SchemaIniPaths(folder_.Path()); }
  std::string Text() const { return folder_.Read(u"schema.ini"); }
  void SetText(std::string_view text) const { folder_.Write(u"schema.ini", text); }

  static SchemaOptions OneColumn(std::u16string name) {
    SchemaOptions options;
    options.columns[0].name = std::move(name);
    return options;
  }
  bool Write(std::u16string_view section, std::u16string column = u"A") const {
    std::u16string failure;
    const bool written =
        WriteSchemaSection(Paths(), section, OneColumn(std::move(column)), &failure);
    EXPECT_EQ(written, failure.empty());
    EXPECT_FALSE(folder_.Exists(u"~scheam.ini"));
    return written;
  }
  std::u16string ColumnOf(std::u16string_view section) const {
    SchemaOptions options;
    if (!ReadSchemaSection(Paths(), section, options)) return u"no section";
    return options.columns.at(0).name;
  }

  quenra::test::TemporaryFolder folder_;
};

constexpr std::string_view kAnsi =
    "[Stra\xDF"
    "e.csv]\nCol1=Gr\xFC\xDF"
    "e Text\n";

TEST_F(SchemaIniBytesTest, LinesThatTheCodePageDoesNotReadKeepTheirBytes) {
  for (const UINT codePage : {65001u, 936u, 932u, 1251u, 1252u}) {
    SCOPED_TRACE(codePage);
    ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(codePage));
    SetText(kAnsi);
    EXPECT_TRUE(Write(u"b.csv"));
    EXPECT_EQ(Text(), std::string(kAnsi) + "[b.csv]\nCol1=A Text\n");
    EXPECT_TRUE(RenameSchemaSection(Paths(), u"b.csv", u"c.csv"));
    EXPECT_TRUE(DropSchemaSection(Paths(), u"c.csv"));
    EXPECT_EQ(Text(), kAnsi);
  }
}

TEST_F(SchemaIniBytesTest, ReadingAddsASectionWithoutLosingTheUnreadableOne) {
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(65001));
  SetText(kAnsi);
  folder_.Write(u"Stra\u00DFe.csv", "");
  ColumnToAdd columns[1];
  columns[0].column.name = u"Gr\u00FC\u00DFe";
  AddSchemaColumns(Paths(), u"Stra\u00DFe.csv", columns);
  EXPECT_TRUE(columns[0].added);
  EXPECT_TRUE(Text().starts_with(kAnsi)) << Text();
  EXPECT_EQ(ColumnOf(u"Stra\u00DFe.csv"), u"Gr\u00FC\u00DFe");
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(1252));
  EXPECT_EQ(ColumnOf(u"Stra\u00DFe.csv"), u"Gr\u00FC\u00DFe");
}

TEST_F(SchemaIniBytesTest, NewLinesAreWrittenInTheFilesEncoding) {
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(1252));
  SetText(kAnsi);
  EXPECT_TRUE(Write(u"\u00FC.csv", u"\u20AC"));
  EXPECT_EQ(Text(), std::string(kAnsi) + "[\xFC.csv]\nCol1=\x80 Text\n");
  // An option line makes it an ANSI file as well, though no header tells.
  SetText("[a.csv]\nCol1=\xFC Text\n");
  EXPECT_TRUE(Write(u"\u00FC.csv", u"\u20AC"));
  EXPECT_EQ(Text(), "[a.csv]\nCol1=\xFC Text\n[\xFC.csv]\nCol1=\x80 Text\n");
  // ASCII alone may be either; UTF-8 holds every name.
  SetText("[a.csv]\r\nA=1\r\n");
  EXPECT_TRUE(Write(u"\u00FC.csv", u"\u20AC"));
  EXPECT_EQ(Text(), "[a.csv]\nA=1\n[\xC3\xBC.csv]\nCol1=\xE2\x82\xAC Text\n");
  SetText(Utf16File(u"[a.csv]\r\nA=1\r\n\r\n[\u4E00.csv]\nB=\u0A0D\u0D0A\n"));
  EXPECT_TRUE(Write(u"\u00FC.csv", u"\U0001F600"));
  EXPECT_EQ(Text(), Utf16File(u"[a.csv]\nA=1\n[\u4E00.csv]\nB=\u0A0D\u0D0A\n"
                              u"[\u00FC.csv]\nCol1=\U0001F600 Text\n"));
  EXPECT_EQ(ColumnOf(u"\u00FC.csv"), u"\U0001F600");
}

TEST_F(SchemaIniBytesTest, WhatTheCodePageLacksIsNotWritten) {
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(1252));
  SetText(kAnsi);
  EXPECT_FALSE(Write(u"\u0416.csv"));
  EXPECT_FALSE(Write(u"b.csv", u"\u0416"));
  EXPECT_FALSE(Write(u"b.csv", u"\uFF21")) << "a similar character is not the name";
  EXPECT_FALSE(RenameSchemaSection(Paths(), u"Stra\u00DFe.csv", u"\u0416.csv"));
  EXPECT_FALSE(DuplicateSchemaSection(Paths(), u"Stra\u00DFe.csv", u"\u0416.csv"));
  // Would be read as UTF-8 behind a header that is ASCII.
  SetText("[a.csv]\nCol1=\xFC Text\n");
  EXPECT_FALSE(Write(u"\u00C3\u00BC.csv"));
  EXPECT_EQ(Text(), "[a.csv]\nCol1=\xFC Text\n");
}

TEST_F(SchemaIniBytesTest, AFileOfTwoEncodingsStaysReadable) {
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(1252));
  const std::string mixed = "[a.csv]\nCol1=\xFC Text\n[\xC3\xBC.csv]\nCol1=\xC3\xA4 Text\n";
  SetText(mixed);
  EXPECT_EQ(ColumnOf(u"\u00FC.csv"), u"\u00E4");
  EXPECT_TRUE(Write(u"\u0416.csv", u"\u0416"));
  EXPECT_EQ(Text(), mixed + "[\xD0\x96.csv]\nCol1=\xD0\x96 Text\n");
  EXPECT_TRUE(Write(u"\u00FC.csv", u"\u00E4\u00E4"));
  EXPECT_EQ(ColumnOf(u"\u00FC.csv"), u"\u00E4\u00E4");
  EXPECT_EQ(ColumnOf(u"a.csv"), u"\u00FC");
  // Without the first header the second would be taken for UTF-8.
  const std::string turning = "[\xDF.csv]\nA=1\n[\xC3\xBC.csv]\nA=1\n";
  SetText(turning);
  std::u16string failure;
  EXPECT_FALSE(DropSchemaSection(Paths(), u"\u00DF.csv", &failure));
  EXPECT_NE(failure, u"");
  EXPECT_EQ(Text(), turning);
}

TEST_F(SchemaIniBytesTest, AChangedSectionKeepsTheLinesThatStay) {
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(65001));
  SetText(
      "[a.csv]\nCol1=Gr\xFC\xDF"
      "e Text\nCol2=B Text\0hidden\nCol3=C Text\n"s);
  folder_.Write(u"a.csv", "");
  ColumnToAdd columns[1];
  columns[0].index = 3;
  columns[0].column.name = u"D";
  AddSchemaColumns(Paths(), u"a.csv", columns);
  EXPECT_TRUE(columns[0].added);
  EXPECT_EQ(Text(),
            "[a.csv]\nCol1=Gr\xFC\xDF"
            "e Text\nCol2=B Text\0hidden\nCol3=C Text\n"
            "Col4=D Text\n"s);
}

TEST_F(SchemaIniBytesTest, TextThatNobodySeesIsNotDropped) {
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(65001));
  for (const std::string& text :
       {"[a.csv]\nCol1=Gr\xFC\xDF"
        "e Text\n"s,
        "[a.csv]\nCol1=\"A\" Text\0hidden\n"s, "[a.csv]\n\0hidden\n"s,
        "\xEF\xBB\xBF[a.csv]\nCol1=\xFC Text\n"s, Utf16File(u"[a.csv]\nCol1=") + "A"}) {
    SetText(text);
    EXPECT_FALSE(Write(u"a.csv"));
    EXPECT_EQ(Text(), text);
  }
  SetText("[a.csv]\0hidden\nA=1\n"s);
  EXPECT_FALSE(RenameSchemaSection(Paths(), u"a.csv", u"b.csv"));
  EXPECT_EQ(Text(), "[a.csv]\0hidden\nA=1\n"s);
}

TEST_F(SchemaIniBytesTest, NothingIsWrittenWhereTextStandsBehindTheEnd) {
  const std::string text = "[a.csv]\nA=1\n\x1A[b.csv]\nB=1\n";
  SetText(text);
  EXPECT_FALSE(Write(u"a.csv"));
  EXPECT_FALSE(Write(u"c.csv"));
  EXPECT_FALSE(DropSchemaSection(Paths(), u"a.csv"));
  EXPECT_EQ(Text(), text);
  // What an old editor ends a text with is no text.
  SetText("[a.csv]\nA=1\r\n\x1A\x1A\r\n");
  EXPECT_TRUE(Write(u"c.csv"));
  EXPECT_EQ(Text(), "[a.csv]\nA=1\n[c.csv]\nCol1=A Text\n\x1A\x1A\r\n");
  EXPECT_EQ(ColumnOf(u"c.csv"), u"A");
  // In UTF-16 it is a character like any other.
  SetText(Utf16File(u"[a.csv]\nA=\u001A\n[b.csv]\n"));
  EXPECT_TRUE(Write(u"b.csv"));
  EXPECT_EQ(Text(), Utf16File(u"[a.csv]\nA=\u001A\n[b.csv]\nCol1=A Text\n"));
}

TEST_F(SchemaIniBytesTest, HalfCharactersOfUtf16Stay) {
  const std::u16string text = {u'[', 0xD800, u']', u'\n', u'A', u'=', 0xDC00, u'\n'};
  SetText(Utf16File(text));
  EXPECT_TRUE(Write(u"b.csv"));
  EXPECT_EQ(Text(), Utf16File(text + u"[b.csv]\nCol1=A Text\n"));
  EXPECT_FALSE(Write(std::u16string(1, 0xD800)));
  EXPECT_FALSE(Write(u"b.csv", std::u16string(1, 0xDC00)));
  EXPECT_EQ(Text(), Utf16File(text + u"[b.csv]\nCol1=A Text\n"));
}

TEST_F(SchemaIniBytesTest, AnEmptyUtf16FileStaysOne) {
  SetText(Utf16File(u"[a.csv]\nA=1\n"));
  EXPECT_TRUE(DropSchemaSection(Paths(), u"a.csv"));
  EXPECT_EQ(Text(), Utf16File(u"\r\n")) << "the mark alone would be that of UTF-32";
  EXPECT_TRUE(Write(u"a.csv"));
  EXPECT_EQ(Text(), Utf16File(u"[a.csv]\nCol1=A Text\n"));
}

TEST_F(SchemaIniBytesTest, CarriageReturnsThatEndNoLineStay) {
  SetText("[a.csv]\nA=1\r\r\nB=\r2\n[b.csv]\nC=3\r");
  EXPECT_TRUE(Write(u"c.csv"));
  EXPECT_EQ(Text(), "[a.csv]\nA=1\r\r\nB=\r2\n[b.csv]\nC=3\r\r\n[c.csv]\nCol1=A Text\n");
  SetText(Utf16File(u"[a.csv]\nA=1\r\r\n"));
  EXPECT_TRUE(Write(u"c.csv"));
  EXPECT_EQ(Text(), Utf16File(u"[a.csv]\nA=1\r\r\n[c.csv]\nCol1=A Text\n"));
}

TEST_F(SchemaIniBytesTest, ASectionOfWhichTextIsHiddenIsToldApart) {
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(65001));
  SetText("[a.csv]\nA=\xFC\n[b.csv]\nA=\xC3\xBC\n[c.csv]\nA=1\0x\n"s);
  const SchemaIniFile file(Paths(), SchemaIniFile::Access::kRead);
  EXPECT_FALSE(file.TellsAll(u"a.csv"));
  EXPECT_TRUE(file.TellsAll(u"b.csv"));
  EXPECT_FALSE(file.TellsAll(u"c.csv"));
  EXPECT_TRUE(file.TellsAll(u"d.csv"));
}

// ---------------------------------------------------------------------------------------------
// Random files
// ---------------------------------------------------------------------------------------------

using SectionRead = std::pair<std::u16string, SectionLines>;

// The sections as the reader comes to them: by the next "[" of the file, then line by line to the
// next header. Those that an earlier one of the same name hides are left out.
std::vector<SectionRead> SectionsOf(const std::string& bytes) {
  std::vector<SectionRead> sections;
  std::u16string line;
  for (std::size_t skipped = 0;; ++skipped) {
    TextLineStream stream;
    stream.Open(std::make_unique<std::stringbuf>(bytes), TextLineStream::kPlainLines);
    for (std::size_t i = 0; i < skipped; ++i)
      if (!stream.SkipTo('[') || !stream.ReadLine(line)) return sections;
    if (!stream.SkipTo('[') || !stream.ReadLine(line)) return sections;
    SectionRead section{line, {}};
    while (stream.ReadLine(line) && !line.starts_with(u'['))
      if (!line.empty()) section.second.push_back(line);
    sections.push_back(std::move(section));
  }
}

class RandomIni {
 public:
  explicit RandomIni(std::uint32_t seed) : random_(seed) {}

  std::string Make() {
    const bool wide = Below(4) == 0;
    std::string bytes;
    for (std::uint32_t count = Below(14); count > 0; --count) {
      std::string line = Pick(kStarts);
      for (std::uint32_t pieces = Below(4); pieces > 0; --pieces) line += Pick(kPieces);
      if (Below(2) == 0) line += "]";
      line += Pick(kEnds);
      bytes += line;
    }
    constexpr const char* kMarks[] = {"", "", "\xEF\xBB\xBF"};
    if (!wide) return Pick(kMarks) + bytes;
    std::u16string units(bytes.begin(), bytes.end());
    for (char16_t& unit : units)
      if (unit >= 0xFF80 && Below(3) == 0) unit = static_cast<char16_t>(0xD700 + Below(0x1200));
    std::string file = Utf16File(units);
    if (Below(8) == 0) file += 'x';
    return file;
  }

  std::u16string Name() {
    static const std::u16string kNames[] = {u"a",      u"b",      u"new",
                                            u"\u00FC", u"\u0416", u"\u00C3\u00BC"};
    return kNames[Below(6)];
  }

  std::uint32_t Below(std::uint32_t end) { return static_cast<std::uint32_t>(random_()) % end; }

 private:
  template <std::size_t kCount>
  std::string Pick(const std::string (&values)[kCount]) {
    return values[Below(kCount)];
  }
  template <std::size_t kCount>
  std::string Pick(const char* const (&values)[kCount]) {
    return values[Below(kCount)];
  }

  static inline const std::string kStarts[] = {"[",   "[a", "[b",       "A=1",
                                               " [a", "",   "\xC3\xBC", "\xFC"};
  static inline const std::string kPieces[] = {"\xC3\xBC", "\xFC", "\xDF\x65", "x", "\0"s,
                                               "\r",       "[a",   "\xD0\x96", "\""};
  static inline const std::string kEnds[] = {"\n", "\n", "\r\n", "\n\n", "", "\r\r\n", "\x1A\n"};

  std::mt19937 random_;
};

TEST_F(SchemaIniBytesTest, WhateverTheFileTheOtherSectionsReadAsBefore) {
  int written = 0;
  int refused = 0;
  for (std::uint32_t seed = 0; seed < 400; ++seed) {
    SCOPED_TRACE(seed);
    RandomIni random(seed);
    constexpr UINT kPages[] = {1252, 65001, 936};
    ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(kPages[seed % 3]));
    const std::string before = random.Make();
    SetText(before);
    const std::u16string name = random.Name();
    const std::u16string column = random.Name();
    if (!Write(name, column)) {
      ++refused;
      ASSERT_EQ(Text(), before);
      continue;
    }
    ++written;
    const std::string after = Text();
    std::vector<SectionRead> old = SectionsOf(before);
    std::vector<SectionRead> now = SectionsOf(after);
    const std::u16string header = u"[" + name + u"]";
    const auto isNamed = [&](const SectionRead& section) {
      return section.first == header || (name == u"\u00FC" && section.first == u"[\u00DC]");
    };
    const auto found = std::find_if(now.begin(), now.end(), isNamed);
    ASSERT_NE(found, now.end());
    ASSERT_EQ(found->second, SectionLines{u"Col1=" + column + u" Text"});
    // Within a section a "[" begins what looks like one to the reader, and goes with its line.
    const auto holdsBracket = [](const std::u16string& text) {
      return text.find(u'[') != std::u16string::npos;
    };
    if (std::any_of(old.begin(), old.end(), [&](const SectionRead& section) {
          return isNamed(section) &&
                 std::any_of(section.second.begin(), section.second.end(), holdsBracket);
        }))
      continue;
    std::erase_if(old, isNamed);
    std::erase_if(now, isNamed);
    ASSERT_EQ(old.size(), now.size());
    for (std::size_t i = 0; i < old.size(); ++i) {
      ASSERT_EQ(ToUtf8(old[i].first), ToUtf8(now[i].first));
      ASSERT_EQ(old[i].second, now[i].second);
    }
  }
  EXPECT_GT(written, 50);
  EXPECT_GT(refused, 50);
}

}  // namespace
}  // namespace TextFile
