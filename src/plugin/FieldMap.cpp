#include "plugin/FieldMap.h"

#include <utility>

namespace quenra {
namespace {

constexpr LONG kNoEntries[1] = {-1};

SAFEARRAY* ArrayOf(const VARIANT& map) noexcept {
  if ((map.vt & VT_BYREF) == 0) return map.parray;
  return map.pparray != nullptr ? *map.pparray : nullptr;
}

}  // namespace

FieldMap::FieldMap(const VARIANT& map) noexcept : isArray_((map.vt & VT_ARRAY) != 0) {
  if (!isArray_) return;
  SAFEARRAY* const array = ArrayOf(map);
  if (array == nullptr || FAILED(::SafeArrayLock(array))) return;
  array_ = array;
  if ((map.vt & ~VT_BYREF) == (VT_ARRAY | VT_I4)) AccessData();
}

FieldMap::FieldMap(FieldMap&& other) noexcept
    : isArray_(std::exchange(other.isArray_, false)),
      array_(std::exchange(other.array_, nullptr)),
      data_(std::exchange(other.data_, nullptr)),
      size_(std::exchange(other.size_, 0u)) {}

FieldMap::~FieldMap() {
  if (data_ != nullptr) ::SafeArrayUnaccessData(array_);
  if (array_ != nullptr) ::SafeArrayUnlock(array_);
}

// The variant's word may belie the array, so the array is asked as well.
void FieldMap::AccessData() noexcept {
  if (::SafeArrayGetDim(array_) != 1 || ::SafeArrayGetElemsize(array_) != sizeof(LONG)) return;
  void* data = nullptr;
  if (FAILED(::SafeArrayAccessData(array_, &data))) return;
  size_ = array_->rgsabound[0].cElements;
  data_ = data != nullptr ? static_cast<const LONG*>(data) : kNoEntries;
  if (data == nullptr) size_ = 0;
}

}  // namespace quenra
