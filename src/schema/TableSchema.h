// The schema of one text table: how its records are cut, its number, currency and date
// conventions, and the columns that schema.ini declares.
//
//   SchemaOptions options;                   // defaults: comma, double quote, LF
//   ReadSchemaSection(folder, u"a.csv", options);   // schema/SchemaIniReader.h
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "schema/FieldDefinition.h"

namespace TextFile {

namespace NumberFormat {

// What a number of the table looks like. The grouping symbol is never configured.
struct Settings {
  // Takes the fallback decimal symbol from the user's locale.
  Settings();

  enum Option : std::uint16_t { kDecimalSymbol = 1, kNumberDigits = 2, kLeadingZeros = 4 };

  std::uint16_t specified = 0;  // Option bits: what schema.ini gave
  char16_t decimalSymbol = u'.';
  char16_t localeDecimalSymbol = u'.';  // the locale's when that is one code unit
  std::uint32_t digits = 2;             // after the decimal symbol, when numbers are written
  bool leadingZeros = false;  // kept for schema.ini; neither reading nor writing looks at it

  // "," for a decimal point, "." for every other decimal symbol.
  char16_t GroupingSymbol() const noexcept { return decimalSymbol == u'.' ? u',' : u'.'; }
};

// "," becomes "."; every other symbol becomes ",".
constexpr char16_t SwappedDecimalSymbol(char16_t symbol) noexcept {
  return symbol == u',' ? u'.' : u',';
}

}  // namespace NumberFormat

// What an amount of money looks like.
struct CurrencySettings {
  enum Option : std::uint32_t {
    kSymbol = 1,
    kPositiveFormat = 2,
    kDigits = 4,
    kNegativeFormat = 8,
    kThousandSymbol = 16,
    kDecimalSymbol = 32,
  };

  std::uint32_t specified = 0;  // Option bits: what schema.ini gave
  std::u16string symbol;
  char16_t thousandSymbol = u',';
  char16_t decimalSymbol = u'.';
  std::uint32_t digits = 2;
  std::u16string positiveFormat;  // kept verbatim for schema.ini
  std::u16string negativeFormat;  // kept verbatim for schema.ini
};

struct SchemaOptions {
  enum Option : std::uint32_t {
    kFormat = 1,
    kColNameHeader = 2,
    kMaxScanRows = 4,
    kCharacterSet = 8,
    kDateTimeFormat = 16,
    kTextDelimiter = 32,
  };
  bool IsSpecified(Option option) const noexcept { return (specified & option) != 0; }

  std::u16string sectionName;   // as written between the brackets; empty without a section
  std::uint32_t specified = 0;  // Option bits: what schema.ini gave
  bool fixedLength = false;
  char16_t delimiter = u',';               // 0 for fixed-length files
  char16_t textDelimiter = u'"';           // 0: no quoting
  bool columnNameHeader = false;           // the first record holds the names
  std::uint32_t maxScanRows = 0xFFFFFFFF;  // looked at only when specified; 0: no limit
  bool ansi = false;                       // CharacterSet, kept for schema.ini; reading ignores it
  std::u16string dateTimeFormat;           // for writing; empty until the locale fills it
  NumberFormat::Settings number;
  CurrencySettings currency;
  char recordTerminator = '\n';  // LF, or CR once a scan has found that the file needs it

  // The columns that schema.ini declares, by zero-based position. Gaps are allowed in delimited
  // tables.
  std::map<std::int32_t, FieldDefinition> columns;
};

// The delimiter that a file starts with: tab for ".tab" and ".tsv", "|" for ".psv", else comma.
// Letter case does not matter.
char16_t DelimiterOfExtension(std::u16string_view fileName) noexcept;

// The type that a schema.ini type word stands for, in any letter case; kUndetermined for a word
// that is none.
FieldType TypeOfKeyword(std::u16string_view word) noexcept;

// The word that a type is written as; empty for types that schema.ini cannot hold. The pattern of
// a date is written behind it by the writer.
std::u16string_view KeywordOfType(FieldType type) noexcept;

// The part of a file name from its last dot on, the dot included; empty without a dot. A name
// that is only dots before its text (".", "..") has no extension.
std::u16string_view ExtensionOf(std::u16string_view fileName) noexcept;

}  // namespace TextFile
