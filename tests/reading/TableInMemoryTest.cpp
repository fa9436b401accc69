// Tables whose bytes, and those of schema.ini, are no files.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "reading/OpenTextDataset.h"
#include "reading/ReaderFactory.h"
#include "reading/RecordCount.h"
#include "reading/TextLineStream.h"
#include "schema/SchemaIniReader.h"
#include "support/RecordTexts.h"
#include "support/UserLocale.h"

namespace TextFile {
namespace {

std::unique_ptr<std::streambuf> BytesOf(const std::string& bytes) {
  return std::make_unique<std::stringbuf>(bytes, std::ios::in);
}

using TableInMemoryTest = EnglishTest;

TEST_F(TableInMemoryTest, OpensReadsAndCounts) {
  const std::string bytes = "1;ab\n2;cd\n3;ef\n";
  TextDatasetDescription table = DescribeFile(u"no such folder", u"t.txt");
  table.openStream = [&bytes](TextLineStream& stream) {
    stream.Open(BytesOf(bytes), TextLineStream::kTerminateLines, 4);
  };
  ASSERT_TRUE(
      ReadSchemaSection(BytesOf("[other.txt]\nColNameHeader=True\n[T.TXT]\nFormat=Delimited(;)\n"
                                "ColNameHeader=False\nCol1=Id Long\nCol2=Name Text\n"),
                        table.name, table.options));
  OpenDatasetStatus status = OpenDatasetStatus::kScanFailed;
  ASSERT_TRUE(ScanTextDataset(table, OpenOptions(), status));
  EXPECT_EQ(status, OpenDatasetStatus::kOpened);
  ASSERT_EQ(table.fields.size(), 2U);
  EXPECT_EQ(table.fields[0].type, FieldType::kInteger);
  EXPECT_EQ(table.fields[1].name, u"Name");
  const ReaderPtr reader = MakeDataReader(table);
  EXPECT_EQ(RecordText(reader->record()), u"[1] [ab]");
  EXPECT_TRUE(reader->ReadRecord());
  EXPECT_EQ(RecordText(reader->record()), u"[2] [cd]");
  EXPECT_EQ(CountDataRecords(table), 3);
}

TEST_F(TableInMemoryTest, SchemaIniWithoutTheSectionLeavesTheOptions) {
  SchemaOptions options;
  options.delimiter = u'|';
  EXPECT_FALSE(ReadSchemaSection(BytesOf("[other.txt]\nFormat=TabDelimited\n"), u"t.txt", options));
  EXPECT_FALSE(ReadSchemaSection(BytesOf(""), u"t.txt", options));
  EXPECT_EQ(options.delimiter, u'|');
}

}  // namespace
}  // namespace TextFile
