#include <gtest/gtest.h>

#include "schema/TableNames.h"
#include "support/TestText.h"

namespace TextFile {
namespace {

using quenra::test::ToUtf8;

TEST(TableNamesTest, OrdinaryNamesAreTaken) {
  for (const std::u16string_view name :
       {u"a.csv", u"a", u"no extension", u"caf\u00E9 \U0001F600.txt", u".hidden.csv", u"a..b.tab",
        u"~a.csv", u"console.csv", u"com10.txt", u"com.txt", u"lpt0.csv", u"schema.ini.csv"})
    EXPECT_EQ(ToUtf8(WhyNotATableName(name)), "") << ToUtf8(name);
}

struct RefusedName {
  std::u16string_view name;
  std::u16string_view reason;
};

constexpr RefusedName kRefusedNames[] = {
    {u"", u"the name is empty"},
    {u"../a.csv", u"the name holds a path separator"},
    {u"..\\a.csv", u"the name holds a path separator"},
    {u"/a.csv", u"the name holds a path separator"},
    {u".", u"the name means a folder"},
    {u"..", u"the name means a folder"},
    {u"Schema.INI", u"the name is reserved"},
    {u"~scheam.ini", u"the name is reserved"},
    {u"~a.csv.tmp", u"the name is reserved"},
    {u"~A.CSV.Old", u"the name is reserved"},
    {u"nul", u"the name is reserved"},
    {u"Con.csv", u"the name is reserved"},
    {u"aux .csv", u"the name is reserved"},
    {u"com1.tar.csv", u"the name is reserved"},
    {u"LPT9", u"the name is reserved"},
    {u"a:b.csv", u"the name holds a character that file names cannot have everywhere"},
    {u"a*.csv", u"the name holds a character that file names cannot have everywhere"},
    {u"a\n.csv", u"the name holds a character that file names cannot have everywhere"},
    {u"a.csv ", u"the name ends in a dot or a blank"},
    {u"a.", u"the name ends in a dot or a blank"},
};

TEST(TableNamesTest, RefusedNamesHaveAReason) {
  for (const RefusedName& c : kRefusedNames)
    EXPECT_EQ(ToUtf8(WhyNotATableName(c.name)), ToUtf8(c.reason)) << ToUtf8(c.name);
  EXPECT_NE(WhyNotATableName(std::u16string_view(u"a\0b.csv", 7)), u"");
}

TEST(TableNamesTest, TemporaryNamesAreNoTablesAndFitAFileSystem) {
  EXPECT_EQ(ToUtf8(TemporaryNameOf(u"a.csv", u".tmp")), "~a.csv.tmp");
  const std::u16string longName = std::u16string(200, u'\u6708') + u".csv";
  const std::u16string temporary = TemporaryNameOf(longName, u".tmp");
  EXPECT_LE(ToUtf8(temporary).size(), 255u);
  EXPECT_TRUE(temporary.ends_with(u".tmp"));
  EXPECT_EQ(temporary, TemporaryNameOf(longName, u".tmp"));
  EXPECT_NE(temporary, TemporaryNameOf(u"\u6708" + longName, u".tmp"));
}

}  // namespace
}  // namespace TextFile
