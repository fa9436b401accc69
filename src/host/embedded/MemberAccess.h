// The bodies that the embedded objects' plain getters and setters have in common.
#pragma once

#include <string>

#include "host/com/ComCatch.h"
#include "platform/OleText.h"

namespace quenra {

template <class Value>
HRESULT CopyOut(const Value& member, Value* result) noexcept {
  if (result == nullptr) return E_POINTER;
  *result = member;
  return S_OK;
}

// A null text is an empty one. After a failure the member is as it was.
inline HRESULT CopyIn(BSTR text, std::u16string& member) noexcept {
  try {
    member.assign(ViewOf(text));
    return S_OK;
  } catch (...) {
    return HResultFromCurrentException();
  }
}

}  // namespace quenra
