// A row converter with slots of its own, one a field, for tests that look at single values.
//
//   ConverterWithSlots converter(table, &LoadTestMessage);
//   converter.Convert(record);
//   converter.MoveValue(0, slot);
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "inference/RowConverter.h"

namespace TextFile {

// Clears its slots before each row, as hosts do.
class ConverterWithSlots {
 public:
  ConverterWithSlots(std::shared_ptr<const TextDatasetDescription> table, MessageLoader loadMessage,
                     const PlainCells& plainCells = QuickestPlainCells())
      : converter_(std::move(table), loadMessage, RowConverter::Reported::kAsConverted, plainCells),
        row_(converter_.fieldCount()) {
    for (std::size_t i = 0; i < row_.size(); ++i) {
      ::VariantInit(&row_[i]);
      SetWanted(i, true);
    }
  }
  ~ConverterWithSlots() { ClearSlots(); }
  ConverterWithSlots(const ConverterWithSlots&) = delete;
  ConverterWithSlots& operator=(const ConverterWithSlots&) = delete;

  std::size_t fieldCount() const noexcept { return row_.size(); }
  void SetWanted(std::size_t field, bool wanted) noexcept {
    converter_.SetSlot(field, wanted ? &row_[field] : nullptr);
  }

  std::size_t Convert(const Record& record) {
    ClearSlots();
    return converter_.Convert(record);
  }
  std::size_t Convert(const PlainRow& row) {
    ClearSlots();
    return converter_.Convert(row);
  }

  // Moves a value of the row converted last into `slot`, whose old value is not cleared.
  void MoveValue(std::size_t field, VARIANT& slot) noexcept {
    slot = row_[field];
    row_[field].vt = VT_EMPTY;
  }

  // The message of a mismatch that the row converted last has reported for the field, else null.
  const std::u16string* MessageOf(std::size_t field) const noexcept {
    const auto found = converter_.messages().find(field);
    return found == converter_.messages().end() ? nullptr : &found->second.text;
  }

 private:
  void ClearSlots() noexcept {
    for (VARIANT& value : row_) ::VariantClear(&value);
  }

  RowConverter converter_;
  std::vector<VARIANT> row_;
};

}  // namespace TextFile
