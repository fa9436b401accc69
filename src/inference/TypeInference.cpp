#include "inference/TypeInference.h"

#include <algorithm>
#include <memory>
#include <string>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "inference/CoordinateColumns.h"
#include "inference/DateFormatting.h"
#include "inference/NumberParsing.h"

namespace TextFile {

namespace {

constexpr std::size_t kDefaultUpperLimit = 100;  // rows
constexpr std::size_t kLowerLimit = 10;          // rows, while a column is still open
constexpr std::size_t kLowerLimitWhenDeclared = 1;

constexpr std::size_t kLongLine = 1 << 16;  // UTF-16 code units

// How dates with an offset are written, whatever the table's dates look like.
constexpr std::u16string_view kTimestampPattern = u"yyyy-MM-ddTHH:mm:ss";

// The type of a column that has seen values of both types.
FieldType Merge(FieldType column, FieldType value) noexcept {
  if (column == FieldType::kUndetermined) return value;
  if (value == FieldType::kUndetermined || column == value) return column;
  if (!IsNumericType(column) || !IsNumericType(value)) return FieldType::kString;
  for (const FieldType wider :
       {FieldType::kDouble, FieldType::kSingle, FieldType::kBigInteger, FieldType::kInteger})
    if (column == wider || value == wider) return wider;
  return FieldType::kSmallInteger;
}

// The first dated value seeds the set; each later one narrows it. A set that has run empty is
// seeded afresh.
void MergeDateOrders(DateOrders& orders, DateOrders found) noexcept {
  if (orders.empty())
    orders = found;
  else
    orders.IntersectWith(found);
}

DateOrder LocaleDateOrder() {
  const std::u16string order = quenra::QUENRALocale::Value(LOCALE_IDATE, 2);
  if (order == u"1") return DateOrder::kDayMonthYear;
  return order == u"2" ? DateOrder::kYearMonthDay : DateOrder::kMonthDayYear;
}

// The order of a column whose dates allow all of `left`. None left means that no date was seen, or
// that the dates contradict one another: then nothing is ruled out. The section says how the
// table's dates are written, the locale only how its user writes them; after both, dates with the
// day first are the most common in files.
DateOrder ChooseDateOrder(DateOrders left, const SchemaOptions& options) {
  const auto possible = [left](DateOrder order) {
    return order != DateOrder::kAny && (left.empty() || left.Contains(order));
  };
  if (options.IsSpecified(SchemaOptions::kDateTimeFormat))
    if (const DateOrder order = OrderOfPattern(options.dateTimeFormat); possible(order))
      return order;
  if (const DateOrder order = LocaleDateOrder(); possible(order)) return order;
  for (const DateOrder order : {DateOrder::kDayMonthYear, DateOrder::kMonthDayYear})
    if (possible(order)) return order;
  return DateOrder::kYearMonthDay;
}

}  // namespace

TypeInference::TypeInference(Reader& reader, SchemaOptions& options, const OpenOptions& openOptions)
    : reader_(reader), options_(options), openOptions_(openOptions) {
  StartFromDeclaredColumns();
}

void TypeInference::StartFromDeclaredColumns() { columns_.Start(options_.columns); }

bool TypeInference::ReadRecord() {
  if (!reader_.ReadRecord()) return false;
  lastRecordSize_ = reader_.record().size();
  ++recordsRead_;
  return true;
}

// ---------------------------------------------------------------------------------------------
// Header
// ---------------------------------------------------------------------------------------------

HeaderReading TypeInference::ReadHeader() {
  HeaderReading reading;
  Rewind();
  reading.foundRecord = ReadRecord();
  reading.onlyLineEnds =
      reading.foundRecord && reader_.record().size() == 1 &&
      reader_.record()[0].find_first_not_of(u"\r\n") == std::u16string_view::npos;
  reading.reachedEnd = reader_.StreamAtEnd();
  if (!options_.IsSpecified(SchemaOptions::kColNameHeader))
    options_.columnNameHeader = reading.foundRecord && IsHeader();
  if (options_.columnNameHeader) {
    if (reading.foundRecord) NameColumns();
    return reading;
  }
  // A first row that ends in a line end may still be all there is.
  if (!reading.reachedEnd && !ReadRecord()) reading.reachedEnd = true;
  Rewind();
  return reading;
}

void TypeInference::ForgetHeader() {
  StartFromDeclaredColumns();
  lastRecordSize_ = 0;
}

void TypeInference::Rewind() {
  reader_.Rewind();
  recordsRead_ = 0;
}

LayoutMisfit TypeInference::Misfit() const noexcept {
  LayoutMisfit misfit;
  misfit.kind = recordsRead_ > 0 ? LayoutMisfit::Kind::kValues : LayoutMisfit::Kind::kNoRecord;
  misfit.record = recordsRead_;
  misfit.header = options_.columnNameHeader;
  misfit.values = lastRecordSize_;
  misfit.columns = columns_.size();
  return misfit;
}

bool TypeInference::IsHeader() const {
  const Record& record = reader_.record();
  for (std::size_t i = 0; i < record.size(); ++i) {
    DateClass date;
    const FieldType type = Classify(record[i], date);
    if (type != FieldType::kString && type != FieldType::kUndetermined) return false;
  }
  return true;
}

void TypeInference::NameColumns() {
  const Record& record = reader_.record();
  const std::size_t count = record.size();
  const auto names = std::make_shared<NameTexts>();
  names->Reserve(count);
  // Names that are a file as a whole must not need its memory twice.
  if (reader_.LineSize() >= kLongLine && reader_.CanReleaseLine()) {
    for (std::size_t i = 0; i < count; ++i) {
      const std::u16string_view name = quenra::TrimBlanks(record[i]);
      names->AddPlace(reader_.PlaceInLine(name), name.size());
    }
    names->TakeText(reader_.ReleaseLine());
  } else {
    for (std::size_t i = 0; i < count; ++i) names->Add(quenra::TrimBlanks(record[i]));
  }
  columns_.Extend(count);
  columns_.SetNames(names);
}

// ---------------------------------------------------------------------------------------------
// Rows
// ---------------------------------------------------------------------------------------------

// The type of one value, whatever its column is.
FieldType TypeInference::Classify(std::u16string_view text, DateClass& date) const {
  if (text.empty()) return FieldType::kUndetermined;
  if (ClassifyDate(text, openOptions_.fieldTypeVersion, openOptions_.inferTimeOnlyFields, date))
    return date.type;
  const std::u16string& symbol = options_.currency.symbol;
  if (text.find(symbol) != std::u16string_view::npos) {
    double amount = 0;
    if (ParseCurrency(options_.currency, text, amount)) return FieldType::kDouble;
  }
  const FieldType number =
      NumberFormat::Classify(options_.number, text, openOptions_.fieldTypeVersion);
  return number == FieldType::kUndetermined ? FieldType::kString : number;
}

bool TypeInference::Scan() {
  const bool allDeclared = !columns_.HasUndeclaredBehind() &&
                           std::all_of(columns_.begin(), columns_.end(),
                                       [](const ColumnState& c) { return c.declared != nullptr; });
  const std::size_t lowerLimit = allDeclared ? kLowerLimitWhenDeclared : kLowerLimit;
  // Columns that are first met in a row keep their candidacy even when no coordinates are wanted.
  if (!openOptions_.generateLatLongFields) columns_.ForbidCoordinates();

  for (std::size_t rows = 0; AnotherRowIsWanted(rows, lowerLimit) && ReadRecord(); ++rows) {
    needsMoreRows_ = false;
    if (!ClassifyRow()) return false;
    if (openOptions_.generateLatLongFields) DetectCoordinates(latLong_, reader_.record(), columns_);
    needsMoreRows_ = MoreRowsWouldTell();
  }
  DecideDecimalSymbol();
  return true;
}

bool TypeInference::AnotherRowIsWanted(std::size_t rows, std::size_t lowerLimit) const noexcept {
  if (rows < lowerLimit) return true;
  if (!needsMoreRows_) return false;
  if (openOptions_.readAsManyRowsAsNeeded) return true;
  if (!options_.IsSpecified(SchemaOptions::kMaxScanRows)) return rows < kDefaultUpperLimit;
  return options_.maxScanRows == 0 || rows < options_.maxScanRows;
}

bool TypeInference::MoreRowsWouldTell() const {
  const auto isOpenBehind = [](const ColumnStates::Declared::value_type& declared) {
    return IsIntegerType(declared.second.type);
  };
  // A column that no record has yet is open, unless it is declared.
  if (columns_.held() < columns_.size() &&
      (columns_.HasUndeclaredBehind() ||
       std::any_of(columns_.BehindBegin(), columns_.BehindEnd(), isOpenBehind)))
    return true;
  return std::any_of(columns_.begin(), columns_.end(), [](const ColumnState& column) {
    return column.type == FieldType::kUndetermined || IsIntegerType(column.type) ||
           (IsDateType(column.type) && column.dateOrders.size() >= 2);
  });
}

bool TypeInference::ClassifyRow() {
  const Record& record = reader_.record();
  // Coordinates look at the column behind each.
  columns_.Hold(record.size() + 1);
  if (!options_.columnNameHeader) columns_.Extend(record.size());
  for (std::size_t i = 0; i < record.size(); ++i) {
    const std::u16string_view text = record[i];
    if (i >= columns_.size()) {
      if (!text.empty()) return false;
      continue;
    }
    if (text.empty()) continue;
    columns_[i].hasValue = true;
    if (columns_[i].declared != nullptr)
      CheckDeclared(columns_[i], text);
    else if (columns_[i].type != FieldType::kString)
      ClassifyField(columns_[i], text);
  }
  return true;
}

// A declared column keeps its type, but a date without a pattern takes the kind of the last date
// that was read, and a floating-point number settles the decimal symbol.
void TypeInference::CheckDeclared(ColumnState& column, std::u16string_view text) {
  if (IsDateType(column.type) && !column.HasDatePattern()) {
    DateClass date;
    if (!ClassifyDate(text, openOptions_.fieldTypeVersion, openOptions_.inferTimeOnlyFields, date))
      return;
    column.type = date.type;
    column.fractionalSeconds = date.fractionalSeconds;
    MergeDateOrders(column.dateOrders, date.orders);
  } else if (column.type == FieldType::kSingle || column.type == FieldType::kDouble) {
    CheckDecimalSymbol(text);
  }
}

void TypeInference::CheckDecimalSymbol(std::u16string_view text) {
  const std::uint32_t version = openOptions_.fieldTypeVersion;
  if (NumberFormat::Classify(options_.number, text, version) != FieldType::kUndetermined) return;
  if (TypeWithOtherDecimalSymbol(text) == FieldType::kString) return;
  char16_t& decimal = options_.number.decimalSymbol;
  decimal = NumberFormat::SwappedDecimalSymbol(decimal);
}

FieldType TypeInference::TypeWithOtherDecimalSymbol(std::u16string_view text) const {
  NumberFormat::Settings swapped = options_.number;
  swapped.decimalSymbol = NumberFormat::SwappedDecimalSymbol(swapped.decimalSymbol);
  const FieldType type = NumberFormat::Classify(swapped, text, openOptions_.fieldTypeVersion);
  return type == FieldType::kUndetermined ? FieldType::kString : type;
}

void TypeInference::ClassifyField(ColumnState& column, std::u16string_view text) {
  DateClass date;
  column.type = Merge(column.type, Classify(text, date));
  if (column.alternative == FieldType::kUndetermined && column.type != FieldType::kString) {
    column.coordinateCandidate = false;
    if (!IsIntegerType(column.type)) column.alternative = column.type;
  }
  if (IsDateType(column.type)) {
    MergeDateOrders(column.dateOrders, date.orders);
    column.fractionalSeconds |= date.fractionalSeconds;
  }
  if (column.type == FieldType::kTimeOnly) column.fractionalSeconds |= date.fractionalSeconds;
  if (column.type == FieldType::kDouble) doubleSeen_ = true;
  const bool decimalGiven =
      (options_.number.specified & NumberFormat::Settings::kDecimalSymbol) != 0;
  if (!doubleSeen_ && !decimalGiven && column.alternative == FieldType::kUndetermined)
    column.alternative = TypeWithOtherDecimalSymbol(text);
}

// Takes the other decimal symbol when that makes numbers of text columns and breaks no column of
// whole numbers. A value that was already read as a number with decimals speaks against it.
void TypeInference::DecideDecimalSymbol() {
  const bool decimalGiven =
      (options_.number.specified & NumberFormat::Settings::kDecimalSymbol) != 0;
  if (doubleSeen_ || decimalGiven) return;
  const auto gains = [](const ColumnState& column) {
    return column.type == FieldType::kString && column.alternative == FieldType::kDouble &&
           column.hasValue;
  };
  const auto breaks = [](const ColumnState& column) {
    return IsIntegerType(column.type) && column.alternative == FieldType::kString;
  };
  if (std::none_of(columns_.begin(), columns_.end(), gains)) return;
  if (std::any_of(columns_.begin(), columns_.end(), breaks)) return;

  for (ColumnState& column : columns_) {
    if (column.alternative != FieldType::kDouble || !column.hasValue ||
        column.type == FieldType::kDouble)
      continue;
    column.type = FieldType::kDouble;
    column.coordinateCandidate = false;
  }
  char16_t& decimal = options_.number.decimalSymbol;
  decimal = NumberFormat::SwappedDecimalSymbol(decimal);
}

// ---------------------------------------------------------------------------------------------
// Result
// ---------------------------------------------------------------------------------------------

void TypeInference::WriteFields(FieldList& fields) const {
  const std::size_t stored = FieldsToStore();
  fields.clear();
  fields.reserve(stored);
  for (std::size_t i = 0; i < stored; ++i)
    fields.push_back(MakeField(columns_[i], i, columns_.NameOf(i)));
  // Those of coordinates stand before the fields of columns that are not stored.
  InsertCoordinateFields(columns_, fields);
  const std::size_t virtualFields = fields.size() - stored;
  fields.ResizeWithTexts(columns_.size() + virtualFields, virtualFields,
                         stored < columns_.held() ? columns_.names() : nullptr);
  for (auto it = columns_.BehindBegin(); it != columns_.BehindEnd(); ++it) {
    const auto position = static_cast<std::size_t>(it->first);
    fields[position + virtualFields] =
        MakeField(ColumnState(it->second), position, it->second.name);
  }
}

// How many columns at the start become fields that are stored: all that are held, or those up to
// the last one that is not a mere text, when the names of such texts have much memory already.
std::size_t TypeInference::FieldsToStore() const {
  std::size_t count = columns_.held();
  if (columns_.names() == nullptr || !columns_.names()->HasTakenText() ||
      HasCoordinateColumns(columns_))
    return count;
  const auto isText = [](const ColumnState& column) {
    return column.declared == nullptr &&
           (column.type == FieldType::kString || column.type == FieldType::kUndetermined);
  };
  while (count > 0 && isText(columns_[count - 1])) --count;
  return count;
}

FieldDefinition TypeInference::MakeField(const ColumnState& column, std::size_t position,
                                         std::u16string_view name) const {
  FieldDefinition field;
  if (column.declared != nullptr) field = *column.declared;
  field.name = name.empty() ? GeneratedFieldName(position) : std::u16string(name);
  field.type = column.type == FieldType::kUndetermined ? FieldType::kString : column.type;
  if (IsDateType(field.type) || field.type == FieldType::kTimeOnly) {
    field.dateFormat.version = openOptions_.fieldTypeVersion;
    field.dateFormat.type = field.type;
    field.dateFormat.fractionalSeconds = column.fractionalSeconds;
    if (field.type == FieldType::kTimestampOffset) field.dateFormat.pattern = kTimestampPattern;
    if (!column.HasDatePattern())
      field.dateFormat.order = ChooseDateOrder(column.dateOrders, options_);
  }
  return field;
}

}  // namespace TextFile
