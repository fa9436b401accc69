// One column of a text table: its name, type, width and what its dates look like.
#pragma once

#include <cstdint>
#include <string>

namespace TextFile {

// The host's field type codes; they pass unchanged across the plug-in interfaces. Codes 7, 8, 9
// and 12 belong to the host and never occur in a text table.
enum class FieldType : std::int32_t {
  kUndetermined = -1,  // inference alone: no value seen yet
  kSmallInteger = 0,
  kInteger = 1,
  kSingle = 2,
  kDouble = 3,
  kString = 4,
  kDate = 5,
  kObjectId = 6,
  kGuid = 10,
  kGlobalId = 11,
  kBigInteger = 13,
  kDateOnly = 14,
  kTimeOnly = 15,
  kTimestampOffset = 16,
};

constexpr bool IsIntegerType(FieldType type) noexcept {
  return type == FieldType::kSmallInteger || type == FieldType::kInteger ||
         type == FieldType::kBigInteger;
}

constexpr bool IsNumericType(FieldType type) noexcept {
  return IsIntegerType(type) || type == FieldType::kSingle || type == FieldType::kDouble;
}

// The types that carry a day; a time alone does not.
constexpr bool IsDateType(FieldType type) noexcept {
  return type == FieldType::kDate || type == FieldType::kDateOnly ||
         type == FieldType::kTimestampOffset;
}

// The order of day, month and year in a date. Any: not fixed, all are tried.
enum class DateOrder : std::int32_t {
  kAny = 0,
  kMonthDayYear = 1,
  kDayMonthYear = 2,
  kYearMonthDay = 3,
};

// From this field type version on, whole numbers of 64 bits, dates without a time, times without
// a date, offsets and fractions of a second are told apart. Older hosts ask for 310.
inline constexpr std::uint32_t kFirstVersionWithNewTypes = 320;
inline constexpr std::uint32_t kCurrentFieldTypeVersion = 340;
inline constexpr std::uint32_t kOldFieldTypeVersion = 310;

// UTF-16 code units; the width of every column that declares none.
inline constexpr std::int32_t kDefaultTextWidth = 8000;

// How a column's dates are read (type, order, version) and written (pattern).
struct DateFieldFormat {
  FieldType type = FieldType::kDate;  // kDate, kDateOnly, kTimeOnly or kTimestampOffset
  DateOrder order = DateOrder::kAny;
  // Such as u"dd.MM.yyyy HH:mm"; empty when the column has none of its own. That of dates with an
  // offset is always the same.
  std::u16string pattern;
  std::uint32_t version = kCurrentFieldTypeVersion;
  bool fractionalSeconds = false;  // the scanned rows held fractions of a second
};

struct FieldDefinition {
  std::u16string name;
  FieldType type = FieldType::kString;
  std::int32_t width = kDefaultTextWidth;  // UTF-16 code units; schema.ini may say anything
  bool hasWidth = false;                   // a Width clause was read, or a width was assigned
  DateFieldFormat dateFormat;
  bool isCoordinate = false;          // a virtual coordinate field
  bool isPair = false;                // a virtual coordinate field parsed from two text columns
  std::int32_t coordinateFormat = 0;  // on the text column: LatLongFormat's code of its notation
  bool hasDatePrecision = false;      // created by the host with precision 1
};

}  // namespace TextFile
