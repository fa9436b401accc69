#include "host/embedded/EmbeddedArray.h"

#include "host/com/ComCatch.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE EmbeddedArray::GetCount(LONG* count) {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<LONG>(elements_.size());
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedArray::GetElement(LONG index, IUnknown** element) {
  if (element == nullptr) return E_POINTER;
  *element = nullptr;
  const auto place = static_cast<std::size_t>(index);
  if (index < 0 || place >= elements_.size()) return E_INVALIDARG;
  *element = ComPtr<IUnknown>(elements_[place]).Detach();
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedArray::Add(IUnknown* element) {
  if (element == nullptr) return E_INVALIDARG;
  try {
    elements_.emplace_back(element);
    return S_OK;
  } catch (...) {
    return HResultFromCurrentException();
  }
}

}  // namespace quenra
