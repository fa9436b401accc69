// The host's view of an open workspace, and its generic workspace factory.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// An open workspace.
struct HostWorkspace : public IUnknown {
  // The folder, as a new BSTR.
  virtual HRESULT STDMETHODCALLTYPE WorkspacePath(BSTR* path) = 0;
};

inline constexpr IID IID_HostWorkspace =
    {0x33d0f92b, 0x38da, 0x41e4, {0x87, 0x64, 0xa2, 0x5f, 0x67, 0x04, 0xff, 0xa7}};
template <>
inline constexpr const IID& kInterfaceId<HostWorkspace> = IID_HostWorkspace;

// What the host adds to every data source's workspace factory by aggregation.
struct HostWorkspaceFactory : public IUnknown {
  // Opens the workspace of a folder through the data source's factory that this object is part of.
  virtual HRESULT STDMETHODCALLTYPE OpenWorkspace(BSTR path, HostWorkspace** workspace) = 0;
};

inline constexpr IID IID_HostWorkspaceFactory =
    {0x0d6765c2, 0x56a5, 0x4e91, {0xba, 0xa4, 0x29, 0x61, 0x22, 0xfe, 0x23, 0x30}};
template <>
inline constexpr const IID& kInterfaceId<HostWorkspaceFactory> = IID_HostWorkspaceFactory;

}  // namespace quenra
