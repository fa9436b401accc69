#include "cli/TexttablesTest.h"
#include "support/FileTimes.h"

namespace {

class DescribeTest : public TexttablesTest {
 protected:
  // The whole document but for the fields.
  static std::string Document(const std::string& table, const std::string& delimiter,
                              const std::string& fields) {
    return "{\"table\": \"" + table + "\", \"delimiter\": \"" + delimiter + "\", \"fields\": [" +
           fields + "]}\n";
  }
  static std::string Field(const std::string& name, const std::string& type, int code, int length,
                           const std::string& tag = "") {
    return "{\"name\": \"" + name + "\", \"type\": \"" + type +
           "\", \"typeCode\": " + std::to_string(code) + ", \"length\": " + std::to_string(length) +
           ", \"precision\": 0, \"tag\": \"" + tag + "\"}";
  }
};

TEST_F(DescribeTest, JsonTellsEveryFieldByteForByte) {
  Write("a.csv", "Id,Name\n1,Ann\n2,Bob\n");
  EXPECT_EQ(Output({"describe", "a.csv", "--json"}),
            Document("a.csv", ",",
                     Field("Id", "Integer", 1, 4) + ", " + Field("Name", "String", 4, 8000)));
}

TEST_F(DescribeTest, EveryTypeHasItsNameCodeAndLength) {
  Write("a.csv", "1,2,3,1.5,2.5,x,2020-01-05,2020-01-05 10:30,10:30\n");
  Write("schema.ini",
        "[a.csv]\nFormat=CSVDelimited\nColNameHeader=False\n"
        "Col1=S Short\nCol2=L Long\nCol3=B LongLong\nCol4=F Single\nCol5=D Double\n"
        "Col6=T Text Width 20\nCol7=Day Date yyyy-MM-dd\nCol8=Stamp Date yyyy-MM-dd HH:mm\n"
        "Col9=Time Date HH:mm\n");
  EXPECT_EQ(Output({"describe", "a.csv", "--json"}),
            Document("a.csv", ",",
                     Field("S", "SmallInteger", 0, 2) + ", " + Field("L", "Integer", 1, 4) + ", " +
                         Field("B", "BigInteger", 13, 8) + ", " + Field("F", "Single", 2, 4) +
                         ", " + Field("D", "Double", 3, 8) + ", " + Field("T", "String", 4, 20) +
                         ", " + Field("Day", "DateOnly", 14, 8) + ", " +
                         Field("Stamp", "Date", 5, 8) + ", " + Field("Time", "TimeOnly", 15, 8)));
}

TEST_F(DescribeTest, TimestampsWithOffsetAreInferred) {
  Write("a.csv", "When\n2020-01-05T10:30:00+02:00\n");
  EXPECT_EQ(Output({"describe", "a.csv", "--json"}),
            Document("a.csv", ",", Field("When", "TimestampOffset", 16, 10)));
}

TEST_F(DescribeTest, DelimiterIsEmptyForFixedLengthAndEscapedForTabs) {
  Write("f.txt", "ab 12\ncd 34\n");
  Write("schema.ini",
        "[f.txt]\nFormat=FixedLength\nColNameHeader=False\nCol1=A Text Width 3\n"
        "Col2=B Long Width 2\n");
  EXPECT_EQ(Output({"describe", "f.txt", "--json"}),
            Document("f.txt", "", Field("A", "String", 4, 3) + ", " + Field("B", "Integer", 1, 4)));
  Write("t.tsv", "Id\tName\n1\tAnn\n");
  EXPECT_EQ(Output({"describe", "t.tsv", "--json"}),
            Document("t.tsv", "\\t",
                     Field("Id", "Integer", 1, 4) + ", " + Field("Name", "String", 4, 8000)));
  Write("s.csv", "Id;Name\n1;Ann\n");
  EXPECT_EQ(Output({"describe", "s.csv", "--json"}).substr(0, 37),
            "{\"table\": \"s.csv\", \"delimiter\": \";\", ");
}

TEST_F(DescribeTest, DelimiterAboveAsciiIsOneCharacter) {
  Write("a.txt",
        "A\xA7"
        "B\n1\xA7"
        "2\n");
  Write("schema.ini", "[a.txt]\nFormat=Delimited(\xA7)\nColNameHeader=True\n");
  EXPECT_EQ(Output({"describe", "a.txt", "--json"}).substr(0, 38),
            "{\"table\": \"a.txt\", \"delimiter\": \"\xC2\xA7\", ");
}

TEST_F(DescribeTest, DelimiterAboveLatin1IsOneCharacter) {
  Write("a.txt",
        "A\xE2\x82\xAC"
        "B\n1\xE2\x82\xAC"
        "2\n");
  Write("schema.ini", "[a.txt]\nFormat=Delimited(\xE2\x82\xAC)\nColNameHeader=True\n");
  EXPECT_EQ(Output({"describe", "a.txt", "--json"}).substr(0, 39),
            "{\"table\": \"a.txt\", \"delimiter\": \"\xE2\x82\xAC\", ");
}

TEST_F(DescribeTest, DelimiterIsThatOfTheTableAsItWasOpened) {
  // Under the older mapping the first value is a date, so the first row is no header.
  Write("n.csv", "2020-01-05T10:30:00Z,b\n1,2,3\n");
  const std::string described =
      Output({"describe", "n.csv", "--json", "--field-type-version", "13.1"});
  EXPECT_EQ(described.substr(0, 37), "{\"table\": \"n.csv\", \"delimiter\": \",\", ");
  EXPECT_NE(described.find("Field2"), std::string::npos);
}

TEST_F(DescribeTest, CoordinateFieldsCarryTheirTag) {
  Write("p.csv", "Name,Place\nA,\"40\xC2\xB0 26' 46\"\" N 79\xC2\xB0 58' 56\"\" W\"\n");
  const std::string tag = "virtual coordinate field";
  EXPECT_EQ(Output({"describe", "p.csv", "--json"}),
            Document("p.csv", ",",
                     Field("Name", "String", 4, 8000) + ", " + Field("Place", "String", 4, 8000) +
                         ", " + Field("Place_X", "Double", 3, 8, tag) + ", " +
                         Field("Place_Y", "Double", 3, 8, tag)));
  EXPECT_EQ(Output({"describe", "p.csv", "--json", "--no-lat-long-fields"}),
            Document("p.csv", ",",
                     Field("Name", "String", 4, 8000) + ", " + Field("Place", "String", 4, 8000)));
}

TEST_F(DescribeTest, TextForPeopleIsAligned) {
  Write("a.csv", "Id,Name\n1,Ann\n2,Bob\n");
  EXPECT_EQ(Output({"describe", "a.csv"}),
            "Table      a.csv\n"
            "Delimiter  ,\n"
            "\n"
            "Field  Type     Length  Precision  Tag\n"
            "-----  -------  ------  ---------  ---\n"
            "Id     Integer       4          0\n"
            "Name   String     8000          0\n");
}

TEST_F(DescribeTest, TableInAnotherFolderIsNamedByItsFile) {
  Write("d/a.csv", "Id\n1\n");
  EXPECT_EQ(Output({"describe", "d/a.csv", "--json"}),
            Document("a.csv", ",", Field("Id", "Integer", 1, 4)));
  EXPECT_EQ(Output({"describe", "d//a.csv", "--json"}),
            Document("a.csv", ",", Field("Id", "Integer", 1, 4)));
}

using CountTest = TexttablesTest;

TEST_F(CountTest, CountsDataRecordsOnly) {
  Write("a.csv", "Id,Name\n1,Ann\n\n2,Bob\n3,Cy");
  EXPECT_EQ(Output({"count", "a.csv"}), "3\n");
  EXPECT_EQ(Output({"count", "a.csv", "--json"}), "3\n");
}

TEST_F(CountTest, EmptyFileHasNoRows) {
  Write("empty.csv", "");
  EXPECT_EQ(Output({"count", "empty.csv"}), "0\n");
  Write("header.csv", "Id,Name\n");
  Write("schema.ini", "[header.csv]\nColNameHeader=True\nFormat=CSVDelimited\n");
  EXPECT_EQ(Output({"count", "header.csv"}), "0\n");
}

class StatTest : public TexttablesTest {
 protected:
  // Sets last access and last modification, in seconds since 1970.
  void SetTimes(const std::string& name, long access, long modification) const {
    SetFileTimes(Folder() / name, access, modification);
  }
};

TEST_F(StatTest, JsonTellsSizeTimesAndMode) {
  Write("a.csv", "Id\n1\n2\n");
  // The access time lies ahead, so that reading the file does not move it.
  SetTimes("a.csv", 2000000000, 1578220200);
  const std::string text = Output({"stat", "a.csv", "--json"});
  EXPECT_EQ(text.substr(0, 22), "{\"size\": 7, \"times\": [") << text;
  // The time of creation is the system's own.
  const std::size_t comma = text.find(", ", 22);
  EXPECT_EQ(text.substr(comma), ", 2000000000, 1578220200], \"mode\": 6}\n");
}

TEST_F(StatTest, TextForPeopleNamesTheTimes) {
  Write("a.csv", "Id\n1\n2\n");
  SetTimes("a.csv", 2000000000, 1578220200);
  const std::string text = Output({"stat", "a.csv"});
  EXPECT_EQ(text.rfind("Size          7 bytes\nCreated       ", 0), 0u) << text;
  EXPECT_NE(text.find("\nLast read     2033-05-18T03:33:20Z\n"
                      "Last written  2020-01-05T10:30:00Z\n"
                      "Mode          readable, writable\n"),
            std::string::npos)
      << text;
}

}  // namespace
