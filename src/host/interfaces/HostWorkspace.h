// The host's view of an open workspace, and its generic workspace factory.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// An open workspace.
struct HostWorkspace : public IUnknown {
  // The folder, as a new BSTR.
  virtual HRESULT STDMETHODCALLTYPE WorkspacePath(BSTR* path) = 0;
};

inline constexpr IID IID_HostWorkspace = {
    0x33d0f92b, 0x38da, 0x41e4, {0x87, 0x64, 0xa2, 0x5f, 0x67, 0x04, 0xff, 0xa7}};
template <>
inline constexpr const IID& kInterfaceId<HostWorkspace> = IID_HostWorkspace;

// Making a workspace object.
struct HostWorkspaceEdit : public IUnknown {
  // The text is copied as it is; null is the empty text.
  virtual HRESULT STDMETHODCALLTYPE SetWorkspacePath(BSTR path) = 0;
};

inline constexpr IID IID_HostWorkspaceEdit = {
    0xf2100b65, 0x50de, 0x453d, {0x83, 0x16, 0x54, 0x3b, 0x19, 0xd2, 0x1d, 0xe5}};
template <>
inline constexpr const IID& kInterfaceId<HostWorkspaceEdit> = IID_HostWorkspaceEdit;

// What the host adds to every data source's workspace factory by aggregation.
struct HostWorkspaceFactory : public IUnknown {
  // Opens the workspace of a folder through the data source's factory that this object is part of.
  // Null and the factory's HRESULT when it refuses; the caller releases the workspace.
  virtual HRESULT STDMETHODCALLTYPE OpenWorkspace(BSTR path, HostWorkspace** workspace) = 0;
};

inline constexpr IID IID_HostWorkspaceFactory = {
    0x0d6765c2, 0x56a5, 0x4e91, {0xba, 0xa4, 0x29, 0x61, 0x22, 0xfe, 0x23, 0x30}};
template <>
inline constexpr const IID& kInterfaceId<HostWorkspaceFactory> = IID_HostWorkspaceFactory;

}  // namespace quenra
