// What is on the disk when writing ends half-way, fails, or is done by two processes at once.
#ifdef WRITING_FAULTS_PROGRAM

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "schema/SchemaIniFile.h"
#include "support/ProcessRunner.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

using quenra::test::TemporaryFolder;
using quenra::test::ToUtf8;
using testing::StartsWith;

constexpr int kEnded = 99;        // by a fault
constexpr int kNoFaultLeft = 42;  // the operation has fewer calls
constexpr int kMostCalls = 400;

constexpr std::string_view kIni =
    "[first.csv]\nCol1=F Text\n[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=Id Long\n"
    "Col2=Name Text\n[last.csv]\nCol1=L Text\n";
constexpr std::string_view kTable = "Id,Name\n1,one\n2,two\n";
constexpr std::string_view kMetadata = "<about/>";

using Files = std::map<std::string, std::string>;  // bytes by name

Files Everything(const TemporaryFolder& folder) {
  Files files;
  for (const std::u16string& name : folder.Names()) files[ToUtf8(name)] = folder.Read(name);
  return files;
}

bool IsTemporary(const std::string& name) { return name.starts_with('~'); }

// What belongs to one table; no file has no section or metadata that anybody would look for.
struct Table {
  bool exists = false;
  std::string bytes;
  std::string metadata;
  std::string section;
  friend bool operator==(const Table&, const Table&) = default;
};

void PrintTo(const Table& table, std::ostream* stream) {
  *stream << (table.exists ? table.bytes + "|" + table.metadata + "|" + table.section : "no table");
}

Table TableIn(const TemporaryFolder& folder, std::u16string_view name) {
  Table table;
  table.exists = folder.Exists(name);
  if (!table.exists) return table;
  table.bytes = folder.Read(name);
  table.metadata = folder.Read(std::u16string(name) + u".xml");
  const SchemaIniFile ini(SchemaIniPaths(folder.Path()), SchemaIniFile::Access::kRead);
  if (const SectionLines* lines = ini.Find(name))
    for (const std::u16string& line : *lines) table.section += ToUtf8(line) + "\n";
  return table;
}

struct Operation {
  std::vector<std::string> words;  // the folder's path stands for FOLDER
  std::vector<std::u16string> tables;
};

void PrintTo(const Operation& operation, std::ostream* stream) { *stream << operation.words[0]; }

class WritingFaultsTest : public testing::TestWithParam<Operation> {
 protected:
  static void Fill(const TemporaryFolder& folder) {
    folder.Write(u"a.csv", kTable);
    folder.Write(u"a.csv.xml", kMetadata);
    folder.Write(u"schema.ini", kIni);
  }

  static ProcessResult Run(const TemporaryFolder& folder, const std::vector<std::string>& words,
                           std::map<std::string, std::string> environment = {}) {
    ProcessRequest request;
    request.program = WRITING_FAULTS_PROGRAM;
    request.arguments = words;
    for (std::string& word : request.arguments)
      if (word == "FOLDER") word = ToUtf8(folder.Path());
    // Killed processes leave their memory behind as they should.
    environment["ASAN_OPTIONS"] = "detect_leaks=0";
    request.environment = std::move(environment);
    return RunProcess(request);
  }

  static std::vector<Table> TablesIn(const TemporaryFolder& folder,
                                     const std::vector<std::u16string>& names) {
    std::vector<Table> tables;
    for (const std::u16string& name : names) tables.push_back(TableIn(folder, name));
    return tables;
  }

  static void ExpectOtherSections(const TemporaryFolder& folder) {
    const std::string ini = folder.Read(u"schema.ini");
    EXPECT_TRUE(ini.starts_with("[first.csv]\nCol1=F Text\n")) << ini;
    EXPECT_NE(ini.find("[last.csv]\nCol1=L Text\n"), std::string::npos) << ini;
  }

  static std::vector<std::string> Listed(const TemporaryFolder& folder) {
    std::vector<std::string> listed;
    for (const auto& [name, bytes] : Everything(folder))
      if (name.ends_with(".csv")) listed.push_back(name);
    return listed;
  }
};

// Rows are added in whole rows, so that every number of them is as asked.
bool IsWholeRowsOf(const std::string& bytes, const std::string& all) {
  return all.starts_with(bytes) && bytes.size() >= kTable.size() && bytes.back() == '\n';
}

TEST_P(WritingFaultsTest, EndedAnywhereItIsAsBeforeOrAsAsked) {
  const Operation& operation = GetParam();
  TemporaryFolder asked;
  Fill(asked);
  const std::vector<Table> before = TablesIn(asked, operation.tables);
  ASSERT_EQ(Run(asked, operation.words).exitCode, 0);
  const std::vector<Table> after = TablesIn(asked, operation.tables);
  ASSERT_NE(before, after);

  int ends = 0;
  for (int call = 1; call < kMostCalls; ++call) {
    SCOPED_TRACE("ended before call " + std::to_string(call));
    TemporaryFolder folder;
    Fill(folder);
    const ProcessResult result = Run(folder, operation.words, {{"FAULT_AT", std::to_string(call)}});
    if (result.exitCode == kNoFaultLeft) break;
    ASSERT_EQ(result.exitCode, kEnded) << result.output << result.errors;
    ++ends;
    const std::vector<Table> found = TablesIn(folder, operation.tables);
    if (operation.words[0] == "load")
      EXPECT_TRUE(IsWholeRowsOf(found[0].bytes, after[0].bytes));
    else
      EXPECT_TRUE(found == before || found == after) << testing::PrintToString(found);
    ExpectOtherSections(folder);
    for (const std::string& name : Listed(folder)) EXPECT_FALSE(IsTemporary(name)) << name;

    // The next try does not stumble over what was left behind.
    if (found == before) {
      EXPECT_EQ(Run(folder, operation.words).exitCode, 0);
      EXPECT_EQ(TablesIn(folder, operation.tables), after);
      EXPECT_EQ(Everything(folder), Everything(asked));
    }
  }
  EXPECT_GT(ends, 1);
}

TEST_P(WritingFaultsTest, AFailureAnywhereIsToldAndTakenBack) {
  const Operation& operation = GetParam();
  TemporaryFolder asked;
  Fill(asked);
  const Files before = Everything(asked);
  ASSERT_EQ(Run(asked, operation.words).exitCode, 0);
  const std::vector<Table> after = TablesIn(asked, operation.tables);

  int failures = 0;
  for (int call = 1; call < kMostCalls; ++call) {
    SCOPED_TRACE("call " + std::to_string(call) + " fails");
    TemporaryFolder folder;
    Fill(folder);
    const ProcessResult result =
        Run(folder, operation.words, {{"FAULT_AT", std::to_string(call)}, {"FAULT_MODE", "fail"}});
    if (result.exitCode == kNoFaultLeft) break;
    const Files found = Everything(folder);
    if (result.exitCode == 0) {
      // A step that can be done without, or left-overs that could not be removed.
      EXPECT_EQ(TablesIn(folder, operation.tables), after);
      continue;
    }
    ++failures;
    EXPECT_EQ(result.exitCode, 1) << result.errors;
    EXPECT_THAT(result.output, StartsWith(ToUtf8(folder.Path()) + "/"));
    EXPECT_NE(result.output.find(": "), std::string::npos);
    if (operation.words[0] != "load") {
      EXPECT_EQ(found, before);
    } else {
      EXPECT_TRUE(IsWholeRowsOf(found.at("a.csv"), after[0].bytes));
    }
  }
  EXPECT_GT(failures, 0);
}

const Operation kOperations[] = {
    {{"create", "FOLDER", "new.csv"}, {u"new.csv"}},
    {{"load", "FOLDER", "a.csv", "6000"}, {u"a.csv"}},
    {{"copy", "FOLDER", "a.csv", "FOLDER", "b.csv"}, {u"a.csv", u"b.csv"}},
    {{"rename", "FOLDER", "a.csv", "b.csv"}, {u"a.csv", u"b.csv"}},
    {{"delete", "FOLDER", "a.csv"}, {u"a.csv"}},
    {{"mismatch", "FOLDER", "a.csv", "2"}, {u"a.csv"}},
};

INSTANTIATE_TEST_SUITE_P(All, WritingFaultsTest, testing::ValuesIn(kOperations),
                         [](const auto& parameter) { return parameter.param.words[0]; });

// An existing table that is created anew has two files that cannot change in one step.
TEST_F(WritingFaultsTest, OverwritingLeavesEachFileOldOrNew) {
  TemporaryFolder asked;
  Fill(asked);
  const Table before = TableIn(asked, u"a.csv");
  const std::vector<std::string> words{"create", "FOLDER", "a.csv"};
  asked.Write(u"schema.ini", std::string(kIni));
  ASSERT_EQ(Run(asked, words).exitCode, 0);
  const Table after = TableIn(asked, u"a.csv");
  for (int call = 1; call < kMostCalls; ++call) {
    TemporaryFolder folder;
    Fill(folder);
    const ProcessResult result = Run(folder, words, {{"FAULT_AT", std::to_string(call)}});
    if (result.exitCode == kNoFaultLeft) break;
    const Table found = TableIn(folder, u"a.csv");
    EXPECT_TRUE(found.bytes == before.bytes || found.bytes == after.bytes);
    EXPECT_TRUE(found.section == before.section || found.section == after.section);
    ExpectOtherSections(folder);
  }
}

// Sections twice, in other letter case and in any order, empty lines, line ends of both kinds, and
// a section of the new name.
TEST_F(WritingFaultsTest, AFailureAnywhereLeavesEveryByteOfSchemaIni) {
  const std::string ini = "; note\r\n\r\n[B.csv]\r\nCol1=B Text\r\n\n" + std::string(kIni) +
                          "\n[A.CSV]\nCol1=Id Text\r\n[b.csv]\n[a.csv]\n\n";
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"create", "FOLDER", "a.csv"},
                                             {"new", "FOLDER", "b.csv"},
                                             {"copy", "FOLDER", "a.csv", "FOLDER", "b.csv"},
                                             {"rename", "FOLDER", "a.csv", "b.csv"},
                                             {"delete", "FOLDER", "a.csv"}}) {
    int failures = 0;
    for (int call = 1; call < kMostCalls; ++call) {
      SCOPED_TRACE(words[0] + ", call " + std::to_string(call) + " fails");
      TemporaryFolder folder;
      Fill(folder);
      folder.Write(u"schema.ini", ini);
      const Files before = Everything(folder);
      const ProcessResult result =
          Run(folder, words, {{"FAULT_AT", std::to_string(call)}, {"FAULT_MODE", "fail"}});
      if (result.exitCode == kNoFaultLeft) break;
      if (result.exitCode == 0) continue;
      ++failures;
      EXPECT_EQ(Everything(folder), before);
    }
    EXPECT_GT(failures, 2) << words[0];
  }
}

TEST_F(WritingFaultsTest, AFullDiskIsToldAndTakenBack) {
  const std::string rows(200000, 'x');
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"create", "FOLDER", "new.csv"},
                                             {"copy", "FOLDER", "large.csv", "FOLDER", "b.csv"},
                                             {"rename", "FOLDER", "a.csv", "b.csv"},
                                             {"mismatch", "FOLDER", "a.csv", "2"}}) {
    SCOPED_TRACE(words[0]);
    TemporaryFolder folder;
    Fill(folder);
    folder.Write(u"large.csv", "Name\n" + rows + "\n");
    const Files before = Everything(folder);
    const ProcessResult result = Run(folder, words, {{"FILE_LIMIT", "20"}});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.output, StartsWith(ToUtf8(folder.Path()) + "/"));
    EXPECT_EQ(Everything(folder), before);
  }
}

// A schema.ini of which nothing is told is not taken for none, and all its sections for lost.
TEST_F(WritingFaultsTest, ASchemaIniWhoseStatusIsNotToldIsKept) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"create", "FOLDER", "new.csv"},
        std::vector<std::string>{"rename", "FOLDER", "a.csv", "b.csv"},
        std::vector<std::string>{"delete", "FOLDER", "a.csv"}}) {
    SCOPED_TRACE(words.front());
    TemporaryFolder folder;
    Fill(folder);
    const auto before = Everything(folder);
    EXPECT_EQ(Run(folder, words, {{"FAULT_STATUS", "schema.ini"}}).exitCode, 1);
    EXPECT_EQ(Everything(folder), before);
  }
}

TEST_F(WritingFaultsTest, AFullDiskKeepsTheRowsThatFitWhole) {
  TemporaryFolder folder;
  Fill(folder);
  const ProcessResult result =
      Run(folder, {"load", "FOLDER", "a.csv", "20000"}, {{"FILE_LIMIT", "150000"}});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output,
            ToUtf8(folder.Path(u"a.csv")) + ": the rows could not be written (File too large)\n");
  const std::string bytes = folder.Read(u"a.csv");
  EXPECT_GT(bytes.size(), 60000u);
  EXPECT_LE(bytes.size(), 150000u);
  EXPECT_TRUE(bytes.starts_with(kTable));
  EXPECT_TRUE(bytes.ends_with("a name that makes the row longer\n"));
}

// An ordinary user's folder without the right to write; for root there is no such folder.
TEST_F(WritingFaultsTest, AFolderThatCannotBeWrittenIsToldAndLeftAlone) {
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"create", "/proc/self", "new.csv"},
                                             {"copy", "FOLDER", "a.csv", "/proc/self", "b.csv"}}) {
    TemporaryFolder folder;
    Fill(folder);
    const Files before = Everything(folder);
    const ProcessResult result = Run(folder, words);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.output, StartsWith("/proc/self/"));
    EXPECT_EQ(Everything(folder), before);
  }
}

// ---------------------------------------------------------------------------------------------
// A schema.ini that cannot be replaced, since it has a second name
// ---------------------------------------------------------------------------------------------

class WritingInPlaceTest : public WritingFaultsTest {
 protected:
  static inline const std::vector<std::string> kWords{"sections", "FOLDER", "x", "1"};

  static void FillLinked(const TemporaryFolder& folder) {
    Fill(folder);
    boost::filesystem::create_hard_link(folder.Native(u"schema.ini"), folder.Native(u"second"));
  }
  static std::string Asked() { return std::string(kIni) + "[x0]\nFormat=CSVDelimited\n"; }
};

TEST_F(WritingInPlaceTest, EndedAnywhereNothingIsLost) {
  int halfWay = 0;
  for (int call = 1; call < kMostCalls; ++call) {
    SCOPED_TRACE("ended before call " + std::to_string(call));
    TemporaryFolder folder;
    FillLinked(folder);
    // Longer than what the first sections leave, so that the file is cut as well.
    folder.Append(u"schema.ini", "[x0]\nFormat=TabDelimited\nColNameHeader=True\n");
    const std::string before = folder.Read(u"schema.ini");
    const ProcessResult result = Run(folder, kWords, {{"FAULT_AT", std::to_string(call)}});
    if (result.exitCode == kNoFaultLeft) break;
    ASSERT_EQ(result.exitCode, kEnded);
    const std::string found = folder.Read(u"schema.ini");
    if (found != before && found != Asked()) {
      ++halfWay;
      EXPECT_TRUE(Asked().starts_with(found)) << found;
      EXPECT_EQ(folder.Read(u"~scheam.ini"), Asked());
      // What reading does by itself keeps its hands off, and off the finished text.
      EXPECT_EQ(Run(folder, {"mismatch", "FOLDER", "a.csv", "2"}).exitCode, 1);
      EXPECT_EQ(folder.Read(u"schema.ini"), found);
      EXPECT_EQ(folder.Read(u"~scheam.ini"), Asked());
    }
    // The next writer has all sections.
    EXPECT_EQ(Run(folder, {"sections", "FOLDER", "y", "1"}).exitCode, 0);
    const std::string next = folder.Read(u"schema.ini");
    EXPECT_TRUE(next == before + "[y0]\nFormat=CSVDelimited\n" ||
                next == Asked() + "[y0]\nFormat=CSVDelimited\n")
        << next;
    EXPECT_EQ(folder.Read(u"second"), next);
    EXPECT_FALSE(folder.Exists(u"~scheam.ini"));
  }
  EXPECT_GT(halfWay, 0);
}

// An operation holds schema.ini for longer than it writes it, by way of a second temporary file.
TEST_F(WritingInPlaceTest, AnEndedRenamingLosesNoSection) {
  int halfWay = 0;
  for (int call = 1; call < kMostCalls; ++call) {
    SCOPED_TRACE("ended before call " + std::to_string(call));
    TemporaryFolder folder;
    FillLinked(folder);
    const ProcessResult result =
        Run(folder, {"rename", "FOLDER", "a.csv", "b.csv"}, {{"FAULT_AT", std::to_string(call)}});
    if (result.exitCode == kNoFaultLeft) break;
    ASSERT_EQ(result.exitCode, kEnded);
    if (!folder.Read(u"schema.ini").ends_with("[last.csv]\nCol1=L Text\n")) {
      ++halfWay;
      EXPECT_EQ(Run(folder, {"mismatch", "FOLDER", "a.csv", "2"}).exitCode, 1);
    }
    EXPECT_EQ(Run(folder, {"sections", "FOLDER", "y", "1"}).exitCode, 0);
    ExpectOtherSections(folder);
    EXPECT_EQ(TableIn(folder, folder.Exists(u"a.csv") ? u"a.csv" : u"b.csv").section,
              "Format=CSVDelimited\nColNameHeader=True\nCol1=Id Long\nCol2=Name Text\n");
    EXPECT_EQ(folder.Read(u"second"), folder.Read(u"schema.ini"));
    EXPECT_FALSE(folder.Exists(u"~scheam.ini"));
    EXPECT_FALSE(folder.Exists(u"~schema.ini.tmp"));
  }
  EXPECT_GT(halfWay, 0);
}

TEST_F(WritingInPlaceTest, AFailureAnywhereIsTakenBack) {
  int failures = 0;
  for (int call = 1; call < kMostCalls; ++call) {
    SCOPED_TRACE("call " + std::to_string(call) + " fails");
    TemporaryFolder folder;
    FillLinked(folder);
    const ProcessResult result =
        Run(folder, kWords, {{"FAULT_AT", std::to_string(call)}, {"FAULT_MODE", "fail"}});
    if (result.exitCode == kNoFaultLeft) break;
    if (result.exitCode != 0) ++failures;
    EXPECT_EQ(folder.Read(u"schema.ini"), result.exitCode == 0 ? Asked() : std::string(kIni));
    EXPECT_EQ(folder.Read(u"second"), folder.Read(u"schema.ini"));
    // A left-over that could not be removed is in nobody's way.
    EXPECT_EQ(Run(folder, {"sections", "FOLDER", "y", "1"}).exitCode, 0);
    EXPECT_FALSE(folder.Exists(u"~scheam.ini"));
  }
  EXPECT_GT(failures, 0);
}

// As on a disk that is full when the old text has been cut: neither the new nor the old one fits.
TEST_F(WritingInPlaceTest, WhatCannotBeBroughtBackStaysUnderTheTemporaryName) {
  int kept = 0;
  for (int call = 1; call < kMostCalls; ++call) {
    SCOPED_TRACE("calls from " + std::to_string(call) + " on fail");
    TemporaryFolder folder;
    FillLinked(folder);
    folder.Append(u"schema.ini", "[x0]\nFormat=TabDelimited\nColNameHeader=True\n");
    const std::string before = folder.Read(u"schema.ini");
    const ProcessResult result =
        Run(folder, kWords, {{"FAULT_AT", std::to_string(call)}, {"FAULT_MODE", "fail-on"}});
    if (result.exitCode == kNoFaultLeft) break;
    const std::string found = folder.Read(u"schema.ini");
    if (found != before && found != Asked()) {
      ++kept;
      EXPECT_EQ(result.exitCode, 1);
      EXPECT_NE(result.output.find("~scheam.ini holds the finished text"), std::string::npos);
      EXPECT_EQ(folder.Read(u"~scheam.ini"), Asked());
      EXPECT_EQ(Run(folder, {"sections", "FOLDER", "y", "1"}).exitCode, 0);
      EXPECT_EQ(folder.Read(u"second"), Asked() + "[y0]\nFormat=CSVDelimited\n");
    }
  }
  EXPECT_GT(kept, 0);
}

// ---------------------------------------------------------------------------------------------
// Two processes
// ---------------------------------------------------------------------------------------------

TEST_F(WritingFaultsTest, ProcessesThatUpdateOneSchemaIniLoseNothing) {
  TemporaryFolder folder;
  Fill(folder);
  // An odd number of rounds through the ten sections, so that all are there in the end.
  constexpr const char* kRounds = "290";
  std::vector<std::thread> processes;
  std::vector<int> codes(3, -1);
  for (std::size_t i = 0; i < codes.size(); ++i)
    processes.emplace_back([&, i] {
      codes[i] = Run(folder, {"sections", "FOLDER", std::string(1, "xyz"[i]), kRounds}).exitCode;
    });
  for (std::thread& process : processes) process.join();
  EXPECT_EQ(codes, std::vector<int>(3, 0));
  ExpectOtherSections(folder);
  const SchemaIniFile ini(SchemaIniPaths(folder.Path()), SchemaIniFile::Access::kRead);
  for (const char16_t prefix : {u'x', u'y', u'z'})
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
      const std::u16string name{prefix, digit};
      ASSERT_NE(ini.Find(name), nullptr) << ToUtf8(name);
      EXPECT_EQ(*ini.Find(name), SectionLines{u"Format=CSVDelimited"});
    }
  EXPECT_EQ(Everything(folder).size(), 3u);
}

// One of them is out of room, which is no business of the other one's rows.
TEST_F(WritingFaultsTest, AFullDiskTakesNoRowsOfAnotherLoader) {
  constexpr int kRows = 20000;
  constexpr int kFirstId = 200000;
  for (int round = 0; round < 10; ++round) {
    TemporaryFolder folder;
    Fill(folder);
    int limited = -1;
    int free = -1;
    std::thread other([&] {
      limited =
          Run(folder, {"load", "FOLDER", "a.csv", "20000", "100000"}, {{"FILE_LIMIT", "700000"}})
              .exitCode;
    });
    free = Run(folder, {"load", "FOLDER", "a.csv", "20000", "200000"}).exitCode;
    other.join();
    EXPECT_EQ(limited, 1);
    EXPECT_EQ(free, 0);
    std::istringstream lines(folder.Read(u"a.csv").substr(kTable.size()));
    int next = kFirstId;
    for (std::string line; std::getline(lines, line);) {
      ASSERT_EQ(line.find(",a name that makes the row longer"), 6U) << line;
      if (line.starts_with(std::to_string(next))) ++next;
    }
    ASSERT_EQ(next, kFirstId + kRows);
  }
}

TEST_F(WritingFaultsTest, ColumnsThatTwoProcessesDeclareAreBothKept) {
  for (int round = 0; round < 25; ++round) {
    TemporaryFolder folder;
    folder.Write(u"t.csv", "Id,Name,Third\n1,one,3\n2,two,4\n");
    std::vector<std::thread> processes;
    for (const char* column : {"0", "1", "2"})
      processes.emplace_back([&, column] { Run(folder, {"mismatch", "FOLDER", "t.csv", column}); });
    for (std::thread& process : processes) process.join();
    ASSERT_EQ(folder.Read(u"schema.ini"),
              "[t.csv]\nCol1=Id Double\nCol2=Id Double\nCol3=Id Double\n");
  }
}

TEST_F(WritingFaultsTest, OfTwoProcessesThatCopyToOneNameOneIsRefused) {
  for (int round = 0; round < 20; ++round) {
    TemporaryFolder folder;
    folder.Write(u"a.csv", "Id\n" + std::string(300000, '1') + "\n");
    folder.Write(u"b.csv", "Id\n" + std::string(300000, '2') + "\n");
    std::vector<int> codes(2, -1);
    std::thread other([&] {
      codes[0] = Run(folder, {"copy", "FOLDER", "a.csv", "FOLDER", "c.csv"}).exitCode;
    });
    codes[1] = Run(folder, {"copy", "FOLDER", "b.csv", "FOLDER", "c.csv"}).exitCode;
    other.join();
    ASSERT_EQ(codes[0] + codes[1], 1);
    ASSERT_EQ(folder.Read(u"c.csv"), folder.Read(codes[0] == 0 ? u"a.csv" : u"b.csv"));
    ASSERT_EQ(Everything(folder).size(), 3u);
  }
}

}  // namespace
}  // namespace TextFile

#endif  // WRITING_FAULTS_PROGRAM
