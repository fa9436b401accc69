// The embedded host's class identifier object.
#pragma once

#include "host/com/Implements.h"
#include "host/interfaces/HostClassIdentifier.h"
#include "host/interfaces/HostClasses.h"

namespace quenra {

class EmbeddedClassIdentifier final : public Implements<HostClassIdentifier> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedClassIdentifier"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostClassIdentifier; }

  HRESULT STDMETHODCALLTYPE GetValue(GUID* value) override;
  // E_INVALIDARG for a null value.
  HRESULT STDMETHODCALLTYPE SetValue(const GUID* value) override;
  HRESULT STDMETHODCALLTYPE GetText(BSTR* text) override;

 private:
  GUID value_ = {};
};

}  // namespace quenra
