// One error of a thread's chain: the error object that the host reads, with what HostChainedError
// and HostErrorInserts add. Unchangeable once made, so that threads may share it.
#pragma once

#include <string>

#include "host/CoreSupport/MessageText.h"
#include "host/DataCore/DataAccessUtil.h"
#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostErrors.h"

namespace quenra {

class ChainedError final : public Implements<IErrorInfo, HostChainedError, HostErrorInserts> {
 public:
  // `next` is the error chained before this one; null allowed. Throws std::bad_alloc.
  ChainedError(HRESULT code, const ErrorOrigin& origin, MessageText message,
               ComPtr<HostChainedError> next);

  std::u16string_view ClassName() const noexcept override { return u"ChainedError"; }

  // IErrorInfo. A source or help file that the origin lacks is a null text.
  HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) override;
  HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override;
  HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) override;
  HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* helpFile) override;
  HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* helpContext) override;

  // HostChainedError
  HRESULT STDMETHODCALLTYPE GetCode(HRESULT* code) override;
  HRESULT STDMETHODCALLTYPE GetSourceId(GUID* source) override;
  HRESULT STDMETHODCALLTYPE GetNext(HostChainedError** next) override;
  HRESULT STDMETHODCALLTYPE GetText(BSTR* text) override;

  // HostErrorInserts
  HRESULT STDMETHODCALLTYPE GetInsertCount(LONG* count) override;
  HRESULT STDMETHODCALLTYPE GetInsert(LONG index, LONG* begin, LONG* length) override;

 private:
  ~ChainedError() override;

  const HRESULT code_;
  const GUID sourceId_;
  const std::u16string source_;
  const std::u16string helpFile_;
  const MessageText message_;
  ComPtr<HostChainedError> next_;
};

}  // namespace quenra
