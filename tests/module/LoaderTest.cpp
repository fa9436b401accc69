#include <algorithm>
#include <charconv>
#include <random>

#include "host/CoreSupport/DatetimeHelper.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "host/com/Implements.h"
#include "module/ModuleTest.h"
#include "support/HostTables.h"

namespace quenra::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr DATE kNoonOf5January2020 = 43835.5;

// A row buffer of a host that hands out copies, and fails where it is told to.
class CopyingRow final : public Implements<HostRowBuffer> {
 public:
  CopyingRow(ComPtr<HostRowBuffer> row, LONG failing) : row_(std::move(row)), failing_(failing) {}

  std::u16string_view ClassName() const noexcept override { return u"CopyingRow"; }
  HRESULT STDMETHODCALLTYPE GetFields(HostFieldCollection** fields) override {
    return row_->GetFields(fields);
  }
  HRESULT STDMETHODCALLTYPE GetValue(LONG index, VARIANT* value) override {
    return index == failing_ ? E_ACCESSDENIED : row_->GetValue(index, value);
  }
  HRESULT STDMETHODCALLTYPE SetValue(LONG index, const VARIANT* value) override {
    return row_->SetValue(index, value);
  }

 private:
  const ComPtr<HostRowBuffer> row_;
  const LONG failing_;
};

// One that lends what it is told to.
class LendingRow final : public Implements<HostRowBuffer, HostRowBufferLending> {
 public:
  LendingRow(const VARIANT* values, LONG count) : values_(values), count_(count) {}

  std::u16string_view ClassName() const noexcept override { return u"LendingRow"; }
  HRESULT STDMETHODCALLTYPE GetFields(HostFieldCollection**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetValue(LONG, VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetValue(LONG, const VARIANT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE LendValues(const VARIANT** values, LONG* count) override {
    *values = values_;
    *count = count_;
    return S_OK;
  }

 private:
  const VARIANT* const values_;
  const LONG count_;
};

class LoaderTest : public ModuleTest {
 protected:
  ComPtr<IPlugInDatasetHelper> Create(std::u16string_view name,
                                      const ComPtr<HostFieldCollection>& fields) const {
    ComPtr<IPlugInDatasetHelper> table;
    EXPECT_EQ(OpenWorkspace().As<IPlugInCreateDataset>()->CreateTable(
                  BString(name).Get(), fields.Get(), table.Receive()),
              S_OK);
    return table;
  }

  static ComPtr<IPlugInDatasetLoader> Loader(const ComPtr<IPlugInDatasetHelper>& table) {
    ComPtr<IPlugInDatasetLoader> loader;
    EXPECT_EQ(table.As<IPlugInDatasetLoad>()->CreateLoader(nullptr, loader.Receive()), S_OK);
    return loader;
  }

  static ComPtr<HostFieldCollection> FieldsOf(const ComPtr<IPlugInDatasetHelper>& table) {
    ComPtr<HostFieldCollection> fields;
    EXPECT_EQ(table->DescribeFields(0, fields.Receive()), S_OK);
    return fields;
  }

  template <class... Values>
  static HRESULT Load(const ComPtr<IPlugInDatasetHelper>& table, Values... values) {
    std::vector<Variant> row;
    (row.push_back(std::move(values)), ...);
    return Loader(table)->LoadRow(MakeRow(FieldsOf(table), row).Get());
  }

  // One text, created, loaded and read back in a table with another column.
  std::string TextBack(std::u16string_view text, LONG length = 0) const {
    folder_.Remove(u"schema.ini");
    const auto table = Create(u"t.csv", MakeFields({{u"A", 4, length}, {u"B", 1}}));
    EXPECT_EQ(Load(table, Variant(text), Variant(LONG{1})), S_OK);
    const auto rows = Rows(OpenTable(u"t.csv"));
    return rows.size() == 1 ? rows.front() : std::to_string(rows.size()) + " rows";
  }
};

TEST_F(LoaderTest, RowsAreInTheFileWhenTheLoaderGoes) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Name", 4}}));
  auto loader = Loader(table);
  const auto fields = FieldsOf(table);
  for (LONG id : {1, 2, 3}) {
    std::vector<Variant> row;
    row.emplace_back(id);
    row.emplace_back(u"x");
    EXPECT_EQ(loader->LoadRow(MakeRow(fields, row).Get()), S_OK);
  }
  loader.Reset();
  EXPECT_THAT(Rows(table), ElementsAre("I4:1|BSTR:x", "I4:2|BSTR:x", "I4:3|BSTR:x"));
  LONG count = 0;
  EXPECT_EQ(table.As<IPlugInRowCount>()->CountRows(0, &count), S_OK);
  EXPECT_EQ(count, 3);
}

TEST_F(LoaderTest, TwoLoadersKeepTheirRows) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Name", 4}}));
  const auto fields = FieldsOf(table);
  auto first = Loader(table);
  auto second = Loader(table);
  const auto row = [&](LONG id) {
    std::vector<Variant> values;
    values.emplace_back(id);
    values.emplace_back(u"x");
    return MakeRow(fields, values);
  };
  EXPECT_EQ(first->LoadRow(row(1).Get()), S_OK);
  EXPECT_EQ(second->LoadRow(row(2).Get()), S_OK);
  second.Reset();
  first.Reset();
  EXPECT_THAT(Rows(table), ElementsAre("I4:2|BSTR:x", "I4:1|BSTR:x"));
}

TEST_F(LoaderTest, ARowOfNoFieldsIsARowOfNulls) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Name", 4}}));
  EXPECT_EQ(Loader(table)->LoadRow(MakeRow(MakeFields({}), {}).Get()), S_OK);
  EXPECT_THAT(Rows(table), ElementsAre("NULL|NULL"));
}

TEST_F(LoaderTest, LentValuesStayTheBuffers) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Name", 4}}));
  const auto fields = FieldsOf(table);
  std::vector<Variant> values;
  values.emplace_back(LONG{1});
  values.emplace_back(u"a, \"b\" and c\u00E9");
  const auto row = MakeRow(fields, values);
  auto loader = Loader(table);
  EXPECT_EQ(loader->LoadRow(row.Get()), S_OK);
  EXPECT_EQ(loader->LoadRow(row.Get()), S_OK);
  EXPECT_EQ(row->SetValue(1, Variant(u"another").Address()), S_OK);
  EXPECT_EQ(loader->LoadRow(row.Get()), S_OK);
  loader.Reset();
  EXPECT_THAT(Rows(table), ElementsAre("I4:1|BSTR:a, \"b\" and c\xC3\xA9",
                                       "I4:1|BSTR:a, \"b\" and c\xC3\xA9", "I4:1|BSTR:another"));
}

TEST_F(LoaderTest, RowsThatLendNothingAreCopied) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Name", 4}}));
  std::vector<Variant> values;
  values.emplace_back(LONG{1});
  values.emplace_back(u"text");
  const auto row = MakeRow(FieldsOf(table), values);
  EXPECT_EQ(Loader(table)->LoadRow(MakeObject<CopyingRow>(row, -1).Get()), S_OK);
  EXPECT_EQ(Loader(table)->LoadRow(MakeObject<CopyingRow>(row, 1).Get()), E_ACCESSDENIED);
  EXPECT_THAT(Rows(table), ElementsAre("I4:1|BSTR:text"));
}

TEST_F(LoaderTest, FieldsAddedBehindTheValuesAreRefused) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}}));
  const auto fields = MakeFields({{u"Id", 1}});
  std::vector<Variant> values;
  values.emplace_back(LONG{1});
  const auto row = MakeRow(fields, values);
  ComPtr<HostField> added;
  ASSERT_EQ(MakeFields({{u"More", 1}})->GetField(0, added.Receive()), S_OK);
  ASSERT_EQ(fields.As<HostFieldCollectionEdit>()->AddField(added.Get()), S_OK);
  EXPECT_EQ(Loader(table)->LoadRow(row.Get()), E_INVALIDARG);
  EXPECT_THAT(Rows(table), IsEmpty());
}

TEST_F(LoaderTest, NumbersOfLentValuesThatCannotBeAreRefused) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}}));
  const Variant value(LONG{7});
  auto loader = Loader(table);
  EXPECT_EQ(loader->LoadRow(MakeObject<LendingRow>(value.Address(), -1).Get()), E_INVALIDARG);
  EXPECT_EQ(loader->LoadRow(MakeObject<LendingRow>(nullptr, 1).Get()), E_INVALIDARG);
  EXPECT_EQ(loader->LoadRow(MakeObject<LendingRow>(value.Address(), 1).Get()), S_OK);
  loader.Reset();
  EXPECT_THAT(Rows(table), ElementsAre("I4:7"));
}

TEST_F(LoaderTest, BadArgumentsAreRefused) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}}));
  EXPECT_EQ(table.As<IPlugInDatasetLoad>()->CreateLoader(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(Loader(table)->LoadRow(nullptr), E_INVALIDARG);
  EXPECT_THAT(Rows(table), IsEmpty());
}

TEST_F(LoaderTest, ReferencesAreGivenBack) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Stamp", 16}}));
  const auto fields = MakeFields({{u"Id", 1}, {u"Stamp", 16}});
  std::vector<Variant> values;
  values.emplace_back(LONG{1});
  values.push_back(StampValue(kNoonOf5January2020, 60));
  IUnknown* const stamp = values.back().Get().punkVal;
  const auto row = MakeRow(fields, values);
  const auto references = [](IUnknown* object) {
    object->AddRef();
    return object->Release();
  };
  const ULONG ofRow = references(row.Get());
  const ULONG ofFields = references(fields.Get());
  const ULONG ofStamp = references(stamp);
  EXPECT_EQ(Loader(table)->LoadRow(row.Get()), S_OK);
  EXPECT_EQ(references(row.Get()), ofRow);
  EXPECT_EQ(references(fields.Get()), ofFields);
  EXPECT_EQ(references(stamp), ofStamp);
}

TEST_F(LoaderTest, AValueThatDoesNotFitIsLeftBlankAndLogged) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}, {u"Name", 4}}));
  EXPECT_EQ(Load(table, Variant(u"abc"), Variant(u"x")), S_OK);
  EXPECT_THAT(Rows(table), ElementsAre("NULL|BSTR:x"));
  EXPECT_THAT(Messages(), ElementsAre("In file t.csv, a value of field Id cannot be written as "
                                      "the field's type. It is left blank."));
}

TEST_F(LoaderTest, ATableThatIsGoneIsAnErrorThatNamesIt) {
  const auto table = Create(u"t.csv", MakeFields({{u"Id", 1}}));
  folder_.Remove(u"t.csv");
  ComPtr<IPlugInDatasetLoader> loader;
  EXPECT_EQ(table.As<IPlugInDatasetLoad>()->CreateLoader(nullptr, loader.Receive()), E_FAIL);
  EXPECT_FALSE(loader);
  const auto errors = TakeErrors();
  ASSERT_FALSE(errors.empty());
  EXPECT_TRUE(errors.front().text.starts_with(ToUtf8(folder_.Path(u"t.csv")) +
                                              ": the file cannot be read ("))
      << errors.front().text;
  EXPECT_FALSE(folder_.Exists(u"t.csv"));
}

// ---------------------------------------------------------------------------------------------
// The limits of the format. Each stands in docs/writing.md.
// ---------------------------------------------------------------------------------------------

TEST_F(LoaderTest, EmptyAndBlankTextsReadAsNull) {
  EXPECT_EQ(TextBack(u""), "NULL|I4:1");
  EXPECT_EQ(TextBack(u"   "), "NULL|I4:1");
  EXPECT_EQ(TextBack(u"\u3000\t"), "NULL|I4:1");
}

TEST_F(LoaderTest, TextsWithQuotesDelimitersAndLineEndsComeBack) {
  for (const std::u16string_view text :
       {u"\"quoted\"", u"  \"after blanks\"", u"a \"b\" c", u"\"", u"\"\"", u",", u"a,b;c\td|e",
        u"first\nsecond", u"first\rsecond", u"a\n\n\nb", u" both sides ", u"\U0001F600"})
    EXPECT_EQ(TextBack(text), "BSTR:" + ToUtf8(text) + "|I4:1");
}

TEST_F(LoaderTest, CarriageReturnAndLineFeedReadAsOneLineFeed) {
  EXPECT_EQ(TextBack(u"first\r\nsecond"), "BSTR:first\nsecond|I4:1");
}

TEST_F(LoaderTest, ZerosAndTextEndsAreDropped) {
  EXPECT_EQ(TextBack(std::u16string_view(u"a\0b\x1A"
                                         u"c",
                                         5)),
            "BSTR:abc|I4:1");
}

TEST_F(LoaderTest, TextsAreCutToTheirWidthBetweenCharacters) {
  EXPECT_EQ(TextBack(u"abcdef", 4), "BSTR:abcd|I4:1");
  EXPECT_EQ(TextBack(u"abc\U0001F600", 4), "BSTR:abc|I4:1");
  EXPECT_EQ(TextBack(u"ab\U0001F600x", 4), "BSTR:ab\xF0\x9F\x98\x80|I4:1");
}

TEST_F(LoaderTest, LoneSurrogatesBecomeReplacementCharacters) {
  const char16_t text[] = {u'a', 0xD83D, u'b'};
  EXPECT_EQ(TextBack({text, 3}),
            "BSTR:a\xEF\xBF\xBD"
            "b|I4:1");
}

TEST_F(LoaderTest, FloatingPointNumbersKeep7And15DigitsBehindTheSymbol) {
  const auto table = Create(u"t.csv", MakeFields({{u"F", 2}, {u"D", 3}}));
  EXPECT_EQ(Load(table, SingleValue(0.00000004F), Variant(1e-16)), S_OK);
  EXPECT_EQ(Load(table, SingleValue(0.125F), Variant(0.1)), S_OK);
  EXPECT_EQ(Load(table, SingleValue(16777216.0F), Variant(1e22)), S_OK);
  EXPECT_THAT(Rows(OpenTable(u"t.csv")),
              ElementsAre("R4:0|R8:0", "R4:0.125|R8:0.1", "R4:16777216|R8:1e+22"));
}

TEST_F(LoaderTest, NumberDigitsCutMore) {
  folder_.Write(u"schema.ini", "[t.csv]\nNumberDigits=2\n");
  const auto table = Create(u"t.csv", MakeFields({{u"F", 2}, {u"D", 3}}));
  EXPECT_EQ(Load(table, SingleValue(0.125F), Variant(1.239)), S_OK);
  EXPECT_THAT(Rows(OpenTable(u"t.csv")), ElementsAre("R4:0.12|R8:1.24"));
}

TEST_F(LoaderTest, MillisecondsAreAFractionWhenTheyAreNotZero) {
  const auto table = Create(u"t.csv", MakeFields({{u"T", 5}, {u"Id", 1}}));
  EXPECT_EQ(Load(table, DateValue(43835 + 0.25 + 0.007 / 86400), Variant(LONG{1})), S_OK);
  EXPECT_EQ(Load(table, DateValue(43835.25), Variant(LONG{2})), S_OK);
  const std::string bytes = folder_.Read(u"t.csv");
  EXPECT_NE(bytes.find("1/5/2020 6:00:00.007,1"), std::string::npos) << bytes;
  EXPECT_NE(bytes.find("1/5/2020 6:00:00,2"), std::string::npos) << bytes;
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(LoaderTest, YearsOfTwoDigitsAreOfTheYears1951To2050) {
  folder_.Write(u"schema.ini", "[t.csv]\nCol1=D Date dd.MM.yy\n");
  const auto table = Create(u"t.csv", MakeFields({{u"D", 14}, {u"Id", 1}}));
  EXPECT_EQ(Load(table, DateValue(kNoonOf5January2020), Variant(LONG{1})), S_OK);
  EXPECT_EQ(Load(table, DateValue(2), Variant(LONG{2})), S_OK);  // 1900-01-01
  // 1900 comes back as 2000.
  EXPECT_THAT(Rows(OpenTable(u"t.csv")), ElementsAre("DATE:43835|I4:1", "DATE:36526|I4:2"));
}

TEST_F(LoaderTest, APatternWithoutSecondsLosesThem) {
  folder_.Write(u"schema.ini", "[t.csv]\nCol1=D Date yyyy-MM-dd HH:mm\n");
  const auto table = Create(u"t.csv", MakeFields({{u"D", 5}, {u"Id", 1}}));
  EXPECT_EQ(Load(table, DateValue(43835.5 + 30.0 / 86400), Variant(LONG{1})), S_OK);
  EXPECT_THAT(Rows(OpenTable(u"t.csv")), ElementsAre("DATE:43835.5|I4:1"));
}

TEST_F(LoaderTest, APatternThatIsNotReadGivesNulls) {
  folder_.Write(u"schema.ini", "[t.csv]\nCol1=D Date HH.mm\n");
  const auto table = Create(u"t.csv", MakeFields({{u"D", 15}, {u"Id", 1}}));
  EXPECT_EQ(Load(table, DateValue(0.5), Variant(LONG{1})), S_OK);
  EXPECT_NE(folder_.Read(u"t.csv").find("12.00,1"), std::string::npos);
  EXPECT_THAT(Rows(OpenTable(u"t.csv")), ElementsAre("NULL|I4:1"));
}

TEST_F(LoaderTest, ANullInATableOfOneColumnIsABlank) {
  const auto table = Create(u"t.csv", MakeFields({{u"A", 4}}));
  EXPECT_EQ(Load(table, NullValue()), S_OK);
  EXPECT_EQ(Load(table, Variant(u"x")), S_OK);
  EXPECT_THAT(Rows(OpenTable(u"t.csv")), ElementsAre("NULL", "BSTR:x"));
}

TEST_F(LoaderTest, WithoutATextDelimiterSomeCharactersBecomeBlanks) {
  folder_.Write(u"schema.ini", "[t.csv]\nTextDelimiter=NONE\n");
  const auto table = Create(u"t.csv", MakeFields({{u"A", 4}, {u"B", 1}}));
  EXPECT_EQ(Load(table, Variant(u"a,b\nc\"d\""), Variant(LONG{1})), S_OK);
  EXPECT_THAT(Rows(OpenTable(u"t.csv")), ElementsAre("BSTR:a b c\"d\"|I4:1"));
}

TEST_F(LoaderTest, FixedLengthTablesTrimTextsAndCutNumbers) {
  folder_.Write(u"schema.ini",
                "[t.txt]\nFormat=FixedLength\nCol1=A Text Width 6\nCol2=B Double Width 5\n"
                "Col3=C Long Width 3\nCol4=D Date yyyy-MM-dd \" \" Width 10\n");
  const auto table = Create(u"t.txt", MakeFields({{u"A", 4}, {u"B", 3}, {u"C", 1}, {u"D", 14}}));
  const DATE day = 43835;
  EXPECT_EQ(Load(table, Variant(u" a\nb "), Variant(1.23456), Variant(LONG{7}), DateValue(day)),
            S_OK);
  EXPECT_EQ(Load(table, Variant(u"longer text"), Variant(12345.6), Variant(LONG{-12}), NullValue()),
            S_OK);
  EXPECT_EQ(Load(table, NullValue(), NullValue(), NullValue(), DateValue(day)), S_OK);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(Load(table, Variant(u"x"), Variant(123456.0), Variant(LONG{1234}), DateValue(day)),
            S_OK);
  EXPECT_EQ(Messages().size(), 2u);
  EXPECT_THAT(Rows(OpenTable(u"t.txt")),
              ElementsAre("BSTR:a b|R8:1.235|I4:7|DATE:43835", "BSTR:longer|R8:12346|I4:-12|NULL",
                          "NULL|NULL|NULL|DATE:43835", "BSTR:x|NULL|NULL|DATE:43835"));
}

TEST_F(LoaderTest, ATimestampColumnIsKnownByTheFirstRows) {
  const auto table = Create(u"t.csv", MakeFields({{u"Z", 16}, {u"A", 4}}));
  EXPECT_EQ(Load(table, NullValue(), Variant(u"x")), S_OK);
  EXPECT_EQ(Load(table, StampValue(kNoonOf5January2020, 60), Variant(u"y")), S_OK);
  // One row tells all that is asked of declared columns, and it has no offset.
  EXPECT_THAT(Rows(OpenTable(u"t.csv")), ElementsAre("NULL|BSTR:x", "NULL|BSTR:y"));
}

TEST_F(LoaderTest, RowsAddedToAnAnsiFileReadInItsCodePage) {
  const auto table = Table(u"t.csv", "Id,Name\n1,caf\xE9\n");
  EXPECT_EQ(Load(table, Variant(LONG{2}), Variant(u"caf\u00E9")), S_OK);
  EXPECT_THAT(Rows(OpenTable(u"t.csv")),
              ElementsAre("I4:1|BSTR:caf\xC3\xA9", "I4:2|BSTR:caf\xC3\x83\xC2\xA9"));
}

// ---------------------------------------------------------------------------------------------
// Random tables
// ---------------------------------------------------------------------------------------------

template <class Number>
std::string Shortest(Number number) {
  char text[64];
  return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
}

constexpr LONG kTextLength = 12;

// A value with what a cursor has to show for it.
struct Sample {
  Variant value;
  std::string shown;
};

class RandomValues {
 public:
  explicit RandomValues(std::uint32_t seed) : random_(seed) {}

  Sample Make(LONG type, bool mayBeNull) {
    if (mayBeNull && Below(5) == 0) return {NullValue(), "NULL"};
    switch (type) {
      case 0:
        return Small(static_cast<SHORT>(random_()));
      case 1:
      case 6:
        return Whole(static_cast<LONG>(random_()));
      case 13:
        return Big(static_cast<LONGLONG>(std::uint64_t{random_()} << 32 | random_()));
      case 2:
        return Single(static_cast<float>(Between(-1000000, 1000000)) / 128);
      case 3:
        return Double(static_cast<double>(Between(-2000000000, 2000000000)) / 1024);
      case 4:
        return Text(RandomText(), kTextLength);
      case 10:
      case 11:
        return Text(u"{6F9619FF-8B86-D011-B42D-00CF4FC964" + std::u16string(2, Digit()) + u"}",
                    8000);
      default:
        return Dated(type);
    }
  }

 private:
  int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
  int Between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  char16_t Digit() { return static_cast<char16_t>(u'0' + Below(10)); }

  static Sample Small(SHORT n) { return {SmallValue(n), "I2:" + std::to_string(n)}; }
  static Sample Whole(LONG n) { return {Variant(n), "I4:" + std::to_string(n)}; }
  static Sample Big(LONGLONG n) { return {BigValue(n), "I8:" + std::to_string(n)}; }
  static Sample Single(float n) { return {SingleValue(n), "R4:" + Shortest(n)}; }
  static Sample Double(double n) { return {Variant(n), "R8:" + Shortest(n)}; }

  std::u16string RandomText() {
    constexpr std::u16string_view kPieces[] = {
        u"a", u"\u00E9", u"\"",         u",", u";",      u"\t",     u"\n", u"\r", u" ",
        u"|", u"'",      u"\U0001F600", u"1", u"\u6708", u"\u3000", u"[",  u"=",  u"\x1A"};
    std::u16string text;
    for (int pieces = Below(10); pieces > 0; --pieces)
      text += kPieces[Below(static_cast<int>(std::size(kPieces)))];
    return text;
  }

  static Sample Text(const std::u16string& text, std::size_t length) {
    std::u16string kept = text.substr(0, length);
    if (!kept.empty() && kept.back() >= 0xD800 && kept.back() < 0xDC00) kept.pop_back();
    std::erase(kept, u'\x1A');
    for (std::size_t at = 0; (at = kept.find(u"\r\n", at)) != std::u16string::npos;)
      kept.erase(at, 1);
    const bool blank = kept.find_first_not_of(u" \t\r\n\u3000") == std::u16string::npos;
    return {Variant(text), blank ? "NULL" : "BSTR:" + ToUtf8(kept)};
  }

  Sample Dated(LONG type) {
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(Between(100, 9999));
    time.wMonth = static_cast<WORD>(Between(1, 12));
    time.wDay = static_cast<WORD>(Between(1, 28));
    time.wHour = static_cast<WORD>(Below(24));
    time.wMinute = static_cast<WORD>(Below(60));
    time.wSecond = static_cast<WORD>(Below(60));
    if (Below(2) == 0) time.wMilliseconds = static_cast<WORD>(Below(1000));
    DATE date = 0;
    EXPECT_TRUE(DatetimeHelper::ToOADate(time, date));
    if (type == 5) return {DateValue(date), "DATE:" + Shortest(date)};
    if (type == 16) {
      const auto offset = static_cast<SHORT>(Between(-840, 840));
      return {StampValue(date, offset), "TZ:" + Shortest(date) + "/" + std::to_string(offset)};
    }
    if (type == 14) {
      DATE day = 0;
      SYSTEMTIME midnight{};
      midnight.wYear = time.wYear;
      midnight.wMonth = time.wMonth;
      midnight.wDay = time.wDay;
      EXPECT_TRUE(DatetimeHelper::ToOADate(midnight, day));
      return {DateValue(date), "DATE:" + Shortest(day)};
    }
    const int milliseconds =
        ((time.wHour * 60 + time.wMinute) * 60 + time.wSecond) * 1000 + time.wMilliseconds;
    return {DateValue(date), "DATE:" + Shortest(milliseconds / 8.64e7)};
  }

  std::mt19937 random_;
};

struct RoundTrip {
  std::u16string_view locale;
  std::u16string_view name;
};

class LoaderRoundTripTest : public LoaderTest, public testing::WithParamInterface<RoundTrip> {};

TEST_P(LoaderRoundTripTest, WhatIsLoadedIsRead) {
  constexpr LONG kTypes[] = {0, 1, 2, 3, 4, 5, 6, 10, 11, 13, 14, 15, 16};
  constexpr int kRows = 150;
  ASSERT_TRUE(QUENRALocale::SetLocale(GetParam().locale));
  for (std::uint32_t seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE(seed);
    RandomValues random(seed);
    std::vector<LONG> types(std::begin(kTypes), std::end(kTypes));
    std::shuffle(types.begin(), types.end(), std::mt19937(seed));
    constexpr std::u16string_view kNames[] = {u"A", u"B", u"C c", u"D,d", u"E;", u"F", u"G",
                                              u"H", u"I", u"J",   u"K",   u"L",  u"M"};
    std::vector<FieldAsked> asked;
    for (std::size_t i = 0; i < types.size(); ++i)
      asked.push_back({kNames[i], types[i], types[i] == 4 ? kTextLength : 0});
    const auto fields = MakeFields(asked);
    const auto created = Create(GetParam().name, fields);
    std::vector<std::string> expected;
    {
      const auto loader = Loader(created);
      for (int i = 0; i < kRows; ++i) {
        std::vector<Variant> row;
        std::string shown;
        for (const LONG type : types) {
          Sample sample = random.Make(type, i > 0);
          row.push_back(std::move(sample.value));
          shown += (shown.empty() ? "" : "|") + sample.shown;
        }
        ASSERT_EQ(loader->LoadRow(MakeRow(fields, row).Get()), S_OK);
        expected.push_back(std::move(shown));
      }
    }
    const std::vector<std::string> found = Rows(OpenTable(GetParam().name));
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) ASSERT_EQ(found[i], expected[i]) << "row " << i;
    EXPECT_THAT(Messages(), IsEmpty());
    folder_.Remove(GetParam().name);
    folder_.Remove(u"schema.ini");
  }
}

constexpr RoundTrip kRoundTrips[] = {
    {u"en-US", u"t.csv"}, {u"de-DE", u"t.csv"}, {u"sv-SE", u"t.csv"}, {u"hi-IN", u"t.csv"},
    {u"en-US", u"t.tsv"}, {u"de-DE", u"t.psv"}, {u"sv-SE", u"t.tab"}, {u"hi-IN", u"t.txt"},
};

INSTANTIATE_TEST_SUITE_P(All, LoaderRoundTripTest, testing::ValuesIn(kRoundTrips),
                         [](const auto& parameter) {
                           std::string name =
                               ToUtf8(parameter.param.locale) + "_" + ToUtf8(parameter.param.name);
                           for (char& c : name)
                             if (c == '-' || c == '.') c = '_';
                           return name;
                         });

}  // namespace
}  // namespace quenra::test
