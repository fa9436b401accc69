// The host's buffer of one row, handed to a loader.
#pragma once

#include "host/interfaces/InterfaceId.h"
#include "host/interfaces/HostFields.h"

namespace quenra {

// One value a field, in the order of the fields; indexes from 0. Values are copied in and out.
struct HostRowBuffer : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetFields(HostFieldCollection** fields) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetValue(LONG index, VARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetValue(LONG index, const VARIANT* value) = 0;
};

inline constexpr IID IID_HostRowBuffer =
    {0xca8137a4, 0xea28, 0x4654, {0xa3, 0x64, 0xba, 0x96, 0x10, 0x13, 0xda, 0x3d}};
template <>
inline constexpr const IID& kInterfaceId<HostRowBuffer> = IID_HostRowBuffer;

}  // namespace quenra
