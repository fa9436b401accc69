// What inference knows of one column of the file while it reads rows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "inference/DateParsing.h"
#include "schema/FieldDefinition.h"

namespace TextFile {

struct ColumnState {
  const FieldDefinition* declared = nullptr;  // schema.ini's definition; null when there is none
  std::u16string name;                        // empty until schema.ini or the header gives one
  FieldType type = FieldType::kUndetermined;
  // The type that the column would have if the decimal symbol were the other one.
  FieldType alternative = FieldType::kUndetermined;
  bool coordinateCandidate = true;
  bool coordinatePair = false;        // forms coordinates together with a neighbour
  std::int32_t coordinateFormat = 0;  // LatLongFormat's code
  bool hasValue = false;              // a field that was not empty has been seen
  DateOrders dateOrders;              // that every date so far allows
  bool fractionalSeconds = false;

  ColumnState() = default;
  explicit ColumnState(const FieldDefinition& definition)
      : declared(&definition),
        name(definition.name),
        type(definition.type),
        alternative(definition.type),
        coordinateCandidate(false) {}

  // With a pattern of its own a column's dates have a known order, which is not inferred.
  bool HasDatePattern() const noexcept {
    return declared != nullptr && !declared->dateFormat.pattern.empty();
  }
};

using ColumnStates = std::vector<ColumnState>;

}  // namespace TextFile
