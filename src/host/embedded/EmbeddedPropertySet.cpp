#include "host/embedded/EmbeddedPropertySet.h"

#include <utility>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/com/ComCatch.h"

namespace quenra {
namespace {

std::u16string KeyOf(BSTR name) {
  std::u16string key(ViewOf(name));
  for (char16_t& unit : key) unit = ToUpper(unit);
  return key;
}

}  // namespace

HRESULT STDMETHODCALLTYPE EmbeddedPropertySet::GetProperty(BSTR name, VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  ::VariantInit(value);
  try {
    const auto found = values_.find(KeyOf(name));
    return found != values_.end() ? found->second.CopyTo(value) : S_FALSE;
  } catch (...) {
    return HResultFromCurrentException();
  }
}

HRESULT STDMETHODCALLTYPE EmbeddedPropertySet::SetProperty(BSTR name, const VARIANT* value) {
  if (value == nullptr || ViewOf(name).empty()) return E_INVALIDARG;
  try {
    Variant copy;
    const HRESULT result = copy.CopyFrom(*value);
    if (FAILED(result)) return result;
    values_.insert_or_assign(KeyOf(name), std::move(copy));
    return S_OK;
  } catch (...) {
    return HResultFromCurrentException();
  }
}

HRESULT STDMETHODCALLTYPE EmbeddedPropertySet::GetPropertyCount(LONG* count) {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<LONG>(values_.size());
  return S_OK;
}

}  // namespace quenra
