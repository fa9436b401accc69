#include <gtest/gtest.h>

#include "host/CoreSupport/String.h"

namespace quenra {
namespace {

TEST(StringTest, FillsPlaceHolders) {
  EXPECT_EQ(String::FormatMessageW(u"In file %1, \"%2\"", {u"a.csv", u"x"}),
            u"In file a.csv, \"x\"");
  EXPECT_EQ(String::FormatMessageW(u"%2%1%2", {u"a", u"b"}), u"bab");
  EXPECT_EQ(String::FormatMessageW(u"%9", {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9"}),
            u"9");
  EXPECT_EQ(String::FormatMessageW(u"%12", {u"a"}), u"a2") << "one digit";
  EXPECT_EQ(String::FormatMessageW(u"[%1]", {u""}), u"[]");
}

TEST(StringTest, KeepsWhatIsNoPlaceHolder) {
  EXPECT_EQ(String::FormatMessageW(u"100%% of %1", {u"it"}), u"100% of it");
  EXPECT_EQ(String::FormatMessageW(u"%%1", {u"it"}), u"%1");
  EXPECT_EQ(String::FormatMessageW(u"%1 %2", {u"one"}), u"one %2");
  EXPECT_EQ(String::FormatMessageW(u"%0 %a %", {u"one"}), u"%0 %a %");
  EXPECT_EQ(String::FormatMessageW(u"", {u"one"}), u"");
}

TEST(StringTest, ArgumentsAreNotExpanded) {
  EXPECT_EQ(String::FormatMessageW(u"%1, %2", {u"%2", u"%%"}), u"%2, %%");
}

}  // namespace
}  // namespace quenra
