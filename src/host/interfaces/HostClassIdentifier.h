// The host's object that carries one class identifier.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// A class identifier as an object. Default value: all zero.
struct HostClassIdentifier : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetValue(GUID* value) = 0;
  // `value` is copied.
  virtual HRESULT STDMETHODCALLTYPE SetValue(const GUID* value) = 0;
  // "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"; the caller frees the text.
  virtual HRESULT STDMETHODCALLTYPE GetText(BSTR* text) = 0;
};

inline constexpr IID IID_HostClassIdentifier = {
    0xd2886d12, 0x9335, 0x49de, {0xb8, 0xf6, 0xb3, 0xf5, 0xc0, 0x05, 0xe4, 0xcf}};
template <>
inline constexpr const IID& kInterfaceId<HostClassIdentifier> = IID_HostClassIdentifier;

}  // namespace quenra
