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

ErrorChain NewError(HRESULT code, const ErrorOrigin& origin, std::u16string_view text,
                    ErrorChain next) {
  return MakeObject<ChainedError>(code, origin, text, std::move(next)).As<HostChainedError>();
}

// What `error` says, as an error of ours in front of `next`.
ErrorChain CopyInfo(IErrorInfo& error, HRESULT code, ErrorChain next) {
  GUID id = {};
  BString source;
  BString helpFile;
  BString text;
  error.GetGUID(&id);
  error.GetSource(source.Receive());
  error.GetHelpFile(helpFile.Receive());
  error.GetDescription(text.Receive());
  return NewError(code, {id, source.View(), helpFile.View()}, text.View(), std::move(next));
}

// An error object that somebody else left on the thread. Its code is not known any more.
ErrorChain WrapForeignError(IErrorInfo& error) { return CopyInfo(error, E_FAIL, nullptr); }

// A copy of `error` in front of `next`.
ErrorChain CopyError(HostChainedError& error, ErrorChain next) {
  HRESULT code = E_FAIL;
  error.GetCode(&code);
  if (const auto info = QueryFor<IErrorInfo>(&error)) return CopyInfo(*info, code, std::move(next));
  GUID id = {};
  BString text;
  error.GetSourceId(&id);
  error.GetText(text.Receive());
  return NewError(code, {id}, text.View(), std::move(next));
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
  return ChainError(code, ErrorOrigin{source}, text);
}

HRESULT DataAccessUtil::ChainError(HRESULT code, const ErrorOrigin& origin,
                                   std::u16string_view text) noexcept {
  try {
    const ErrorChain chain = NewError(code, origin, text, Shorten(TakeChain(), kLongestChain - 1));
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
