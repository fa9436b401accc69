#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "inference/TypeInference.h"
#include "support/OpenedTable.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

OpenOptions Version(std::uint32_t version) {
  OpenOptions options;
  options.fieldTypeVersion = version;
  return options;
}

OpenOptions WithTimes() {
  OpenOptions options;
  options.inferTimeOnlyFields = true;
  return options;
}

OpenOptions AsManyRowsAsNeeded() {
  OpenOptions options;
  options.readAsManyRowsAsNeeded = true;
  return options;
}

class TypeInferenceTest : public ::testing::Test {
 protected:
  // `section` is what stands below the file's header line in schema.ini; none when it is empty.
  OpenedTable Open(std::string_view bytes, std::string_view section = {},
                   const OpenOptions& options = {}) {
    return OpenAs("t.csv", bytes, section, options);
  }
  // The same with tabs between the fields, so that commas belong to them.
  OpenedTable OpenTabbed(std::string_view bytes, std::string_view section = {},
                         const OpenOptions& options = {}) {
    return OpenAs("t.tsv", bytes, section, options);
  }
  std::string Fields(std::string_view bytes, std::string_view section = {},
                     const OpenOptions& options = {}) {
    return Open(bytes, section, options).Fields();
  }

  // The type of a column with these values, beside a text column that does not matter.
  std::string TypeOf(const std::vector<std::string>& values, const OpenOptions& options = {}) {
    std::string bytes = "v\tt\n";
    for (const std::string& value : values) bytes += value + "\ta\n";
    std::string fields = OpenTabbed(bytes, {}, options).Fields();
    const std::string tail = " t:text";
    if (!fields.starts_with("v:") || !fields.ends_with(tail)) return fields;
    return fields.substr(2, fields.size() - 2 - tail.size());
  }

  // Whether inference reads the row (from 1) of a file of equal rows: a field too many is noticed
  // by every scan that meets it, as another column or, behind a header, by a failure.
  bool ReadsRow(std::string_view header, std::string_view row, int number,
                const std::string& section = {}, const OpenOptions& options = {}, int rows = 600) {
    std::string bytes(header);
    std::string plain(header);
    for (int i = 1; i <= rows; ++i) {
      bytes += std::string(row) + (i == number ? ",extra\n" : "\n");
      plain += std::string(row) + "\n";
    }
    const std::string format = "Format=CSVDelimited\n" + section;
    const std::string without = Fields(plain, format, options);
    EXPECT_NE(without, "not opened");
    return Fields(bytes, format, options) != without;
  }

  // The number of rows that inference reads; -1 when that is not `expected`.
  int RowsRead(int expected, std::string_view header, std::string_view row,
               const std::string& section = {}, const OpenOptions& options = {}) {
    return ReadsRow(header, row, expected, section, options) &&
                   !ReadsRow(header, row, expected + 1, section, options)
               ? expected
               : -1;
  }

  UserLocale locale_{u"en-US"};
  TemporaryFolder folder_;

 private:
  OpenedTable OpenAs(const std::string& name, std::string_view bytes, std::string_view section,
                     const OpenOptions& options) {
    folder_.Write(name, bytes);
    folder_.Write("schema.ini", section.empty() ? "" : "[" + name + "]\n" + std::string(section));
    return OpenedTable(folder_, std::u16string(name.begin(), name.end()), options);
  }
};

// ---------------------------------------------------------------------------------------------
// How many rows are read
// ---------------------------------------------------------------------------------------------

TEST_F(TypeInferenceTest, ColumnsOfWholeNumbersAreReadUpTo100Rows) {
  EXPECT_EQ(RowsRead(100, "a,b\n", "1,x"), 100);
  EXPECT_EQ(RowsRead(100, "", "1,x"), 100) << "without a header";
  EXPECT_EQ(RowsRead(100, "a,b\n", "3000000000,x"), 100) << "of 64 bits too";
}

TEST_F(TypeInferenceTest, SettledColumnsAreReadUpTo10RowsBehindAHeader) {
  EXPECT_EQ(RowsRead(10, "a,b\n", "x,y"), 10) << "text";
  EXPECT_EQ(RowsRead(10, "a,b\n", "1.5,y"), 10) << "floating-point numbers";
  EXPECT_EQ(RowsRead(10, "a,b\n", "2020-01-05,y"), 10) << "dates of one order";
  EXPECT_EQ(RowsRead(10, "a,b\n", "10:30,y", {}, WithTimes()), 10) << "times";
}

TEST_F(TypeInferenceTest, SettledColumnsWithoutAHeaderAreReadFromOneRow) {
  // No column is known when the scan starts, so none is undeclared.
  EXPECT_EQ(RowsRead(1, "", "1.5,y"), 1);
  EXPECT_EQ(RowsRead(1, "", "2020-01-05,y"), 1);
}

TEST_F(TypeInferenceTest, OpenColumnsAreReadUpTo100Rows) {
  EXPECT_EQ(RowsRead(100, "a,b\n", "x,"), 100) << "a column without a value";
  EXPECT_EQ(RowsRead(100, "a,b\n", "01/02/2020,x"), 100) << "a date of two orders";
  // A column that only a late row has.
  std::string bytes = "a,b,c\n";
  for (int i = 1; i <= 99; ++i) bytes += "x,y\n";
  EXPECT_EQ(Fields(bytes + "x,y,1\n"), "a:text b:text c:int");
  EXPECT_EQ(Fields(bytes + "x,y\nx,y,1\n"), "a:text b:text c:text");
}

TEST_F(TypeInferenceTest, DeclaredColumnsAreReadFromOneRow) {
  const std::string header = "ColNameHeader=True\n";
  EXPECT_EQ(RowsRead(1, "a,b\n", "x,y", header + "Col1=a Text\nCol2=b Text\n"), 1);
  EXPECT_EQ(RowsRead(1, "a,b\n", "1.5,y", header + "Col1=a Double\nCol2=b Text\n"), 1);
  EXPECT_EQ(RowsRead(10, "a,b\n", "x,y", header + "Col1=a Text\n"), 10) << "one is undeclared";
  EXPECT_EQ(RowsRead(10, "", "x,y", "ColNameHeader=False\nCol2=b Text\n"), 10)
      << "the gap before the second column";
  EXPECT_EQ(RowsRead(1, "", "1.5,y", "ColNameHeader=False\nCol1=a Double\n"), 1)
      << "the undeclared column is not known when the scan starts";
}

TEST_F(TypeInferenceTest, DeclaredColumnsCanKeepTheScanGoing) {
  const std::string header = "ColNameHeader=True\n";
  EXPECT_EQ(RowsRead(100, "a,b\n", "1,y", header + "Col1=a Long\nCol2=b Text\n"), 100)
      << "whole numbers";
  EXPECT_EQ(RowsRead(100, "a,b\n", "1,y", header + "Col1=a Short\nCol2=b Text\n"), 100)
      << "whole numbers of 16 bits";
  EXPECT_EQ(RowsRead(100, "a,b\n", "01/02/2020,y", header + "Col1=a Date\nCol2=b Text\n"), 100)
      << "a date of two orders";
  EXPECT_EQ(RowsRead(1, "a,b\n", "13/02/2020,y", header + "Col1=a Date\nCol2=b Text\n"), 1)
      << "a date of one order";
  EXPECT_EQ(RowsRead(1, "a,b\n", "01/02/2020,y", header + "Col1=a Date dd/MM/yyyy\nCol2=b Text\n"),
            1)
      << "the orders of a date with a pattern are not tracked";
}

TEST_F(TypeInferenceTest, MaxScanRowsReplacesTheUpperLimit) {
  EXPECT_EQ(RowsRead(5, "", "1,x", "MaxScanRows=5\n"), 5);
  EXPECT_EQ(RowsRead(10, "a,b\n", "1,x", "MaxScanRows=5\n"), 10) << "the lower limit counts";
  EXPECT_EQ(RowsRead(200, "a,b\n", "1,x", "MaxScanRows=200\n"), 200);
  EXPECT_EQ(RowsRead(10, "a,b\n", "x,y", "MaxScanRows=200\n"), 10) << "settled before";
}

TEST_F(TypeInferenceTest, NoUpperLimitMeansTheWholeFile) {
  EXPECT_TRUE(ReadsRow("a,b\n", "1,x", 600, "MaxScanRows=0\n"));
  EXPECT_TRUE(ReadsRow("a,b\n", "1,x", 600, "", AsManyRowsAsNeeded()));
  EXPECT_TRUE(ReadsRow("a,b\n", "1,x", 600, "MaxScanRows=20\n", AsManyRowsAsNeeded()));
  EXPECT_EQ(RowsRead(10, "a,b\n", "x,y", "MaxScanRows=0\n"), 10) << "settled columns still stop it";
  EXPECT_EQ(RowsRead(10, "a,b\n", "x,y", "", AsManyRowsAsNeeded()), 10);
}

TEST_F(TypeInferenceTest, AShortFileIsReadWhole) {
  EXPECT_EQ(Fields("1,x\n2,x\n3,x\n4,x\n1.5,x\n"), "Field1:double Field2:text");
}

TEST_F(TypeInferenceTest, TheScanStopsWhenTheLastColumnSettles) {
  // Whole numbers up to row 80, which makes the column a Double; row 81 is not read.
  std::string bytes = "a,b\n";
  for (int i = 1; i <= 79; ++i) bytes += "7,x\n";
  EXPECT_EQ(Fields(bytes + "1.5,x\n7,x\n"), "a:double b:text");
  EXPECT_EQ(Fields(bytes + "1.5,x\nabc,x\n"), "a:double b:text");
  EXPECT_EQ(Fields(bytes + "7,x\nabc,x\n"), "a:text b:text");
  // A date column settles with the first day beyond 12.
  std::string dates = "a,b\n";
  for (int i = 1; i <= 29; ++i) dates += "01/02/2020,x\n";
  EXPECT_EQ(Fields(dates + "13/02/2020,x\nabc,x\n"), "a:date/dmy b:text");
  EXPECT_EQ(Fields(dates + "01/02/2020,x\nabc,x\n"), "a:text b:text");
}

// ---------------------------------------------------------------------------------------------
// Types
// ---------------------------------------------------------------------------------------------

TEST_F(TypeInferenceTest, OneValueGivesItsType) {
  EXPECT_EQ(TypeOf({"42"}), "int");
  EXPECT_EQ(TypeOf({"3000000000"}), "big");
  EXPECT_EQ(TypeOf({"1.5"}), "double");
  EXPECT_EQ(TypeOf({"4e2"}), "double");
  EXPECT_EQ(TypeOf({"abc"}), "text");
  EXPECT_EQ(TypeOf({"inf"}), "text");
  EXPECT_EQ(TypeOf({"   "}), "text") << "blanks are text";
  EXPECT_EQ(TypeOf({""}), "text") << "no value at all";
  EXPECT_EQ(TypeOf({"2020-01-05"}), "date/ymd");
  EXPECT_EQ(TypeOf({"2020-01-05 10:30"}), "datetime/ymd");
  EXPECT_EQ(TypeOf({"2020-01-05 10:30:15.5"}), "datetime/ymd.");
  EXPECT_EQ(TypeOf({"2020-01-05T10:30+02:00"}), "offset/ymd");
  EXPECT_EQ(TypeOf({"10:30"}), "text") << "times alone only where they are allowed";
  EXPECT_EQ(TypeOf({"10:30"}, WithTimes()), "time");
  EXPECT_EQ(TypeOf({"10:30:15.5"}, WithTimes()), "time.");
  EXPECT_EQ(TypeOf({"$5"}), "double") << "an amount in the locale's currency";
  EXPECT_EQ(TypeOf({"($1,234)"}), "double");
  EXPECT_EQ(TypeOf({"5 EUR"}), "text");
  EXPECT_EQ(TypeOf({"1.2.2020"}), "date/mdy") << "dates go before numbers; the locale's order";
}

TEST_F(TypeInferenceTest, BelowVersion320OnlyTheOldTypesAreFound) {
  const OpenOptions old = Version(kOldFieldTypeVersion);
  EXPECT_EQ(TypeOf({"42"}, old), "int");
  EXPECT_EQ(TypeOf({"3000000000"}, old), "double");
  EXPECT_EQ(TypeOf({"2020-01-05"}, old), "datetime/ymd");
  EXPECT_EQ(TypeOf({"2020-01-05", "2020-01-05 10:30"}, old), "datetime/ymd");
  EXPECT_EQ(TypeOf({"2020-01-05T10:30:00Z"}, old), "datetime/ymd");
  EXPECT_EQ(TypeOf({"2020-01-05T10:30:00Z"}), "text");
  EXPECT_EQ(TypeOf({"2020-01-05T10:30:00.5"}, old), "text");
  EXPECT_EQ(TypeOf({"2020-01-05T10:30+02:00"}, old), "text");
  OpenOptions times = WithTimes();
  times.fieldTypeVersion = kOldFieldTypeVersion;
  EXPECT_EQ(TypeOf({"10:30"}, times), "text");
  EXPECT_EQ(TypeOf({"3000000000"}, Version(kFirstVersionWithNewTypes)), "big");
  EXPECT_EQ(TypeOf({"2020-01-05"}, Version(kFirstVersionWithNewTypes)), "date/ymd");
}

TEST_F(TypeInferenceTest, ValuesOfTwoTypesMergeByTheTable) {
  struct Kind {
    const char* value;
    const char* type;
  };
  constexpr Kind kKinds[] = {{"7", "int"},
                             {"3000000000", "big"},
                             {"1.5", "double"},
                             {"abc", "text"},
                             {"2020-01-05", "date/ymd"},
                             {"2020-01-05 10:30", "datetime/ymd"},
                             {"2020-01-05 10:30+02:00", "offset/ymd"},
                             {"10:30", "time"},
                             {"", ""}};
  const auto rank = [](std::string_view type) {
    return type == "double" ? 3 : type == "big" ? 2 : type == "int" ? 1 : 0;
  };
  for (const Kind& first : kKinds) {
    for (const Kind& second : kKinds) {
      std::string expected;
      if (*first.type == '\0' && *second.type == '\0')
        expected = "text";  // NOLINT(bugprone-branch-clone): a rule of its own
      else if (*first.type == '\0')
        expected = second.type;
      else if (*second.type == '\0' || std::string_view(first.type) == second.type)
        expected = first.type;
      else if (rank(first.type) > 0 && rank(second.type) > 0)
        expected = rank(first.type) > rank(second.type) ? first.type : second.type;
      else
        expected = "text";
      EXPECT_EQ(TypeOf({first.value, second.value}, WithTimes()), expected)
          << first.value << " then " << second.value;
    }
  }
  EXPECT_EQ(TypeOf({"32767", "40000"}), "int") << "types of 16 bits are never inferred";
}

TEST_F(TypeInferenceTest, TextIsFinal) {
  EXPECT_EQ(TypeOf({"12", "abc", "12", "13"}), "text");
  EXPECT_EQ(TypeOf({"12", "2020-01-05"}), "text");
  EXPECT_EQ(TypeOf({"2020-01-05", "12", "2020-01-05"}), "text");
  EXPECT_EQ(TypeOf({"   ", "12"}), "text") << "blanks are text, and so the column is";
}

TEST_F(TypeInferenceTest, EmptyFieldsChangeNothing) {
  EXPECT_EQ(TypeOf({"", "12", "", "13"}), "int");
  EXPECT_EQ(Fields("a,b,c\n1,,\n2,,x\n"), "a:int b:text c:text");
}

TEST_F(TypeInferenceTest, AnEmptyCurrencySymbolMakesEveryAmountADouble) {
  EXPECT_EQ(Fields("a,b\n42,x\n", "CurrencySymbol=\n"), "a:double b:text");
  EXPECT_EQ(Fields("a,b\n42,x\n", "CurrencySymbol=EUR\n"), "a:int b:text");
  EXPECT_EQ(Fields("a,b\n42 EUR,x\n", "CurrencySymbol=EUR\n"), "a:double b:text");
  EXPECT_EQ(Fields("a,b\n$42,x\n", "CurrencySymbol=EUR\n"), "a:text b:text");
  EXPECT_EQ(Fields("a,b\n2020-01-05,x\n", "CurrencySymbol=\n"), "a:date/ymd b:text")
      << "dates go first";
}

// ---------------------------------------------------------------------------------------------
// Dates
// ---------------------------------------------------------------------------------------------

TEST_F(TypeInferenceTest, DateOrdersNarrow) {
  EXPECT_EQ(TypeOf({"01/02/2020", "13/02/2020"}), "date/dmy");
  EXPECT_EQ(TypeOf({"01/02/2020", "02/13/2020"}), "date/mdy");
  EXPECT_EQ(TypeOf({"01/02/03", "32/02/03"}), "date/ymd");
  EXPECT_EQ(TypeOf({"13/02/2020", "01/02/2020"}), "date/dmy") << "one order stays";
  EXPECT_EQ(TypeOf({"01/02/2020 10:30", "13/02/2020 10:30"}), "datetime/dmy");
  EXPECT_EQ(TypeOf({"01/02/2020 10:30+01:00", "13/02/2020 10:30+01:00"}), "offset/dmy");
}

TEST_F(TypeInferenceTest, AnEmptySetOfOrdersIsSeededAfresh) {
  EXPECT_EQ(TypeOf({"13/02/2020", "02/13/2020"}), "date/mdy") << "none is left: the locale's";
  EXPECT_EQ(TypeOf({"13/02/2020", "2020/02/13", "2020/02/13"}), "date/ymd");
  EXPECT_EQ(TypeOf({"02/13/2020", "2020/02/13", "13/02/2020"}), "date/dmy");
  EXPECT_EQ(TypeOf({"02/13/2020", "2020/02/13", "01/02/2020"}), "date/mdy")
      << "two orders once more: the locale's";
}

TEST_F(TypeInferenceTest, OpenOrdersAreTheLocales) {
  const std::string bytes = "a,b\n01/02/2020,x\n";
  const std::string section = "Format=CSVDelimited\n";
  EXPECT_EQ(Fields(bytes, section), "a:date/mdy b:text");
  {
    const UserLocale british(u"en-GB");
    EXPECT_EQ(Fields(bytes, section), "a:date/dmy b:text");
  }
  {
    const UserLocale german(u"de-DE");
    EXPECT_EQ(Fields(bytes, section), "a:date/dmy b:text");
  }
}

TEST_F(TypeInferenceTest, AnOrderThatIsRuledOutIsNotTakenFromTheLocale) {
  for (const std::u16string_view locale : {u"sv-SE", u"ja-JP", u"zh-CN", u"hu-HU"}) {
    const UserLocale yearFirst(locale);
    EXPECT_EQ(Fields("a,b\n01/02/2020,x\n", "Format=CSVDelimited\n"), "a:date/dmy b:text")
        << "a year of four digits cannot stand in front";
    EXPECT_EQ(Fields("a,b\n01/02/03,x\n", "Format=CSVDelimited\n"), "a:date/ymd b:text");
  }
  // Day or year first; the locale has the month first.
  EXPECT_EQ(TypeOf({"15.1.20"}), "date/dmy");
  EXPECT_EQ(TypeOf({"15.1.20 10:30"}), "datetime/dmy");
  EXPECT_EQ(TypeOf({"15.1.20", "32.1.20"}), "date/ymd");
}

TEST_F(TypeInferenceTest, TheSectionsDateTimeFormatGoesBeforeTheLocale) {
  const auto opened = [&](const std::string& values, const std::string& format) {
    return Fields("a,b\n" + values, "Format=CSVDelimited\n" + format);
  };
  const std::string open = "01/02/03,x\n";
  EXPECT_EQ(opened(open, "DateTimeFormat=dd.MM.yyyy\n"), "a:date/dmy b:text");
  EXPECT_EQ(opened(open, "DateTimeFormat=Dd.MM.yyyy\n"), "a:date/dmy b:text");
  EXPECT_EQ(opened(open, "DateTimeFormat=yyyy-MM-dd HH:mm\n"), "a:date/ymd b:text");
  EXPECT_EQ(opened(open, "DateDateTimeFormat=dd.MM.yyyy\n"), "a:date/dmy b:text");
  EXPECT_EQ(opened(open, "DateTimeFormat=HH:mm dd.MM.yyyy\n"), "a:date/mdy b:text")
      << "no order in its first letter: the locale's";
  EXPECT_EQ(opened("01/02/2020,x\n", "DateTimeFormat=yyyy-MM-dd\n"), "a:date/mdy b:text")
      << "ruled out: the locale's";
  EXPECT_EQ(opened("13/02/2020,x\n", "DateTimeFormat=MM/dd/yyyy\n"), "a:date/dmy b:text")
      << "one order is left";
  EXPECT_EQ(opened("15.1.20,x\n", "DateTimeFormat=MM/dd/yyyy\n"), "a:date/dmy b:text");
  EXPECT_EQ(opened("15.1.20,x\n", "DateTimeFormat=yyyy-MM-dd\n"), "a:date/ymd b:text");

  const std::string declared = "ColNameHeader=True\nCol1=a Date\nDateTimeFormat=dd.MM.yyyy\n";
  EXPECT_EQ(opened("", declared), "a:datetime/dmy b:text") << "no date was seen";
  EXPECT_EQ(opened("01/02/2020,x\n", declared), "a:date/dmy b:text");
  EXPECT_EQ(opened("01/13/2020,x\n", declared), "a:date/mdy b:text");
  const UserLocale german(u"de-DE");
  EXPECT_EQ(opened(open, "DateTimeFormat=MM/dd/yyyy\n"), "a:date/mdy b:text");
  EXPECT_EQ(opened("15.1.20,x\n", "DateTimeFormat=MM/dd/yyyy\n"), "a:date/dmy b:text");
}

TEST_F(TypeInferenceTest, FractionsOfSecondsAreRemembered) {
  EXPECT_EQ(TypeOf({"2020-01-05 10:30:15.5", "2020-01-05 10:30"}), "datetime/ymd.");
  EXPECT_EQ(TypeOf({"2020-01-05 10:30", "2020-01-05 10:30:15.5"}), "datetime/ymd.");
  EXPECT_EQ(TypeOf({"10:30:15.5", "10:30"}, WithTimes()), "time.");
  EXPECT_EQ(TypeOf({"10:30", "10:30"}, WithTimes()), "time");
}

TEST_F(TypeInferenceTest, DateFieldsCarryTheFieldTypeVersion) {
  const std::string bytes = "a,b\n2020-01-05,x\n";
  EXPECT_EQ(Open(bytes).field(0).dateFormat.version, 340u);
  EXPECT_EQ(Open(bytes, {}, Version(310)).field(0).dateFormat.version, 310u);
  EXPECT_EQ(Open(bytes).field(0).dateFormat.type, FieldType::kDateOnly);
  EXPECT_EQ(Open(bytes, {}, Version(310)).field(0).dateFormat.type, FieldType::kDate);
}

TEST_F(TypeInferenceTest, DatesWithAnOffsetHaveAPatternOfTheirOwn) {
  EXPECT_EQ(Open("a,b\n2020-01-05 10:30+02:00,x\n").field(0).dateFormat.pattern,
            u"yyyy-MM-ddTHH:mm:ss");
  EXPECT_EQ(Open("a,b\n2020-01-05 10:30,x\n").field(0).dateFormat.pattern, u"");
}

TEST_F(TypeInferenceTest, DeclaredDatesTakeTheKindOfTheLastDate) {
  const std::string section = "ColNameHeader=True\nCol1=a Date\nCol2=b Text\n";
  const auto declared = [&](const std::string& values, const OpenOptions& options = {}) {
    return Fields("a,b\n" + values, section, options);
  };
  // Two orders keep the scan going.
  EXPECT_EQ(declared("01/02/2020,x\n"), "a:date/mdy b:text");
  EXPECT_EQ(declared("01/02/2020,x\n13/02/2020 10:30,x\n"), "a:datetime/dmy b:text");
  EXPECT_EQ(declared("01/02/2020,x\n13/02/2020 10:30+01:00,x\n"), "a:offset/dmy b:text");
  EXPECT_EQ(declared("01/02/2020 10:30,x\n13/02/2020,x\n"), "a:date/dmy b:text");
  EXPECT_EQ(declared("01/02/2020,x\nabc,x\n13/02/2020,x\n"), "a:date/dmy b:text")
      << "what is no date changes nothing";
  EXPECT_EQ(declared("abc,x\n"), "a:datetime/mdy b:text");
  EXPECT_EQ(declared("01/02/2020,x\n", Version(310)), "a:datetime/mdy b:text");
  EXPECT_EQ(declared("01/02/2020 10:30:15.5,x\n01/02/2020 10:30,x\n"), "a:datetime/mdy b:text")
      << "fractions are those of the last value";
  EXPECT_EQ(declared("01/02/2020 10:30,x\n01/02/2020 10:30:15.5,x\n"), "a:datetime/mdy. b:text");
}

TEST_F(TypeInferenceTest, DeclaredDatesWithAPatternStay) {
  const std::string header = "ColNameHeader=True\nCol2=b Text\n";
  const std::string rows = "a,b\n2020-01-05 10:30,x\n";
  EXPECT_EQ(Fields(rows, header + "Col1=a Date dd/MM/yyyy\n"), "a:date/dmy b:text");
  EXPECT_EQ(Fields(rows, header + "Col1=a Date MM/dd/yyyy HH:mm\n"), "a:datetime/mdy b:text");
  EXPECT_EQ(Fields(rows, header + "Col1=a Date HH:mm\n"), "a:time b:text");
  EXPECT_EQ(Open(rows, header + "Col1=a Date dd/MM/yyyy\n").field(0).dateFormat.pattern,
            u"dd/MM/yyyy");
}

// ---------------------------------------------------------------------------------------------
// Declared columns
// ---------------------------------------------------------------------------------------------

TEST_F(TypeInferenceTest, DeclaredColumnsKeepTypeNameAndWidth) {
  OpenedTable table =
      Open("x,y,z\nabc,def,ghi\n", "ColNameHeader=True\nCol1=a Short Width 6\nCol2=b Single\n");
  EXPECT_EQ(table.Fields(), "a:small b:single z:text");
  EXPECT_EQ(table.field(0).width, 6);
  EXPECT_TRUE(table.field(0).hasWidth);
  EXPECT_EQ(table.field(1).width, 8000);
  EXPECT_EQ(table.field(2).width, 8000);
  EXPECT_FALSE(table.field(2).hasWidth);
}

// What is found of a table in whose schema.ini a column far behind the others is declared must not
// depend on how far it is, though columns that no row has are not held from some number on.
TEST_F(TypeInferenceTest, AColumnDeclaredFarBehindTheOthersChangesNothingElse) {
  struct {
    const char* why;
    const char* bytes;
    const char* section;
  } const cases[] = {
      {"a header", "a,b,c\n1,x,2020-01-05\n2,y,2020-01-06\n", "ColNameHeader=True\n"},
      {"none", "1,x\n2,y,2.5\n3,z,3.5,\"4\"\n", "ColNameHeader=False\n"},
      {"a column declared nearby", "a,b\n1,2\n3,4\n", "ColNameHeader=True\nCol2=q Text\n"},
      {"coordinates", "p,q,r\n\"47.123, 8.456\",47.123,8.456\n", "ColNameHeader=True\n"},
      {"no row", "", ""},
      {"a surplus value where there are columns", "a,b\n1,2,3\n", "ColNameHeader=True\n"},
      {"a type that keeps the scan going", "x\n", "ColNameHeader=False\nCol7=n Long\n"},
  };
  const auto open = [&](const char* bytes, const std::string& section, int last,
                        const std::string& line, const OpenOptions& options) {
    return Open(bytes, "Format=CSVDelimited\n" + section + "Col" + std::to_string(last) + line,
                options);
  };
  OpenOptions noCoordinates;
  noCoordinates.generateLatLongFields = false;
  for (const auto& c : cases) {
    for (const std::string line : {"=z Text\n", "=z Date dd.MM.yyyy\n", "=z Date\n", "=z Long\n"}) {
      for (const OpenOptions& options : {OpenOptions(), noCoordinates}) {
        SCOPED_TRACE(c.why + line);
        const OpenedTable held = open(c.bytes, c.section, 50, line, options);
        const OpenedTable distant = open(c.bytes, c.section, 9050, line, options);
        ASSERT_TRUE(held.opened() && distant.opened());
        const FieldList& few = held.shared()->fields;
        const FieldList& all = distant.shared()->fields;
        ASSERT_EQ(all.size(), few.size() + 9000);
        const std::size_t last = few.size() - 1;
        for (std::size_t i = 0; i <= last; ++i) {
          const FieldDefinition expected = few[i];
          const FieldDefinition found = all[i == last ? all.size() - 1 : i];
          EXPECT_EQ(found.name, expected.name);
          EXPECT_EQ(found.type, expected.type) << i;
          EXPECT_EQ(found.width, expected.width);
          EXPECT_EQ(found.isCoordinate, expected.isCoordinate);
          EXPECT_EQ(found.coordinateFormat, expected.coordinateFormat);
          EXPECT_EQ(found.dateFormat.order, expected.dateFormat.order);
          EXPECT_EQ(found.dateFormat.pattern, expected.dateFormat.pattern);
        }
        const std::string name = "Field" + std::to_string(9049);
        EXPECT_EQ(all[all.size() - 2].name, std::u16string(name.begin(), name.end()));
      }
    }
  }
}

TEST_F(TypeInferenceTest, AGapBeforeADeclaredColumnIsInferred) {
  EXPECT_EQ(Fields("1,2\n3,4\n", "ColNameHeader=False\nCol2=b Text\n"), "Field1:int b:text");
  EXPECT_EQ(Fields("x,y\n3,4\n", "ColNameHeader=True\nCol2=b Text\n"), "x:int b:text");
  EXPECT_EQ(Fields("1\n3\n", "Format=CSVDelimited\nColNameHeader=False\nCol3=c Long\n"),
            "Field1:int Field2:text c:int");
}

TEST_F(TypeInferenceTest, DeclaredFloatingPointColumnsSettleTheDecimalSymbol) {
  const auto decimal = [&](const std::string& type, const std::string& rows,
                           const std::string& more = "") {
    const std::string section =
        "ColNameHeader=True\n" + more + "Col1=a " + type + "\nCol2=b Long\n";
    return static_cast<char>(OpenTabbed("a\tb\n" + rows, section).decimalSymbol());
  };
  EXPECT_EQ(decimal("Double", "1.5\t1\n"), '.');
  EXPECT_EQ(decimal("Double", "1,5\t1\n"), ',');
  EXPECT_EQ(decimal("Single", "1,5\t1\n"), ',');
  EXPECT_EQ(decimal("Long", "1,5\t1\n"), '.') << "not a floating-point column";
  EXPECT_EQ(decimal("Text", "1,5\t1\n"), '.');
  EXPECT_EQ(decimal("Double", "abc\t1\n"), '.') << "a number with neither symbol";
  EXPECT_EQ(decimal("Double", "1.5,5\t1\n"), '.') << "a number with neither symbol";
  EXPECT_EQ(decimal("Double", "12\t1\n"), '.') << "a number with both";
  EXPECT_EQ(decimal("Double", "1,5\t1\n2.5\t1\n"), '.') << "swapped twice";
  EXPECT_EQ(decimal("Double", "1,5\t1\n2,5\t1\n"), ',');
  EXPECT_EQ(decimal("Double", "1,5\t1\n", "DecimalSymbol=.\n"), ',') << "even against the section";
  EXPECT_EQ(decimal("Double", "inf\t1\n"), '.') << "words are no numbers for inference";
}

// ---------------------------------------------------------------------------------------------
// The decimal symbol of the file
// ---------------------------------------------------------------------------------------------

class DecimalDecisionTest : public TypeInferenceTest {
 protected:
  // The fields of a file of tab-separated rows below the header "a b c", and the decimal symbol.
  std::string Decide(const std::string& rows, const std::string& section = {}) {
    OpenedTable table = OpenTabbed("a\tb\tc\n" + rows, section);
    return table.Fields() + " " + static_cast<char>(table.decimalSymbol());
  }
};

TEST_F(DecimalDecisionTest, TextThatIsNumbersWithTheOtherSymbolBecomesDouble) {
  EXPECT_EQ(Decide("1,5\tx\ty\n2,25\tx\ty\n"), "a:double b:text c:text ,");
  EXPECT_EQ(Decide("1,5\t2,5\ty\n"), "a:double b:double c:text ,");
}

TEST_F(DecimalDecisionTest, ASymbolGivenInSchemaIniStays) {
  EXPECT_EQ(Decide("1,5\tx\ty\n", "DecimalSymbol=.\n"), "a:text b:text c:text .");
  EXPECT_EQ(Decide("1.5\tx\ty\n", "DecimalSymbol=,\n"), "a:text b:text c:text ,");
}

TEST_F(DecimalDecisionTest, ADoubleAlreadySeenSpeaksAgainstIt) {
  EXPECT_EQ(Decide("1,5\t1.5\ty\n"), "a:text b:double c:text .");
  EXPECT_EQ(Decide("1.5\t1,5\ty\n"), "a:double b:text c:text .");
  EXPECT_EQ(Decide("1,5\tx\ty\n1,5\tx\ty\n1,5\tx\ty\n1,5\tx\ty\n"), "a:double b:text c:text ,");
  EXPECT_EQ(Decide("1,5\t1\ty\n2,5\t1\ty\n3,5\t1.5\ty\n"), "a:text b:double c:text .")
      << "however late";
  EXPECT_EQ(Decide("1,5\t$5\ty\n"), "a:text b:double c:text .") << "an amount is a Double too";
}

TEST_F(DecimalDecisionTest, ADeclaredDoubleDoesNotCountAsSeen) {
  EXPECT_EQ(Decide("1,5\t1.5\ty\n", "ColNameHeader=True\nCol2=b Double\n"),
            "a:double b:double c:text ,");
}

TEST_F(DecimalDecisionTest, WholeNumbersThatTheSwapWouldBreakSpeakAgainstIt) {
  EXPECT_EQ(Decide("1,5\t1,234,567\ty\n"), "a:text b:int c:text .");
  EXPECT_EQ(Decide("1,5\t1,234\ty\n"), "a:double b:double c:text ,")
      << "one thousand and more becomes one and more";
  EXPECT_EQ(Decide("1,5\t7\ty\n"), "a:double b:int c:text ,") << "a whole number either way";
}

TEST_F(DecimalDecisionTest, OnlyTheFirstValueSettlesTheAlternative) {
  EXPECT_EQ(Decide("12\tx\ty\n1,5\tx\ty\n"), "a:text b:text c:text .") << "a whole number first";
  EXPECT_EQ(Decide("1,5\tx\ty\n12\tx\ty\n"), "a:double b:text c:text ,");
  EXPECT_EQ(Decide("1,5\tx\ty\nabc\tx\ty\n"), "a:double b:text c:text ,")
      << "later text is not looked at";
  EXPECT_EQ(Decide("abc\tx\ty\n1,5\tx\ty\n"), "a:text b:text c:text .");
  EXPECT_EQ(Decide("2020-01-05\tx\ty\n1,5\tx\ty\n"), "a:text b:text c:text .");
  EXPECT_EQ(Decide("\tx\ty\n1,5\tx\ty\n"), "a:double b:text c:text ,") << "empty fields aside";
}

TEST_F(DecimalDecisionTest, NothingToGainChangesNothing) {
  EXPECT_EQ(Decide("1,234\tx\ty\n"), "a:int b:text c:text .")
      << "a Double with the other symbol, but it is no text now";
  EXPECT_EQ(Decide("1\tx\ty\n"), "a:int b:text c:text .");
}

TEST_F(DecimalDecisionTest, DecimalCommasOfALocaleBecomePoints) {
  const UserLocale german(u"de-DE");
  folder_.Write("d.csv", "a;b\n1.5;x\n2.25;x\n");
  OpenedTable points(folder_, u"d.csv");
  EXPECT_EQ(points.Fields(), "a:double b:text");
  EXPECT_EQ(points.decimalSymbol(), u'.');
  folder_.Write("d.csv", "a;b\n1,5;x\n2,25;x\n");
  OpenedTable commas(folder_, u"d.csv");
  EXPECT_EQ(commas.Fields(), "a:double b:text");
  EXPECT_EQ(commas.decimalSymbol(), u',');
  folder_.Write("d.csv", "a;b\n1.234;x\n");
  OpenedTable grouped(folder_, u"d.csv");
  EXPECT_EQ(grouped.Fields(), "a:int b:text");
  EXPECT_EQ(grouped.decimalSymbol(), u',');
}

// ---------------------------------------------------------------------------------------------
// Header
// ---------------------------------------------------------------------------------------------

TEST_F(TypeInferenceTest, AFirstRecordOfTextIsAHeader) {
  EXPECT_EQ(Fields("a,b\n1,2\n"), "a:int b:int");
  EXPECT_EQ(Fields("a,,c\n1,2,3\n"), "a:int Field2:int c:int") << "empty fields aside";
  EXPECT_EQ(Fields("a,b\nx,y\n"), "a:text b:text");
  EXPECT_EQ(Fields(",\n1,2\n"), "Field1:int Field2:int") << "empty fields alone";
  EXPECT_EQ(Fields("a,10:30\n1,2\n"), "a:int 10:30:int") << "no times alone are wanted";
}

TEST_F(TypeInferenceTest, AFirstRecordWithAnotherTypeIsData) {
  EXPECT_EQ(Fields("a,b,3\nx,y,4\n"), "Field1:text Field2:text Field3:int");
  EXPECT_EQ(Fields("a,2020-01-05\nx,2020-01-05\n"), "Field1:text Field2:date/ymd");
  EXPECT_EQ(Fields("a,$5\nx,$6\n"), "Field1:text Field2:double");
  EXPECT_EQ(Fields("a,10:30\nx,10:31\n", {}, WithTimes()), "Field1:text Field2:time");
  EXPECT_EQ(Fields("a,1.5\nx,y\n"), "Field1:text Field2:double")
      << "the first row is read as data, and settles both columns";
}

TEST_F(TypeInferenceTest, SchemaIniDecidesAboutTheHeader) {
  EXPECT_EQ(Fields("1,2\n3,4\n", "ColNameHeader=True\n"), "1:int 2:int");
  EXPECT_EQ(Fields("a,b\n3,4\n", "ColNameHeader=False\n"), "Field1:text Field2:text");
}

TEST_F(TypeInferenceTest, HeaderTextsLoseTheirBlanks) {
  EXPECT_EQ(Fields("  Name  ,\tb ,  \n1,2,3\n"), "Name:int \tb:int Field3:int")
      << "blanks alone, not other white space";
}

TEST_F(TypeInferenceTest, HeaderTextsNameTheColumnsWithoutAName) {
  EXPECT_EQ(Fields("x,y,z\n1,2,3\n", "ColNameHeader=True\nCol1=a Long\nCol3=c Long\n"),
            "a:int y:int c:int");
  EXPECT_EQ(Fields("x\n1,2\n",
                   "Format=CSVDelimited\nColNameHeader=True\nCol1=a Long\nCol2=b "
                   "Long\n"),
            "a:int b:int");
}

TEST_F(TypeInferenceTest, ExtraFieldsBehindAHeaderMustBeEmpty) {
  const std::string format = "Format=CSVDelimited\n";
  EXPECT_EQ(Fields("a,b\n1,2,\n3,4,,,\n", format), "a:int b:int");
  EXPECT_EQ(Fields("a,b\n1,2,3\n", format), "not opened");
  EXPECT_EQ(Open("a,b\n1,2,3\n", format).status(), OpenDatasetStatus::kScanFailed);
  EXPECT_EQ(Fields("a,b\n1,2, \n", format), "not opened") << "a blank is not empty";
  EXPECT_EQ(Fields("a,b\n1\n", format), "a:int b:text") << "fewer are welcome";
}

TEST_F(TypeInferenceTest, ExtraFieldsWithoutAHeaderAddColumns) {
  EXPECT_EQ(Fields("1,2\n3,4,5\n6,7,8,x\n"), "Field1:int Field2:int Field3:int Field4:text");
  EXPECT_EQ(Fields("1,2\n3,4,\n"), "Field1:int Field2:int Field3:text");
}

}  // namespace
}  // namespace TextFile
