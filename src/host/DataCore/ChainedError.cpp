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

ChainedError::ChainedError(HRESULT code, const ErrorOrigin& origin, MessageText message,
                           ComPtr<HostChainedError> next)
    : code_(code),
      sourceId_(origin.id),
      source_(origin.source),
      helpFile_(origin.helpFile),
      message_(std::move(message)),
      next_(std::move(next)) {}

// The errors behind one that goes away go one after the other. A chain may be as long as a table
// has columns: were each destroyed inside the one before it, the stack would not hold them all.
ChainedError::~ChainedError() {
  thread_local ComPtr<HostChainedError>* outermost = nullptr;
  if (outermost != nullptr) {
    *outermost = std::move(next_);
    return;
  }
  ComPtr<HostChainedError> behind = std::move(next_);
  outermost = &behind;
  while (behind) {
    // Goes away at the end of the block, and leaves the one behind it.
    ComPtr<HostChainedError> last;
    std::swap(last, behind);
  }
  outermost = nullptr;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetGUID(GUID* guid) { return GetSourceId(guid); }

HRESULT STDMETHODCALLTYPE ChainedError::GetSource(BSTR* source) {
  return CopyIfAny(source_, source);
}

HRESULT STDMETHODCALLTYPE ChainedError::GetDescription(BSTR* description) {
  return CopyToBstr(message_.text, description);
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

HRESULT STDMETHODCALLTYPE ChainedError::GetText(BSTR* text) {
  return CopyToBstr(message_.text, text);
}

HRESULT STDMETHODCALLTYPE ChainedError::GetInsertCount(LONG* count) {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<LONG>(message_.inserts.size());
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ChainedError::GetInsert(LONG index, LONG* begin, LONG* length) {
  if (begin == nullptr || length == nullptr) return E_POINTER;
  *begin = *length = 0;
  if (index < 0 || static_cast<std::size_t>(index) >= message_.inserts.size()) return E_INVALIDARG;
  const TextPart& part = message_.inserts[static_cast<std::size_t>(index)];
  *begin = static_cast<LONG>(part.begin);
  *length = static_cast<LONG>(part.length);
  return S_OK;
}

}  // namespace quenra
