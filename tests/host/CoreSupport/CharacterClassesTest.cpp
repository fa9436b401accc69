#include <gtest/gtest.h>

#include <set>

#include "host/CoreSupport/CharacterClasses.h"

namespace quenra {
namespace {

struct CaseRow {
  char16_t unit;
  char16_t upper;
  const char* why;
};

constexpr CaseRow kCaseRows[] = {
    {u'a', u'A', "first ASCII letter"},
    {u'z', u'Z', "last ASCII letter"},
    {u'`', u'`', "before the letters"},
    {u'{', u'{', "behind the letters"},
    {u'A', u'A', "upper case already"},
    {u'7', u'7', "no letter"},
    {u'\0', u'\0', "zero"},
    {0x00B5, 0x039C, "micro sign is Greek mu"},
    {0x00DF, 0x00DF, "sharp s has two letters in upper case"},
    {0x00E9, 0x00C9, "e acute"},
    {0x00F7, 0x00F7, "division sign between the letters"},
    {0x00FF, 0x0178, "y diaeresis leaves Latin-1"},
    {0x0131, u'I', "dotless i leaves no trace"},
    {0x0149, 0x0149, "two units in upper case"},
    {0x017F, u'S', "long s"},
    {0x01C5, 0x01C4, "title case has an upper case"},
    {0x01C6, 0x01C4, "dz with caron"},
    {0x03C2, 0x03A3, "final sigma"},
    {0x0390, 0x0390, "three units in upper case"},
    {0x0450, 0x0400, "Cyrillic"},
    {0x0587, 0x0587, "Armenian ligature: two units"},
    {0x10D0, 0x1C90, "Georgian"},
    {0x1E9E, 0x1E9E, "capital sharp s"},
    {0x1F80, 0x1F88, "the simple mapping where the full one has two units"},
    {0x24D0, 0x24B6, "circled letter"},
    {0xFB00, 0xFB00, "ligature ff"},
    {0xFF41, 0xFF21, "full width"},
    {0xD801, 0xD801, "high surrogate"},
    {0xDC28, 0xDC28, "low surrogate of a small Deseret letter"},
    {0xFFFF, 0xFFFF, "last unit"},
};

TEST(CharacterClassesTest, UpperCaseFollowsTable) {
  for (const CaseRow& row : kCaseRows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(ToUpper(row.unit), row.upper);
  }
}

TEST(CharacterClassesTest, UpperCaseIsReachedInOneStep) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const char16_t upper = ToUpper(static_cast<char16_t>(unit));
    EXPECT_EQ(ToUpper(upper), upper) << unit;
    EXPECT_EQ(upper >= 0xD800 && upper <= 0xDFFF, unit >= 0xD800 && unit <= 0xDFFF) << unit;
  }
}

TEST(CharacterClassesTest, WhiteSpaceIsUnicodes) {
  std::set<unsigned> expected = {0x20, 0x85, 0xA0, 0x1680, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
  for (unsigned unit = 0x09; unit <= 0x0D; ++unit) expected.insert(unit);
  for (unsigned unit = 0x2000; unit <= 0x200A; ++unit) expected.insert(unit);
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit)
    EXPECT_EQ(IsWhiteSpace(static_cast<char16_t>(unit)), expected.count(unit) == 1) << unit;
}

TEST(CharacterClassesTest, TrimsBothEnds) {
  EXPECT_EQ(TrimWhiteSpace(u"\t a b \u00A0"), u"a b");
  EXPECT_EQ(TrimWhiteSpace(u" \u2003 "), u"");
  EXPECT_EQ(TrimBlanks(u"  \ta \u00A0 "), u"\ta \u00A0");
  EXPECT_TRUE(IsBlank(u""));
  EXPECT_TRUE(IsBlank(u" \u3000\n"));
  EXPECT_FALSE(IsBlank(u" \u200B ")) << "the zero-width space is no white space";
}

}  // namespace
}  // namespace quenra
