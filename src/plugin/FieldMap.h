// The host's map from a table's fields to its own slots.
#pragma once

#include "platform/OleAutomation.h"

namespace quenra {

// A locked view of the array in a field map: entry i is the host's slot for field i, below 0 for a
// field that it does not want. The array stays the host's, which must neither free it nor change
// the entries while the view lives; its locks are given back at the end.
class FieldMap {
 public:
  // Takes the array out of `map`, through VT_BYREF as well. No array means no entries.
  explicit FieldMap(const VARIANT& map) noexcept;
  FieldMap(FieldMap&& other) noexcept;
  FieldMap& operator=(FieldMap&&) = delete;
  FieldMap(const FieldMap&) = delete;
  FieldMap& operator=(const FieldMap&) = delete;
  virtual ~FieldMap();

  // False for an array that is not one-dimensional with elements of VT_I4: there are no entries.
  bool IsUsable() const noexcept { return array_ == nullptr ? !isArray_ : data_ != nullptr; }

  ULONG size() const noexcept { return size_; }
  LONG operator[](ULONG field) const noexcept { return data_[field]; }

 private:
  void AccessData() noexcept;

  bool isArray_ = false;
  SAFEARRAY* array_ = nullptr;  // locked
  const LONG* data_ = nullptr;  // accessed; an empty array has data too
  ULONG size_ = 0;
};

}  // namespace quenra
