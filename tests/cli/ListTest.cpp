#include "cli/TexttablesTest.h"

namespace {

using ListTest = TexttablesTest;

TEST_F(ListTest, NamesTextFilesByTheirExtensionInAnyCase) {
  for (const char* name : {"A.CSV", "b.Txt", "c.dat", "d.tsv", "e.psv", "f.tab", "g.asc",
                           "data.text", "data.txt.bak", "schema.ini"})
    Write(name, "x\n");
  std::filesystem::create_directory(Folder() / "folder.csv");
  EXPECT_EQ(Output({"list", ".", "--json"}),
            "[\"A.CSV\", \"b.Txt\", \"d.tsv\", \"e.psv\", \"f.tab\", \"g.asc\"]\n");
  EXPECT_EQ(Output({"list", "."}), "A.CSV\nb.Txt\nd.tsv\ne.psv\nf.tab\ng.asc\n");
}

TEST_F(ListTest, FolderWithoutTablesIsAnEmptyArray) {
  EXPECT_EQ(Output({"list", ".", "--json"}), "[]\n");
  EXPECT_EQ(Output({"list", "."}), "");
}

TEST_F(ListTest, TakesSeparatorsAtTheEndAndAbsolutePaths) {
  Write("d/x.csv", "1\n");
  EXPECT_EQ(Output({"list", "d/"}), "x.csv\n");
  EXPECT_EQ(Output({"list", "d///"}), "x.csv\n");
  EXPECT_EQ(Output({"list", (Folder() / "d").string()}), "x.csv\n");
}

#ifndef _WIN32

TEST_F(ListTest, NamesThatAreNotUtf8SurviveAsBytes) {
  Write("caf\xE9.csv", "Id\n1\n2\n");
  EXPECT_EQ(Output({"list", "."}), "caf\xE9.csv\n");
  EXPECT_EQ(Output({"list", ".", "--json"}), "[\"caf\\udce9.csv\"]\n");
  EXPECT_EQ(Output({"claim", ".", "caf\xE9.csv"}), "caf\xE9.csv\n");
  // What list prints can be used again.
  EXPECT_EQ(Output({"count", "caf\xE9.csv"}), "2\n");
  EXPECT_EQ(Output({"describe", "caf\xE9.csv", "--json"}).substr(0, 27),
            "{\"table\": \"caf\\udce9.csv\", ");
}

#endif

TEST_F(ListTest, MissingFolderIsRefusedWithItsName) {
  ExpectRefused(Run({"list", "nowhere"}),
                "texttables: error: 0x80040258: nowhere: the folder cannot be opened (No such file "
                "or directory)\n");
}

TEST_F(ListTest, FileInPlaceOfAFolderIsRefused) {
  Write("a.csv", "1\n");
  ExpectRefused(
      Run({"list", "a.csv"}),
      "texttables: error: 0x80040258: a.csv: the folder cannot be opened (Not a directory)\n");
}

#ifndef _WIN32
// What is no plain file may be a folder shown in another way; whether it can be read is seen then.
TEST_F(ListTest, AFolderThatCannotBeReadIsNotAnEmptyOne) {
  ExpectRefused(Run({"list", "/dev/null"}),
                "texttables: error: 0x80070014: Not a directory: /dev/null\n");
}
#endif

using ClaimTest = TexttablesTest;

TEST_F(ClaimTest, ClaimsTablesAndTheirMetadataFiles) {
  EXPECT_EQ(Output({"claim", ".", "a.csv", "a.csv.xml", "b.shp"}), "a.csv\na.csv.xml\n");
  EXPECT_EQ(Output({"claim", ".", "a.csv", "a.csv.xml", "b.shp", "--json"}),
            "[\"a.csv\", \"a.csv.xml\"]\n");
  EXPECT_EQ(Output({"claim", ".", "b.shp", "a.csv.xml", "z.TXT", "a.csv"}),
            "a.csv.xml\nz.TXT\na.csv\n");
}

TEST_F(ClaimTest, NothingClaimedIsNoFailure) {
  EXPECT_EQ(Output({"claim", ".", "b.shp", "--json"}), "[]\n");
  EXPECT_EQ(Output({"claim", ".", "b.shp"}), "");
}

TEST_F(ClaimTest, WithoutNamesTheFolderIsRead) {
  Write("b.csv", "1\n");
  Write("a.txt", "1\n");
  Write("a.txt.xml", "<m/>");
  Write("c.txt.xml", "<m/>");
  Write("schema.ini", "");
  std::filesystem::create_directory(Folder() / "x.csv");
  EXPECT_EQ(Output({"claim", ".", "--json"}), "[\"a.txt\", \"a.txt.xml\", \"b.csv\"]\n");
}

TEST_F(ClaimTest, FoldersAreNoTablesWhateverTheirName) {
  std::filesystem::create_directory(Folder() / "x.csv");
  EXPECT_EQ(Output({"claim", ".", "x.csv", "y.csv"}), "y.csv\n");
}

TEST_F(ClaimTest, NamesAreTakenAsTheyAre) {
  EXPECT_EQ(Output({"claim", ".", "[a].csv", "list.csv", "list", "caf\xC3\xA9.csv"}),
            "[a].csv\nlist.csv\ncaf\xC3\xA9.csv\n");
  EXPECT_EQ(Output({"claim", ".", "[a,b.csv]", "[x.csv", "--json"}), "[\"[x.csv\"]\n");
  EXPECT_EQ(Output({"claim", ".", "--", "-x.csv"}), "-x.csv\n");
}

TEST_F(ClaimTest, MissingFolderWithoutNamesIsRefused) {
  const ProcessResult result = Run({"claim", "nowhere"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors.rfind("texttables: error: 0x80070002: ", 0), 0u) << result.errors;
  EXPECT_NE(result.errors.find("nowhere"), std::string::npos) << result.errors;
}

}  // namespace
