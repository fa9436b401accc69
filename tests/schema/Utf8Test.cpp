#include <gtest/gtest.h>

#include "schema/Utf8.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

std::string Encoded(std::u16string_view text) {
  std::string bytes = "|";
  AppendUtf8(text, bytes);
  return bytes;
}

TEST(Utf8Test, EveryLengthOfCodePointIsAppended) {
  EXPECT_EQ(Encoded(u"a\u007F"), "|a\x7F");
  EXPECT_EQ(Encoded(u"\u0080\u07FF"), "|\xC2\x80\xDF\xBF");
  EXPECT_EQ(Encoded(u"\u0800\uFFFF"), "|\xE0\xA0\x80\xEF\xBF\xBF");
  EXPECT_EQ(Encoded(u"\U00010000\U0010FFFF"), "|\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(Utf8Test, ALoneSurrogateBecomesTheReplacementCharacter) {
  const char16_t high[] = {u'a', 0xD83D, u'b'};
  const char16_t low[] = {0xDE00, 0xD83D};
  EXPECT_EQ(Encoded({high, 3}),
            "|a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(Encoded({low, 2}), "|\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_FALSE(IsWellFormedText({high, 3}));
  EXPECT_FALSE(IsWellFormedText({low, 2}));
  EXPECT_TRUE(IsWellFormedText(u"a\U0001F600"));
  EXPECT_TRUE(IsWellFormedText(u""));
}

TEST(Utf8Test, EveryCodePointIsReadBack) {
  for (char32_t point = 1; point < 0x110000; ++point) {
    if (point >= 0xD800 && point < 0xE000) continue;
    std::u16string text;
    if (point < 0x10000) {
      text = static_cast<char16_t>(point);
    } else {
      text += static_cast<char16_t>(0xD7C0 + (point >> 10));
      text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
    }
    std::string bytes;
    AppendUtf8(text, bytes);
    ASSERT_EQ(quenra::test::ToUtf16(bytes), text) << std::hex << static_cast<unsigned>(point);
  }
}

TEST(Utf8Test, ACutNeverHalvesAPair) {
  const std::u16string_view text = u"a\U0001F600b";
  EXPECT_EQ(CutText(text, 0), u"");
  EXPECT_EQ(CutText(text, 1), u"a");
  EXPECT_EQ(CutText(text, 2), u"a");
  EXPECT_EQ(CutText(text, 3), u"a\U0001F600");
  EXPECT_EQ(CutText(text, 4), text);
  EXPECT_EQ(CutText(text, 8000), text);
}

}  // namespace
}  // namespace TextFile
