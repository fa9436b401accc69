#include "host/embedded/EmbeddedRowBuffer.h"

#include "host/com/ComCatch.h"
#include "host/embedded/EmbeddedFieldCollection.h"

namespace quenra {

static_assert(sizeof(Variant) == sizeof(VARIANT), "an array of the one is one of the other");

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
  return CopyVariant(values_[static_cast<std::size_t>(index)].Get(), *value);
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

HRESULT STDMETHODCALLTYPE EmbeddedRowBuffer::LendValues(const VARIANT** values, LONG* count) {
  if (values == nullptr || count == nullptr) return E_POINTER;
  *values = nullptr;
  *count = 0;
  LONG fields = 0;
  const HRESULT result = fields_->GetFieldCount(&fields);
  if (FAILED(result)) return result;
  if (fields < 0 || static_cast<ULONG>(fields) != count_) return E_FAIL;
  if (count_ == 0) return S_OK;
  *values = values_[0].Address();
  *count = fields;
  return S_OK;
}

}  // namespace quenra
