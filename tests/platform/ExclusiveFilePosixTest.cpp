// Whose a file is after it has been replaced, what is not written through, and who waits for whom.
#ifndef _WIN32

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "platform/ExclusiveFile.h"
#include "support/OrdinaryUser.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace {

using quenra::test::ToUtf8;
using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr uid_t kOtherUser = 4711;
constexpr gid_t kOtherGroup = 4712;

// An access list of the system's own form: version 2, then entries of tag, rights and identifier.
std::string AccessList(std::uint32_t user) {
  const auto entry = [](std::uint16_t tag, std::uint16_t rights, std::uint32_t id) {
    std::string bytes;
    for (const std::uint16_t value : {tag, rights}) {
      bytes += static_cast<char>(value & 0xFF);
      bytes += static_cast<char>(value >> 8);
    }
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(id >> shift & 0xFF);
    return bytes;
  };
  constexpr std::uint32_t kNobody = 0xFFFFFFFF;
  return std::string("\2\0\0\0", 4) + entry(0x01, 6, kNobody) + entry(0x02, 6, user) +
         entry(0x04, 4, kNobody) + entry(0x10, 6, kNobody) + entry(0x20, 0, kNobody);
}

class ExclusiveFilePosixTest : public testing::Test {
 protected:
  NativeFileName Name(std::u16string_view name) const {
    return NativeFromFileName(folder_.Path(name));
  }
  struct stat Status(std::u16string_view name) const {
    struct stat status {};
    EXPECT_EQ(::lstat(Name(name).c_str(), &status), 0);
    return status;
  }
  std::string Attribute(std::u16string_view name, const char* attribute) const {
    char value[256];
    const ssize_t size = ::lgetxattr(Name(name).c_str(), attribute, value, sizeof value);
    return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
  }
  bool SetAttribute(std::u16string_view name, const char* attribute, std::string_view value) const {
    return ::setxattr(Name(name).c_str(), attribute, value.data(), value.size(), 0) == 0;
  }
  // The folder of a test is its owner's; some tests need one for everybody.
  void OpenFolderToAll() const { ::chmod(folder_.Native().c_str(), 0777); }

  bool ReplaceTarget(std::string_view text, ExclusiveFile::InPlace inPlace) const {
    ExclusiveFile file;
    const bool done = file.OpenToReplace(Name(u"temporary"), Name(u"target"), milliseconds(100)) &&
                      file.Write(text) && file.Replace(Name(u"target"), inPlace);
    EXPECT_NE(done, static_cast<bool>(file.error()));
    return done;
  }
  bool ReplaceTarget(std::string_view text) const {
    return ReplaceTarget(text, ExclusiveFile::InPlace::kAllowed);
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(ExclusiveFilePosixTest, KeepsModeAccessListAndAttributes) {
  folder_.Write(u"target", "old");
  if (!SetAttribute(u"target", "user.note", "kept") ||
      !SetAttribute(u"target", "system.posix_acl_access", AccessList(kOtherUser)))
    GTEST_SKIP() << "the file system has no attributes";
  ASSERT_EQ(::chmod(Name(u"target").c_str(), 0640), 0);
  const std::string list = Attribute(u"target", "system.posix_acl_access");
  const struct stat before = Status(u"target");
  ASSERT_TRUE(ReplaceTarget("new", ExclusiveFile::InPlace::kRefused));
  EXPECT_EQ(folder_.Read(u"target"), "new");
  EXPECT_NE(Status(u"target").st_ino, before.st_ino);
  EXPECT_EQ(Status(u"target").st_mode, before.st_mode);
  EXPECT_EQ(Attribute(u"target", "user.note"), "kept");
  EXPECT_EQ(Attribute(u"target", "system.posix_acl_access"), list);
}

TEST_F(ExclusiveFilePosixTest, WhatTheFolderGivesNewFilesDoesNotStay) {
  folder_.Write(u"target", "old");
  if (::setxattr(folder_.Native().c_str(), "system.posix_acl_default",
                 AccessList(kOtherUser).data(), AccessList(kOtherUser).size(), 0) != 0)
    GTEST_SKIP() << "the file system has no access lists";
  ASSERT_TRUE(ReplaceTarget("new", ExclusiveFile::InPlace::kRefused));
  EXPECT_EQ(Attribute(u"target", "system.posix_acl_access"), "none");
}

TEST_F(ExclusiveFilePosixTest, KeepsTheOwnerAndTheBitsThatGoWithIt) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the administrator gives files away";
  folder_.Write(u"target", "old");
  ASSERT_EQ(::chown(Name(u"target").c_str(), kOtherUser, kOtherGroup), 0);
  ASSERT_EQ(::chmod(Name(u"target").c_str(), 06750), 0);
  ASSERT_TRUE(ReplaceTarget("new", ExclusiveFile::InPlace::kRefused));
  EXPECT_EQ(folder_.Read(u"target"), "new");
  EXPECT_EQ(Status(u"target").st_uid, kOtherUser);
  EXPECT_EQ(Status(u"target").st_gid, kOtherGroup);
  EXPECT_EQ(Status(u"target").st_mode & 07777, 06750u);
}

TEST_F(ExclusiveFilePosixTest, AnotherUsersFileIsWrittenInPlaceOrNotAtAll) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs two users";
  OpenFolderToAll();
  folder_.Write(u"target", "old text");
  ASSERT_EQ(::chmod(Name(u"target").c_str(), 0666), 0);
  const struct stat before = Status(u"target");
  {
    const OrdinaryUser ordinary;
    EXPECT_FALSE(ReplaceTarget("refused", ExclusiveFile::InPlace::kRefused));
    EXPECT_EQ(folder_.Read(u"target"), "old text");
    EXPECT_TRUE(ReplaceTarget("old and new text"));
    EXPECT_EQ(folder_.Read(u"target"), "old and new text");
    EXPECT_TRUE(ReplaceTarget("new"));
  }
  EXPECT_EQ(folder_.Read(u"target"), "new");
  EXPECT_EQ(Status(u"target").st_ino, before.st_ino);
  EXPECT_EQ(Status(u"target").st_uid, before.st_uid);
  EXPECT_EQ(Status(u"target").st_mode, before.st_mode);
  EXPECT_EQ(folder_.Names(), std::vector<std::u16string>{u"target"});
}

TEST_F(ExclusiveFilePosixTest, FurtherNamesOfTheTargetStayNamesOfIt) {
  folder_.Write(u"target", "old");
  ASSERT_EQ(::link(Name(u"target").c_str(), Name(u"second").c_str()), 0);
  EXPECT_FALSE(ReplaceTarget("refused", ExclusiveFile::InPlace::kRefused));
  EXPECT_EQ(folder_.Read(u"second"), "old");
  EXPECT_TRUE(ReplaceTarget("new"));
  EXPECT_EQ(folder_.Read(u"second"), "new");
  EXPECT_EQ(Status(u"target").st_nlink, 2u);
}

TEST_F(ExclusiveFilePosixTest, WhatALinkLeadsToIsReplacedAndTheLinkStays) {
  folder_.MakeFolder(u"shared");
  folder_.Write(u"shared/real", "old");
  ASSERT_TRUE(folder_.MakeLink(u"target", u"shared/real"));
  EXPECT_TRUE(ReplaceTarget("new", ExclusiveFile::InPlace::kRefused));
  EXPECT_TRUE(S_ISLNK(Status(u"target").st_mode));
  EXPECT_EQ(folder_.Read(u"shared/real"), "new");
  EXPECT_EQ(folder_.Names(), (std::vector<std::u16string>{u"shared", u"target"}));
}

TEST_F(ExclusiveFilePosixTest, AMountedFileIsWrittenInPlace) {
  folder_.Write(u"target", "old");
  folder_.Write(u"mounted", "old and longer");
  if (::mount(Name(u"mounted").c_str(), Name(u"target").c_str(), nullptr, MS_BIND, nullptr) != 0)
    GTEST_SKIP() << "needs the right to mount";
  EXPECT_FALSE(ReplaceTarget("refused", ExclusiveFile::InPlace::kRefused));
  EXPECT_TRUE(ReplaceTarget("new"));
  ASSERT_EQ(::umount(Name(u"target").c_str()), 0);
  EXPECT_EQ(folder_.Read(u"mounted"), "new");
  EXPECT_EQ(folder_.Read(u"target"), "old");
}

TEST_F(ExclusiveFilePosixTest, NobodyElseReadsWhatWillBeClosedToThem) {
  folder_.Write(u"target", "old");
  ASSERT_EQ(::chmod(Name(u"target").c_str(), 0600), 0);
  ExclusiveFile file;
  ASSERT_TRUE(file.OpenToReplace(Name(u"temporary"), Name(u"target")));
  EXPECT_EQ(Status(u"temporary").st_mode & 0777, 0600u);
  ASSERT_TRUE(file.Write("secret") && file.Replace(Name(u"target")));
  // A target that has gone leaves a new file with a new file's mode.
  folder_.Write(u"target", "old");
  ExclusiveFile second;
  ASSERT_TRUE(second.OpenToReplace(Name(u"temporary"), Name(u"target")));
  folder_.Remove(u"target");
  ASSERT_TRUE(second.Write("new") && second.Replace(Name(u"target")));
  folder_.Write(u"fresh", "");
  EXPECT_EQ(Status(u"target").st_mode, Status(u"fresh").st_mode);
}

// ---------------------------------------------------------------------------------------------
// What stands under the temporary name
// ---------------------------------------------------------------------------------------------

TEST_F(ExclusiveFilePosixTest, WhatNoWriterHasMadeIsNeitherEmptiedNorRemoved) {
  folder_.Write(u"precious", "kept");
  ASSERT_EQ(::link(Name(u"precious").c_str(), Name(u"hard").c_str()), 0);
  ASSERT_TRUE(folder_.MakeLink(u"soft", u"precious"));
  ASSERT_TRUE(folder_.MakeLink(u"nowhere", u"not there"));
  ASSERT_EQ(::mkfifo(Name(u"pipe").c_str(), 0666), 0);
  const std::vector<std::u16string> names = folder_.Names();
  for (const std::u16string_view name : {u"hard", u"soft", u"nowhere", u"pipe"}) {
    SCOPED_TRACE(ToUtf8(name));
    ExclusiveFile file;
    EXPECT_FALSE(file.Open(Name(name)));
    EXPECT_TRUE(file.error());
    EXPECT_THAT(ToUtf8(file.Obstacle()), HasSubstr(ToUtf8(folder_.Path(name)) + " is "));
    EXPECT_FALSE(ExclusiveFile::MeansBusy(file.error()));
  }
  EXPECT_EQ(folder_.Read(u"precious"), "kept");
  EXPECT_EQ(folder_.Names(), names);
}

TEST_F(ExclusiveFilePosixTest, WhatAnotherUserHasLeftBehindIsRefused) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs two users";
  OpenFolderToAll();
  folder_.Write(u"temporary", "of another");
  ASSERT_EQ(::chmod(Name(u"temporary").c_str(), 0666), 0);
  const OrdinaryUser ordinary;
  ExclusiveFile file;
  EXPECT_FALSE(file.Open(Name(u"temporary")));
  EXPECT_THAT(ToUtf8(file.Obstacle()), HasSubstr("belongs to another user"));
  EXPECT_EQ(folder_.Read(u"temporary"), "of another");
}

TEST_F(ExclusiveFilePosixTest, ALeftOverGivesANewFileNoRights) {
  folder_.Write(u"temporary", "half");
  ASSERT_EQ(::chmod(Name(u"temporary").c_str(), 0600), 0);
  ExclusiveFile file;
  ASSERT_TRUE(file.Open(Name(u"temporary")) && file.Write("x") && file.TakeName(Name(u"new")));
  folder_.Write(u"fresh", "");
  EXPECT_EQ(Status(u"new").st_mode, Status(u"fresh").st_mode);
}

// ---------------------------------------------------------------------------------------------
// Writing in place that was ended
// ---------------------------------------------------------------------------------------------

class LeftOverTest : public ExclusiveFilePosixTest {
 protected:
  // As a writer leaves it that ends while it writes into the target.
  void LeaveFinished(std::string_view text) const {
    folder_.Write(u"temporary", text);
    ASSERT_EQ(::chmod(Name(u"temporary").c_str(), 01600), 0);
  }
};

TEST_F(LeftOverTest, IsCompletedBeforeAnythingElse) {
  for (const std::string_view halfway : {"", "new", "new t", "new text"}) {
    SCOPED_TRACE(halfway);
    folder_.Write(u"target", halfway);
    LeaveFinished("new text");
    ExclusiveFile file;
    ASSERT_TRUE(file.OpenToReplace(Name(u"temporary"), Name(u"target")));
    EXPECT_EQ(folder_.Read(u"target"), "new text");
    EXPECT_EQ(folder_.Read(u"temporary"), "");
  }
}

TEST_F(LeftOverTest, ZerosThatAStoppedMachineLeavesAreWrittenOver) {
  folder_.Write(u"target", std::string_view("new\0\0\0", 6));
  LeaveFinished("new text");
  ExclusiveFile file;
  ASSERT_TRUE(file.OpenToReplace(Name(u"temporary"), Name(u"target")));
  EXPECT_EQ(folder_.Read(u"target"), "new text");
}

TEST_F(LeftOverTest, AFileThatWasNotTouchedOrChangedSinceStays) {
  folder_.Write(u"target", "old text");
  LeaveFinished("new text");
  ExclusiveFile file;
  ASSERT_TRUE(file.OpenToReplace(Name(u"temporary"), Name(u"target")));
  EXPECT_EQ(folder_.Read(u"target"), "old text");
}

TEST_F(LeftOverTest, StaysWhereTheTargetIsNotToBeWritten) {
  folder_.Write(u"target", "new");
  LeaveFinished("new text");
  ExclusiveFile update;
  EXPECT_FALSE(update.OpenToReplace(Name(u"temporary"), Name(u"target"), milliseconds(0),
                                    ExclusiveFile::InPlace::kRefused));
  ExclusiveFile file;
  EXPECT_FALSE(file.Open(Name(u"temporary"), milliseconds(0)));
  EXPECT_THAT(ToUtf8(file.Obstacle()), HasSubstr("holds the finished text"));
  folder_.Remove(u"target");
  ExclusiveFile third;
  EXPECT_FALSE(third.OpenToReplace(Name(u"temporary"), Name(u"target")));
  EXPECT_EQ(folder_.Read(u"temporary"), "new text");
}

// ---------------------------------------------------------------------------------------------
// Waiting
// ---------------------------------------------------------------------------------------------

// Another process that has a file locked until it is destroyed.
class Holder {
 public:
  explicit Holder(const std::string& path) {
    int ready[2];
    if (::pipe(ready) != 0) return;
    process_ = ::fork();
    if (process_ == 0) {
      const int file = ::open(path.c_str(), O_RDWR | O_CREAT, 0666);
      ::flock(file, LOCK_EX);
      static_cast<void>(::write(ready[1], "x", 1));
      for (;;) ::pause();
    }
    char byte = 0;
    static_cast<void>(::read(ready[0], &byte, 1));
    ::close(ready[0]);
    ::close(ready[1]);
  }
  ~Holder() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;
  pid_t process() const { return process_; }

 private:
  pid_t process_ = -1;
};

TEST_F(ExclusiveFilePosixTest, WaitsNoLongerThanAskedAndSaysForWhom) {
  const Holder holder(Name(u"temporary"));
  ExclusiveFile file;
  EXPECT_FALSE(file.Open(Name(u"temporary"), milliseconds(20)));
  EXPECT_TRUE(ExclusiveFile::MeansBusy(file.error()));
  EXPECT_EQ(ToUtf8(file.Obstacle()), ToUtf8(folder_.Path(u"temporary")) + " is in use by process " +
                                         std::to_string(holder.process()));
  EXPECT_TRUE(folder_.Exists(u"temporary"));
}

TEST_F(ExclusiveFilePosixTest, AFileThatAnotherUserHasIsWaitedForToo) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs two users";
  OpenFolderToAll();
  folder_.Write(u"temporary", "");
  ASSERT_EQ(::chmod(Name(u"temporary").c_str(), 0600), 0);
  const OrdinaryUser ordinary;
  ExclusiveFile file;
  EXPECT_FALSE(file.Open(Name(u"temporary"), milliseconds(20)));
  EXPECT_THAT(ToUtf8(file.Obstacle()), HasSubstr(ToUtf8(folder_.Path(u"temporary"))));
}

}  // namespace

#endif
