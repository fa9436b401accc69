#include "cli/TexttablesTest.h"

namespace {

class RowsTest : public TexttablesTest {
 protected:
  // A table with a column of every type, and two rows: values, and blanks.
  void WriteAllTypes() const {
    Write("all.csv",
          "1,70000,5000000000,1.5,0.1,\"a,b\",2020-01-05,2020-01-05 10:30:15.5,10:30\n"
          ",,,,,,,,\n");
    Write("schema.ini",
          "[all.csv]\nFormat=CSVDelimited\nColNameHeader=False\n"
          "Col1=S Short\nCol2=L Long\nCol3=B LongLong\nCol4=F Single\nCol5=D Double\n"
          "Col6=T Text\nCol7=Day Date yyyy-MM-dd\nCol8=Stamp Date yyyy-MM-dd HH:mm:ss\n"
          "Col9=Time Date HH:mm\n");
  }
};

// The bytes of UTF-16, little end first.
std::string Utf16(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

TEST_F(RowsTest, ThousandsOfColumnsAreChosenByName) {
  constexpr int kColumns = 12'000;
  constexpr int kChosen = 4'000;  // about as many as a command line of Windows holds
  std::string header;
  std::string values;
  std::string chosen;
  for (int i = 0; i < kColumns; ++i) {
    header += (i > 0 ? ",c" : "c") + std::to_string(i);
    values += (i > 0 ? "," : "") + std::to_string(i % 10);
    if (i >= kColumns - kChosen) chosen += (chosen.empty() ? "C" : ",C") + std::to_string(i);
  }
  Write("wide.csv", header + "\n" + values + "\n");
  const std::string some = Output({"rows", "wide.csv", "--format", "csv", "--columns", chosen});
  EXPECT_EQ(some.substr(some.find('\n') + 1),
            values.substr(values.size() - 2 * kChosen + 1) + "\n");
}

TEST_F(RowsTest, JsonLinesHaveNaturalValues) {
  WriteAllTypes();
  const std::string expected =
      "{\"S\":1,\"L\":70000,\"B\":5000000000,\"F\":1.5,\"D\":0.1,\"T\":\"a,b\","
      "\"Day\":\"2020-01-05\",\"Stamp\":\"2020-01-05T10:30:15.500\",\"Time\":\"10:30:00\"}\n"
      "{\"S\":null,\"L\":null,\"B\":null,\"F\":null,\"D\":null,\"T\":null,"
      "\"Day\":null,\"Stamp\":null,\"Time\":null}\n";
  EXPECT_EQ(Output({"rows", "all.csv", "--format", "jsonl"}), expected);
  EXPECT_EQ(Output({"rows", "all.csv", "--json"}), expected);
  EXPECT_EQ(Output({"rows", "all.csv", "--json", "--format", "jsonl"}), expected);
}

TEST_F(RowsTest, TypedValuesNameTheirKind) {
  WriteAllTypes();
  // 10:30:15.5 is 37815500 of the day's 86400000 milliseconds, 10:30 is 7/16 of the day.
  EXPECT_EQ(Output({"rows", "all.csv", "--format", "typed", "--columns", "S,L,B,F,D,T,Day,Time"}),
            "[{\"VT_I2\":1},{\"VT_I4\":70000},{\"VT_I8\":5000000000},{\"VT_R4\":1.5},"
            "{\"VT_R8\":0.1},{\"VT_BSTR\":\"a,b\"},{\"VT_DATE\":43835},{\"VT_DATE\":0.4375}]\n"
            "[{\"VT_NULL\":null},{\"VT_NULL\":null},{\"VT_NULL\":null},{\"VT_NULL\":null},"
            "{\"VT_NULL\":null},{\"VT_NULL\":null},{\"VT_NULL\":null},{\"VT_NULL\":null}]\n");
  Write("when.csv", "When\n2020-01-05 10:30\n");
  EXPECT_EQ(Output({"rows", "when.csv", "--format", "typed"}), "[{\"VT_DATE\":43835.4375}]\n");
}

TEST_F(RowsTest, CsvQuotesWhatNeedsIt) {
  Write("a.csv",
        "\"A,1\",\"B\"\"2\",C\n"
        "plain,\" blanks \",x\n"
        "\"a,b\",\"say \"\"hi\"\"\",x\n"
        "\"two\nlines\",,x\n");
  const std::string expected =
      "\"A,1\",\"B\"\"2\",C\n"
      "plain, blanks ,x\n"
      "\"a,b\",\"say \"\"hi\"\"\",x\n"
      "\"two\nlines\",,x\n";
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "csv"}), expected);
  EXPECT_EQ(Output({"rows", "a.csv"}), expected) << "the default when nobody looks on";
}

TEST_F(RowsTest, CsvHasIsoDatesAndNothingForBlanks) {
  WriteAllTypes();
  EXPECT_EQ(Output({"rows", "all.csv"}),
            "S,L,B,F,D,T,Day,Stamp,Time\n"
            "1,70000,5000000000,1.5,0.1,\"a,b\",2020-01-05,2020-01-05T10:30:15.500,10:30:00\n"
            ",,,,,,,,\n");
}

TEST_F(RowsTest, TableIsAlignedWithNumbersToTheRight) {
  Write("a.csv", "Id,Name,Note\n1,Ann,x\n200,Bartholomew,\n30,,last\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "table"}),
            " Id  Name         Note\n"
            "---  -----------  ----\n"
            "  1  Ann          x\n"
            "200  Bartholomew\n"
            " 30               last\n");
}

TEST_F(RowsTest, TableCountsTerminalColumnsAndSpellsControlCharacters) {
  Write("a.csv",
        "Name,N\n\xE6\x9D\xB1\xE4\xBA\xAC,x\nZ\xC3\xBCrich,x\ne\xCC\x81te\xCC\x81,x\n"
        "a\tb\x1B[2J,x\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "table"}),
            "Name           N\n"
            "-------------  -\n"
            "\xE6\x9D\xB1\xE4\xBA\xAC           x\n"
            "Z\xC3\xBCrich         x\n"
            "e\xCC\x81te\xCC\x81            x\n"
            "a\\tb\\u001b[2J  x\n");
}

// Vowel signs and viramas stand on the consonant before them; Hangul in letters makes one syllable.
TEST_F(RowsTest, TableAlignsScriptsWithMarks) {
  Write("a.csv",
        "Name,N\n"
        "\xE0\xA4\xB9\xE0\xA5\x8D\xE0\xA4\xA6\xE0\xA5\x81,x\n"  // Devanagari ha virama da u
        "\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB,x\n"              // Hangul h a n
        "\xF0\x9F\xAB\xA0,x\n"                                  // an emoji of Unicode 14
        "a\xC2\xAD"
        "b,x\n");  // a soft hyphen
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "table"}),
            "Name  N\n"
            "----  -\n"
            "\xE0\xA4\xB9\xE0\xA5\x8D\xE0\xA4\xA6\xE0\xA5\x81    x\n"
            "\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB    x\n"
            "\xF0\x9F\xAB\xA0    x\n"
            "a\xC2\xAD"
            "b   x\n");
}

TEST_F(RowsTest, NoneFetchesAndPrintsNothing) {
  WriteAllTypes();
  EXPECT_EQ(Output({"rows", "all.csv", "--format", "none"}), "");
}

TEST_F(RowsTest, ColumnsComeInTheOrderAskedFor) {
  Write("a.csv", "Id,Name,Town\n1,Ann,Rome\n2,Bob,Oslo\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--columns", "Town,Id"}), "Town,Id\nRome,1\nOslo,2\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--columns", "Town", "--columns", "Id"}),
            "Town,Id\nRome,1\nOslo,2\n");
  EXPECT_EQ(Output({"rows", "--columns=Name", "a.csv", "--json"}),
            "{\"Name\":\"Ann\"}\n{\"Name\":\"Bob\"}\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--columns", "Id,Id"}), "Id,Id\n1,1\n2,2\n");
}

TEST_F(RowsTest, ColumnsAreFoundWithoutRegardToCaseAndInQuotes) {
  Write("a.csv", "Id,\"Last, first\",\"x\"\"y\"\n1,Doe,z\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--columns", "ID"}), "Id\n1\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--columns", "\"Last, first\",Id"}),
            "\"Last, first\",Id\nDoe,1\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--columns", "\"x\"\"y\""}), "\"x\"\"y\"\nz\n");
}

TEST_F(RowsTest, UnknownColumnIsNamedBesideThoseThereAre) {
  Write("a.csv", "Id,Name\n1,Ann\n");
  const ProcessResult result = Run({"rows", "a.csv", "--columns", "Id,Nmae"});
  ExpectUsageError(result, "there is no column \"Nmae\"; columns: Id, Name");
}

TEST_F(RowsTest, LimitEndsTheRows) {
  Write("a.csv", "Id\n1\n2\n3\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--limit", "2"}), "Id\n1\n2\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--limit", "0"}), "Id\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--limit", "99"}), "Id\n1\n2\n3\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--json", "--limit", "0"}), "");
}

TEST_F(RowsTest, ShortRecordsShowEmptyValuesAndNotTheRowBefore) {
  Write("a.csv", "a,b,c\n1,2,3\n4\n,5\n");
  Write(
      "schema.ini",
      "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=a Long\nCol2=b Long\nCol3=c Long\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "typed"}),
            "[{\"VT_I4\":1},{\"VT_I4\":2},{\"VT_I4\":3}]\n"
            "[{\"VT_I4\":4},{\"VT_EMPTY\":null},{\"VT_EMPTY\":null}]\n"
            "[{\"VT_NULL\":null},{\"VT_I4\":5},{\"VT_EMPTY\":null}]\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--json"}),
            "{\"a\":1,\"b\":2,\"c\":3}\n{\"a\":4,\"b\":null,\"c\":null}\n"
            "{\"a\":null,\"b\":5,\"c\":null}\n");
}

TEST_F(RowsTest, NumbersTakeTheShortestFormThatReadsBack) {
  Write("a.csv", "A\n0.1\n2.0\n1e300\n-0.000125\n123456789012345.5\n");
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=A Double\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "typed"}),
            "[{\"VT_R8\":0.1}]\n[{\"VT_R8\":2}]\n[{\"VT_R8\":1e+300}]\n[{\"VT_R8\":-0.000125}]\n"
            "[{\"VT_R8\":123456789012345.5}]\n");
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=A Single\n");
  Write("a.csv", "A\n0.1\n16777216\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--json"}), "{\"A\":0.1}\n{\"A\":16777216}\n");
}

TEST_F(RowsTest, MinusZeroKeepsItsSign) {
  Write("a.csv", "S,D\n-0,-0\n-0.0,-0.0\n\"-0\",-0e0\n 0,0\n");
  Write("schema.ini",
        "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=S Single\nCol2=D Double\n");
  const std::string typed = "[{\"VT_R4\":-0},{\"VT_R8\":-0}]\n";
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "typed"}),
            typed + typed + typed + "[{\"VT_R4\":0},{\"VT_R8\":0}]\n");
  const std::string json = "{\"S\":-0,\"D\":-0}\n";
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "jsonl"}),
            json + json + json + "{\"S\":0,\"D\":0}\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "csv"}), "S,D\n-0,-0\n-0,-0\n-0,-0\n0,0\n");
}

TEST_F(RowsTest, TimestampsKeepTheirOffset) {
  Write("a.csv",
        "When\n2020-01-05T10:30:00+02:00\n2020-01-05T10:30:00-03:30\n"
        "2020-01-05T10:30:15.25+00:00\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--json"}),
            "{\"When\":\"2020-01-05T10:30:00+02:00\"}\n"
            "{\"When\":\"2020-01-05T10:30:00-03:30\"}\n"
            "{\"When\":\"2020-01-05T10:30:15.250+00:00\"}\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "typed", "--limit", "2"}),
            "[{\"VT_UNKNOWN\":{\"date\":43835.4375,\"offsetMinutes\":120}}]\n"
            "[{\"VT_UNKNOWN\":{\"date\":43835.4375,\"offsetMinutes\":-210}}]\n");
}

TEST_F(RowsTest, OffsetsOfHundredHoursAreWhole) {
  Write("a.csv", "D,X\n2020-01-05 10:30 +100:00,1\n2020-01-05 10:30 -123:45,1\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--columns", "D"}),
            "D\n2020-01-05T10:30:00+100:00\n2020-01-05T10:30:00-123:45\n");
}

TEST_F(RowsTest, DatesBefore1900CountTheirTimeAwayFromZero) {
  Write("a.csv", "When\n1899-12-29 06:00\n1752-09-14 18:00\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "typed", "--limit", "1"}),
            "[{\"VT_DATE\":-1.25}]\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--json"}),
            "{\"When\":\"1899-12-29T06:00:00\"}\n{\"When\":\"1752-09-14T18:00:00\"}\n");
}

TEST_F(RowsTest, JsonEscapesControlCharactersAndKeepsOtherText) {
  Write("a.csv", std::string("T,U\n\"q\"\"b\\s\",\xC3\xBC\xF0\x9F\x98\x80\nt\tb\bf\f\x1F,x\x7F\n"));
  EXPECT_EQ(Output({"rows", "a.csv", "--json"}),
            "{\"T\":\"q\\\"b\\\\s\",\"U\":\"\xC3\xBC\xF0\x9F\x98\x80\"}\n"
            "{\"T\":\"t\\tb\\bf\\f\\u001f\",\"U\":\"x\\u007f\"}\n");
}

TEST_F(RowsTest, LoneSurrogatesAreEscapedInJsonAndReplacedElsewhere) {
  Write("a.txt", Utf16(u"\xFEFFT\na\xD800\n\xDC00"
                       u"b\n\xD83D\xDE00\n"));
  Write("schema.ini", "[a.txt]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=T Text\n");
  EXPECT_EQ(Output({"rows", "a.txt", "--json"}),
            "{\"T\":\"a\\ud800\"}\n{\"T\":\"\\udc00b\"}\n{\"T\":\"\xF0\x9F\x98\x80\"}\n");
  EXPECT_EQ(Output({"rows", "a.txt", "--format", "typed", "--limit", "1"}),
            "[{\"VT_BSTR\":\"a\\ud800\"}]\n");
  EXPECT_EQ(Output({"rows", "a.txt"}),
            "T\na\xEF\xBF\xBD\n\xEF\xBF\xBD"
            "b\n\xF0\x9F\x98\x80\n");
}

TEST_F(RowsTest, CoordinatesAreNumbersBesideTheirText) {
  Write("p.csv", "Name,Place\nA,\"40\xC2\xB0 30' N 79\xC2\xB0 15' W\"\n");
  EXPECT_EQ(Output({"rows", "p.csv", "--json"}),
            "{\"Name\":\"A\",\"Place\":\"40\xC2\xB0 30' N 79\xC2\xB0 15' W\","
            "\"Place_X\":-79.25,\"Place_Y\":40.5}\n");
  EXPECT_EQ(Output({"rows", "p.csv", "--json", "--columns", "Place_Y"}), "{\"Place_Y\":40.5}\n");
}

TEST_F(RowsTest, EmptyFileHasOneColumnAndNoRows) {
  Write("empty.csv", "");
  EXPECT_EQ(Output({"rows", "empty.csv"}), "Field0\n");
  EXPECT_EQ(Output({"rows", "empty.csv", "--json"}), "");
}

TEST_F(RowsTest, LongFieldsComeThroughWhole) {
  const std::string text(3000000, 'x');
  Write("a.csv", "Id,T\n1," + text + "\n2,y\n");
  EXPECT_EQ(Output({"rows", "a.csv"}), "Id,T\n1," + text + "\n2,y\n");
}

TEST_F(RowsTest, ZeroCharacterEndsItsRecord) {
  Write("a.csv", std::string("A,B\nx\0y,z\nq,r\n", 14));
  Write("schema.ini",
        "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=A Text\nCol2=B Text\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "typed"}),
            "[{\"VT_BSTR\":\"x\"},{\"VT_EMPTY\":null}]\n"
            "[{\"VT_BSTR\":\"q\"},{\"VT_BSTR\":\"r\"}]\n");
}

TEST_F(RowsTest, HundredThousandColumnsComeThrough) {
  std::string names;
  std::string values;
  for (int i = 0; i < 100000; ++i) {
    names += (i > 0 ? ",c" : "c") + std::to_string(i);
    values += i > 0 ? ",x" : "x";
  }
  Write("wide.csv", names + "\n" + values + "\n");
  Write("schema.ini", "[wide.csv]\nFormat=CSVDelimited\nColNameHeader=True\n");
  EXPECT_TRUE(Output({"rows", "wide.csv"}) == names + "\n" + values + "\n");
  EXPECT_EQ(Output({"rows", "wide.csv", "--columns", "c99999,c0"}), "c99999,c0\nx,x\n");
}

TEST_F(RowsTest, FileIsReadToItsByte1A) {
  Write("a.csv",
        "Id,N\n1,x\n2,y\n\x1A"
        "3,z\n");
  EXPECT_EQ(Output({"rows", "a.csv"}), "Id,N\n1,x\n2,y\n");
}

TEST_F(RowsTest, ColumnThatIsNotAskedForIsNotConvertedIntoOthers) {
  Write("a.csv", "Id,Name,Town\n1,Ann,Rome\n2,,Oslo\n");
  EXPECT_EQ(Output({"rows", "a.csv", "--format", "typed", "--columns", "Name"}),
            "[{\"VT_BSTR\":\"Ann\"}]\n[{\"VT_NULL\":null}]\n");
}

#ifndef _WIN32

TEST_F(RowsTest, TerminalGetsTheTableFormat) {
  Write("a.csv", "Id,Name\n1,Ann\n");
  ProcessRequest request = Request({"rows", "a.csv"});
  request.outputIsTerminal = true;
  EXPECT_EQ(RunProcess(request).output, "Id  Name\n--  ----\n 1  Ann\n");
}

#endif

class ManyRowsTest : public TexttablesTest {
 protected:
  // Far more than a pipe holds.
  void WriteManyRows() const {
    std::string bytes = "Id,Name\n";
    for (int i = 0; i < 200000; ++i) bytes += std::to_string(i) + ",some name\n";
    Write("many.csv", bytes);
  }

  static void ExpectTerminalIsCleared(const std::string& errors) {
    const std::string clear = "\r\x1b[K";
    ASSERT_GE(errors.size(), clear.size());
    EXPECT_EQ(errors.substr(errors.size() - clear.size()), clear);
  }
};

TEST_F(ManyRowsTest, OutputToAClosedPipeEndsQuietly) {
  WriteManyRows();
  for (const char* format : {"csv", "table", "jsonl", "typed"}) {
    ProcessRequest request = Request({"rows", "many.csv", "--format", format});
    request.closeOutputAfter = 10;
    const ProcessResult result = RunProcess(request);
    EXPECT_EQ(result.exitCode, 0) << format;
    EXPECT_EQ(result.signal, 0) << format;
    EXPECT_EQ(result.errors, "") << format;
  }
}

#ifndef _WIN32

TEST_F(ManyRowsTest, InterruptEndsQuietlyBySignal) {
  WriteManyRows();
  ProcessRequest request = Request({"rows", "many.csv"});
  request.interrupt = ProcessRequest::Interrupt::kAtFirstOutput;
  request.errorsAreTerminal = true;
  const ProcessResult result = RunProcess(request);
  EXPECT_EQ(result.signal, 2);
  // A slow machine may have shown how far it was; then that is taken away.
  if (!result.errors.empty()) ExpectTerminalIsCleared(result.errors);
}

TEST_F(ManyRowsTest, ProgressIsShownOnATerminalAndTakenAway) {
  WriteManyRows();
  ProcessRequest request = Request({"rows", "many.csv"});
  // The program waits for more than the second during which it shows nothing.
  request.pauseAtFirstOutput = std::chrono::milliseconds(1100);
  request.errorsAreTerminal = true;
  const ProcessResult result = RunProcess(request);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.errors.find(" rows, "), std::string::npos) << result.errors;
  EXPECT_NE(result.errors.find(" rows/s"), std::string::npos) << result.errors;
  ExpectTerminalIsCleared(result.errors);

  request.arguments.emplace_back("--quiet");
  EXPECT_EQ(RunProcess(request).errors, "");
  request.arguments.pop_back();
  request.errorsAreTerminal = false;
  EXPECT_EQ(RunProcess(request).errors, "") << "no terminal, no progress";
}

TEST_F(ManyRowsTest, FullDiskIsAnError) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no /dev/full";
  WriteManyRows();
  ProcessRequest request = Request({"rows", "many.csv"});
  request.outputFile = "/dev/full";
  const ProcessResult result = RunProcess(request);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.errors.rfind("texttables: error: 0x8007001C: ", 0), 0u) << result.errors;
}

#endif

}  // namespace
