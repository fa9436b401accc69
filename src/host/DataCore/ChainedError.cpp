#include "host/DataCore/ChainedError.h"

#include <utility>

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/GuidText.h"
#include "host/com/ComCatch.h"

namespace quenra {

ChainedError::ChainedError(HRESULT code, const GUID& source, std::u16string text,
                           ComPtr<HostChainedError> next) noexcept
    : code_(code), source_(source), text_(std::move(text)), next_(std::move(next)) {}

HRESULT STDMETHODCALLTYPE ChainedError::GetGUID(GUID* guid) { return GetSourceId(guid); }

HRESULT STDMETHODCALLTYPE ChainedError::GetSource(BSTR* source) {
  if (source == nullptr) return E_POINTER;
  *source = nullptr;
  try {
    return CopyToBstr(GuidText(source_), source);
  } catch (...) {
    return HResultFromCurrentException();
  }
}

HRESULT STDMETHODCALLTYPE ChainedError::GetDescription(BSTR* description) {
  return CopyToBstr(text_, description);
}

HRESULT STDMETHODCALLTYPE ChainedError::GetHelpFile(BSTR* helpFile) {
  if (helpFile == nullptr) return E_POINTER;
  *helpFile = nullptr;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetHelpContext(DWORD* helpContext) {
  if (helpContext == nullptr) return E_POINTER;
  *helpContext = 0;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetCode(HRESULT* code) {
  if (code == nullptr) return E_POINTER;
  *code = code_;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetSourceId(GUID* source) {
  if (source == nullptr) return E_POINTER;
  *source = source_;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetNext(HostChainedError** next) {
  if (next == nullptr) return E_POINTER;
  *next = ComPtr<HostChainedError>(next_).Detach();
  return *next != nullptr ? S_OK : S_FALSE;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetText(BSTR* text) { return CopyToBstr(text_, text); }

}  // namespace quenra
