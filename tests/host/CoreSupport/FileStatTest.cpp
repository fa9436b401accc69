#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <ctime>
#include <fstream>
#include <string>

#include "host/CoreSupport/FileStat.h"
#include "platform/FileNames.h"

namespace quenra {
namespace {

class FileStatTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = boost::filesystem::temp_directory_path() /
              boost::filesystem::unique_path("filestat-%%%%%%%%");
    boost::filesystem::create_directory(folder_);
    file_ = folder_ / "a \xC3\xA9.csv";
    std::ofstream(file_.string(), std::ios::binary) << "12345";
  }
  void TearDown() override { boost::filesystem::remove_all(folder_); }

  std::u16string Path() const { return FileNameFromNative(file_.native()); }

  boost::filesystem::path folder_;
  boost::filesystem::path file_;
};

TEST_F(FileStatTest, ReportsSizeTimesAndMode) {
  boost::filesystem::last_write_time(file_, 1'000'000'000);
  const FileStat stat(Path());
  EXPECT_EQ(stat.GetFileSize(), 5);
  EXPECT_EQ(stat.GetFileSize64(), 5);
  EXPECT_EQ(stat.GetFileTime(2), 1'000'000'000);
  const auto now = static_cast<std::int32_t>(std::time(nullptr));
  EXPECT_NEAR(stat.GetFileTime(0), now, 300) << "made a moment ago";
  EXPECT_GT(stat.GetFileTime(1), 0);
  EXPECT_EQ(stat.GetFileTime(3), 0);
  EXPECT_EQ(stat.GetFileTime(-1), 0);
  EXPECT_EQ(stat.GetFileMode(), 6);
}

TEST_F(FileStatTest, AsksOnce) {
  const FileStat stat(Path());
  boost::filesystem::remove(file_);
  EXPECT_EQ(stat.GetFileSize(), 5);
}

TEST_F(FileStatTest, SizeBeyond32BitsKeepsItsLowHalf) {
  boost::filesystem::resize_file(file_, 0x1'0000'0007ULL);  // no disk space: a sparse file
  const FileStat stat(Path());
  EXPECT_EQ(stat.GetFileSize64(), 0x1'0000'0007LL);
  EXPECT_EQ(stat.GetFileSize(), 7);
}

TEST_F(FileStatTest, MissingFileHasZeros) {
  const std::u16string zeroInside = Path() + std::u16string(u"\0x", 2);
  for (const std::u16string& path : {Path() + u".none", std::u16string(), zeroInside}) {
    const FileStat stat(path);
    EXPECT_EQ(stat.GetFileSize(), 0);
    EXPECT_EQ(stat.GetFileSize64(), 0);
    for (int kind = 0; kind < 3; ++kind) EXPECT_EQ(stat.GetFileTime(kind), 0);
    EXPECT_EQ(stat.GetFileMode(), 0);
  }
}

}  // namespace
}  // namespace quenra
