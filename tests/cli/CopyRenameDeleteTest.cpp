#include "cli/TexttablesTest.h"

namespace {

class CopyRenameDeleteTest : public TexttablesTest {
 protected:
  static constexpr const char* kLines = "Format=CSVDelimited\nColNameHeader=True\nCol1=Id Long\n";

  // A table with all that belongs to it, and a section of another one.
  void WriteTable() const {
    Write("a.csv", "Id\n1\n2\n");
    Write("a.csv.xml", "<metadata/>");
    Write("schema.ini", std::string("[a.csv]\n") + kLines + "[other.csv]\nMaxScanRows=5\n");
  }

  void ExpectAsWritten() const {
    EXPECT_EQ(Read("a.csv"), "Id\n1\n2\n");
    EXPECT_EQ(Read("a.csv.xml"), "<metadata/>");
    EXPECT_EQ(Read("schema.ini"),
              std::string("[a.csv]\n") + kLines + "[other.csv]\nMaxScanRows=5\n");
  }

  bool Exists(const std::string& name) const { return std::filesystem::exists(Folder() / name); }

  std::size_t CountEntries(const std::string& folder = ".") const {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator(Folder() / folder))
      ++count;
    return count;
  }
};

TEST_F(CopyRenameDeleteTest, CopyKeepsTheTableAndAllThatBelongsToIt) {
  WriteTable();
  EXPECT_EQ(Output({"copy", "a.csv", "b.csv"}), "");
  EXPECT_EQ(Read("a.csv"), "Id\n1\n2\n");
  EXPECT_EQ(Read("b.csv"), "Id\n1\n2\n");
  EXPECT_EQ(Read("b.csv.xml"), "<metadata/>");
  EXPECT_EQ(Read("schema.ini"),
            std::string("[a.csv]\n") + kLines + "[other.csv]\nMaxScanRows=5\n[b.csv]\n" + kLines);
  EXPECT_EQ(CountEntries(), 5u);
}

TEST_F(CopyRenameDeleteTest, CopyIntoAnotherFolderCarriesTheSection) {
  WriteTable();
  Write("sub/schema.ini", "[x.csv]\nMaxScanRows=1\n");
  EXPECT_EQ(Output({"copy", "a.csv", "sub/b.csv"}), "");
  ExpectAsWritten();
  EXPECT_EQ(Read("sub/b.csv"), "Id\n1\n2\n");
  EXPECT_EQ(Read("sub/b.csv.xml"), "<metadata/>");
  EXPECT_EQ(Read("sub/schema.ini"), std::string("[x.csv]\nMaxScanRows=1\n[b.csv]\n") + kLines);
  EXPECT_EQ(CountEntries("sub"), 3u);
}

TEST_F(CopyRenameDeleteTest, RenameMovesEverythingToTheNewName) {
  WriteTable();
  EXPECT_EQ(Output({"rename", "a.csv", "b.csv"}), "");
  EXPECT_FALSE(Exists("a.csv"));
  EXPECT_FALSE(Exists("a.csv.xml"));
  EXPECT_EQ(Read("b.csv"), "Id\n1\n2\n");
  EXPECT_EQ(Read("b.csv.xml"), "<metadata/>");
  EXPECT_EQ(CountEntries(), 3u);
  EXPECT_EQ(
      Output({"describe", "b.csv", "--json"}),
      "{\"table\": \"b.csv\", \"delimiter\": \",\", \"fields\": [{\"name\": \"Id\", \"type\": "
      "\"Integer\", \"typeCode\": 1, \"length\": 4, \"precision\": 0, \"tag\": \"\"}]}\n");
  EXPECT_EQ(Read("schema.ini").find("a.csv"), std::string::npos);
}

TEST_F(CopyRenameDeleteTest, SectionsThatStoodUnderTheNewNameAreAWarning) {
  const auto warning = [](const std::string& name) {
    return "texttables: warning: 0x800700B7: " +
           (std::filesystem::path(".") / "schema.ini").string() + ": a section [" + name +
           "] was there before; it stands behind the table's own now\n";
  };
  Write("a.csv", "Id\n1\n");
  Write("schema.ini", "[b.csv]\nCol1=B Text\n[c.csv]\n[a.csv]\nCol1=Id Long\n");
  ProcessResult result = Run({"copy", "a.csv", "b.csv"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors, warning("b.csv"));
  result = Run({"--event-log", "log", "rename", "a.csv", "c.csv"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors, warning("c.csv"));
  EXPECT_NE(Read("log").find("a section [c.csv] was there before"), std::string::npos);
  EXPECT_EQ(Read("schema.ini"),
            "[b.csv]\nCol1=Id Long\n[b.csv]\nCol1=B Text\n[c.csv]\nCol1=Id Long\n[c.csv]\n");
  EXPECT_EQ(Output({"describe", "c.csv", "--json"}).find("\"Integer\"") == std::string::npos,
            false);
  std::filesystem::remove(Folder() / "b.csv");
  EXPECT_EQ(Output({"--quiet", "copy", "c.csv", "b.csv"}), "");
}

TEST_F(CopyRenameDeleteTest, DeleteTakesEverythingAndNothingElse) {
  WriteTable();
  EXPECT_EQ(Output({"delete", "a.csv"}), "");
  EXPECT_EQ(Read("schema.ini"), "[other.csv]\nMaxScanRows=5\n");
  EXPECT_EQ(CountEntries(), 1u);
}

TEST_F(CopyRenameDeleteTest, TargetThatExistsIsRefused) {
  WriteTable();
  Write("b.csv", "B\n");
  for (const char* command : {"copy", "rename"}) {
    SCOPED_TRACE(command);
    ExpectRefused(Run({command, "a.csv", "b.csv"}),
                  "texttables: error: 0x80070050: b.csv exists already\n");
    ExpectRefused(Run({command, "a.csv", "a.csv"}),
                  "texttables: error: 0x80070050: a.csv exists already\n");
    ExpectAsWritten();
    EXPECT_EQ(Read("b.csv"), "B\n");
  }
  std::filesystem::create_directory(Folder() / "dir");
  ExpectRefused(Run({"copy", "a.csv", "dir"}),
                "texttables: error: 0x80070050: dir exists already and is a folder\n");
  ExpectUsageError(Run({"copy", "a.csv", "dir/"}),
                   "\"dir/\" names no table; a table is FOLDER/NAME");
}

TEST_F(CopyRenameDeleteTest, MissingTablesAndFoldersAreNamed) {
  WriteTable();
  ExpectRefused(Run({"copy", "nope.csv", "b.csv"}),
                "texttables: error: 0x80040351: table not found: nope.csv\n");
  ExpectRefused(Run({"rename", "nope.csv", "b.csv"}),
                "texttables: error: 0x80040351: table not found: nope.csv\n");
  ExpectRefused(Run({"delete", "nope.csv"}),
                "texttables: error: 0x80040351: table not found: nope.csv\n");
  ExpectRefused(Run({"copy", "a.csv", "nowhere/b.csv"}),
                "texttables: error: 0x80040258: nowhere: the folder cannot be opened (No such file "
                "or directory)\n");
  ExpectRefused(Run({"delete", "nowhere/a.csv"}),
                "texttables: error: 0x80040258: nowhere: the folder cannot be opened (No such file "
                "or directory)\n");
  ExpectAsWritten();
}

TEST_F(CopyRenameDeleteTest, FoldersAreNoTables) {
  std::filesystem::create_directory(Folder() / "x.csv");
  ExpectRefused(
      Run({"delete", "x.csv"}),
      "texttables: error: 0x80040211: x.csv: the file cannot be opened (Is a directory)\n");
  ExpectRefused(
      Run({"rename", "x.csv", "y.csv"}),
      "texttables: error: 0x80040211: x.csv: the file cannot be opened (Is a directory)\n");
  ExpectRefused(
      Run({"copy", "x.csv", "y.csv"}),
      "texttables: error: 0x80040211: x.csv: the file cannot be opened (Is a directory)\n");
  EXPECT_TRUE(Exists("x.csv"));
}

TEST_F(CopyRenameDeleteTest, RenameTakesANameWithoutAFolder) {
  WriteTable();
  std::filesystem::create_directory(Folder() / "sub");
  ExpectUsageError(Run({"rename", "a.csv", "sub/b.csv"}),
                   "rename takes a name, not a path: \"sub/b.csv\"; a table gets into another "
                   "folder by copy and delete");
  ExpectUsageError(Run({"rename", "a.csv", "./b.csv"}), "rename takes a name");
  ExpectAsWritten();
}

TEST_F(CopyRenameDeleteTest, NamesThatFilesCannotHaveEverywhereAreRefused) {
  WriteTable();
  for (const char* command : {"copy", "rename"}) {
    SCOPED_TRACE(command);
    ExpectRefused(Run({command, "a.csv", "b|c.csv"}),
                  "texttables: error: 0x80004005: b|c.csv: the name holds a character that file "
                  "names cannot have everywhere\n");
  }
  ExpectAsWritten();
}

// On Windows the backslash parts a path.
#ifndef _WIN32

TEST_F(CopyRenameDeleteTest, BackslashesInNamesAreRefused) {
  WriteTable();
  for (const char* command : {"copy", "rename"})
    ExpectRefused(Run({command, "a.csv", "b\\c.csv"}),
                  "texttables: error: 0x80004005: b\\c.csv: the name holds a path separator\n");
  ExpectAsWritten();
}

#endif

TEST_F(CopyRenameDeleteTest, TablesThatCannotBeOpenedAreFilesAllTheSame) {
  Write("a.csv", "Id\n");
  Write("schema.ini", "[a.csv]\nCol1=Id Number\n");
  EXPECT_EQ(Output({"copy", "a.csv", "b.csv"}), "");
  EXPECT_EQ(Output({"rename", "a.csv", "c.csv"}), "");
  EXPECT_EQ(Output({"delete", "b.csv"}), "");
  EXPECT_EQ(Read("c.csv"), "Id\n");
  EXPECT_EQ(Read("schema.ini"), "[c.csv]\nCol1=Id Number\n");
}

#ifndef _WIN32

TEST_F(CopyRenameDeleteTest, NamesNeedNotBeUtf8) {
  Write("caf\xE9.csv", "Id\n");
  EXPECT_EQ(Output({"rename", "caf\xE9.csv", "th\xE9.csv"}), "");
  EXPECT_EQ(Read("th\xE9.csv"), "Id\n");
  EXPECT_EQ(Output({"delete", "th\xE9.csv"}), "");
  EXPECT_FALSE(Exists("th\xE9.csv"));
}

#endif

TEST_F(CopyRenameDeleteTest, ArgumentsThatAreMissingOrTooManyAreWrongCommandLines) {
  WriteTable();
  ExpectUsageError(Run({"copy", "a.csv"}), "NEWTABLE");
  ExpectUsageError(Run({"rename", "a.csv"}), "NEWNAME");
  ExpectUsageError(Run({"delete"}), "TABLE");
  ExpectUsageError(Run({"delete", "a.csv", "b.csv"}), "b.csv");
  ExpectAsWritten();
}

}  // namespace
