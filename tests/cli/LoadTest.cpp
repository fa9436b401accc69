#include <algorithm>
#include <csignal>
#include <system_error>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "cli/TexttablesTest.h"

namespace {

class LoadTest : public TexttablesTest {
 protected:
  void WriteTable() const {
    Write("a.csv", "Id,Name\n1,Ann\n");
    Write("schema.ini",
          "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=Id Long\nCol2=Name Text Width "
          "10\n");
  }

  // How the data source names a file of the current folder.
  static std::string PathOf(const std::string& name) {
    return (std::filesystem::path(".") / name).string();
  }

  // Loads these bytes from standard input.
  ProcessResult Load(std::string_view bytes, const std::string& table = "a.csv") const {
    Write("input", bytes);
    ProcessRequest request = Request({"--locale", "en-US", "load", table});
    request.inputFile = (Folder() / "input").string();
    return RunProcess(request);
  }

  // The table's rows behind the header, after a load that says `errors`.
  void ExpectLoaded(std::string_view bytes, const std::string& rows,
                    const std::string& errors) const {
    WriteTable();
    const ProcessResult result = Load(bytes);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, errors);
    EXPECT_EQ(ReadTable("a.csv"), "Id,Name\n1,Ann\n" + rows);
  }

  // A line after a good one: the good one is kept.
  void ExpectBadLine(std::string_view line, const std::string& code,
                     const std::string& text) const {
    SCOPED_TRACE(std::string(line));
    WriteTable();
    ExpectRefused(
        Load("[2,\"Bob\"]\n\n" + std::string(line) + "\n[9,\"never\"]\n"),
        "texttables: error: " + code + ": standard input, line 3: " + text + "; 1 row loaded\n");
    EXPECT_EQ(ReadTable("a.csv"), "Id,Name\n1,Ann\n2,Bob\n");
  }

  void CreateAllTypes(const std::string& table) const {
    Output({"--locale", "en-US",        "create",  table,          "--field", "S:SmallInteger",
            "--field",  "L:Integer",    "--field", "B:BigInteger", "--field", "F:Single",
            "--field",  "D:Double",     "--field", "T:String:20",  "--field", "W:Date",
            "--field",  "Day:DateOnly", "--field", "At:TimeOnly",  "--field", "Z:TimestampOffset",
            "--field",  "O:ObjectId",   "--field", "G:Guid",       "--field", "GG:GlobalId"});
  }
};

TEST_F(LoadTest, TakesArraysAndObjects) {
  ExpectLoaded(
      "[2,\"Bob\"]\n{\"Name\":\"Cy\",\"Id\":3}\n{\"NAME\":\"Di\",\"id\":4}\n{\"Id\":5}\n{}\n"
      "[null,null]\n [ 6 , \"a,b\" ] \n",
      "2,Bob\n3,Cy\n4,Di\n5,\n,\n,\n6,\"a,b\"\n", "7 rows loaded\n");
}

TEST_F(LoadTest, TakesLinesFromAFileToo) {
  WriteTable();
  Write("rows.jsonl", "[2,\"Bob\"]\n");
  EXPECT_EQ(Run({"load", "a.csv", "rows.jsonl"}).errors, "1 row loaded\n");
  EXPECT_EQ(Output({"--quiet", "load", "a.csv", "rows.jsonl"}), "");
  EXPECT_EQ(ReadTable("a.csv"), "Id,Name\n1,Ann\n2,Bob\n2,Bob\n");
  Write("rows.jsonl", "[\"x\"]\n");
  ExpectRefused(Run({"load", "a.csv", "rows.jsonl"}),
                "texttables: error: 0x8007000D: rows.jsonl, line 1: 1 value for 2 fields; 0 rows "
                "loaded\n");
}

TEST_F(LoadTest, DashIsStandardInput) {
  WriteTable();
  Write("input", "[2,\"Bob\"]\n");
  ProcessRequest request = Request({"load", "a.csv", "-"});
  request.inputFile = (Folder() / "input").string();
  EXPECT_EQ(RunProcess(request).errors, "1 row loaded\n");
  EXPECT_EQ(ReadTable("a.csv"), "Id,Name\n1,Ann\n2,Bob\n");
}

TEST_F(LoadTest, LineEndsBlankLinesAndTheByteOrderMarkDoNotCount) {
  ExpectLoaded("\xEF\xBB\xBF[2,\"Bob\"]\r\n\r\n \t\n[3,\"Cy\"]", "2,Bob\n3,Cy\n",
               "2 rows loaded\n");
  ExpectLoaded("", "", "0 rows loaded\n");
  ExpectLoaded("\n\n", "", "0 rows loaded\n");
}

TEST_F(LoadTest, LastLineOfTheTableIsEndedFirst) {
  WriteTable();
  Write("a.csv", "Id,Name\n1,Ann");
  Load("[2,\"Bob\"]\n");
  EXPECT_EQ(ReadTable("a.csv"), "Id,Name\n1,Ann\n2,Bob\n");
}

struct GoodCase {
  const char* values;
  const char* row;
};

constexpr GoodCase kGoodCases[] = {
    {"[true,false]", "1,false"},
    {"[2.0,1.50]", "2,1.50"},
    {"[1e3,1e3]", "1000,1e3"},
    {"[-0,-0]", "0,-0"},
    {"[\"7\",\"7\"]", "7,7"},
    {"[\"\",\"\"]", ","},
    {"[2147483647,\"\\u00fc\\ud83d\\ude00\"]", "2147483647,\xC3\xBC\xF0\x9F\x98\x80"},
    {"[-2147483648,\"\xC3\xBC\xF0\x9F\x98\x80\"]", "-2147483648,\xC3\xBC\xF0\x9F\x98\x80"},
    {"[null,\"a\\\"b\"]", ",a\"\"b"},
    {"[{\"VT_I2\":7},{\"VT_BSTR\":\"x\"}]", "7,x"},
    {"[{\"VT_I8\":7},{\"VT_R8\":0.1}]", "7,0.1"},
    {"[{\"VT_R8\":7},{\"VT_R8\":\"inf\"}]", "7,inf"},
    {"[{\"VT_NULL\":null},{\"VT_EMPTY\":null}]", ","},
    {"[{\"VT_BSTR\":\"7\"},{\"VT_DATE\":43835.4375}]", "7,2020-01-05"},
    {"[{\"VT_14\":\"7\"},{\"VT_11\":\"True\"}]", "7,True"},
};

TEST_F(LoadTest, ValuesBecomeTheFieldsType) {
  for (const GoodCase& c : kGoodCases) {
    SCOPED_TRACE(c.values);
    WriteTable();
    Load(std::string(c.values) + "\n");
    EXPECT_EQ(ReadTable("a.csv"), std::string("Id,Name\n1,Ann\n") + c.row + "\n");
  }
}

struct BadValueCase {
  const char* values;
  const char* spelled;
};

constexpr BadValueCase kBadValueCases[] = {
    {"[\"x\",\"y\"]", "\"x\""},
    {"[\" 7\",\"y\"]", "\" 7\""},
    {"[1.5,\"y\"]", "1.5"},
    {"[2147483648,\"y\"]", "2147483648"},
    {"[1e999,\"y\"]", "1e999"},
    {"[\"nan\",\"y\"]", "\"nan\""},
    {"[[1],\"y\"]", "[1]"},
    {"[{},\"y\"]", "{}"},
    {"[{\"VT_FOO\":1},\"y\"]", "{\"VT_FOO\":1}"},
    {"[{\"VT_I2\":70000},\"y\"]", "{\"VT_I2\":70000}"},
    {"[{\"VT_I4\":1.5},\"y\"]", "{\"VT_I4\":1.5}"},
    {"[{\"VT_I4\":\"1\"},\"y\"]", "{\"VT_I4\":\"1\"}"},
    {"[{\"VT_NULL\":1},\"y\"]", "{\"VT_NULL\":1}"},
    {"[{\"VT_I4\":1,\"VT_I2\":1},\"y\"]", "{\"VT_I4\":1,\"VT_I2\":1}"},
    {"[{\"VT_DATE\":1},\"y\"]", "{\"VT_DATE\":1}"},
};

TEST_F(LoadTest, ValuesThatTheFieldCannotHoldNameTheLine) {
  for (const BadValueCase& c : kBadValueCases)
    ExpectBadLine(c.values, "0x80040955",
                  std::string("field \"Id\" (Integer) cannot hold ") + c.spelled);
}

TEST_F(LoadTest, RowsThatDoNotFitTheTableNameTheLine) {
  ExpectBadLine("[3]", "0x8007000D", "1 value for 2 fields");
  ExpectBadLine("[3,\"x\",4]", "0x8007000D", "3 values for 2 fields");
  ExpectBadLine("{\"Id\":3,\"Nmae\":\"x\"}", "0x8007000D",
                "there is no field \"Nmae\"; fields: Id, Name");
  ExpectBadLine("{\"Id\":3,\"id\":4}", "0x8007000D", "field \"id\" is given twice");
  ExpectBadLine("7", "0x8007000D", "a row is an array or an object, not 7");
  ExpectBadLine("null", "0x8007000D", "a row is an array or an object, not null");
}

// Names that no string object holds in itself: they are told whole.
TEST_F(LoadTest, LongNamesThatDoNotFitTheTableAreToldWhole) {
  constexpr const char* kNames[] = {"Population", "Number_of_households",
                                    "Stra\xC3\x9F"
                                    "enverzeichnis-\xE5\x90\x8D\xF0\x9F\x98\x80"};
  for (const char* name : kNames) {
    const std::string quoted = "\"" + std::string(name) + "\"";
    ExpectBadLine("{" + quoted + ":1}", "0x8007000D",
                  "there is no field " + quoted + "; fields: Id, Name");
    ExpectBadLine("{\"Id\":3," + quoted + ":1}", "0x8007000D",
                  "there is no field " + quoted + "; fields: Id, Name");
  }
  for (const char* name : kNames) {
    const std::string quoted = "\"" + std::string(name) + "\"";
    const std::string table = "Id," + std::string(name) + "\n1,Ann\n";
    Write("b.csv", table);
    ExpectRefused(
        Load("[2,\"Bob\"]\n{" + quoted + ":\"x\",\"Id\":3," + quoted + ":\"y\"}\n", "b.csv"),
        "texttables: error: 0x8007000D: standard input, line 2: field " + quoted +
            " is given twice; 1 row loaded\n");
    EXPECT_EQ(ReadTable("b.csv"), table + "2,Bob\n");
  }
}

struct BadJsonCase {
  std::string_view line;
  const char* place;
  const char* what;
};

constexpr BadJsonCase kBadJsonCases[] = {
    {"[3,\"x\"", "7", "a comma or a closing bracket is expected"},
    {"[3,]", "4", "a value is expected"},
    {"[3 \"x\"]", "4", "a comma or a closing bracket is expected"},
    {"[3,\"x\"] [4]", "9", "there is more behind the value"},
    {"[03,\"x\"]", "3", "a number has no zeros in front"},
    {"[3.,\"x\"]", "4", "a digit is expected"},
    {"[+3,\"x\"]", "2", "a value is expected"},
    {"[3,'x']", "4", "a value is expected"},
    {"[3,x]", "4", "a value is expected"},
    {"[3,nul]", "4", "a value is expected"},
    {"[3,\"x]", "7", "a closing quote is missing"},
    {"[3,\"a\tb\"]", "6", "a control character must be escaped"},
    {"[3,\"\\x\"]", "5", "there is no such escape"},
    {"[3,\"\\u12G4\"]", "5", "an escape has four hexadecimal digits"},
    {"[3,\"\\u12", "5", "an escape is cut off"},
    {"{Id:3}", "2", "a name in quotes is expected"},
    {"{\"Id\" 3}", "7", "a colon is expected"},
    {"{\"Id\":3,}", "9", "a name in quotes is expected"},
    {"{\"Id\":3]", "8", "a comma or a closing brace is expected"},
    {"[3,\"\xFF\"]", "5", "this is not UTF-8"},
    {"[3,\"\xC3\"]", "5", "this is not UTF-8"},
    {"[3,\"\xC0\x80\"]", "5", "this is not UTF-8"},
    {"[3,\"\xE0\x80\x80\"]", "5", "this is not UTF-8"},
    {"[3,\"\xED\xA0\x80\"]", "5", "this is not UTF-8"},
    {"[3,\"\xF4\x90\x80\x80\"]", "5", "this is not UTF-8"},
    {"[3,\"\xF5\x80\x80\x80\"]", "5", "this is not UTF-8"},
};

TEST_F(LoadTest, BadJsonNamesTheLineAndTheByte) {
  for (const BadJsonCase& c : kBadJsonCases)
    ExpectBadLine(c.line, "0x8007000D", std::string("bad JSON at byte ") + c.place + ": " + c.what);
  ExpectBadLine(std::string(100000, '['), "0x8007000D",
                "bad JSON at byte 65: too many brackets in each other");
}

struct DateCase {
  const char* field;  // of CreateAllTypes
  const char* json;
  const char* typed;  // what is read back; null: refused
};

constexpr DateCase kDateCases[] = {
    {"W", "\"2020-01-05\"", "{\"VT_DATE\":43835}"},
    {"W", "\"2020-01-05T10:30\"", "{\"VT_DATE\":43835.4375}"},
    {"W", "\"2020-01-05 10:30:00\"", "{\"VT_DATE\":43835.4375}"},
    {"W", "43835.4375", "{\"VT_DATE\":43835.4375}"},
    {"W", "{\"VT_DATE\":43835.4375}", "{\"VT_DATE\":43835.4375}"},
    {"W", "\"\"", "{\"VT_NULL\":null}"},
    {"W", "\"2020-02-30\"", nullptr},
    {"W", "\"2020-1-5\"", nullptr},
    {"W", "\"2020-01-05T24:00\"", nullptr},
    {"W", "\"2020-01-05T\"", nullptr},
    {"W", "\"2020-01-05x\"", nullptr},
    {"W", "\"tomorrow\"", nullptr},
    {"W", "1e9", nullptr},
    {"W", "true", nullptr},
    {"Day", "\"2020-01-05\"", "{\"VT_DATE\":43835}"},
    {"Day", "\"2020-01-05T00:00:00\"", "{\"VT_DATE\":43835}"},
    {"Day", "\"2020-01-05T10:30\"", nullptr},
    {"Day", "\"10:30\"", nullptr},
    {"At", "\"10:30\"", "{\"VT_DATE\":0.4375}"},
    {"At", "\"10:30:00.000\"", "{\"VT_DATE\":0.4375}"},
    {"At", "\"1899-12-30T10:30:00\"", "{\"VT_DATE\":0.4375}"},
    {"At", "\"2020-01-05T10:30:00\"", nullptr},
    {"Z", "\"2020-01-05T10:30:00+02:00\"",
     "{\"VT_UNKNOWN\":{\"date\":43835.4375,\"offsetMinutes\":120}}"},
    {"Z", "\"2020-01-05T10:30:00-0330\"",
     "{\"VT_UNKNOWN\":{\"date\":43835.4375,\"offsetMinutes\":-210}}"},
    {"Z", "\"2020-01-05T10:30:00Z\"", "{\"VT_UNKNOWN\":{\"date\":43835.4375,\"offsetMinutes\":0}}"},
    {"Z", "{\"VT_UNKNOWN\":{\"date\":43835.4375,\"offsetMinutes\":120}}",
     "{\"VT_UNKNOWN\":{\"date\":43835.4375,\"offsetMinutes\":120}}"},
    {"Z", "{\"VT_UNKNOWN\":null}", "{\"VT_NULL\":null}"},
    {"Z", "{\"VT_UNKNOWN\":{\"date\":43835.4375}}", nullptr},
    {"Z", "\"2020-01-05T10:30:00+02:\"", nullptr},
    {"Z", "\"2020-01-05T10:30:00+24:00\"", nullptr},
    {"F", "\"inf\"", "{\"VT_R4\":\"inf\"}"},
    {"F", "1e39", nullptr},
    {"D", "\"nan\"", "{\"VT_R8\":\"nan\"}"},
    {"D", "{\"VT_R8\":\"-inf\"}", "{\"VT_R8\":\"-inf\"}"},
    {"B", "9223372036854775807", "{\"VT_I8\":9223372036854775807}"},
    {"B", "9223372036854775808", nullptr},
    {"S", "32768", nullptr},
};

TEST_F(LoadTest, DatesAndNumbersComeBackAsTheyWere) {
  for (const DateCase& c : kDateCases) {
    SCOPED_TRACE(std::string(c.field) + " " + c.json);
    std::filesystem::remove(Folder() / "all.csv");
    std::filesystem::remove(Folder() / "schema.ini");
    CreateAllTypes("all.csv");
    const ProcessResult result =
        Load(std::string("{\"") + c.field + "\":" + c.json + "}", "all.csv");
    EXPECT_EQ(result.exitCode, c.typed != nullptr ? 0 : 1) << result.errors;
    EXPECT_EQ(
        Run({"--locale", "en-US", "rows", "all.csv", "--format", "typed", "--columns", c.field})
            .output,
        c.typed != nullptr ? "[" + std::string(c.typed) + "]\n" : "");
  }
}

TEST_F(LoadTest, DatesInTheSectionsOrderComeBackAsTheyWere) {
  Write("a.csv", "Id,Day\n");
  Write("schema.ini",
        "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nDateTimeFormat=dd.MM.yyyy\n"
        "Col1=Id Long\nCol2=Day Date\n");
  EXPECT_EQ(Load("[1,\"2020-01-02\"]\n").errors, "1 row loaded\n");
  EXPECT_EQ(ReadTable("a.csv"), "Id,Day\n1,02.01.2020\n");
  EXPECT_EQ(Output({"--locale", "en-US", "rows", "a.csv", "--format", "csv"}),
            "Id,Day\n1,2020-01-02\n");
}

TEST_F(LoadTest, TablesMoveThroughEveryFormThatKeepsTypes) {
  CreateAllTypes("from.csv");
  const ProcessResult first = Load(
      "[1,70000,5000000000,1.5,0.1,\"a,\\\"b\\\"\",\"2020-01-05T10:30:15\",\"2020-01-05\","
      "\"10:30\",\"2020-01-05T10:30:00+02:00\",7,\"{12345678-1234-1234-1234-123456789012}\",\"g\"]"
      "\n"
      "[-1,-1,-1,-0.25,1e300,\"\\u00fc\\ud83d\\ude00\",\"1899-12-29T06:00:00\",\"1752-09-14\","
      "\"23:59:59\",\"1999-12-31T23:59:59-11:30\",0,null,null]\n"
      "[0,0,0,\"inf\",\"nan\",\"two\\nlines\",null,null,null,null,null,null,null]\n"
      "[null,null,null,null,null,null,null,null,null,null,null,null,null]\n",
      "from.csv");
  ASSERT_EQ(first.errors, "4 rows loaded\n");
  for (const char* format : {"typed", "jsonl"}) {
    SCOPED_TRACE(format);
    const std::string name = std::string(format) + ".csv";
    CreateAllTypes(name);
    const std::string rows = Output({"--locale", "en-US", "rows", "from.csv", "--format", format});
    EXPECT_EQ(Load(rows, name).errors, "4 rows loaded\n");
    EXPECT_EQ(Read(name), Read("from.csv"));
    EXPECT_EQ(Output({"--locale", "en-US", "rows", name, "--format", format}), rows);
  }
}

TEST_F(LoadTest, LoneSurrogatesAreTakenAndBecomeWhatUtf8CanSpell) {
  ExpectLoaded("[2,\"a\\ud83d\"]\n[3,{\"VT_BSTR\":\"\\ude00b\"}]\n",
               "2,a\xEF\xBF\xBD\n3,\xEF\xBF\xBD"
               "b\n",
               "2 rows loaded\n");
}

TEST_F(LoadTest, CoordinateFieldsMayBeLeftOut) {
  const std::string head = "Name,Place\nA,\"40\xC2\xB0 30' N 79\xC2\xB0 15' W\"\n";
  Write("p.csv", head);
  const std::string rows = Output({"rows", "p.csv", "--format", "typed"});
  EXPECT_EQ(Load(rows + "[\"B\",\"1\xC2\xB0 30' N 9\xC2\xB0 15' W\"]\n" +
                     "{\"Name\":\"C\",\"Place_X\":5}\n",
                 "p.csv")
                .errors,
            "3 rows loaded\n");
  EXPECT_EQ(ReadTable("p.csv"), head + "A,40\xC2\xB0 30' N 79\xC2\xB0 15' W\n" +
                                    "B,1\xC2\xB0 30' N 9\xC2\xB0 15' W\nC,\n");
  ExpectRefused(Load("[1,2,3]\n", "p.csv"),
                "texttables: error: 0x8007000D: standard input, line 1: 3 values for 2 fields (4 "
                "with the coordinate fields); 0 rows loaded\n");
}

TEST_F(LoadTest, FieldsOfOneNameTakeTheirTurns) {
  Write("a.csv", "A,A,a\n1,2,3\n");
  const ProcessResult result = Load("{\"A\":4,\"A\":5,\"a\":6}\n{\"A\":7,\"a\":8}\n");
  EXPECT_EQ(result.errors, "2 rows loaded\n");
  EXPECT_EQ(ReadTable("a.csv"), "A,A,a\n1,2,3\n4,5,6\n7,,8\n");
}

TEST_F(LoadTest, FirstTextOfAColumnThatIsCutIsAWarning) {
  ExpectLoaded("[2,\"0123456789\"]\n[3,\"0123456789x\"]\n[4,\"0123456789xy\"]\n",
               "2,0123456789\n3,0123456789\n4,0123456789\n",
               "texttables: warning: 0x80040955: standard input, line 2: field \"Name\" holds 10 "
               "characters; a text of 11 is cut\n3 rows loaded\n");
}

TEST_F(LoadTest, NumberWiderThanItsFixedColumnIsAWarningAndAnEvent) {
  Write("schema.ini",
        "[f.txt]\nFormat=FixedLength\nColNameHeader=False\nCol1=Id Long Width 3\n"
        "Col2=N Text Width 2\n");
  Write("f.txt", "  1 A\n");
  Write("rows", "[12345,\"B\"]\n[2,\"C\"]\n[54321,\"D\"]\n");
  const ProcessResult result = Run({"--event-log", "log", "load", "f.txt", "rows"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors,
            "texttables: warning: 0x80040955: rows, line 1: In file f.txt, a value of field Id "
            "cannot be written as the field's type. It is left blank.\n3 rows loaded\n");
  EXPECT_EQ(ReadTable("f.txt"), "  1 A\n    B\n  2 C\n    D\n");
  const std::string event =
      "{\"event\":\"message\",\"text\":\"In file f.txt, a value of field Id cannot be written as "
      "the field's type. It is left blank.\"}\n";
  const std::string log = Read("log");
  EXPECT_EQ(log.substr(log.size() - 2 * event.size()), event + event);
}

TEST_F(LoadTest, LongLinesComeThroughWhole) {
  Write("a.csv", "Id,T\n");
  Write("schema.ini",
        "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=Id Long\nCol2=T Text\n");
  std::string rows;
  for (int i = 0; i < 3; ++i)
    rows += "[" + std::to_string(i) + ",\"" + std::string(7000, 'x') + "\"]" +
            std::string(3000000, ' ') + "\n";
  EXPECT_EQ(Load(rows).errors, "3 rows loaded\n");
  EXPECT_EQ(Output({"count", "a.csv"}), "3\n");
  EXPECT_EQ(ReadTable("a.csv").size(), 5 + 3 * (2 + 7000 + 1));
}

TEST_F(LoadTest, WideRowsComeThrough) {
  std::string names;
  std::string object;
  std::string values;
  for (int i = 0; i < 20000; ++i) {
    const std::string number = std::to_string(i);
    names += (i > 0 ? ",c" : "c") + number;
    values += (i > 0 ? "," : "") + number;
    object += std::string(i > 0 ? "," : "{") + "\"C" + number + "\":" + number;
  }
  Write("a.csv", names + "\n" + values + "\n");
  EXPECT_EQ(Load(object + "}\n").errors, "1 row loaded\n");
  EXPECT_TRUE(ReadTable("a.csv") == names + "\n" + values + "\n" + values + "\n");
}

TEST_F(LoadTest, MissingTablesAndFilesAreNamed) {
  WriteTable();
  ExpectRefused(Run({"load", "nope.csv"}),
                "texttables: error: 0x80040351: table not found: nope.csv\n");
  ExpectRefused(
      Run({"load", "a.csv", "nowhere"}),
      "texttables: error: 0x80070002: " + std::system_category().message(2) + ": nowhere\n");
  ExpectUsageError(Run({"load", "a.csv", "./a.csv"}),
                   "a table cannot be loaded from its own file, ./a.csv");
  ExpectUsageError(Run({"load"}), "TABLE");
  ExpectUsageError(Run({"load", "a.csv", "b", "c"}), "c");
  EXPECT_EQ(ReadTable("a.csv"), "Id,Name\n1,Ann\n");
}

TEST_F(LoadTest, RowsThatNobodyWouldReadAreRefused) {
  const struct {
    std::string bytes;
    std::string reason;
  } cases[] = {
      {"Id,Name\n1,\"Ann\n2,Bob\n",
       "the last row has a quote that is not closed: what is added would be a part of it"},
      {"Id,Name\n1,Ann\n\x1A"
       "2,Bob\n",
       "a byte 1A ends the text within the file: what is added would not be read"},
      {"",
       "the file is empty, and its first row would be read as the names of the fields unless "
       "schema.ini has ColNameHeader=False for it"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reason);
    Write("b.csv", c.bytes);
    ExpectRefused(Load("{}\n", "b.csv"),
                  "texttables: error: 0x80004005: " + PathOf("b.csv") + ": " + c.reason + "\n");
    EXPECT_EQ(Read("b.csv"), c.bytes);
  }
  Write("b.csv", "");
  Write("schema.ini", "[b.csv]\nFormat=CSVDelimited\nColNameHeader=False\nCol1=Name Text\n");
  EXPECT_EQ(Load("[\"Ann\"]\n", "b.csv").errors, "1 row loaded\n");
  EXPECT_EQ(Output({"rows", "b.csv", "--format", "jsonl"}), "{\"Name\":\"Ann\"}\n");
}

TEST_F(LoadTest, ATableIsNotLoadedFromItsOwnFile) {
  Write("e.txt", "[1]\n[2]\n");
  std::filesystem::create_hard_link(Folder() / "e.txt", Folder() / "linked");
  for (const std::string source : {"e.txt", "./e.txt", "linked"})
    ExpectUsageError(Run({"load", "e.txt", source}),
                     "a table cannot be loaded from its own file, " + source);
  for (const std::string input : {"e.txt", "linked"}) {
    ProcessRequest request = Request({"load", "e.txt"});
    request.inputFile = (Folder() / input).string();
    ExpectUsageError(RunProcess(request),
                     "a table cannot be loaded from its own file, standard input");
  }
  EXPECT_EQ(Read("e.txt"), "[1]\n[2]\n");
}

TEST_F(LoadTest, TheFileOfTheSectionsGetsNoRows) {
  WriteTable();
  const std::string ini = Read("schema.ini");
  std::filesystem::create_hard_link(Folder() / "schema.ini", Folder() / "link.csv");
  for (const std::string name : {"schema.ini", "link.csv"}) {
    ExpectRefused(Load("[\"x\"]\n", name),
                  "texttables: error: 0x80004005: " + PathOf(name) + ": the file is no table\n");
    EXPECT_EQ(Read("schema.ini"), ini);
  }
}

#ifndef _WIN32

TEST_F(LoadTest, FullDiskKeepsWholeRowsAndCountsThem) {
  WriteTable();
  std::string rows;
  for (int i = 0; i < 50000; ++i) rows += "[7,\"abcdef\"]\n";
  Write("rows.jsonl", rows);
  ProcessRequest request = Request(
      {"-c", "trap '' XFSZ; ulimit -f 200; exec \"$0\" load a.csv rows.jsonl", PROGRAM_FILE});
  request.program = "/bin/sh";
  const ProcessResult result = RunProcess(request);
  EXPECT_EQ(result.exitCode, 1);
  const std::string table = ReadTable("a.csv");
  const auto count = std::count(table.begin(), table.end(), '\n') - 1;
  EXPECT_EQ(
      result.errors,
      "texttables: error: 0x80004005: ./a.csv: the rows could not be written (File too large); "
      "the table has " +
          std::to_string(count) + " rows\n");
  EXPECT_EQ(table.substr(table.size() - 9), "7,abcdef\n");
}

// A table that is read while it grows has the rows that it had, however long that takes.
TEST_F(LoadTest, ATableCanBeLoadedFromItsOwnRows) {
  std::string rows;
  for (int i = 0; i < 20000; ++i) rows += std::to_string(i) + ",a name to be read back\n";
  Write("a.csv", "Id,Name\n" + rows);
  ProcessRequest request = Request(
      {"-c", "trap '' XFSZ; ulimit -f 8000; \"$0\" rows a.csv --format jsonl | \"$0\" load a.csv",
       PROGRAM_FILE});
  request.program = "/bin/sh";
  EXPECT_EQ(RunProcess(request).errors, "20000 rows loaded\n");
  EXPECT_TRUE(ReadTable("a.csv") == "Id,Name\n" + rows + rows);
}

TEST_F(LoadTest, InterruptKeepsTheRowsSoFar) {
  WriteTable();
  const std::string pipe = (Folder() / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const int writer = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(writer, 0);
  const std::string_view rows = "[2,\"Bob\"]\n[3,\"Cy\"]\n[4,\"half";
  ASSERT_EQ(::write(writer, rows.data(), rows.size()), static_cast<ssize_t>(rows.size()));
  ProcessRequest request = Request({"load", "a.csv"});
  request.inputFile = pipe;
  request.interrupt = ProcessRequest::Interrupt::kWhenInputIsUsedUp;
  const ProcessResult result = RunProcess(request);
  ::close(writer);
  EXPECT_EQ(result.signal, SIGINT);
  EXPECT_EQ(result.errors, "2 rows loaded\n");
  EXPECT_EQ(ReadTable("a.csv"), "Id,Name\n1,Ann\n2,Bob\n3,Cy\n");
}

#endif

}  // namespace
