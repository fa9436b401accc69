#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "reading/OpenTextDataset.h"
#include "schema/RowWriter.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

using quenra::QUENRALocale;
using quenra::Variant;
using quenra::test::ToUtf8;
using testing::ElementsAre;
using testing::IsEmpty;

#ifdef _WIN32
constexpr std::string_view kEnd = "\r\n";
#else
constexpr std::string_view kEnd = "\n";
#endif

Variant Text(std::u16string_view text) { return Variant(text); }
Variant Real(double value) { return Variant(value); }
Variant Whole(LONG value) { return Variant(value); }
Variant Null() {
  Variant value;
  value.Receive()->vt = VT_NULL;
  return value;
}
Variant Date(double date) {
  Variant value;
  VARIANT* const raw = value.Receive();
  raw->vt = VT_DATE;
  raw->date = date;
  return value;
}
Variant Stamp(double date, SHORT offset) {
  quenra::ComPtr<quenra::HostTimestampOffset> stamp;
  EXPECT_EQ(quenra::CreateComponentInstance(quenra::CLSID_HostTimestampOffset, stamp.Receive()),
            S_OK);
  stamp->SetValue(date, offset);
  Variant value;
  VARIANT* const raw = value.Receive();
  raw->vt = VT_UNKNOWN;
  raw->punkVal = stamp.Detach();
  return value;
}

constexpr double kNoonOf5January2020 = 43835.5;

// A row of values that keeps them.
class Row {
 public:
  template <class... Values>
  explicit Row(Values... values) {
    (kept_.push_back(std::move(values)), ...);
    for (const Variant& value : kept_) views_.push_back(value.Get());
  }
  std::span<const VARIANT> View() const { return views_; }

 private:
  std::vector<Variant> kept_;
  std::vector<VARIANT> views_;
};

class RowWriterTest : public testing::Test {
 protected:
  void SetUp() override {
    QUENRALocale::SetLocale(u"en-US");
    quenra::EventLog::SetSink([this](const quenra::EventLogRecord& record) {
      if (record.kind == quenra::EventLogRecord::Kind::kMessage)
        messages_.push_back(ToUtf8(record.text));
    });
  }
  void TearDown() override {
    quenra::EventLog::SetSink({});
    QUENRALocale::ResetLocale();
  }

  // A table with the section's lines and the file's bytes.
  TextDatasetDescription Table(std::string_view section, std::string_view bytes,
                               const OpenOptions& options = {}) {
    if (!section.empty()) folder_.Write(u"schema.ini", "[t.csv]\n" + std::string(section) + "\n");
    folder_.Write(u"t.csv", bytes);
    TextDatasetDescription table = DescribeFile(folder_.Path(), u"t.csv");
    auto status = OpenDatasetStatus::kScanFailed;
    EXPECT_TRUE(OpenTextDataset(table, options, status)) << static_cast<int>(status);
    return table;
  }

  // Everything behind `before` once the rows have been added.
  template <class... Rows>
  std::string Added(const TextDatasetDescription& table, const Rows&... rows) {
    const std::string before = folder_.Read(u"t.csv");
    RowWriter writer(table);
    EXPECT_TRUE(writer.Open()) << ToUtf8(writer.failure().text);
    EXPECT_TRUE((writer.Write(rows.View()) && ...));
    EXPECT_TRUE(writer.Close());
    const std::string after = folder_.Read(u"t.csv");
    EXPECT_TRUE(after.starts_with(before));
    return after.substr(before.size());
  }

  // One row of a table with the given section, without its line end.
  template <class... Values>
  std::string Line(std::string_view section, Values... values) {
    const std::string added =
        Added(Table(std::string(section) + "\nColNameHeader=False", "\xEF\xBB\xBF"),
              Row(std::move(values)...));
    EXPECT_TRUE(added.ends_with(kEnd)) << added;
    return added.substr(0, added.size() - kEnd.size());
  }

  quenra::test::TemporaryFolder folder_;
  std::vector<std::string> messages_;
};

// ---------------------------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------------------------

constexpr std::string_view kTwoTexts = "Format=CSVDelimited\nCol1=A Text\nCol2=B Text";

TEST_F(RowWriterTest, ValuesStandBetweenDelimitersAndNullsAreNothing) {
  EXPECT_EQ(Line(kTwoTexts, Text(u"a"), Text(u"b")), "a,b");
  EXPECT_EQ(Line(kTwoTexts, Null(), Variant()), ",");
  EXPECT_EQ(Line(kTwoTexts, Text(u""), Text(u"b")), ",b");
  EXPECT_EQ(Line("Format=TabDelimited\nCol1=A Text\nCol2=B Text", Text(u"a"), Text(u"b")), "a\tb");
  EXPECT_EQ(Line("Format=Delimited(\xE6\x9C\x88)\nCol1=A Text\nCol2=B Text", Text(u"a"),
                 Text(u"x\u6708y")),
            "a\xE6\x9C\x88\"x\xE6\x9C\x88y\"");
}

TEST_F(RowWriterTest, MissingValuesAreNullAndExtraOnesAreDropped) {
  EXPECT_EQ(Line(kTwoTexts, Text(u"a")), "a,");
  EXPECT_EQ(Line(kTwoTexts, Text(u"a"), Text(u"b"), Text(u"c")), "a,b");
  EXPECT_EQ(Line(kTwoTexts), ",");
}

struct TextCase {
  std::u16string_view text;
  std::string_view written;
};

constexpr TextCase kTextCases[] = {
    {u"plain", "plain"},
    {u"a,b", "\"a,b\""},
    {u"a\nb", "\"a\nb\""},
    {u"a\rb", "\"a\rb\""},
    {u"say \"hi\"", "say \"\"hi\"\""},
    {u"\"hi\" he said", "\"\"\"hi\"\" he said\""},
    {u" \t\"hi\"", "\" \t\"\"hi\"\"\""},
    {u"\"", "\"\"\"\""},
    {u"a,\"b\"", "\"a,\"\"b\"\"\""},
    {u" blanks kept ", " blanks kept "},
    {u"it's; fine|", "it's; fine|"},
    {u"\U0001F600\u00E9", "\xF0\x9F\x98\x80\xC3\xA9"},
    {u"a\x1A"
     u"b",
     "ab"},
    {u"\x1A\"x", "\"\"\"x\""},
};

TEST_F(RowWriterTest, TextsAreQuotedWhereTheyWouldNotBeReadOtherwise) {
  for (const TextCase& c : kTextCases)
    EXPECT_EQ(Line(kTwoTexts, Text(c.text), Text(u"x")), std::string(c.written) + ",x");
  EXPECT_EQ(Line(kTwoTexts, Text(std::u16string_view(u"a\0b", 3)), Text(u"x")), "ab,x");
  EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(RowWriterTest, TheTablesTextDelimiterIsTheQuote) {
  const std::string section = std::string(kTwoTexts) + "\nTextDelimiter='";
  EXPECT_EQ(Line(section, Text(u"a,b"), Text(u"say \"hi\"")), "'a,b',say \"hi\"");
  EXPECT_EQ(Line(section, Text(u"it's"), Text(u"'x'")), "it''s,'''x'''");
}

TEST_F(RowWriterTest, WithoutATextDelimiterBlanksStandForWhatCannotBeQuoted) {
  const std::string section = std::string(kTwoTexts) + "\nTextDelimiter=NONE";
  EXPECT_EQ(Line(section, Text(u"a,b"), Text(u"c\r\nd\"e\"")), "a b,c  d\"e\"");
  EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(RowWriterTest, WithoutATextDelimiterANumberThatHoldsTheDelimiterIsLeftOut) {
  EXPECT_EQ(Line("Format=CSVDelimited\nCol1=A Double\nCol2=B Long\nDecimalSymbol=,\n"
                 "TextDelimiter=NONE",
                 Real(1.5), Whole(7)),
            ",7");
  EXPECT_THAT(messages_, ElementsAre("In file t.csv, a value of field A cannot be written as the "
                                     "field's type. It is left blank."));
}

TEST_F(RowWriterTest, WidthsCutInCodeUnitsAndNeverThroughAPair) {
  const std::string_view section = "Format=CSVDelimited\nCol1=A Text Width 3\nCol2=B Text Width 2";
  EXPECT_EQ(Line(section, Text(u"abcdef"), Text(u"a\U0001F600")), "abc,a");
  EXPECT_EQ(Line(section, Text(u"a\U0001F600z"), Text(u"\U0001F600z")),
            "a\xF0\x9F\x98\x80,\xF0\x9F\x98\x80");
  // What is cut off needs no quotes, and quotes that double do not count.
  EXPECT_EQ(Line(section, Text(u"abc,"), Text(u"\"\"\"")), "abc,\"\"\"\"\"\"");
}

TEST_F(RowWriterTest, WithoutAWidthTextsHave8000Units) {
  const std::u16string longText(8001, u'x');
  EXPECT_EQ(Line(kTwoTexts, Text(longText), Null()), std::string(8000, 'x') + ",");
  EXPECT_EQ(Line("Format=CSVDelimited\nCol1=A Text Width 0\nCol2=B Text Width -5", Text(u"abc"),
                 Text(u"def")),
            "abc,def");
}

TEST_F(RowWriterTest, NumbersFollowTheTablesFormat) {
  const std::string columns =
      "Format=CSVDelimited\nCol1=A Short\nCol2=B Long\nCol3=C LongLong\nCol4=D Single\n"
      "Col5=E Double";
  const auto line = [&](std::string_view more) {
    return Line(columns + std::string(more), Whole(-7), Whole(1234567), Whole(5), Real(1.5),
                Real(2));
  };
  EXPECT_EQ(line(""), "-7,1234567,5,1.5000000,2.000000000000000");
  EXPECT_EQ(line("\nNumberDigits=2"), "-7,1234567,5,1.50,2.00");
  EXPECT_EQ(line("\nNumberDigits=1\nDecimalSymbol=,"), "-7,1234567,5,\"1,5\",\"2,0\"");
  QUENRALocale::SetLocale(u"de-DE");
  EXPECT_EQ(line("\nNumberDigits=1"), "-7,1234567,5,\"1,5\",\"2,0\"");
}

TEST_F(RowWriterTest, ValuesOfOtherTypesAreConvertedOrLeftBlank) {
  const std::string_view section =
      "Format=CSVDelimited\nCol1=A Short\nCol2=B Double\nCol3=C Text\nCol4=D Date yyyy-MM-dd";
  EXPECT_EQ(Line(section, Text(u"12"), Whole(3), Real(1.5), Text(u"2020-01-05")),
            "12,3.000000000000000,1.5,2020-01-05");
  EXPECT_THAT(messages_, IsEmpty());
  EXPECT_EQ(Line(section, Whole(40000), Text(u"abc"), Text(u"ok"), Text(u"noon")), ",,ok,");
  EXPECT_EQ(messages_.size(), 3u);
  EXPECT_EQ(messages_.front(),
            "In file t.csv, a value of field A cannot be written as the field's type. It is left "
            "blank.");
}

TEST_F(RowWriterTest, ReferencesAreFollowed) {
  LONG number = 42;
  VARIANT byReference;
  ::VariantInit(&byReference);
  byReference.vt = VT_I4 | VT_BYREF;
  byReference.plVal = &number;
  VARIANT null;
  ::VariantInit(&null);
  null.vt = VT_NULL;
  VARIANT reference;
  ::VariantInit(&reference);
  reference.vt = VT_VARIANT | VT_BYREF;
  reference.pvarVal = &null;
  const VARIANT values[] = {byReference, reference};
  const auto table =
      Table("Format=CSVDelimited\nCol1=A Long\nCol2=B Text\nColNameHeader=False", "\xEF\xBB\xBF");
  RowWriter writer(table);
  ASSERT_TRUE(writer.Open() && writer.Write(values) && writer.Close());
  EXPECT_EQ(folder_.Read(u"t.csv"),
            "\xEF\xBB\xBF"
            "42," +
                std::string(kEnd));
}

// ---------------------------------------------------------------------------------------------
// Dates
// ---------------------------------------------------------------------------------------------

TEST_F(RowWriterTest, DatesTakeTheirOwnPatternElseTheTables) {
  EXPECT_EQ(Line("Format=CSVDelimited\nCol1=A Date dd.MM.yyyy HH:mm\nCol2=B Date\n"
                 "DateTimeFormat=yyyy/MM/dd H:mm:ss",
                 Date(kNoonOf5January2020), Date(kNoonOf5January2020)),
            "05.01.2020 12:00,2020/01/05 12:00:00");
  EXPECT_EQ(
      Line("Format=CSVDelimited\nCol1=A Date\nCol2=B Date", Date(kNoonOf5January2020), Date(-1.25)),
      "1/5/2020 12:00:00,12/29/1899 6:00:00");
}

TEST_F(RowWriterTest, DatesStandInTheOrderThatTheColumnIsReadIn) {
  const std::string_view section = "Format=CSVDelimited\nColNameHeader=False\n";
  const Row row(Date(43832));  // 2 January 2020
  // The day stands in front in the rows that are there, whatever locale or section say.
  EXPECT_EQ(Added(Table(section, "13.02.2020\n"), row), "02.01.2020" + std::string(kEnd));
  const std::string pattern = std::string(section) + "DateTimeFormat=MM/dd/yyyy HH:mm\n";
  EXPECT_EQ(Added(Table(pattern, "13.02.2020\n"), row), "02.01.2020" + std::string(kEnd));
  EXPECT_EQ(Added(Table(pattern, "13.02.2020 10:30\n"), row),
            "02.01.2020 00:00" + std::string(kEnd));
  EXPECT_EQ(Added(Table(pattern, "01.02.2020\n"), row), "01/02/2020" + std::string(kEnd));
}

TEST_F(RowWriterTest, DaysAndTimesTakeTheirPartOfTheTablesPattern) {
  TextDatasetDescription table = Table(
      "Format=CSVDelimited\nColNameHeader=False\nCol1=A Date\nCol2=B Date\n"
      "DateTimeFormat=d.M.yyyy HH:mm",
      "\xEF\xBB\xBF");
  table.fields[0].type = FieldType::kDateOnly;
  table.fields[1].type = FieldType::kTimeOnly;
  const Row row(Date(kNoonOf5January2020), Date(kNoonOf5January2020));
  EXPECT_EQ(Added(table, row), "5.1.2020,12:00" + std::string(kEnd));
  table.options.dateTimeFormat = u"d.M.yyyy";
  EXPECT_EQ(Added(table, row), "5.1.2020,12:00:00" + std::string(kEnd));
}

TEST_F(RowWriterTest, TimestampsHaveTheFormThatIsReadAsSuch) {
  TextDatasetDescription table =
      Table("Format=CSVDelimited\nColNameHeader=False\nCol1=A Date\nCol2=B Date dd.MM.yyyy",
            "\xEF\xBB\xBF");
  const auto row = [] {
    return Row(Stamp(kNoonOf5January2020, -210), Stamp(kNoonOf5January2020, 60));
  };
  EXPECT_EQ(Added(table, row()), "2020-01-05T12:00:00-03:30,05.01.2020" + std::string(kEnd));
  table.fields[0].type = FieldType::kTimestampOffset;
  EXPECT_EQ(Added(table, row()), "2020-01-05T12:00:00-03:30,05.01.2020" + std::string(kEnd));
  EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(RowWriterTest, DatesThatNoCalendarHasAreLeftBlank) {
  EXPECT_EQ(Line("Format=CSVDelimited\nCol1=A Date\nCol2=B Date", Date(1e9), Date(std::nan(""))),
            ",");
  EXPECT_EQ(messages_.size(), 2u);
}

TEST_F(RowWriterTest, AddedDatesStandInTheOrderOfTheOthers) {
  // No section: the pattern would be the locale's, month first.
  EXPECT_EQ(Added(Table("", "Id,Day\n1,2020-01-31\n2,2020-02-01\n"),
                  Row(Whole(3), Date(kNoonOf5January2020))),
            "3,2020-01-05" + std::string(kEnd));
  EXPECT_EQ(
      Added(Table("", "Id,Day\n1,31.01.2020 10:00\n"), Row(Whole(2), Date(kNoonOf5January2020))),
      "2,05.01.2020 12:00:00" + std::string(kEnd));
  EXPECT_EQ(Added(Table("", "Id,Day\n1,01/31/2020\n"), Row(Whole(2), Date(kNoonOf5January2020))),
            "2,1/5/2020" + std::string(kEnd));
}

// ---------------------------------------------------------------------------------------------
// Fixed length
// ---------------------------------------------------------------------------------------------

constexpr std::string_view kFixed =
    "Format=FixedLength\nCol1=A Text Width 4\nCol2=B Long Width 3\nCol3=C Double Width 6";

TEST_F(RowWriterTest, FixedLengthValuesArePaddedOnTheLeft) {
  const std::string header = "A   B  C     \n";
  const auto added = [&](auto... values) {
    const std::string bytes =
        Added(Table(std::string(kFixed) + "\nColNameHeader=True", header + "a   1  1.5   \n"),
              Row(std::move(values)...));
    return bytes.substr(0, bytes.size() - kEnd.size());
  };
  EXPECT_EQ(added(Text(u"ab"), Whole(7), Real(1.25)), "  ab  71.2500");
  EXPECT_EQ(added(Null(), Null(), Null()), std::string(13, ' '));
  EXPECT_EQ(added(Text(u"a\U0001F600"), Whole(123), Real(-1)),
            " a\xF0\x9F\x98\x80"
            "123-1.000");
  EXPECT_EQ(added(Text(u"abcdef"), Whole(7), Real(123456)), "abcd  7123456");
  EXPECT_EQ(added(Text(u"a\"\nb"), Whole(7), Real(0)), "a\" b  70.0000");
  EXPECT_THAT(messages_, IsEmpty());
  EXPECT_EQ(added(Text(u"x"), Whole(1234), Real(1234567)), "   x         ");
  EXPECT_EQ(messages_.size(), 2u);
}

TEST_F(RowWriterTest, FixedLengthDatesLoseMidnightOrAreLeftBlank) {
  const TextDatasetDescription table = Table(
      "Format=FixedLength\nColNameHeader=True\nCol1=A Long Width 3\n"
      "Col2=D Date Width 10\nCol3=B Text Width 3",
      "  A         D  B\n");
  EXPECT_EQ(Added(table, Row(Whole(1), Date(kNoonOf5January2020), Text(u"xyz"))),
            "  1          xyz" + std::string(kEnd));
  EXPECT_EQ(Added(table, Row(Whole(1), Date(43835), Text(u"xyz"))),
            "  1  1/5/2020xyz" + std::string(kEnd));
  EXPECT_THAT(messages_,
              ElementsAre("In file t.csv, a value of field D cannot be written as the field's "
                          "type. It is left blank."));
}

// ---------------------------------------------------------------------------------------------
// Files
// ---------------------------------------------------------------------------------------------

TEST_F(RowWriterTest, ASingleColumnsNullIsABlank) {
  EXPECT_EQ(Line("Format=CSVDelimited\nCol1=A Text", Null()), " ");
  EXPECT_EQ(Line("Format=CSVDelimited\nCol1=A Text", Text(u"")), " ");
  EXPECT_EQ(Line("Format=CSVDelimited\nCol1=A Long", Whole(1)), "1");
}

TEST_F(RowWriterTest, ALastLineWithoutAnEndIsEndedFirst) {
  const Row row(Whole(2), Text(u"b"));
  EXPECT_EQ(Added(Table("", "Id,Name\n1,a"), row), std::string(kEnd) + "2,b" + std::string(kEnd));
  EXPECT_EQ(Added(Table("", "Id,Name\r\n1,a\r\n"), row), "2,b" + std::string(kEnd));
  EXPECT_EQ(Added(Table("", "Id,Name\n1,a\n"), row), "2,b" + std::string(kEnd));
}

TEST_F(RowWriterTest, NothingIsAddedWithoutRows) {
  EXPECT_EQ(Added(Table("", "Id,Name\n1,a\n")), "");
  EXPECT_EQ(Added(Table(std::string(kTwoTexts) + "\nColNameHeader=False", "\xEF\xBB\xBF")), "");
}

TEST_F(RowWriterTest, ACarriageReturnTableGetsCarriageReturns) {
  EXPECT_EQ(Added(Table("", "Id,Name\r1,a\r2,b\r"), Row(Whole(3), Text(u"c"))), "3,c\r");
  // With a line feed the file would be read as one of line feeds.
  const TextDatasetDescription table = Table("", "Id,Name\r1,a\r2,b\r");
  EXPECT_EQ(Added(table, Row(Whole(3), Text(u"c\nd"))), "3,\"c\rd\"\r");
  TextDatasetDescription opened = DescribeFile(folder_.Path(), u"t.csv");
  auto status = OpenDatasetStatus::kScanFailed;
  ASSERT_TRUE(OpenTextDataset(opened, {}, status));
  EXPECT_EQ(opened.fields.size(), 2U);
  EXPECT_EQ(opened.fields[0].name, u"Id");
}

TEST_F(RowWriterTest, RowsGoBeforeATextEndByte) {
  const auto table = Table("", "Id,Name\n1,a\n\x1A\x1A");
  RowWriter writer(table);
  ASSERT_TRUE(writer.Open() && writer.Write(Row(Whole(2), Text(u"b")).View()) && writer.Close());
  EXPECT_EQ(folder_.Read(u"t.csv"), "Id,Name\n1,a\n2,b" + std::string(kEnd));
}

std::string Utf16(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

TEST_F(RowWriterTest, Utf16TablesStayUtf16) {
  // The last unit's low byte is that of a line feed.
  const auto table = Table("", Utf16(u"\uFEFFId,Name\n1,\u010A"));
  const std::u16string end(kEnd.begin(), kEnd.end());
  EXPECT_EQ(Added(table, Row(Whole(2), Text(u"\U0001F600"))), Utf16(end + u"2,\U0001F600" + end));
  EXPECT_EQ(Added(table, Row(Whole(3), Text(u"x"))), Utf16(u"3,x" + end));
}

TEST_F(RowWriterTest, EncodingsThatAreNotReadGetNoRows) {
  auto table = Table(std::string(kTwoTexts) + "\nColNameHeader=False", "\xEF\xBB\xBF");
  folder_.Write(u"t.csv", std::string_view("\xFE\xFF\0a", 4));
  RowWriter writer(table);
  EXPECT_FALSE(writer.Open());
  EXPECT_EQ(ToUtf8(writer.failure().text),
            ToUtf8(table.path) + ": rows cannot be added to a file in this encoding");
  EXPECT_EQ(folder_.Read(u"t.csv"), std::string("\xFE\xFF\0a", 4));
}

struct Refused {
  std::string_view section;
  std::string_view bytes;
  std::string_view reason;
};

constexpr Refused kRefused[] = {
    {"", "Id,Name\n1,\"a\n", "the last row has a quote that is not closed"},
    {"",
     "Id,Name\n1,a\n\x1A"
     "2,b\n",
     "a byte 1A ends the text within the file"},
    {"", "", "the file is empty, and its first row would be read as the names"},
    {"", "\xEF\xBB\xBF", "the file is empty, and its first row would be read as the names"},
    {"", "\r\n\n", "the file is empty, and its first row would be read as the names"},
    {"ColNameHeader=True\nCol1=A Text", "", "the file is empty, and its first row would be read"},
    {"Col1=A Text", "", "the file is empty, and its first row would be read"},
};

TEST_F(RowWriterTest, RowsThatNobodyWouldReadAreRefused) {
  for (const Refused& c : kRefused) {
    SCOPED_TRACE(c.reason);
    folder_.Write(u"schema.ini", "");
    RowWriter writer(Table(c.section, c.bytes));
    EXPECT_FALSE(writer.Open());
    EXPECT_TRUE(ToUtf8(writer.failure().text)
                    .starts_with(ToUtf8(folder_.Path(u"t.csv")) + ": " + std::string(c.reason)))
        << ToUtf8(writer.failure().text);
    EXPECT_EQ(folder_.Read(u"t.csv"), c.bytes);
  }
}

TEST_F(RowWriterTest, Utf16FilesEndInWholeCharacters) {
  const auto table = Table("", Utf16(u"\uFEFFId,Name\n1,a\n"));
  folder_.Append(u"t.csv", "x");
  const std::string before = folder_.Read(u"t.csv");
  RowWriter writer(table);
  EXPECT_FALSE(writer.Open());
  EXPECT_NE(ToUtf8(writer.failure().text).find("half a character"), std::string::npos);
  EXPECT_EQ(folder_.Read(u"t.csv"), before);
}

TEST_F(RowWriterTest, TheEndIsLeftAloneUntilThereIsARow) {
  const auto table = Table("", "Id,Name\n1,a\x1A");
  {
    RowWriter writer(table);
    ASSERT_TRUE(writer.Open() && writer.Close());
  }
  EXPECT_EQ(folder_.Read(u"t.csv"), "Id,Name\n1,a\x1A");
}

// What has been added by then is looked at again.
TEST_F(RowWriterTest, WhatAnotherProgramAddsMeanwhileCounts) {
  const Row row(Whole(2), Text(u"b"));
  const auto table = Table("", "Id,Name\n1,a\n");
  {
    RowWriter writer(table);
    ASSERT_TRUE(writer.Open() && writer.Write(row.View()));
    folder_.Append(u"t.csv", "3,c");
    EXPECT_TRUE(writer.Close());
  }
  const std::string end(kEnd);
  EXPECT_EQ(folder_.Read(u"t.csv"), "Id,Name\n1,a\n3,c" + end + "2,b" + end);
  for (const std::string_view added : {"4,\"d",
                                       "4,d\x1A"
                                       "5,e"}) {
    folder_.Write(u"t.csv", "Id,Name\n1,a\n");
    RowWriter writer(table);
    ASSERT_TRUE(writer.Open() && writer.Write(row.View()));
    folder_.Append(u"t.csv", added);
    EXPECT_FALSE(writer.Close());
    EXPECT_NE(writer.failure().text, u"");
    EXPECT_EQ(folder_.Read(u"t.csv"), "Id,Name\n1,a\n" + std::string(added));
  }
}

TEST_F(RowWriterTest, TheFileOfTheSectionsIsNoTable) {
  const std::string ini = "[t.csv]\nColNameHeader=False\n";
  const auto table = Table("ColNameHeader=False", "1,a\n");
  for (const char16_t* const name : {u"schema.ini", u"SCHEMA.INI", u"link.csv"}) {
    SCOPED_TRACE(ToUtf8(name));
    if (name == std::u16string_view(u"link.csv"))
      boost::filesystem::create_hard_link(folder_.Native(u"schema.ini"), folder_.Native(name));
    if (!folder_.Exists(name)) continue;
    TextDatasetDescription other = table;
    other.name = name;
    other.path = folder_.Path(name);
    RowWriter writer(other);
    EXPECT_FALSE(writer.Open());
    EXPECT_EQ(ToUtf8(writer.failure().text), ToUtf8(other.path) + ": the file is no table");
    EXPECT_EQ(folder_.Read(u"schema.ini"), ini);
  }
}

TEST_F(RowWriterTest, AFileThatIsGoneIsNotMadeAnew) {
  const auto table = Table("", "Id,Name\n1,a\n");
  folder_.Remove(u"t.csv");
  RowWriter writer(table);
  EXPECT_FALSE(writer.Open());
  EXPECT_NE(ToUtf8(writer.failure().text).find("t.csv: "), std::string::npos);
  EXPECT_FALSE(folder_.Exists(u"t.csv"));
}

TEST_F(RowWriterTest, ManyRowsArriveInOrder) {
  const auto table = Table("", "Id,Name\n0,a\n");
  std::string expected = folder_.Read(u"t.csv");
  {
    RowWriter writer(table);
    ASSERT_TRUE(writer.Open());
    for (LONG i = 1; i <= 20000; ++i) {
      ASSERT_TRUE(writer.Write(Row(Whole(i), Text(u"name")).View()));
      expected += std::to_string(i) + ",name" + std::string(kEnd);
    }
    // The destructor writes what is left.
  }
  EXPECT_TRUE(folder_.Read(u"t.csv") == expected);
}

TEST_F(RowWriterTest, TwoWritersOfOneTableMixWholeRows) {
  const auto table = Table("", "Id,Name\n0,a\n");
  constexpr LONG kRows = 9000;
  {
    RowWriter first(table);
    RowWriter second(table);
    ASSERT_TRUE(first.Open() && second.Open());
    for (LONG i = 1; i <= kRows; ++i) {
      ASSERT_TRUE(first.Write(Row(Whole(i), Text(u"first one")).View()));
      ASSERT_TRUE(second.Write(Row(Whole(i), Text(u"second one")).View()));
    }
  }
  const std::string bytes = folder_.Read(u"t.csv");
  LONG firsts = 0;
  LONG seconds = 0;
  for (std::size_t at = 0;
       (at = bytes.find(",first one" + std::string(kEnd), at)) != std::string::npos; ++at)
    ++firsts;
  for (std::size_t at = 0;
       (at = bytes.find(",second one" + std::string(kEnd), at)) != std::string::npos; ++at)
    ++seconds;
  EXPECT_EQ(firsts, kRows);
  EXPECT_EQ(seconds, kRows);
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 2 + 2 * kRows);
}

TEST_F(RowWriterTest, CoordinateFieldsAreNoColumns) {
  const auto table = Table("", "Id,Place\n1,40.123N 74.123W\n2,41.5N 75.25W\n");
  ASSERT_EQ(table.fields.size(), 4u);
  EXPECT_EQ(Added(table, Row(Whole(3), Text(u"42.0N 76.0W"), Real(-76), Real(42))),
            "3,42.0N 76.0W" + std::string(kEnd));
}

}  // namespace
}  // namespace TextFile
