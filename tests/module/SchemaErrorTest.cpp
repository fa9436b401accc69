// What the host is told of a schema.ini that cannot be understood.
#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

constexpr auto kSchemaIniError = static_cast<HRESULT>(0x80040311u);

struct SchemaErrorCase {
  std::string_view section;  // the lines below the header
  std::string_view text;     // of the chained error
};

const SchemaErrorCase kCases[] = {
    {"Col1=\n", "a.csv\n\tMissing field name in schema.ini.\n\tCol1="},
    {"Col1=Name\n", "a.csv\n\tMissing field type in schema.ini.\n\tCol1=Name"},
    {"Col1=Name Money\n", "a.csv\n\tUnknown field type in schema.ini.\n\tCol1=Name Money"},
    {"Col1=Name Text 10\n",
     "a.csv\n\tKeyword \"Width\" expected after field type in schema.ini.\n\tCol1=Name Text 10"},
    {"Col1=Name Text Width\n",
     "a.csv\n\tBad value for field width in schema.ini.\n\tCol1=Name Text Width"},
    {"Format=FixedLength\nCol1=A Text Width 1\nCol3=C Text Width 1\n",
     "a.csv\n\tFixed width files must specify all field in schema.ini."},
    {"Col2=When Date x\n", "a.csv\n\tBad date format in schema.ini.\n\tCol2=When Date x"},
    {"MaxScanRows=5\nMaxScanRows=5\n",
     "a.csv\n\tDuplicate option found in schema.ini.\n\tMaxScanRows=5"},
    {"Format=Delimited(|\n", "a.csv\n\tInvalid format option in schema.ini.\n\tDelimited(|"},
    {"Format=Delimited(\")\"\n",
     "a.csv\n\tDouble quote cannot be used as a custom delimiter in schema.ini.\n\t"
     "Delimited(\")\""},
    {"ColNameHeader=true\n",
     "a.csv\n\tInvalid value for option in schema.ini.\n\tColNameHeader=true"},
    {"Nonsense = 1\n", "a.csv\n\tUnknown option in schema.ini.\n\tNonsense=1"},
};

class SchemaErrorTest : public ModuleTest {};

TEST_F(SchemaErrorTest, EachErrorIsChainedWithItsMessage) {
  folder_.Write(u"a.csv", "Id\n1\n");
  for (const SchemaErrorCase& c : kCases) {
    SCOPED_TRACE(c.section);
    folder_.Write(u"schema.ini", "[a.csv]\n" + std::string(c.section));
    TakeErrors();
    EXPECT_EQ(OpenResult(u"a.csv"), kSchemaIniError);
    const auto errors = TakeErrors();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, kSchemaIniError);
    EXPECT_EQ(errors[0].text, c.text);
    EXPECT_TRUE(IsEqualGUID(errors[0].source, kTextFileErrorSource));
  }
}

TEST_F(SchemaErrorTest, ListedTableReportsItWhenItIsAsked) {
  folder_.Write(u"a.csv", "Id\n1\n");
  folder_.Write(u"schema.ini", "[a.csv]\nCol1=Name Money\n");
  ComPtr<HostArray> array;
  ASSERT_EQ(OpenWorkspace()->EnumerateDatasets(10, array.Receive()), S_OK);
  ComPtr<IUnknown> element;
  ASSERT_EQ(array->GetElement(0, element.Receive()), S_OK);
  const auto table = element.As<IPlugInDatasetHelper>();
  EXPECT_TRUE(TakeErrors().empty());

  ComPtr<HostFieldCollection> fields;
  EXPECT_EQ(table->DescribeFields(0, fields.Receive()), kSchemaIniError);
  EXPECT_EQ(TakeErrors().at(0).text,
            "a.csv\n\tUnknown field type in schema.ini.\n\tCol1=Name Money");
  const FieldMapArray map({0});
  ComPtr<IPlugInCursorHelper> cursor;
  EXPECT_EQ(table->FetchAllRows(0, nullptr, map.AsVariant(), cursor.Receive()), kSchemaIniError);
  LONG count = 0;
  EXPECT_EQ(table.As<IPlugInRowCount>()->CountRows(0, &count), kSchemaIniError);
  EXPECT_EQ(count, -1);
  EXPECT_EQ(TakeErrors().size(), 2u);
}

TEST_F(SchemaErrorTest, ErrorsOfOtherSectionsDoNotMatter) {
  folder_.Write(u"schema.ini", "[b.csv]\nNonsense=1\n");
  EXPECT_EQ(Rows(Table(u"a.csv", "Id\n1\n")).size(), 1u);
}

}  // namespace
}  // namespace quenra::test
