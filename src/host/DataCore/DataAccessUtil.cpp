#include "host/DataCore/DataAccessUtil.h"

#include <string>
#include <utility>
#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/BString.h"
#include "host/DataCore/ChainedError.h"

namespace quenra {
namespace {

// A host that never reads its errors must not make a thread's chain grow without end.
constexpr std::size_t kLongestChain = 64;

using ErrorChain = ComPtr<HostChainedError>;

ErrorChain NewError(HRESULT code, const GUID& source, std::u16string_view text, ErrorChain next) {
  return MakeObject<ChainedError>(code, source, std::u16string(text), std::move(next))
      .As<HostChainedError>();
}

// An error object that somebody else left on the thread. Its code is not known any more.
ErrorChain WrapForeignError(IErrorInfo& error) {
  GUID source = {};
  BString text;
  error.GetGUID(&source);
  error.GetDescription(text.Receive());
  return NewError(E_FAIL, source, text.View(), nullptr);
}

// A copy of `error` in front of `next`.
ErrorChain CopyError(HostChainedError& error, ErrorChain next) {
  HRESULT code = E_FAIL;
  GUID source = {};
  BString text;
  error.GetCode(&code);
  error.GetSourceId(&source);
  error.GetText(text.Receive());
  return NewError(code, source, text.View(), std::move(next));
}

// The chain without what goes beyond its first `limit` errors. Errors cannot be changed, since a
// host may hold them: a chain that is too long is made again.
ErrorChain Shorten(ErrorChain chain, std::size_t limit) {
  std::vector<ErrorChain> newest;
  for (ErrorChain error = chain; error && newest.size() <= limit;) {
    newest.push_back(error);
    ErrorChain next;
    error->GetNext(next.Receive());
    error = std::move(next);
  }
  if (newest.size() <= limit) return chain;
  ErrorChain shortened;
  for (std::size_t i = limit; i-- > 0;) shortened = CopyError(*newest[i], std::move(shortened));
  return shortened;
}

// Takes the thread's chain away; null when there is none.
ErrorChain TakeChain() {
  ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, info.Receive()) != S_OK || !info) return nullptr;
  if (ErrorChain chain = info.As<HostChainedError>()) return chain;
  return WrapForeignError(*info);
}

}  // namespace

HRESULT DataAccessUtil::ChainError(HRESULT code, const GUID& source,
                                   std::u16string_view text) noexcept {
  try {
    const ErrorChain chain = NewError(code, source, text, Shorten(TakeChain(), kLongestChain - 1));
    ::SetErrorInfo(0, chain.As<IErrorInfo>().Get());
  } catch (...) {
    // Out of memory: the code alone has to do.
  }
  EventLogRecord record;
  record.kind = EventLogRecord::Kind::kError;
  record.code = static_cast<std::uint32_t>(code);
  record.text = text;
  EventLog::Report(record);
  return code;
}

}  // namespace quenra
