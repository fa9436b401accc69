// The embedded host's field collection. It only grows.
#pragma once

#include <vector>

#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFields.h"

namespace quenra {

class EmbeddedFieldCollection final
    : public Implements<HostFieldCollection, HostFieldCollectionEdit> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedFieldCollection"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostFieldCollection; }

  // HostFieldCollection
  HRESULT STDMETHODCALLTYPE GetFieldCount(LONG* count) override;
  HRESULT STDMETHODCALLTYPE GetField(LONG index, HostField** field) override;
  HRESULT STDMETHODCALLTYPE FindField(BSTR name, LONG* index) override;

  // HostFieldCollectionEdit. E_INVALIDARG for a null field.
  HRESULT STDMETHODCALLTYPE AddField(HostField* field) override;

 private:
  std::vector<ComPtr<HostField>> fields_;
};

}  // namespace quenra
