// Files that are exchanged while they are open, which Windows does not allow.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <string>

#include "host/CoreSupport/Variant.h"
#include "reading/OpenTextDataset.h"
#include "schema/RowWriter.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"
#include "support/UserLocale.h"

namespace TextFile {
namespace {

using quenra::test::ToUtf8;

class RowWriterPosixTest : public EnglishTest {
 protected:
  static constexpr std::string_view kTable = "Id,Name\n1,a\n";

  void SetUp() override {
    folder_.Write(u"t.csv", kTable);
    table_ = DescribeFile(folder_.Path(), u"t.csv");
    auto status = OpenDatasetStatus::kScanFailed;
    ASSERT_TRUE(OpenTextDataset(table_, {}, status));
  }

  static bool WriteRow(RowWriter& writer) {
    const quenra::Variant id(LONG{2});
    const quenra::Variant name(u"b");
    const VARIANT values[] = {id.Get(), name.Get()};
    return writer.Write(values);
  }

  void ExpectExchanged(RowWriter& writer) const {
    EXPECT_FALSE(writer.Close());
    EXPECT_EQ(ToUtf8(writer.failure()),
              ToUtf8(table_.path) + ": the file has been removed or replaced meanwhile");
  }

  quenra::test::TemporaryFolder folder_;
  TextDatasetDescription table_;
};

TEST_F(RowWriterPosixTest, AFileThatTakesTheTablesPlaceGetsNoRows) {
  RowWriter writer(table_);
  ASSERT_TRUE(writer.Open() && WriteRow(writer));
  folder_.Write(u"new", "Other\nx\n");
  boost::filesystem::rename(folder_.Native(u"new"), folder_.Native(u"t.csv"));
  ExpectExchanged(writer);
  EXPECT_EQ(folder_.Read(u"t.csv"), "Other\nx\n");
}

TEST_F(RowWriterPosixTest, AFileThatIsGoneIsTold) {
  RowWriter writer(table_);
  ASSERT_TRUE(writer.Open() && WriteRow(writer));
  folder_.Remove(u"t.csv");
  ExpectExchanged(writer);
  EXPECT_FALSE(folder_.Exists(u"t.csv"));
}

// The rows have all gone out, into a file that is another one now.
TEST_F(RowWriterPosixTest, RowsThatHaveLeftTheTableWithItsFileAreTold) {
  RowWriter writer(table_);
  ASSERT_TRUE(writer.Open());
  // Blocks go out when they are full, and then nothing waits.
  do {
    ASSERT_TRUE(WriteRow(writer));
  } while (folder_.Read(u"t.csv") == kTable);
  boost::filesystem::rename(folder_.Native(u"t.csv"), folder_.Native(u"old"));
  folder_.Write(u"t.csv", kTable);
  ExpectExchanged(writer);
  EXPECT_EQ(folder_.Read(u"t.csv"), kTable);
}

}  // namespace
}  // namespace TextFile

#endif
