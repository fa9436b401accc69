#include "plugin/TextFileNativeType.h"

#include "host/CoreSupport/BString.h"
#include "host/com/ComCatch.h"
#include "plugin/HostObjects.h"
#include "resources/ResourceStrings.h"
#include "resources/StringIds.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE TextFileNativeType::NativeTypeId(HostClassIdentifier** id) {
  return NewClassIdentifier(CLSID_TextFileNativeType, id);
}

HRESULT STDMETHODCALLTYPE TextFileNativeType::Name(BSTR* name) try {
  if (name == nullptr) return E_POINTER;
  *name = nullptr;
  return CopyToBstr(LoadResourceString(kTextFileText), name);
} catch (...) {
  return HResultFromCurrentException();
}

}  // namespace quenra
