// What only other systems than Windows have.
#ifndef _WIN32

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "platform/RegularFile.h"
#include "support/TemporaryFolder.h"

namespace {

using Access = RegularFile::Access;
using Appended = RegularFile::Appended;

TEST(RegularFilePosixTest, APipeIsRefusedAtOnce) {
  const quenra::test::TemporaryFolder folder;
  const std::string pipe = NativeFromFileName(folder.Path(u"pipe"));
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  RegularFile file;
  EXPECT_FALSE(file.Open(pipe, Access::kRead));
  EXPECT_FALSE(file.Open(pipe, Access::kAppend));
  EXPECT_FALSE(file.Open("/dev/zero", Access::kRead));
}

// Files of this process grow no further than `limit` bytes while it lives.
class FileLimit {
 public:
  explicit FileLimit(rlim_t limit) {
    before_ = std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &old_);
    rlimit lower = old_;
    lower.rlim_cur = limit;
    ::setrlimit(RLIMIT_FSIZE, &lower);
  }
  ~FileLimit() {
    ::setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, before_);
  }
  FileLimit(const FileLimit&) = delete;
  FileLimit& operator=(const FileLimit&) = delete;

 private:
  rlimit old_{};
  void (*before_)(int);
};

TEST(RegularFilePosixTest, WhatDoesNotFitIsTakenBack) {
  const quenra::test::TemporaryFolder folder;
  folder.Write(u"a", "12");
  RegularFile file;
  ASSERT_TRUE(file.Open(NativeFromFileName(folder.Path(u"a")), Access::kAppend));
  {
    const FileLimit limit(10);
    EXPECT_EQ(file.Append("345678901234"), Appended::kTakenBack);
    EXPECT_EQ(file.error().value(), EFBIG);
  }
  EXPECT_EQ(folder.Read(u"a"), "12");
}

// Taken back are the writer's own bytes, wherever it thinks that they are: by the file that is
// open.
TEST(RegularFilePosixTest, AFileThatHasTakenTheNameIsNotCut) {
  const quenra::test::TemporaryFolder folder;
  folder.Write(u"a", "12");
  RegularFile file;
  ASSERT_TRUE(file.Open(NativeFromFileName(folder.Path(u"a")), Access::kAppend));
  boost::filesystem::rename(folder.Native(u"a"), folder.Native(u"old"));
  folder.Write(u"a", "another one");
  {
    const FileLimit limit(10);
    EXPECT_EQ(file.Append("345678901234"), Appended::kTakenBack);
  }
  EXPECT_EQ(folder.Read(u"a"), "another one");
  EXPECT_EQ(folder.Read(u"old"), "12");
}

}  // namespace

#endif
