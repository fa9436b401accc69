// The array, the property set and the list of file names.
#include <string>
#include <vector>

#include "host/interfaces/HostArray.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFileNames.h"
#include "host/interfaces/HostPropertySet.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

template <class Interface>
ComPtr<Interface> Make(const CLSID& classId) {
  ComPtr<Interface> object;
  EXPECT_EQ(CreateComponentInstance(classId, object.Receive()), S_OK);
  return object;
}

using EmbeddedArrayTest = HostTest;

TEST_F(EmbeddedArrayTest, HoldsReferencesInOrder) {
  const auto array = Make<HostArray>(CLSID_HostArray);
  const auto element = Make<HostArray>(CLSID_HostArray);
  EXPECT_EQ(array->Add(element.Get()), S_OK);
  EXPECT_EQ(References(element.Get()), 2u);
  LONG count = 0;
  EXPECT_EQ(array->GetCount(&count), S_OK);
  EXPECT_EQ(count, 1);
  ComPtr<IUnknown> found;
  EXPECT_EQ(array->GetElement(0, found.Receive()), S_OK);
  EXPECT_EQ(found.Get(), static_cast<IUnknown*>(element.Get()));
  EXPECT_EQ(References(element.Get()), 3u);
}

TEST_F(EmbeddedArrayTest, RefusesBadArguments) {
  const auto array = Make<HostArray>(CLSID_HostArray);
  EXPECT_EQ(array->Add(nullptr), E_INVALIDARG);
  EXPECT_EQ(array->GetCount(nullptr), E_POINTER);
  EXPECT_EQ(array->GetElement(0, nullptr), E_POINTER);
  for (const LONG index : {LONG{-1}, LONG{0}}) {
    IUnknown* element = array.Get();
    EXPECT_EQ(array->GetElement(index, &element), E_INVALIDARG);
    EXPECT_EQ(element, nullptr);
  }
}

using EmbeddedPropertySetTest = HostTest;

TEST_F(EmbeddedPropertySetTest, NamesHaveNoCase) {
  const auto properties = Make<HostPropertySet>(CLSID_HostPropertySet);
  EXPECT_EQ(properties->SetProperty(BString(u"Version").Get(), Variant(u"13.1").Address()), S_OK);
  EXPECT_EQ(properties->SetProperty(BString(u"VERSION").Get(), Variant(u"13.2").Address()), S_OK);
  LONG count = 0;
  EXPECT_EQ(properties->GetPropertyCount(&count), S_OK);
  EXPECT_EQ(count, 1);
  Variant value;
  EXPECT_EQ(properties->GetProperty(BString(u"version").Get(), value.Receive()), S_OK);
  EXPECT_EQ(value.Text(), u"13.2");
}

TEST_F(EmbeddedPropertySetTest, MissingPropertyIsEmpty) {
  const auto properties = Make<HostPropertySet>(CLSID_HostPropertySet);
  VARIANT value;
  value.vt = VT_BSTR;  // whatever was there is not looked at
  EXPECT_EQ(properties->GetProperty(BString(u"none").Get(), &value), S_FALSE);
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_EQ(properties->GetProperty(nullptr, &value), S_FALSE);
}

TEST_F(EmbeddedPropertySetTest, ValuesAreCopied) {
  const auto properties = Make<HostPropertySet>(CLSID_HostPropertySet);
  const auto object = Make<HostArray>(CLSID_HostArray);
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_UNKNOWN;
  value.punkVal = object.Get();
  EXPECT_EQ(properties->SetProperty(BString(u"object").Get(), &value), S_OK);
  EXPECT_EQ(References(object.Get()), 2u);
  Variant copy;
  EXPECT_EQ(properties->GetProperty(BString(u"object").Get(), copy.Receive()), S_OK);
  EXPECT_EQ(References(object.Get()), 3u);
}

TEST_F(EmbeddedPropertySetTest, RefusesBadArguments) {
  const auto properties = Make<HostPropertySet>(CLSID_HostPropertySet);
  const BString name(u"name");
  EXPECT_EQ(properties->GetProperty(name.Get(), nullptr), E_POINTER);
  EXPECT_EQ(properties->GetPropertyCount(nullptr), E_POINTER);
  EXPECT_EQ(properties->SetProperty(name.Get(), nullptr), E_INVALIDARG);
  EXPECT_EQ(properties->SetProperty(nullptr, Variant(u"x").Address()), E_INVALIDARG);
  VARIANT bad;
  ::VariantInit(&bad);
  bad.vt = 0x0FFE;  // no such type
  EXPECT_EQ(properties->SetProperty(name.Get(), &bad), DISP_E_BADVARTYPE);
  LONG count = 1;
  EXPECT_EQ(properties->GetPropertyCount(&count), S_OK);
  EXPECT_EQ(count, 0);
}

class EmbeddedFileNamesTest : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    names_ = Make<HostFileNames>(CLSID_HostFileNames);
    EXPECT_EQ(names_->Add(BString(u"a.csv").Get(), VARIANT_FALSE), S_OK);
    EXPECT_EQ(names_->Add(BString(u"b").Get(), VARIANT_TRUE), S_OK);
    EXPECT_EQ(names_->Add(BString(u"c.csv").Get(), VARIANT_FALSE), S_OK);
  }
  void TearDown() override {
    names_.Reset();
    HostTest::TearDown();
  }

  // The next name, with a "/" behind a directory's; empty at the end.
  std::u16string Next() {
    BString name;
    VARIANT_BOOL isDirectory = 5;
    const HRESULT result = names_->Next(name.Receive(), &isDirectory);
    EXPECT_EQ(result, name.Get() != nullptr ? S_OK : S_FALSE);
    EXPECT_TRUE(isDirectory == VARIANT_TRUE || isDirectory == VARIANT_FALSE);
    return std::u16string(name.View()) + (isDirectory != VARIANT_FALSE ? u"/" : u"");
  }

  ComPtr<HostFileNames> names_;
};

TEST_F(EmbeddedFileNamesTest, DeliversInOrder) {
  EXPECT_EQ(Next(), u"a.csv");
  EXPECT_EQ(Next(), u"b/");
  EXPECT_EQ(Next(), u"c.csv");
  EXPECT_EQ(Next(), u"");
  EXPECT_EQ(Next(), u"");
  EXPECT_EQ(names_->Reset(), S_OK);
  EXPECT_EQ(Next(), u"a.csv");
}

TEST_F(EmbeddedFileNamesTest, RemovesWhatWasDelivered) {
  EXPECT_EQ(names_->RemoveCurrent(), E_FAIL) << "before the first entry";
  EXPECT_EQ(Next(), u"a.csv");
  EXPECT_EQ(names_->RemoveCurrent(), S_OK);
  EXPECT_EQ(names_->RemoveCurrent(), E_FAIL) << "gone already";
  EXPECT_EQ(Next(), u"b/") << "goes on behind it";
  EXPECT_EQ(Next(), u"c.csv");
  EXPECT_EQ(names_->RemoveCurrent(), S_OK);
  EXPECT_EQ(Next(), u"");
  EXPECT_EQ(names_->RemoveCurrent(), E_FAIL) << "behind the last entry";
  EXPECT_EQ(names_->Reset(), S_OK);
  EXPECT_EQ(names_->RemoveCurrent(), E_FAIL);
  EXPECT_EQ(Next(), u"b/");
  EXPECT_EQ(Next(), u"");
}

TEST_F(EmbeddedFileNamesTest, AppendsWhileItIsRead) {
  while (!Next().empty()) {
  }
  EXPECT_EQ(names_->Add(BString(u"d").Get(), VARIANT_FALSE), S_OK);
  EXPECT_EQ(Next(), u"d");
}

TEST_F(EmbeddedFileNamesTest, RefusesNullResults) {
  BSTR name = reinterpret_cast<BSTR>(this);
  VARIANT_BOOL isDirectory = VARIANT_TRUE;
  EXPECT_EQ(names_->Next(nullptr, &isDirectory), E_POINTER);
  EXPECT_EQ(names_->Next(&name, nullptr), E_POINTER);
  EXPECT_EQ(name, nullptr);
  EXPECT_EQ(Next(), u"a.csv") << "the position has not moved";
}

TEST_F(EmbeddedFileNamesTest, NullNameIsEmpty) {
  const auto names = Make<HostFileNames>(CLSID_HostFileNames);
  EXPECT_EQ(names->Add(nullptr, VARIANT_FALSE), S_OK);
  BString name;
  VARIANT_BOOL isDirectory = VARIANT_TRUE;
  EXPECT_EQ(names->Next(name.Receive(), &isDirectory), S_OK);
  EXPECT_NE(name.Get(), nullptr);
  EXPECT_EQ(name.View(), u"");
}

}  // namespace
}  // namespace quenra
