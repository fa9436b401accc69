#include "host/com/ProgIds.h"

#include "platform/Registry.h"

namespace quenra {

HRESULT ProgIdOfClass(const CLSID& classId, BSTR* progId) noexcept {
  *progId = nullptr;
  LPOLESTR text = nullptr;
  const HRESULT result = ::ProgIDFromCLSID(classId, &text);
  if (FAILED(result)) return result;
  *progId = ::SysAllocString(text);
  ::CoTaskMemFree(text);
  return *progId != nullptr ? S_OK : E_OUTOFMEMORY;
}

}  // namespace quenra
