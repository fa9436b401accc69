// One error of a thread's chain: the error object that the host reads, with what HostChainedError
// adds. Unchangeable once made, so that threads may share it.
#pragma once

#include <string>

#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostErrors.h"

namespace quenra {

class ChainedError final : public Implements<IErrorInfo, HostChainedError> {
 public:
  // `next` is the error chained before this one; null allowed.
  ChainedError(HRESULT code, const GUID& source, std::u16string text,
               ComPtr<HostChainedError> next) noexcept;

  std::u16string_view ClassName() const noexcept override { return u"ChainedError"; }

  // IErrorInfo. The source is the source identifier's text; there is no help file.
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

 private:
  ~ChainedError() override = default;

  const HRESULT code_;
  const GUID source_;
  const std::u16string text_;
  const ComPtr<HostChainedError> next_;
};

}  // namespace quenra
