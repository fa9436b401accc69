#include "host/embedded/EmbeddedFileNames.h"

#include "host/CoreSupport/BString.h"
#include "host/com/ComCatch.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE EmbeddedFileNames::Reset() {
  next_ = 0;
  hasCurrent_ = false;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedFileNames::Next(BSTR* name, VARIANT_BOOL* isDirectory) {
  if (name != nullptr) *name = nullptr;
  if (isDirectory != nullptr) *isDirectory = VARIANT_FALSE;
  if (name == nullptr || isDirectory == nullptr) return E_POINTER;
  if (next_ == entries_.size()) {
    hasCurrent_ = false;
    return S_FALSE;
  }
  const Entry& entry = entries_[next_];
  const HRESULT result = CopyToBstr(entry.name, name);
  if (FAILED(result)) return result;
  *isDirectory = entry.isDirectory ? VARIANT_TRUE : VARIANT_FALSE;
  ++next_;
  hasCurrent_ = true;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedFileNames::RemoveCurrent() {
  if (!hasCurrent_) return E_FAIL;
  --next_;
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(next_));
  hasCurrent_ = false;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedFileNames::Add(BSTR name, VARIANT_BOOL isDirectory) {
  try {
    entries_.push_back({std::u16string(ViewOf(name)), isDirectory != VARIANT_FALSE});
    return S_OK;
  } catch (...) {
    return HResultFromCurrentException();
  }
}

}  // namespace quenra
