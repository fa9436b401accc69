#include <gtest/gtest.h>

#include <string>

#include "platform/ComTypes.h"
#include "platform/LastError.h"
#include "platform/OleText.h"

namespace {

constexpr GUID kSample = {
    0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
constexpr char16_t kSampleText[] = u"{1CF2B120-547D-101B-8E65-08002B2BD119}";

TEST(ComTypesTest, GuidsAreWrittenAndRead) {
  char16_t text[39];
  EXPECT_EQ(::StringFromGUID2(kSample, AsOle(text), 39), 39);
  EXPECT_EQ(std::u16string(text), kSampleText);
  EXPECT_EQ(::StringFromGUID2(kSample, AsOle(text), 38), 0);
  GUID guid{};
  EXPECT_EQ(::CLSIDFromString(AsOle(u"{1cf2b120-547d-101b-8e65-08002b2bd119}"), &guid), S_OK);
  EXPECT_TRUE(guid == kSample);
  EXPECT_TRUE(guid == IID_IErrorInfo);
}

TEST(ComTypesTest, OtherTextIsNoGuid) {
  for (const char16_t* text :
       {u"", u"{", u"1CF2B120-547D-101B-8E65-08002B2BD119",
        u"{1CF2B120-547D-101B-8E65-08002B2BD119", u"{1CF2B120-547D-101B-8E65-08002B2BD119} ",
        u"{1CF2B120-547D-101B-8E65-08002B2BD11G}"}) {
    GUID guid = kSample;
    EXPECT_EQ(::CLSIDFromString(AsOle(text), &guid), CO_E_CLASSSTRING);
    EXPECT_TRUE(guid == GUID_NULL);
  }
  EXPECT_EQ(::CLSIDFromString(AsOle(kSampleText), nullptr), E_INVALIDARG);
}

TEST(ComTypesTest, ResultCodesHaveTheirPublishedValues) {
  EXPECT_EQ(static_cast<DWORD>(E_FAIL), 0x80004005u);
  EXPECT_EQ(static_cast<DWORD>(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED)), 0x80070005u);
  EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_SUCCESS), S_OK);
  EXPECT_EQ(HRESULT_FROM_WIN32(0x80070005u), E_ACCESSDENIED);
  EXPECT_TRUE(SUCCEEDED(S_FALSE));
  EXPECT_TRUE(FAILED(E_NOTIMPL));
}

}  // namespace
