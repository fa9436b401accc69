#include "host/embedded/EmbeddedFieldCollection.h"

#include "host/CoreSupport/BString.h"
#include "host/DataCore/DataCoreUtil.h"
#include "host/com/ComCatch.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE EmbeddedFieldCollection::GetFieldCount(LONG* count) {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<LONG>(fields_.size());
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedFieldCollection::GetField(LONG index, HostField** field) {
  if (field == nullptr) return E_POINTER;
  *field = nullptr;
  const auto place = static_cast<std::size_t>(index);
  if (index < 0 || place >= fields_.size()) return E_INVALIDARG;
  *field = ComPtr<HostField>(fields_[place]).Detach();
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedFieldCollection::FindField(BSTR name, LONG* index) {
  if (index == nullptr) return E_POINTER;
  *index = -1;
  for (std::size_t place = 0; place < fields_.size(); ++place) {
    BString fieldName;
    const HRESULT result = fields_[place]->GetName(fieldName.Receive());
    if (FAILED(result)) return result;
    if (!DataCoreUtil::CompareFoldCase(fieldName.View(), ViewOf(name))) continue;
    *index = static_cast<LONG>(place);
    return S_OK;
  }
  return S_FALSE;
}

HRESULT STDMETHODCALLTYPE EmbeddedFieldCollection::AddField(HostField* field) {
  if (field == nullptr) return E_INVALIDARG;
  try {
    fields_.emplace_back(field);
    return S_OK;
  } catch (...) {
    return HResultFromCurrentException();
  }
}

}  // namespace quenra
