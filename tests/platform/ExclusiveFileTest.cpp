#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "platform/ExclusiveFile.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace {

namespace fs = boost::filesystem;

class ExclusiveFileTest : public testing::Test {
 protected:
  NativeFileName Name(std::u16string_view name) const {
    return NativeFromFileName(folder_.Path(name));
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(ExclusiveFileTest, ReplacesAnotherFileAndTakesItsRights) {
  folder_.Write(u"target", "old and longer");
  fs::permissions(folder_.Native(u"target"), fs::owner_read | fs::owner_write);
  ExclusiveFile file;
  ASSERT_TRUE(file.Open(Name(u"temporary")));
  ASSERT_TRUE(file.Write("ne"));
  ASSERT_TRUE(file.Write("w"));
  EXPECT_EQ(folder_.Read(u"target"), "old and longer");
  ASSERT_TRUE(file.Replace(Name(u"target")));
  EXPECT_EQ(folder_.Read(u"target"), "new");
  EXPECT_FALSE(folder_.Exists(u"temporary"));
#ifndef _WIN32
  EXPECT_EQ(fs::status(folder_.Native(u"target")).permissions(), fs::owner_read | fs::owner_write);
#endif
}

TEST_F(ExclusiveFileTest, MakesATargetThatDoesNotExist) {
  ExclusiveFile file;
  ASSERT_TRUE(file.Open(Name(u"temporary")) && file.Write("x") && file.Replace(Name(u"target")));
  EXPECT_EQ(folder_.Names(), std::vector<std::u16string>{u"target"});
}

TEST_F(ExclusiveFileTest, AnUnfinishedFileGoes) {
  {
    ExclusiveFile file;
    ASSERT_TRUE(file.Open(Name(u"temporary")) && file.Write("x"));
  }
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(ExclusiveFileTest, TakesOverWhatAWriterHasLeftBehind) {
  folder_.Write(u"temporary", "half of somethi");
  ExclusiveFile file;
  ASSERT_TRUE(file.Open(Name(u"temporary")) && file.Write("x") && file.Replace(Name(u"target")));
  EXPECT_EQ(folder_.Read(u"target"), "x");
}

TEST_F(ExclusiveFileTest, TakingANameRefusesOneThatIsTaken) {
  folder_.Write(u"target", "old");
  {
    ExclusiveFile file;
    ASSERT_TRUE(file.Open(Name(u"temporary")) && file.Write("new"));
    EXPECT_FALSE(file.TakeName(Name(u"target")));
    EXPECT_TRUE(ExclusiveFile::MeansTaken(file.error()));
  }
  EXPECT_EQ(folder_.Read(u"target"), "old");
  EXPECT_FALSE(folder_.Exists(u"temporary"));
  ExclusiveFile file;
  ASSERT_TRUE(file.Open(Name(u"temporary")) && file.Write("new"));
  EXPECT_TRUE(file.TakeName(Name(u"other")));
  EXPECT_EQ(folder_.Read(u"other"), "new");
}

TEST_F(ExclusiveFileTest, MovingRefusesANameThatIsTaken) {
  folder_.Write(u"a", "a");
  folder_.Write(u"b", "b");
  EXPECT_TRUE(ExclusiveFile::MeansTaken(ExclusiveFile::Move(Name(u"a"), Name(u"b"))));
  EXPECT_FALSE(ExclusiveFile::Move(Name(u"a"), Name(u"c")));
  EXPECT_TRUE(ExclusiveFile::MeansMissing(ExclusiveFile::Move(Name(u"a"), Name(u"d"))));
  EXPECT_EQ(folder_.Read(u"b") + folder_.Read(u"c"), "ba");
}

TEST_F(ExclusiveFileTest, FailuresSayWhy) {
  ExclusiveFile missing;
  EXPECT_FALSE(missing.Open(Name(u"no folder/temporary")));
  EXPECT_TRUE(ExclusiveFile::MeansMissing(missing.error()));
  folder_.MakeFolder(u"folder");
  ExclusiveFile folder;
  EXPECT_FALSE(folder.Open(Name(u"folder")));
  EXPECT_TRUE(folder.error());
  ExclusiveFile file;
  ASSERT_TRUE(file.Open(Name(u"temporary")) && file.Write("x"));
  EXPECT_FALSE(file.Replace(Name(u"folder")));
  EXPECT_TRUE(file.error());
  EXPECT_TRUE(fs::is_directory(folder_.Native(u"folder")));
}

#ifndef _WIN32
TEST_F(ExclusiveFileTest, DoesNotWriteThroughALink) {
  folder_.Write(u"precious", "kept");
  folder_.MakeLink(u"temporary", u"precious");
  ExclusiveFile file;
  EXPECT_FALSE(file.Open(Name(u"temporary")));
  EXPECT_EQ(folder_.Read(u"precious"), "kept");
}
#endif

TEST_F(ExclusiveFileTest, OneWriterWaitsForTheOther) {
  // Windows' writers wait for ten seconds at most: all of them together take a small part of that.
  constexpr int kThreads = 4;
  constexpr int kRounds = 20;
  std::atomic<int> inside{0};
  std::atomic<int> worst{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        ExclusiveFile file;
        ASSERT_TRUE(file.Open(Name(u"temporary")));
        const int now = ++inside;
        if (now > worst) worst = now;
        ASSERT_TRUE(file.Write(std::string(100, 'x')));
        --inside;
        // Half of them are given up.
        if (round % 2 == 0) {
          ASSERT_TRUE(file.Replace(Name(u"target")));
        }
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(worst, 1);
  EXPECT_EQ(folder_.Read(u"target"), std::string(100, 'x'));
  EXPECT_FALSE(folder_.Exists(u"temporary"));
}

}  // namespace
