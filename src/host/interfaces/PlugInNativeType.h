// What kind of native data a data source holds.
#pragma once

#include "host/interfaces/HostClassIdentifier.h"
#include "host/interfaces/InterfaceId.h"

namespace quenra {

// Slots in order.
struct INativeType : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE NativeTypeId(HostClassIdentifier** id) = 0;
  virtual HRESULT STDMETHODCALLTYPE Name(BSTR* name) = 0;
};

inline constexpr IID IID_INativeType = {
    0xb79f3a8b, 0xb64c, 0x4786, {0xb7, 0x65, 0x32, 0x40, 0x30, 0xd9, 0xc1, 0xbd}};
template <>
inline constexpr const IID& kInterfaceId<INativeType> = IID_INativeType;

}  // namespace quenra
