// Several of these programs that work on one name at once.
#include <algorithm>
#include <thread>

#include "cli/TexttablesTest.h"

namespace {

class RivalProgramsTest : public TexttablesTest {
 protected:
  std::vector<ProcessResult> RunAll(const std::vector<std::vector<std::string>>& commands) const {
    std::vector<ProcessResult> results(commands.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < commands.size(); ++i)
      threads.emplace_back([&, i] { results[i] = Run(commands[i]); });
    for (std::thread& thread : threads) thread.join();
    return results;
  }
};

TEST_F(RivalProgramsTest, OfManyThatCreateOneTableOneDoes) {
  for (int round = 0; round < 5; ++round) {
    const std::string name = "x" + std::to_string(round) + ".csv";
    const std::vector<std::string> create{"create", name, "--field", "Id:Integer"};
    const std::vector<ProcessResult> results = RunAll({6, create});
    const auto done = [](const ProcessResult& result) { return result.exitCode == 0; };
    EXPECT_EQ(std::count_if(results.begin(), results.end(), done), 1);
    for (const ProcessResult& result : results) {
      const bool isToldWhy = result.errors.find("0x80070050") != std::string::npos;
      EXPECT_NE(done(result), isToldWhy) << result.errors;
    }
    EXPECT_EQ(ReadTable(name), "\xEF\xBB\xBFId\n");
    EXPECT_NE(Read("schema.ini").find("[" + name + "]\n"), std::string::npos);
  }
}

TEST_F(RivalProgramsTest, ARenamedTableIsNotReplacedByANewOne) {
  for (int round = 0; round < 8; ++round) {
    const std::string number = std::to_string(round);
    const std::string from = "a" + number + ".csv";
    const std::string to = "x" + number + ".csv";
    Write(from, "Id\n7\n");
    Write("schema.ini", "[" + from + "]\nMaxScanRows=7\n");
    const std::vector<ProcessResult> results =
        RunAll({{"create", to, "--field", "Id:Integer"}, {"rename", from, to}});
    EXPECT_EQ(results[0].exitCode + results[1].exitCode, 1)
        << results[0].errors << results[1].errors;
    const bool renamed = results[1].exitCode == 0;
    EXPECT_EQ(Read(renamed ? to : from), "Id\n7\n");
    EXPECT_NE(Read("schema.ini").find("[" + (renamed ? to : from) + "]\nMaxScanRows=7\n"),
              std::string::npos)
        << Read("schema.ini");
  }
}

}  // namespace
