#include <gtest/gtest.h>

#include "host/CoreSupport/CharacterWidth.h"

namespace quenra {
namespace {

struct WidthRow {
  char32_t character;
  int columns;
  const char* why;
};

constexpr WidthRow kWidthRows[] = {
    {U'a', 1, "ASCII"},
    {0x00AD, 1, "soft hyphen: terminals show it"},
    {0x00E9, 1, "e acute"},
    {0x0301, 0, "combining acute"},
    {0x0605, 1, "Arabic number mark, which encloses digits"},
    {0x093F, 1, "Devanagari vowel sign i, which takes room"},
    {0x0941, 0, "Devanagari vowel sign u"},
    {0x094D, 0, "Devanagari virama"},
    {0x0E34, 0, "Thai sara i"},
    {0x1100, 2, "Hangul leading consonant"},
    {0x115F, 2, "the last of them"},
    {0x1160, 0, "Hangul vowel"},
    {0x11FF, 0, "Hangul trailing consonant"},
    {0xD7B0, 0, "Hangul vowel, extended"},
    {0x200B, 0, "zero width space"},
    {0x200D, 0, "zero width joiner"},
    {0x231A, 2, "watch, an emoji of the first plane"},
    {0x2013, 1, "en dash"},
    {0x302A, 0, "a mark that is wide as well"},
    {0x303F, 1, "half fill space among wide ones"},
    {0x3042, 2, "Hiragana"},
    {0xAC00, 2, "Hangul syllable"},
    {0xFE0F, 0, "variation selector"},
    {0xFF21, 2, "fullwidth A"},
    {0xFF71, 1, "halfwidth Katakana"},
    {0xFFFD, 1, "replacement character"},
    {0x1F1E9, 1, "half of a flag"},
    {0x1F600, 2, "emoji"},
    {0x1FAE0, 2, "emoji of Unicode 14"},
    {0x20000, 2, "ideograph of the second plane"},
    {0x3FFFD, 2, "the last that is kept for ideographs"},
    {0xE0001, 0, "tag"},
    {0xE0100, 0, "variation selector of plane 14"},
    {0x10FFFF, 1, "the last code point"},
};

TEST(CharacterWidthTest, FollowsTable) {
  for (const WidthRow& row : kWidthRows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(ColumnsOf(row.character), row.columns);
  }
}

}  // namespace
}  // namespace quenra
