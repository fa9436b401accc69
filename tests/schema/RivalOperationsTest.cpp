// Several processes that work on one table at once: what they say and what they leave must be what
// they would have said and left one after another, in some order.
#ifdef WRITING_FAULTS_PROGRAM

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
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

// ---------------------------------------------------------------------------------------------
// Tables, and what an operation makes of them
// ---------------------------------------------------------------------------------------------

// A table as far as the operations tell one from another: its rows by their first values, and of
// its section the number in MaxScanRows, which goes with it wherever it goes (0: none), and whether
// a mismatch has declared a third column.
struct Table {
  std::set<int> rows;
  int section = 0;
  bool third = false;
  friend bool operator==(const Table&, const Table&) = default;
};

void PrintTo(const Table& table, std::ostream* stream) {
  *stream << testing::PrintToString(table.rows) << " of section " << table.section
          << (table.third ? " with a third column" : "");
}

using Tables = std::map<std::string, Table>;

constexpr int kRowOfX = 100;

// All work on x.csv; "I" stands for the process's number.
struct Kind {
  const char* name;
  std::vector<std::string> words;
  // Refused only for what is there. Other refusals may also come from being too late.
  bool refusedForAReason;
  // Whether it can be done only with a table there at first, or only without one.
  enum class Needs { kEither, kTable, kNoTable } needs;
};

const Kind kKinds[] = {
    {"new", {"new", "FOLDER", "x.csv"}, true, Kind::Needs::kNoTable},
    {"over", {"create", "FOLDER", "x.csv"}, false, Kind::Needs::kEither},
    {"load", {"load", "FOLDER", "x.csv", "1", "I"}, false, Kind::Needs::kTable},
    {"renameTo", {"rename", "FOLDER", "aI.csv", "x.csv"}, true, Kind::Needs::kNoTable},
    {"renameFrom", {"rename", "FOLDER", "x.csv", "bI.csv"}, true, Kind::Needs::kTable},
    {"copyTo", {"copy", "FOLDER", "aI.csv", "FOLDER", "x.csv"}, true, Kind::Needs::kNoTable},
    {"copyFrom", {"copy", "FOLDER", "x.csv", "FOLDER", "cI.csv"}, false, Kind::Needs::kTable},
    {"delete", {"delete", "FOLDER", "x.csv"}, true, Kind::Needs::kTable},
    {"mismatch", {"mismatch", "FOLDER", "x.csv", "2"}, false, Kind::Needs::kTable},
};

struct Process {
  const Kind* kind = nullptr;
  int number = 0;
  int exitCode = -1;
  std::string output;
};

// Does the operation; false, and nothing is changed, where it has to be refused.
bool Apply(const Process& process, Tables& tables) {
  const std::string kind = process.kind->name;
  const std::string number = std::to_string(process.number);
  const auto x = tables.find("x.csv");
  const bool isThere = x != tables.end();
  if (kind == "over") {
    const int section = isThere ? x->second.section : 0;
    tables["x.csv"] = Table{{}, section, false};
    return true;
  }
  const bool makesX = process.kind->needs == Kind::Needs::kNoTable;
  if (isThere == makesX) return false;
  if (kind == "new") {
    tables["x.csv"] = Table();
  } else if (makesX) {
    tables["x.csv"] = tables.at("a" + number + ".csv");
    if (kind == "renameTo") tables.erase("a" + number + ".csv");
  } else if (kind == "load") {
    x->second.rows.insert(process.number);
  } else if (kind == "mismatch") {
    if (x->second.third) return false;
    x->second.third = true;
  } else {
    if (kind == "renameFrom") tables["b" + number + ".csv"] = x->second;
    if (kind == "copyFrom") tables["c" + number + ".csv"] = x->second;
    if (kind != "copyFrom") tables.erase("x.csv");
  }
  return true;
}

// Whether the processes give what was found in some order. `done` has a bit for each that had its
// turn.
bool HasOrder(const std::vector<Process>& processes, unsigned done, const Tables& tables,
              const Tables& found) {
  if (done + 1 == 1u << processes.size()) return tables == found;
  for (std::size_t i = 0; i < processes.size(); ++i) {
    if ((done & 1u << i) != 0) continue;
    const Process& process = processes[i];
    Tables next = tables;
    const bool can = Apply(process, next);
    const unsigned with = done | 1u << i;
    if (process.exitCode == 0) {
      if (can && HasOrder(processes, with, next, found)) return true;
    } else {
      const bool mayBeIdle = !can || !process.kind->refusedForAReason;
      if (mayBeIdle && HasOrder(processes, with, tables, found)) return true;
      // A row may be in the file and its loader not certain that the file is still the table's.
      const bool isLoad = process.kind->words[0] == "load";
      if (isLoad && can && HasOrder(processes, with, next, found)) return true;
    }
  }
  return false;
}

// ---------------------------------------------------------------------------------------------
// Processes and folders
// ---------------------------------------------------------------------------------------------

constexpr const char* kRivalRounds = "10";

class RivalOperationsTest : public testing::Test {
 protected:
  static int Run(const TemporaryFolder& folder, std::vector<std::string> words, int number,
                 std::string& output) {
    for (std::string& word : words) {
      if (word == "FOLDER") {
        word = ToUtf8(folder.Path());
      } else if (const std::size_t at = word.find('I'); at != std::string::npos) {
        word.replace(at, 1, std::to_string(number));
      }
    }
    ProcessRequest request;
    request.program = WRITING_FAULTS_PROGRAM;
    request.arguments = std::move(words);
    request.environment = {{"FAULT_DELAY", "300"}, {"ASAN_OPTIONS", "detect_leaks=0"}};
    const ProcessResult result = RunProcess(request);
    output = result.output + result.errors;
    return result.exitCode;
  }

  static std::string Section(const std::string& name, int number) {
    return "[" + name +
           "]\nFormat=CSVDelimited\nColNameHeader=True\nMaxScanRows=" + std::to_string(number) +
           "\nCol1=Id Long\nCol2=Name Text Width 100\n";
  }

  static Tables Fill(const TemporaryFolder& folder, bool withX, int processes) {
    Tables tables;
    std::string ini;
    const auto add = [&](const std::string& name, int row) {
      folder.Write(std::u16string(name.begin(), name.end()),
                   "Id,Name\n" + std::to_string(row) + ",one\n");
      ini += Section(name, row);
      tables[name] = Table{{row}, row, false};
    };
    for (int i = 1; i <= processes; ++i) add("a" + std::to_string(i) + ".csv", i);
    if (withX) add("x.csv", kRowOfX);
    folder.Write(u"schema.ini", ini);
    return tables;
  }

  static Table ReadTable(const std::string& bytes, const SectionLines* lines) {
    Table table;
    std::string rest = bytes;
    if (rest.starts_with("\xEF\xBB\xBF")) rest.erase(0, 3);
    EXPECT_TRUE(rest.starts_with("Id,Name\n")) << bytes;
    EXPECT_TRUE(rest.ends_with("\n")) << bytes;
    for (std::size_t at = rest.find('\n') + 1; at < rest.size(); at = rest.find('\n', at) + 1)
      EXPECT_TRUE(table.rows.insert(std::stoi(rest.substr(at))).second) << "twice: " << bytes;
    EXPECT_NE(lines, nullptr) << "the section is lost";
    if (lines == nullptr) return table;
    for (const std::u16string& line : *lines) {
      if (line.starts_with(u"MaxScanRows=")) table.section = std::stoi(ToUtf8(line).substr(12));
      if (line.starts_with(u"Col3=")) table.third = true;
    }
    return table;
  }

  // All that is there, and nothing else: no temporary file, no section without a table and none
  // twice.
  static Tables Found(const TemporaryFolder& folder, bool withRivals) {
    Tables tables;
    const SchemaIniFile ini(SchemaIniPaths(folder.Path()), SchemaIniFile::Access::kRead);
    std::size_t sections = withRivals ? 20 : 0;
    for (const std::u16string& name : folder.Names()) {
      if (name == u"schema.ini") continue;
      EXPECT_TRUE(name.ends_with(u".csv")) << ToUtf8(name);
      tables[ToUtf8(name)] = ReadTable(folder.Read(name), ini.Find(name));
      ++sections;
    }
    const std::string text = folder.Read(u"schema.ini");
    EXPECT_EQ(std::count(text.begin(), text.end(), '['), sections) << text;
    for (const char16_t prefix : {u'p', u'q'})
      for (char16_t digit = u'0'; withRivals && digit <= u'9'; ++digit)
        EXPECT_NE(ini.Find(std::u16string{prefix, digit}), nullptr);
    return tables;
  }

  // Three processes of each kind at once, and two that write sections of their own meanwhile.
  static void RunRivals(const Kind& one, const Kind& other, bool withX, bool withRivals) {
    SCOPED_TRACE(std::string(one.name) + " beside " + other.name +
                 (withX ? ", with" : ", without") + " a table at first" +
                 (withRivals ? ", and rivals" : ""));
    std::vector<Process> processes;
    for (int i = 1; i <= 6; ++i) processes.push_back({i % 2 == 1 ? &one : &other, i, -1, ""});
    const TemporaryFolder folder;
    const Tables before = Fill(folder, withX, static_cast<int>(processes.size()));
    std::vector<std::thread> threads;
    int rivalCodes[2] = {0, 0};
    std::string rivalOutput[2];
    for (int i = 0; withRivals && i < 2; ++i)
      threads.emplace_back([&, i] {
        rivalCodes[i] = Run(folder, {"sections", "FOLDER", i == 0 ? "p" : "q", kRivalRounds}, 0,
                            rivalOutput[i]);
      });
    for (Process& process : processes)
      threads.emplace_back([&] {
        process.exitCode = Run(folder, process.kind->words, process.number, process.output);
      });
    for (std::thread& thread : threads) thread.join();
    for (int i = 0; i < 2; ++i) EXPECT_EQ(rivalCodes[i], 0) << rivalOutput[i];
    std::string told;
    for (const Process& process : processes) {
      EXPECT_TRUE(process.exitCode == 0 || process.exitCode == 1) << process.output;
      told += std::string(process.kind->name) + " " + std::to_string(process.number) + ": " +
              std::to_string(process.exitCode) + " " + process.output + "\n";
    }
    const Tables found = Found(folder, withRivals);
    EXPECT_TRUE(HasOrder(processes, 0, before, found))
        << told << testing::PrintToString(found) << folder.Read(u"schema.ini");
  }
};

TEST_F(RivalOperationsTest, AnyTwoOnOneTableAreAsIfOneCameAfterTheOther) {
  unsigned pair = 0;
  for (const Kind* one = std::begin(kKinds); one != std::end(kKinds); ++one)
    for (const Kind* other = one; other != std::end(kKinds); ++other, ++pair)
      for (const bool withX : {false, true}) {
        const Kind::Needs missing = withX ? Kind::Needs::kNoTable : Kind::Needs::kTable;
        if (one->needs == missing && other->needs == missing) continue;
        RunRivals(*one, *other, withX, withX == (pair % 2 == 0));
        if (HasFailure()) return;
      }
}

// The check itself: it finds what it is for.
TEST_F(RivalOperationsTest, WhatNoOrderExplainsIsFound) {
  const Kind& make = kKinds[0];
  const Kind& move = kKinds[3];
  const Tables before{{"a2.csv", {{2}, 2, false}}};
  const std::vector<Process> bothDone{{&make, 1, 0, ""}, {&move, 2, 0, ""}};
  EXPECT_FALSE(HasOrder(bothDone, 0, before, {{"x.csv", {}}})) << "rows lost";
  const std::vector<Process> oneDone{{&make, 1, 1, ""}, {&move, 2, 0, ""}};
  EXPECT_TRUE(HasOrder(oneDone, 0, before, {{"x.csv", {{2}, 2, false}}}));
  EXPECT_FALSE(HasOrder(oneDone, 0, before, {{"x.csv", {{2}, 0, false}}})) << "section lost";
  const std::vector<Process> noneDone{{&make, 1, 1, ""}, {&move, 2, 1, ""}};
  EXPECT_FALSE(HasOrder(noneDone, 0, before, before)) << "refused without a reason";
}

}  // namespace
}  // namespace TextFile

#endif  // WRITING_FAULTS_PROGRAM
