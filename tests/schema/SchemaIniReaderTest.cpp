#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "schema/SchemaIniReader.h"
#include "support/TemporaryFolder.h"
#include "support/UserLocale.h"
#include "support/Utf16Bytes.h"

using quenra::test::TemporaryFolder;

namespace TextFile {
namespace {

using namespace std::string_literals;

class SchemaIniReaderTest : public EnglishTest {
 protected:
  // Reads the section of `file`; nothing when there is none.
  std::optional<SchemaOptions> Read(std::string_view schemaIni,
                                    std::u16string_view file = u"data.csv") {
    folder_.Write(u"schema.ini", schemaIni);
    SchemaOptions options;
    if (!ReadSchemaSection(SchemaIniPaths(folder_.Path()), file, options)) return std::nullopt;
    return options;
  }

  // The options of a section with these lines.
  SchemaOptions Options(std::string_view lines) {
    const auto options = Read("[data.csv]\n" + std::string(lines) + "\n");
    EXPECT_TRUE(options.has_value()) << lines;
    return options.value_or(SchemaOptions());
  }

  // A section with these lines is refused so.
  void ExpectError(std::string_view lines, ParseErrorCode code, std::u16string_view text) {
    SCOPED_TRACE(lines);
    folder_.Write(u"schema.ini", "[data.csv]\n" + std::string(lines) + "\n");
    SchemaOptions options;
    options.sectionName = u"untouched";
    try {
      ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"data.csv", options);
      ADD_FAILURE() << "accepted";
    } catch (const ParseError& error) {
      EXPECT_EQ(error.code(), code);
      EXPECT_EQ(error.text(), text);
      EXPECT_STREQ(error.what(), "Schema.ini parse error");
    }
    EXPECT_EQ(options.sectionName, u"untouched");
    EXPECT_EQ(options.specified, 0u);
    EXPECT_TRUE(options.columns.empty());
    EXPECT_EQ(options.dateTimeFormat, u"");
  }

  TemporaryFolder folder_;
};

TEST_F(SchemaIniReaderTest, ErrorCodesAreThoseOfTheMessages) {
  using enum ParseErrorCode;
  const ParseErrorCode codes[] = {
      kMissingFieldName, kMissingFieldType,        kUnknownFieldType,   kWidthKeywordExpected,
      kBadFieldWidth,    kFixedWidthFieldsMissing, kBadDateFormat,      kDuplicateOption,
      kInvalidFormat,    kDoubleQuoteDelimiter,    kInvalidOptionValue, kUnknownOption};
  std::uint32_t number = 0;
  for (const ParseErrorCode code : codes) EXPECT_EQ(static_cast<std::uint32_t>(code), number++);
}

// ---------------------------------------------------------------------------------------------
// Finding the section
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniReaderTest, WithoutASchemaIniThereIsNoSection) {
  SchemaOptions options;
  EXPECT_FALSE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"data.csv", options));
  EXPECT_EQ(options.dateTimeFormat, u"") << "the locale has not been asked either";
  boost::filesystem::create_directory(folder_.Native(u"schema.ini"));
  EXPECT_FALSE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"data.csv", options));
}

struct HeaderCase {
  std::string schemaIni;
  bool found;
  const char* why;
};

TEST_F(SchemaIniReaderTest, SectionNames) {
  const HeaderCase cases[] = {
      {"[data.csv]\n", true, "the file's name"},
      {"[data.csv]", true, "unterminated"},
      {"[DATA.CSV]\n", true, "another letter case"},
      {"[data.csv] \n", false, "a blank behind the bracket"},
      {"[ data.csv]\n", false, "a blank within"},
      {"[data.csv\n", false, "no bracket at the end"},
      {"[data]\n", false, "no extension"},
      {"[data.csv.bak]\n", false, "a longer name"},
      {"[]\n", false, "no name"},
      {"[\n", false, "a bracket"},
      {"", false, "an empty file"},
      {"data.csv\n", false, "no brackets"},
      {"\n\n[data.csv]\n", true, "behind blank lines"},
      {"some text [data.csv]\n", true, "behind other text of its line"},
      {"[other.csv]\nNonsense\n[data.csv]\n", true, "behind another section"},
      {"[other.csv]\nCol1=\"a [data.csv]\n", true, "wherever a bracket stands"},
      {"[other[data.csv]\n", false, "a header is one line from its first bracket on"},
      {"[data.csv]\r\n", true, "CR LF"},
      {"[data.csv]\x1A", true, "before the end of the text"},
      {"\x1A[data.csv]", false, "behind the end of the text"},
  };
  for (const HeaderCase& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Read(c.schemaIni).has_value(), c.found);
  }
}

TEST_F(SchemaIniReaderTest, LetterCaseFoldsUnitByUnit) {
  EXPECT_TRUE(Read("[\xC3\x84\xC3\x96.csv]\n", u"\u00E4\u00F6.csv").has_value());
  EXPECT_TRUE(Read("[\xD0\xAF.csv]\n", u"\u044F.csv").has_value());
  EXPECT_FALSE(Read("[STRASSE.csv]\n", u"stra\u00DFe.csv").has_value()) << "lengths differ";
}

TEST_F(SchemaIniReaderTest, NameIsKeptAsItIsWritten) {
  EXPECT_EQ(Read("[DATA.Csv]\n")->sectionName, u"DATA.Csv");
}

TEST_F(SchemaIniReaderTest, FirstSectionOfTheFileWins) {
  const auto options = Read("[data.csv]\nMaxScanRows=1\n[DATA.csv]\nMaxScanRows=2\nNonsense\n");
  ASSERT_TRUE(options.has_value());
  EXPECT_EQ(options->maxScanRows, 1u);
}

TEST_F(SchemaIniReaderTest, SectionEndsAtTheNextLineThatBeginsWithABracket) {
  const auto options = Read("[data.csv]\nMaxScanRows=1\n[ whatever\nNonsense\n");
  ASSERT_TRUE(options.has_value());
  EXPECT_EQ(options->maxScanRows, 1u);
}

TEST_F(SchemaIniReaderTest, EncodingsOfTheLineReader) {
  const std::u16string text = u"[d\u00E4ta.csv]\r\nCol1=N\u00E4me Text\r\n";
  const std::string utf8 = "[d\xC3\xA4ta.csv]\r\nCol1=N\xC3\xA4me Text\r\n";
  const std::string ansi = "[d\xE4ta.csv]\r\nCol1=N\xE4me Text\r\n";
  for (const std::string& bytes : {utf8, "\xEF\xBB\xBF" + utf8, ansi, Utf16File(text)}) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    const auto options = Read(bytes, u"d\u00E4ta.csv");
    ASSERT_TRUE(options.has_value());
    EXPECT_EQ(options->columns.at(0).name, u"N\u00E4me");
  }
  EXPECT_FALSE(Read("\xFE\xFF\0[\0d\0]"s, u"d").has_value());
}

TEST_F(SchemaIniReaderTest, NameInAnotherLetterCaseIsFound) {
  folder_.Write(u"SCHEMA.INI", "[data.csv]\nMaxScanRows=3\n");
  SchemaOptions options;
  ASSERT_TRUE(ReadSchemaSection(SchemaIniPaths(folder_.Path()), u"data.csv", options));
  EXPECT_EQ(options.maxScanRows, 3u);
}

// ---------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniReaderTest, EmptyLinesAreSkippedAndPartsTrimmed) {
  const SchemaOptions options =
      Options("\n\n \t MaxScanRows\t = \t 7 \xC2\xA0\n\nCharacterSet=OEM");
  EXPECT_EQ(options.maxScanRows, 7u);
  EXPECT_TRUE(options.IsSpecified(SchemaOptions::kCharacterSet));
}

TEST_F(SchemaIniReaderTest, ValueIsTheTextBehindTheFirstEqualsSign) {
  EXPECT_EQ(Options("DateTimeFormat=a=b=c").dateTimeFormat, u"a=b=c");
  EXPECT_EQ(Options("CurrencySymbol==").currency.symbol, u"=");
}

TEST_F(SchemaIniReaderTest, QuotedValueSpansLines) {
  EXPECT_EQ(Options("Col1=\"two\nlines\" Text\nMaxScanRows=5").columns.at(0).name, u"two\nlines");
  EXPECT_EQ(Options("Col1=\"two\r\n\r\nlines\" Text").columns.at(0).name, u"two\n\nlines");
  EXPECT_EQ(Options("Col1=\"a\n[b]\" Text").columns.at(0).name, u"a\n[b]")
      << "a bracket within is no header";
  EXPECT_EQ(Options("DateTimeFormat=a\"b\nc\"d").dateTimeFormat, u"a\"b\nc\"d");
}

TEST_F(SchemaIniReaderTest, OpenQuoteTakesTheRestOfTheFile) {
  ExpectError("CurrencySymbol=\"\nMaxScanRows=x\nNonsense\"\nMore", ParseErrorCode::kUnknownOption,
              u"More=More");
  EXPECT_EQ(Options("CurrencySymbol=\"\nMaxScanRows=x").currency.symbol, u"\"\nMaxScanRows=x");
}

TEST_F(SchemaIniReaderTest, OpenQuoteInALongFileIsReadInOneGo) {
  // Lines counted again with each one that joins them would take hours.
  std::string lines = "CurrencySymbol=\"";
  for (int i = 0; i < 300'000; ++i) lines += "\nx=y";
  EXPECT_EQ(Options(lines).currency.symbol.size(), lines.size() - 15);
}

TEST_F(SchemaIniReaderTest, LineOfTheQuoteAsTextDelimiterIsComplete) {
  for (const char* line : {"TextDelimiter=\"", "  TextDelimiter =  \" "}) {
    const SchemaOptions options = Options(line + "\nMaxScanRows=4"s);
    EXPECT_EQ(options.textDelimiter, u'"');
    EXPECT_EQ(options.maxScanRows, 4u);
  }
  // Any other line with one quote goes on.
  const SchemaOptions joined = Options("TextDelimiter=\"x\nMaxScanRows=4\"");
  EXPECT_FALSE(joined.IsSpecified(SchemaOptions::kMaxScanRows));
  EXPECT_EQ(joined.textDelimiter, u'"');
  ExpectError("textdelimiter=\"\nMaxScanRows=4", ParseErrorCode::kUnknownOption,
              u"textdelimiter=\"\nMaxScanRows=4");
}

TEST_F(SchemaIniReaderTest, LinesThatAreNoOptions) {
  using enum ParseErrorCode;
  ExpectError("; note", kUnknownOption, u"; note=; note");
  ExpectError("  nonsense \t", kUnknownOption, u"nonsense=nonsense");
  ExpectError("colnameheader=True", kUnknownOption, u"colnameheader=True");
  ExpectError("Column=Name Text", kUnknownOption, u"Column=Name Text");
  ExpectError("Col1a=Name Text", kUnknownOption, u"Col1a=Name Text");
  ExpectError("Col0=Name Text", kUnknownOption, u"Col0=Name Text");
  ExpectError("Col-1=Name Text", kUnknownOption, u"Col-1=Name Text");
  ExpectError("Col+1=Name Text", kUnknownOption, u"Col+1=Name Text");
  ExpectError("Col1000001=Name Text", kUnknownOption, u"Col1000001=Name Text");
  ExpectError("=x", kUnknownOption, u"=x");
  ExpectError("b=1\na=2", kUnknownOption, u"a=2");
  ExpectError("b = 1\nB= 2 ", kUnknownOption, u"B=2");
}

TEST_F(SchemaIniReaderTest, KeysOccurOnce) {
  using enum ParseErrorCode;
  ExpectError("MaxScanRows=1\nMaxScanRows=1", kDuplicateOption, u"MaxScanRows=1");
  ExpectError("MaxScanRows=1\n MaxScanRows = 2 ", kDuplicateOption, u" MaxScanRows = 2 ");
  ExpectError("x\nx", kDuplicateOption, u"x");
  ExpectError("Col1=A Text\nCol1=\"B\nC\" Text", kDuplicateOption, u"Col1=\"B\nC\" Text");
  // Duplicates are met while reading, before any option is looked at.
  ExpectError("Format=nonsense\nMaxScanRows=1\nMaxScanRows=1", kDuplicateOption, u"MaxScanRows=1");
}

// ---------------------------------------------------------------------------------------------
// Options
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniReaderTest, SectionWithoutOptionsSpecifiesNothing) {
  const SchemaOptions options = Options("");
  EXPECT_EQ(options.specified, 0u);
  EXPECT_EQ(options.number.specified, 0);
  EXPECT_EQ(options.currency.specified, 0u);
  EXPECT_EQ(options.dateTimeFormat, u"M/d/yyyy H:mm:ss") << "the locale's";
  EXPECT_EQ(options.currency.symbol, u"$");
}

TEST_F(SchemaIniReaderTest, Formats) {
  struct {
    std::string value;
    bool fixedLength;
    char16_t delimiter;
  } const cases[] = {
      {"FixedLength", true, 0},
      {"TabDelimited", false, 9},
      {"CSVDelimited", false, 44},
      {"Delimited(;)", false, u';'},
      {"Delimited(,)", false, 44},
      {"Delimited( )", false, u' '},
      {"Delimited(;)xyz", false, u';'},
      {"Delimited())", false, u')'},
      {"Delimited(\xC2\xA7)", false, u'\u00A7'},
      {"Delimited(\t)", false, 9},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    const SchemaOptions options = Options("Format=" + c.value);
    EXPECT_EQ(options.fixedLength, c.fixedLength);
    EXPECT_EQ(options.delimiter, c.delimiter);
    EXPECT_EQ(options.specified, 1u);
  }
}

TEST_F(SchemaIniReaderTest, BadFormats) {
  using enum ParseErrorCode;
  for (const char16_t* value : {u"", u"fixedlength", u"FixedLengthx", u"CSV", u"tabdelimited",
                                u"CSVDelimited ,", u"delimited(;)", u"Delimited", u"Delimited(",
                                u"Delimited(|", u"Delimited(ab)", u"Delimited()"}) {
    const std::u16string text(value);
    ExpectError("Format=" + std::string(text.begin(), text.end()), kInvalidFormat, text);
  }
  ExpectError("Format=Delimited(\")\n\"", kDoubleQuoteDelimiter, u"Delimited(\")\n\"");
  ExpectError("Format=Delimited(\"\")", kDoubleQuoteDelimiter, u"Delimited(\"\")");
  ExpectError("Format=Delimited(\")", kDoubleQuoteDelimiter, u"Delimited(\")");
}

TEST_F(SchemaIniReaderTest, Booleans) {
  EXPECT_TRUE(Options("ColNameHeader=True").columnNameHeader);
  EXPECT_FALSE(Options("ColNameHeader=False").columnNameHeader);
  EXPECT_EQ(Options("ColNameHeader=False").specified, 2u);
  EXPECT_TRUE(Options("NumberLeadingZeros=True").number.leadingZeros);
  EXPECT_FALSE(Options("NumberLeadingZeros=False").number.leadingZeros);
  EXPECT_EQ(Options("NumberLeadingZeros=False").number.specified, 4);
  for (const std::string key : {"ColNameHeader", "NumberLeadingZeros"}) {
    for (const std::string value : {"true", "FALSE", "1", "", "True x", "Yes"}) {
      const std::string line = key + "=" + value;
      ExpectError(line, ParseErrorCode::kInvalidOptionValue,
                  std::u16string(line.begin(), line.end()));
    }
  }
}

TEST_F(SchemaIniReaderTest, Numbers) {
  struct {
    std::string value;
    std::uint32_t number;
  } const accepted[] = {{"0", 0},      {"25", 25}, {"007", 7}, {"4294967295", 4294967295u},
                        {"12abc", 12}, {"1.5", 1}, {"+3", 3},  {"10 rows", 10},
                        {"0x10", 0}};
  for (const auto& c : accepted) {
    SCOPED_TRACE(c.value);
    const SchemaOptions options = Options("MaxScanRows=" + c.value + "\nNumberDigits=" + c.value +
                                          "\nCurrencyDigits=" + c.value);
    EXPECT_EQ(options.maxScanRows, c.number);
    EXPECT_EQ(options.specified, 4u);
    EXPECT_EQ(options.number.digits, c.number);
    EXPECT_EQ(options.number.specified, 2);
    EXPECT_EQ(options.currency.digits, c.number);
    EXPECT_EQ(options.currency.specified, 4u);
  }
  for (const std::string key : {"MaxScanRows", "NumberDigits", "CurrencyDigits"}) {
    for (const std::string value : {"abc", "", "x1", ".5", "-", "4294967296", "- 1"}) {
      const std::string line = key + "=" + value;
      ExpectError(line, ParseErrorCode::kInvalidOptionValue,
                  std::u16string(line.begin(), line.end()));
    }
  }
}

TEST_F(SchemaIniReaderTest, CharacterSets) {
  EXPECT_TRUE(Options("CharacterSet=ANSI").ansi);
  EXPECT_FALSE(Options("CharacterSet=OEM").ansi);
  EXPECT_EQ(Options("CharacterSet=OEM").specified, 8u);
  for (const std::string value : {"ansi", "oem", "1252", "UTF-8", "Unicode", "65001", ""}) {
    const std::string line = "CharacterSet=" + value;
    ExpectError(line, ParseErrorCode::kInvalidOptionValue,
                std::u16string(line.begin(), line.end()));
  }
}

TEST_F(SchemaIniReaderTest, DateTimeFormatHasTwoNames) {
  EXPECT_EQ(Options("DateTimeFormat=yyyy").dateTimeFormat, u"yyyy");
  EXPECT_EQ(Options("DateTimeFormat=yyyy").specified, 16u);
  EXPECT_EQ(Options("DateDateTimeFormat=dd HH").dateTimeFormat, u"dd HH");
  EXPECT_EQ(Options("DateDateTimeFormat=dd").specified, 16u);
  EXPECT_EQ(Options("DateDateTimeFormat=second\nDateTimeFormat=first").dateTimeFormat, u"second");
  EXPECT_EQ(Options("DateTimeFormat=nonsense").dateTimeFormat, u"nonsense") << "not validated";
  EXPECT_EQ(Options("DateTimeFormat=").dateTimeFormat, u"");
}

TEST_F(SchemaIniReaderTest, TextDelimiters) {
  struct {
    std::string value;
    char16_t textDelimiter;
  } const cases[] = {{"'", u'\''},    {"NONE", 0}, {"none", 0}, {"nOnE", 0},
                     {"ab", u'"'},    {"", u'"'},  {"N", u'N'}, {"\xC2\xAB", u'\u00AB'},
                     {"NONE x", u'"'}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    const SchemaOptions options = Options("TextDelimiter=" + c.value);
    EXPECT_EQ(options.textDelimiter, c.textDelimiter);
    EXPECT_EQ(options.specified, 32u);
  }
}

TEST_F(SchemaIniReaderTest, SingleCharacters) {
  const SchemaOptions options =
      Options("DecimalSymbol=,\nCurrencyThousandSymbol='\nCurrencyDecimalSymbol=\xE2\x82\xAC");
  EXPECT_EQ(options.number.decimalSymbol, u',');
  EXPECT_EQ(options.number.specified, 1);
  EXPECT_EQ(options.currency.thousandSymbol, u'\'');
  EXPECT_EQ(options.currency.decimalSymbol, u'\u20AC');
  EXPECT_EQ(options.currency.specified, 48u);
  for (const std::string key :
       {"DecimalSymbol", "CurrencyThousandSymbol", "CurrencyDecimalSymbol"}) {
    for (const std::string value : {"", "..", "NONE"}) {
      const std::string line = key + "=" + value;
      ExpectError(line, ParseErrorCode::kInvalidOptionValue,
                  std::u16string(line.begin(), line.end()));
    }
  }
}

TEST_F(SchemaIniReaderTest, CurrencyTexts) {
  const SchemaOptions options =
      Options("CurrencySymbol=Taler\nCurrencyPosFormat=$1\nCurrencyNegFormat=($1)");
  EXPECT_EQ(options.currency.symbol, u"Taler");
  EXPECT_EQ(options.currency.positiveFormat, u"$1");
  EXPECT_EQ(options.currency.negativeFormat, u"($1)");
  EXPECT_EQ(options.currency.specified, 11u);
  EXPECT_EQ(options.currency.thousandSymbol, u',') << "from the locale";
  EXPECT_EQ(Options("CurrencySymbol=").currency.symbol, u"") << "empty, but given";
}

// ---------------------------------------------------------------------------------------------
// Columns
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniReaderTest, ColumnsStandUnderTheirNumbers) {
  const SchemaOptions options =
      Options("Col10=Ten Text\nCol2=Two Long\nCol1=\"First Name\" Text Width 20");
  ASSERT_EQ(options.columns.size(), 3u);
  EXPECT_EQ(options.columns.at(0).name, u"First Name");
  EXPECT_EQ(options.columns.at(0).width, 20);
  EXPECT_EQ(options.columns.at(1).type, FieldType::kInteger);
  EXPECT_EQ(options.columns.at(9).name, u"Ten");
  EXPECT_EQ(options.specified, 0u);
}

TEST_F(SchemaIniReaderTest, TwoKeysOfOneColumnAreTakenInKeyOrder) {
  // "Col01" comes before "Col1", wherever they stand.
  for (const char* lines :
       {"Col01=A Text Width 12\nCol1=B Long", "Col1=B Long\nCol01=A Text Width 12"}) {
    const SchemaOptions options = Options(lines);
    ASSERT_EQ(options.columns.size(), 1u);
    EXPECT_EQ(options.columns.at(0).name, u"B");
    EXPECT_EQ(options.columns.at(0).type, FieldType::kInteger);
    EXPECT_EQ(options.columns.at(0).width, 12) << "only what is given is overwritten";
  }
}

TEST_F(SchemaIniReaderTest, DateColumnsTakeTheTypeOfTheirPattern) {
  const SchemaOptions options = Options(
      "Col1=A Date\nCol2=When Date dd.MM.yyyy\nCol3=T Date HH:mm\n"
      "Col4=Stamp Date dd/MM/yyyy HH:mm Width 16");
  EXPECT_EQ(options.columns.at(0).type, FieldType::kDate);
  EXPECT_EQ(options.columns.at(1).type, FieldType::kDateOnly);
  EXPECT_EQ(options.columns.at(2).type, FieldType::kTimeOnly);
  EXPECT_EQ(options.columns.at(3).type, FieldType::kDate);
  EXPECT_EQ(options.columns.at(3).width, 16);
}

TEST_F(SchemaIniReaderTest, ColumnErrorsNameTheLine) {
  using enum ParseErrorCode;
  ExpectError("Col1=", kMissingFieldName, u"Col1=");
  ExpectError("Col1=Name", kMissingFieldType, u"Col1=Name");
  ExpectError("Col1 = Name  Texts ", kUnknownFieldType, u"Col1=Name  Texts");
  ExpectError("Col1=Name Text 10", kWidthKeywordExpected, u"Col1=Name Text 10");
  ExpectError("Col1=Name Text Width", kBadFieldWidth, u"Col1=Name Text Width");
  ExpectError("Col3=Stamp Date dd/MM/yyyy Width 10", kWidthKeywordExpected,
              u"Col3=Stamp Date dd/MM/yyyy Width 10");
  ExpectError("Col02=When Date x", kBadDateFormat, u"Col02=When Date x");
  ExpectError("Col10=A Bad\nCol2=B Worse", kUnknownFieldType, u"Col10=A Bad");
}

TEST_F(SchemaIniReaderTest, FixedLengthNeedsEveryColumn) {
  using enum ParseErrorCode;
  const std::string fixed = "Format=FixedLength\n";
  EXPECT_EQ(Options(fixed + "Col1=A Text Width 1\nCol2=B Text Width 2").columns.size(), 2u);
  EXPECT_TRUE(Options(fixed).columns.empty());
  ExpectError(fixed + "Col1=A Text Width 1\nCol3=B Text Width 2", kFixedWidthFieldsMissing, u"");
  ExpectError(fixed + "Col2=A Text Width 1", kFixedWidthFieldsMissing, u"");
  EXPECT_EQ(Options("Format=CSVDelimited\nCol1=A Text\nCol3=B Text").columns.size(), 2u);
}

// ---------------------------------------------------------------------------------------------
// Order
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniReaderTest, ErrorsComeInTheOrderInWhichOptionsAreApplied) {
  using enum ParseErrorCode;
  struct Wrong {
    std::string line;
    ParseErrorCode code;
    std::u16string text;
  };
  // From the first to be reported to the last.
  const Wrong order[] = {
      {"Format=Fixed", kInvalidFormat, u"Fixed"},
      {"ColNameHeader=x", kInvalidOptionValue, u"ColNameHeader=x"},
      {"MaxScanRows=x", kInvalidOptionValue, u"MaxScanRows=x"},
      {"Col7=x", kMissingFieldType, u"Col7=x"},
      {"CharacterSet=x", kInvalidOptionValue, u"CharacterSet=x"},
      {"DecimalSymbol=xx", kInvalidOptionValue, u"DecimalSymbol=xx"},
      {"NumberDigits=x", kInvalidOptionValue, u"NumberDigits=x"},
      {"NumberLeadingZeros=x", kInvalidOptionValue, u"NumberLeadingZeros=x"},
      {"CurrencyDigits=x", kInvalidOptionValue, u"CurrencyDigits=x"},
      {"CurrencyThousandSymbol=xx", kInvalidOptionValue, u"CurrencyThousandSymbol=xx"},
      {"CurrencyDecimalSymbol=xx", kInvalidOptionValue, u"CurrencyDecimalSymbol=xx"},
      {"Aardvark=x", kUnknownOption, u"Aardvark=x"},
  };
  for (std::size_t first = 0; first < std::size(order); ++first) {
    std::string lines;
    for (std::size_t i = std::size(order); i > first; --i) lines += order[i - 1].line + "\n";
    ExpectError(lines, order[first].code, order[first].text);
  }
}

TEST_F(SchemaIniReaderTest, MissingColumnsAreReportedBehindTheCharacterSetAndBeforeNumbers) {
  using enum ParseErrorCode;
  const std::string gap = "Format=FixedLength\nCol2=A Text Width 3\n";
  ExpectError(gap + "CharacterSet=x", kInvalidOptionValue, u"CharacterSet=x");
  ExpectError(gap + "DecimalSymbol=xx", kFixedWidthFieldsMissing, u"");
  ExpectError(gap + "Nonsense=1", kFixedWidthFieldsMissing, u"");
}

// ---------------------------------------------------------------------------------------------
// Locale
// ---------------------------------------------------------------------------------------------

TEST_F(SchemaIniReaderTest, LocaleFillsWhatTheSectionLeavesOpen) {
  locale_.Set(u"de-DE");
  const SchemaOptions options = Options("CurrencySymbol=Taler");
  EXPECT_EQ(options.delimiter, u';');
  EXPECT_EQ(options.number.decimalSymbol, u',');
  EXPECT_EQ(options.currency.symbol, u"Taler");
  EXPECT_EQ(options.currency.decimalSymbol, u',');
  EXPECT_EQ(options.dateTimeFormat, u"dd.MM.yyyy HH:mm:ss");
  EXPECT_EQ(Options("Format=CSVDelimited").delimiter, u',');
  EXPECT_EQ(Options("DecimalSymbol=.").delimiter, u',');
  locale_.Set(u"en-US");
  EXPECT_EQ(Options("DecimalSymbol=,").delimiter, u';');
  EXPECT_EQ(Options("DateTimeFormat=yyyy").dateTimeFormat, u"yyyy");
}

}  // namespace
}  // namespace TextFile
