// The class identifier, the row buffer and the timestamp with offset.
#include "host/interfaces/HostArray.h"
#include "host/interfaces/HostClassIdentifier.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostRowBuffer.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

template <class Interface>
ComPtr<Interface> Make(const CLSID& classId) {
  ComPtr<Interface> object;
  EXPECT_EQ(CreateComponentInstance(classId, object.Receive()), S_OK);
  return object;
}

using EmbeddedClassIdentifierTest = HostTest;

TEST_F(EmbeddedClassIdentifierTest, KeepsItsValue) {
  const auto identifier = Make<HostClassIdentifier>(CLSID_HostClassIdentifier);
  GUID value = CLSID_HostArray;
  EXPECT_EQ(identifier->GetValue(&value), S_OK);
  EXPECT_TRUE(IsEqualGUID(value, GUID{}));
  BString text;
  EXPECT_EQ(identifier->GetText(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"{00000000-0000-0000-0000-000000000000}");
  EXPECT_EQ(identifier->SetValue(&CLSID_HostArray), S_OK);
  EXPECT_EQ(identifier->GetValue(&value), S_OK);
  EXPECT_TRUE(IsEqualGUID(value, CLSID_HostArray));
  EXPECT_EQ(identifier->GetText(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"{763AE28A-96CF-4946-BEE4-CA8D1DC9A717}");
}

TEST_F(EmbeddedClassIdentifierTest, RefusesNulls) {
  const auto identifier = Make<HostClassIdentifier>(CLSID_HostClassIdentifier);
  EXPECT_EQ(identifier->GetValue(nullptr), E_POINTER);
  EXPECT_EQ(identifier->GetText(nullptr), E_POINTER);
  EXPECT_EQ(identifier->SetValue(nullptr), E_INVALIDARG);
}

using EmbeddedTimestampOffsetTest = HostTest;

TEST_F(EmbeddedTimestampOffsetTest, KeepsItsPair) {
  const auto timestamp = Make<HostTimestampOffset>(CLSID_HostTimestampOffset);
  DATE date = 1;
  SHORT offset = 1;
  EXPECT_EQ(timestamp->GetDate(&date), S_OK);
  EXPECT_EQ(timestamp->GetOffsetMinutes(&offset), S_OK);
  EXPECT_EQ(date, 0.0);
  EXPECT_EQ(offset, 0);
  EXPECT_EQ(timestamp->SetValue(43835.4375, -570), S_OK);
  EXPECT_EQ(timestamp->GetDate(&date), S_OK);
  EXPECT_EQ(timestamp->GetOffsetMinutes(&offset), S_OK);
  EXPECT_EQ(date, 43835.4375);
  EXPECT_EQ(offset, -570);
  EXPECT_EQ(timestamp->GetDate(nullptr), E_POINTER);
  EXPECT_EQ(timestamp->GetOffsetMinutes(nullptr), E_POINTER);
}

class EmbeddedRowBufferTest : public HostTest {
 protected:
  // A collection of `count` blank fields.
  static ComPtr<HostFieldCollection> MakeFields(int count) {
    auto fields = Make<HostFieldCollection>(CLSID_HostFieldCollection);
    for (int i = 0; i < count; ++i)
      EXPECT_EQ(
          fields.As<HostFieldCollectionEdit>()->AddField(Make<HostField>(CLSID_HostField).Get()),
          S_OK);
    return fields;
  }
};

TEST_F(EmbeddedRowBufferTest, StartsWithoutFields) {
  const auto row = Make<HostRowBuffer>(CLSID_HostRowBuffer);
  ComPtr<HostFieldCollection> fields;
  ASSERT_EQ(row->GetFields(fields.Receive()), S_OK);
  LONG count = 1;
  EXPECT_EQ(fields->GetFieldCount(&count), S_OK);
  EXPECT_EQ(count, 0);
  Variant value;
  EXPECT_EQ(row->GetValue(0, value.Receive()), E_INVALIDARG);
}

TEST_F(EmbeddedRowBufferTest, HoldsOneValueAField) {
  const auto row = Make<HostRowBuffer>(CLSID_HostRowBuffer);
  const auto fields = MakeFields(2);
  EXPECT_EQ(row.As<HostRowBufferEdit>()->SetFields(fields.Get()), S_OK);
  ComPtr<HostFieldCollection> answered;
  EXPECT_EQ(row->GetFields(answered.Receive()), S_OK);
  EXPECT_EQ(answered.Get(), fields.Get());
  EXPECT_EQ(row->SetValue(1, Variant(u"text").Address()), S_OK);
  Variant value;
  EXPECT_EQ(row->GetValue(0, value.Receive()), S_OK);
  EXPECT_EQ(value.Type(), VT_EMPTY);
  EXPECT_EQ(row->GetValue(1, value.Receive()), S_OK);
  EXPECT_EQ(value.Text(), u"text");
  EXPECT_EQ(row.As<HostRowBufferEdit>()->SetFields(fields.Get()), S_OK);
  EXPECT_EQ(row->GetValue(1, value.Receive()), S_OK);
  EXPECT_EQ(value.Type(), VT_EMPTY) << "fields set again bring blank values";
}

TEST_F(EmbeddedRowBufferTest, ValuesAreCopied) {
  const auto row = Make<HostRowBuffer>(CLSID_HostRowBuffer);
  ASSERT_EQ(row.As<HostRowBufferEdit>()->SetFields(MakeFields(1).Get()), S_OK);
  const auto object = Make<HostArray>(CLSID_HostArray);
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_UNKNOWN;
  value.punkVal = object.Get();
  EXPECT_EQ(row->SetValue(0, &value), S_OK);
  EXPECT_EQ(References(object.Get()), 2u);
  {
    Variant copy;
    EXPECT_EQ(row->GetValue(0, copy.Receive()), S_OK);
    EXPECT_EQ(References(object.Get()), 3u);
  }
  EXPECT_EQ(row->SetValue(0, Variant(LONG{1}).Address()), S_OK);
  EXPECT_EQ(References(object.Get()), 1u);
}

TEST_F(EmbeddedRowBufferTest, LendsItsValues) {
  const auto row = Make<HostRowBuffer>(CLSID_HostRowBuffer);
  const auto lending = row.As<HostRowBufferLending>();
  const VARIANT* values = nullptr;
  LONG count = -1;
  EXPECT_EQ(lending->LendValues(&values, &count), S_OK);
  EXPECT_EQ(count, 0);

  ASSERT_EQ(row.As<HostRowBufferEdit>()->SetFields(MakeFields(3).Get()), S_OK);
  EXPECT_EQ(row->SetValue(0, Variant(u"text").Address()), S_OK);
  EXPECT_EQ(row->SetValue(1, Variant(7.5).Address()), S_OK);
  EXPECT_EQ(lending->LendValues(&values, &count), S_OK);
  ASSERT_EQ(count, 3);
  ASSERT_EQ(values[0].vt, VT_BSTR);
  EXPECT_EQ(ViewOf(values[0].bstrVal), u"text");
  ASSERT_EQ(values[1].vt, VT_R8);
  EXPECT_EQ(values[1].dblVal, 7.5);
  EXPECT_EQ(values[2].vt, VT_EMPTY);
  EXPECT_EQ(row->SetValue(0, Variant(u"another").Address()), S_OK);
  EXPECT_EQ(ViewOf(values[0].bstrVal), u"another") << "the buffer's own";

  EXPECT_EQ(lending->LendValues(nullptr, &count), E_POINTER);
  EXPECT_EQ(lending->LendValues(&values, nullptr), E_POINTER);
}

TEST_F(EmbeddedRowBufferTest, LendsNothingWhenItsFieldsHaveChanged) {
  const auto row = Make<HostRowBuffer>(CLSID_HostRowBuffer);
  const auto fields = MakeFields(1);
  ASSERT_EQ(row.As<HostRowBufferEdit>()->SetFields(fields.Get()), S_OK);
  const auto added = Make<HostField>(CLSID_HostField);
  ASSERT_EQ(fields.As<HostFieldCollectionEdit>()->AddField(added.Get()), S_OK);
  const VARIANT* values = nullptr;
  LONG count = 0;
  EXPECT_EQ(row.As<HostRowBufferLending>()->LendValues(&values, &count), E_FAIL);
}

TEST_F(EmbeddedRowBufferTest, RefusesBadArguments) {
  const auto row = Make<HostRowBuffer>(CLSID_HostRowBuffer);
  ASSERT_EQ(row.As<HostRowBufferEdit>()->SetFields(MakeFields(1).Get()), S_OK);
  EXPECT_EQ(row.As<HostRowBufferEdit>()->SetFields(nullptr), E_INVALIDARG);
  EXPECT_EQ(row->GetFields(nullptr), E_POINTER);
  EXPECT_EQ(row->GetValue(0, nullptr), E_POINTER);
  EXPECT_EQ(row->SetValue(0, nullptr), E_INVALIDARG);
  for (const LONG index : {LONG{-1}, LONG{1}}) {
    VARIANT value;
    value.vt = VT_BSTR;  // whatever was there is not looked at
    EXPECT_EQ(row->GetValue(index, &value), E_INVALIDARG);
    EXPECT_EQ(value.vt, VT_EMPTY);
    EXPECT_EQ(row->SetValue(index, Variant(LONG{1}).Address()), E_INVALIDARG);
  }
}

}  // namespace
}  // namespace quenra
