#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/TexttablesTest.h"

namespace {

class WarningTest : public TexttablesTest {
 protected:
  // Numbers for as long as the types are inferred, then two that are none.
  void WriteMismatches(const std::string& name) const {
    std::string bytes = "Id,N\n";
    for (int i = 0; i < 150; ++i) bytes += std::to_string(i) + "," + std::to_string(i) + "\n";
    Write(name, bytes + "150,7.5\n151,8.5\n");
  }
  static std::string Warning(const std::string& text) {
    return "texttables: warning: 0x80040955: " + text + "\n";
  }
};

TEST_F(WarningTest, MismatchIsReportedOnceAColumnAndTheRowGoesOn) {
  WriteMismatches("a.csv");
  const ProcessResult result = Run({"rows", "a.csv", "--format", "typed", "--columns", "N"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors,
            Warning("In file a.csv, field value 7.5 does not match inferred type of field N. "
                    "Generated schema.ini. Restart and try again."));
  const std::string end = "[{\"VT_NULL\":null}]\n[{\"VT_R8\":8.5}]\n";
  ASSERT_GE(result.output.size(), end.size());
  EXPECT_EQ(result.output.substr(result.output.size() - end.size()), end);
  // The next run reads what this one has learnt.
  EXPECT_EQ(
      Output({"rows", "a.csv", "--format", "typed", "--columns", "N"}).find("{\"VT_R8\":7.5}") !=
          std::string::npos,
      true);
}

TEST_F(WarningTest, DefinedTypeIsNotChanged) {
  Write("a.csv", "N,M\n1,2\nabc,2.5\ndef,3.5\n");
  const std::string schema =
      "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=N Long\nCol2=M Short\n";
  Write("schema.ini", schema);
  const ProcessResult result = Run({"rows", "a.csv"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "N,M\n1,2\n,\n,3.5\n");
  EXPECT_EQ(result.errors,
            Warning("In file a.csv, field value abc does not match defined type of field N. "
                    "Update schema.ini file and try again.") +
                Warning("In file a.csv, field value 2.5 does not match defined type of field M. "
                        "Update schema.ini file and try again."));
  EXPECT_EQ(Read("schema.ini"), schema);
}

TEST_F(WarningTest, QuietSilencesWarnings) {
  WriteMismatches("a.csv");
  EXPECT_EQ(Run({"--quiet", "rows", "a.csv"}).errors, "");
}

#ifndef _WIN32

TEST_F(WarningTest, OddBytesOfFileNamesAreSpelledOut) {
  WriteMismatches("caf\xE9.csv");
  const ProcessResult result = Run({"rows", "caf\xE9.csv", "--format", "none"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(
      result.errors.rfind("texttables: warning: 0x80040955: In file caf\\xe9.csv, field value "
                          "7.5 does not match inferred type of field N. ",
                          0),
      0u)
      << result.errors;
}

#endif

TEST_F(WarningTest, LoneSurrogatesAreWrittenAsReplacementCharacters) {
  Write("a.csv", std::string("\xFF\xFEN\0\n\0x\0\x34\xD8y\0\n\0", 14));
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=N Long\n");
  EXPECT_EQ(
      Run({"rows", "a.csv", "--format", "none"}).errors,
      Warning("In file a.csv, field value x\xEF\xBF\xBDy does not match defined type of field "
              "N. Update schema.ini file and try again."));
}

class RefusalTest : public TexttablesTest {};

TEST_F(RefusalTest, MissingTable) {
  for (const char* command : {"describe", "rows", "count", "stat"})
    ExpectRefused(Run({command, "nope.csv"}),
                  "texttables: error: 0x80040351: table not found: nope.csv\n");
}

TEST_F(RefusalTest, MissingFolderOfATable) {
  for (const char* command : {"describe", "rows", "count", "stat"})
    ExpectRefused(Run({command, "nowhere/a.csv"}),
                  "texttables: error: 0x80040258: nowhere: the folder cannot be opened (No such "
                  "file or directory)\n");
}

TEST_F(RefusalTest, DirectoryNamedAsATable) {
  std::filesystem::create_directory(Folder() / "x.csv");
  for (const char* command : {"describe", "rows", "count", "stat"})
    ExpectRefused(
        Run({command, "x.csv"}),
        "texttables: error: 0x80040211: x.csv: the file cannot be opened (Is a directory)\n");
}

TEST_F(RefusalTest, TableThatFitsNoLayout) {
  Write("a.csv", "a,b\n1,2,3\n");
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\n");
  for (const char* command : {"describe", "rows", "count", "stat"})
    ExpectRefused(Run({command, "a.csv"}),
                  "texttables: error: 0x80004005: a.csv: row 1 (record 2 with the header line) has "
                  "3 values for 2 columns\n");
}

struct SchemaCase {
  const char* lines;   // behind the section's name
  const char* errors;  // the second and the third line of the message
};

constexpr SchemaCase kSchemaCases[] = {
    {"Col1=\n", "Missing field name in schema.ini.\n\tCol1="},
    {"Col1=A\n", "Missing field type in schema.ini.\n\tCol1=A"},
    {"Col1=A Number\n", "Unknown field type in schema.ini.\n\tCol1=A Number"},
    {"Col1=A Text 10\n",
     "Keyword \"Width\" expected after field type in schema.ini.\n\tCol1=A Text 10"},
    {"Col1=A Text Width\n", "Bad value for field width in schema.ini.\n\tCol1=A Text Width"},
    {"Format=FixedLength\nCol1=A Text Width 1\nCol3=C Text Width 1\n",
     "Fixed width files must specify all field in schema.ini."},
    {"Col1=A Date x\n", "Bad date format in schema.ini.\n\tCol1=A Date x"},
    {"MaxScanRows=1\nMaxScanRows=1\n", "Duplicate option found in schema.ini.\n\tMaxScanRows=1"},
    {"Format=Delimited(|\n", "Invalid format option in schema.ini.\n\tDelimited(|"},
    {"Format=Delimited(\"\n)\n",
     "Double quote cannot be used as a custom delimiter in schema.ini.\n\tDelimited(\"\\n)"},
    {"ColNameHeader=true\n", "Invalid value for option in schema.ini.\n\tColNameHeader=true"},
    {"Colour=red\n", "Unknown option in schema.ini.\n\tColour=red"},
};

TEST_F(RefusalTest, SchemaErrorsKeepTheirLines) {
  Write("a.csv", "1\n");
  for (const SchemaCase& c : kSchemaCases) {
    SCOPED_TRACE(c.lines);
    Write("schema.ini", std::string("[a.csv]\n") + c.lines);
    ExpectRefused(Run({"describe", "a.csv"}),
                  std::string("texttables: error: 0x80040311: a.csv\n\t") + c.errors + "\n");
  }
}

class EventLogTest : public TexttablesTest {
 protected:
  static std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }
};

TEST_F(EventLogTest, TellsBeginAndEndOfOpeningATable) {
  Write("a.csv", "Id\n1\n");
  Output({"--event-log", "log", "count", "a.csv"});
  const std::vector<std::string> lines = LinesOf(Read("log"));
  ASSERT_EQ(lines.size(), 2u) << Read("log");
  const auto begin = nlohmann::ordered_json::parse(lines[0]);
  const auto end = nlohmann::ordered_json::parse(lines[1]);
  EXPECT_EQ(begin.dump(), lines[0]) << "keys in their order, no blanks";
  EXPECT_EQ(begin["event"], "begin");
  EXPECT_EQ(end["event"], "end");
  const char* const beginKeys[] = {"event", "type", "name", "text", "context", "argument"};
  std::size_t place = 0;
  for (const auto& [key, value] : begin.items()) EXPECT_EQ(key, beginKeys[place++]);
  EXPECT_EQ(place, 6u);
  EXPECT_EQ(end.size(), 7u);
  EXPECT_TRUE(end["seconds"].is_number());
  EXPECT_GE(end["seconds"].get<double>(), 0.0);
  for (const auto& event : {begin, end}) {
    EXPECT_EQ(event["name"], "Korvanet.TextFile.OpenDataset");
    EXPECT_TRUE(event["type"].is_number_integer());
    EXPECT_TRUE(event["argument"].is_number_integer());
  }
}

TEST_F(EventLogTest, TellsMessagesAndErrors) {
  Write("a.csv", "N\n1\nabc\n");
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=N Long\n");
  Run({"rows", "a.csv", "--event-log", "log"});
  const std::string text =
      "\"text\":\"In file a.csv, field value abc does not match defined type of field N. "
      "Update schema.ini file and try again.\"}";
  int messages = 0;
  int errors = 0;
  for (const std::string& line : LinesOf(Read("log"))) {
    messages += line == "{\"event\":\"message\"," + text;
    errors += line == "{\"event\":\"error\",\"code\":\"0x80040955\"," + text;
  }
  EXPECT_EQ(messages, 1) << Read("log");
  EXPECT_EQ(errors, 1) << Read("log");
}

TEST_F(EventLogTest, TellsRefusalsAndReplacesTheFile) {
  Write("log", "{\"event\":\"message\",\"text\":\"old\"}\n");
  Run({"--event-log", "log", "list", "nowhere"});
  EXPECT_EQ(Read("log"), "{\"event\":\"error\",\"code\":\"0x80040258\",\"text\":\"nowhere\"}\n");
}

struct LogCase {
  std::vector<std::string> words;
  std::string log;
};

// The log takes the place of its file, and nothing else may be in it.
TEST_F(EventLogTest, NoFileOfTheCommandIsReplaced) {
  const std::string table = "Id\n1\n";
  const std::string ini = "[a.csv]\nColNameHeader=True\n";
  Write("a.csv", table);
  Write("a.csv.xml", "<a/>");
  Write("rows", "[2]\n");
  Write("schema.ini", ini);
  std::filesystem::create_hard_link(Folder() / "a.csv", Folder() / "linked");
  const LogCase cases[] = {
      {{"rows", "a.csv"}, "a.csv"},
      {{"rows", "./a.csv"}, "a.csv"},
      {{"count", "a.csv"}, "./a.csv"},
      {{"rows", "linked"}, "a.csv"},
      {{"rows", "a.csv"}, "linked"},
      {{"rows", "a.csv"}, "schema.ini"},
      {{"rows", "a.csv"}, "~scheam.ini"},
      {{"list", "."}, "schema.ini"},
      {{"delete", "a.csv"}, "a.csv.xml"},
      {{"load", "a.csv", "rows"}, "rows"},
      {{"load", "a.csv", "rows"}, "a.csv"},
      {{"create", "new.csv"}, "new.csv"},
      {{"copy", "a.csv", "new.csv"}, "new.csv"},
      {{"copy", "a.csv", "new.csv"}, "./new.csv.xml"},
      {{"rename", "a.csv", "new.csv"}, "new.csv"},
      {{"rename", "a.csv", "new.csv"}, "a.csv"},
  };
  for (const LogCase& c : cases) {
    SCOPED_TRACE(c.words[0] + " " + c.log);
    std::vector<std::string> words = c.words;
    words.insert(words.end(), {"--event-log", c.log});
    ExpectUsageError(Run(words), "the event log cannot be " + c.log);
    EXPECT_EQ(Read("a.csv"), table);
    EXPECT_EQ(Read("a.csv.xml"), "<a/>");
    EXPECT_EQ(Read("rows"), "[2]\n");
    EXPECT_EQ(Read("schema.ini"), ini);
    for (const char* name : {"new.csv", "new.csv.xml", "~scheam.ini"})
      EXPECT_FALSE(std::filesystem::exists(Folder() / name)) << name;
  }
}

TEST_F(EventLogTest, NoFileOfTheStandardStreamsIsReplaced) {
  Write("a.csv", "Id\n1\n");
  Write("rows", "[2]\n");
  ProcessRequest load = Request({"load", "a.csv", "--event-log", "rows"});
  load.inputFile = (Folder() / "rows").string();
  ExpectUsageError(RunProcess(load), "the event log cannot be rows");
  EXPECT_EQ(Read("rows"), "[2]\n");
  ProcessRequest rows = Request({"rows", "a.csv", "--event-log", "out"});
  rows.outputFile = (Folder() / "out").string();
  ExpectUsageError(RunProcess(rows), "the event log cannot be out");
}

TEST_F(EventLogTest, AFileThatHoldsNoLogIsKept) {
  Write("a.csv", "Id\n1\n");
  Write("b.csv", "Id\n1\n");
  Write("short", "{");
  for (const char* name : {"b.csv", "short"}) {
    const std::string before = Read(name);
    for (const char* command : {"count", "describe"})
      ExpectUsageError(Run({command, "a.csv", "--event-log", name}), "holds no event log");
    ExpectUsageError(Run({"list", ".", "--event-log", name}), "holds no event log");
    EXPECT_EQ(Read(name), before);
  }
}

TEST_F(EventLogTest, AnEmptyFileAndAnOlderLogAreReplaced) {
  Write("a.csv", "Id\n1\n");
  Write("log", "");
  for (int run = 0; run < 2; ++run) {
    Output({"count", "a.csv", "--event-log", "log"});
    EXPECT_NE(Read("log").find("\"begin\""), std::string::npos);
  }
}

TEST_F(EventLogTest, FileThatCannotBeWrittenIsAWrongCommandLine) {
  ExpectUsageError(Run({"--event-log", "nowhere/log", "locale"}), "nowhere/log");
}

}  // namespace
