#include "inference/RowConverter.h"

#include <new>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "host/CoreSupport/OleDays.h"
#include "host/CoreSupport/Variant.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "inference/NumberParsing.h"
#include "inference/PlainDate.h"
#include "platform/OleText.h"
#include "platform/ProcessorClones.h"

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

// `value` is empty.
void SetText(VARIANT& value, std::u16string_view text) {
  value.bstrVal = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
  if (value.bstrVal == nullptr) throw std::bad_alloc();
  value.vt = VT_BSTR;
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

// False, and `value` stays empty, when the type cannot hold the number or not by this way.
bool SetPlainNumber(FieldType type, const PlainNumber& number, VARIANT& value) noexcept {
  switch (type) {
    case FieldType::kDouble:
      if (!PlainDouble(number, value.dblVal)) return false;
      value.vt = VT_R8;
      return true;
    case FieldType::kInteger:
      if (!PlainInteger(number, value.lVal)) return false;
      value.vt = VT_I4;
      return true;
    default:
      if (!PlainInteger(number, value.llVal)) return false;
      value.vt = VT_I8;
      return true;
  }
}

// False, and `value` stays empty, for any text that is not a plain date.
bool ConvertPlainDate(const DateFieldFormat& format, std::u16string_view text,
                      VARIANT& value) noexcept {
  PlainDate date;
  if (!ReadPlainDate(format, text, date) ||
      !quenra::OleDateOf(date.day, date.seconds * 1000, value.date))
    return false;
  value.vt = VT_DATE;
  return true;
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
    : table_(std::move(table)),
      loadMessage_(loadMessage),
      reported_(reported),
      decimalSymbol_(table_->options.number.decimalSymbol) {
  ::VariantInit(&unwanted_);
  MakePlan();
}

void RowConverter::MakePlan() {
  const std::vector<FieldDefinition>& fields = table_->fields;
  const auto isVirtual = [&](std::size_t field, bool pair) {
    return field < fields.size() && fields[field].isCoordinate && fields[field].isPair == pair;
  };
  for (std::size_t i = 0; i < fields.size(); ++i) {
    Companions companions = Companions::kNone;
    if (fields[i].type == FieldType::kString && isVirtual(i + 1, false))
      companions = Companions::kOneText;
    else if (fields[i].type == FieldType::kString && isVirtual(i + 2, true) &&
             !fields[i + 1].isCoordinate)
      companions = Companions::kTwoTexts;
    const FieldType type = fields[i].type;
    const bool mayBePlainNumber =
        type == FieldType::kDouble || type == FieldType::kInteger || type == FieldType::kBigInteger;
    const DateFieldFormat& dates = fields[i].dateFormat;
    const DateFieldFormat* const plainDate =
        dates.type == type && HasPlainDates(dates) ? &dates : nullptr;
    plan_.push_back({&unwanted_, type, companions, mayBePlainNumber, plainDate});
  }
}

CLONED_FOR_PROCESSORS
std::size_t RowConverter::Convert(const Record& record) {
  if (!messages_.empty()) messages_.clear();
  if (!mismatches_.empty()) mismatches_.clear();
  const std::size_t columns = record.size();
  const std::size_t fields = plan_.size();
  std::size_t field = 0;
  for (std::size_t column = 0; column < columns && field < fields; ++column) {
    const FieldPlan& plan = plan_[field];
    const std::u16string_view text = record[column];
    VARIANT& value = *plan.slot;
    quenra::ClearVariant(value);
    if (text.empty() && plan.companions == Companions::kNone) {
      SetNull(value);
    } else if (plan.type != FieldType::kString) {
      if (!ConvertPlainly(plan, text, value)) ConvertCell({field, column, text}, value);
    } else if (plan.companions != Companions::kNone) {
      field = ConvertCoordinateText(field, record, column);
      continue;
    } else if (quenra::IsBlank(text)) {
      SetNull(value);
    } else if (&value != &unwanted_) {
      SetText(value, text);
    }
    ++field;
  }
  if (!mismatches_.empty()) ReportAll();
  return field;
}

// The short ways of plain numbers and dates. False leaves `value` empty and says nothing about the
// text.
inline bool RowConverter::ConvertPlainly(const FieldPlan& plan, std::u16string_view text,
                                         VARIANT& value) const noexcept {
  if (plan.mayBePlainNumber) {
    PlainNumber number;
    return readPlainNumber_(decimalSymbol_, text, number) &&
           SetPlainNumber(plan.type, number, value);
  }
  return plan.plainDate != nullptr && ConvertPlainDate(*plan.plainDate, text, value);
}

// Any text, for any type but kString; `value` is empty.
void RowConverter::ConvertCell(const Cell& cell, VARIANT& value) {
  if (quenra::IsBlank(cell.text)) return SetNull(value);
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
  if (NumberFormat::ConvertOther(settings, cell.text, type, number)) {
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
  if (NumberFormat::ConvertOther(table_->options.number, cell.text, FieldType::kDouble, number)) {
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
      SetDate(cell.field, parsed, value))
    return;
  SetNull(value);
  Report(cell, FieldType::kString, value);
}

// False for a day that does not exist.
bool RowConverter::SetDate(std::size_t field, const ParsedDateTime& parsed, VARIANT& value) {
  const FieldType type = plan_[field].type;
  DATE date = 0;
  if (type == FieldType::kTimeOnly)
    date = FractionOfDay(parsed.time);
  else if (!quenra::DatetimeHelper::ToOADate(parsed.time, date))
    return false;

  if (type != FieldType::kTimestampOffset) {
    value.date = date;
    value.vt = VT_DATE;
    return true;
  }
  if (!IsWanted(field)) return true;
  IUnknown* timestamp = MakeTimestamp(date, parsed.offsetMinutes);
  if (timestamp == nullptr) return false;
  value.punkVal = timestamp;
  value.vt = VT_UNKNOWN;
  return true;
}

// A text column whose values hold coordinates, with its virtual fields, and in the form with two
// texts its neighbour with them. Answers the field behind them, and moves `column` to the last
// one used. The slot of `field` is empty.
std::size_t RowConverter::ConvertCoordinateText(std::size_t field, const Record& record,
                                                std::size_t& column) {
  const auto deliver = [this](std::size_t to, std::u16string_view text) {
    if (IsWanted(to)) SetText(*plan_[to].slot, text);
  };
  const std::u16string_view text = record[column];
  const bool blank = quenra::IsBlank(text);
  if (blank)
    SetNull(*plan_[field].slot);
  else
    deliver(field, text);

  const bool twoTexts = plan_[field].companions == Companions::kTwoTexts;
  const std::size_t virtualField = field + (twoTexts ? 2 : 1);
  for (std::size_t i = field + 1; i < virtualField + 2; ++i) quenra::ClearVariant(*plan_[i].slot);
  VARIANT& firstValue = *plan_[virtualField].slot;
  VARIANT& secondValue = *plan_[virtualField + 1].slot;
  const bool parse = !blank && (IsWanted(virtualField) || IsWanted(virtualField + 1));

  double first = 0;
  double second = 0;
  bool parsed = false;
  if (!twoTexts) {
    parsed =
        parse && latLong_.ParseLatLong(text, table_->fields[field].coordinateFormat, first, second);
  } else if (++column < record.size()) {
    // Even a blank text of the second column is delivered as it stands.
    const std::u16string_view neighbour = record[column];
    deliver(field + 1, neighbour);
    parsed =
        parse && latLong_.ParseLatLong(text, neighbour, table_->fields[field + 1].coordinateFormat,
                                       first, second);
  }
  if (parsed) {
    SetDouble(firstValue, first);
    SetDouble(secondValue, second);
  } else {
    SetNull(firstValue);
    SetNull(secondValue);
  }
  return virtualField + 2;
}

void RowConverter::Report(const Cell& cell, FieldType found, VARIANT& value) {
  if (plan_[cell.field].reported) return;
  Mismatch mismatch;
  mismatch.fileColumn = cell.column;
  mismatch.fieldName = table_->fields[cell.field].name;
  mismatch.text = cell.text;
  mismatch.found = found;
  if (reported_ == Reported::kNull) SetNull(value);
  mismatches_.push_back({cell.field, mismatch});
}

// Together, since schema.ini is written anew each time.
void RowConverter::ReportAll() {
  std::vector<Mismatch> mismatches;
  for (const FieldMismatch& found : mismatches_) mismatches.push_back(found.mismatch);
  std::vector<std::u16string> messages = ReportMismatches(*table_, mismatches, loadMessage_);
  for (std::size_t i = 0; i < messages.size(); ++i) {
    plan_[mismatches_[i].field].reported = true;
    messages_[mismatches_[i].field] = std::move(messages[i]);
  }
}

}  // namespace TextFile
