// The embedded host's property set.
#pragma once

#include <map>
#include <string>

#include "host/CoreSupport/Variant.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostPropertySet.h"

namespace quenra {

class EmbeddedPropertySet final : public Implements<HostPropertySet> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedPropertySet"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostPropertySet; }

  HRESULT STDMETHODCALLTYPE GetProperty(BSTR name, VARIANT* value) override;
  // E_INVALIDARG for an empty name or a null value. What a VT_BYREF value points at is copied.
  HRESULT STDMETHODCALLTYPE SetProperty(BSTR name, const VARIANT* value) override;
  HRESULT STDMETHODCALLTYPE GetPropertyCount(LONG* count) override;

 private:
  std::map<std::u16string, Variant> values_;  // by the name in upper case
};

}  // namespace quenra
