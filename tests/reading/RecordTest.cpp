#include <gtest/gtest.h>

#include <string_view>

#include "reading/Record.h"

namespace TextFile {
namespace {

void Add(Record& record, std::u16string_view text) {
  for (const char16_t unit : text) record.Append(unit);
}

TEST(RecordTest, HoldsFieldsInTheirOrder) {
  Record record;
  EXPECT_TRUE(record.empty());
  Add(record, u"ab");
  EXPECT_TRUE(record.empty()) << "an open field is no field yet";
  record.EndField();
  record.EndField();
  Add(record, u"c");
  record.EndField();
  ASSERT_EQ(record.size(), 3u);
  EXPECT_EQ(record[0], u"ab");
  EXPECT_EQ(record[1], u"");
  EXPECT_EQ(record[2], u"c");
}

TEST(RecordTest, OpenFieldCanBeDropped) {
  Record record;
  Add(record, u"a");
  record.EndField();
  Add(record, u"  ");
  EXPECT_EQ(record.OpenField(), u"  ");
  record.DropOpenField();
  EXPECT_EQ(record.OpenField(), u"");
  Add(record, u"q");
  record.EndField();
  ASSERT_EQ(record.size(), 2u);
  EXPECT_EQ(record[0], u"a");
  EXPECT_EQ(record[1], u"q");
}

TEST(RecordTest, TrimmedFieldLosesBlanksOnly) {
  Record record;
  for (const std::u16string_view text : {u"  a b ", u"   ", u"", u"\t a\u00A0 "}) {
    Add(record, text);
    record.EndTrimmedField();
  }
  ASSERT_EQ(record.size(), 4u);
  EXPECT_EQ(record[0], u"a b");
  EXPECT_EQ(record[1], u"");
  EXPECT_EQ(record[2], u"");
  EXPECT_EQ(record[3], u"\t a\u00A0");
}

TEST(RecordTest, ClearedRecordStartsAfresh) {
  Record record;
  Add(record, u"a");
  record.EndField();
  Add(record, u"half");
  record.Clear();
  EXPECT_TRUE(record.empty());
  EXPECT_EQ(record.OpenField(), u"");
  Add(record, u"b");
  record.EndField();
  ASSERT_EQ(record.size(), 1u);
  EXPECT_EQ(record[0], u"b");
}

}  // namespace
}  // namespace TextFile
