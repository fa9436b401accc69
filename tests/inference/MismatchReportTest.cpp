#include <gtest/gtest.h>

#include <boost/filesystem.hpp>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "inference/MismatchReport.h"
#include "reading/ReaderFactory.h"
#include "support/ConverterWithSlots.h"
#include "support/OpenedTable.h"
#include "support/OrdinaryUser.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

std::u16string LoadMessage(std::uint32_t id) {
  switch (id) {
    case 115:
      return u"In file %1, field value %2 does not match inferred type of field %3. Generated "
             u"schema.ini. Restart and try again.";
    case 116:
      return u"In file %1, field value %2 does not match inferred type of field %3, and has "
             u"already been updated in schema.ini. Restart and try again.";
    case 117:
      return u"In file %1, field value %2 does not match defined type of field %3. Update "
             u"schema.ini file and try again.";
    case 118:
      return u"In file %1, field value %2 does not match inferred type of field %3. Create "
             u"schema.ini file and try again.";
    default:
      return u"no such message";
  }
}

MismatchOutcome RecordMismatch(const TextDatasetDescription& table, Mismatch mismatch) {
  RecordMismatches(table, {&mismatch, 1});
  return mismatch.outcome;
}

std::u16string ReportMismatch(const TextDatasetDescription& table, Mismatch mismatch,
                              MessageLoader loadMessage) {
  return ReportMismatches(table, {&mismatch, 1}, loadMessage).front().text;
}

class MismatchReportTest : public ::testing::Test {
 protected:
  MismatchReportTest() {
    quenra::EventLog::SetSink([this](const quenra::EventLogRecord& record) {
      if (record.kind == quenra::EventLogRecord::Kind::kMessage) events_.emplace_back(record.text);
    });
    folder_.Write("t.csv", "");
  }
  ~MismatchReportTest() override { quenra::EventLog::SetSink({}); }

  TextDatasetDescription Table() const { return DescribeFile(folder_.Path(), u"t.csv"); }

  static Mismatch At(std::size_t column, FieldType found, std::u16string_view name = u"v") {
    Mismatch mismatch;
    mismatch.fileColumn = column;
    mismatch.fieldName = name;
    mismatch.text = found == FieldType::kDouble ? u"7.5" : u"abc";
    mismatch.found = found;
    return mismatch;
  }

  MismatchOutcome Record(std::string_view schemaIni, const Mismatch& mismatch) {
    folder_.Write("schema.ini", schemaIni);
    return RecordMismatch(Table(), mismatch);
  }

  UserLocale locale_{u"en-US"};
  TemporaryFolder folder_;
  std::vector<std::u16string> events_;
};

constexpr FieldType kDouble = FieldType::kDouble;
constexpr FieldType kText = FieldType::kString;

TEST_F(MismatchReportTest, WithoutSchemaIniOneIsMade) {
  EXPECT_EQ(RecordMismatch(Table(), At(1, kDouble)), MismatchOutcome::kGenerated);
  EXPECT_EQ(folder_.Read("schema.ini"), "[t.csv]\nCol2=v Double\n");
  EXPECT_FALSE(folder_.Exists("~scheam.ini"));
  EXPECT_EQ(RecordMismatch(Table(), At(0, kText, u"first")), MismatchOutcome::kGenerated);
  EXPECT_EQ(folder_.Read("schema.ini"), "[t.csv]\nCol1=first Text\nCol2=v Double\n")
      << "in the order of the columns";
}

TEST_F(MismatchReportTest, ANameWithABlankIsQuoted) {
  EXPECT_EQ(RecordMismatch(Table(), At(0, kDouble, u"my value")), MismatchOutcome::kGenerated);
  EXPECT_EQ(folder_.Read("schema.ini"), "[t.csv]\nCol1=\"my value\" Double\n");
}

TEST_F(MismatchReportTest, WithoutASectionOneIsAppended) {
  EXPECT_EQ(Record("[other.csv]\nFormat=TabDelimited\n\nCol1=x Text Width 5\n", At(2, kText)),
            MismatchOutcome::kGenerated);
  EXPECT_EQ(folder_.Read("schema.ini"),
            "[other.csv]\nFormat=TabDelimited\nCol1=x Text Width 5\n[t.csv]\nCol3=v Text\n");
}

TEST_F(MismatchReportTest, AnotherFilesErrorsDoNotMatter) {
  EXPECT_EQ(Record("[other.csv]\nnonsense\n", At(0, kText)), MismatchOutcome::kGenerated);
  EXPECT_EQ(folder_.Read("schema.ini"), "[other.csv]\nnonsense\n[t.csv]\nCol1=v Text\n");
}

TEST_F(MismatchReportTest, AnExistingSectionKeepsWhatItSays) {
  EXPECT_EQ(Record("[first.csv]\nFormat=CSVDelimited\n"
                   "[T.CSV]\n"
                   "Format=Delimited(;)\n"
                   "ColNameHeader=True\n"
                   "MaxScanRows=20\n"
                   "Col1=a Long\n"
                   "Col3=when Date\n"
                   "Col4=day Date dd/MM/yyyy\n"
                   "Col5=b Text Width 12\n"
                   "CharacterSet=ANSI\n"
                   "DateTimeFormat=yyyy-MM-dd HH:mm\n"
                   "TextDelimiter=NONE\n"
                   "DecimalSymbol=,\n"
                   "NumberDigits=3\n"
                   "CurrencySymbol=EUR\n"
                   "[last.csv]\nCol1=x Text\n",
                   At(1, kDouble)),
            MismatchOutcome::kGenerated);
  EXPECT_EQ(folder_.Read("schema.ini"),
            "[first.csv]\nFormat=CSVDelimited\n"
            "[T.CSV]\n"
            "Format=Delimited(;)\n"
            "ColNameHeader=True\n"
            "MaxScanRows=20\n"
            "Col1=a Long\n"
            "Col2=v Double\n"
            "Col3=when Date\n"
            "Col4=day Date dd/MM/yyyy\n"
            "Col5=b Text Width 12\n"
            "CharacterSet=ANSI\n"
            "DateTimeFormat=yyyy-MM-dd HH:mm\n"
            "TextDelimiter=NONE\n"
            "DecimalSymbol=,\n"
            "NumberDigits=3\n"
            "CurrencySymbol=EUR\n"
            "[last.csv]\nCol1=x Text\n");
}

TEST_F(MismatchReportTest, AColumnDefinedAsTheTypeFoundStays) {
  const std::string_view schemaIni = "[t.csv]\n\nCol1=a Double\nCol2=b Text Width 5\n";
  EXPECT_EQ(Record(schemaIni, At(0, kDouble)), MismatchOutcome::kAlreadyUpdated);
  EXPECT_EQ(folder_.Read("schema.ini"), schemaIni) << "nothing is written";
  EXPECT_EQ(Record(schemaIni, At(1, kText)), MismatchOutcome::kAlreadyUpdated);
  EXPECT_EQ(Record("[t.csv]\nCol1=a Currency\n", At(0, kDouble)), MismatchOutcome::kAlreadyUpdated)
      << "another word for Double";
}

TEST_F(MismatchReportTest, AColumnDefinedAsAnotherTypeStays) {
  for (const char* type : {"Long", "Short", "LongLong", "Single", "Date", "Date HH:mm", "Text"}) {
    const std::string schemaIni = std::string("[t.csv]\n\nCol1=a ") + type + "\n";
    EXPECT_EQ(Record(schemaIni, At(0, kDouble)), MismatchOutcome::kDefinedOtherwise) << type;
    EXPECT_EQ(folder_.Read("schema.ini"), schemaIni) << "nothing is written";
  }
  EXPECT_EQ(Record("[t.csv]\nCol1=a Double\n", At(0, kText)), MismatchOutcome::kDefinedOtherwise);
}

TEST_F(MismatchReportTest, ASchemaIniWithAnErrorStays) {
  for (const std::string_view schemaIni :
       {"[t.csv]\nnonsense\n", "[t.csv]\nCol1=a\n", "[t.csv]\nFormat=Other\n",
        "[t.csv]\nColNameHeader=true\n"}) {
    EXPECT_EQ(Record(schemaIni, At(1, kText)), MismatchOutcome::kNotWritten) << schemaIni;
    EXPECT_EQ(folder_.Read("schema.ini"), schemaIni);
  }
}

TEST_F(MismatchReportTest, AnEncodingThatIsNotReadStays) {
  const std::string bytes("\xFE\xFF\0[\0t\0.\0c\0s\0v\0]\0\n", 18);
  EXPECT_EQ(Record(bytes, At(0, kText)), MismatchOutcome::kNotWritten);
  EXPECT_EQ(folder_.Read("schema.ini"), bytes);
}

TEST_F(MismatchReportTest, AFolderThatCannotBeWrittenIsToldApart) {
  const TextDatasetDescription missing = DescribeFile(folder_.Path(u"missing"), u"t.csv");
  EXPECT_EQ(RecordMismatch(missing, At(0, kText)), MismatchOutcome::kNotWritten);
  EXPECT_FALSE(folder_.Exists("missing"));

  boost::filesystem::create_directory(folder_.Native("schema.ini"));
  EXPECT_EQ(RecordMismatch(Table(), At(0, kText)), MismatchOutcome::kNotWritten);
  EXPECT_TRUE(boost::filesystem::is_directory(folder_.Native("schema.ini")));
}

TEST_F(MismatchReportTest, ATemporaryFileThatCannotBeWrittenLeavesSchemaIni) {
  boost::filesystem::create_directory(folder_.Native("~scheam.ini"));
  folder_.Write("~scheam.ini/kept", "");
  const std::string_view schemaIni = "[other.csv]\nFormat=CSVDelimited\n";
  EXPECT_EQ(Record(schemaIni, At(0, kText)), MismatchOutcome::kNotWritten);
  EXPECT_EQ(folder_.Read("schema.ini"), schemaIni);
}

TEST_F(MismatchReportTest, AReadOnlyFolderIsToldApart) {
  namespace fs = boost::filesystem;
  constexpr fs::perms kReadOnly =
      fs::perms::owner_read | fs::perms::owner_exe | fs::perms::others_read | fs::perms::others_exe;
  const std::string_view schemaIni = "[other.csv]\nFormat=CSVDelimited\n";
  folder_.Write("schema.ini", schemaIni);
  fs::permissions(folder_.Native(), kReadOnly);
  {
    const OrdinaryUser ordinary;
    if (std::ofstream(folder_.Native("probe").c_str()).is_open())
      GTEST_SKIP() << "this system has no read-only folders";
    EXPECT_EQ(RecordMismatch(Table(), At(0, kText)), MismatchOutcome::kNotWritten);
    EXPECT_NE(ReportMismatch(Table(), At(0, kText), &LoadMessage).find(u"Create schema.ini file"),
              std::u16string::npos);
  }
  EXPECT_EQ(folder_.Read("schema.ini"), schemaIni);
  fs::permissions(folder_.Native(), fs::perms::owner_all);
  fs::remove(folder_.Native("schema.ini"));
  fs::permissions(folder_.Native(), kReadOnly);
  {
    const OrdinaryUser ordinary;
    EXPECT_EQ(RecordMismatch(Table(), At(0, kText)), MismatchOutcome::kNotWritten);
  }
  EXPECT_FALSE(folder_.Exists("schema.ini"));
}

TEST_F(MismatchReportTest, EveryOutcomeHasItsMessageInTheEventLog) {
  const auto report = [&](std::string_view schemaIni, const Mismatch& mismatch) {
    folder_.Write("schema.ini", schemaIni);
    events_.clear();
    std::u16string message = ReportMismatch(Table(), mismatch, &LoadMessage);
    EXPECT_EQ(events_, std::vector<std::u16string>{message});
    return message;
  };
  EXPECT_EQ(report("", At(0, kDouble)),
            u"In file t.csv, field value 7.5 does not match inferred type of field v. Generated "
            u"schema.ini. Restart and try again.");
  EXPECT_EQ(report("[t.csv]\nCol1=v Double\n", At(0, kDouble)),
            u"In file t.csv, field value 7.5 does not match inferred type of field v, and has "
            u"already been updated in schema.ini. Restart and try again.");
  EXPECT_EQ(report("[t.csv]\nCol1=v Long\n", At(0, kText)),
            u"In file t.csv, field value abc does not match defined type of field v. Update "
            u"schema.ini file and try again.");
  EXPECT_EQ(report("[t.csv]\nnonsense\n", At(0, kText)),
            u"In file t.csv, field value abc does not match inferred type of field v. Create "
            u"schema.ini file and try again.");
}

TEST_F(MismatchReportTest, PlaceHoldersInTheFileAreTextOfTheMessage) {
  Mismatch mismatch = At(0, kText, u"%1");
  mismatch.text = u"%3 100%% %2";
  EXPECT_EQ(ReportMismatch(Table(), mismatch, &LoadMessage),
            u"In file t.csv, field value %3 100%% %2 does not match inferred type of field %1. "
            u"Generated schema.ini. Restart and try again.");
}

// ---------------------------------------------------------------------------------------------
// A table from its first opening to the next
// ---------------------------------------------------------------------------------------------

class MismatchLifeTest : public MismatchReportTest {
 protected:
  // Reads all rows; the messages met, one a line.
  static std::vector<std::u16string> ReadAll(OpenedTable& table) {
    const ReaderPtr reader = MakeDataReader(table.table());
    ConverterWithSlots converter(table.shared(), &LoadMessage);
    std::vector<std::u16string> messages;
    do {
      converter.Convert(reader->record());
      for (std::size_t i = 0; i < converter.fieldCount(); ++i)
        if (const std::u16string* message = converter.MessageOf(i)) messages.push_back(*message);
    } while (reader->ReadRecord());
    return messages;
  }
};

TEST_F(MismatchLifeTest, ALateValueIsRecordedForTheNextOpening) {
  std::string bytes = "id,count\n";
  for (int i = 1; i <= 600; ++i) bytes += std::to_string(i) + (i == 500 ? ",7.5\n" : ",7\n");
  folder_.Write("t.csv", bytes);
  OpenedTable table(folder_, u"t.csv");
  ASSERT_EQ(table.Fields(), "id:int count:int");

  EXPECT_EQ(ReadAll(table),
            std::vector<std::u16string>{
                u"In file t.csv, field value 7.5 does not match inferred type of field count. "
                u"Generated schema.ini. Restart and try again."});
  EXPECT_EQ(folder_.Read("schema.ini"), "[t.csv]\nCol2=count Double\n");
  EXPECT_EQ(ReadAll(table),
            std::vector<std::u16string>{
                u"In file t.csv, field value 7.5 does not match inferred type of field count, and "
                u"has already been updated in schema.ini. Restart and try again."})
      << "the open table keeps its types";

  OpenedTable again(folder_, u"t.csv");
  EXPECT_EQ(again.Fields(), "id:int count:double");
  EXPECT_EQ(ReadAll(again), std::vector<std::u16string>{});
}

TEST_F(MismatchLifeTest, ADeclaredColumnIsTheUsersToChange) {
  const std::string_view schemaIni = "[t.csv]\nColNameHeader=True\nCol1=id Long\nCol2=n Long\n";
  folder_.Write("schema.ini", schemaIni);
  folder_.Write("t.csv", "id,n\n1,abc\n2,def\n");
  OpenedTable table(folder_, u"t.csv");
  EXPECT_EQ(ReadAll(table),
            std::vector<std::u16string>{
                u"In file t.csv, field value abc does not match defined type of field n. Update "
                u"schema.ini file and try again."});
  EXPECT_EQ(folder_.Read("schema.ini"), schemaIni);
}

TEST_F(MismatchLifeTest, TheColumnsNumberIsThatOfTheFile) {
  std::string bytes = "place\tn\n";
  for (int i = 1; i <= 200; ++i)
    bytes += "40\xC2\xB0 30' 0\xE2\x80\xB3 N 79\xC2\xB0 45' 0\xE2\x80\xB3 W\t" +
             std::string(i == 150 ? "x" : "7") + "\n";
  folder_.Write("p.tsv", bytes);
  OpenedTable table(folder_, u"p.tsv");
  ASSERT_EQ(table.Fields(), "place:text place_X:double[x] place_Y:double[x] n:int");
  EXPECT_EQ(ReadAll(table).size(), 1u);
  EXPECT_EQ(folder_.Read("schema.ini"), "[p.tsv]\nCol2=n Text\n");
}

TEST_F(MismatchLifeTest, ARowOfContradictionsIsRecordedColumnByColumn) {
  constexpr int kColumns = 300;
  std::string header;
  std::string whole;
  std::string halves;
  std::string expected = "[t.csv]\n";
  for (int i = 1; i <= kColumns; ++i) {
    const std::string separator = i == kColumns ? "\n" : ",";
    header += "c" + std::to_string(i) + separator;
    whole += "7" + separator;
    halves += "7.5" + separator;
    expected += "Col" + std::to_string(i) + "=c" + std::to_string(i) + " Double\n";
  }
  std::string bytes = header;
  for (int row = 0; row < 150; ++row) bytes += whole;
  folder_.Write("t.csv", bytes + halves);
  OpenedTable table(folder_, u"t.csv");
  const std::vector<std::u16string> messages = ReadAll(table);
  ASSERT_EQ(messages.size(), static_cast<std::size_t>(kColumns));
  EXPECT_NE(messages.back().find(u"field c300. Generated schema.ini."), std::u16string::npos);
  EXPECT_EQ(folder_.Read("schema.ini"), expected);
  EXPECT_EQ(events_, messages) << "in the order of the columns";
}

}  // namespace
}  // namespace TextFile
