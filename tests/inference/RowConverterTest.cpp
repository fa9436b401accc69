#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/CoreSupport/Variant.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "platform/OleText.h"
#include "reading/ReaderFactory.h"
#include "support/ConverterWithSlots.h"
#include "support/OpenedTable.h"
#include "support/ShowText.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

std::u16string LoadTestMessage(std::uint32_t id) {
  const std::string digits = std::to_string(id);
  return std::u16string(digits.begin(), digits.end()) + u" %1 %2 %3";
}

FieldDefinition Field(std::u16string name, FieldType type) {
  FieldDefinition field;
  field.name = std::move(name);
  field.type = type;
  field.dateFormat.type = type;
  return field;
}

FieldDefinition Virtual(std::u16string name, bool pair) {
  FieldDefinition field = Field(std::move(name), FieldType::kDouble);
  field.isCoordinate = true;
  field.isPair = pair;
  return field;
}

Record MakeRecord(std::initializer_list<std::u16string_view> texts) {
  Record record;
  for (const std::u16string_view text : texts) {
    for (const char16_t unit : text) record.Append(unit);
    record.EndField();
  }
  return record;
}

std::string ShowNumber(const char* type, double number) {
  char shown[64];
  std::snprintf(shown, sizeof(shown), "%s %.12g", type, number);
  return static_cast<const char*>(shown);
}

std::string ShowTimestamp(IUnknown* object) {
  quenra::HostTimestampOffset* timestamp = nullptr;
  const HRESULT result =
      object->QueryInterface(quenra::IID_HostTimestampOffset, reinterpret_cast<void**>(&timestamp));
  if (FAILED(result)) return "no timestamp";
  DATE date = 0;
  SHORT offset = 0;
  EXPECT_EQ(timestamp->GetDate(&date), S_OK);
  EXPECT_EQ(timestamp->GetOffsetMinutes(&offset), S_OK);
  timestamp->Release();
  return ShowNumber("OFFSET", date) + " " + std::to_string(offset);
}

std::string ShowVariant(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return "EMPTY";
    case VT_NULL:
      return "NULL";
    case VT_I2:
      return "I2 " + std::to_string(value.iVal);
    case VT_I4:
      return "I4 " + std::to_string(value.lVal);
    case VT_I8:
      return "I8 " + std::to_string(value.llVal);
    case VT_R4:
      return ShowNumber("R4", static_cast<double>(value.fltVal));
    case VT_R8:
      return ShowNumber("R8", value.dblVal);
    case VT_DATE:
      return ShowNumber("DATE", value.date);
    case VT_BSTR:
      return "BSTR " + Show(ViewOf(value.bstrVal));
    case VT_UNKNOWN:
      return ShowTimestamp(value.punkVal);
    default:
      return "another kind";
  }
}

class RowConverterTest : public ::testing::Test {
 protected:
  // What a table that has gone contradicts is written nowhere.
  RowConverterTest() { folder_.Write(u"t.csv", ""); }

  std::shared_ptr<TextDatasetDescription> Table(std::initializer_list<FieldDefinition> fields) {
    auto table = std::make_shared<TextDatasetDescription>(DescribeFile(folder_.Path(), u"t.csv"));
    table->fields = fields;
    table->options.currency.symbol = u"$";
    table->loaded = true;
    return table;
  }

  // All values of the row converted last, in one line. They are gone from the converter then.
  static std::string Values(ConverterWithSlots& converter) {
    std::string shown;
    for (std::size_t i = 0; i < converter.fieldCount(); ++i) {
      VARIANT slot;
      ::VariantInit(&slot);
      converter.MoveValue(i, slot);
      shown += (i == 0 ? "" : ", ") + ShowVariant(slot);
      ::VariantClear(&slot);
    }
    return shown;
  }

  static std::string Convert(ConverterWithSlots& converter,
                             std::initializer_list<std::u16string_view> texts) {
    converter.Convert(MakeRecord(texts));
    return Values(converter);
  }

  // One text in a table of one field; the type found behind a semicolon when it is reported.
  std::string ConvertOne(const FieldDefinition& field, std::u16string_view text) {
    const TemporaryFolder folder;
    auto table = Table({field});
    table->path = folder.Write(u"t.csv", "");
    ConverterWithSlots converter(table, &LoadTestMessage);
    converter.Convert(MakeRecord({text}));
    const bool reported = converter.MessageOf(0) != nullptr;
    std::string shown = Values(converter);
    const std::string written = folder.Read("schema.ini");
    if (reported && written == "[t.csv]\nCol1=f Double\n") return shown + "; Double";
    if (reported && written == "[t.csv]\nCol1=f Text\n") return shown + "; String";
    EXPECT_EQ(written, "");
    return reported ? shown + "; reported" : shown;
  }
  std::string ConvertOne(FieldType type, std::u16string_view text) {
    return ConvertOne(Field(u"f", type), text);
  }

  UserLocale locale_{u"en-US"};
  TemporaryFolder folder_;
};

struct ValueCase {
  FieldType type;
  std::u16string_view text;
  const char* shown;  // the value, and behind a semicolon the type found
  const char* why;
};

constexpr FieldType kSmall = FieldType::kSmallInteger;
constexpr FieldType kWhole = FieldType::kInteger;
constexpr FieldType kBig = FieldType::kBigInteger;
constexpr FieldType kSingle = FieldType::kSingle;
constexpr FieldType kDouble = FieldType::kDouble;
constexpr FieldType kText = FieldType::kString;

constexpr ValueCase kValueCases[] = {
    {kSmall, u"7", "I2 7", "fits"},
    {kSmall, u" -32768 ", "I2 -32768", "the smallest, with blanks"},
    {kSmall, u"40000", "R8 40000; Double", "too large"},
    {kSmall, u"2.5", "R8 2.5; Double", "not whole"},
    {kSmall, u"abc", "NULL; String", "no number"},
    {kWhole, u"1,234", "I4 1234", "grouped"},
    {kWhole, u"2147483648", "R8 2147483648; Double", "too large"},
    {kWhole, u"2.5", "R8 2.5; Double", "not whole"},
    {kWhole, u"inf", "R8 inf; Double", "infinity is a Double"},
    {kWhole, u"1e400", "NULL; String", "out of a Double's range too"},
    {kWhole, u"$5", "NULL; String", "amounts are read in Double columns alone"},
    {kWhole, u"abc", "NULL; String", "no number"},
    {kWhole, u"2020-01-05", "NULL; String", "a date"},
    {kBig, u"3000000000", "I8 3000000000", "fits"},
    {kBig, u"9223372036854775807", "I8 9223372036854775807", "the largest"},
    {kBig, u"9223372036854775808", "R8 9.22337203685e+18; Double", "too large"},
    {kBig, u"x", "NULL; String", "no number"},
    {kSingle, u"1.5", "R4 1.5", "fits"},
    {kSingle, u"1e39", "R8 1e+39; Double", "too large"},
    {kSingle, u"x", "NULL; String", "no number"},
    {kDouble, u"1.5", "R8 1.5", "a number"},
    {kDouble, u"$1,234.50", "R8 1234.5", "an amount"},
    {kDouble, u"(5 $)", "R8 -5", "a negative amount"},
    {kDouble, u"inf", "R8 inf", "infinity"},
    {kDouble, u"1e400", "NULL; String", "out of range"},
    {kDouble, u"5 EUR", "NULL; String", "another currency"},
    {kDouble, u"abc", "NULL; String", "no number"},
    {kText, u"abc", "BSTR \"abc\"", "as it stands"},
    {kText, u"  a b ", "BSTR \"  a b \"", "with its blanks"},
    {kText, u"42", "BSTR \"42\"", "numbers too"},
    {kText, u"\u00E9\U0001F600", "BSTR \"\\u00E9\\uD83D\\uDE00\"", "any character"},
    {FieldType::kDate, u"2020-01-05 10:30", "DATE 43835.4375", "date and time"},
    {FieldType::kDate, u"2020-01-05", "NULL; String", "the time is missing"},
    {FieldType::kDate, u"2020-02-31 10:30", "NULL; String", "no such day"},
    {FieldType::kDate, u"x", "NULL; String", "no date"},
    {FieldType::kDateOnly, u"2020-01-05", "DATE 43835", "a date"},
    {FieldType::kDateOnly, u"1899-12-30", "DATE 0", "the first day"},
    {FieldType::kDateOnly, u"2020-01-05 10:30", "NULL; String", "a time too"},
    {FieldType::kDateOnly, u"2020-02-31", "NULL; String", "no such day"},
    {FieldType::kDateOnly, u"2020-02-29", "DATE 43890", "a leap day"},
    {FieldType::kDateOnly, u"2019-02-29", "NULL; String", "no leap year"},
    {FieldType::kDateOnly, u"0099-01-05", "NULL; String", "OLE dates begin with the year 100"},
    {FieldType::kDateOnly, u"9999-12-31", "DATE 2958465", "the last day of OLE"},
    {FieldType::kDateOnly, u"10000-01-01", "NULL; String", "beyond it"},
    {FieldType::kTimeOnly, u"10:30", "DATE 0.4375", "the fraction of a day"},
    {FieldType::kTimeOnly, u"18:00:00.5", "DATE 0.750005787037", "with milliseconds"},
    {FieldType::kTimeOnly, u"24:00", "NULL; String", "no time"},
    {FieldType::kTimestampOffset, u"2020-01-05T10:30:00+02:00", "OFFSET 43835.4375 120",
     "an offset"},
    {FieldType::kTimestampOffset, u"2020-01-05T10:30:00-01:30", "OFFSET 43835.4375 -90",
     "an offset"},
    {FieldType::kTimestampOffset, u"2020-01-05T10:30", "OFFSET 43835.4375 0", "none"},
    {FieldType::kTimestampOffset, u"2020-02-31T10:30", "NULL; String", "no such day"},
    {FieldType::kTimestampOffset, u"x", "NULL; String", "no date"},
    {FieldType::kGuid, u"abc", "EMPTY", "no type of a text table"},
    {FieldType::kGlobalId, u"abc", "EMPTY", "no type of a text table"},
    {FieldType::kObjectId, u"1", "EMPTY", "no type of a text table"},
    {static_cast<FieldType>(7), u"1", "EMPTY", "no type of a text table"},
};

TEST_F(RowConverterTest, ConvertsEveryTypeAndReportsWhatDoesNotFit) {
  for (const ValueCase& c : kValueCases) {
    SCOPED_TRACE(std::to_string(static_cast<int>(c.type)) + " " + Show(c.text) + ": " + c.why);
    EXPECT_EQ(ConvertOne(c.type, c.text), c.shown);
  }
}

TEST_F(RowConverterTest, BlankTextsAreNullInEveryType) {
  for (const FieldType type :
       {kSmall, kWhole, kBig, kSingle, kDouble, kText, FieldType::kDate, FieldType::kDateOnly,
        FieldType::kTimeOnly, FieldType::kTimestampOffset}) {
    for (const std::u16string_view text : {u"", u"   ", u"\t", u"\u00A0\u3000"})
      EXPECT_EQ(ConvertOne(type, text), "NULL") << static_cast<int>(type) << Show(text);
  }
}

TEST_F(RowConverterTest, DatesAreReadInTheOrderOfTheField) {
  FieldDefinition field = Field(u"f", FieldType::kDateOnly);
  field.dateFormat.order = DateOrder::kDayMonthYear;
  EXPECT_EQ(ConvertOne(field, u"05/01/2020"), "DATE 43835");
  EXPECT_EQ(ConvertOne(field, u"01/13/2020"), "NULL; String");
  field.dateFormat.order = DateOrder::kMonthDayYear;
  EXPECT_EQ(ConvertOne(field, u"01/05/2020"), "DATE 43835");
  field.dateFormat.order = DateOrder::kAny;
  EXPECT_EQ(ConvertOne(field, u"01/05/2020"), "DATE 43835") << "the month is tried first";
  EXPECT_EQ(ConvertOne(field, u"13/01/2020"), "DATE 43843");
  EXPECT_EQ(ConvertOne(field, u"2020/01/05"), "DATE 43835");
  field = Field(u"f", FieldType::kDate);
  field.dateFormat.version = kOldFieldTypeVersion;
  EXPECT_EQ(ConvertOne(field, u"2020-01-05"), "DATE 43835") << "the field's version counts";
}

TEST_F(RowConverterTest, OnlyFieldsOfDatesAreReadAsDates) {
  for (const FieldType type : {FieldType::kSmallInteger, FieldType::kSingle}) {
    FieldDefinition field = Field(u"f", type);
    field.dateFormat.type = FieldType::kDateOnly;
    field.dateFormat.order = DateOrder::kYearMonthDay;
    EXPECT_EQ(ConvertOne(field, u"2020-01-05"), "NULL; String");
  }
}

TEST_F(RowConverterTest, NumbersFollowTheTablesDecimalSymbols) {
  auto table = Table({Field(u"f", kDouble)});
  table->options.number.decimalSymbol = u',';
  table->options.currency.decimalSymbol = u',';
  table->options.currency.thousandSymbol = u'.';
  ConverterWithSlots converter(table, &LoadTestMessage);
  EXPECT_EQ(Convert(converter, {u"1.234,5"}), "R8 1234.5");
  EXPECT_EQ(Convert(converter, {u"$ 1.234,5"}), "R8 1234.5");
  EXPECT_EQ(Convert(converter, {u"1.5"}), "NULL");
}

TEST_F(RowConverterTest, AColumnIsReportedOnceForAConverter) {
  const auto table = Table({Field(u"a", kWhole), Field(u"b", kWhole)});
  ConverterWithSlots converter(table, &LoadTestMessage);
  converter.Convert(MakeRecord({u"2.5", u"1"}));
  ASSERT_NE(converter.MessageOf(0), nullptr);
  EXPECT_EQ(*converter.MessageOf(0), u"115 t.csv 2.5 a");
  EXPECT_EQ(converter.MessageOf(1), nullptr);
  EXPECT_EQ(Values(converter), "R8 2.5, I4 1");

  converter.Convert(MakeRecord({u"3.5", u"x"}));
  EXPECT_EQ(converter.MessageOf(0), nullptr) << "silently from now on";
  ASSERT_NE(converter.MessageOf(1), nullptr) << "each column for itself";
  EXPECT_EQ(*converter.MessageOf(1), u"115 t.csv x b");
  EXPECT_EQ(Values(converter), "R8 3.5, NULL");

  converter.Convert(MakeRecord({u"abc", u"y"}));
  EXPECT_EQ(converter.MessageOf(0), nullptr) << "another type is no new report";
  EXPECT_EQ(converter.MessageOf(1), nullptr);
  EXPECT_EQ(Values(converter), "NULL, NULL");
  EXPECT_EQ(folder_.Read("schema.ini"), "[t.csv]\nCol1=a Double\nCol2=b Text\n");

  ConverterWithSlots second(table, &LoadTestMessage);
  second.Convert(MakeRecord({u"2.5", u"1"}));
  ASSERT_NE(second.MessageOf(0), nullptr) << "another cursor reports for itself";
  EXPECT_EQ(*second.MessageOf(0), u"116 t.csv 2.5 a");
}

TEST_F(RowConverterTest, ShortRecordsLeaveTheOtherFieldsEmpty) {
  ConverterWithSlots converter(
      Table({Field(u"a", kWhole), Field(u"b", kText), Field(u"c", kDouble)}), &LoadTestMessage);
  EXPECT_EQ(converter.fieldCount(), 3u);
  EXPECT_EQ(converter.Convert(MakeRecord({u"1", u"x", u"2.5"})), 3u);
  EXPECT_EQ(converter.Convert(MakeRecord({u"1"})), 1u) << "values of the row before are gone";
  EXPECT_EQ(Values(converter), "I4 1, EMPTY, EMPTY");
  EXPECT_EQ(converter.Convert(MakeRecord({})), 0u);
  EXPECT_EQ(Values(converter), "EMPTY, EMPTY, EMPTY");
}

TEST_F(RowConverterTest, ExtraTextsAreIgnored) {
  ConverterWithSlots converter(Table({Field(u"a", kWhole)}), &LoadTestMessage);
  EXPECT_EQ(converter.Convert(MakeRecord({u"1", u"x", u"y"})), 1u);
  EXPECT_EQ(Values(converter), "I4 1");
}

TEST_F(RowConverterTest, UnwantedTextsAreNotMade) {
  ConverterWithSlots converter(Table({Field(u"a", kText), Field(u"b", kText), Field(u"n", kWhole)}),
                               &LoadTestMessage);
  converter.SetWanted(0, false);
  converter.SetWanted(2, false);
  converter.Convert(MakeRecord({u"x", u"y", u"abc"}));
  EXPECT_NE(converter.MessageOf(2), nullptr) << "their values are still checked";
  VARIANT slot;
  ::VariantInit(&slot);
  converter.MoveValue(1, slot);
  EXPECT_EQ(ShowVariant(slot), "BSTR \"y\"");
  ::VariantClear(&slot);
  converter.MoveValue(0, slot);
  EXPECT_NE(slot.vt, VT_BSTR);
}

TEST_F(RowConverterTest, AMovedValueBelongsToTheSlotAlone) {
  ConverterWithSlots converter(Table({Field(u"a", FieldType::kTimestampOffset)}), &LoadTestMessage);
  converter.Convert(MakeRecord({u"2020-01-05T10:30:00+02:00"}));
  VARIANT slot;
  ::VariantInit(&slot);
  converter.MoveValue(0, slot);
  ASSERT_EQ(slot.vt, VT_UNKNOWN);
  EXPECT_EQ(slot.punkVal->AddRef(), 2u);
  EXPECT_EQ(slot.punkVal->Release(), 1u);
  converter.Convert(MakeRecord({u""}));
  EXPECT_EQ(slot.punkVal->AddRef(), 2u) << "the next row does not touch it";
  EXPECT_EQ(slot.punkVal->Release(), 1u);
  ::VariantClear(&slot);
}

// ---------------------------------------------------------------------------------------------
// Coordinates
// ---------------------------------------------------------------------------------------------

constexpr std::u16string_view kBoth = u"40\u00B0 30' 0\" N 79\u00B0 45' 0\" W";
constexpr std::u16string_view kNorth = u"40\u00B0 30' 0\" N";
constexpr std::u16string_view kWest = u"79\u00B0 45' 0\" W";

class CoordinateConversionTest : public RowConverterTest {
 protected:
  std::shared_ptr<TextDatasetDescription> OneText() {
    FieldDefinition text = Field(u"p", kText);
    EXPECT_TRUE(quenra::LatLongFormat().IsLatLong(kBoth, text.coordinateFormat));
    return Table({text, Virtual(u"p_X", false), Virtual(u"p_Y", false), Field(u"n", kWhole)});
  }
  std::shared_ptr<TextDatasetDescription> TwoTexts() {
    FieldDefinition second = Field(u"lon", kText);
    EXPECT_TRUE(quenra::LatLongFormat().IsLatLong(kNorth, kWest, second.coordinateFormat));
    return Table({Field(u"lat", kText), second, Virtual(u"lat_D", true), Virtual(u"lon_D", true),
                  Field(u"n", kWhole)});
  }
  static std::string Text(std::u16string_view text) { return "BSTR " + Show(text); }
};

TEST_F(CoordinateConversionTest, OneTextFillsTheTwoFieldsBehindIt) {
  ConverterWithSlots converter(OneText(), &LoadTestMessage);
  EXPECT_EQ(converter.Convert(MakeRecord({kBoth, u"7"})), 4u);
  EXPECT_EQ(Values(converter), Text(kBoth) + ", R8 -79.75, R8 40.5, I4 7");
  EXPECT_EQ(Convert(converter, {u"nowhere", u"7"}), "BSTR \"nowhere\", NULL, NULL, I4 7");
  EXPECT_EQ(converter.MessageOf(0), nullptr) << "that is no mismatch";
  EXPECT_EQ(Convert(converter, {u"", u"7"}), "NULL, NULL, NULL, I4 7");
  EXPECT_EQ(Convert(converter, {u"   ", u"7"}), "NULL, NULL, NULL, I4 7");
  EXPECT_EQ(Convert(converter, {kBoth}), Text(kBoth) + ", R8 -79.75, R8 40.5, EMPTY");
  EXPECT_FALSE(folder_.Exists("schema.ini"));
}

TEST_F(CoordinateConversionTest, TwoTextsFillTheTwoFieldsBehindThem) {
  ConverterWithSlots converter(TwoTexts(), &LoadTestMessage);
  EXPECT_EQ(converter.Convert(MakeRecord({kNorth, kWest, u"7"})), 5u);
  EXPECT_EQ(Values(converter), Text(kNorth) + ", " + Text(kWest) + ", R8 40.5, R8 -79.75, I4 7");
  EXPECT_EQ(Convert(converter, {u"nowhere", kWest, u"7"}),
            "BSTR \"nowhere\", " + Text(kWest) + ", NULL, NULL, I4 7");
  EXPECT_EQ(Convert(converter, {u"", kWest, u"7"}), "NULL, " + Text(kWest) + ", NULL, NULL, I4 7")
      << "the second text is delivered all the same";
  EXPECT_EQ(Convert(converter, {u"  ", u" x ", u"7"}), "NULL, BSTR \" x \", NULL, NULL, I4 7");
  EXPECT_EQ(Convert(converter, {kNorth, u"", u"7"}),
            Text(kNorth) + ", BSTR \"\", NULL, NULL, I4 7");
  EXPECT_EQ(Convert(converter, {kNorth, u"  ", u"7"}),
            Text(kNorth) + ", BSTR \"  \", NULL, NULL, I4 7");
  EXPECT_FALSE(folder_.Exists("schema.ini"));
}

TEST_F(CoordinateConversionTest, TextsAreReadInTheNotationOfTheirColumn) {
  // Whole degrees say too little alone, but are read among decimal degrees.
  FieldDefinition one = Field(u"p", kText);
  ASSERT_TRUE(quenra::LatLongFormat().IsLatLong(u"40.123N 74.123W", one.coordinateFormat));
  ConverterWithSlots single(Table({one, Virtual(u"p_X", false), Virtual(u"p_Y", false)}),
                            &LoadTestMessage);
  EXPECT_EQ(Convert(single, {u"40N 74W"}), "BSTR \"40N 74W\", R8 -74, R8 40");
  one.coordinateFormat = 0;
  ConverterWithSlots unknown(Table({one, Virtual(u"p_X", false), Virtual(u"p_Y", false)}),
                             &LoadTestMessage);
  EXPECT_EQ(Convert(unknown, {u"40N 74W"}), "BSTR \"40N 74W\", NULL, NULL");

  // Of two texts the second field carries the notation.
  FieldDefinition second = Field(u"lon", kText);
  ASSERT_TRUE(quenra::LatLongFormat().IsLatLong(u"40.123N", u"74.123W", second.coordinateFormat));
  ConverterWithSlots pair(
      Table({Field(u"lat", kText), second, Virtual(u"lat_D", true), Virtual(u"lon_D", true)}),
      &LoadTestMessage);
  EXPECT_EQ(Convert(pair, {u"40N", u"74W"}), "BSTR \"40N\", BSTR \"74W\", R8 40, R8 -74");
}

TEST_F(CoordinateConversionTest, AShortRecordHasNoCoordinatesOfTwoTexts) {
  ConverterWithSlots converter(TwoTexts(), &LoadTestMessage);
  converter.Convert(MakeRecord({kNorth}));
  EXPECT_EQ(Values(converter), Text(kNorth) + ", EMPTY, NULL, NULL, EMPTY");
}

TEST_F(CoordinateConversionTest, MismatchesBehindVirtualFieldsNameTheColumnOfTheFile) {
  folder_.Write("t.csv", "");
  ConverterWithSlots converter(OneText(), &LoadTestMessage);
  converter.Convert(MakeRecord({kBoth, u"2.5"}));
  ASSERT_NE(converter.MessageOf(3), nullptr) << "messages count fields";
  EXPECT_EQ(folder_.Read("schema.ini"), "[t.csv]\nCol2=n Double\n") << "schema.ini counts columns";
}

TEST_F(CoordinateConversionTest, VirtualFieldsAreFilledWithoutTheTextBeingWanted) {
  ConverterWithSlots converter(OneText(), &LoadTestMessage);
  converter.SetWanted(0, false);
  converter.Convert(MakeRecord({kBoth, u"7"}));
  VARIANT slot;
  ::VariantInit(&slot);
  converter.MoveValue(1, slot);
  EXPECT_EQ(ShowVariant(slot), "R8 -79.75");
  converter.MoveValue(2, slot);
  EXPECT_EQ(ShowVariant(slot), "R8 40.5");
}

// ---------------------------------------------------------------------------------------------
// From a file
// ---------------------------------------------------------------------------------------------

TEST_F(RowConverterTest, AWholeFileIsConverted) {
  folder_.Write("w.csv",
                "id,name,seen,share\n"
                "1,Ann,2020-01-05,1.5\n"
                "2,   ,2020-01-06,\n"
                "3,\"a, b\",,2\n");
  OpenedTable table(folder_, u"w.csv");
  ASSERT_EQ(table.Fields(), "id:int name:text seen:date/ymd share:double");
  const ReaderPtr reader = MakeDataReader(table.table());
  ConverterWithSlots converter(table.shared(), &LoadTestMessage);
  std::vector<std::string> rows;
  do {
    converter.Convert(reader->record());
    rows.push_back(Values(converter));
  } while (reader->ReadRecord());
  EXPECT_EQ(rows, (std::vector<std::string>{"I4 1, BSTR \"Ann\", DATE 43835, R8 1.5",
                                            "I4 2, NULL, DATE 43836, NULL",
                                            "I4 3, BSTR \"a, b\", NULL, R8 2"}));
}

// What values look like in files, for every type.
std::string RandomValue(std::mt19937& random) {
  constexpr const char* kValues[] = {"",
                                     " ",
                                     "1",
                                     "-17",
                                     "40000",
                                     "3000000000",
                                     "1234567890123456789",
                                     "12.5",
                                     "-.5",
                                     "1e3",
                                     "0.04250929956315441",
                                     "$1,250.50",
                                     "\"7\"",
                                     "\"\"",
                                     "\"1,5\"",
                                     "2024-02-29",
                                     "2023-02-29",
                                     "2024-02-29 10:30:00",
                                     "2024-02-29T23:59",
                                     "29.02.2024",
                                     "10:30",
                                     "2024-02-29 10:30 +0100",
                                     "text",
                                     "  text in blanks ",
                                     "a text that is longer than most of the texts in a table are",
                                     "Z\xC3\xBCrich",
                                     "\xE2\x82\xAC 5",
                                     "\"quoted, with \"\"quotes\"\"\"",
                                     "\xC2\xA0",
                                     "40.5N 79.75W",
                                     "5\" pipe"};
  return kValues[random() % std::size(kValues)];
}

// A slot of the host as text.
std::string TakeShown(ConverterWithSlots& converter, std::size_t field) {
  VARIANT slot;
  ::VariantInit(&slot);
  converter.MoveValue(field, slot);
  std::string shown = ShowVariant(slot);
  ::VariantClear(&slot);
  return shown;
}

TEST_F(RowConverterTest, PlainRowsConvertAsTheirRecordsDo) {
  constexpr FieldType kTypes[] = {
      FieldType::kString,     FieldType::kSmallInteger,   FieldType::kInteger,
      FieldType::kBigInteger, FieldType::kSingle,         FieldType::kDouble,
      FieldType::kDate,       FieldType::kDateOnly,       FieldType::kTimeOnly,
      FieldType::kString,     FieldType::kTimestampOffset};
  std::mt19937 random(47);
  for (int round = 0; round < 60; ++round) {
    std::string bytes;
    for (int row = 0; row < 20; ++row) {
      for (std::size_t columns = random() % 14; columns > 0; --columns)
        bytes += RandomValue(random) + ",";
      bytes += "x\n";
    }
    folder_.Write("p.csv", bytes);
    auto table = std::make_shared<TextDatasetDescription>();
    table->name = u"p.csv";
    table->path = folder_.Path(u"p.csv");
    for (std::size_t i = 0; i < std::size(kTypes); ++i) {
      table->fields.push_back(Field(u"f" + std::u16string(1, static_cast<char16_t>(u'a' + i)),
                                    kTypes[random() % std::size(kTypes)]));
      table->fields.back().dateFormat.order = DateOrder::kYearMonthDay;
    }
    if (round % 3 == 0) {
      table->fields[0] = Field(u"c", FieldType::kString);
      table->fields[1] = Virtual(u"c_X", false);
      table->fields[2] = Virtual(u"c_Y", false);
    }
    const char16_t decimalSymbols[] = {u'.', u',', u';'};
    table->options.number.decimalSymbol = decimalSymbols[round % 7 % 3];
    ConverterWithSlots ofRows(table, &LoadTestMessage,
                              round % 2 == 0 ? QuickestPlainCells() : CommonPlainCells());
    ConverterWithSlots ofRecords(table, &LoadTestMessage);
    const std::size_t unwanted = random() % table->fields.size();
    ofRows.SetWanted(unwanted, false);
    ofRecords.SetWanted(unwanted, false);
    const ReaderPtr rows = MakeReader(*table);
    const ReaderPtr records = MakeReader(*table);
    PlainRow row;
    while (records->ReadRecord()) {
      const bool plain = rows->ReadPlainRow(row);
      if (!plain) {
        ASSERT_TRUE(rows->ReadRecord());
      }
      const std::size_t count = plain ? ofRows.Convert(row) : ofRows.Convert(rows->record());
      ASSERT_EQ(ofRecords.Convert(records->record()), count);
      for (std::size_t i = 0; i < table->fields.size(); ++i) {
        EXPECT_EQ(TakeShown(ofRows, i), TakeShown(ofRecords, i)) << bytes;
        EXPECT_EQ(ofRows.MessageOf(i) != nullptr, ofRecords.MessageOf(i) != nullptr);
      }
    }
  }
}

TEST_F(RowConverterTest, MinusZeroKeepsItsSignOnEveryRoad) {
  // Short and long ones, up to 16 characters and beyond, with exponents, blanks and groups; some in
  // quotes, which a plain row has too. By turns in a record and in a plain row.
  const char* const zeros[] = {"-0",
                               "-0.0",
                               "-.0",
                               "-0.",
                               "-0.00000",
                               "-00000000.0000000",
                               "-0e0",
                               "-0E-30",
                               "-000000",
                               " -0 ",
                               "-0.00000000000000000000000",
                               "\"-0\"",
                               "\"-0,000.0\"",
                               "\" -0\""};
  std::string bytes;
  for (const char* zero : zeros) bytes += std::string(zero) + "," + zero + "\n";
  folder_.Write("p.csv", bytes);
  auto table = std::make_shared<TextDatasetDescription>();
  table->name = u"p.csv";
  table->path = folder_.Path(u"p.csv");
  table->fields = {Field(u"a", kSingle), Field(u"b", kDouble)};

  std::vector<const PlainCells*> codes = {&CommonPlainCells()};
  if (VectorPlainCells() != nullptr) codes.push_back(VectorPlainCells());
  for (const PlainCells* code : codes) {
    for (const bool plain : {true, false}) {
      ConverterWithSlots converter(table, &LoadTestMessage, *code);
      const ReaderPtr reader = MakeReader(*table);
      for (const char* zero : zeros) {
        PlainRow row;
        if (plain && reader->ReadPlainRow(row)) {
          converter.Convert(row);
        } else {
          ASSERT_TRUE(reader->ReadRecord());
          converter.Convert(reader->record());
        }
        EXPECT_EQ(Values(converter), "R4 -0, R8 -0") << zero;
      }
    }
  }
}

TEST_F(RowConverterTest, ColumnsFarBehindTheScannedOnesAreConverted) {
  // The rows that are scanned have two columns, a later one 5,000.
  std::string bytes;
  for (int i = 0; i < 120; ++i) bytes += "1,x\n";
  bytes += "1,x" + std::string(4997, ',') + "y,05.01.2020\n";
  folder_.Write("p.csv", bytes);
  folder_.Write("schema.ini",
                "[p.csv]\nFormat=CSVDelimited\nColNameHeader=False\nCol5000=z Date dd.MM.yyyy\n");
  const OpenedTable opened(folder_, u"p.csv");
  ASSERT_TRUE(opened.opened());
  for (const bool plain : {true, false}) {
    ConverterWithSlots converter(opened.shared(), &LoadTestMessage);
    ASSERT_EQ(converter.fieldCount(), 5000u);
    const ReaderPtr reader = MakeReader(*opened.shared());
    PlainRow row;
    std::size_t fields = 0;
    for (int i = 0; i < 121; ++i) {
      if (plain) {
        ASSERT_TRUE(reader->ReadPlainRow(row));
        fields = converter.Convert(row);
      } else {
        ASSERT_TRUE(reader->ReadRecord());
        fields = converter.Convert(reader->record());
      }
    }
    EXPECT_EQ(fields, 5000u);
    EXPECT_EQ(TakeShown(converter, 1), "BSTR \"x\"");
    EXPECT_EQ(TakeShown(converter, 2), "NULL");
    EXPECT_EQ(TakeShown(converter, 4998), "BSTR \"y\"");
    EXPECT_EQ(TakeShown(converter, 4999), "DATE 43835");
  }
}

TEST_F(RowConverterTest, WhatSlotsHoldIsReplaced) {
  folder_.Write("p.csv", "x,1,2024-02-29\n,,\n  , ,x\n");
  auto table = std::make_shared<TextDatasetDescription>();
  table->name = u"p.csv";
  table->path = folder_.Path(u"p.csv");
  table->fields = {Field(u"a", FieldType::kString), Field(u"b", FieldType::kDouble),
                   Field(u"c", FieldType::kDateOnly)};
  table->fields[2].dateFormat.order = DateOrder::kYearMonthDay;
  for (int held = 0; held < 3; ++held) {
    for (const bool plain : {false, true}) {
      RowConverter converter(table, &LoadTestMessage);
      quenra::Variant slots[3];
      for (std::size_t i = 0; i < 3; ++i) converter.SetSlot(i, slots[i].Receive());
      const ReaderPtr reader = MakeReader(*table);
      PlainRow row;
      std::vector<std::string> rows;
      while (plain ? reader->ReadPlainRow(row) : reader->ReadRecord()) {
        for (quenra::Variant& slot : slots)
          slot = held == 0   ? quenra::Variant()
                 : held == 1 ? quenra::Variant(2.5)
                             : quenra::Variant(u"held");
        if (plain)
          converter.Convert(row);
        else
          converter.Convert(reader->record());
        rows.emplace_back();
        for (const quenra::Variant& slot : slots) rows.back() += ShowVariant(slot.Get()) + ";";
      }
      EXPECT_EQ(rows, (std::vector<std::string>{"BSTR \"x\";R8 1;DATE 45351;", "NULL;NULL;NULL;",
                                                "NULL;NULL;NULL;"}))
          << "slots held " << held;
    }
  }
}

}  // namespace
}  // namespace TextFile
