#include "host/com/ComCatch.h"

#include <boost/system/system_error.hpp>
#include <new>

namespace quenra {
namespace {

HRESULT HResultFromSystemCode(int code) noexcept {
  if (code <= 0) return code;
  return static_cast<HRESULT>((static_cast<DWORD>(code) & 0xFFFFu) | 0x80070000u);
}

}  // namespace

HRESULT HResultFromCurrentException() noexcept {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const boost::system::system_error& error) {
    return HResultFromSystemCode(error.code().value());
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace quenra
