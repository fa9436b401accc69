// What a host-facing method answers for an exception: the one place where exceptions end.
//
//   HRESULT STDMETHODCALLTYPE Widget::Turn(LONG degrees) try {
//     turns.push_back(degrees);  // may throw
//     return S_OK;
//   } catch (...) {
//     return HResultFromCurrentException();
//   }
#pragma once

#include "platform/ComTypes.h"

namespace quenra {

// Inside a catch block:
//   std::bad_alloc                      E_OUTOFMEMORY
//   boost::system::system_error         its code, masked to 16 bits, as a Win32 HRESULT; a code of
//     (file-system errors included)     0 or below as it is
//   anything else                       E_FAIL
HRESULT HResultFromCurrentException() noexcept;

}  // namespace quenra
