// Windows lets nobody read the unfinished file, so that it is not looked at there.
#ifndef _WIN32

#include <gtest/gtest.h>

#include "schema/TableFiles.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

TEST(TableCreationPosixTest, ATableThatCouldNotBeOpenedReplacesNothing) {
  // A fixed-length table needs columns.
  const std::string ini = "[t.csv]\r\n\r\nFormat=FixedLength\n[T.CSV]\nother\n";
  const quenra::test::TemporaryFolder folder;
  folder.Write(u"t.csv", "old\n");
  folder.Write(u"schema.ini", ini);
  std::string refusal;
  try {
    CreateTableFiles({folder.Path(), u"t.csv"}, {});
  } catch (const TableFailure& failure) {
    refusal = quenra::test::ToUtf8(failure.message.text);
  }
  EXPECT_TRUE(
      refusal.ends_with("t.csv: the new table could not be opened with its section of schema.ini"))
      << refusal;
  EXPECT_EQ(folder.Read(u"t.csv"), "old\n");
  EXPECT_EQ(folder.Read(u"schema.ini"), ini);
  EXPECT_EQ(folder.Names(), (std::vector<std::u16string>{u"schema.ini", u"t.csv"}));
}

}  // namespace
}  // namespace TextFile

#endif  // _WIN32
