#include <cstdlib>

#include "host/DataCore/DataCoreUtil.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

using DataCoreUtilTest = HostTest;

TEST_F(DataCoreUtilTest, OptionsAreSetAndTakenAway) {
  Variant value;
  EXPECT_FALSE(DataCoreUtil::QueryOptionRegistry(u"SampleOption", *value.Receive()));
  EXPECT_EQ(value.Type(), VT_EMPTY);
  DataCoreUtil::SetOption(u"SampleOption", Variant(LONG{1}).Address());
  EXPECT_TRUE(DataCoreUtil::QueryOptionRegistry(u"SAMPLEoption", *value.Receive()));
  EXPECT_EQ(value.Type(), VT_I4);
  EXPECT_EQ(value.Get().lVal, 1);
  DataCoreUtil::SetOption(u"sampleOPTION", Variant(u"2").Address());
  EXPECT_TRUE(DataCoreUtil::QueryOptionRegistry(u"SampleOption", *value.Receive()));
  EXPECT_EQ(value.Text(), u"2") << "the later value";
  DataCoreUtil::SetOption(u"SampleOption", nullptr);
  EXPECT_FALSE(DataCoreUtil::QueryOptionRegistry(u"SampleOption", *value.Receive()));
  EXPECT_EQ(value.Type(), VT_EMPTY);
}

TEST_F(DataCoreUtilTest, ValueThatCannotBeCopiedTakesTheOptionAway) {
  DataCoreUtil::SetOption(u"SampleOption", Variant(LONG{1}).Address());
  VARIANT bad;
  ::VariantInit(&bad);
  bad.vt = 0x0FFE;  // no such type
  DataCoreUtil::SetOption(u"SampleOption", &bad);
  Variant value;
  EXPECT_FALSE(DataCoreUtil::QueryOptionRegistry(u"SampleOption", *value.Receive()));
}

#ifndef _WIN32

TEST_F(DataCoreUtilTest, EnvironmentStandsInForTheApplication) {
  ::setenv("QUENRA_OPTION_SampleOption", "1 \xC3\xA9", 1);
  Variant value;
  EXPECT_TRUE(DataCoreUtil::QueryOptionRegistry(u"SampleOption", *value.Receive()));
  EXPECT_EQ(value.Text(), u"1 \u00E9");
  DataCoreUtil::SetOption(u"SampleOption", Variant(LONG{0}).Address());
  EXPECT_TRUE(DataCoreUtil::QueryOptionRegistry(u"SampleOption", *value.Receive()));
  EXPECT_EQ(value.Type(), VT_I4) << "what the application set comes first";
  DataCoreUtil::SetOption(u"SampleOption", nullptr);
  ::unsetenv("QUENRA_OPTION_SampleOption");
  EXPECT_FALSE(DataCoreUtil::QueryOptionRegistry(u"SampleOption", *value.Receive()));
}

#endif

struct NamePair {
  std::u16string_view left;
  std::u16string_view right;
  bool equal;
  const char* why;
};

constexpr NamePair kNamePairs[] = {
    {u"", u"", true, "both empty"},
    {u"Id", u"iD", true, "ASCII"},
    {u"Id", u"Idx", false, "a prefix"},
    {u"\u00C9t\u00E9", u"\u00E9T\u00C9", true, "accents"},
    {u"stra\u00DFe", u"STRASSE", false, "lengths differ"},
    {u"stra\u00DFe", u"STRA\u00DFE", true, "sharp s equals itself"},
    {u"\u0131d", u"ID", true, "dotless i folds to I"},
    {u"\u017Fum", u"SUM", true, "long s folds to S"},
    {u"\U00010428", u"\U00010400", false, "surrogates are not folded"},
    {u"a_", u"a?", false, "other signs"},
};

TEST_F(DataCoreUtilTest, NamesAreComparedUnitByUnit) {
  for (const NamePair& pair : kNamePairs) {
    SCOPED_TRACE(pair.why);
    EXPECT_EQ(DataCoreUtil::CompareFoldCase(pair.left, pair.right), pair.equal);
    EXPECT_EQ(DataCoreUtil::CompareFoldCase(pair.right, pair.left), pair.equal);
  }
}

}  // namespace
}  // namespace quenra
