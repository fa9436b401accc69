#include "host/com/ClassIDImpl.h"

#include "host/com/ProgIds.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE ClassIDImpl::GetClassID(CLSID* classId) {
  if (classId == nullptr) return E_POINTER;
  const CLSID* const own = object().ClassId();
  *classId = own != nullptr ? *own : CLSID{};
  return own != nullptr ? S_OK : E_FAIL;
}

HRESULT STDMETHODCALLTYPE ClassIDImpl::GetProgID(BSTR* progId) {
  if (progId == nullptr) return E_POINTER;
  *progId = nullptr;
  const CLSID* const own = object().ClassId();
  return own != nullptr ? ProgIdOfClass(*own, progId) : E_FAIL;
}

}  // namespace quenra
