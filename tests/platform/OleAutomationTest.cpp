#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platform/OleAutomation.h"
#include "platform/OleText.h"

namespace {

constexpr LCID kEnglish = 0x0409;
constexpr LCID kGerman = 0x0407;

VARIANT TextVariant(std::u16string_view text) {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_BSTR;
  value.bstrVal = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
  return value;
}

VARIANT RealVariant(double number) {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_R8;
  value.dblVal = number;
  return value;
}

VARIANT LongVariant(LONG number) {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_I4;
  value.lVal = number;
  return value;
}

// Converts and clears `source`; the result is the text, or the code of the failure in hex.
std::u16string ToText(VARIANT source, LCID lcid = kEnglish, USHORT flags = 0) {
  VARIANT result;
  ::VariantInit(&result);
  const HRESULT hr = ::VariantChangeTypeEx(&result, &source, lcid, flags, VT_BSTR);
  std::u16string text = FAILED(hr) ? u"(failed)" : std::u16string(ViewOf(result.bstrVal));
  ::VariantClear(&source);
  ::VariantClear(&result);
  return text;
}

HRESULT Change(VARIANT source, VARTYPE vt, VARIANT* result, LCID lcid = kEnglish) {
  ::VariantInit(result);
  const HRESULT hr = ::VariantChangeTypeEx(result, &source, lcid, 0, vt);
  ::VariantClear(&source);
  return hr;
}

// An object that only counts.
class Counted final : public IUnknown {
 public:
  STDMETHODIMP QueryInterface(REFIID, void** result) override {
    *result = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  ULONG references = 1;
};

TEST(BstrTest, NullIsEmptyText) {
  EXPECT_EQ(::SysStringLen(nullptr), 0u);
  EXPECT_EQ(::SysStringByteLen(nullptr), 0u);
  EXPECT_EQ(::SysAllocString(nullptr), nullptr);
  EXPECT_TRUE(ViewOf(nullptr).empty());
  ::SysFreeString(nullptr);
}

TEST(BstrTest, LengthStandsBeforeTheTextAndZeroBehindIt) {
  const BSTR text = ::SysAllocStringLen(AsOle(u"a\0b"), 3);
  EXPECT_EQ(::SysStringLen(text), 3u);
  EXPECT_EQ(::SysStringByteLen(text), 6u);
  UINT prefix = 0;
  std::memcpy(&prefix, reinterpret_cast<const char*>(text) - 4, 4);
  EXPECT_EQ(prefix, 6u);
  EXPECT_EQ(text[3], 0);
  EXPECT_EQ(ViewOf(text), std::u16string_view(u"a\0b", 3));
  ::SysFreeString(text);
}

TEST(BstrTest, BytesMayBeOddInNumber) {
  const BSTR text = ::SysAllocStringByteLen("abc", 3);
  EXPECT_EQ(::SysStringByteLen(text), 3u);
  EXPECT_EQ(::SysStringLen(text), 1u);
  EXPECT_EQ(std::memcmp(text, "abc\0\0", 5), 0);
  ::SysFreeString(text);
}

TEST(BstrTest, WithoutCharactersOnlyTheEndIsSet) {
  const BSTR text = ::SysAllocStringLen(nullptr, 5);
  EXPECT_EQ(::SysStringLen(text), 5u);
  EXPECT_EQ(text[5], 0);
  ::SysFreeString(text);
}

TEST(BstrTest, ReallocationTakesAPartOfTheOldText) {
  BSTR text = ::SysAllocString(AsOle(u"weather"));
  EXPECT_EQ(::SysReAllocString(&text, text + 2), TRUE);
  EXPECT_EQ(ViewOf(text), u"ather");
  EXPECT_EQ(::SysReAllocStringLen(&text, text + 1, 2), TRUE);
  EXPECT_EQ(ViewOf(text), u"th");
  EXPECT_EQ(::SysReAllocStringLen(&text, nullptr, 4), TRUE);
  EXPECT_EQ(ViewOf(text).substr(0, 2), u"th");
  EXPECT_EQ(::SysStringLen(text), 4u);
  EXPECT_EQ(::SysReAllocString(&text, nullptr), TRUE);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(::SysReAllocString(nullptr, AsOle(u"a")), FALSE);
}

// Memory that is used again, in whatever thread, holds the new text alone.
TEST(BstrTest, TextsOfEveryLengthComeAndGoInSeveralThreads) {
  constexpr UINT kLengths = 600;
  const auto fill = [](std::vector<BSTR>& texts) {
    for (UINT length = 0; length < kLengths; ++length) {
      const std::u16string text(length, static_cast<char16_t>(u'a' + length % 26));
      texts.push_back(::SysAllocStringLen(AsOle(text.data()), length));
    }
  };
  const auto checkAndFree = [](const std::vector<BSTR>& texts) {
    for (UINT length = 0; length < kLengths; ++length) {
      ASSERT_EQ(::SysStringLen(texts[length]), length);
      ASSERT_EQ(ViewOf(texts[length]),
                std::u16string(length, static_cast<char16_t>(u'a' + length % 26)));
      ASSERT_EQ(texts[length][length], 0);
      ::SysFreeString(texts[length]);
    }
  };
  for (int round = 0; round < 3; ++round) {
    std::vector<BSTR> mine;
    std::vector<BSTR> others;
    fill(mine);
    std::thread other([&] {
      fill(others);
      checkAndFree(mine);
    });
    other.join();
    checkAndFree(others);
  }
}

TEST(BstrTest, ImpossibleLengthsAnswerNull) {
  EXPECT_EQ(::SysAllocStringLen(nullptr, 0xFFFFFFFF), nullptr);
  EXPECT_EQ(::SysAllocStringByteLen(nullptr, 0xFFFFFFFF), nullptr);
}

TEST(VariantTest, HasTheLayoutOfWindows) {
  EXPECT_EQ(sizeof(VARIANT), 24u);
  EXPECT_EQ(offsetof(VARIANT, llVal), 8u);
  EXPECT_EQ(sizeof(VARIANT_BOOL), 2u);
  EXPECT_EQ(VARIANT_TRUE, -1);
}

TEST(VariantTest, NullArgumentsAreInvalid) {
  VARIANT value = LongVariant(1);
  EXPECT_EQ(::VariantClear(nullptr), E_INVALIDARG);
  EXPECT_EQ(::VariantCopy(nullptr, &value), E_INVALIDARG);
  EXPECT_EQ(::VariantCopy(&value, nullptr), E_INVALIDARG);
  EXPECT_EQ(::VariantCopyInd(nullptr, &value), E_INVALIDARG);
  EXPECT_EQ(::VariantChangeType(nullptr, &value, 0, VT_I4), E_INVALIDARG);
  EXPECT_EQ(::VariantChangeType(&value, nullptr, 0, VT_I4), E_INVALIDARG);
}

TEST(VariantTest, UnknownTypesAreRefusedAndLeftAlone) {
  VARIANT value = LongVariant(1);
  for (const int vt :
       {15, 99, int{VT_BYREF}, VT_BYREF | VT_NULL, VT_ARRAY | VT_EMPTY, VT_VECTOR | VT_I4}) {
    value.vt = static_cast<VARTYPE>(vt);
    EXPECT_EQ(::VariantClear(&value), DISP_E_BADVARTYPE) << vt;
    EXPECT_EQ(value.vt, vt);
  }
}

TEST(VariantTest, ClearLeavesWhatAReferencePointsAt) {
  BSTR text = ::SysAllocString(AsOle(u"mine"));
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_BSTR | VT_BYREF;
  value.pbstrVal = &text;
  EXPECT_EQ(::VariantClear(&value), S_OK);
  EXPECT_EQ(value.vt, VT_EMPTY);
  EXPECT_EQ(ViewOf(text), u"mine");
  ::SysFreeString(text);
}

TEST(VariantTest, CopyOwnsItsText) {
  VARIANT source = TextVariant(std::u16string_view(u"a\0b", 3));
  VARIANT target = TextVariant(u"old");
  EXPECT_EQ(::VariantCopy(&target, &source), S_OK);
  EXPECT_NE(target.bstrVal, source.bstrVal);
  EXPECT_EQ(ViewOf(target.bstrVal), std::u16string_view(u"a\0b", 3));
  EXPECT_EQ(::VariantCopy(&target, &target), S_OK);
  ::VariantClear(&source);
  ::VariantClear(&target);
}

TEST(VariantTest, CopyCountsObjects) {
  Counted object;
  VARIANT source;
  ::VariantInit(&source);
  source.vt = VT_UNKNOWN;
  source.punkVal = &object;
  VARIANT target;
  ::VariantInit(&target);
  EXPECT_EQ(::VariantCopy(&target, &source), S_OK);
  EXPECT_EQ(object.references, 2u);
  ::VariantClear(&target);
  EXPECT_EQ(object.references, 1u);
}

TEST(VariantTest, CopyKeepsAReferenceAndCopyIndFollowsIt) {
  LONG number = 7;
  VARIANT source;
  ::VariantInit(&source);
  source.vt = VT_I4 | VT_BYREF;
  source.plVal = &number;
  VARIANT target;
  ::VariantInit(&target);
  EXPECT_EQ(::VariantCopy(&target, &source), S_OK);
  EXPECT_EQ(target.vt, VT_I4 | VT_BYREF);
  EXPECT_EQ(target.plVal, &number);
  EXPECT_EQ(::VariantCopyInd(&target, &source), S_OK);
  EXPECT_EQ(target.vt, VT_I4);
  EXPECT_EQ(target.lVal, 7);

  VARIANT inner = TextVariant(u"inner");
  source.vt = VT_VARIANT | VT_BYREF;
  source.pvarVal = &inner;
  EXPECT_EQ(::VariantCopyInd(&target, &source), S_OK);
  EXPECT_EQ(ViewOf(target.bstrVal), u"inner");
  ::VariantClear(&inner);
  ::VariantClear(&target);

  inner.vt = VT_VARIANT | VT_BYREF;
  inner.pvarVal = &target;
  EXPECT_EQ(::VariantCopyInd(&target, &source), E_INVALIDARG);
  source.vt = VT_I4 | VT_BYREF;
  source.plVal = nullptr;
  EXPECT_EQ(::VariantCopyInd(&target, &source), E_INVALIDARG);
}

TEST(VariantTest, ArraysAreCopiedAndALockedOneIsNotCleared) {
  VARIANT source;
  ::VariantInit(&source);
  source.vt = VT_ARRAY | VT_I4;
  source.parray = ::SafeArrayCreateVector(VT_I4, 0, 2);
  VARIANT target;
  ::VariantInit(&target);
  EXPECT_EQ(::VariantCopy(&target, &source), S_OK);
  EXPECT_NE(target.parray, source.parray);
  ::SafeArrayLock(target.parray);
  EXPECT_EQ(::VariantClear(&target), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(target.vt, VT_ARRAY | VT_I4);
  ::SafeArrayUnlock(target.parray);
  EXPECT_EQ(::VariantClear(&target), S_OK);

  VARIANT byRef;
  ::VariantInit(&byRef);
  byRef.vt = VT_ARRAY | VT_I4 | VT_BYREF;
  byRef.pparray = &source.parray;
  EXPECT_EQ(::VariantCopyInd(&target, &byRef), S_OK);
  EXPECT_EQ(target.vt, VT_ARRAY | VT_I4);
  EXPECT_NE(target.parray, source.parray);
  VARIANT number;
  ::VariantInit(&number);
  EXPECT_EQ(::VariantChangeType(&number, &source, 0, VT_I4), DISP_E_TYPEMISMATCH);
  ::VariantClear(&target);
  ::VariantClear(&source);
}

TEST(VariantConversionTest, HalvesRoundToEven) {
  struct Case {
    double real;
    LONG whole;
  };
  for (const Case& c : {Case{0.5, 0}, {1.5, 2}, {2.5, 2}, {-0.5, 0}, {-1.5, -2}, {2.4999, 2}}) {
    VARIANT result;
    EXPECT_EQ(Change(RealVariant(c.real), VT_I4, &result), S_OK);
    EXPECT_EQ(result.lVal, c.whole) << c.real;
  }
}

TEST(VariantConversionTest, LimitsAreExact) {
  struct Case {
    double real;
    VARTYPE vt;
    HRESULT hr;
  };
  const Case cases[] = {
      {127, VT_I1, S_OK},
      {128, VT_I1, DISP_E_OVERFLOW},
      {255.4, VT_UI1, S_OK},
      {255.5, VT_UI1, DISP_E_OVERFLOW},
      {-1, VT_UI1, DISP_E_OVERFLOW},
      {32767, VT_I2, S_OK},
      {32768, VT_I2, DISP_E_OVERFLOW},
      {2147483647, VT_I4, S_OK},
      {2147483648.0, VT_I4, DISP_E_OVERFLOW},
      {-2147483648.0, VT_I4, S_OK},
      {-2147483649.0, VT_I4, DISP_E_OVERFLOW},
      {9223372036854775808.0, VT_I8, DISP_E_OVERFLOW},
      {-9223372036854775808.0, VT_I8, S_OK},
      {9223372036854775808.0, VT_UI8, S_OK},
      {1e39, VT_R4, DISP_E_OVERFLOW},
      {1e300, VT_CY, DISP_E_OVERFLOW},
      {2958465.9, VT_DATE, S_OK},
      {2958466, VT_DATE, DISP_E_OVERFLOW},
  };
  for (const Case& c : cases) {
    VARIANT result;
    EXPECT_EQ(Change(RealVariant(c.real), c.vt, &result), c.hr) << c.real << ' ' << c.vt;
    EXPECT_EQ(result.vt, static_cast<VARTYPE>(c.hr == S_OK ? int{c.vt} : int{VT_EMPTY}));
  }
}

TEST(VariantConversionTest, AFailedConversionLeavesTheTarget) {
  VARIANT value = TextVariant(u"seven");
  EXPECT_EQ(::VariantChangeTypeEx(&value, &value, kEnglish, 0, VT_I4), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(value.vt, VT_BSTR);
  EXPECT_EQ(ViewOf(value.bstrVal), u"seven");
  ::VariantClear(&value);
  value = TextVariant(u"7");
  EXPECT_EQ(::VariantChangeTypeEx(&value, &value, kEnglish, 0, VT_I4), S_OK);
  EXPECT_EQ(value.lVal, 7);
}

TEST(VariantConversionTest, NullAndBadTypesHaveNoConversion) {
  VARIANT null;
  ::VariantInit(&null);
  null.vt = VT_NULL;
  VARIANT result;
  EXPECT_EQ(Change(null, VT_I4, &result), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(Change(null, VT_BSTR, &result), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(Change(LongVariant(1), 99, &result), DISP_E_BADVARTYPE);
  VARIANT empty;
  ::VariantInit(&empty);
  EXPECT_EQ(Change(empty, VT_I4, &result), S_OK);
  EXPECT_EQ(result.lVal, 0);
}

TEST(VariantConversionTest, ReferencesAreFollowed) {
  double number = 2.75;
  VARIANT source;
  ::VariantInit(&source);
  source.vt = VT_R8 | VT_BYREF;
  source.pdblVal = &number;
  EXPECT_EQ(ToText(source), u"2.75");
}

struct NumberTextCase {
  std::u16string_view text;
  LCID lcid;
  HRESULT hr;
  double value;
};

const NumberTextCase kNumberTexts[] = {
    {u"12", kEnglish, S_OK, 12},
    {u"  -12.5 ", kEnglish, S_OK, -12.5},
    {u"1,234.5", kEnglish, S_OK, 1234.5},
    {u"1.234,5", kGerman, S_OK, 1234.5},
    {u"$12", kEnglish, S_OK, 12},
    {u"-$12", kEnglish, S_OK, -12},
    {u"12-", kEnglish, S_OK, -12},
    {u"(12)", kEnglish, S_OK, -12},
    {u"1e3", kEnglish, S_OK, 1000},
    {u"1.5E-2", kEnglish, S_OK, 0.015},
    {u".5", kEnglish, S_OK, 0.5},
    {u"5.", kEnglish, S_OK, 5},
    {u"True", kEnglish, S_OK, -1},
    {u"#FALSE#", kEnglish, S_OK, 0},
    {u"1e999", kEnglish, DISP_E_OVERFLOW, 0},
    {u"", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u" ", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"abc", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"1.2.3", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"1e", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"--1", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"-", kEnglish, DISP_E_TYPEMISMATCH, 0},
};

TEST(VariantConversionTest, TextsBecomeNumbersByTheLocale) {
  for (const NumberTextCase& c : kNumberTexts) {
    SCOPED_TRACE(std::string(c.text.begin(), c.text.end()));
    VARIANT result;
    EXPECT_EQ(Change(TextVariant(c.text), VT_R8, &result, c.lcid), c.hr);
    if (c.hr == S_OK) {
      EXPECT_EQ(result.dblVal, c.value);
    }
  }
}

TEST(VariantConversionTest, LongIntegersInTextStayExact) {
  VARIANT result;
  EXPECT_EQ(Change(TextVariant(u"9223372036854775807"), VT_I8, &result), S_OK);
  EXPECT_EQ(result.llVal, 9223372036854775807);
  EXPECT_EQ(Change(TextVariant(u"9223372036854775808"), VT_I8, &result), DISP_E_OVERFLOW);
  EXPECT_EQ(Change(TextVariant(u"18446744073709551615"), VT_UI8, &result), S_OK);
  EXPECT_EQ(result.ullVal, 18446744073709551615u);
}

TEST(VariantConversionTest, NumbersBecomeText) {
  EXPECT_EQ(ToText(LongVariant(-42)), u"-42");
  EXPECT_EQ(ToText(RealVariant(0.1)), u"0.1");
  EXPECT_EQ(ToText(RealVariant(1.0 / 3)), u"0.333333333333333");
  EXPECT_EQ(ToText(RealVariant(-0.0)), u"0");
  EXPECT_EQ(ToText(RealVariant(1e20)), u"1E+20");
  EXPECT_EQ(ToText(RealVariant(1.5e-5)), u"1.5E-05");
  EXPECT_EQ(ToText(RealVariant(2.5), kGerman), u"2,5");
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_R4;
  value.fltVal = 0.1f;
  EXPECT_EQ(ToText(value), u"0.1");
  value.vt = VT_CY;
  value.cyVal.int64 = -125000;
  EXPECT_EQ(ToText(value), u"-12.5");
  value.vt = VT_BOOL;
  value.boolVal = VARIANT_TRUE;
  EXPECT_EQ(ToText(value), u"-1");
  EXPECT_EQ(ToText(value, kEnglish, VARIANT_ALPHABOOL), u"True");
}

TEST(VariantConversionTest, DatesBecomeTextInTheShortForms) {
  const auto dateText = [](double date, LCID lcid) {
    VARIANT value = RealVariant(date);
    value.vt = VT_DATE;
    return ToText(value, lcid);
  };
  EXPECT_EQ(dateText(45351, kEnglish), u"2/29/2024");
  EXPECT_EQ(dateText(45351.5625, kEnglish), u"2/29/2024 1:30:00 PM");
  EXPECT_EQ(dateText(45351.5625, kGerman), u"29.02.2024 13:30:00");
  EXPECT_EQ(dateText(0.25, kEnglish), u"6:00:00 AM");
  EXPECT_EQ(dateText(0, kEnglish), u"12/30/1899");
}

struct DateTextCase {
  std::u16string_view text;
  LCID lcid;
  HRESULT hr;
  double date;
};

const DateTextCase kDateTexts[] = {
    {u"2024-02-29", kEnglish, S_OK, 45351},
    {u"2024-02-29 13:30", kEnglish, S_OK, 45351.5625},
    {u"2024-02-29T13:30:00", kEnglish, S_OK, 45351.5625},
    {u"2/3/2024", kEnglish, S_OK, 45325},
    {u"2.3.2024", kGerman, S_OK, 45353},
    {u"13/2/2024", kEnglish, S_OK, 45335},
    {u"2/3/24", kEnglish, S_OK, 45325},
    {u"1/1/30", kEnglish, S_OK, 10959},
    {u"29 Feb 2024", kEnglish, S_OK, 45351},
    {u"February 29, 2024 1:30 PM", kEnglish, S_OK, 45351.5625},
    {u"6:00", kEnglish, S_OK, 0.25},
    {u"12:00 am", kEnglish, S_OK, 0},
    {u"30.2.2024", kGerman, DISP_E_TYPEMISMATCH, 0},
    {u"13:00 pm", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"24:00", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"soon", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"1/2/3/4", kEnglish, DISP_E_TYPEMISMATCH, 0},
    {u"", kEnglish, DISP_E_TYPEMISMATCH, 0},
};

TEST(VariantConversionTest, TextsBecomeDates) {
  for (const DateTextCase& c : kDateTexts) {
    SCOPED_TRACE(std::string(c.text.begin(), c.text.end()));
    VARIANT result;
    EXPECT_EQ(Change(TextVariant(c.text), VT_DATE, &result, c.lcid), c.hr);
    if (c.hr == S_OK) {
      EXPECT_DOUBLE_EQ(result.date, c.date);
    }
  }
}

TEST(SafeArrayTest, NullArgumentsAreInvalid) {
  LONG index = 0;
  void* data = nullptr;
  VARTYPE vt = 0;
  SAFEARRAY* const array = ::SafeArrayCreateVector(VT_I4, 0, 1);
  EXPECT_EQ(::SafeArrayDestroy(nullptr), S_OK);
  EXPECT_EQ(::SafeArrayLock(nullptr), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayUnlock(nullptr), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayAccessData(nullptr, &data), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayAccessData(array, nullptr), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayUnaccessData(nullptr), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayGetLBound(nullptr, 1, &index), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayGetUBound(array, 1, nullptr), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayGetVartype(nullptr, &vt), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayGetElement(array, &index, nullptr), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayPutElement(array, nullptr, &index), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayCopy(array, nullptr), E_INVALIDARG);
  EXPECT_EQ(::SafeArrayGetDim(nullptr), 0u);
  EXPECT_EQ(::SafeArrayGetElemsize(nullptr), 0u);
  EXPECT_EQ(::SafeArrayCreate(VT_I4, 1, nullptr), nullptr);
  EXPECT_EQ(::SafeArrayCreateVector(VT_NULL, 0, 1), nullptr);
  EXPECT_EQ(array->cLocks, 0u);
  EXPECT_EQ(::SafeArrayDestroy(array), S_OK);
}

TEST(SafeArrayTest, LocksAreCounted) {
  SAFEARRAY* const array = ::SafeArrayCreateVector(VT_I4, 0, 1);
  void* data = nullptr;
  EXPECT_EQ(::SafeArrayUnlock(array), E_UNEXPECTED);
  EXPECT_EQ(::SafeArrayLock(array), S_OK);
  EXPECT_EQ(::SafeArrayAccessData(array, &data), S_OK);
  EXPECT_EQ(data, array->pvData);
  EXPECT_EQ(array->cLocks, 2u);
  EXPECT_EQ(::SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(::SafeArrayUnaccessData(array), S_OK);
  EXPECT_EQ(::SafeArrayUnlock(array), S_OK);
  for (int i = 0; i < 0xFFFF; ++i) ASSERT_EQ(::SafeArrayLock(array), S_OK);
  EXPECT_EQ(::SafeArrayLock(array), E_UNEXPECTED);
  EXPECT_EQ(array->cLocks, 0xFFFFu);
  array->cLocks = 0;
  EXPECT_EQ(::SafeArrayDestroy(array), S_OK);
}

TEST(SafeArrayTest, BoundsAndIndicesRunFromTheFirstDimension) {
  SAFEARRAYBOUND bounds[2] = {{2, 10}, {3, -1}};
  SAFEARRAY* const array = ::SafeArrayCreate(VT_I4, 2, bounds);
  LONG bound = 0;
  EXPECT_EQ(::SafeArrayGetDim(array), 2u);
  EXPECT_EQ(::SafeArrayGetElemsize(array), 4u);
  EXPECT_EQ(::SafeArrayGetLBound(array, 1, &bound), S_OK);
  EXPECT_EQ(bound, 10);
  EXPECT_EQ(::SafeArrayGetUBound(array, 2, &bound), S_OK);
  EXPECT_EQ(bound, 1);
  EXPECT_EQ(::SafeArrayGetUBound(array, 0, &bound), DISP_E_BADINDEX);
  EXPECT_EQ(::SafeArrayGetUBound(array, 3, &bound), DISP_E_BADINDEX);
  LONG value = 5;
  LONG indices[2] = {11, 1};
  EXPECT_EQ(::SafeArrayPutElement(array, indices, &value), S_OK);
  // The first dimension's elements lie next to each other: 1 + 2 * 2.
  EXPECT_EQ(static_cast<LONG*>(array->pvData)[5], 5);
  LONG outside[2] = {12, 1};
  EXPECT_EQ(::SafeArrayGetElement(array, outside, &value), DISP_E_BADINDEX);
  EXPECT_EQ(array->cLocks, 0u);
  EXPECT_EQ(::SafeArrayDestroy(array), S_OK);
}

TEST(SafeArrayTest, AnEmptyVectorHasItsUpperBoundBelow) {
  SAFEARRAY* const array = ::SafeArrayCreateVector(VT_R8, 0, 0);
  LONG bound = 0;
  EXPECT_EQ(::SafeArrayGetUBound(array, 1, &bound), S_OK);
  EXPECT_EQ(bound, -1);
  EXPECT_EQ(::SafeArrayDestroy(array), S_OK);
}

TEST(SafeArrayTest, TextsAreCopiedInAndOut) {
  SAFEARRAY* const array = ::SafeArrayCreateVector(VT_BSTR, 0, 2);
  const BSTR text = ::SysAllocString(AsOle(u"text"));
  LONG index = 1;
  EXPECT_EQ(::SafeArrayPutElement(array, &index, text), S_OK);
  EXPECT_EQ(::SafeArrayPutElement(array, &index, text), S_OK);
  ::SysFreeString(text);
  SAFEARRAY* copy = nullptr;
  EXPECT_EQ(::SafeArrayCopy(array, &copy), S_OK);
  EXPECT_EQ(::SafeArrayDestroy(array), S_OK);
  BSTR found = nullptr;
  EXPECT_EQ(::SafeArrayGetElement(copy, &index, &found), S_OK);
  EXPECT_EQ(ViewOf(found), u"text");
  ::SysFreeString(found);
  VARTYPE vt = 0;
  EXPECT_EQ(::SafeArrayGetVartype(copy, &vt), S_OK);
  EXPECT_EQ(vt, VT_BSTR);
  EXPECT_EQ(::SafeArrayDestroy(copy), S_OK);
}

TEST(SafeArrayTest, VariantsAndObjectsAreReleased) {
  Counted object;
  SAFEARRAY* const objects = ::SafeArrayCreateVector(VT_UNKNOWN, 0, 1);
  LONG index = 0;
  EXPECT_EQ(::SafeArrayPutElement(objects, &index, &object), S_OK);
  EXPECT_EQ(object.references, 2u);
  EXPECT_EQ(::SafeArrayDestroy(objects), S_OK);
  EXPECT_EQ(object.references, 1u);
  SAFEARRAY* const variants = ::SafeArrayCreateVector(VT_VARIANT, 0, 1);
  VARIANT text = TextVariant(u"text");
  EXPECT_EQ(::SafeArrayPutElement(variants, &index, &text), S_OK);
  ::VariantClear(&text);
  EXPECT_EQ(::SafeArrayGetElement(variants, &index, &text), S_OK);
  EXPECT_EQ(ViewOf(text.bstrVal), u"text");
  ::VariantClear(&text);
  EXPECT_EQ(::SafeArrayDestroy(variants), S_OK);
}

struct DateCase {
  SYSTEMTIME time;
  double date;
};

// wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds
const DateCase kDates[] = {
    {{1899, 12, 6, 30, 0, 0, 0, 0}, 0},     {{1899, 12, 6, 30, 6, 0, 0, 0}, 0.25},
    {{1899, 12, 5, 29, 6, 0, 0, 0}, -1.25}, {{1899, 12, 5, 29, 0, 0, 0, 0}, -1},
    {{1900, 1, 1, 1, 0, 0, 0, 0}, 2},       {{1900, 3, 4, 1, 0, 0, 0, 0}, 61},
    {{1970, 1, 4, 1, 0, 0, 0, 0}, 25569},   {{2024, 2, 4, 29, 12, 0, 0, 0}, 45351.5},
    {{100, 1, 5, 1, 0, 0, 0, 0}, -657434},  {{9999, 12, 5, 31, 18, 0, 0, 0}, 2958465.75},
};

TEST(OleDateTest, DatesFollowTableBothWays) {
  for (const DateCase& c : kDates) {
    SCOPED_TRACE(c.date);
    SYSTEMTIME time = c.time;
    double date = 99;
    EXPECT_EQ(::SystemTimeToVariantTime(&time, &date), TRUE);
    EXPECT_EQ(date, c.date);
    SYSTEMTIME back{};
    EXPECT_EQ(::VariantTimeToSystemTime(c.date, &back), TRUE);
    EXPECT_EQ(std::memcmp(&back, &c.time, sizeof back), 0);
  }
}

TEST(OleDateTest, ImpossibleTimesAreRefused) {
  const SYSTEMTIME times[] = {
      {2024, 2, 0, 30, 0, 0, 0, 0}, {2023, 2, 0, 29, 0, 0, 0, 0}, {1900, 2, 0, 29, 0, 0, 0, 0},
      {2024, 2, 0, 31, 0, 0, 0, 0}, {2024, 0, 0, 1, 0, 0, 0, 0},  {2024, 13, 0, 1, 0, 0, 0, 0},
      {2024, 1, 0, 0, 0, 0, 0, 0},  {99, 1, 0, 1, 0, 0, 0, 0},    {10000, 1, 0, 1, 0, 0, 0, 0},
      {2024, 1, 0, 1, 24, 0, 0, 0}, {2024, 1, 0, 1, 0, 60, 0, 0}, {2024, 1, 0, 1, 0, 0, 60, 0},
  };
  for (SYSTEMTIME time : times) {
    double date = 99;
    EXPECT_EQ(::SystemTimeToVariantTime(&time, &date), FALSE);
    EXPECT_EQ(date, 99);
  }
  SYSTEMTIME time{};
  EXPECT_EQ(::VariantTimeToSystemTime(-657435, &time), FALSE);
  EXPECT_EQ(::VariantTimeToSystemTime(2958466, &time), FALSE);
  EXPECT_EQ(::SystemTimeToVariantTime(nullptr, nullptr), FALSE);
  EXPECT_EQ(::VariantTimeToSystemTime(0, nullptr), FALSE);
}

TEST(OleDateTest, EveryDayComesBack) {
  SYSTEMTIME previous{};
  ASSERT_EQ(::VariantTimeToSystemTime(-657434, &previous), TRUE);
  for (int day = -657433; day <= 2958465; ++day) {
    SYSTEMTIME time{};
    ASSERT_EQ(::VariantTimeToSystemTime(day, &time), TRUE);
    ASSERT_EQ(time.wDayOfWeek, (previous.wDayOfWeek + 1) % 7);
    double back = 0;
    ASSERT_EQ(::SystemTimeToVariantTime(&time, &back), TRUE);
    ASSERT_EQ(back, day);
    previous = time;
  }
}

TEST(OleDateTest, SecondsAreRoundedIntoTheNextDay) {
  SYSTEMTIME time{};
  EXPECT_EQ(::VariantTimeToSystemTime(1.0 + 86399.9 / 86400, &time), TRUE);
  EXPECT_EQ(time.wDay, 1);
  EXPECT_EQ(time.wMonth, 1);
  EXPECT_EQ(time.wHour, 0);
}

TEST(ErrorInfoTest, IsHandedOverOncePerThread) {
  ICreateErrorInfo* create = nullptr;
  ASSERT_EQ(::CreateErrorInfo(&create), S_OK);
  std::u16string text = u"cannot be opened";
  EXPECT_EQ(create->SetDescription(AsOle(text.data())), S_OK);
  EXPECT_EQ(create->SetGUID(IID_IUnknown), S_OK);
  EXPECT_EQ(create->SetHelpContext(7), S_OK);
  void* object = nullptr;
  ASSERT_EQ(create->QueryInterface(IID_IErrorInfo, &object), S_OK);
  auto* info = static_cast<IErrorInfo*>(object);
  EXPECT_EQ(::SetErrorInfo(0, info), S_OK);
  info->Release();
  EXPECT_EQ(create->Release(), 1u);

  std::thread([] {
    IErrorInfo* none = nullptr;
    EXPECT_EQ(::GetErrorInfo(0, &none), S_FALSE);
    EXPECT_EQ(none, nullptr);
  }).join();
  ASSERT_EQ(::GetErrorInfo(0, &info), S_OK);
  BSTR description = nullptr;
  EXPECT_EQ(info->GetDescription(&description), S_OK);
  EXPECT_EQ(ViewOf(description), u"cannot be opened");
  ::SysFreeString(description);
  BSTR source = nullptr;
  EXPECT_EQ(info->GetSource(&source), S_OK);
  EXPECT_EQ(source, nullptr);
  GUID guid{};
  EXPECT_EQ(info->GetGUID(&guid), S_OK);
  EXPECT_TRUE(guid == IID_IUnknown);
  DWORD helpContext = 0;
  EXPECT_EQ(info->GetHelpContext(&helpContext), S_OK);
  EXPECT_EQ(helpContext, 7u);
  EXPECT_EQ(info->GetDescription(nullptr), E_INVALIDARG);
  EXPECT_EQ(info->Release(), 0u);
  EXPECT_EQ(::GetErrorInfo(0, &info), S_FALSE);
}

TEST(ErrorInfoTest, BadArgumentsFailAndNullClears) {
  IErrorInfo* info = nullptr;
  EXPECT_EQ(::GetErrorInfo(0, nullptr), E_INVALIDARG);
  EXPECT_EQ(::GetErrorInfo(1, &info), E_INVALIDARG);
  EXPECT_EQ(::SetErrorInfo(1, nullptr), E_INVALIDARG);
  EXPECT_EQ(::CreateErrorInfo(nullptr), E_INVALIDARG);
  ICreateErrorInfo* create = nullptr;
  ASSERT_EQ(::CreateErrorInfo(&create), S_OK);
  void* object = nullptr;
  ASSERT_EQ(create->QueryInterface(IID_IErrorInfo, &object), S_OK);
  info = static_cast<IErrorInfo*>(object);
  ::SetErrorInfo(0, info);
  EXPECT_EQ(::SetErrorInfo(0, nullptr), S_OK);
  EXPECT_EQ(info->Release(), 1u);
  EXPECT_EQ(create->Release(), 0u);
  // A thread that ends gives its object back; a leak checker would see one that is kept.
  std::thread([] {
    ICreateErrorInfo* other = nullptr;
    ASSERT_EQ(::CreateErrorInfo(&other), S_OK);
    void* inner = nullptr;
    ASSERT_EQ(other->QueryInterface(IID_IErrorInfo, &inner), S_OK);
    ::SetErrorInfo(0, static_cast<IErrorInfo*>(inner));
    static_cast<IErrorInfo*>(inner)->Release();
    other->Release();
  }).join();
}

}  // namespace
