// The values that the host receives, type by type, and what the user's locale does to them.
#include "host/CoreSupport/QUENRALocale.h"
#include "module/ModuleTest.h"

namespace quenra::test {
namespace {

using ::testing::ElementsAre;

class ValuesTest : public ModuleTest {
 protected:
  void TearDown() override {
    QUENRALocale::SetAnsiCodePage(0);
    ModuleTest::TearDown();
  }
};

TEST_F(ValuesTest, DeclaredTypes) {
  folder_.Write(u"schema.ini",
                "[a.csv]\nColNameHeader=True\nCol1=S Short\nCol2=L Long\nCol3=F Single\n"
                "Col4=D Double\nCol5=T Text\nCol6=B LongLong\n");
  EXPECT_THAT(Rows(Table(u"a.csv",
                         "S,L,F,D,T,B\n"
                         "-32768,2147483647,1.5,2.25, x ,-9223372036854775808\n"
                         ",  ,,,,\n")),
              ElementsAre("I2:-32768|I4:2147483647|R4:1.5|R8:2.25|BSTR: x |"
                          "I8:-9223372036854775808",
                          "NULL|NULL|NULL|NULL|NULL|NULL"));
}

TEST_F(ValuesTest, InferredDates) {
  const auto table = Table(u"a.csv",
                           "At,Day,Stamp\n"
                           "2020-01-05T10:30:00,2020-01-05,2020-01-05T10:30:00+02:00\n"
                           ",,\n");
  EXPECT_EQ(Fields(table).at(0).type, 5);
  EXPECT_EQ(Fields(table).at(1).type, 14);
  EXPECT_EQ(Fields(table).at(2).type, 16);
  EXPECT_THAT(Rows(table),
              ElementsAre("DATE:43835.4375|DATE:43835|TZ:43835.4375/120", "NULL|NULL|NULL"));
}

TEST_F(ValuesTest, OffsetFieldsHaveLengthTen) {
  const auto table = Table(u"a.csv", "Stamp\n2020-01-05T10:30:00-05:30\n");
  EXPECT_THAT(Fields(table), ElementsAre(FieldSeen{"Stamp", 16, 10, 0, ""}));
  EXPECT_THAT(Rows(table), ElementsAre("TZ:43835.4375/-330"));
}

TEST_F(ValuesTest, TimesAreFractionsOfADay) {
  SetOption(u"InferTimeOnlyFields");
  const auto table = Table(u"a.csv", "At\n12:00\n18:00\n");
  EXPECT_EQ(Fields(table).at(0).type, 15);
  EXPECT_THAT(Rows(table), ElementsAre("DATE:0.5", "DATE:0.75"));
}

TEST_F(ValuesTest, ObjectsOutliveTheirCursor) {
  const auto table = Table(u"a.csv", "Stamp\n2020-01-05T10:30:00+02:00\n");
  Slots slots(1);
  {
    const FieldMapArray map({0});
    ComPtr<IPlugInCursorHelper> cursor;
    ASSERT_EQ(table->FetchAllRows(0, nullptr, map.AsVariant(), cursor.Receive()), S_OK);
    EXPECT_EQ(cursor.As<IPlugInFastQueryValues>()->ReadRecordValuesFast(slots.Data()), S_OK);
  }
  EXPECT_THAT(slots.Dump(), ElementsAre("TZ:43835.4375/120"));
}

TEST_F(ValuesTest, AmountsOfMoneyAreDoubles) {
  const auto table = Table(u"a.csv", "Price\n\"$1,234.50\"\n$2\n");
  EXPECT_EQ(Fields(table).at(0).type, 3);
  EXPECT_THAT(Rows(table), ElementsAre("R8:1234.5", "R8:2"));
}

TEST_F(ValuesTest, CoordinatesFillTheVirtualFields) {
  EXPECT_THAT(Rows(Table(u"a.csv", "Id,Place\n1,40.5N 74.25W\n2,\n3,41.5N 75.25W\n")),
              ElementsAre("I4:1|BSTR:40.5N 74.25W|R8:-74.25|R8:40.5", "I4:2|NULL|NULL|NULL",
                          "I4:3|BSTR:41.5N 75.25W|R8:-75.25|R8:41.5"));
}

TEST_F(ValuesTest, CoordinatePairsFillTheVirtualFields) {
  EXPECT_THAT(Rows(Table(u"a.csv", "N,E\n40.5N,74.25W\n41.5N,75.25W\n")),
              ElementsAre("BSTR:40.5N|BSTR:74.25W|R8:40.5|R8:-74.25",
                          "BSTR:41.5N|BSTR:75.25W|R8:41.5|R8:-75.25"));
}

TEST_F(ValuesTest, NamesAreMadeForColumnsWithoutOne) {
  const auto fields = Fields(Table(u"a.csv", "1,40.5N 74.25W,3\n"));
  std::vector<std::string> names;
  for (const FieldSeen& field : fields) names.push_back(field.name);
  EXPECT_THAT(names, ElementsAre("Field1", "Field2", "Field2_X", "Field2_Y", "Field3"));
}

TEST_F(ValuesTest, DecimalSymbolOfTheFileIsFound) {
  EXPECT_THAT(Rows(Table(u"a.csv", "Id;Area\n1;1,5\n2;2,25\n")),
              ElementsAre("I4:1|R8:1.5", "I4:2|R8:2.25"));
}

TEST_F(ValuesTest, AmbiguousDatesFollowTheLocale) {
  folder_.Write(u"a.csv", "Day\n01/02/2020\n");
  EXPECT_THAT(Rows(OpenTable(u"a.csv")), ElementsAre("DATE:43832")) << "2 January";
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-DE"));
  EXPECT_THAT(Rows(OpenTable(u"a.csv")), ElementsAre("DATE:43862")) << "1 February";
}

TEST_F(ValuesTest, GermanNumbersInAGermanLocale) {
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-DE"));
  const auto table = Table(u"a.csv", "Id;Wert\n1;1234,5\n2;7,25\n");
  EXPECT_EQ(Fields(table).at(1).type, 3);
  EXPECT_THAT(Rows(table), ElementsAre("I4:1|R8:1234.5", "I4:2|R8:7.25"));
}

TEST_F(ValuesTest, DeclaredDecimalSymbolWinsOverTheLocale) {
  ASSERT_TRUE(QUENRALocale::SetLocale(u"de-DE"));
  folder_.Write(u"schema.ini", "[a.csv]\nFormat=CSVDelimited\nDecimalSymbol=.\n");
  EXPECT_THAT(Rows(Table(u"a.csv", "Id,Area\n1,2.5\n")), ElementsAre("I4:1|R8:2.5"));
}

TEST_F(ValuesTest, AnsiTextFollowsTheCodePage) {
  folder_.Write(u"a.csv", "Name\n\xE9\n");
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(1252));
  EXPECT_THAT(Rows(OpenTable(u"a.csv")), ElementsAre("BSTR:\u00E9"));
  ASSERT_TRUE(QUENRALocale::SetAnsiCodePage(1251));
  EXPECT_THAT(Rows(OpenTable(u"a.csv")), ElementsAre("BSTR:\u0439"));
}

TEST_F(ValuesTest, Utf8AndUtf16TextArrivesAlike) {
  EXPECT_THAT(Rows(Table(u"a.csv", "\xEF\xBB\xBFName\nZ\xC3\xBCrich\n")),
              ElementsAre("BSTR:Z\u00FCrich"));
  EXPECT_THAT(Rows(Table(u"b.csv", "Name\nZ\xC3\xBCrich\n")), ElementsAre("BSTR:Z\u00FCrich"));
  using namespace std::string_view_literals;
  EXPECT_THAT(Rows(Table(u"c.csv", "\xFF\xFEN\0\n\0Z\0\xFC\0\n\0"sv)), ElementsAre("BSTR:Z\u00FC"));
}

}  // namespace
}  // namespace quenra::test
