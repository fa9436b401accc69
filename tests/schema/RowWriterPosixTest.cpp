// Files that are exchanged while they are open, which Windows does not allow.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <string>

#include "host/CoreSupport/Variant.h"
#include "reading/OpenTextDataset.h"
#include "schema/RowWriter.h"
#include "schema/TableFiles.h"
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
    EXPECT_EQ(ToUtf8(writer.failure().text),
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

// With a further name the file stays the same one, and is written over.
TEST_F(RowWriterPosixTest, ATableThatIsCreatedAnewInItsFileIsTold) {
  FieldDefinition other;
  other.name = u"Other";
  other.type = FieldType::kString;
  const std::string created = "\xEF\xBB\xBFOther\n";
  for (const bool waits : {true, false}) {
    SCOPED_TRACE(waits ? "a row waits" : "all rows have gone out");
    folder_.Write(u"t.csv", kTable);
    if (!folder_.Exists(u"second"))
      boost::filesystem::create_hard_link(folder_.Native(u"t.csv"), folder_.Native(u"second"));
    RowWriter writer(table_);
    ASSERT_TRUE(writer.Open());
    do {
      ASSERT_TRUE(WriteRow(writer));
    } while (folder_.Read(u"t.csv") == kTable);
    if (waits) {
      ASSERT_TRUE(WriteRow(writer));
    }
    CreateTableFiles({folder_.Path(), u"t.csv"}, {other});
    EXPECT_FALSE(writer.Close());
    EXPECT_EQ(ToUtf8(writer.failure().text),
              ToUtf8(table_.path) +
                  ": the file has been cut or created anew meanwhile, and its rows are gone");
    EXPECT_EQ(folder_.Read(u"t.csv"), created);
    EXPECT_EQ(folder_.Read(u"second"), created);
    folder_.Remove(u"schema.ini");
  }
}

}  // namespace
}  // namespace TextFile

#endif
