#ifndef _WIN32
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <cstdint>
#include <thread>

#include "cli/TexttablesTest.h"
#ifndef _WIN32
#include "support/FileSizeLimit.h"
#endif

namespace {

// On Windows the machine's registry is written; each test takes its entries back.
class RegistrationTest : public TexttablesTest {
 protected:
  ProcessResult RunRegistered(std::vector<std::string> arguments) const {
    ProcessRequest request = Request(std::move(arguments));
    request.environment["QUENRA_REGISTRY"] = (Folder() / "registry").string();
    return RunProcess(request);
  }

  static void ExpectQuietly(const ProcessResult& result) {
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
  }
};

TEST_F(RegistrationTest, RegistersAndTakesBack) {
  ExpectQuietly(RunRegistered({"register"}));
  Write("a.csv", "Id\n1\n");
  EXPECT_EQ(RunRegistered({"count", "a.csv"}).output, "1\n");
  ExpectQuietly(RunRegistered({"unregister"}));
  ExpectQuietly(RunRegistered({"unregister"}));
}

TEST_F(RegistrationTest, ModuleMayBeNamed) {
  ExpectQuietly(RunRegistered({"--module", MODULE_FILE, "register"}));
  ExpectQuietly(RunRegistered({"--module", MODULE_FILE, "unregister"}));
  ExpectUsageError(RunRegistered({"--module", "none.so", "register"}), "none.so");
  ExpectUsageError(RunRegistered({"register", "folder"}), "folder");
}

#ifdef _WIN32

// A module whose file has gone can be found by its registration alone.
TEST_F(RegistrationTest, ProgramUsesTheRegisteredModule) {
  const std::filesystem::path module = MODULE_FILE;
  const std::filesystem::path copy = Folder() / "elsewhere" / module.filename();
  std::filesystem::create_directory(copy.parent_path());
  std::filesystem::copy_file(module, copy);
  Write("a.csv", "Id\n1\n");
  ExpectQuietly(RunRegistered({"--module", copy.string(), "register"}));
  EXPECT_EQ(RunRegistered({"count", "a.csv"}).output, "1\n");
  std::filesystem::remove(copy);
  const ProcessResult result = RunRegistered({"count", "a.csv"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.errors.find("the registered module"), std::string::npos) << result.errors;
  EXPECT_EQ(RunRegistered({"--module", MODULE_FILE, "count", "a.csv"}).output, "1\n");
  ExpectQuietly(RunRegistered({"unregister"}));
  EXPECT_EQ(RunRegistered({"count", "a.csv"}).output, "1\n");
}

#else

TEST_F(RegistrationTest, WritesOneReadableFile) {
  ExpectQuietly(RunRegistered({"register"}));
  const std::string text = Read("registry");
  const std::string entry =
      "[CLSID\\{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}\\InprocServer32]\n"
      "@=\"" MODULE_FILE
      "\"\n"
      "\"ThreadingModel\"=\"Apartment\"\n";
  EXPECT_NE(text.find(entry), std::string::npos) << text;
  ExpectQuietly(RunRegistered({"unregister"}));
  // The key that all classes share stays, as it does on Windows.
  const std::string left = Read("registry");
  EXPECT_EQ(left.find("[CLSID\\"), std::string::npos) << left;
  EXPECT_EQ(left.find("quenra"), std::string::npos) << left;
}

TEST_F(RegistrationTest, RefusedRegistryIsAnError) {
  Write("registry", "no registry\n");
  ExpectRefused(RunRegistered({"register"}),
                "texttables: error: 0x80040201: the registration cannot be changed: the registry "
                "file cannot be understood\n");
  EXPECT_EQ(Read("registry"), "no registry\n");
}

TEST_F(RegistrationTest, KeysOfAnyDepthAreRefusedAndNotFollowed) {
  std::string text = "[a";
  for (int i = 0; i < 500000; ++i) text += "\\a";
  text += "]\n";
  Write("registry", text);
  ExpectRefused(RunRegistered({"register"}),
                "texttables: error: 0x80040201: the registration cannot be changed: the registry "
                "file cannot be understood\n");
  EXPECT_EQ(Read("registry"), text);
}

// Nobody writes to the pipe: who opened it to read would wait for ever.
TEST_F(RegistrationTest, RegistryIsARegularFile) {
  const std::string path = (Folder() / "registry").string();
  const std::string error =
      "texttables: error: 0x80040201: the registration cannot be changed: the registry file is not "
      "a regular file\n";
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  ExpectRefused(RunRegistered({"register"}), error);
  ExpectRefused(RunRegistered({"unregister"}), error);
  EXPECT_TRUE(std::filesystem::is_fifo(path));
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  ExpectRefused(RunRegistered({"register"}), error);
  EXPECT_TRUE(std::filesystem::is_directory(path));
  std::filesystem::remove(path);
  std::filesystem::create_symlink("/dev/zero", path);
  ExpectRefused(RunRegistered({"register"}), error);
  EXPECT_TRUE(std::filesystem::is_symlink(path));
}

TEST_F(RegistrationTest, AnotherProcessThatHasTheRegistryIsTold) {
  ExpectQuietly(RunRegistered({"register"}));
  const std::string text = Read("registry");
  const int file = ::open((Folder() / "registry.new").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  const std::string error =
      "texttables: error: 0x80040201: the registration cannot be changed: another process has kept "
      "the registry file for ten seconds\n";
  ProcessResult unregistered;
  std::thread other([&] { unregistered = RunRegistered({"unregister"}); });
  ExpectRefused(RunRegistered({"register"}), error);
  other.join();
  ExpectRefused(unregistered, error);
  EXPECT_EQ(Read("registry"), text);
  ::close(file);
}

TEST_F(RegistrationTest, FullDiskIsTold) {
  const quenra::test::FileSizeLimit limit(900);
  ExpectRefused(RunRegistered({"register"}),
                "texttables: error: 0x80040201: the registration cannot be changed: there is no "
                "room for the registry file\n");
}

// A file with a hole, which takes no room on the disk.
TEST_F(RegistrationTest, HugeRegistryIsNotRead) {
  Write("registry", "");
  std::filesystem::resize_file(Folder() / "registry", std::uintmax_t{1} << 40);
  ExpectRefused(RunRegistered({"register"}),
                "texttables: error: 0x80040201: the registration cannot be changed: the registry "
                "file is too large\n");
  EXPECT_EQ(std::filesystem::file_size(Folder() / "registry"), std::uintmax_t{1} << 40);
}

#endif

}  // namespace
