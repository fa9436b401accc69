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
  if (!HasField(index)) {
    ::VariantInit(value);
    return E_INVALIDARG;
  }
  const Variant& held = values_[static_cast<std::size_t>(index)];
  if (!lendsTexts_ || held.Type() != VT_BSTR) return CopyVariant(held.Get(), *value);
  held.LendTextTo(*value);
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedRowBuffer::SetValue(LONG index, const VARIANT* value) {
  if (value == nullptr || !HasField(index)) return E_INVALIDARG;
  Variant copy;
  const HRESULT result = copy.CopyFrom(*value);
  if (SUCCEEDED(result)) values_[static_cast<std::size_t>(index)] = std::move(copy);
  return result;
}

HRESULT STDMETHODCALLTYPE EmbeddedRowBuffer::SetFields(HostFieldCollection* fields) {
  if (fields == nullptr) return E_INVALIDARG;
  LONG count = 0;
  const HRESULT result = fields->GetFieldCount(&count);
  if (FAILED(result)) return result;
  try {
    const auto places = static_cast<ULONG>(count < 0 ? 0 : count);
    values_ = std::make_unique<Variant[]>(places);
    count_ = places;
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
