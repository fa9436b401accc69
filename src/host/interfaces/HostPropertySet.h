// The host's set of named values, such as the properties of a workspace connection.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// Names are compared without regard to case. Values are copied in and out.
struct HostPropertySet : public IUnknown {
  // S_FALSE and VT_EMPTY when there is no such property; the caller clears `value`.
  virtual HRESULT STDMETHODCALLTYPE GetProperty(BSTR name, VARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetProperty(BSTR name, const VARIANT* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPropertyCount(LONG* count) = 0;
};

inline constexpr IID IID_HostPropertySet = {
    0x2f601c4d, 0x83f2, 0x440f, {0x8b, 0x00, 0x2a, 0x63, 0xab, 0x13, 0xfc, 0x19}};
template <>
inline constexpr const IID& kInterfaceId<HostPropertySet> = IID_HostPropertySet;

}  // namespace quenra
