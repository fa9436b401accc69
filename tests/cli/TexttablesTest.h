// A folder of byte-exact files, and the program run in it.
//
//   using ListTest = TexttablesTest;
//   TEST_F(ListTest, NamesTextFilesOnly) {
//     Write("a.csv", "Id\n1\n");
//     EXPECT_EQ(Run({"list", ".", "--json"}).output, "[\"a.csv\"]\n");
//   }
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "support/ProcessRunner.h"

class TexttablesTest : public testing::Test {
 protected:
  TexttablesTest() {
    // Several of these programs may run at once: a name that is taken is not ours.
    std::random_device random;
    do {
      folder_ = std::filesystem::temp_directory_path() / ("texttables-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(folder_));
  }

  ~TexttablesTest() override {
    std::error_code error;
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
    std::filesystem::remove_all(folder_, error);
  }

  const std::filesystem::path& Folder() const { return folder_; }

  // `name` may lie in a folder below, which is then made.
  void Write(const std::string& name, std::string_view bytes) const {
    std::filesystem::create_directories((folder_ / name).parent_path());
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
  }

  std::string Read(const std::string& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // A table that the program has written rows to, with LF at the ends of its lines: rows end as
  // lines do on the system.
  std::string ReadTable(const std::string& name) const {
    std::string bytes = Read(name);
#ifdef _WIN32
    for (std::size_t end = 0; (end = bytes.find("\r\n", end)) != std::string::npos; ++end)
      bytes.erase(end, 1);
#endif
    return bytes;
  }

  ProcessRequest Request(std::vector<std::string> arguments) const {
    ProcessRequest request;
    request.program = PROGRAM_FILE;
    request.arguments = std::move(arguments);
    request.folder = folder_.string();
    return request;
  }

  ProcessResult Run(std::vector<std::string> arguments) const {
    return RunProcess(Request(std::move(arguments)));
  }

  // The output of a run that ends well and has nothing to say besides.
  std::string Output(std::vector<std::string> arguments) const {
    const ProcessResult result = Run(std::move(arguments));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.errors, "");
    return result.output;
  }

 private:
  std::filesystem::path folder_;
};

// A run that is refused: nothing on standard output, this on standard error.
inline void ExpectRefused(const ProcessResult& result, const std::string& errors) {
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, errors);
}

// A wrong command line: exit code 2, nothing on standard output, and a message that holds `hint`.
inline void ExpectUsageError(const ProcessResult& result, const std::string& hint) {
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors.rfind("texttables: ", 0), 0u) << result.errors;
  EXPECT_NE(result.errors.find(hint), std::string::npos) << result.errors;
}
