#include "host/DataCore/DataAccessUtil.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/BString.h"
#include "host/DataCore/ChainedError.h"

namespace quenra {
namespace {

// A host that never reads its errors must not make a thread's chain grow without end. The errors of
// one call may be more: a row has as many as it has columns whose values do not fit.
constexpr std::size_t kLongestChain = 64;

using ErrorChain = ComPtr<HostChainedError>;

ErrorChain NewError(HRESULT code, const ErrorOrigin& origin, MessageText message, ErrorChain next) {
  return MakeObject<ChainedError>(code, origin, std::move(message), std::move(next))
      .As<HostChainedError>();
}

// Which parts of an error's text were put in; none when it does not say.
std::vector<TextPart> InsertsOf(IErrorInfo& error) {
  std::vector<TextPart> inserts;
  LONG count = 0;
  const auto parts = QueryFor<HostErrorInserts>(&error);
  if (!parts || FAILED(parts->GetInsertCount(&count))) return inserts;
  for (LONG i = 0; i < count; ++i) {
    LONG begin = 0;
    LONG length = 0;
    if (FAILED(parts->GetInsert(i, &begin, &length))) break;
    inserts.push_back({static_cast<std::size_t>(begin), static_cast<std::size_t>(length)});
  }
  return inserts;
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
  return NewError(code, {id, source.View(), helpFile.View()},
                  {std::u16string(text.View()), InsertsOf(error)}, std::move(next));
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
  return NewError(code, {id}, {std::u16string(text.View()), {}}, std::move(next));
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

void Report(HRESULT code, std::u16string_view text) noexcept {
  EventLogRecord record;
  record.kind = EventLogRecord::Kind::kError;
  record.code = static_cast<std::uint32_t>(code);
  record.text = text;
  EventLog::Report(record);
}

}  // namespace

HRESULT DataAccessUtil::ChainError(HRESULT code, const GUID& source,
                                   std::u16string_view text) noexcept {
  return ChainError(code, ErrorOrigin{source}, text);
}

HRESULT DataAccessUtil::ChainError(HRESULT code, const ErrorOrigin& origin,
                                   std::u16string_view text) noexcept {
  try {
    const ErrorChain chain =
        NewError(code, origin, {std::u16string(text), {}}, Shorten(TakeChain(), kLongestChain - 1));
    ::SetErrorInfo(0, chain.As<IErrorInfo>().Get());
  } catch (...) {
    // Out of memory: the code alone has to do.
  }
  Report(code, text);
  return code;
}

HRESULT DataAccessUtil::ChainErrors(HRESULT code, const ErrorOrigin& origin,
                                    std::span<const MessageText> messages) noexcept {
  try {
    const std::size_t count = messages.size();
    ErrorChain chain = Shorten(TakeChain(), kLongestChain - std::min(count, kLongestChain));
    for (const MessageText& message : messages)
      chain = NewError(code, origin, message, std::move(chain));
    if (chain) ::SetErrorInfo(0, chain.As<IErrorInfo>().Get());
  } catch (...) {
    // Out of memory: the code alone has to do.
  }
  for (const MessageText& message : messages) Report(code, message.text);
  return code;
}

}  // namespace quenra
