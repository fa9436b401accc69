// Reads one JSON value as a field of a type takes it. The first character chooses the type: 'a' for
// the first of Fields.h, and so on.
//
// Holds: a value that is refused leaves nothing; one that is taken is of a kind that its field has;
// written as rows --format typed and jsonl write it and read again it is the same value, down to
// the last bit, and written the same.

#include <bit>
#include <cmath>
#include <optional>
#include <string>

#include "FuzzInput.h"
#include "host/CoreSupport/Variant.h"
#include "platform/OleText.h"
#include "texttables/DateText.h"
#include "texttables/Fields.h"
#include "texttables/JsonReader.h"
#include "texttables/JsonValueText.h"
#include "texttables/RowWriter.h"
#include "texttables/ValueReader.h"

namespace {

using Fuzz::Check;
using quenra::Variant;
using namespace TextTables;

constexpr LONG kTypes[] = {kSmallIntegerField,   kIntegerField,    kSingleField,   kDoubleField,
                           kStringField,         kDateField,       kObjectIdField, kGuidField,
                           kGlobalIdField,       kBigIntegerField, kDateOnlyField, kTimeOnlyField,
                           kTimestampOffsetField};

bool MayHold(LONG type, VARTYPE kind) {
  switch (type) {
    case kSmallIntegerField:
      return kind == VT_I2;
    case kBigIntegerField:
      return kind == VT_I8;
    case kSingleField:
      return kind == VT_R4;
    case kDoubleField:
      return kind == VT_R8;
    case kStringField:
    case kGuidField:
    case kGlobalIdField:
      return kind == VT_BSTR;
    case kDateField:
    case kDateOnlyField:
    case kTimeOnlyField:
    case kTimestampOffsetField:
      return kind == VT_DATE || kind == VT_UNKNOWN;
    default:
      return kind == VT_I4;
  }
}

std::optional<Variant> Read(const std::string& json, LONG type) {
  JsonDocument document;
  try {
    document.Parse(json);
  } catch (const JsonError&) {
    return std::nullopt;
  }
  Variant value;
  if (ReadFieldValue(document, 0, type, value)) {
    Check(value.Type() == VT_NULL || MayHold(type, value.Type()));
    return value;
  }
  Check(value.Type() == VT_EMPTY);
  return std::nullopt;
}

// One value as rows --format typed has it, without the brackets of the row.
std::string Typed(const Variant& value, LONG type) {
  StringOutput output;
  const auto writer = MakeTypedRowWriter(output);
  const OutputColumn column{0, type, 0};
  const TableFields nameless;
  writer->Begin({&column, 1}, nameless);
  quenra::HostFieldValue slot{};
  slot.value = value.Get();  // borrowed
  writer->Write(&slot);
  writer->End();
  const std::string row = output.Take();
  Check(row.size() > 3 && row.front() == '[' && row.ends_with("]\n"));
  return row.substr(1, row.size() - 3);
}

std::string Natural(const Variant& value, LONG type) {
  StringOutput output;
  AppendJsonValue(output, value.Get(), type);
  return output.Take();
}

template <class Number>
bool SameReal(Number a, Number b) {
  return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

bool Same(const Variant& first, const Variant& second) {
  if (first.Type() != second.Type()) return false;
  const VARIANT& a = first.Get();
  const VARIANT& b = second.Get();
  switch (a.vt) {
    case VT_I2:
      return a.iVal == b.iVal;
    case VT_I4:
      return a.lVal == b.lVal;
    case VT_I8:
      return a.llVal == b.llVal;
    case VT_R4:
      return SameReal(a.fltVal, b.fltVal);
    case VT_R8:
      return SameReal(a.dblVal, b.dblVal);
    case VT_DATE:
      return SameReal(a.date, b.date);
    case VT_BSTR:
      return ViewOf(a.bstrVal) == ViewOf(b.bstrVal);
    case VT_UNKNOWN: {
      Timestamp x;
      Timestamp y;
      return ReadTimestamp(a.punkVal, x) && ReadTimestamp(b.punkVal, y) &&
             SameReal(x.date, y.date) && x.offsetMinutes == y.offsetMinutes;
    }
    default:
      return true;
  }
}

// Dates are written to the millisecond, and without what their field does not have.
bool IsDateValue(const Variant& value) {
  return value.Type() == VT_DATE || value.Type() == VT_UNKNOWN;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const LONG type =
      kTypes[(data[0] + std::size(kTypes) - 'a' % std::size(kTypes)) % std::size(kTypes)];
  const std::optional<Variant> value =
      Read(std::string(reinterpret_cast<const char*>(data) + 1, size - 1), type);
  if (!value.has_value()) return 0;

  const std::string typed = Typed(*value, type);
  const std::optional<Variant> again = Read(typed, type);
  Check(again.has_value() && Same(*value, *again) && Typed(*again, type) == typed);

  const std::string natural = Natural(*value, type);
  const std::optional<Variant> other = Read(natural, type);
  if (IsDateValue(*value)) {
    if (other.has_value()) Check(Natural(*other, type) == natural);
    return 0;
  }
  Check(other.has_value() && Same(*value, *other));
  return 0;
}
