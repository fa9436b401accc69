#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/RegularFile.h"
#include "support/TemporaryFolder.h"

namespace {

using Access = RegularFile::Access;
using Appended = RegularFile::Appended;

class RegularFileTest : public testing::Test {
 protected:
  NativeFileName Name(std::u16string_view name) const {
    return NativeFromFileName(folder_.Path(name));
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(RegularFileTest, ReadsAtAnyPlace) {
  folder_.Write(u"a", "0123456789");
  RegularFile file;
  EXPECT_FALSE(file.IsOpen());
  ASSERT_TRUE(file.Open(Name(u"a"), Access::kRead));
  EXPECT_TRUE(file.IsOpen());
  std::uint64_t size = 0;
  ASSERT_TRUE(file.Size(size));
  EXPECT_EQ(size, 10U);
  char bytes[10];
  EXPECT_EQ(file.ReadAt(7, bytes, 10), 3);
  EXPECT_EQ(std::string(bytes, 3), "789");
  EXPECT_EQ(file.ReadAt(2, bytes, 2), 2);
  EXPECT_EQ(std::string(bytes, 2), "23");
  EXPECT_EQ(file.ReadAt(10, bytes, 1), 0);
}

TEST_F(RegularFileTest, OpensNothingButRegularFilesThatAreThere) {
  RegularFile file;
  for (const Access access : {Access::kRead, Access::kAppend}) {
    EXPECT_FALSE(file.Open(Name(u"none"), access));
    EXPECT_TRUE(file.error());
    EXPECT_FALSE(folder_.Exists(u"none"));
    EXPECT_FALSE(file.Open(NativeFromFileName(folder_.Path()), access));
    EXPECT_FALSE(file.IsOpen());
  }
}

TEST_F(RegularFileTest, AddsAtTheEndAndCuts) {
  folder_.Write(u"a", "12");
  RegularFile file;
  ASSERT_TRUE(file.Open(Name(u"a"), Access::kAppend));
  EXPECT_EQ(file.Append("34"), Appended::kWhole);
  folder_.Append(u"a", "56");
  EXPECT_EQ(file.Append("78"), Appended::kWhole);
  EXPECT_EQ(folder_.Read(u"a"), "12345678");
  ASSERT_TRUE(file.CutTo(3));
  EXPECT_EQ(file.Append("x"), Appended::kWhole);
  EXPECT_EQ(folder_.Read(u"a"), "123x");
}

TEST_F(RegularFileTest, KnowsWhichNamesLeadToIt) {
  folder_.Write(u"a", "1");
  folder_.Write(u"b", "1");
  boost::filesystem::create_hard_link(folder_.Native(u"a"), folder_.Native(u"c"));
  const bool linked = folder_.MakeLink(u"d", u"a");
  RegularFile file;
  EXPECT_FALSE(file.IsAt(Name(u"a")));
  ASSERT_TRUE(file.Open(Name(u"a"), Access::kAppend));
  EXPECT_TRUE(file.IsAt(Name(u"a")));
  EXPECT_FALSE(file.IsAt(Name(u"b")));
  EXPECT_TRUE(file.IsAt(Name(u"c")));
  EXPECT_EQ(file.IsAt(Name(u"d")), linked);
  EXPECT_FALSE(file.IsAt(Name(u"none")));
}

// What each has written stands together only if nobody else has written meanwhile.
TEST_F(RegularFileTest, WritersTakeTurns) {
  folder_.Write(u"a", "");
  std::vector<std::thread> writers;
  std::atomic<bool> failed = false;
  for (const char letter : {'x', 'y', 'z'})
    writers.emplace_back([&, letter] {
      RegularFile file;
      if (!file.Open(Name(u"a"), Access::kAppend)) failed = true;
      for (int round = 0; round < 100 && !failed; ++round) {
        if (!file.Lock()) failed = true;
        for (int i = 0; i < 4; ++i)
          if (file.Append(std::string(1, letter)) != Appended::kWhole) failed = true;
        file.Unlock();
      }
    });
  for (std::thread& writer : writers) writer.join();
  EXPECT_FALSE(failed);
  const std::string bytes = folder_.Read(u"a");
  ASSERT_EQ(bytes.size(), 1200U);
  for (std::size_t i = 0; i < bytes.size(); i += 4)
    ASSERT_EQ(bytes.substr(i, 4), std::string(4, bytes[i])) << i;
}

// Ten seconds of waiting, but none of work.
TEST_F(RegularFileTest, ALockThatIsKeptIsGivenUp) {
  folder_.Write(u"a", "");
  RegularFile keeper;
  RegularFile other;
  ASSERT_TRUE(keeper.Open(Name(u"a"), Access::kAppend));
  ASSERT_TRUE(other.Open(Name(u"a"), Access::kAppend));
  ASSERT_TRUE(keeper.Lock());
  EXPECT_FALSE(other.Lock());
  EXPECT_TRUE(RegularFile::MeansBusy(other.error()));
  keeper.Unlock();
  EXPECT_TRUE(other.Lock());
}

}  // namespace
