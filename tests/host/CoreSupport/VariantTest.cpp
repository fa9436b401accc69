#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/Variant.h"
#include "host/interfaces/HostArray.h"
#include "host/interfaces/HostClasses.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

using HostVariantTest = HostTest;

TEST_F(HostVariantTest, BStringKeepsZerosInside) {
  constexpr std::u16string_view kText(u"a\0b", 3);
  BString text(kText);
  EXPECT_EQ(text.View(), kText);
  EXPECT_EQ(::SysStringLen(text.Get()), 3u);
  BString copy;
  EXPECT_EQ(text.CopyTo(copy.Receive()), S_OK);
  EXPECT_EQ(copy.View(), kText);
  EXPECT_NE(copy.Get(), text.Get());
}

TEST_F(HostVariantTest, EmptyAndNullTexts) {
  const BString null;
  EXPECT_EQ(null.Get(), nullptr);
  EXPECT_EQ(null.View(), u"");
  const BString empty(u"");
  ASSERT_NE(empty.Get(), nullptr);
  EXPECT_EQ(::SysStringLen(empty.Get()), 0u);
  const BString ofEmptyView{std::u16string_view()};
  ASSERT_NE(ofEmptyView.Get(), nullptr);
  BString copy;
  EXPECT_EQ(null.CopyTo(copy.Receive()), S_OK);
  EXPECT_NE(copy.Get(), nullptr);
  EXPECT_EQ(null.CopyTo(nullptr), E_POINTER);
}

TEST_F(HostVariantTest, BStringMoves) {
  BString from(u"text");
  const BSTR raw = from.Get();
  BString to = std::move(from);
  EXPECT_EQ(to.Get(), raw);
  EXPECT_EQ(from.Get(), nullptr);  // NOLINT(bugprone-use-after-move): null is promised
  const BSTR detached = to.Detach();
  EXPECT_EQ(detached, raw);
  EXPECT_EQ(to.Get(), nullptr);
  ::SysFreeString(detached);
}

TEST_F(HostVariantTest, HoldsEachKind) {
  EXPECT_EQ(Variant().Type(), VT_EMPTY);
  EXPECT_EQ(Variant(LONG{5}).Get().lVal, 5);
  EXPECT_EQ(Variant(1.5).Get().dblVal, 1.5);
  const Variant text(u"13.1");
  EXPECT_EQ(text.Type(), VT_BSTR);
  EXPECT_EQ(text.Text(), u"13.1");
  EXPECT_EQ(Variant(LONG{5}).Text(), u"");
}

TEST_F(HostVariantTest, OwnsWhatItHolds) {
  ComPtr<HostArray> array;
  ASSERT_EQ(CreateComponentInstance(CLSID_HostArray, array.Receive()), S_OK);
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_UNKNOWN;
  value.punkVal = array.Get();
  Variant owner;
  EXPECT_EQ(owner.CopyFrom(value), S_OK);
  EXPECT_EQ(References(array.Get()), 2u);
  Variant moved = std::move(owner);
  EXPECT_EQ(References(array.Get()), 2u);
  moved = Variant(LONG{1});
  EXPECT_EQ(References(array.Get()), 1u);
}

TEST_F(HostVariantTest, CopiesWhatAReferencePointsAt) {
  LONG number = 42;
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_BYREF | VT_I4;
  value.plVal = &number;
  Variant copy;
  ASSERT_EQ(copy.CopyFrom(value), S_OK);
  number = 0;
  EXPECT_EQ(copy.Type(), VT_I4);
  EXPECT_EQ(copy.Get().lVal, 42);
}

TEST_F(HostVariantTest, ConvertsByOleRules) {
  Variant number;
  EXPECT_EQ(number.ConvertFrom(Variant(u"17").Get(), VT_I4), S_OK);
  EXPECT_EQ(number.Get().lVal, 17);
  EXPECT_EQ(number.ConvertFrom(Variant(u"seventeen").Get(), VT_I4), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(number.Type(), VT_EMPTY);
  EXPECT_EQ(number.CopyTo(nullptr), E_POINTER);
}

}  // namespace
}  // namespace quenra
