// Errors with text for the host.
#pragma once

#include <string_view>

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

  // Chains an error of an object that has neither source text nor help file.
  QUENRA_HOST_API static HRESULT ChainError(HRESULT code, const GUID& source,
                                            std::u16string_view text) noexcept;
};

}  // namespace quenra
