// The embedded host's array of objects. It only grows.
#pragma once

#include <vector>

#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostArray.h"
#include "host/interfaces/HostClasses.h"

namespace quenra {

class EmbeddedArray final : public Implements<HostArray> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedArray"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostArray; }

  HRESULT STDMETHODCALLTYPE GetCount(LONG* count) override;
  HRESULT STDMETHODCALLTYPE GetElement(LONG index, IUnknown** element) override;
  // E_INVALIDARG for a null element.
  HRESULT STDMETHODCALLTYPE Add(IUnknown* element) override;

 private:
  std::vector<ComPtr<IUnknown>> elements_;
};

}  // namespace quenra
