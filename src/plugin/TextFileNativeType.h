// Tells the host what kind of native data text tables are.
#pragma once

#include "host/com/Implements.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/PlugInNativeType.h"

namespace quenra {

class TextFileNativeType final : public Implements<INativeType> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"TextFileNativeType"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_TextFileNativeType; }

  // A new identifier object; E_FAIL and null when the host cannot make one.
  HRESULT STDMETHODCALLTYPE NativeTypeId(HostClassIdentifier** id) override;
  HRESULT STDMETHODCALLTYPE Name(BSTR* name) override;
};

}  // namespace quenra
