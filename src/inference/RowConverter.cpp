#include "inference/RowConverter.h"

#include <new>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "host/CoreSupport/Variant.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "inference/NumberParsing.h"
#include "inference/PlainNumber.h"
#include "platform/OleText.h"

namespace TextFile {

namespace {

constexpr double kMillisecondsPerDay = 8.64e7;

DATE FractionOfDay(const SYSTEMTIME& time) noexcept {
  const int seconds = (time.wHour * 60 + time.wMinute) * 60 + time.wSecond;
  return (seconds * 1000 + time.wMilliseconds) / kMillisecondsPerDay;
}

void SetNull(VARIANT& value) noexcept { value.vt = VT_NULL; }

void SetDouble(VARIANT& value, double number) noexcept {
  value.dblVal = number;
  value.vt = VT_R8;
}

void SetNumber(VARIANT& value, FieldType type, const NumberValue& number) noexcept {
  switch (type) {
    case FieldType::kSmallInteger:
      value.vt = VT_I2;
      value.iVal = static_cast<SHORT>(number.integer);
      break;
    case FieldType::kInteger:
      value.vt = VT_I4;
      value.lVal = static_cast<LONG>(number.integer);
      break;
    case FieldType::kBigInteger:
      value.vt = VT_I8;
      value.llVal = number.integer;
      break;
    case FieldType::kSingle:
      value.vt = VT_R4;
      value.fltVal = number.single;
      break;
    default:
      SetDouble(value, number.real);
      break;
  }
}

// The host's object for a date with an offset; null when the host cannot make one.
IUnknown* MakeTimestamp(DATE date, SHORT offsetMinutes) noexcept {
  quenra::HostTimestampOffset* timestamp = nullptr;
  if (FAILED(quenra::CreateComponentInstance(quenra::CLSID_HostTimestampOffset, &timestamp)))
    return nullptr;
  if (SUCCEEDED(timestamp->SetValue(date, offsetMinutes))) return timestamp;
  timestamp->Release();
  return nullptr;
}

}  // namespace

RowConverter::RowConverter(std::shared_ptr<const TextDatasetDescription> table,
                           MessageLoader loadMessage, Reported reported)
    : table_(std::move(table)), loadMessage_(loadMessage), reported_(reported) {
  ::VariantInit(&unwanted_);
  MakePlan();
}

void RowConverter::MakePlan() {
  const std::vector<FieldDefinition>& fields = table_->fields;
  const auto isVirtual = [&](std::size_t field, bool pair) {
    return field < fields.size() && fields[field].isCoordinate && fields[field].isPair == pair;
  };
  plan_.resize(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    plan_[i].type = fields[i].type;
    if (fields[i].type != FieldType::kString) continue;
    if (isVirtual(i + 1, false))
      plan_[i].companions = Companions::kOneText;
    else if (isVirtual(i + 2, true) && !fields[i + 1].isCoordinate)
      plan_[i].companions = Companions::kTwoTexts;
  }
}

std::size_t RowConverter::Convert(const Record& record) {
  if (!messages_.empty()) messages_.clear();
  const std::size_t columns = record.size();
  std::size_t field = 0;
  for (std::size_t column = 0; column < columns && field < plan_.size(); ++column) {
    const Companions companions = plan_[field].companions;
    if (companions == Companions::kNone) {
      ConvertCell({field, column, record[column]});
      ++field;
    } else {
      const bool twoTexts = companions == Companions::kTwoTexts;
      ConvertCoordinateText(field, record, column);
      field += twoTexts ? 4 : 3;
      if (twoTexts) ++column;
    }
  }
  return field;
}

void RowConverter::ConvertCell(const Cell& cell) {
  const FieldPlan& plan = plan_[cell.field];
  if (plan.type == FieldType::kString) {
    if (quenra::IsBlank(cell.text))
      DeliverNull(cell.field);
    else
      DeliverText(cell.field, cell.text);
    return;
  }
  VARIANT& value = ClearedSlot(cell.field);
  if (ConvertPlainly(plan.type, cell.text, value)) return;
  if (quenra::IsBlank(cell.text))
    SetNull(value);
  else
    ConvertExactly(cell, value);
}

// The short way of plain numbers. False leaves `value` empty and says nothing about the text.
bool RowConverter::ConvertPlainly(FieldType type, std::u16string_view text,
                                  VARIANT& value) const noexcept {
  if (type != FieldType::kDouble && type != FieldType::kInteger && type != FieldType::kBigInteger)
    return false;
  PlainNumber number;
  if (!ReadPlainNumber(table_->options.number.decimalSymbol, text, number)) return false;
  if (type == FieldType::kDouble) {
    if (!PlainDouble(number, value.dblVal)) return false;
    value.vt = VT_R8;
  } else if (type == FieldType::kInteger) {
    if (!PlainInteger(number, value.lVal)) return false;
    value.vt = VT_I4;
  } else {
    if (!PlainInteger(number, value.llVal)) return false;
    value.vt = VT_I8;
  }
  return true;
}

void RowConverter::ConvertExactly(const Cell& cell, VARIANT& value) {
  switch (plan_[cell.field].type) {
    case FieldType::kSmallInteger:
    case FieldType::kInteger:
    case FieldType::kSingle:
    case FieldType::kBigInteger:
      return ConvertNumber(cell, value);
    case FieldType::kDouble:
      return ConvertDouble(cell, value);
    case FieldType::kDate:
    case FieldType::kDateOnly:
    case FieldType::kTimeOnly:
    case FieldType::kTimestampOffset:
      return ConvertDate(cell, value);
    default:
      // Types that no text table has: the value stays empty.
      return;
  }
}

// A number that the type cannot hold is delivered as the Double that it is, and reported.
void RowConverter::ConvertNumber(const Cell& cell, VARIANT& value) {
  const NumberFormat::Settings& settings = table_->options.number;
  const FieldType type = plan_[cell.field].type;
  NumberValue number;
  if (NumberFormat::Convert(settings, cell.text, type, number)) {
    SetNumber(value, type, number);
  } else if (NumberFormat::Convert(settings, cell.text, FieldType::kDouble, number)) {
    SetDouble(value, number.real);
    Report(cell, FieldType::kDouble, value);
  } else {
    SetNull(value);
    Report(cell, FieldType::kString, value);
  }
}

void RowConverter::ConvertDouble(const Cell& cell, VARIANT& value) {
  NumberValue number;
  double amount = 0;
  if (NumberFormat::Convert(table_->options.number, cell.text, FieldType::kDouble, number)) {
    SetDouble(value, number.real);
  } else if (ParseCurrency(table_->options.currency, cell.text, amount)) {
    SetDouble(value, amount);
  } else {
    SetNull(value);
    Report(cell, FieldType::kString, value);
  }
}

void RowConverter::ConvertDate(const Cell& cell, VARIANT& value) {
  ParsedDateTime parsed;
  if (ParseDateTime(table_->fields[cell.field].dateFormat, cell.text, parsed) &&
      SetDate(cell, parsed, value))
    return;
  SetNull(value);
  Report(cell, FieldType::kString, value);
}

// False for a day that does not exist.
bool RowConverter::SetDate(const Cell& cell, const ParsedDateTime& parsed, VARIANT& value) {
  const FieldPlan& plan = plan_[cell.field];
  DATE date = 0;
  if (plan.type == FieldType::kTimeOnly)
    date = FractionOfDay(parsed.time);
  else if (!quenra::DatetimeHelper::ToOADate(parsed.time, date))
    return false;

  if (plan.type != FieldType::kTimestampOffset) {
    value.date = date;
    value.vt = VT_DATE;
    return true;
  }
  if (plan.slot == nullptr) return true;
  IUnknown* timestamp = MakeTimestamp(date, parsed.offsetMinutes);
  if (timestamp == nullptr) return false;
  value.punkVal = timestamp;
  value.vt = VT_UNKNOWN;
  return true;
}

// Where the value of a field goes, VT_EMPTY.
VARIANT& RowConverter::ClearedSlot(std::size_t field) noexcept {
  VARIANT* const slot = plan_[field].slot;
  VARIANT& value = slot != nullptr ? *slot : unwanted_;
  quenra::ClearVariant(value);
  return value;
}

void RowConverter::DeliverText(std::size_t field, std::u16string_view text) {
  if (plan_[field].slot == nullptr) return;
  VARIANT& value = ClearedSlot(field);
  value.bstrVal = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
  if (value.bstrVal == nullptr) throw std::bad_alloc();
  value.vt = VT_BSTR;
}

void RowConverter::DeliverNull(std::size_t field) noexcept { SetNull(ClearedSlot(field)); }

// A text column whose values hold coordinates, with its virtual fields, and in the form with two
// texts its neighbour with them.
void RowConverter::ConvertCoordinateText(std::size_t field, const Record& record,
                                         std::size_t column) {
  const std::u16string_view text = record[column];
  const bool blank = quenra::IsBlank(text);
  if (blank)
    DeliverNull(field);
  else
    DeliverText(field, text);

  double first = 0;
  double second = 0;
  bool parsed = false;
  std::size_t virtualField = field + 1;
  if (plan_[field].companions == Companions::kOneText) {
    parsed = !blank && WantsCoordinates(virtualField) &&
             latLong_.ParseLatLong(text, table_->fields[field].coordinateFormat, first, second);
  } else {
    ++virtualField;
    if (column + 1 < record.size()) {
      // Even a blank text of the second column is delivered as it stands.
      const std::u16string_view neighbour = record[column + 1];
      DeliverText(field + 1, neighbour);
      parsed = !blank && WantsCoordinates(virtualField) &&
               latLong_.ParseLatLong(text, neighbour, table_->fields[field + 1].coordinateFormat,
                                     first, second);
    } else {
      ClearedSlot(field + 1);
    }
  }
  if (parsed) {
    SetDouble(ClearedSlot(virtualField), first);
    SetDouble(ClearedSlot(virtualField + 1), second);
  } else {
    DeliverNull(virtualField);
    DeliverNull(virtualField + 1);
  }
}

bool RowConverter::WantsCoordinates(std::size_t virtualField) const noexcept {
  return plan_[virtualField].slot != nullptr || plan_[virtualField + 1].slot != nullptr;
}

void RowConverter::Report(const Cell& cell, FieldType found, VARIANT& value) {
  if (plan_[cell.field].reported) return;
  Mismatch mismatch;
  mismatch.fileColumn = cell.column;
  mismatch.fieldName = table_->fields[cell.field].name;
  mismatch.text = cell.text;
  mismatch.found = found;
  plan_[cell.field].reported = true;
  if (reported_ == Reported::kNull) SetNull(value);
  messages_[cell.field] = ReportMismatch(*table_, mismatch, loadMessage_);
}

}  // namespace TextFile
