#include "inference/RowConverter.h"

#include <algorithm>
#include <limits>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/DatetimeHelper.h"
#include "host/CoreSupport/Variant.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostTimestampOffset.h"
#include "inference/CellValues.h"
#include "inference/NumberParsing.h"

namespace TextFile {

namespace {

constexpr double kMillisecondsPerDay = 8.64e7;

DATE FractionOfDay(const SYSTEMTIME& time) noexcept {
  const int seconds = (time.wHour * 60 + time.wMinute) * 60 + time.wSecond;
  return (seconds * 1000 + time.wMilliseconds) / kMillisecondsPerDay;
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

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
RowConverter::RowConverter(std::shared_ptr<const TextDatasetDescription> table,
                           MessageLoader loadMessage, Reported reported,
                           const PlainCells& plainCells)
    : table_(std::move(table)),
      loadMessage_(loadMessage),
      reported_(reported),
      formats_{table_->fields.StoredAtStart().data(), table_->options.number.decimalSymbol},
      plainCells_(plainCells) {
  ::VariantInit(&unwanted_);
  fields_.reserve(table_->fields.size());
  for (std::size_t i = 0; i < table_->fields.size(); ++i)
    fields_.push_back({&unwanted_, table_->fields.TypeOf(i)});
}

// Of a field of the file.
CellWay RowConverter::WayOf(std::size_t field) const noexcept {
  const FieldList& fields = table_->fields;
  const auto isVirtual = [&fields](std::size_t i, bool pair) {
    const FieldDefinition* const stored = i < fields.size() ? fields.Stored(i) : nullptr;
    return stored != nullptr && stored->isCoordinate && stored->isPair == pair;
  };
  switch (fields_[field].type) {
    case FieldType::kString:
      if (isVirtual(field + 1, false)) return CellWay::kCoordinates;
      if (isVirtual(field + 2, true) && !fields.Stored(field + 1)->isCoordinate)
        return CellWay::kTwoTexts;
      return CellWay::kText;
    case FieldType::kDouble:
      return HasPlainNumbers(formats_.decimalSymbol) ? CellWay::kDouble : CellWay::kOther;
    case FieldType::kInteger:
      return HasPlainNumbers(formats_.decimalSymbol) ? CellWay::kInteger : CellWay::kOther;
    case FieldType::kBigInteger:
      return HasPlainNumbers(formats_.decimalSymbol) ? CellWay::kBigInteger : CellWay::kOther;
    default:
      // Plain dates are read with the formats of the fields at the start alone.
      if (field >= fields.StoredAtStart().size()) return CellWay::kOther;
      const DateFieldFormat& dates = fields.StoredAtStart()[field].dateFormat;
      return dates.type == fields_[field].type && HasPlainDates(dates) ? CellWay::kDate
                                                                       : CellWay::kOther;
  }
}

void RowConverter::ForgetSteps() noexcept {
  steps_.clear();
  fieldsOfColumns_.clear();
  columnsWithSteps_ = 0;
}

// Adds the steps of the columns that a record with so many has beyond those before it.
void RowConverter::MakeSteps(std::size_t columnsOfRecord) {
  std::size_t field = fieldsOfColumns_.empty() ? 0 : fieldsOfColumns_.back();
  while (field < fields_.size() && fieldsOfColumns_.size() < columnsOfRecord) {
    const CellWay way = WayOf(field);
    const std::size_t columns = way == CellWay::kTwoTexts ? 2 : 1;
    const std::size_t fields = columns + (way >= CellWay::kCoordinates ? 2 : 0);
    const std::size_t column = fieldsOfColumns_.size();
    if (NeedsStep(field, fields))
      steps_.push_back({fields_[field].slot, static_cast<std::uint32_t>(column),
                        static_cast<std::uint32_t>(field), way, IsWanted(field)});
    field += fields;
    fieldsOfColumns_.insert(fieldsOfColumns_.end(), columns, field);
  }
  columnsWithSteps_ =
      field < fields_.size() ? fieldsOfColumns_.size() : std::numeric_limits<std::size_t>::max();
}

// Whether anything has to be done for a column with these fields: texts that nobody asks for fit.
bool RowConverter::NeedsStep(std::size_t field, std::size_t fields) const noexcept {
  if (fields_[field].type != FieldType::kString) return true;
  for (std::size_t i = field; i < field + fields; ++i)
    if (IsWanted(i)) return true;
  return false;
}

std::size_t RowConverter::Convert(const Record& record) {
  BeginRow(record.size());
  for (const CellStep& step : steps_) {
    if (step.column >= record.size()) break;
    if (step.wanted || !FitsPlainly(step, record[step.column])) ConvertStep(step, record);
  }
  if (!mismatches_.empty()) ReportAll();
  return FieldsOf(record.size());
}

// From a step on that the plain cells have left.
void RowConverter::ConvertRest(const PlainRow& row, const CellStep* step) {
  const CellStep* const end = steps_.data() + steps_.size();
  while (step != end && step->column < row.size()) {
    ConvertStep(*step, row);
    step = plainCells_.convert(row, step + 1, end, formats_, text_);
  }
  if (!mismatches_.empty()) ReportAll();
}

template <class Row>
void RowConverter::ConvertStep(const CellStep& step, const Row& row) {
  VARIANT& value = *step.slot;
  quenra::ClearVariant(value);
  if (step.way >= CellWay::kCoordinates) return ConvertCoordinates(step, row);
  const std::u16string_view text = TextOf(row, step.column, text_);
  if (quenra::IsBlank(text))
    SetNull(value);
  else if (step.way == CellWay::kText)
    SetText(value, text);
  else if (!ConvertPlainly(step, text, value))
    ConvertCell({step.field, step.column, text}, value);
}

// Whether a value that nobody asks for is a plain one of its type, or empty. False says nothing
// about the text.
bool RowConverter::FitsPlainly(const CellStep& step, std::u16string_view text) const noexcept {
  if (step.way == CellWay::kText || step.way >= CellWay::kOther) return false;
  if (text.empty()) return true;
  if (step.way == CellWay::kDate) {
    PlainDate date;
    return ReadPlainDate(formats_.fields[step.field].dateFormat, text, date) &&
           quenra::IsOleDay(date.day);
  }
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  PlainNumber number;
  return ReadPlainNumber(formats_.decimalSymbol, text, number) && IsPlainValue(step.way, number);
}

// The short ways of plain numbers and dates. False leaves `value` empty and says nothing about the
// text.
bool RowConverter::ConvertPlainly(const CellStep& step, std::u16string_view text,
                                  VARIANT& value) const noexcept {
  if (step.way == CellWay::kOther) return false;
  if (step.way == CellWay::kDate) {
    PlainDate date;
    return ReadPlainDate(formats_.fields[step.field].dateFormat, text, date) &&
           SetPlainDate(date, value);
  }
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  PlainNumber number;
  return ReadPlainNumber(formats_.decimalSymbol, text, number) &&
         SetPlainNumber(step.way, number, value);
}

// Any text that is not blank, for any type but kString; `value` is empty.
void RowConverter::ConvertCell(const Cell& cell, VARIANT& value) {
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
  if (ParseDateTime(table_->fields.Stored(cell.field)->dateFormat, cell.text, parsed) &&
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

// A text column whose values hold coordinates, with its virtual fields, and in the form with two
// texts its neighbour with them.
template <class Row>
void RowConverter::ConvertCoordinates(const CellStep& step, const Row& row) {
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

  const bool twoTexts = step.way == CellWay::kTwoTexts;
  const std::size_t virtualField = field + (twoTexts ? 2 : 1);
  for (std::size_t i = field + 1; i < virtualField + 2; ++i) quenra::ClearVariant(*fields_[i].slot);
  VARIANT& firstValue = *fields_[virtualField].slot;
  VARIANT& secondValue = *fields_[virtualField + 1].slot;
  const bool parse = !blank && (IsWanted(virtualField) || IsWanted(virtualField + 1));

  double first = 0;
  double second = 0;
  bool parsed = false;
  if (!twoTexts) {
    parsed = parse && latLong_.ParseLatLong(text, table_->fields.Stored(field)->coordinateFormat,
                                            first, second);
  } else if (step.column + 1 < row.size()) {
    // Even a blank text of the second column is delivered as it stands.
    const std::u16string_view neighbour = TextOf(row, step.column + 1, neighbour_);
    deliver(field + 1, neighbour);
    parsed = parse && latLong_.ParseLatLong(text, neighbour,
                                            table_->fields.Stored(field + 1)->coordinateFormat,
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
  mismatch.found = found;
  if (reported_ == Reported::kNull) SetNull(value);
  mismatches_.push_back(
      {cell.field, std::u16string(cell.text), table_->fields[cell.field].name, mismatch});
}

// Together, since schema.ini is written anew each time.
void RowConverter::ReportAll() {
  std::vector<Mismatch> mismatches;
  for (const FieldMismatch& found : mismatches_) {
    mismatches.push_back(found.mismatch);
    mismatches.back().text = found.text;
    mismatches.back().fieldName = found.fieldName;
  }
  std::vector<quenra::MessageText> messages = ReportMismatches(*table_, mismatches, loadMessage_);
  for (std::size_t i = 0; i < messages.size(); ++i) {
    fields_[mismatches_[i].field].reported = true;
    messages_[mismatches_[i].field] = std::move(messages[i]);
  }
}

}  // namespace TextFile
