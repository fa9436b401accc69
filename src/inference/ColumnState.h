// What inference knows of one column of the file while it reads rows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "inference/DateParsing.h"
#include "schema/FieldDefinition.h"
#include "schema/NameTexts.h"

namespace TextFile {

struct ColumnState {
  const FieldDefinition* declared = nullptr;  // schema.ini's definition; null when there is none
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
        type(definition.type),
        alternative(definition.type),
        coordinateCandidate(false) {}

  // With a pattern of its own a column's dates have a known order, which is not inferred.
  bool HasDatePattern() const noexcept {
    return declared != nullptr && !declared->dateFormat.pattern.empty();
  }
};

// The columns of a file. Those behind the last that the header row or a record has are not held as
// long as they are many: schema.ini may declare the millionth column of a file of two.
class ColumnStates {
 public:
  using Declared = std::map<std::int32_t, FieldDefinition>;

  // Starts anew from the columns declared, which are used until the next start.
  void Start(const Declared& declared) {
    declared_ = &declared;
    held_.clear();
    names_.reset();
    withoutCandidates_ = 0;
    size_ = declared.empty() ? 0 : static_cast<std::size_t>(declared.rbegin()->first) + 1;
    if (size_ <= kFew) Hold(size_);
  }

  std::size_t size() const noexcept { return size_; }
  std::size_t held() const noexcept { return held_.size(); }

  // Lets the file have at least `count` columns.
  void Extend(std::size_t count) {
    size_ = std::max(size_, count);
    Hold(count);
  }
  // Holds the first `count` columns, of those that there are.
  void Hold(std::size_t count) {
    const std::size_t end = std::min(count, size_);
    if (end > held_.capacity()) held_.reserve(std::max(end, 2 * held_.size()));
    for (std::size_t i = held_.size(); i < end; ++i) held_.push_back(Fresh(i));
  }

  // The names of the header row, for the columns that schema.ini gives none.
  void SetNames(std::shared_ptr<const NameTexts> names) noexcept { names_ = std::move(names); }
  const std::shared_ptr<const NameTexts>& names() const noexcept { return names_; }
  // Of a column that is held; empty when it has none.
  std::u16string_view NameOf(std::size_t index) const noexcept {
    const FieldDefinition* const declared = held_[index].declared;
    if (declared != nullptr && !declared->name.empty()) return declared->name;
    return names_ == nullptr ? std::u16string_view() : (*names_)[index];
  }

  // Of a column that is held.
  ColumnState& operator[](std::size_t index) noexcept { return held_[index]; }
  const ColumnState& operator[](std::size_t index) const noexcept { return held_[index]; }
  // The columns that are held.
  auto begin() noexcept { return held_.begin(); }
  auto end() noexcept { return held_.end(); }
  auto begin() const noexcept { return held_.begin(); }
  auto end() const noexcept { return held_.end(); }

  // The declared columns behind those that are held, and whether there are others among them.
  Declared::const_iterator BehindBegin() const {
    return declared_->lower_bound(static_cast<std::int32_t>(held_.size()));
  }
  Declared::const_iterator BehindEnd() const noexcept { return declared_->end(); }
  bool HasUndeclaredBehind() const {
    return size_ - held_.size() >
           static_cast<std::size_t>(std::distance(BehindBegin(), BehindEnd()));
  }

  // No column that there is now can hold coordinates.
  void ForbidCoordinates() noexcept {
    withoutCandidates_ = size_;
    for (ColumnState& column : held_) column.coordinateCandidate = false;
  }

 private:
  // Columns that cost less than telling them apart.
  static constexpr std::size_t kFew = 4096;

  ColumnState Fresh(std::size_t index) const {
    const auto found = declared_->find(static_cast<std::int32_t>(index));
    ColumnState column = found == declared_->end() ? ColumnState() : ColumnState(found->second);
    column.coordinateCandidate &= index >= withoutCandidates_;
    return column;
  }

  const Declared* declared_ = nullptr;
  std::vector<ColumnState> held_;
  std::shared_ptr<const NameTexts> names_;
  std::size_t size_ = 0;
  std::size_t withoutCandidates_ = 0;  // so many columns were there when they were forbidden
};

}  // namespace TextFile
