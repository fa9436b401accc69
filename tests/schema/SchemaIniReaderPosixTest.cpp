// A schema.ini that the user may not read. Only POSIX systems let a test take that right away.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <string_view>

#include "reading/OpenTextDataset.h"
#include "schema/SchemaIniReader.h"
#include "support/OrdinaryUser.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"

namespace TextFile {
namespace {

namespace fs = boost::filesystem;

// An administrator who gives up the rights keeps the group.
constexpr fs::perms kReadable = fs::owner_read | fs::group_read | fs::others_read;
constexpr fs::perms kReadOnlyFolder = kReadable | fs::owner_all | fs::group_exe | fs::others_exe;

class UnreadableSchemaIniTest : public EnglishTest {
 protected:
  UnreadableSchemaIniTest() {
    folder_.Write(u"a.csv", "x,y\n1,2\n");
    folder_.Write(u"schema.ini", "[a.csv]\nColNameHeader=False\nMaxScanRows=7\n");
    fs::permissions(folder_.Native(), kReadOnlyFolder);
    fs::permissions(folder_.Native(u"a.csv"), kReadable);
    AllowReading(false);
  }

  void AllowReading(bool allowed) const {
    fs::permissions(folder_.Native(u"schema.ini"), allowed ? kReadable : fs::no_perms);
  }

  quenra::test::TemporaryFolder folder_;
};

TEST_F(UnreadableSchemaIniTest, HasNoSections) {
  SchemaOptions options;
  {
    const OrdinaryUser ordinary;
    EXPECT_FALSE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"a.csv", options));
    EXPECT_EQ(options.specified, 0u);
  }
  AllowReading(true);
  const OrdinaryUser ordinary;
  EXPECT_TRUE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"a.csv", options));
}

TEST_F(UnreadableSchemaIniTest, TablesOpenAsIfThereWereNone) {
  const OrdinaryUser ordinary;
  TextDatasetDescription table = DescribeFile(folder_.Path(), u"a.csv");
  OpenDatasetStatus status = OpenDatasetStatus::kScanFailed;
  ASSERT_TRUE(OpenTextDataset(table, OpenOptions(), status));
  EXPECT_TRUE(table.options.columnNameHeader);
  EXPECT_EQ(table.options.specified, 0u);
  ASSERT_EQ(table.fields.size(), 2u);
  EXPECT_EQ(table.fields[0].name, u"x");
  EXPECT_EQ(table.options.dateTimeFormat, u"M/d/yyyy H:mm:ss") << "completed from the locale";
}

}  // namespace
}  // namespace TextFile

#endif
