#ifndef _WIN32

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include "host/CoreSupport/CharacterWidth.h"

namespace quenra {
namespace {

// Written here once more, and asked of the library itself.
int ColumnsByProperties(UChar32 character) {
  const std::uint32_t kind = U_GET_GC_MASK(character);
  if ((kind & (U_GC_MN_MASK | U_GC_ME_MASK)) != 0) return 0;
  const bool isVisibleFormat =
      character == 0x00AD ||
      u_hasBinaryProperty(character, UCHAR_PREPENDED_CONCATENATION_MARK) != 0;
  if ((kind & U_GC_CF_MASK) != 0 && !isVisibleFormat) return 0;
  const int hangul = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
  if (hangul == U_HST_VOWEL_JAMO || hangul == U_HST_TRAILING_JAMO) return 0;
  const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_FULLWIDTH || width == U_EA_WIDE ? 2 : 1;
}

// The table was made with one version of Unicode. Later ones add characters, and have changed the
// width of some; scripts/generate-width-table makes the table anew.
TEST(CharacterWidthPosixTest, TableAgreesWithTheProperties) {
  constexpr int kChangesOfAVersion = 200;
  UVersionInfo version;
  u_getUnicodeVersion(version);
  const bool isTablesVersion = version[0] == 15 && version[1] == 0;
  int differences = 0;
  for (UChar32 character = 0; character <= 0x10FFFF; ++character) {
    UVersionInfo age;
    u_charAge(character, age);
    if (!isTablesVersion && (age[0] == 0 || age[0] > 15)) continue;
    if (ColumnsOf(static_cast<char32_t>(character)) == ColumnsByProperties(character)) continue;
    ++differences;
    if (isTablesVersion) {
      ADD_FAILURE() << "U+" << std::hex << character;
    }
  }
  EXPECT_LE(differences, isTablesVersion ? 0 : kChangesOfAVersion);
}

}  // namespace
}  // namespace quenra

#endif
