#include "ValueReader.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <variant>

#include "DateReader.h"
#include "DateText.h"
#include "Failures.h"
#include "NumberText.h"
#include "Output.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/HostClasses.h"

namespace TextTables {

namespace {

using quenra::ComPtr;
using quenra::Variant;

// What a JSON value means before a field is asked for.
struct Null {};
struct Number {
  std::string_view spelling;  // as JSON has it; empty for what JSON cannot spell
  std::optional<std::int64_t> integer;
  double real = 0;
};
struct OleDate {
  DATE date = 0;
};
using Meaning = std::variant<Null, bool, Number, std::u16string_view, OleDate, Timestamp>;

// The whole of `text` as a number. Nothing for other texts and for numbers beyond a double.
std::optional<Number> NumberOf(std::string_view text) noexcept {
  Number number;
  number.spelling = text;
  const char* const end = text.data() + text.size();
  std::int64_t integer = 0;
  const auto whole = std::from_chars(text.data(), end, integer);
  if (whole.ec == std::errc() && whole.ptr == end) number.integer = integer;
  const auto real = std::from_chars(text.data(), end, number.real);
  if (text.empty() || real.ec != std::errc() || real.ptr != end) return std::nullopt;
  constexpr double kBeyond = 9223372036854775808.0;  // 2^63
  if (!number.integer && std::trunc(number.real) == number.real && number.real >= -kBeyond &&
      number.real < kBeyond)
    number.integer = static_cast<std::int64_t>(number.real);
  return number;
}

// A text that spells a number: as JSON does, or inf, -inf and nan.
std::optional<Number> NumberOf(std::u16string_view text) {
  std::string ascii;
  for (const char16_t unit : text) {
    if (unit >= 0x80) return std::nullopt;
    ascii += static_cast<char>(unit);
  }
  std::optional<Number> number = NumberOf(std::string_view(ascii));
  if (number) number->spelling = {};  // the digits go with this function
  return number;
}

bool IsDate(DATE date) noexcept {
  SYSTEMTIME time = {};
  return quenra::DatetimeHelper::FromOADate(date, time);
}

// --- Values that name their kind -------------------------------------------------------------

template <class Integer>
std::optional<Meaning> IntegerMeaning(const JsonDocument& document, const JsonNode& node) {
  if (node.kind != JsonKind::kNumber) return std::nullopt;
  const auto number = NumberOf(document.Source(node));
  if (!number || !number->integer || *number->integer < std::numeric_limits<Integer>::min() ||
      *number->integer > std::numeric_limits<Integer>::max())
    return std::nullopt;
  return *number;
}

std::optional<Number> FloatingValue(const JsonDocument& document, const JsonNode& node) {
  if (node.kind == JsonKind::kNumber) return NumberOf(document.Source(node));
  if (node.kind == JsonKind::kString) return NumberOf(document.Text(node));
  return std::nullopt;
}

// {"date":43835.4375,"offsetMinutes":120}
std::optional<Meaning> TimestampMeaning(const JsonDocument& document, std::size_t index) {
  const JsonNode& node = document.At(index);
  if (node.kind == JsonKind::kNull) return Null{};
  if (node.kind != JsonKind::kObject || node.count != 2) return std::nullopt;
  std::optional<Number> date;
  std::optional<Number> offset;
  for (std::size_t name = index + 1; name < node.next; name = document.At(name + 1).next) {
    const std::u16string_view key = document.Text(document.At(name));
    if (key == u"date") date = FloatingValue(document, document.At(name + 1));
    if (key == u"offsetMinutes") offset = FloatingValue(document, document.At(name + 1));
  }
  if (!date || !offset || !offset->integer || !IsDate(date->real)) return std::nullopt;
  if (*offset->integer < std::numeric_limits<SHORT>::min() ||
      *offset->integer > std::numeric_limits<SHORT>::max())
    return std::nullopt;
  return Timestamp{date->real, static_cast<SHORT>(*offset->integer)};
}

std::optional<Meaning> TypedMeaning(const JsonDocument& document, std::size_t object) {
  if (document.At(object).count != 1) return std::nullopt;
  const std::u16string_view kind = document.Text(document.At(object + 1));
  const std::size_t index = object + 2;
  const JsonNode& node = document.At(index);
  if (kind == u"VT_NULL" || kind == u"VT_EMPTY")
    return node.kind == JsonKind::kNull ? std::optional<Meaning>(Null{}) : std::nullopt;
  if (kind == u"VT_I2") return IntegerMeaning<std::int16_t>(document, node);
  if (kind == u"VT_I4") return IntegerMeaning<std::int32_t>(document, node);
  if (kind == u"VT_I8") return IntegerMeaning<std::int64_t>(document, node);
  if (kind == u"VT_UNKNOWN") return TimestampMeaning(document, index);
  if (kind == u"VT_R4" || kind == u"VT_R8") {
    const auto number = FloatingValue(document, node);
    return number ? std::optional<Meaning>(*number) : std::nullopt;
  }
  if (kind == u"VT_DATE") {
    const auto number = FloatingValue(document, node);
    return number ? std::optional<Meaning>(OleDate{number->real}) : std::nullopt;
  }
  // Kinds without a form of their own go by their number, as text.
  const bool isKind =
      kind == u"VT_BSTR" || (kind.starts_with(u"VT_") && kind.size() > 3 &&
                             kind.find_first_not_of(u"0123456789", 3) == std::u16string_view::npos);
  if (!isKind || node.kind != JsonKind::kString) return std::nullopt;
  return document.Text(node);
}

std::optional<Meaning> MeaningOf(const JsonDocument& document, std::size_t index) {
  const JsonNode& node = document.At(index);
  switch (node.kind) {
    case JsonKind::kNull:
      return Null{};
    case JsonKind::kFalse:
      return false;
    case JsonKind::kTrue:
      return true;
    case JsonKind::kNumber: {
      const auto number = NumberOf(document.Source(node));
      return number ? std::optional<Meaning>(*number) : std::nullopt;
    }
    case JsonKind::kString:
      return document.Text(node);
    case JsonKind::kObject:
      return TypedMeaning(document, index);
    case JsonKind::kArray:
      break;
  }
  return std::nullopt;
}

// --- Fields ----------------------------------------------------------------------------------

void SetNull(Variant& value) noexcept { value.Receive()->vt = VT_NULL; }

void SetDate(DATE date, Variant& value) noexcept {
  VARIANT* const place = value.Receive();
  place->date = date;
  place->vt = VT_DATE;
}

void SetTimestamp(const Timestamp& timestamp, Variant& value) {
  ComPtr<quenra::HostTimestampOffset> object;
  Check(quenra::CreateComponentInstance(quenra::CLSID_HostTimestampOffset, object.Receive()),
        u"timestamp");
  Check(object->SetValue(timestamp.date, timestamp.offsetMinutes), u"timestamp");
  VARIANT* const place = value.Receive();
  place->punkVal = object.Detach();
  place->vt = VT_UNKNOWN;
}

template <class Integer>
bool SetInteger(const Number& number, VARTYPE type, Integer VARIANT::*member, Variant& value) {
  if (!number.integer || *number.integer < std::numeric_limits<Integer>::min() ||
      *number.integer > std::numeric_limits<Integer>::max())
    return false;
  VARIANT* const place = value.Receive();
  place->*member = static_cast<Integer>(*number.integer);
  place->vt = type;
  return true;
}

bool SetSingle(double real, Variant& value) {
  if (std::isfinite(real) && std::fabs(real) > std::numeric_limits<float>::max()) return false;
  VARIANT* const place = value.Receive();
  place->fltVal = static_cast<float>(real);
  place->vt = VT_R4;
  return true;
}

bool SetNumber(const Number& number, LONG fieldType, Variant& value) {
  switch (fieldType) {
    case kSmallIntegerField:
      return SetInteger(number, VT_I2, &VARIANT::iVal, value);
    case kBigIntegerField:
      return SetInteger(number, VT_I8, &VARIANT::llVal, value);
    case kSingleField:
      return SetSingle(number.real, value);
    case kDoubleField:
      value = Variant(number.real);
      return true;
    default:
      return SetInteger(number, VT_I4, &VARIANT::lVal, value);
  }
}

bool ReadNumber(const Meaning& meaning, LONG fieldType, Variant& value) {
  if (const auto* number = std::get_if<Number>(&meaning))
    return SetNumber(*number, fieldType, value);
  if (const auto* truth = std::get_if<bool>(&meaning))
    return SetNumber({{}, *truth ? 1 : 0, *truth ? 1.0 : 0.0}, fieldType, value);
  const auto* text = std::get_if<std::u16string_view>(&meaning);
  if (text == nullptr) return false;
  if (text->empty()) {
    SetNull(value);
    return true;
  }
  const auto number = NumberOf(*text);
  return number && SetNumber(*number, fieldType, value);
}

void SetAscii(std::string_view text, Variant& value) {
  value = Variant(std::u16string(text.begin(), text.end()));
}

bool ReadText(const Meaning& meaning, Variant& value) {
  if (const auto* text = std::get_if<std::u16string_view>(&meaning)) {
    value = Variant(*text);
  } else if (const auto* truth = std::get_if<bool>(&meaning)) {
    SetAscii(*truth ? "true" : "false", value);
  } else if (const auto* number = std::get_if<Number>(&meaning)) {
    StringOutput digits;
    if (number->spelling.empty()) AppendShortest(digits, number->real);
    SetAscii(number->spelling.empty() ? digits.Take() : number->spelling, value);
  } else if (const auto* date = std::get_if<OleDate>(&meaning)) {
    SetAscii(IsoDate(date->date, DateParts::kBoth).View(), value);
  } else if (const auto* timestamp = std::get_if<Timestamp>(&meaning)) {
    SetAscii(IsoTimestamp(timestamp->date, timestamp->offsetMinutes).View(), value);
  }
  return true;
}

// Whether the field can hold all that the text says. A date alone stands for its midnight, a time
// alone for itself.
bool Fits(const IsoDateTime& iso, LONG fieldType) noexcept {
  switch (fieldType) {
    case kDateOnlyField:
      return iso.hasDate && !iso.offsetMinutes && std::trunc(iso.date) == iso.date;
    case kTimeOnlyField:
      return iso.hasTime && !iso.offsetMinutes && std::trunc(iso.date) == 0;
    case kTimestampOffsetField:
      return iso.hasDate;
    default:
      return true;
  }
}

bool ReadDateText(std::u16string_view text, LONG fieldType, Variant& value) {
  if (text.empty()) {
    SetNull(value);
    return true;
  }
  const auto iso = ReadIsoDate(text);
  if (!iso || !Fits(*iso, fieldType)) return false;
  if (iso->offsetMinutes) {
    SetTimestamp({iso->date, *iso->offsetMinutes}, value);
  } else {
    SetDate(iso->date, value);
  }
  return true;
}

bool ReadDate(const Meaning& meaning, LONG fieldType, Variant& value) {
  if (const auto* text = std::get_if<std::u16string_view>(&meaning))
    return ReadDateText(*text, fieldType, value);
  if (const auto* timestamp = std::get_if<Timestamp>(&meaning)) {
    SetTimestamp(*timestamp, value);
    return true;
  }
  DATE date = 0;
  if (const auto* ole = std::get_if<OleDate>(&meaning)) {
    date = ole->date;
  } else if (const auto* number = std::get_if<Number>(&meaning)) {
    date = number->real;
  } else {
    return false;
  }
  if (!IsDate(date)) return false;
  SetDate(date, value);
  return true;
}

}  // namespace

bool ReadFieldValue(const JsonDocument& document, std::size_t index, LONG fieldType,
                    Variant& value) {
  value.Reset();
  const std::optional<Meaning> meaning = MeaningOf(document, index);
  if (!meaning) return false;
  if (std::holds_alternative<Null>(*meaning)) {
    SetNull(value);
    return true;
  }
  switch (fieldType) {
    case kStringField:
    case kGuidField:
    case kGlobalIdField:
      return ReadText(*meaning, value);
    case kDateField:
    case kDateOnlyField:
    case kTimeOnlyField:
    case kTimestampOffsetField:
      return ReadDate(*meaning, fieldType, value);
    default:
      return ReadNumber(*meaning, fieldType, value);
  }
}

}  // namespace TextTables
