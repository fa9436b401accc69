#include "host/embedded/EmbeddedRowBuffer.h"

#include "host/com/ComCatch.h"
#include "host/embedded/EmbeddedFieldCollection.h"

namespace quenra {

EmbeddedRowBuffer::EmbeddedRowBuffer()
    : fields_(MakeObject<EmbeddedFieldCollection>().As<HostFieldCollection>()) {}

HRESULT STDMETHODCALLTYPE EmbeddedRowBuffer::GetFields(HostFieldCollection** fields) {
  if (fields == nullptr) return E_POINTER;
  *fields = ComPtr<HostFieldCollection>(fields_).Detach();
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedRowBuffer::GetValue(LONG index, VARIANT* value) {
  if (value == nullptr) return E_POINTER;
  const auto place = static_cast<std::size_t>(index);
  if (index < 0 || place >= values_.size()) {
    ::VariantInit(value);
    return E_INVALIDARG;
  }
  const Variant& held = values_[place];
  if (lendsTexts_ && held.Type() == VT_BSTR) {
    *value = held.Lent();
    return S_OK;
  }
  return held.CopyTo(value);
}

HRESULT STDMETHODCALLTYPE EmbeddedRowBuffer::SetValue(LONG index, const VARIANT* value) {
  const auto place = static_cast<std::size_t>(index);
  if (value == nullptr || index < 0 || place >= values_.size()) return E_INVALIDARG;
  Variant copy;
  const HRESULT result = copy.CopyFrom(*value);
  if (SUCCEEDED(result)) values_[place] = std::move(copy);
  return result;
}

HRESULT STDMETHODCALLTYPE EmbeddedRowBuffer::SetFields(HostFieldCollection* fields) {
  if (fields == nullptr) return E_INVALIDARG;
  LONG count = 0;
  const HRESULT result = fields->GetFieldCount(&count);
  if (FAILED(result)) return result;
  try {
    std::vector<Variant> values(static_cast<std::size_t>(count < 0 ? 0 : count));
    values_.swap(values);
    fields_ = ComPtr<HostFieldCollection>(fields);
    return S_OK;
  } catch (...) {
    return HResultFromCurrentException();
  }
}

HRESULT STDMETHODCALLTYPE EmbeddedRowBuffer::LendTexts(VARIANT_BOOL lend) {
  lendsTexts_ = lend != VARIANT_FALSE;
  return S_OK;
}

}  // namespace quenra
