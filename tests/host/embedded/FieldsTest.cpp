#include <string>

#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFields.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

class FieldsTest : public HostTest {
 protected:
  static ComPtr<HostField> MakeField(std::u16string_view name) {
    ComPtr<HostField> field;
    EXPECT_EQ(CreateComponentInstance(CLSID_HostField, field.Receive()), S_OK);
    EXPECT_EQ(field.As<HostFieldEdit>()->SetName(BString(name).Get()), S_OK);
    return field;
  }

  static ComPtr<HostFieldCollection> MakeCollection() {
    ComPtr<HostFieldCollection> fields;
    EXPECT_EQ(CreateComponentInstance(CLSID_HostFieldCollection, fields.Receive()), S_OK);
    return fields;
  }
};

TEST_F(FieldsTest, FieldKeepsWhatIsSet) {
  const ComPtr<HostField> field = MakeField(u"Name");
  const auto edit = field.As<HostFieldEdit>();
  const auto tag = field.As<HostFieldTag>();
  EXPECT_EQ(edit->SetAliasName(BString(u"Alias").Get()), S_OK);
  EXPECT_EQ(edit->SetType(16), S_OK);
  EXPECT_EQ(edit->SetLength(10), S_OK);
  EXPECT_EQ(edit->SetPrecision(1), S_OK);
  EXPECT_EQ(tag->SetTag(BString(u"virtual coordinate field").Get()), S_OK);

  BString text;
  EXPECT_EQ(field->GetName(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"Name");
  EXPECT_EQ(field->GetAliasName(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"Alias");
  EXPECT_EQ(tag->GetTag(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"virtual coordinate field");
  LONG number = -1;
  EXPECT_EQ(field->GetType(&number), S_OK);
  EXPECT_EQ(number, 16);
  EXPECT_EQ(field->GetLength(&number), S_OK);
  EXPECT_EQ(number, 10);
  EXPECT_EQ(field->GetPrecision(&number), S_OK);
  EXPECT_EQ(number, 1);
}

TEST_F(FieldsTest, AliasStaysWhenTheNameChanges) {
  const ComPtr<HostField> field = MakeField(u"Name");
  const auto edit = field.As<HostFieldEdit>();
  BString text;
  EXPECT_EQ(field->GetAliasName(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"");
  for (const std::u16string_view alias : {u"Name", u"Other", u"Name", u""}) {
    EXPECT_EQ(edit->SetName(BString(u"Name").Get()), S_OK);
    EXPECT_EQ(edit->SetAliasName(BString(alias).Get()), S_OK);
    EXPECT_EQ(field->GetAliasName(text.Receive()), S_OK);
    EXPECT_EQ(text.View(), alias);
    EXPECT_EQ(edit->SetName(BString(u"Renamed").Get()), S_OK);
    EXPECT_EQ(field->GetAliasName(text.Receive()), S_OK);
    EXPECT_EQ(text.View(), alias);
    EXPECT_EQ(field->GetName(text.Receive()), S_OK);
    EXPECT_EQ(text.View(), u"Renamed");
  }
  const auto tag = field.As<HostFieldTag>();
  EXPECT_EQ(tag->SetTag(BString(u"tag").Get()), S_OK);
  EXPECT_EQ(tag->SetTag(nullptr), S_OK);
  EXPECT_EQ(tag->GetTag(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"");
}

TEST_F(FieldsTest, NewFieldIsBlank) {
  ComPtr<HostField> field;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostField, field.Receive()), S_OK);
  BString text;
  EXPECT_EQ(field->GetName(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"");
  LONG number = -1;
  EXPECT_EQ(field->GetLength(&number), S_OK);
  EXPECT_EQ(number, 0);
}

TEST_F(FieldsTest, NullTextsAreEmpty) {
  const ComPtr<HostField> field = MakeField(u"Name");
  EXPECT_EQ(field.As<HostFieldEdit>()->SetName(nullptr), S_OK);
  EXPECT_EQ(field.As<HostFieldEdit>()->SetAliasName(nullptr), S_OK);
  EXPECT_EQ(field.As<HostFieldTag>()->SetTag(nullptr), S_OK);
  BString text;
  EXPECT_EQ(field->GetName(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"");
}

TEST_F(FieldsTest, FieldRefusesNullResultsAndNegativeNumbers) {
  const ComPtr<HostField> field = MakeField(u"Name");
  const auto edit = field.As<HostFieldEdit>();
  EXPECT_EQ(field->GetName(nullptr), E_POINTER);
  EXPECT_EQ(field->GetAliasName(nullptr), E_POINTER);
  EXPECT_EQ(field->GetType(nullptr), E_POINTER);
  EXPECT_EQ(field->GetLength(nullptr), E_POINTER);
  EXPECT_EQ(field->GetPrecision(nullptr), E_POINTER);
  EXPECT_EQ(field.As<HostFieldTag>()->GetTag(nullptr), E_POINTER);
  EXPECT_EQ(edit->SetType(-1), E_INVALIDARG);
  EXPECT_EQ(edit->SetPrecision(-1), E_INVALIDARG);
}

TEST_F(FieldsTest, CollectionKeepsOrderAndReferences) {
  const ComPtr<HostFieldCollection> fields = MakeCollection();
  const ComPtr<HostField> first = MakeField(u"A");
  const ULONG before = References(first.Get());
  EXPECT_EQ(fields.As<HostFieldCollectionEdit>()->AddField(first.Get()), S_OK);
  EXPECT_EQ(fields.As<HostFieldCollectionEdit>()->AddField(MakeField(u"B").Get()), S_OK);
  EXPECT_EQ(References(first.Get()), before + 1);
  LONG count = 0;
  EXPECT_EQ(fields->GetFieldCount(&count), S_OK);
  EXPECT_EQ(count, 2);
  ComPtr<HostField> field;
  EXPECT_EQ(fields->GetField(0, field.Receive()), S_OK);
  EXPECT_EQ(field.Get(), first.Get());
  EXPECT_EQ(References(first.Get()), before + 2);
}

TEST_F(FieldsTest, FindsTheFirstFieldOfAName) {
  const ComPtr<HostFieldCollection> fields = MakeCollection();
  const auto edit = fields.As<HostFieldCollectionEdit>();
  for (const std::u16string_view name : {u"Id", u"\u00E9t\u00E9", u"ID"})
    ASSERT_EQ(edit->AddField(MakeField(name).Get()), S_OK);
  LONG index = 9;
  EXPECT_EQ(fields->FindField(BString(u"iD").Get(), &index), S_OK);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(fields->FindField(BString(u"\u00C9T\u00C9").Get(), &index), S_OK);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(fields->FindField(BString(u"none").Get(), &index), S_FALSE);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(fields->FindField(nullptr, &index), S_FALSE);
  EXPECT_EQ(fields->FindField(BString(u"Id").Get(), nullptr), E_POINTER);
}

TEST_F(FieldsTest, CollectionRefusesBadArguments) {
  const ComPtr<HostFieldCollection> fields = MakeCollection();
  EXPECT_EQ(fields.As<HostFieldCollectionEdit>()->AddField(MakeField(u"A").Get()), S_OK);
  EXPECT_EQ(fields.As<HostFieldCollectionEdit>()->AddField(nullptr), E_INVALIDARG);
  EXPECT_EQ(fields->GetFieldCount(nullptr), E_POINTER);
  EXPECT_EQ(fields->GetField(0, nullptr), E_POINTER);
  for (const LONG index : {LONG{-1}, LONG{1}, LONG{0x7FFFFFFF}}) {
    ComPtr<HostField> field = MakeField(u"B");
    HostField* result = field.Get();
    EXPECT_EQ(fields->GetField(index, &result), E_INVALIDARG);
    EXPECT_EQ(result, nullptr);
  }
}

}  // namespace
}  // namespace quenra
