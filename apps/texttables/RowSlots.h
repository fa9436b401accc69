// The host's side of fetching rows: which columns are wanted, and the slots for their values.
#pragma once

#include <vector>

#include "Fields.h"
#include "RowWriter.h"

namespace TextTables {

// One entry a field of the table: its slot, or -1 when nobody asked for it. A column that is asked
// for twice has one slot.
struct ColumnPlan {
  std::vector<LONG> fieldMap;
  std::vector<OutputColumn> columns;  // in the order asked for
  std::vector<PointColumns> points;   // of features only
  std::size_t slots = 0;
};

// `names` empty asks for all. Throws UsageError for a name that the table does not have.
ColumnPlan PlanColumns(const TableFields& fields, const std::vector<std::u16string>& names);

// The plan of rows that become features with points: virtual coordinate fields are columns only
// when they are asked for by name.
ColumnPlan PlanFeatures(const TableFields& fields, const std::vector<std::u16string>& names);

// A field map as the interfaces take it: VT_ARRAY | VT_I4.
class FieldMap {
 public:
  explicit FieldMap(const std::vector<LONG>& slots);
  ~FieldMap() { ::VariantClear(&value_); }
  FieldMap(const FieldMap&) = delete;
  FieldMap& operator=(const FieldMap&) = delete;

  const VARIANT& Get() const noexcept { return value_; }

 private:
  VARIANT value_;
};

class RowSlots {
 public:
  explicit RowSlots(std::size_t count);
  ~RowSlots() { Clear(); }
  RowSlots(const RowSlots&) = delete;
  RowSlots& operator=(const RowSlots&) = delete;

  // Makes every value VT_EMPTY. A short record leaves slots alone, and these must not show the
  // values of the row before.
  void Clear() noexcept;

  quenra::HostFieldValue* Get() noexcept { return values_.data(); }

 private:
  std::vector<quenra::HostFieldValue> values_;
};

}  // namespace TextTables
