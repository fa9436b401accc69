#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "schema/SchemaIniPaths.h"
#include "schema/TableFiles.h"
#include "support/EventRecorder.h"
#include "support/TemporaryFolder.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

using quenra::test::ToUtf8;
using testing::ElementsAre;

class TableFilesTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_.Write(u"a.csv", "Id\n1\n");
    folder_.Write(u"a.csv.xml", "<about/>");
    folder_.Write(u"schema.ini", kIni);
  }

  TableLocation In(std::u16string_view name) const {
    return {folder_.Path(), std::u16string(name)};
  }
  static std::string Refusal(const std::function<void()>& action) {
    try {
      action();
      return "";
    } catch (const TableFailure& failure) {
      return ToUtf8(failure.message.text);
    }
  }
  // Nothing of the table `a.csv` has changed, and nothing has been added.
  void ExpectUntouched(std::vector<std::u16string> others = {}) const {
    EXPECT_EQ(folder_.Read(u"a.csv"), "Id\n1\n");
    EXPECT_EQ(folder_.Read(u"a.csv.xml"), "<about/>");
    for (const std::u16string_view name : {u"a.csv", u"a.csv.xml", u"schema.ini"})
      others.emplace_back(name);
    std::sort(others.begin(), others.end());
    EXPECT_EQ(folder_.Names(), others);
  }
  std::string Ini() const { return folder_.Read(u"schema.ini"); }

  static constexpr std::string_view kIni =
      "[first.csv]\nCol1=F Text\n[A.CSV]\nCol1=Id Long\nodd = line\n[last.csv]\nCol1=L Text\n";
  quenra::test::TemporaryFolder folder_;
};

TEST_F(TableFilesTest, ACopyHasFileSectionAndMetadata) {
  CopyTableFiles(In(u"a.csv"), In(u"b.csv"));
  EXPECT_EQ(folder_.Read(u"b.csv"), "Id\n1\n");
  EXPECT_EQ(folder_.Read(u"b.csv.xml"), "<about/>");
  EXPECT_EQ(Ini(), std::string(kIni) + "[b.csv]\nCol1=Id Long\nodd = line\n");
  ExpectUntouched({u"b.csv", u"b.csv.xml"});
}

TEST_F(TableFilesTest, ACopyInAnotherFolderHasItsSectionThere) {
  folder_.MakeFolder(u"to");
  folder_.Write(u"to/Schema.INI", "[x.csv]\nCol1=X Text\n[B.csv]\nCol1=Stale Text\n");
  CopyTableFiles(In(u"a.csv"), {folder_.Path(u"to"), u"b.csv"});
  EXPECT_EQ(folder_.Read(u"to/b.csv"), "Id\n1\n");
  EXPECT_EQ(folder_.Read(u"to/b.csv.xml"), "<about/>");
  EXPECT_EQ(folder_.Read(u"to/Schema.INI"),
            "[x.csv]\nCol1=X Text\n[b.csv]\nCol1=Id Long\nodd = line\n[B.csv]\nCol1=Stale Text\n");
  EXPECT_EQ(Ini(), kIni);
}

TEST_F(TableFilesTest, WithoutASectionNothingChangesInSchemaIni) {
  // Byte for byte: not even its line ends and its empty lines.
  const std::string ini = "\r\n" + std::string(kIni) + "\r\n[LAST.csv]\r\n";
  folder_.Write(u"schema.ini", ini);
  folder_.Write(u"c.csv", "1\n");
  EXPECT_EQ(CopyTableFiles(In(u"c.csv"), In(u"LAST.csv")), u"");
  EXPECT_EQ(RenameTableFiles(In(u"c.csv"), u"First.csv"), u"");
  EXPECT_EQ(Ini(), ini);
  EXPECT_FALSE(folder_.Exists(u"LAST.csv.xml"));
}

TEST_F(TableFilesTest, SectionsOfTheNewNameAreKeptBehindTheTablesOwn) {
  const EventRecorder events;
  const std::string remark =
      ToUtf8(SchemaIniPaths(folder_.Path()).schemaIni) +
      ": a section [first.csv] was there before; it stands behind the table's own now";
  EXPECT_EQ(ToUtf8(CopyTableFiles(In(u"a.csv"), In(u"first.csv"))), remark);
  EXPECT_EQ(Ini(),
            "[first.csv]\nCol1=Id Long\nodd = line\n[first.csv]\nCol1=F Text\n"
            "[A.CSV]\nCol1=Id Long\nodd = line\n[last.csv]\nCol1=L Text\n");
  folder_.Remove(u"first.csv");
  folder_.Remove(u"first.csv.xml");
  folder_.Write(u"schema.ini", kIni);
  EXPECT_EQ(ToUtf8(RenameTableFiles(In(u"a.csv"), u"first.csv")), remark);
  EXPECT_EQ(Ini(),
            "[first.csv]\nCol1=Id Long\nodd = line\n[first.csv]\nCol1=F Text\n"
            "[last.csv]\nCol1=L Text\n");
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(ToUtf8(events.at(0).text), remark);
  EXPECT_EQ(ToUtf8(events.at(1).text), remark);
}

TEST_F(TableFilesTest, EverySectionOfARenamedTableGetsItsName) {
  folder_.Write(u"schema.ini", "[a.csv]\nCol1=Id Long\n[x]\n[A.csv]\nCol1=Id Text\n");
  RenameTableFiles(In(u"a.csv"), u"b.csv");
  EXPECT_EQ(Ini(), "[b.csv]\nCol1=Id Long\n[x]\n[b.csv]\nCol1=Id Text\n");
}

// Sections in every order, duplicates, empty lines and line ends of both kinds.
TEST_F(TableFilesTest, AFailureLeavesEveryByteOfSchemaIni) {
  const std::string ini =
      "[b.csv]\r\nCol1=B Text\r\n\r\n[a.csv]\nCol1=Id Long\n\n[B.CSV]\n[A.CSV]\nCol1=Id Text\n";
  folder_.Write(u"schema.ini", ini);
  // Something that nobody can replace has the name, or it is taken in the end.
  folder_.MakeFolder(u"~b.csv.xml.tmp");
  EXPECT_NE(Refusal([&] { CopyTableFiles(In(u"a.csv"), In(u"b.csv")); }), "");
  folder_.MakeFolder(u"~b.csv.tmp");
  EXPECT_NE(Refusal([&] { CopyTableFiles(In(u"a.csv"), In(u"b.csv")); }), "");
  EXPECT_NE(Refusal([&] { CreateTableFiles(In(u"b.csv"), {}); }), "");
  // Where the finished schema.ini should be.
  folder_.MakeFolder(u"~schema.ini.tmp");
  EXPECT_NE(Refusal([&] { CreateTableFiles(In(u"a.csv"), {}); }), "");
  EXPECT_NE(Refusal([&] { RenameTableFiles(In(u"a.csv"), u"b.csv"); }), "");
  EXPECT_NE(Refusal([&] { DeleteTableFiles(In(u"a.csv")); }), "");
  EXPECT_EQ(Ini(), ini);
  ExpectUntouched({u"~b.csv.tmp", u"~b.csv.xml.tmp", u"~schema.ini.tmp"});
}

TEST_F(TableFilesTest, TheSectionOfANamesakeIsLeftAlone) {
  folder_.Write(u"A.CSV", "Other\n");
  if (folder_.Read(u"a.csv") == "Other\n") GTEST_SKIP() << "one name for the file system";
  const std::string other = "[A.CSV]\nCol1=Other Text\n";
  const std::string own = "[a.csv]\nCol1=Id Long\n";
  folder_.Write(u"schema.ini", own + other);
  RenameTableFiles(In(u"a.csv"), u"b.csv");
  EXPECT_EQ(Ini(), "[b.csv]\nCol1=Id Long\n" + other);
  RenameTableFiles(In(u"b.csv"), u"a.csv");
  EXPECT_EQ(Ini(), own + other);
  CreateTableFiles(In(u"a.csv"), {});
  EXPECT_TRUE(Ini().starts_with("[a.csv]\n")) << Ini();
  EXPECT_TRUE(Ini().ends_with(other)) << Ini();
  DeleteTableFiles(In(u"a.csv"));
  EXPECT_EQ(Ini(), other);
  CreateTableFiles(In(u"a.csv"), {});
  EXPECT_TRUE(Ini().starts_with(other + "[a.csv]\n")) << Ini();
  DeleteTableFiles(In(u"a.csv"));
  EXPECT_EQ(Ini(), other);
}

TEST_F(TableFilesTest, ALargeFileIsCopiedWhole) {
  std::string bytes;
  for (int i = 0; i < 100000; ++i) bytes += std::to_string(i) + "\r\n";
  folder_.Write(u"large.csv", bytes);
  CopyTableFiles(In(u"large.csv"), In(u"copy.csv"));
  EXPECT_TRUE(folder_.Read(u"copy.csv") == bytes);
}

TEST_F(TableFilesTest, ARenamedTableKeepsSectionInPlaceAndMetadata) {
  RenameTableFiles(In(u"a.csv"), u"b.csv");
  EXPECT_EQ(folder_.Read(u"b.csv"), "Id\n1\n");
  EXPECT_EQ(folder_.Read(u"b.csv.xml"), "<about/>");
  EXPECT_EQ(folder_.Names(), (std::vector<std::u16string>{u"b.csv", u"b.csv.xml", u"schema.ini"}));
  EXPECT_EQ(Ini(),
            "[first.csv]\nCol1=F Text\n[b.csv]\nCol1=Id Long\nodd = line\n"
            "[last.csv]\nCol1=L Text\n");
}

TEST_F(TableFilesTest, LetterCaseCanBeRenamed) {
  RenameTableFiles(In(u"a.csv"), u"A.csv");
  EXPECT_EQ(folder_.Names(), (std::vector<std::u16string>{u"A.csv", u"A.csv.xml", u"schema.ini"}));
  EXPECT_EQ(Ini(),
            "[first.csv]\nCol1=F Text\n[A.csv]\nCol1=Id Long\nodd = line\n"
            "[last.csv]\nCol1=L Text\n");
}

TEST_F(TableFilesTest, DeletingTakesFileSectionAndMetadata) {
  DeleteTableFiles(In(u"a.csv"));
  EXPECT_THAT(folder_.Names(), ElementsAre(u"schema.ini"));
  EXPECT_EQ(Ini(), "[first.csv]\nCol1=F Text\n[last.csv]\nCol1=L Text\n");
}

TEST_F(TableFilesTest, SchemaIniIsNoTable) {
  const std::string before = Ini();
  EXPECT_THROW(DeleteTableFiles(In(u"schema.ini")), TableFailure);
  EXPECT_THROW(RenameTableFiles(In(u"SCHEMA.INI"), u"b.csv"), TableFailure);
  EXPECT_THROW(CopyTableFiles(In(u"schema.ini"), In(u"b.csv")), TableFailure);
  EXPECT_EQ(Ini(), before);
}

TEST_F(TableFilesTest, WithoutSchemaIniThereIsNothingToUpdate) {
  folder_.Remove(u"schema.ini");
  folder_.Remove(u"a.csv.xml");
  CopyTableFiles(In(u"a.csv"), In(u"b.csv"));
  RenameTableFiles(In(u"b.csv"), u"c.csv");
  DeleteTableFiles(In(u"a.csv"));
  EXPECT_THAT(folder_.Names(), ElementsAre(u"c.csv"));
}

TEST_F(TableFilesTest, ATargetThatExistsIsRefused) {
  folder_.Write(u"b.csv", "mine");
  const std::string taken = ": the file exists already";
  const std::string path = ToUtf8(folder_.Path(u"b.csv"));
  EXPECT_EQ(Refusal([&] { CopyTableFiles(In(u"a.csv"), In(u"b.csv")); }), path + taken);
  EXPECT_EQ(Refusal([&] { RenameTableFiles(In(u"a.csv"), u"b.csv"); }), path + taken);
  EXPECT_EQ(folder_.Read(u"b.csv"), "mine");
  EXPECT_EQ(Ini(), kIni);
  ExpectUntouched({u"b.csv"});
}

TEST_F(TableFilesTest, SourceAndTargetThatAreTheSameAreRefused) {
  const std::string taken = ToUtf8(folder_.Path(u"a.csv")) + ": the file exists already";
  EXPECT_EQ(Refusal([&] { CopyTableFiles(In(u"a.csv"), In(u"a.csv")); }), taken);
  EXPECT_EQ(Refusal([&] { RenameTableFiles(In(u"a.csv"), u"a.csv"); }), taken);
  folder_.MakeLink(u"alias", folder_.Path());
  EXPECT_NE(Refusal([&] { CopyTableFiles(In(u"a.csv"), {folder_.Path(u"alias"), u"a.csv"}); }), "");
  folder_.Remove(u"alias");
  EXPECT_EQ(Ini(), kIni);
  ExpectUntouched();
}

TEST_F(TableFilesTest, SomebodysMetadataIsNotReplaced) {
  folder_.Write(u"b.csv.xml", "mine");
  const std::string taken = ToUtf8(folder_.Path(u"b.csv.xml")) + ": the file exists already";
  EXPECT_EQ(Refusal([&] { CopyTableFiles(In(u"a.csv"), In(u"b.csv")); }), taken);
  EXPECT_EQ(Refusal([&] { RenameTableFiles(In(u"a.csv"), u"b.csv"); }), taken);
  EXPECT_EQ(folder_.Read(u"b.csv.xml"), "mine");
  ExpectUntouched({u"b.csv.xml"});
}

TEST_F(TableFilesTest, MetadataThatACrashHasLeftIsTakenOver) {
  folder_.Write(u"b.csv.xml", "<about/>");
  CopyTableFiles(In(u"a.csv"), In(u"b.csv"));
  ExpectUntouched({u"b.csv", u"b.csv.xml"});
  folder_.Write(u"c.csv.xml", "<about/>");
  RenameTableFiles(In(u"a.csv"), u"c.csv");
  EXPECT_FALSE(folder_.Exists(u"a.csv.xml"));
  EXPECT_EQ(folder_.Read(u"c.csv.xml"), "<about/>");
}

TEST_F(TableFilesTest, TemporaryFilesThatACrashHasLeftAreInNobodysWay) {
  for (const std::u16string_view name :
       {u"~b.csv.tmp", u"~b.csv.xml.tmp", u"~scheam.ini", u"~a.csv.old", u"~a.csv.xml.old"})
    folder_.Write(name, "half of someth");
  CopyTableFiles(In(u"a.csv"), In(u"b.csv"));
  DeleteTableFiles(In(u"a.csv"));
  EXPECT_EQ(folder_.Read(u"b.csv"), "Id\n1\n");
  // What was set aside may be all that is left of a table.
  EXPECT_EQ(folder_.Names(), (std::vector<std::u16string>{u"b.csv", u"b.csv.xml", u"schema.ini",
                                                          u"~a.csv.old", u"~a.csv.xml.old"}));
}

TEST_F(TableFilesTest, ATableThatIsNotThereIsNamed) {
  const std::string gone = ToUtf8(folder_.Path(u"x.csv")) + ": there is no such table";
  EXPECT_EQ(Refusal([&] { CopyTableFiles(In(u"x.csv"), In(u"b.csv")); }), gone);
  EXPECT_EQ(Refusal([&] { RenameTableFiles(In(u"x.csv"), u"b.csv"); }), gone);
  EXPECT_EQ(Refusal([&] { DeleteTableFiles(In(u"x.csv")); }), gone);
  folder_.MakeFolder(u"x.csv");
  EXPECT_EQ(Refusal([&] { DeleteTableFiles(In(u"x.csv")); }), gone);
  ExpectUntouched({u"x.csv"});
}

TEST_F(TableFilesTest, NamesThatNoTableMayHaveAreRefused) {
  for (const std::u16string_view name : {u"", u"x/b.csv", u"..", u"schema.ini", u"NUL.csv"}) {
    EXPECT_NE(Refusal([&] { CopyTableFiles(In(u"a.csv"), In(name)); }), "");
    EXPECT_NE(Refusal([&] { RenameTableFiles(In(u"a.csv"), name); }), "");
  }
  ExpectUntouched();
}

TEST_F(TableFilesTest, ASchemaIniThatCannotBeWrittenTakesEverythingBack) {
  // A folder where the temporary file should be stops every update.
  folder_.MakeFolder(u"~scheam.ini");
  const std::string reason =
      ToUtf8(folder_.Path(u"schema.ini")) + ": Could not write to temp schema.ini.";
  EXPECT_EQ(Refusal([&] { CopyTableFiles(In(u"a.csv"), In(u"b.csv")); }), reason);
  EXPECT_EQ(Refusal([&] { RenameTableFiles(In(u"a.csv"), u"b.csv"); }), reason);
  EXPECT_EQ(Refusal([&] { DeleteTableFiles(In(u"a.csv")); }), reason);
  EXPECT_EQ(Ini(), kIni);
  ExpectUntouched({u"~scheam.ini"});
}

TEST_F(TableFilesTest, ASectionUnderTheNewNameSurvivesAFailure) {
  folder_.MakeFolder(u"to");
  folder_.Write(u"to/schema.ini", "[b.csv]\nCol1=Kept Text\n");
  // No file can be made under the temporary name.
  if (!folder_.MakeLink(u"to/~b.csv.tmp", u"nowhere")) GTEST_SKIP() << "links cannot be made here";
  EXPECT_NE(Refusal([&] { CopyTableFiles(In(u"a.csv"), {folder_.Path(u"to"), u"b.csv"}); }), "");
  EXPECT_EQ(folder_.Read(u"to/schema.ini"), "[b.csv]\nCol1=Kept Text\n");
  EXPECT_FALSE(folder_.Exists(u"to/b.csv"));
  EXPECT_FALSE(folder_.Exists(u"to/b.csv.xml"));
}

TEST_F(TableFilesTest, AMissingTargetFolderIsNamed) {
  const std::string kSeparator(1, static_cast<char>(boost::filesystem::path::preferred_separator));
  EXPECT_THAT(Refusal([&] {
                CopyTableFiles(In(u"a.csv"), {folder_.Path(u"no"), u"b.csv"});
              }),
              testing::StartsWith(ToUtf8(folder_.Path(u"no")) + kSeparator + "b.csv: "));
  EXPECT_THAT(Refusal([&] {
                CopyTableFiles(In(u"a.csv"), {u"/proc/self", u"b.csv"});
              }),
              testing::StartsWith("/proc/self" + kSeparator + "b.csv: "));
  ExpectUntouched();
}

}  // namespace
}  // namespace TextFile
