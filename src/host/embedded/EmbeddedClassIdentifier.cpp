#include "host/embedded/EmbeddedClassIdentifier.h"

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/GuidText.h"
#include "host/com/ComCatch.h"
#include "host/embedded/MemberAccess.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE EmbeddedClassIdentifier::GetValue(GUID* value) {
  return CopyOut(value_, value);
}

HRESULT STDMETHODCALLTYPE EmbeddedClassIdentifier::SetValue(const GUID* value) {
  if (value == nullptr) return E_INVALIDARG;
  value_ = *value;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedClassIdentifier::GetText(BSTR* text) {
  if (text == nullptr) return E_POINTER;
  *text = nullptr;
  try {
    return CopyToBstr(GuidText(value_), text);
  } catch (...) {
    return HResultFromCurrentException();
  }
}

}  // namespace quenra
