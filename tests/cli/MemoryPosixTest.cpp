// What opening a table costs in memory and reading, as the system counts it for the program. The
// sanitizers' own memory would be counted with it.
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "cli/TexttablesTest.h"

namespace {

constexpr std::uint64_t kMegabyte = 1024 * 1024;

struct Cost {
  int exitCode = -1;
  std::uint64_t memory = 0;  // bytes, the most at any time
  std::uint64_t read = 0;    // bytes
};

class MemoryTest : public TexttablesTest {
 protected:
  // The output goes nowhere.
  Cost CostOf(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), PROGRAM_FILE);
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    char locale[] = "LC_ALL=C";
    char* const environment[] = {locale, nullptr};
    pid_t child = -1;
    const int started = posix_spawn(&child, PROGRAM_FILE, &actions, nullptr, words.data(),
                                    static_cast<char* const*>(environment));
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(started, 0);

    Cost cost;
    siginfo_t ended{};
    // The counts are there until the child is reaped.
    EXPECT_EQ(waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
    std::ifstream counts("/proc/" + std::to_string(child) + "/io");
    std::string name;
    counts >> name >> cost.read;
    EXPECT_EQ(name, "rchar:");
    int status = 0;
    rusage usage{};
    EXPECT_EQ(wait4(child, &status, 0, &usage), child);
    if (WIFEXITED(status)) cost.exitCode = WEXITSTATUS(status);
    cost.memory = static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
    return cost;
  }

  // What the program has before it opens anything. The system counts what this process had when it
  // started the program to it as well.
  std::uint64_t Idle() const { return CostOf({"--version"}).memory + kMegabyte; }

  std::string Path(const char* name) const { return (Folder() / name).string(); }
};

TEST_F(MemoryTest, ColumnsThatNoRowHasCostNothing) {
  Write("a.csv", "Id,Name\n1,Ann\n2,Bob\n");
  Write("schema.ini", "[a.csv]\nCol1000000=z Text\n");
  EXPECT_EQ(Output({"count", "a.csv"}), "2\n");
  const Cost cost = CostOf({"count", Path("a.csv")});
  EXPECT_EQ(cost.exitCode, 0);
  EXPECT_LT(cost.memory, Idle() + kMegabyte);
}

TEST_F(MemoryTest, DescribingColumnsThatNoRowHasCostsNothing) {
  Write("a.csv", "Id,Name\n1,Ann\n2,Bob\n");
  Write("schema.ini", "[a.csv]\nCol200000=z Text\n");
  const std::vector<std::string> plain = {"describe", Path("a.csv")};
  const std::vector<std::string> json = {"describe", "--json", Path("a.csv")};
  for (const std::vector<std::string>& arguments : {plain, json}) {
    SCOPED_TRACE(arguments[1]);
    const Cost cost = CostOf(arguments);
    EXPECT_EQ(cost.exitCode, 0);
    EXPECT_LT(cost.memory, Idle() + kMegabyte);
  }
}

TEST_F(MemoryTest, RowsOfColumnsThatNoRowHasCostTheirSlots) {
  constexpr std::uint64_t kFields = 200000;
  Write("a.csv", "Id,Name\n1,Ann\n2,Bob\n");
  Write("schema.ini", "[a.csv]\nCol" + std::to_string(kFields) + "=z Text\n");
  // A slot of 40 bytes, a column of the output of 12, what the converter has of a field, 16, and
  // two maps of 4.
  constexpr std::uint64_t kField = 40 + 12 + 16 + 2 * 4;
  for (const char* const format : {"none", "csv", "typed"}) {
    SCOPED_TRACE(format);
    const Cost cost = CostOf({"rows", "--format", format, "--limit", "1", Path("a.csv")});
    EXPECT_EQ(cost.exitCode, 0);
    EXPECT_LT(cost.memory, Idle() + kFields * kField + 2 * kMegabyte);
  }
}

TEST_F(MemoryTest, OneLongLineCostsThreeTimesItsSize) {
  constexpr std::uint64_t kSize = 32 * kMegabyte;
  const std::string line(kSize, 'x');
  for (const char* end : {"", "\n", "\r\n"}) {
    SCOPED_TRACE(end);
    Write("a.csv", line + end);
    const Cost cost = CostOf({"count", Path("a.csv")});
    EXPECT_EQ(cost.exitCode, 0);
    EXPECT_LT(cost.memory, 3 * kSize + Idle());
    // Once to open the table, once to count its rows.
    EXPECT_LT(cost.read, 2 * kSize + 4 * kMegabyte);
  }
}

TEST_F(MemoryTest, OneLongLineOfSeveralFieldsCostsThreeTimesItsSize) {
  constexpr std::uint64_t kSize = 32 * kMegabyte;
  for (const std::size_t fields : {2, 1024, 65536}) {
    SCOPED_TRACE(fields);
    std::string line;
    line.reserve(kSize);
    while (line.size() < kSize) line.append(kSize / fields - 1, 'x') += ',';
    line.back() = '\n';
    Write("a.csv", line);
    const Cost cost = CostOf({"count", Path("a.csv")});
    EXPECT_EQ(cost.exitCode, 0);
    // What is known of a column, and where its name stands: 100 bytes.
    EXPECT_LT(cost.memory, 3 * kSize + Idle() + fields * 100);
    EXPECT_LT(cost.read, 2 * kSize + 4 * kMegabyte);
  }
}

TEST_F(MemoryTest, ManyShortNamesCostAHundredBytesEach) {
  constexpr std::uint64_t kNames = 300000;
  std::string line;
  for (std::uint64_t i = 0; i < kNames; ++i)
    line += "name" + std::to_string(10000 + i % 90000) + ",";
  line.back() = '\n';
  Write("a.csv", line);
  for (const char* const command : {"count", "describe"}) {
    SCOPED_TRACE(command);
    const Cost cost = CostOf({command, Path("a.csv")});
    EXPECT_EQ(cost.exitCode, 0);
    EXPECT_LT(cost.memory, Idle() + kNames * 100);
  }
}

}  // namespace

#endif
