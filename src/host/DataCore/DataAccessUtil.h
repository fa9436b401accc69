// Errors with text for the host.
#pragma once

#include <span>
#include <string_view>

#include "host/CoreSupport/MessageText.h"
#include "host/HostApi.h"
#include "platform/ComTypes.h"

namespace quenra {

// Where an error comes from. The texts are copied; an empty one means that there is none.
struct ErrorOrigin {
  GUID id;                            // the error source's identifier
  std::u16string_view source = {};    // what IErrorInfo::GetSource answers
  std::u16string_view helpFile = {};  // what IErrorInfo::GetHelpFile answers
};

class DataAccessUtil {
 public:
  // Puts an error in front of the calling thread's chain, where it stays until the host reads it
  // with GetErrorInfo, and reports it to the event log. Answers `code` itself, so that a method
  // can return the call. A chain that nobody reads keeps its newest 64 errors.
  QUENRA_HOST_API static HRESULT ChainError(HRESULT code, const ErrorOrigin& origin,
                                            std::u16string_view text) noexcept;

  // Chains the errors that one call has to tell of, the oldest first, and reports each. However
  // many they are, the chain holds them all until the next call that chains: only of those before
  // them no more are kept than leave room for 64 in all.
  QUENRA_HOST_API static HRESULT ChainErrors(HRESULT code, const ErrorOrigin& origin,
                                             std::span<const MessageText> messages) noexcept;

  // Chains an error of an object that has neither source text nor help file.
  QUENRA_HOST_API static HRESULT ChainError(HRESULT code, const GUID& source,
                                            std::u16string_view text) noexcept;
};

}  // namespace quenra
