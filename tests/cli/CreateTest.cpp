#include "cli/TexttablesTest.h"

namespace {

constexpr const char* kMark = "\xEF\xBB\xBF";

class CreateTest : public TexttablesTest {
 protected:
  // Nothing was made: neither the file nor a section.
  void ExpectNothingMade(const std::string& name) const {
    EXPECT_FALSE(std::filesystem::exists(Folder() / name)) << name;
    EXPECT_FALSE(std::filesystem::exists(Folder() / "schema.ini")) << Read("schema.ini");
  }
};

TEST_F(CreateTest, EveryTypeGetsItsLineOfSchemaIni) {
  EXPECT_EQ(
      Output({"--locale", "en-US",        "create",  "a.csv",        "--field", "S:SmallInteger",
              "--field",  "L:Integer",    "--field", "B:BigInteger", "--field", "F:Single",
              "--field",  "D:Double",     "--field", "T:String:20",  "--field", "W:Date",
              "--field",  "Day:DateOnly", "--field", "At:TimeOnly",  "--field", "Z:TimestampOffset",
              "--field",  "O:ObjectId",   "--field", "G:Guid",       "--field", "GG:GlobalId"}),
      "");
  EXPECT_EQ(ReadTable("a.csv"), std::string(kMark) + "S,L,B,F,D,T,W,Day,At,Z,O,G,GG\n");
  EXPECT_EQ(Read("schema.ini"),
            "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\n"
            "Col1=S Short\nCol2=L Long\nCol3=B LongLong\nCol4=F Single\nCol5=D Double\n"
            "Col6=T Text Width 20\nCol7=W Date M/d/yyyy H:mm:ss\nCol8=Day Date M/d/yyyy\n"
            "Col9=At Date H:mm:ss\nCol10=Z Date\nCol11=O Long\nCol12=G Text\nCol13=GG Text\n");
}

TEST_F(CreateTest, TypesAreNamesInAnyCaseOrCodes) {
  Output({"create", "a.csv", "--field", "A:sTRING:5", "--field", "B:4:6", "--field", "C:13"});
  EXPECT_EQ(Read("schema.ini"),
            "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\n"
            "Col1=A Text Width 5\nCol2=B Text Width 6\nCol3=C LongLong\n");
}

TEST_F(CreateTest, TextWithoutALengthIs8000Wide) {
  Output({"create", "a.csv", "--field", "A:String", "--field", "B:String:0"});
  EXPECT_EQ(Read("schema.ini"),
            "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\n"
            "Col1=A Text Width 8000\nCol2=B Text Width 8000\n");
}

struct NameCase {
  const char* argument;
  const char* header;
  const char* line;
};

constexpr NameCase kNameCases[] = {
    {"a:b:String", "a:b", "Col1=a:b Text Width 8000\n"},
    {"a:5:String:10", "a:5", "Col1=a:5 Text Width 10\n"},
    {"1:2:Integer", "1:2", "Col1=1:2 Long\n"},
    {"x::Integer", "x:", "Col1=x: Long\n"},
    {":Integer:Integer", ":Integer", "Col1=:Integer Long\n"},
    {"A:4:10", "A", "Col1=A Text Width 10\n"},
    {"A:Integer:4:0", "A", "Col1=A Long\n"},
    {"A:Integer::0", "A", "Col1=A Long\n"},
    {"[A]:Integer", "[A]", "Col1=[A] Long\n"},
    {"\xC3\xBC:Integer", "\xC3\xBC", "Col1=\xC3\xBC Long\n"},
};

TEST_F(CreateTest, DatesOfEveryLocaleComeBack) {
  for (const char* locale : {"fi-FI", "da-DK", "id-ID", "fr-CA", "bg-BG", "en-US", "de-DE", "ko-KR",
                             "hu-HU", "cs-CZ", "sv-SE", "fa-IR"}) {
    SCOPED_TRACE(locale);
    Output({"--quiet", "--locale", locale, "create", "d.csv", "--overwrite", "--field", "W:Date",
            "--field", "D:DateOnly", "--field", "T:TimeOnly"});
    const std::string rows = R"({"W":"2020-01-02T03:04:05","D":"2020-01-02","T":"03:04:05"})"
                             "\n"
                             R"({"W":"1987-11-23T23:45:56","D":"1987-11-23","T":"23:45:56"})"
                             "\n"
                             R"({"W":"2031-12-31T00:00:00","D":"1850-10-09","T":"00:00:00"})"
                             "\n";
    Write("rows.jsonl", rows);
    Output({"--quiet", "--locale", locale, "load", "d.csv", "rows.jsonl"});
    EXPECT_EQ(Output({"--locale", locale, "rows", "d.csv", "--format", "jsonl"}), rows)
        << Read("schema.ini");
    std::filesystem::remove(Folder() / "schema.ini");
  }
}

TEST_F(CreateTest, NamesMayHoldColons) {
  for (const NameCase& c : kNameCases) {
    SCOPED_TRACE(c.argument);
    std::filesystem::remove(Folder() / "schema.ini");
    Output({"create", "--overwrite", "a.csv", "--field", c.argument});
    EXPECT_EQ(ReadTable("a.csv"), std::string(kMark) + c.header + "\n");
    EXPECT_EQ(Read("schema.ini"),
              std::string("[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\n") + c.line);
  }
}

TEST_F(CreateTest, ExtensionDecidesTheDelimiter) {
  Output({"create", "a.tsv", "--field", "A:Integer", "--field", "B:Integer"});
  Output({"create", "a.psv", "--field", "A:Integer", "--field", "B:Integer"});
  EXPECT_EQ(ReadTable("a.tsv"), std::string(kMark) + "A\tB\n");
  EXPECT_EQ(ReadTable("a.psv"), std::string(kMark) + "A|B\n");
}

TEST_F(CreateTest, NoFieldIsATableWithoutFields) {
  EXPECT_EQ(Output({"create", "a.csv"}), "");
  EXPECT_EQ(ReadTable("a.csv"), std::string(kMark) + "\n");
  EXPECT_EQ(Output({"count", "a.csv"}), "0\n");
}

TEST_F(CreateTest, ExistingFileIsLeftAlone) {
  Write("a.csv", "Id\n1\n");
  ExpectRefused(Run({"create", "a.csv", "--field", "X:Integer"}),
                "texttables: error: 0x80070050: a.csv exists already\n");
  EXPECT_EQ(ReadTable("a.csv"), "Id\n1\n");
  EXPECT_FALSE(std::filesystem::exists(Folder() / "schema.ini"));
  std::filesystem::create_directory(Folder() / "dir");
  ExpectRefused(Run({"create", "dir", "--field", "X:Integer"}),
                "texttables: error: 0x80070050: dir exists already and is a folder\n");
}

// Wine makes no links, and Windows makes them for few users.
#ifndef _WIN32

TEST_F(CreateTest, LinkIsLeftAlone) {
  std::filesystem::create_symlink("nowhere", Folder() / "link.csv");
  ExpectRefused(Run({"create", "link.csv", "--field", "X:Integer"}),
                "texttables: error: 0x80070050: link.csv exists already\n");
}

#endif

TEST_F(CreateTest, OverwriteTakesTheFilesPlace) {
  Write("a.csv", "Id\n1\n");
  EXPECT_EQ(Output({"create", "--overwrite", "a.csv", "--field", "X:Integer"}), "");
  EXPECT_EQ(ReadTable("a.csv"), std::string(kMark) + "X\n");
}

TEST_F(CreateTest, SectionThatIsThereDecidesTheTypesAndIsPointedOut) {
  Write("schema.ini", "[a.csv]\nFormat=CSVDelimited\nCol1=Old Long\n");
  const ProcessResult result =
      Run({"create", "a.csv", "--field", "X:String", "--field", "Y:Double"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.errors,
            "texttables: warning: 0x80040955: field \"X\" is Integer: schema.ini had described "
            "a.csv already\n");
  EXPECT_EQ(Read("schema.ini"),
            "[a.csv]\nFormat=CSVDelimited\nColNameHeader=True\nCol1=X Long\nCol2=Y Double\n");
  EXPECT_EQ(Output({"--quiet", "create", "--overwrite", "a.csv", "--field", "X:String"}), "");
}

TEST_F(CreateTest, TypesWithoutATextFormAreRefused) {
  for (const char* type : {"7", "8", "9", "12", "99"}) {
    SCOPED_TRACE(type);
    ExpectRefused(
        Run({"create", "a.csv", "--field", "A:Integer", "--field", std::string("X:") + type}),
        "texttables: error: 0x80040203: field type not supported: a.csv\n");
    ExpectNothingMade("a.csv");
  }
}

TEST_F(CreateTest, WrongFieldsAreWrongCommandLines) {
  const std::string types =
      "; types: SmallInteger, Integer, BigInteger, Single, Double, String, Date, DateOnly, "
      "TimeOnly, TimestampOffset, ObjectId, Guid, GlobalId\n";
  for (const char* field : {"X", "", ":Integer", "X:", "X:Strng", "X:String:ten", "X:-1",
                            "X:Integer:-4", "X:Integer:4 "}) {
    SCOPED_TRACE(field);
    ExpectUsageError(Run({"create", "a.csv", std::string("--field=") + field}),
                     field[0] == '\0' ? std::string("--field")
                                      : "--field takes NAME:TYPE[:LENGTH[:PRECISION]], not \"" +
                                            std::string(field) + "\"" + types);
  }
  ExpectUsageError(Run({"create", "a.csv", "--field", "X:Integer", "--field", "x:Double"}),
                   "there are two fields \"x\"");
  ExpectUsageError(Run({"create", "a.csv", "--field", "X:Integer", "Y:Integer"}), "Y:Integer");
  ExpectUsageError(Run({"create"}), "TABLE");
  ExpectNothingMade("a.csv");
}

TEST_F(CreateTest, NamesThatFilesCannotHaveEverywhereAreRefused) {
  const std::pair<const char*, const char*> names[] = {
      {"a?.csv", "the name holds a character that file names cannot have everywhere"},
      {"schema.ini", "the name is reserved"},
      {"con.csv", "the name is reserved"},
      {"a.csv.", "the name ends in a dot or a blank"}};
  for (const auto& [name, reason] : names) {
    SCOPED_TRACE(name);
    ExpectRefused(Run({"create", name, "--field", "X:Integer"}),
                  std::string("texttables: error: 0x80004005: ") + name + ": " + reason + "\n");
    ExpectNothingMade(name);
  }
}

TEST_F(CreateTest, FolderMustBeThere) {
  ExpectRefused(Run({"create", "nowhere/a.csv", "--field", "X:Integer"}),
                "texttables: error: 0x80040258: nowhere: the folder cannot be opened (No such file "
                "or directory)\n");
  EXPECT_FALSE(std::filesystem::exists(Folder() / "nowhere"));
}

}  // namespace
