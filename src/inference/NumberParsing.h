// Reads numbers and amounts of money out of field texts.
//
//   NumberFormat::Settings german;  german.decimalSymbol = u',';
//   NumberValue value;
//   NumberFormat::Convert(german, u"1.234.567,5", FieldType::kDouble, value);  // 1234567.5
//
// Nothing here throws for bad text or looks at the process locale.
#pragma once

#include <cstdint>
#include <string_view>

#include "schema/TableSchema.h"

namespace TextFile {

// A number of one of the numeric field types. Which member is set follows from the type asked for.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
struct NumberValue {
  union {
    std::int64_t integer = 0;  // kSmallInteger, kInteger, kBigInteger: within the type's range
    float single;              // kSingle
    double real;               // kDouble
  };
};

namespace NumberFormat {

// The type of a number: kInteger, kBigInteger (from field type version 320 on) or kDouble;
// kUndetermined for a text that is none. White space around it does not matter. Only the
// characters "-+0123456789.,Ee" make numbers, so infinity and not-a-number are text.
FieldType Classify(const Settings& settings, std::u16string_view text, std::uint32_t version);

// Converts to a numeric type. False when the whole text is not such a number, when it is out of
// the type's range, and for types that are not numeric; `value` is then unspecified. Words for
// infinity and not-a-number are floating-point numbers here.
bool Convert(const Settings& settings, std::u16string_view text, FieldType type,
             NumberValue& value);

// The same for texts that are hardly plain numbers (inference/PlainNumber.h), since that has been
// tried before.
bool ConvertOther(const Settings& settings, std::u16string_view text, FieldType type,
                  NumberValue& value);

// The same for the characters of a text in UTF-8 alone, of any length: false for numbers with
// grouping symbols, white space or a plus as well, and with a decimal comma for very short and long
// ones.
bool ConvertBytes(char16_t decimalSymbol, std::string_view text, FieldType type,
                  NumberValue& value) noexcept;

// The same without any of the shorter ways, which give the same values.
bool ConvertExactly(const Settings& settings, std::u16string_view text, FieldType type,
                    NumberValue& value);

// Whether the grouping symbols of `text` stand where they may: a first group of at most three
// characters, then groups of three, none behind the decimal symbol. False without any grouping
// symbol. An empty last group is not counted, so u"1,000," passes.
bool IsValidGrouping(const Settings& settings, std::u16string_view text) noexcept;

}  // namespace NumberFormat

// Reads an amount: with the currency symbol before or behind it (alone when the symbol is empty),
// made negative by "-" in front or by parentheses. False leaves `result` alone.
bool ParseCurrency(const CurrencySettings& settings, std::u16string_view text, double& result);

}  // namespace TextFile
