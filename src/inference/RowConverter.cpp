#include "inference/RowConverter.h"

#include <algorithm>
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
inline bool SetPlainNumber(FieldType type, const PlainNumber& number, VARIANT& value) noexcept {
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

// Whether SetPlainNumber would set it.
inline bool IsPlainValue(FieldType type, const PlainNumber& number) noexcept {
  if (type == FieldType::kDouble) return IsPlainDouble(number);
  LONG integer = 0;
  LONGLONG bigInteger = 0;
  return type == FieldType::kInteger ? PlainInteger(number, integer)
                                     : PlainInteger(number, bigInteger);
}

// False, and `value` stays empty, for any text that is not a plain date.
template <class Character>
inline bool ConvertPlainDate(const DateFieldFormat& format, std::basic_string_view<Character> text,
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

std::u16string_view TextOf(const Record& record, std::size_t column, UnitBuffer&) noexcept {
  return record[column];
}
std::u16string_view TextOf(const PlainRow& row, std::size_t column, UnitBuffer& buffer) {
  return row.Text(column, buffer);
}

}  // namespace

RowConverter::RowConverter(std::shared_ptr<const TextDatasetDescription> table,
                           MessageLoader loadMessage, Reported reported)
    : table_(std::move(table)),
      loadMessage_(loadMessage),
      reported_(reported),
      decimalSymbol_(table_->options.number.decimalSymbol) {
  ::VariantInit(&unwanted_);
  for (const FieldDefinition& field : table_->fields) fields_.push_back({&unwanted_, field.type});
}

// Of a field of the file.
RowConverter::Way RowConverter::WayOf(std::size_t field) const noexcept {
  const std::vector<FieldDefinition>& fields = table_->fields;
  const auto isVirtual = [&fields](std::size_t i, bool pair) {
    return i < fields.size() && fields[i].isCoordinate && fields[i].isPair == pair;
  };
  switch (fields[field].type) {
    case FieldType::kString:
      if (isVirtual(field + 1, false)) return Way::kCoordinates;
      if (isVirtual(field + 2, true) && !fields[field + 1].isCoordinate) return Way::kTwoTexts;
      return Way::kText;
    case FieldType::kDouble:
    case FieldType::kInteger:
    case FieldType::kBigInteger:
      return Way::kNumber;
    default:
      const DateFieldFormat& dates = fields[field].dateFormat;
      return dates.type == fields[field].type && HasPlainDates(dates) ? Way::kDate : Way::kOther;
  }
}

void RowConverter::MakeSteps() {
  steps_.clear();
  fieldsOfColumns_.clear();
  stepsFit_ = true;
  for (std::size_t field = 0; field < fields_.size();) {
    const Way way = WayOf(field);
    const std::size_t columns = way == Way::kTwoTexts ? 2 : 1;
    const std::size_t fields = columns + (way >= Way::kCoordinates ? 2 : 0);
    const std::size_t column = fieldsOfColumns_.size();
    if (NeedsStep(field, fields))
      steps_.push_back({fields_[field].slot, &table_->fields[field].dateFormat, column, field,
                        fields_[field].type, way, IsWanted(field)});
    field += fields;
    fieldsOfColumns_.insert(fieldsOfColumns_.end(), columns, field);
  }
}

// Whether anything has to be done for a column with these fields: texts that nobody asks for fit.
bool RowConverter::NeedsStep(std::size_t field, std::size_t fields) const noexcept {
  if (fields_[field].type != FieldType::kString) return true;
  for (std::size_t i = field; i < field + fields; ++i)
    if (IsWanted(i)) return true;
  return false;
}

// How many fields have texts in a record of so many columns.
std::size_t RowConverter::FieldsOf(std::size_t columns) const noexcept {
  const std::size_t known = std::min(columns, fieldsOfColumns_.size());
  return known == 0 ? 0 : fieldsOfColumns_[known - 1];
}

template <class Row>
[[gnu::always_inline]] inline std::size_t RowConverter::ConvertRow(const Row& row) {
  static_assert(kPlainNumberBytes <= kPlainRowPadding);
  if (!messages_.empty()) messages_.clear();
  if (!mismatches_.empty()) mismatches_.clear();
  if (!stepsFit_) MakeSteps();
  const std::size_t columns = row.size();
  for (const Step& step : steps_) {
    if (step.column >= columns) break;
    const auto text = row[step.column];
    if (!step.wanted && FitsPlainly(step, text)) continue;
    VARIANT& value = *step.slot;
    quenra::ClearVariant(value);
    if (step.way >= Way::kCoordinates) {
      ConvertCoordinates(step, row);
    } else if (text.empty()) {
      SetNull(value);
    } else if (step.way == Way::kText) {
      ConvertText(row, step.column, value);
    } else if (!ConvertPlainly(step, text, value)) {
      ConvertCell({step.field, step.column, TextOf(row, step.column, text_)}, value);
    }
  }
  if (!mismatches_.empty()) ReportAll();
  return FieldsOf(columns);
}

// Whether a value that nobody asks for is a plain one of its type, or blank. False says nothing
// about the text.
template <class Character>
[[gnu::always_inline]] inline bool RowConverter::FitsPlainly(
    const Step& step, std::basic_string_view<Character> text) const noexcept {
  if (step.way == Way::kNumber) {
    PlainNumber number;
    return text.empty() || (ReadNumber(text, number) && IsPlainValue(step.type, number));
  }
  PlainDate date;
  return step.way == Way::kDate &&
         (text.empty() || (ReadPlainDate(*step.dates, text, date) && quenra::IsOleDay(date.day)));
}

// The short ways of plain numbers and dates. False leaves `value` empty and says nothing about the
// text.
template <class Character>
[[gnu::always_inline]] inline bool RowConverter::ConvertPlainly(
    const Step& step, std::basic_string_view<Character> text, VARIANT& value) const noexcept {
  if (step.way == Way::kNumber) {
    PlainNumber number;
    return ReadNumber(text, number) && SetPlainNumber(step.type, number, value);
  }
  return step.way == Way::kDate && ConvertPlainDate(*step.dates, text, value);
}

// A text that is not empty and is asked for; `value` is empty.
inline void RowConverter::ConvertText(const Record& record, std::size_t column, VARIANT& value) {
  const std::u16string_view text = record[column];
  if (quenra::IsBlank(text))
    SetNull(value);
  else
    SetText(value, text);
}

inline void RowConverter::ConvertText(const PlainRow& row, std::size_t column, VARIANT& value) {
  static_assert(kShortField <= kPlainRowPadding);
  const std::string_view bytes = row[column];
  char16_t units[kShortField];
  if (bytes.front() > ' ' && bytes.front() != row.textDelimiter() && WidenShortAscii(bytes, units))
    return SetText(value, {units, bytes.size()});
  const std::u16string_view text = row.Text(column, text_);
  if (quenra::IsBlank(text))
    SetNull(value);
  else
    SetText(value, text);
}

// Any text, for any type but kString; `value` is empty.
void RowConverter::ConvertCell(const Cell& cell, VARIANT& value) {
  if (quenra::IsBlank(cell.text)) return SetNull(value);
  switch (fields_[cell.field].type) {
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
  const FieldType type = fields_[cell.field].type;
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
  const FieldType type = fields_[field].type;
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

std::size_t RowConverter::Convert(const Record& record) { return ConvertRow(record); }

std::size_t RowConverter::Convert(const PlainRow& row) { return ConvertRow(row); }

// A text column whose values hold coordinates, with its virtual fields, and in the form with two
// texts its neighbour with them.
template <class Row>
void RowConverter::ConvertCoordinates(const Step& step, const Row& row) {
  const auto deliver = [this](std::size_t to, std::u16string_view text) {
    if (IsWanted(to)) SetText(*fields_[to].slot, text);
  };
  const std::size_t field = step.field;
  const std::u16string_view text = TextOf(row, step.column, text_);
  const bool blank = quenra::IsBlank(text);
  if (blank)
    SetNull(*step.slot);
  else
    deliver(field, text);

  const bool twoTexts = step.way == Way::kTwoTexts;
  const std::size_t virtualField = field + (twoTexts ? 2 : 1);
  for (std::size_t i = field + 1; i < virtualField + 2; ++i) quenra::ClearVariant(*fields_[i].slot);
  VARIANT& firstValue = *fields_[virtualField].slot;
  VARIANT& secondValue = *fields_[virtualField + 1].slot;
  const bool parse = !blank && (IsWanted(virtualField) || IsWanted(virtualField + 1));

  double first = 0;
  double second = 0;
  bool parsed = false;
  if (!twoTexts) {
    parsed =
        parse && latLong_.ParseLatLong(text, table_->fields[field].coordinateFormat, first, second);
  } else if (step.column + 1 < row.size()) {
    // Even a blank text of the second column is delivered as it stands.
    const std::u16string_view neighbour = TextOf(row, step.column + 1, neighbour_);
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
}

void RowConverter::Report(const Cell& cell, FieldType found, VARIANT& value) {
  if (fields_[cell.field].reported) return;
  Mismatch mismatch;
  mismatch.fileColumn = cell.column;
  mismatch.fieldName = table_->fields[cell.field].name;
  mismatch.found = found;
  if (reported_ == Reported::kNull) SetNull(value);
  mismatches_.push_back({cell.field, std::u16string(cell.text), mismatch});
}

// Together, since schema.ini is written anew each time.
void RowConverter::ReportAll() {
  std::vector<Mismatch> mismatches;
  for (const FieldMismatch& found : mismatches_) {
    mismatches.push_back(found.mismatch);
    mismatches.back().text = found.text;
  }
  std::vector<std::u16string> messages = ReportMismatches(*table_, mismatches, loadMessage_);
  for (std::size_t i = 0; i < messages.size(); ++i) {
    fields_[mismatches_[i].field].reported = true;
    messages_[mismatches_[i].field] = std::move(messages[i]);
  }
}

}  // namespace TextFile
