#include "inference/RowConverter.h"

#include <new>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "host/CoreSupport/Variant.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "inference/NumberParsing.h"
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
  value.vt = VT_R8;
  value.dblVal = number;
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
                           MessageLoader loadMessage)
    : table_(std::move(table)), loadMessage_(loadMessage) {
  MakePlan();
}

RowConverter::~RowConverter() {
  for (VARIANT& value : row_) ::VariantClear(&value);
}

void RowConverter::MakePlan() {
  const std::vector<FieldDefinition>& fields = table_->fields;
  const auto isVirtual = [&](std::size_t field, bool pair) {
    return field < fields.size() && fields[field].isCoordinate && fields[field].isPair == pair;
  };
  plan_.reserve(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    FieldPlan entry{fields[i].type};
    if (entry.type == FieldType::kString && isVirtual(i + 1, false))
      entry.companions = Companions::kOneText;
    else if (entry.type == FieldType::kString && isVirtual(i + 2, true) &&
             !fields[i + 1].isCoordinate)
      entry.companions = Companions::kTwoTexts;
    plan_.push_back(entry);
  }
  row_.resize(fields.size());
  for (VARIANT& value : row_) ::VariantInit(&value);
}

std::size_t RowConverter::Convert(const Record& record) {
  if (!messages_.empty()) messages_.clear();
  for (VARIANT& value : row_) quenra::ClearVariant(value);

  std::size_t field = 0;
  for (std::size_t column = 0; column < record.size() && field < plan_.size(); ++column) {
    const std::u16string_view text = record[column];
    if (plan_[field].companions != Companions::kNone) {
      const bool twoTexts = plan_[field].companions == Companions::kTwoTexts;
      ConvertCoordinateText(field, record, column);
      field += twoTexts ? 4 : 3;
      if (twoTexts) ++column;
      continue;
    }
    if (quenra::IsBlank(text))
      SetNull(row_[field]);
    else
      ConvertField(field, column, text);
    ++field;
  }
  return field;
}

void RowConverter::ConvertField(std::size_t field, std::size_t column, std::u16string_view text) {
  switch (plan_[field].type) {
    case FieldType::kSmallInteger:
    case FieldType::kInteger:
    case FieldType::kSingle:
    case FieldType::kBigInteger:
      return ConvertNumber(field, column, text);
    case FieldType::kDouble:
      return ConvertDouble(field, column, text);
    case FieldType::kString:
      return SetText(field, text);
    case FieldType::kDate:
    case FieldType::kDateOnly:
    case FieldType::kTimeOnly:
    case FieldType::kTimestampOffset:
      return ConvertDate(field, column, text);
    default:
      // Types that no text table has: the value stays empty.
      return;
  }
}

// A number that the type cannot hold is delivered as the Double that it is, and reported.
void RowConverter::ConvertNumber(std::size_t field, std::size_t column, std::u16string_view text) {
  const NumberFormat::Settings& settings = table_->options.number;
  NumberValue number;
  if (NumberFormat::Convert(settings, text, plan_[field].type, number)) {
    SetNumber(row_[field], plan_[field].type, number);
  } else if (NumberFormat::Convert(settings, text, FieldType::kDouble, number)) {
    SetDouble(row_[field], number.real);
    Report(field, column, text, FieldType::kDouble);
  } else {
    SetNull(row_[field]);
    Report(field, column, text, FieldType::kString);
  }
}

void RowConverter::ConvertDouble(std::size_t field, std::size_t column, std::u16string_view text) {
  NumberValue number;
  double amount = 0;
  if (NumberFormat::Convert(table_->options.number, text, FieldType::kDouble, number)) {
    SetDouble(row_[field], number.real);
  } else if (ParseCurrency(table_->options.currency, text, amount)) {
    SetDouble(row_[field], amount);
  } else {
    SetNull(row_[field]);
    Report(field, column, text, FieldType::kString);
  }
}

void RowConverter::ConvertDate(std::size_t field, std::size_t column, std::u16string_view text) {
  ParsedDateTime parsed;
  if (ParseDateTime(table_->fields[field].dateFormat, text, parsed) &&
      SetDate(row_[field], plan_[field].type, parsed))
    return;
  SetNull(row_[field]);
  Report(field, column, text, FieldType::kString);
}

// False for a day that does not exist.
bool RowConverter::SetDate(VARIANT& value, FieldType type, const ParsedDateTime& parsed) {
  DATE date = 0;
  if (type == FieldType::kTimeOnly)
    date = FractionOfDay(parsed.time);
  else if (!quenra::DatetimeHelper::ToOADate(parsed.time, date))
    return false;

  if (type != FieldType::kTimestampOffset) {
    value.vt = VT_DATE;
    value.date = date;
    return true;
  }
  IUnknown* timestamp = MakeTimestamp(date, parsed.offsetMinutes);
  if (timestamp == nullptr) return false;
  value.vt = VT_UNKNOWN;
  value.punkVal = timestamp;
  return true;
}

void RowConverter::SetText(std::size_t field, std::u16string_view text) {
  if (!plan_[field].wanted) return;
  VARIANT& value = row_[field];
  value.bstrVal = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
  if (value.bstrVal == nullptr) throw std::bad_alloc();
  value.vt = VT_BSTR;
}

// A text column whose values hold coordinates, with its virtual fields, and in the form with two
// texts its neighbour with them.
void RowConverter::ConvertCoordinateText(std::size_t field, const Record& record,
                                         std::size_t column) {
  const std::u16string_view text = record[column];
  const bool blank = quenra::IsBlank(text);
  if (blank)
    SetNull(row_[field]);
  else
    SetText(field, text);

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
      SetText(field + 1, neighbour);
      parsed = !blank && WantsCoordinates(virtualField) &&
               latLong_.ParseLatLong(text, neighbour, table_->fields[field + 1].coordinateFormat,
                                     first, second);
    }
  }
  if (parsed) {
    SetDouble(row_[virtualField], first);
    SetDouble(row_[virtualField + 1], second);
  } else {
    SetNull(row_[virtualField]);
    SetNull(row_[virtualField + 1]);
  }
}

bool RowConverter::WantsCoordinates(std::size_t virtualField) const noexcept {
  return plan_[virtualField].wanted || plan_[virtualField + 1].wanted;
}

void RowConverter::Report(std::size_t field, std::size_t column, std::u16string_view text,
                          FieldType found) {
  if (plan_[field].reported) return;
  Mismatch mismatch;
  mismatch.fileColumn = column;
  mismatch.fieldName = table_->fields[field].name;
  mismatch.text = text;
  mismatch.found = found;
  plan_[field].reported = true;
  messages_[field] = ReportMismatch(*table_, mismatch, loadMessage_);
}

void RowConverter::MoveValue(std::size_t field, VARIANT& slot) noexcept {
  slot = row_[field];
  row_[field].vt = VT_EMPTY;
}

const std::u16string* RowConverter::MessageOf(std::size_t field) const noexcept {
  if (messages_.empty()) return nullptr;
  const auto found = messages_.find(field);
  return found == messages_.end() ? nullptr : &found->second;
}

}  // namespace TextFile
