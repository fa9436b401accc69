// What stands beside a table under the names of its metadata and of files that are set aside.
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include "cli/TexttablesTest.h"

namespace {

class CompanionsTest : public TexttablesTest {
 protected:
  static constexpr std::string_view kTable = "Id\n1\n";

  CompanionsTest() { Write("a.csv", kTable); }

  bool Exists(const std::string& name) const {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(Folder() / name, ignored));
  }

  // Every operation on a.csv, none of which touches what has the metadata's name.
  template <class Is>
  void ExpectOnlyTheTable(const Is& isThere) const {
    EXPECT_TRUE(isThere());
    EXPECT_EQ(Output({"copy", "a.csv", "b.csv"}), "");
    EXPECT_EQ(Read("b.csv"), kTable);
    EXPECT_FALSE(Exists("b.csv.xml"));
    EXPECT_EQ(Output({"rename", "a.csv", "c.csv"}), "");
    EXPECT_EQ(Read("c.csv"), kTable);
    EXPECT_FALSE(Exists("c.csv.xml"));
    EXPECT_EQ(Output({"rename", "c.csv", "a.csv"}), "");
    EXPECT_TRUE(isThere());
    EXPECT_EQ(Output({"delete", "a.csv"}), "");
    EXPECT_FALSE(Exists("a.csv"));
    EXPECT_FALSE(Exists("~a.csv.xml.old"));
    EXPECT_TRUE(isThere());
  }
};

TEST_F(CompanionsTest, AFolderIsNoMetadata) {
  std::filesystem::create_directory(Folder() / "a.csv.xml");
  ExpectOnlyTheTable([&] { return std::filesystem::is_directory(Folder() / "a.csv.xml"); });
}

#ifndef _WIN32

TEST_F(CompanionsTest, APipeIsNoMetadata) {
  ASSERT_EQ(::mkfifo((Folder() / "a.csv.xml").c_str(), 0600), 0);
  ExpectOnlyTheTable([&] { return std::filesystem::is_fifo(Folder() / "a.csv.xml"); });
}

TEST_F(CompanionsTest, ALinkToADeviceIsNoMetadata) {
  std::filesystem::create_symlink("/dev/zero", Folder() / "a.csv.xml");
  ExpectOnlyTheTable([&] { return std::filesystem::is_symlink(Folder() / "a.csv.xml"); });
}

TEST_F(CompanionsTest, ALinkToAFolderIsNoMetadata) {
  Write("folder/mine", "kept");
  std::filesystem::create_directory_symlink("folder", Folder() / "a.csv.xml");
  ExpectOnlyTheTable([&] {
    return std::filesystem::is_symlink(Folder() / "a.csv.xml") && Read("a.csv.xml/mine") == "kept";
  });
}

// Where it leads may be a disk that is not there today.
TEST_F(CompanionsTest, ALinkThatLeadsNowhereIsNoMetadata) {
  std::filesystem::create_symlink("elsewhere/about", Folder() / "a.csv.xml");
  ExpectOnlyTheTable(
      [&] { return std::filesystem::read_symlink(Folder() / "a.csv.xml") == "elsewhere/about"; });
}

// A table's metadata is not put into a link's place, nor where it leads.
TEST_F(CompanionsTest, LinksUnderTheNewNameAreTaken) {
  Write("a.csv.xml", "<a/>");
  std::filesystem::create_directory(Folder() / "folder");
  for (const char* const target : {"folder", "elsewhere"}) {
    SCOPED_TRACE(target);
    std::filesystem::create_symlink(target, Folder() / "b.csv.xml");
    for (const char* command : {"copy", "rename"})
      ExpectRefused(Run({command, "a.csv", "b.csv"}),
                    "texttables: error: 0x80070050: ./b.csv.xml: the file exists already\n");
    EXPECT_EQ(std::filesystem::read_symlink(Folder() / "b.csv.xml"), target);
    EXPECT_FALSE(Exists("b.csv"));
    std::filesystem::remove(Folder() / "b.csv.xml");
  }
  EXPECT_TRUE(std::filesystem::is_empty(Folder() / "folder"));
  EXPECT_FALSE(Exists("elsewhere"));
}

// The link goes with the table, and what it leads to stays where it is.
TEST_F(CompanionsTest, ALinkToAFileIsRenamed) {
  Write("about", "<a/>");
  std::filesystem::create_symlink("about", Folder() / "a.csv.xml");
  EXPECT_EQ(Output({"rename", "a.csv", "b.csv"}), "");
  EXPECT_FALSE(Exists("a.csv.xml"));
  EXPECT_EQ(Read("b.csv.xml"), "<a/>");
  EXPECT_EQ(Read("about"), "<a/>");
}

TEST_F(CompanionsTest, ALinkToAFileIs) {
  Write("about", "<a/>");
  std::filesystem::create_symlink("about", Folder() / "a.csv.xml");
  EXPECT_EQ(Output({"copy", "a.csv", "b.csv"}), "");
  EXPECT_EQ(Read("b.csv.xml"), "<a/>");
  EXPECT_EQ(Output({"delete", "a.csv"}), "");
  EXPECT_FALSE(Exists("a.csv.xml"));
  EXPECT_EQ(Read("about"), "<a/>");
}

// In the way of the copy's metadata.
TEST_F(CompanionsTest, APipeUnderTheNewNameIsTaken) {
  Write("a.csv.xml", "<a/>");
  ASSERT_EQ(::mkfifo((Folder() / "b.csv.xml").c_str(), 0600), 0);
  for (const char* command : {"copy", "rename"})
    ExpectRefused(Run({command, "a.csv", "b.csv"}),
                  "texttables: error: 0x80070050: ./b.csv.xml: the file exists already\n");
  EXPECT_TRUE(std::filesystem::is_fifo(Folder() / "b.csv.xml"));
  EXPECT_FALSE(Exists("b.csv"));
}

#endif

TEST_F(CompanionsTest, FilesOfTheNamesThatAreSetAsideStay) {
  Write("a.csv.xml", "<a/>");
  const std::pair<std::string, std::string> theirs[] = {
      {"~a.csv.old", "mine"}, {"~a.csv.2.old", "too"}, {"~a.csv.xml.old", "as well"}};
  for (const auto& [name, bytes] : theirs) Write(name, bytes);
  EXPECT_EQ(Output({"delete", "a.csv"}), "");
  for (const auto& [name, bytes] : theirs) EXPECT_EQ(Read(name), bytes) << name;
  for (const char* name : {"a.csv", "a.csv.xml", "~a.csv.3.old", "~a.csv.xml.2.old"})
    EXPECT_FALSE(Exists(name)) << name;
}

TEST_F(CompanionsTest, NoTableTakesTheNameOfAnotherOnesMetadata) {
  Write("b.csv", "B\n1\n");
  for (const std::string name : {"a.csv.xml", "a.csv.XML"}) {
    const std::string refusal =
        "texttables: error: 0x80004005: " + (std::filesystem::path(".") / name).string() +
        ": the name is that of the metadata of a.csv\n";
    ExpectRefused(Run({"create", name, "--field", "Id:Integer"}), refusal);
    ExpectRefused(Run({"copy", "b.csv", name}), refusal);
    ExpectRefused(Run({"rename", "b.csv", name}), refusal);
    EXPECT_FALSE(Exists(name));
  }
  EXPECT_FALSE(Exists("schema.ini"));
  EXPECT_EQ(Read("b.csv"), "B\n1\n");
  EXPECT_EQ(Output({"copy", "b.csv", "other.xml"}), "");
}

// One that stands alone is a table like any other.
TEST_F(CompanionsTest, MetadataGetsNoRows) {
  Write("row", "[2]\n");
  for (const std::string name : {"a.csv.xml", "a.csv.XML", "other.xml"}) {
    SCOPED_TRACE(name);
    Write(name, kTable);
    if (name == "other.xml") {
      EXPECT_EQ(Output({"--quiet", "load", name, "row"}), "");
      EXPECT_EQ(ReadTable(name), "Id\n1\n2\n");
      continue;
    }
    ExpectRefused(Run({"load", name, "row"}),
                  "texttables: error: 0x80004005: " + (std::filesystem::path(".") / name).string() +
                      ": the file is no table but the metadata of a.csv\n");
    EXPECT_EQ(Read(name), kTable);
  }
}

}  // namespace
