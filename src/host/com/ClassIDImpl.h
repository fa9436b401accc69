// The IHostClassId of every object.
#pragma once

#include "host/com/TearOff.h"

namespace quenra {

class ClassIDImpl final : public TearOff<ClassIDImpl, IHostClassId> {
 public:
  explicit ClassIDImpl(Unknown& object) noexcept : TearOff(object) {}

  // E_FAIL and GUID_NULL for an object whose class has no identifier.
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) override;
  // E_FAIL and null for an object whose class has no identifier; otherwise what the system answers
  // for the identifier. The caller frees the text.
  HRESULT STDMETHODCALLTYPE GetProgID(BSTR* progId) override;
};

}  // namespace quenra
