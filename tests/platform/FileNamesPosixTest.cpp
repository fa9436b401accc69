// File names elsewhere than on Windows, where they are any bytes.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <random>

#include "platform/FileNames.h"

namespace {

TEST(FileNamesTest, Utf8NamesAreTheTextTheySpell) {
  EXPECT_EQ(FileNameFromNative("Z\xC3\xBCrich.csv"), u"Z\u00FCrich.csv");
  EXPECT_EQ(FileNameFromNative("\xF0\x9F\x92\x80"), u"\U0001F480");
  EXPECT_EQ(NativeFromFileName(u"Z\u00FCrich.csv"), "Z\xC3\xBCrich.csv");
  EXPECT_EQ(NativeFromFileName(u"\U0001F480"), "\xF0\x9F\x92\x80");
  EXPECT_EQ(FileNameFromNative(""), u"");
}

TEST(FileNamesTest, OtherBytesBecomeLoneSurrogates) {
  const std::u16string latin1 = {u'Z', char16_t{0xDCFC}, u'.'};
  EXPECT_EQ(FileNameFromNative("Z\xFC."), latin1);
  EXPECT_EQ(NativeFromFileName(latin1), "Z\xFC.");
  // The bytes of U+DC80 itself are no UTF-8, or two names would become one text.
  const std::u16string surrogate = {char16_t{0xDCED}, char16_t{0xDCB2}, char16_t{0xDC80}};
  EXPECT_EQ(FileNameFromNative("\xED\xB2\x80"), surrogate);
}

TEST(FileNamesTest, EveryNameSurvivesTheRoundTrip) {
  std::mt19937 random(5);
  const char* const pieces[] = {
      "a",        "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x92\x80", "\xED\xA0\x80",
      "\xF0\x9F", "\xC3",     "\x80",         "\xED\xB2\x80",     "\xFF"};
  for (int round = 0; round < 20000; ++round) {
    std::string name;
    for (auto i = random() % 6; i > 0; --i) name += pieces[random() % std::size(pieces)];
    ASSERT_EQ(NativeFromFileName(FileNameFromNative(name)), name);
  }
}

}  // namespace

#endif
