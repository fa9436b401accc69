#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "schema/FieldList.h"

namespace TextFile {
namespace {

FieldDefinition Named(std::u16string name, FieldType type) {
  FieldDefinition field;
  field.name = std::move(name);
  field.type = type;
  return field;
}

TEST(FieldListTest, FieldsBehindTheStoredOnesAreTextsNamedByTheirPosition) {
  FieldList fields = {Named(u"id", FieldType::kInteger)};
  fields.ResizeWithTexts(1000000, 0);
  ASSERT_EQ(fields.size(), 1000000u);
  const FieldList& seen = fields;
  EXPECT_EQ(seen[0].name, u"id");
  EXPECT_EQ(seen[1].name, u"Field2");
  EXPECT_EQ(seen[999999].name, u"Field1000000");
  EXPECT_EQ(seen[999999].type, FieldType::kString);
  EXPECT_EQ(seen[999999].width, 8000);
  EXPECT_FALSE(seen[999999].hasWidth);
  EXPECT_EQ(fields.TypeOf(999999), FieldType::kString);
  EXPECT_EQ(fields.Stored(999999), nullptr);
}

TEST(FieldListTest, VirtualFieldsAreNotCountedInNames) {
  FieldList fields = {Named(u"Place", FieldType::kString), Named(u"Place_X", FieldType::kDouble),
                      Named(u"Place_Y", FieldType::kDouble)};
  fields.ResizeWithTexts(5, 2);
  EXPECT_EQ(std::as_const(fields)[3].name, u"Field2");
  EXPECT_EQ(std::as_const(fields)[4].name, u"Field3");
}

TEST(FieldListTest, TextsThatAreNotStoredHaveTheirNames) {
  const auto names = std::make_shared<NameTexts>();
  names->AddPlace(0, 2);
  names->AddPlace(3, 4);
  names->AddPlace(8, 0);
  names->AddPlace(9, 3);
  names->TakeText(u"id,name,,end");
  FieldList fields = {Named(u"id", FieldType::kInteger)};
  fields.ResizeWithTexts(6, 0, names);
  const FieldList copy = fields;
  fields[1].width = 5;
  EXPECT_EQ(std::as_const(fields)[1].name, u"name");
  for (const FieldList& seen : {fields, copy}) {
    EXPECT_EQ(seen[0].name, u"id");
    EXPECT_EQ(seen[1].name, u"name");
    EXPECT_EQ(seen[2].name, u"Field3") << "an empty name is none";
    EXPECT_EQ(seen[3].name, u"end");
    EXPECT_EQ(seen[3].type, FieldType::kString);
    EXPECT_EQ(seen[4].name, u"Field5") << "there are no more names";
  }
}

TEST(FieldListTest, AFieldThatIsWrittenToIsStored) {
  FieldList fields;
  fields.ResizeWithTexts(10, 0);
  fields[7].type = FieldType::kDate;
  EXPECT_EQ(fields.TypeOf(7), FieldType::kDate);
  ASSERT_NE(fields.Stored(7), nullptr);
  EXPECT_EQ(fields.Stored(7)->name, u"Field8");
  EXPECT_EQ(fields.TypeOf(8), FieldType::kString);
  const FieldList copy = fields;
  EXPECT_EQ(copy.TypeOf(7), FieldType::kDate);
  fields.clear();
  EXPECT_TRUE(fields.empty());
  EXPECT_EQ(copy.size(), 10u);
}

TEST(FieldListTest, GoesThroughAllFieldsInOrder) {
  FieldList fields = {Named(u"a", FieldType::kInteger)};
  fields.ResizeWithTexts(4, 0);
  fields[2].name = u"c";
  std::u16string names;
  for (const FieldDefinition& field : fields) names += field.name + u' ';
  EXPECT_EQ(names, u"a Field2 c Field4 ");
}

}  // namespace
}  // namespace TextFile
