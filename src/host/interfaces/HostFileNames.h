// The host's list of file names that data sources claim their files from.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// A list with one read position. Names are leaf names; directories are marked.
struct HostFileNames : public IUnknown {
  // The position goes before the first entry.
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  // The entry after the position. S_FALSE, a null name and VARIANT_FALSE at the end; the caller
  // frees the name.
  virtual HRESULT STDMETHODCALLTYPE Next(BSTR* name, VARIANT_BOOL* isDirectory) = 0;
  // Takes the entry last delivered by Next out of the list; Next goes on behind it. E_FAIL when
  // there is none.
  virtual HRESULT STDMETHODCALLTYPE RemoveCurrent() = 0;
  virtual HRESULT STDMETHODCALLTYPE Add(BSTR name, VARIANT_BOOL isDirectory) = 0;
};

inline constexpr IID IID_HostFileNames = {
    0x0c8baf9b, 0xcada, 0x4c81, {0x98, 0x3f, 0xf4, 0x50, 0x2f, 0x1a, 0x6c, 0xb0}};
template <>
inline constexpr const IID& kInterfaceId<HostFileNames> = IID_HostFileNames;

}  // namespace quenra
