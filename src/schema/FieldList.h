// The fields of a table, in order.
//
//   FieldList fields = {id, name};
//   fields.ResizeWithTexts(1000000, 0);  // "Field3" and so on, which cost nothing
//   fields[999999].name;                 // u"Field1000000"
//
// schema.ini may declare the millionth column alone. The fields between the columns that the file
// has and those that are declared behind them are all alike, and are made when they are asked for.
// So are the texts of a header row that has taken much memory, in which their names then stay.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "schema/FieldDefinition.h"
#include "schema/NameTexts.h"

namespace TextFile {

// The name of a column that has none, by its zero-based position in the file.
std::u16string GeneratedFieldName(std::size_t position);

class FieldList {
 public:
  FieldList() = default;
  FieldList(std::initializer_list<FieldDefinition> fields) : FieldList(std::vector(fields)) {}
  explicit FieldList(std::vector<FieldDefinition> fields)
      : stored_(std::move(fields)), size_(stored_.size()) {}

  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  void clear() noexcept { *this = {}; }
  void reserve(std::size_t size) { stored_.reserve(size); }

  // Appends to a list without fields that are made when asked for.
  void push_back(FieldDefinition field) {
    stored_.push_back(std::move(field));
    size_ = stored_.size();
  }
  void emplace_back() { push_back({}); }
  void resize(std::size_t size) {
    stored_.resize(size);
    size_ = size;
  }
  FieldDefinition& back() { return (*this)[size_ - 1]; }
  FieldDefinition front() const { return (*this)[0]; }

  // Lets the list have `size` fields: behind the stored ones texts that have the name of their
  // position among `names`, or else one made from their position, in which `virtualFields` that
  // stand before them are not counted.
  void ResizeWithTexts(std::size_t size, std::size_t virtualFields,
                       std::shared_ptr<const NameTexts> names = nullptr) {
    size_ = size;
    virtualFields_ = virtualFields;
    names_ = std::move(names);
  }

  // The field, and one that is stored from then on.
  FieldDefinition operator[](std::size_t index) const;
  FieldDefinition& operator[](std::size_t index);
  FieldDefinition at(std::size_t index) const { return (*this)[index]; }

  // The same without a copy; null for a text that is made when asked for.
  const FieldDefinition* Stored(std::size_t index) const noexcept {
    return index < stored_.size() ? &stored_[index] : StoredBehind(index);
  }
  FieldType TypeOf(std::size_t index) const noexcept {
    const FieldDefinition* const stored = Stored(index);
    return stored == nullptr ? FieldType::kString : stored->type;
  }

  // The stored fields at the start, which stand one behind the other.
  const std::vector<FieldDefinition>& StoredAtStart() const noexcept { return stored_; }
  const std::map<std::size_t, FieldDefinition>& StoredBehind() const noexcept { return behind_; }

  // Gives fields by value.
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = FieldDefinition;
    using difference_type = std::ptrdiff_t;
    using pointer = const FieldDefinition*;
    using reference = FieldDefinition;

    Iterator(const FieldList& list, std::size_t index) noexcept : list_(&list), index_(index) {}
    FieldDefinition operator*() const { return (*list_)[index_]; }
    Iterator& operator++() noexcept {
      ++index_;
      return *this;
    }
    bool operator==(const Iterator& other) const noexcept { return index_ == other.index_; }

   private:
    const FieldList* list_;
    std::size_t index_;
  };
  Iterator begin() const noexcept { return {*this, 0}; }
  Iterator end() const noexcept { return {*this, size_}; }

 private:
  const FieldDefinition* StoredBehind(std::size_t index) const noexcept;

  std::vector<FieldDefinition> stored_;
  std::map<std::size_t, FieldDefinition> behind_;
  std::size_t size_ = 0;
  std::size_t virtualFields_ = 0;
  std::shared_ptr<const NameTexts> names_;  // of texts that are not stored; null: they have none
};

}  // namespace TextFile
