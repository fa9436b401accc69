// Feeds arbitrary text to the date parser. The first byte holds switches: one for times alone, one
// for the old field types.
//
// Holds: what the classifier calls a date of some orders reads in exactly these orders; with no
// order fixed it reads as one of them; every component is within its range; older hosts see no
// type that they do not know; plain dates are read the same the shorter way.

#include <optional>

#include "FuzzInput.h"
#include "inference/DateParsing.h"
#include "inference/PlainCells.h"

namespace {

using Fuzz::Check;
using TextFile::DateClass;
using TextFile::DateOrder;
using TextFile::FieldType;
using TextFile::ParsedDateTime;

constexpr DateOrder kOrders[] = {DateOrder::kMonthDayYear, DateOrder::kDayMonthYear,
                                 DateOrder::kYearMonthDay};

// The shorter way gives what the exact way has given.
void CheckPlainDate(const TextFile::DateFieldFormat& format, std::u16string_view text, bool read,
                    const ParsedDateTime& value) {
  if (!TextFile::HasPlainDates(format)) return;
  std::string bytes;
  for (const char16_t unit : text) bytes += unit < 0x80 ? static_cast<char>(unit) : '\xC3';
  TextFile::PlainDate date;
  TextFile::PlainDate ofBytes;
  TextFile::PlainDate quick;
  const bool isPlain = TextFile::ReadPlainDate(format, text, date);
  Check(TextFile::ReadPlainDate(format, bytes, ofBytes) == isPlain);
  const std::string padded = bytes + std::string(TextFile::kPlainDateBytes, '7');
  const std::string_view view = std::string_view(padded).substr(0, bytes.size());
  Check(TextFile::QuickestPlainCells().readDate(format, view, quick) == isPlain);
  if (!isPlain) return;
  for (const TextFile::PlainDate& other : {ofBytes, quick})
    Check(other.day.year == date.day.year && other.day.month == date.day.month &&
          other.day.day == date.day.day && other.seconds == date.seconds);
  const SYSTEMTIME& time = value.time;
  Check(read && date.day.year == time.wYear && date.day.month == time.wMonth &&
        date.day.day == time.wDay && time.wMilliseconds == 0 && !value.fractionalSeconds);
  Check(date.seconds == (time.wHour * 60 + time.wMinute) * 60 + time.wSecond);
}

std::optional<ParsedDateTime> Parse(FieldType type, DateOrder order, std::uint32_t version,
                                    std::u16string_view text) {
  TextFile::DateFieldFormat format;
  format.type = type;
  format.order = order;
  format.version = version;
  ParsedDateTime value;
  const bool read = TextFile::ParseDateTime(format, text, value);
  CheckPlainDate(format, text, read, value);
  if (!read) return std::nullopt;
  return value;
}

void CheckRanges(FieldType type, const ParsedDateTime& value) {
  const SYSTEMTIME& time = value.time;
  if (type != FieldType::kTimeOnly) {
    Check(time.wMonth >= 1 && time.wMonth <= 12 && time.wDay >= 1 && time.wDay <= 31);
  }
  Check(time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60 && time.wMilliseconds < 1000);
  if (type == FieldType::kDateOnly)
    Check(time.wHour == 0 && time.wMinute == 0 && time.wSecond == 0 && time.wMilliseconds == 0);
  if (!value.fractionalSeconds) Check(time.wMilliseconds == 0);
  if (type != FieldType::kTimestampOffset) Check(value.offsetMinutes == 0);
}

bool SameTime(const ParsedDateTime& first, const ParsedDateTime& second) {
  const SYSTEMTIME& a = first.time;
  const SYSTEMTIME& b = second.time;
  return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay && a.wHour == b.wHour &&
         a.wMinute == b.wMinute && a.wSecond == b.wSecond && a.wMilliseconds == b.wMilliseconds &&
         first.offsetMinutes == second.offsetMinutes;
}

// Reads the text as a type in every order; the ranges hold whether it is classified or not.
TextFile::DateOrders ReadInEveryOrder(FieldType type, std::uint32_t version,
                                      std::u16string_view text) {
  TextFile::DateOrders orders;
  const auto any = Parse(type, DateOrder::kAny, version, text);
  bool anyIsOne = false;
  for (const DateOrder order : kOrders) {
    const auto value = Parse(type, order, version, text);
    if (!value.has_value()) continue;
    CheckRanges(type, *value);
    orders.Add(order);
    anyIsOne = anyIsOne || (any.has_value() && SameTime(*any, *value));
  }
  if (any.has_value()) Check(anyIsOne);
  return orders;
}

void CheckClass(const DateClass& found, bool allowTimeOnly, std::uint32_t version,
                std::u16string_view text) {
  if (version < TextFile::kFirstVersionWithNewTypes) Check(found.type == FieldType::kDate);
  if (found.type == FieldType::kTimeOnly) {
    Check(allowTimeOnly && found.orders.empty());
    const auto value = Parse(FieldType::kTimeOnly, DateOrder::kAny, version, text);
    Check(value.has_value());
    CheckRanges(FieldType::kTimeOnly, *value);
    return;
  }
  Check(TextFile::IsDateType(found.type) && !found.orders.empty());
  Check(ReadInEveryOrder(found.type, version, text) == found.orders);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  const unsigned switches = input.TakeSwitches();
  const std::u16string text = input.RestAsText();
  const bool allowTimeOnly = (switches & 0x01) != 0;
  const std::uint32_t version =
      (switches & 0x02) != 0 ? TextFile::kOldFieldTypeVersion : TextFile::kCurrentFieldTypeVersion;
  DateClass found;
  if (TextFile::ClassifyDate(text, version, allowTimeOnly, found)) {
    CheckClass(found, allowTimeOnly, version, text);
    return 0;
  }
  for (const FieldType type :
       {FieldType::kDate, FieldType::kDateOnly, FieldType::kTimestampOffset}) {
    const bool read = !ReadInEveryOrder(type, version, text).empty();
    // Only the first of the types is looked for on behalf of older hosts.
    if (read) Check(version < TextFile::kFirstVersionWithNewTypes && type != FieldType::kDate);
  }
  return 0;
}
