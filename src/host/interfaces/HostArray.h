// The host's ordered array of objects.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// Indexes from 0. The array holds a reference to each element.
struct HostArray : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetCount(LONG* count) = 0;
  // E_INVALIDARG when `index` is outside the array; the caller releases the element.
  virtual HRESULT STDMETHODCALLTYPE GetElement(LONG index, IUnknown** element) = 0;
  virtual HRESULT STDMETHODCALLTYPE Add(IUnknown* element) = 0;
};

inline constexpr IID IID_HostArray = {
    0x46de2666, 0x7e3f, 0x463c, {0x89, 0xe9, 0x1d, 0xef, 0x34, 0x54, 0xec, 0x0b}};
template <>
inline constexpr const IID& kInterfaceId<HostArray> = IID_HostArray;

}  // namespace quenra
