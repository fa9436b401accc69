#include "host/embedded/EmbeddedFieldCollection.h"

#include <algorithm>

#include "host/CoreSupport/BString.h"
#include "host/DataCore/DataCoreUtil.h"
#include "host/com/ComCatch.h"
#include "host/embedded/EmbeddedField.h"

namespace quenra {
HRESULT STDMETHODCALLTYPE EmbeddedFieldCollection::GetFieldCount(LONG* count) {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<LONG>(Size());
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedFieldCollection::GetField(LONG index, HostField** field) {
  if (field == nullptr) return E_POINTER;
  *field = nullptr;
  const auto place = static_cast<std::size_t>(index);
  if (index < 0 || place >= Size()) return E_INVALIDARG;
  if (place < sourceFields_) return GetSourceField(place, field);
  *field = ComPtr<HostField>(added_[place - sourceFields_]).Detach();
  return S_OK;
}

HRESULT EmbeddedFieldCollection::GetSourceField(std::size_t place, HostField** field) try {
  auto found = made_.find(place);
  if (found == made_.end()) {
    if (made_.size() >= mostMade_) ForgetUnused();
    MadeField made{};
    const HRESULT result = source_->MakeSourceField(static_cast<LONG>(place), made.field.Receive());
    if (FAILED(result)) return result;
    if (!made.field) return E_FAIL;
    if (const auto embedded = made.field.As<EmbeddedFieldSelf>()) {
      made.embedded = &embedded->Self();
      made.embedded->ForgetChanges();
    }
    found = made_.emplace(place, std::move(made)).first;
  }
  *field = ComPtr<HostField>(found->second.field).Detach();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

// Whether the collection alone holds the field, and can have it made again as it is.
bool EmbeddedFieldCollection::IsUnused(const MadeField& made) noexcept {
  return made.embedded != nullptr && !made.embedded->HasChanged() &&
         made.embedded->ReferenceCount() == 1;
}

// Seldom, so that it costs little for each field that is made.
void EmbeddedFieldCollection::ForgetUnused() {
  std::erase_if(made_, [](const auto& entry) { return IsUnused(entry.second); });
  mostMade_ = std::max(kFewFields, 2 * made_.size());
}

HRESULT EmbeddedFieldCollection::GetNameAt(std::size_t place, BSTR* name) const {
  if (place >= sourceFields_) return added_[place - sourceFields_]->GetName(name);
  const auto found = made_.find(place);
  if (found != made_.end()) return found->second.field->GetName(name);
  return source_->GetSourceFieldName(static_cast<LONG>(place), name);
}

HRESULT STDMETHODCALLTYPE EmbeddedFieldCollection::FindField(BSTR name, LONG* index) {
  if (index == nullptr) return E_POINTER;
  *index = -1;
  for (std::size_t place = 0; place < Size(); ++place) {
    BString fieldName;
    const HRESULT result = GetNameAt(place, fieldName.Receive());
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
    added_.emplace_back(field);
    return S_OK;
  } catch (...) {
    return HResultFromCurrentException();
  }
}

HRESULT STDMETHODCALLTYPE EmbeddedFieldCollection::FillFrom(HostFieldSource* source) {
  if (source == nullptr) return E_INVALIDARG;
  if (source_ || Size() > 0) return E_FAIL;
  LONG count = 0;
  const HRESULT result = source->GetSourceFieldCount(&count);
  if (FAILED(result)) return result;
  source_ = ComPtr<HostFieldSource>(source);
  sourceFields_ = static_cast<std::size_t>(std::max<LONG>(count, 0));
  return S_OK;
}

}  // namespace quenra
