#include <gtest/gtest.h>

#include <string>

#include "schema/SchemaIniPaths.h"
#include "support/TemporaryFolder.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

TEST(SchemaIniPathsTest, JoinsAFolderWithTheTwoNames) {
  const TemporaryFolder folder;
  const SchemaIniPaths paths(folder.Path());
  EXPECT_EQ(paths.schemaIni, folder.Path(u"schema.ini"));
  EXPECT_EQ(paths.temporary, folder.Path(u"~scheam.ini"));
}

TEST(SchemaIniPathsTest, JoinPathAddsOneSeparator) {
  EXPECT_EQ(JoinPath(u"", u"a.csv"), u"a.csv");
  EXPECT_EQ(JoinPath(u"/", u"a.csv"), u"/a.csv");
  EXPECT_EQ(JoinPath(u"/data/", u"a.csv"), u"/data/a.csv");
  const std::u16string joined = JoinPath(u"/data", u"a.csv");
  EXPECT_TRUE(joined == u"/data/a.csv" || joined == u"/data\\a.csv");
}

TEST(SchemaIniPathsTest, FolderOfIsThePathWithoutItsLastComponent) {
  EXPECT_EQ(FolderOf(u"/data/x/a.csv"), u"/data/x");
  EXPECT_EQ(FolderOf(u"/a.csv"), u"/");
  EXPECT_EQ(FolderOf(u"a.csv"), u"");
  EXPECT_EQ(FolderOf(u"x/a.csv"), u"x");
  EXPECT_EQ(FolderOf(JoinPath(u"/data/x", u"a.csv")), u"/data/x");
}

// Whether the file system takes names that differ in letter case for different ones.
bool TellsLetterCaseApart(const TemporaryFolder& folder) {
  folder.Write(u"case-probe", "");
  return !folder.Exists(u"CASE-PROBE");
}

TEST(SchemaIniPathsTest, FindsTheOnlyNameInAnotherLetterCase) {
  const TemporaryFolder folder;
  if (!TellsLetterCaseApart(folder)) return;  // the exact name then opens any of them
  folder.Write(u"Schema.INI", "");
  const SchemaIniPaths one(folder.Path());
  EXPECT_EQ(one.schemaIni, folder.Path(u"Schema.INI"));
  EXPECT_EQ(one.temporary, folder.Path(u"~scheam.ini"));

  folder.Write(u"SCHEMA.ini", "");
  EXPECT_EQ(SchemaIniPaths(folder.Path()).schemaIni, folder.Path(u"schema.ini"))
      << "of two neither is the folder's";

  folder.Write(u"schema.ini", "");
  EXPECT_EQ(SchemaIniPaths(folder.Path()).schemaIni, folder.Path(u"schema.ini"))
      << "the exact name wins";
}

TEST(SchemaIniPathsTest, FoldersAndOtherNamesAreNoSchemaIni) {
  const TemporaryFolder folder;
  if (!TellsLetterCaseApart(folder)) return;
  boost::filesystem::create_directory(folder.Native(u"SCHEMA.INI"));
  folder.Write(u"schema.ini.bak", "");
  folder.Write(u"myschema.ini", "");
  EXPECT_EQ(SchemaIniPaths(folder.Path()).schemaIni, folder.Path(u"schema.ini"));
}

TEST(SchemaIniPathsTest, MissingFolderIsNoError) {
  const TemporaryFolder folder;
  const std::u16string missing = folder.Path(u"missing");
  EXPECT_EQ(SchemaIniPaths(missing).schemaIni, JoinPath(missing, u"schema.ini"));
}

}  // namespace
}  // namespace TextFile
