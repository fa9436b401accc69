// Values that go straight into the buffer look like those that go the general way, for every value
// and every table. A value handed over by reference to a variant takes the general way.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/CoreSupport/Variant.h"
#include "schema/QuotedText.h"
#include "schema/RowWriter.h"
#include "support/TemporaryFolder.h"

namespace TextFile {
namespace {

using quenra::QUENRALocale;
using quenra::Variant;

constexpr FieldType kTypes[] = {
    FieldType::kSmallInteger, FieldType::kInteger,  FieldType::kSingle,
    FieldType::kDouble,       FieldType::kString,   FieldType::kDate,
    FieldType::kObjectId,     FieldType::kGuid,     FieldType::kBigInteger,
    FieldType::kDateOnly,     FieldType::kTimeOnly, FieldType::kTimestampOffset};

class StraightWritingTest : public testing::Test {
 protected:
  void SetUp() override {
    QUENRALocale::SetLocale(u"en-US");
    quenra::EventLog::SetSink([](const quenra::EventLogRecord&) {});
  }
  void TearDown() override {
    quenra::EventLog::SetSink({});
    QUENRALocale::ResetLocale();
  }

  template <class Choices>
  auto OneOf(const Choices& choices) {
    return choices[random_() % std::size(choices)];
  }
  bool Sometimes(unsigned outOf) { return random_() % outOf == 0; }

  std::u16string RandomText() {
    static constexpr std::u16string_view kAlphabets[] = {
        u"abcdefghijklmnopqrstuvwxyz ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789",
        u"abcdefghijklmnopqrstuvwxyz,\"",
        u"ab\",;|\t\r\n '",
        u"z\u007F\u0080\u00E9\u07FF\u0800\u6708\uFFFD\uFFFF",
        u" \t\"\u00A0\u2003'",
    };
    const std::u16string_view alphabet = OneOf(kAlphabets);
    std::u16string text(random_() % (Sometimes(4) ? 80 : 20), u'\0');
    for (char16_t& unit : text) unit = OneOf(alphabet);
    // Something else in it: what is dropped, halves of pairs, any unit.
    for (std::size_t i = random_() % 8 < 3 ? random_() % 4 : 0; i > 0 && !text.empty(); --i) {
      static constexpr char16_t kOthers[] = {0, 0x1A, 0xD83D, 0xDE00, u'\n', u'"', 1, 0x2022};
      text[random_() % text.size()] =
          Sometimes(3) ? static_cast<char16_t>(random_()) : OneOf(kOthers);
    }
    return text;
  }

  double RandomReal() {
    switch (random_() % 4) {
      case 0:
        return std::bit_cast<double>(random_());
      case 1:
        return static_cast<double>(static_cast<std::int64_t>(random_() >> random_() % 64)) /
               std::pow(10.0, static_cast<double>(random_() % 12));
      case 2:
        return -static_cast<double>(random_() % 1000) / 8;
      default:
        return static_cast<double>(random_() % 3) - 1;
    }
  }

  double RandomDate() {
    const double day = static_cast<double>(random_() % 3'700'000) - 690'000;
    switch (random_() % 4) {
      case 0:
        return day;
      case 1:
        return day + static_cast<double>(random_() % 86'400) / 86'400;
      case 2:
        return day - static_cast<double>(random_() % 86'400'000) / 86'400'000;
      default:
        return RandomReal();
    }
  }

  Variant RandomValue(FieldType type) {
    if (Sometimes(12)) return {};
    if (Sometimes(12)) type = OneOf(kTypes);
    Variant value;
    VARIANT* const raw = value.Receive();
    switch (type) {
      case FieldType::kSmallInteger:
        raw->iVal = static_cast<SHORT>(random_() >> random_() % 64);
        raw->vt = VT_I2;
        return value;
      case FieldType::kInteger:
      case FieldType::kObjectId:
        raw->lVal = static_cast<LONG>(random_() >> random_() % 64);
        raw->vt = VT_I4;
        return value;
      case FieldType::kBigInteger:
        raw->llVal = static_cast<LONGLONG>(random_() >> random_() % 64);
        raw->vt = VT_I8;
        return value;
      case FieldType::kSingle:
        raw->fltVal = static_cast<float>(RandomReal());
        raw->vt = VT_R4;
        return value;
      case FieldType::kDouble:
        raw->dblVal = RandomReal();
        raw->vt = VT_R8;
        return value;
      case FieldType::kString:
      case FieldType::kGuid:
        return Sometimes(20) ? Variant(std::u16string_view()) : Variant(RandomText());
      default:
        raw->date = RandomDate();
        raw->vt = VT_DATE;
        return value;
    }
  }

  TextDatasetDescription RandomTable() {
    static constexpr char16_t kDelimiters[] = {u',', u',', u',', u';', u'\t', u' ', u'.',      u'/',
                                               u':', u'-', u'1', u'|', 0x7F,  1,    u'\u6708', 0};
    static constexpr char16_t kQuotes[] = {u'"', u'"', u'"', u'"', u'\'', u'5', u' ', u'\u00AB', 0};
    static constexpr char16_t kSymbols[] = {u'.', u'.', u',', u' ', u'\u066B'};
    static constexpr std::u16string_view kPatterns[] = {u"",
                                                        u"yyyy-MM-ddTHH:mm:ss",
                                                        u"M/d/yyyy h:mm:ss tt",
                                                        u"dd.MM.yy",
                                                        u"'a very long text, so' y",
                                                        u"d'\n'M",
                                                        u"yyyy\u5E74M\u6708",
                                                        u"H:m",
                                                        u"hh'1'mm"};
    TextDatasetDescription table;
    table.name = u"t.csv";
    table.path = folder_.Path() + u"/t.csv";
    table.options.specified = SchemaOptions::kColNameHeader;
    table.options.fixedLength = Sometimes(10);
    table.options.delimiter = OneOf(kDelimiters);
    table.options.textDelimiter = OneOf(kQuotes);
    table.options.number.decimalSymbol = OneOf(kSymbols);
    table.options.number.digits = static_cast<std::uint32_t>(random_() % 24);
    table.options.number.specified = Sometimes(2) ? NumberFormat::Settings::kNumberDigits : 0;
    table.options.dateTimeFormat = OneOf(kPatterns);
    const std::size_t columns = Sometimes(4) ? 1 : 1 + random_() % 12;
    for (std::size_t i = 0; i < columns; ++i) {
      FieldDefinition field;
      field.name = u"F";
      field.type = OneOf(kTypes);
      field.width = static_cast<std::int32_t>(Sometimes(2) ? 0 : random_() % 60);
      field.isCoordinate = Sometimes(12);
      field.dateFormat.type = field.type;
      field.dateFormat.pattern = OneOf(kPatterns);
      table.fields.push_back(std::move(field));
    }
    return table;
  }

  std::string Written(const TextDatasetDescription& table,
                      const std::vector<std::vector<VARIANT>>& rows) {
    folder_.Write(u"t.csv", "\xEF\xBB\xBF");
    RowWriter writer(table);
    EXPECT_TRUE(writer.Open());
    for (const std::vector<VARIANT>& row : rows) EXPECT_TRUE(writer.Write(row));
    EXPECT_TRUE(writer.Close());
    return folder_.Read(u"t.csv");
  }

  std::mt19937_64 random_{7};
  quenra::test::TemporaryFolder folder_;
};

VARIANT ReferenceTo(VARIANT& value) {
  VARIANT reference{};
  reference.vt = VT_VARIANT | VT_BYREF;
  reference.pvarVal = &value;
  return reference;
}

// A text that stays the host's; any other value as it is.
VARIANT Lent(VARIANT& value) {
  if (value.vt != VT_BSTR) return value;
  VARIANT lent{};
  lent.vt = VT_BSTR | VT_BYREF;
  lent.pbstrVal = &value.bstrVal;
  return lent;
}

TEST_F(StraightWritingTest, RandomRowsOfRandomTablesLookTheSameBothWays) {
  constexpr int kTables = 600;
  constexpr std::size_t kRows = 25;
  for (int i = 0; i < kTables; ++i) {
    const TextDatasetDescription table = RandomTable();
    std::vector<std::vector<Variant>> kept(kRows);
    std::vector<std::vector<VARIANT>> values(kRows);
    std::vector<std::vector<VARIANT>> references(kRows);
    std::vector<std::vector<VARIANT>> lent(kRows);
    for (std::size_t row = 0; row < kRows; ++row) {
      for (const FieldDefinition& field : table.fields)
        kept[row].push_back(RandomValue(field.type));
      for (const Variant& value : kept[row]) values[row].push_back(value.Get());
      for (VARIANT& value : values[row]) references[row].push_back(ReferenceTo(value));
      for (VARIANT& value : values[row]) lent[row].push_back(Lent(value));
    }
    const std::string expected = Written(table, references);
    ASSERT_EQ(Written(table, values), expected) << i;
    ASSERT_EQ(Written(table, lent), expected) << i;
  }
}

// Each text alone is wider than what is usually kept for rows.
TEST_F(StraightWritingTest, TextsOfAnySizeLookTheSameBothWays) {
  TextDatasetDescription table;
  table.name = u"t.csv";
  table.path = folder_.Path() + u"/t.csv";
  table.options.specified = SchemaOptions::kColNameHeader;
  for (int i = 0; i < 4; ++i) {
    FieldDefinition field;
    field.name = u"F";
    field.type = i == 2 ? FieldType::kInteger : FieldType::kString;
    field.width = 1'000'000;
    table.fields.push_back(std::move(field));
  }
  std::vector<std::vector<Variant>> kept(12);
  std::vector<std::vector<VARIANT>> values(kept.size());
  std::vector<std::vector<VARIANT>> references(kept.size());
  for (std::size_t row = 0; row < kept.size(); ++row) {
    for (const FieldDefinition& field : table.fields) {
      std::u16string text(random_() % (Sometimes(3) ? 400'000 : 30), u'x');
      if (Sometimes(2)) text += RandomText();
      kept[row].push_back(field.type == FieldType::kString ? Variant(text) : Variant(LONG{-12}));
    }
    for (const Variant& value : kept[row]) values[row].push_back(value.Get());
    for (VARIANT& value : values[row]) references[row].push_back(ReferenceTo(value));
  }
  EXPECT_EQ(Written(table, values), Written(table, references));
  // Values that are missing are null, also where the row is handed over without them.
  for (std::vector<VARIANT>& row : values) row.resize(random_() % 4);
  for (std::vector<VARIANT>& row : references) row.resize(4);
  for (std::size_t row = 0; row < kept.size(); ++row)
    for (std::size_t i = values[row].size(); i < 4; ++i) references[row][i] = VARIANT{};
  EXPECT_EQ(Written(table, values), Written(table, references));
}

// What is written of a text, or "-" when it is left to the general way.
std::string Quoted(std::u16string_view text) {
  std::string bytes(QuotedText::Room(text.size()), '?');
  const char* const end = QuotedText(',', '"').Write(text, bytes.data());
  return end == nullptr ? "-" : bytes.substr(0, static_cast<std::size_t>(end - bytes.data()));
}

TEST(QuotedTextTest, ASpecialCharacterIsFoundWhereverItStands) {
  for (std::size_t size = 1; size < 50; ++size)
    for (std::size_t at = 0; at < size; ++at) {
      const std::string before(at, 'a');
      const std::string behind(size - at - 1, 'b');
      const auto with = [&](char16_t unit) {
        std::u16string text(before.begin(), before.end());
        text += unit;
        text.append(behind.begin(), behind.end());
        return Quoted(text);
      };
      ASSERT_EQ(with(u'x'), before + "x" + behind);
      ASSERT_EQ(with(u'\t'), before + "\t" + behind);
      ASSERT_EQ(with(u','), "\"" + before + "," + behind + "\"");
      ASSERT_EQ(with(u'\r'), "\"" + before + "\r" + behind + "\"");
      ASSERT_EQ(with(u'\n'), "\"" + before + "\n" + behind + "\"");
      ASSERT_EQ(with(u'"'), at == 0 ? "\"\"\"" + behind + "\"" : before + "\"\"" + behind);
      ASSERT_EQ(with(u'\u00E9'), before + "\xC3\xA9" + behind);
      ASSERT_EQ(with(u'\u012C'), before + "\xC4\xAC" + behind);  // a comma's byte in a unit
      ASSERT_EQ(with(u'\u6708'), before + "\xE6\x9C\x88" + behind);
      ASSERT_EQ(with(u'\uFF2C'), before + "\xEF\xBC\xAC" + behind);
      ASSERT_EQ(with(char16_t{0xD800}), before + "\xEF\xBF\xBD" + behind);
      ASSERT_EQ(with(u'\0'), "-");
      ASSERT_EQ(with(char16_t{0x1A}), "-");
    }
}

TEST(QuotedTextTest, MarksThatMeanSomethingElseAreNotTaken) {
  EXPECT_TRUE(QuotedText::Takes(u',', u'"'));
  EXPECT_TRUE(QuotedText::Takes(u'\t', u'\''));
  EXPECT_FALSE(QuotedText::Takes(u'"', u'"'));
  for (const char16_t mark : u"\n\r\x1A\u0080\u6708") {  // and the zero that ends it
    EXPECT_FALSE(QuotedText::Takes(mark, u'"'));
    EXPECT_FALSE(QuotedText::Takes(u',', mark));
  }
  EXPECT_FALSE(QuotedText::Takes(u',', u' '));
}

}  // namespace
}  // namespace TextFile
