#include <string>
#include <vector>

#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFields.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

// Fields that are named by their index.
class NumberedFields final : public Implements<HostFieldSource> {
 public:
  explicit NumberedFields(LONG count) : count_(count) {}

  std::u16string_view ClassName() const noexcept override { return u"NumberedFields"; }
  HRESULT STDMETHODCALLTYPE GetSourceFieldCount(LONG* count) override {
    *count = count_;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE MakeSourceField(LONG index, HostField** field) override {
    ++made_;
    ComPtr<HostFieldEdit> edit;
    const HRESULT result = CreateComponentInstance(CLSID_HostField, edit.Receive());
    if (FAILED(result)) return result;
    edit->SetName(BString(NameOf(index)).Get());
    *field = edit.As<HostField>().Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetSourceFieldName(LONG index, BSTR* name) override {
    *name = BString(NameOf(index)).Detach();
    return S_OK;
  }

  int Made() const noexcept { return made_; }

 private:
  static std::u16string NameOf(LONG index) {
    const std::string digits = std::to_string(index);
    return u"N" + std::u16string(digits.begin(), digits.end());
  }

  const LONG count_;
  int made_ = 0;
};

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

class SourceOfFieldsTest : public FieldsTest {
 protected:
  static constexpr LONG kFields = 100000;

  void SetUp() override {
    FieldsTest::SetUp();
    fields_ = MakeCollection();
    source_ = MakeObject<NumberedFields>(kFields);
    ASSERT_EQ(fields_.As<HostFieldCollectionFilling>()->FillFrom(source_.Get()), S_OK);
  }

  void TearDown() override {
    fields_.Reset();
    source_.Reset();
    FieldsTest::TearDown();
  }

  ComPtr<HostField> At(LONG index) const {
    ComPtr<HostField> field;
    EXPECT_EQ(fields_->GetField(index, field.Receive()), S_OK);
    return field;
  }
  static std::u16string NameOf(const ComPtr<HostField>& field) {
    BString name;
    EXPECT_EQ(field->GetName(name.Receive()), S_OK);
    return std::u16string(name.View());
  }
  LONG Find(std::u16string_view name) const {
    LONG index = -2;
    fields_->FindField(BString(name).Get(), &index);
    return index;
  }
  void WalkThroughAll() const {
    for (LONG i = 0; i < kFields; ++i) At(i);
  }

  ComPtr<HostFieldCollection> fields_;
  ComPtr<NumberedFields> source_;
};

TEST_F(SourceOfFieldsTest, FieldsAreMadeWhenAskedFor) {
  LONG count = 0;
  EXPECT_EQ(fields_->GetFieldCount(&count), S_OK);
  EXPECT_EQ(count, kFields);
  EXPECT_EQ(Find(u"n99999"), 99999);
  EXPECT_EQ(Find(u"N100000"), -1);
  EXPECT_EQ(source_->Made(), 0) << "names are found without fields";
  EXPECT_EQ(NameOf(At(99999)), u"N99999");
  EXPECT_EQ(source_->Made(), 1);
}

TEST_F(SourceOfFieldsTest, FieldsThatNobodyHoldsAreForgotten) {
  const LONG before = LiveComponentCount();
  WalkThroughAll();
  EXPECT_LT(LiveComponentCount(), before + 100);
}

TEST_F(SourceOfFieldsTest, AnIndexGivesTheSameFieldToWhoHoldsIt) {
  std::vector<ComPtr<HostField>> held;
  for (LONG i = 0; i < 1000; ++i) held.push_back(At(i * 7));
  WalkThroughAll();
  for (LONG i = 0; i < 1000; ++i) EXPECT_EQ(At(i * 7).Get(), held[static_cast<size_t>(i)].Get());
}

TEST_F(SourceOfFieldsTest, ChangedFieldsStay) {
  EXPECT_EQ(At(5).As<HostFieldEdit>()->SetName(BString(u"Changed").Get()), S_OK);
  EXPECT_EQ(At(6).As<HostFieldTag>()->SetTag(BString(u"tag").Get()), S_OK);
  EXPECT_EQ(At(7).As<HostFieldEdit>()->SetLength(70), S_OK);
  WalkThroughAll();
  EXPECT_EQ(NameOf(At(5)), u"Changed");
  EXPECT_EQ(Find(u"changed"), 5);
  EXPECT_EQ(Find(u"N5"), -1);
  BString tag;
  EXPECT_EQ(At(6).As<HostFieldTag>()->GetTag(tag.Receive()), S_OK);
  EXPECT_EQ(tag.View(), u"tag");
  LONG length = 0;
  EXPECT_EQ(At(7)->GetLength(&length), S_OK);
  EXPECT_EQ(length, 70);
}

TEST_F(SourceOfFieldsTest, AddedFieldsStandBehindThem) {
  const ComPtr<HostField> added = MakeField(u"Added");
  EXPECT_EQ(fields_.As<HostFieldCollectionEdit>()->AddField(added.Get()), S_OK);
  EXPECT_EQ(At(kFields).Get(), added.Get());
  EXPECT_EQ(Find(u"ADDED"), kFields);
  ComPtr<HostField> none;
  EXPECT_EQ(fields_->GetField(kFields + 1, none.Receive()), E_INVALIDARG);
}

TEST_F(SourceOfFieldsTest, OnlyAnEmptyCollectionIsFilled) {
  const auto other = MakeObject<NumberedFields>(1);
  EXPECT_EQ(fields_.As<HostFieldCollectionFilling>()->FillFrom(other.Get()), E_FAIL);
  const ComPtr<HostFieldCollection> fields = MakeCollection();
  EXPECT_EQ(fields.As<HostFieldCollectionFilling>()->FillFrom(nullptr), E_INVALIDARG);
  EXPECT_EQ(fields.As<HostFieldCollectionEdit>()->AddField(MakeField(u"A").Get()), S_OK);
  EXPECT_EQ(fields.As<HostFieldCollectionFilling>()->FillFrom(other.Get()), E_FAIL);
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
