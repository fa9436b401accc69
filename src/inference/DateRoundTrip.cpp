#include "inference/DateRoundTrip.h"

#include <algorithm>
#include <iterator>

#include "inference/DateFormatting.h"
#include "inference/DateParsing.h"
#include "schema/ParseError.h"
#include "schema/SchemaColumnLine.h"

namespace TextFile {

namespace {

// One of each kind that a pattern may lose: days that could be months and days that could not,
// years that two digits do not tell, midnight, hours on both sides of noon, milliseconds.
constexpr SYSTEMTIME kSamples[] = {
    {2020, 1, 0, 2, 3, 4, 5, 0},    {1987, 11, 0, 23, 13, 45, 56, 0}, {2031, 12, 0, 31, 0, 0, 0, 0},
    {1850, 10, 0, 9, 12, 0, 30, 0}, {2099, 6, 0, 7, 23, 59, 59, 999}, {100, 2, 0, 28, 0, 30, 0, 7},
};

bool SameDay(const SYSTEMTIME& a, const SYSTEMTIME& b) noexcept {
  return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay;
}
bool SameTime(const SYSTEMTIME& a, const SYSTEMTIME& b) noexcept {
  return a.wHour == b.wHour && a.wMinute == b.wMinute && a.wSecond == b.wSecond &&
         a.wMilliseconds == b.wMilliseconds;
}

bool SampleReadsBack(const DatePattern& pattern, const DateFieldFormat& format, SYSTEMTIME sample) {
  if (format.type == FieldType::kDateOnly)
    sample.wHour = sample.wMinute = sample.wSecond = sample.wMilliseconds = 0;
  std::string bytes;
  pattern.Append(sample, bytes);
  // What is not ASCII no date holds, so that it may become any other character here.
  std::u16string text;
  for (const char byte : bytes) text += static_cast<unsigned char>(byte);
  ParsedDateTime read;
  if (!ParseDateTime(format, text, read)) return false;
  return (format.type == FieldType::kTimeOnly || SameDay(read.time, sample)) &&
         SameTime(read.time, sample);
}

}  // namespace

bool ReadsBack(std::u16string_view pattern, FieldType type, DateOrder order) {
  DateFieldFormat format;
  format.type = type;
  format.order = order;
  const DatePattern written(pattern);
  return std::all_of(std::begin(kSamples), std::end(kSamples), [&](const SYSTEMTIME& sample) {
    return SampleReadsBack(written, format, sample);
  });
}

bool ColumnReadsBack(std::u16string_view pattern, FieldType type) {
  const std::u16string clause = DatePatternClause(pattern, false);
  if (clause.empty()) return false;
  FieldDefinition read;
  try {
    ParseColumnLine(u"Col1", u"Name Date" + clause, read);
  } catch (const ParseError&) {
    return false;
  }
  return read.type == type && ReadsBack(read.dateFormat.pattern, type, read.dateFormat.order);
}

std::u16string ReadablePattern(FieldType type, DateOrder order) {
  constexpr std::u16string_view kTime = u"HH:mm:ss";
  std::u16string pattern;
  if (type == FieldType::kTimeOnly) return pattern.append(kTime);
  switch (order) {
    case DateOrder::kMonthDayYear:
      pattern = u"MM/dd/yyyy";
      break;
    case DateOrder::kDayMonthYear:
      pattern = u"dd.MM.yyyy";
      break;
    default:
      pattern = u"yyyy-MM-dd";
      break;
  }
  if (type == FieldType::kDate) pattern.append(u" ").append(kTime);
  return pattern;
}

}  // namespace TextFile
