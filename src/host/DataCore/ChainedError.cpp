#include "host/DataCore/ChainedError.h"

#include <utility>

#include "host/CoreSupport/BString.h"

namespace quenra {

namespace {

// An empty text is answered as null, as an error object of the system answers what was never set.
HRESULT CopyIfAny(std::u16string_view text, BSTR* result) noexcept {
  if (result == nullptr) return E_POINTER;
  *result = nullptr;
  return text.empty() ? S_OK : CopyToBstr(text, result);
}

}  // namespace

ChainedError::ChainedError(HRESULT code, const ErrorOrigin& origin, std::u16string_view text,
                           ComPtr<HostChainedError> next)
    : code_(code),
      sourceId_(origin.id),
      source_(origin.source),
      helpFile_(origin.helpFile),
      text_(text),
      next_(std::move(next)) {}

HRESULT STDMETHODCALLTYPE ChainedError::GetGUID(GUID* guid) { return GetSourceId(guid); }

HRESULT STDMETHODCALLTYPE ChainedError::GetSource(BSTR* source) {
  return CopyIfAny(source_, source);
}

HRESULT STDMETHODCALLTYPE ChainedError::GetDescription(BSTR* description) {
  return CopyToBstr(text_, description);
}

HRESULT STDMETHODCALLTYPE ChainedError::GetHelpFile(BSTR* helpFile) {
  return CopyIfAny(helpFile_, helpFile);
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
  *source = sourceId_;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetNext(HostChainedError** next) {
  if (next == nullptr) return E_POINTER;
  *next = ComPtr<HostChainedError>(next_).Detach();
  return *next != nullptr ? S_OK : S_FALSE;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetText(BSTR* text) { return CopyToBstr(text_, text); }

}  // namespace quenra
