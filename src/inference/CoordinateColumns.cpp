#include "inference/CoordinateColumns.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>

#include "host/CoreSupport/CharacterClasses.h"

namespace TextFile {

namespace {

std::u16string_view TextOf(const Record& record, std::size_t index) noexcept {
  return index < record.size() ? record[index] : std::u16string_view();
}

bool IsText(const ColumnStates& columns, std::size_t index) noexcept {
  return index < columns.held() && columns[index].type == FieldType::kString;
}

std::u16string Folded(std::u16string_view name) {
  std::u16string folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), quenra::ToUpper);
  return folded;
}

// The names of a file's columns, compared without regard to case.
class ColumnNames {
 public:
  ColumnNames(const ColumnStates& columns, const FieldList& fields) {
    for (const FieldDefinition& field : fields) names_.insert(Folded(field.name));
    // Names that are made from positions are not those of companions.
    for (auto it = columns.BehindBegin(); it != columns.BehindEnd(); ++it)
      names_.insert(Folded(it->second.name));
  }

  // `column` with the suffix. One "_" behind it tells it apart from a column of that name; whether
  // the longer name is taken as well is not asked.
  std::u16string Companion(const FieldDefinition& column, std::u16string_view suffix) const {
    std::u16string name = column.name + std::u16string(suffix);
    if (names_.contains(Folded(name))) name += u'_';
    return name;
  }

 private:
  std::unordered_set<std::u16string> names_;
};

FieldDefinition CoordinateField(std::u16string name, bool pair) {
  FieldDefinition field;
  field.name = std::move(name);
  field.type = FieldType::kDouble;
  field.dateFormat.version = kCurrentFieldTypeVersion;
  field.isCoordinate = true;
  field.isPair = pair;
  return field;
}

bool IsCoordinateColumn(const ColumnState& column) noexcept {
  return column.coordinateCandidate && column.hasValue && column.type == FieldType::kString;
}

}  // namespace

void DetectCoordinates(const quenra::LatLongFormat& format, const Record& record,
                       ColumnStates& columns) noexcept {
  for (std::size_t i = 0; i < columns.held(); ++i) {
    ColumnState& column = columns[i];
    // Asked first: after a few rows hardly any column is a candidate.
    if (!column.coordinateCandidate || !IsText(columns, i)) continue;
    const std::u16string_view text = TextOf(record, i);
    if (text.empty()) continue;

    std::int32_t code = 0;
    if (format.IsLatLong(text, code)) {
      column.coordinateFormat = code;
    } else if (IsText(columns, i + 1) && format.IsLatLong(text, TextOf(record, i + 1), code)) {
      column.coordinatePair = columns[i + 1].coordinatePair = true;
      column.coordinateFormat = columns[i + 1].coordinateFormat = code;
      ++i;
    } else {
      column.coordinateCandidate = false;
      if (column.coordinatePair && i + 1 < columns.held())
        columns[i + 1].coordinateCandidate = false;
    }
  }
}

bool HasCoordinateColumns(const ColumnStates& columns) noexcept {
  return std::any_of(columns.begin(), columns.end(), IsCoordinateColumn);
}

void InsertCoordinateFields(const ColumnStates& columns, FieldList& fields) {
  if (!HasCoordinateColumns(columns)) return;
  const ColumnNames names(columns, fields);
  FieldList laidOut;
  laidOut.reserve(fields.size() + 2);
  for (std::size_t i = 0; i < columns.held(); ++i) {
    const ColumnState& column = columns[i];
    laidOut.push_back(fields[i]);
    if (!IsCoordinateColumn(column)) continue;
    if (!column.coordinatePair) {
      laidOut.back().coordinateFormat = column.coordinateFormat;
      laidOut.push_back(CoordinateField(names.Companion(fields[i], u"_X"), false));
      laidOut.push_back(CoordinateField(names.Companion(fields[i], u"_Y"), false));
    } else if (IsText(columns, i + 1) && columns[i + 1].coordinatePair) {
      laidOut.push_back(fields[i + 1]);
      laidOut.back().coordinateFormat = columns[i + 1].coordinateFormat;
      laidOut.push_back(CoordinateField(names.Companion(fields[i], u"_D"), true));
      laidOut.push_back(CoordinateField(names.Companion(fields[i + 1], u"_D"), true));
      ++i;
    }
    // A column whose partner formed its last pair with another neighbour stays plain text.
  }
  fields = std::move(laidOut);
}

}  // namespace TextFile
