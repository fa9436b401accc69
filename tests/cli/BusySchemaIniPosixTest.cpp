// A schema.ini whose temporary file somebody else has, or that belongs to somebody else.
#ifndef _WIN32

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "cli/TexttablesTest.h"

namespace {

using testing::HasSubstr;

class BusySchemaIniTest : public TexttablesTest {
 protected:
  BusySchemaIniTest() {
    std::string bytes = "Id,N\n";
    for (int i = 0; i < 150; ++i) bytes += std::to_string(i) + "," + std::to_string(i) + "\n";
    Write("a.csv", bytes + "150,7.5\n");
  }
  std::string Path(const std::string& name) const { return (Folder() / name).string(); }

  // Reads a value that fits no inferred type, and cannot write that down.
  void ExpectRowsWithoutAnUpdate() const {
    const ProcessResult result = Run({"rows", "a.csv"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.output, HasSubstr("149,149\n150,\n"));
    EXPECT_THAT(result.errors, HasSubstr("Create schema.ini file and try again."));
  }
};

TEST_F(BusySchemaIniTest, ReadingGoesOnWithoutItsUpdate) {
  const int file = ::open(Path("~scheam.ini").c_str(), O_RDWR | O_CREAT, 0666);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  ExpectRowsWithoutAnUpdate();
  EXPECT_EQ(Read("schema.ini"), "");
  ::close(file);
}

TEST_F(BusySchemaIniTest, AnOperationSaysWhoIsInTheWay) {
  const int file = ::open(Path("~scheam.ini").c_str(), O_RDWR | O_CREAT, 0666);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\n");
  const ProcessResult result = Run({"rename", "a.csv", "b.csv"});
  EXPECT_NE(result.exitCode, 0);
  EXPECT_THAT(result.errors,
              HasSubstr("~scheam.ini is in use by process " + std::to_string(::getpid())));
  EXPECT_EQ(Read("schema.ini"), "[a.csv]\nFormat=CSVDelimited\n");
  ::close(file);
}

// The copy is finished, and only waits to take its name.
TEST_F(BusySchemaIniTest, ATargetThatComesMeanwhileIsToldByItsCode) {
  const int file = ::open(Path("~scheam.ini").c_str(), O_RDWR | O_CREAT, 0666);
  ASSERT_EQ(::flock(file, LOCK_EX), 0);
  ProcessResult result;
  std::thread copy([&] { result = Run({"copy", "a.csv", "b.csv"}); });
  while (!std::filesystem::exists(Path("~b.csv.tmp"))) std::this_thread::yield();
  Write("b.csv", "mine\n");
  ::flock(file, LOCK_UN);
  copy.join();
  ::close(file);
  ExpectRefused(result, "texttables: error: 0x80070050: ./b.csv: the file exists already\n");
  EXPECT_EQ(Read("b.csv"), "mine\n");
}

TEST_F(BusySchemaIniTest, ATemporaryNameOfAnotherFileIsNotWrittenThrough) {
  Write("precious.txt", "kept");
  ASSERT_EQ(::link(Path("precious.txt").c_str(), Path("~scheam.ini").c_str()), 0);
  ExpectRowsWithoutAnUpdate();
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\n");
  const ProcessResult result = Run({"rename", "a.csv", "b.csv"});
  EXPECT_NE(result.exitCode, 0);
  EXPECT_THAT(result.errors, HasSubstr("~scheam.ini is one of several names of a file"));
  EXPECT_EQ(Read("precious.txt"), "kept");
  EXPECT_EQ(Read("schema.ini"), "[a.csv]\nFormat=CSVDelimited\n");
}

TEST_F(BusySchemaIniTest, ReadingDoesNotWriteIntoAFileItCannotReplace) {
  Write("schema.ini", "[b.csv]\nFormat=CSVDelimited\n");
  ASSERT_EQ(::link(Path("schema.ini").c_str(), Path("second").c_str()), 0);
  ExpectRowsWithoutAnUpdate();
  EXPECT_EQ(Read("schema.ini"), "[b.csv]\nFormat=CSVDelimited\n");
  EXPECT_FALSE(std::filesystem::exists(Path("~scheam.ini")));
}

TEST_F(BusySchemaIniTest, TheOwnerOfATableThatIsCreatedAnewStays) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the administrator gives files away";
  Write("schema.ini", "[b.csv]\nFormat=CSVDelimited\n");
  for (const char* const name : {"a.csv", "schema.ini"}) {
    ASSERT_EQ(::chown(Path(name).c_str(), 4711, 4712), 0);
    ASSERT_EQ(::chmod(Path(name).c_str(), 0640), 0);
  }
  Output({"create", "--overwrite", "a.csv", "--field", "Id:Integer"});
  for (const char* const name : {"a.csv", "schema.ini"}) {
    struct stat status {};
    ASSERT_EQ(::stat(Path(name).c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 4711u);
    EXPECT_EQ(status.st_gid, 4712u);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
  }
}

}  // namespace

#endif
