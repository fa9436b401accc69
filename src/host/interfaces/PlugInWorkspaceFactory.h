// The entry object of a data source.
#pragma once

#include "host/interfaces/HostClassIdentifier.h"
#include "host/interfaces/HostFileNames.h"
#include "host/interfaces/HostPropertySet.h"
#include "host/interfaces/InterfaceId.h"
#include "host/interfaces/PlugInWorkspace.h"

namespace quenra {

// Which folders and files belong to the data source, and opening a folder.
struct IPlugInWorkspaceFactoryHelper : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SourceName(BSTR* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE DatasetKindText(LONG datasetType, BSTR* text) = 0;
  virtual HRESULT STDMETHODCALLTYPE WorkspaceKindText(VARIANT_BOOL plural, BSTR* text) = 0;
  virtual HRESULT STDMETHODCALLTYPE FactoryKindId(HostClassIdentifier** id) = 0;
  virtual HRESULT STDMETHODCALLTYPE WorkspaceKind(LONG* kind) = 0;
  virtual HRESULT STDMETHODCALLTYPE SupportsQueryLanguage(VARIANT_BOOL* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE IsTextWorkspace(BSTR folder, VARIANT_BOOL* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE FindWorkspaceFiles(BSTR folder, HostFileNames* names,
                                                       VARIANT_BOOL* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE ClaimWorkspaceFiles(BSTR folder, HostFileNames* names,
                                                        BSTR* workspace) = 0;
  virtual HRESULT STDMETHODCALLTYPE OpenFolderWorkspace(BSTR workspace,
                                                        IPlugInWorkspaceHelper** helper) = 0;
};

inline constexpr IID IID_IPlugInWorkspaceFactoryHelper = {
    0x82417de7, 0x68a5, 0x474e, {0x8f, 0xee, 0xe8, 0xa9, 0x65, 0xfa, 0x03, 0x33}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInWorkspaceFactoryHelper> =
    IID_IPlugInWorkspaceFactoryHelper;

// Opening a folder with properties.
struct IPlugInWorkspaceFactoryHelper2 : public IPlugInWorkspaceFactoryHelper {
  using IPlugInWorkspaceFactoryHelper::OpenFolderWorkspace;
  virtual HRESULT STDMETHODCALLTYPE OpenFolderWorkspace(BSTR workspace, HostPropertySet* properties,
                                                        IPlugInWorkspaceHelper** helper) = 0;
};

inline constexpr IID IID_IPlugInWorkspaceFactoryHelper2 = {
    0x33556592, 0x6b0a, 0x494f, {0xa0, 0x6a, 0x46, 0xe9, 0xf7, 0x69, 0xd8, 0x88}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInWorkspaceFactoryHelper2> =
    IID_IPlugInWorkspaceFactoryHelper2;
template <>
struct BaseInterface<IPlugInWorkspaceFactoryHelper2> {
  using Type = IPlugInWorkspaceFactoryHelper;
};

// Named switches, compared without regard to case, that later workspaces inherit.
struct IWorkspaceFactoryOpenOptions : public IUnknown {
  // `previous` may be null.
  virtual HRESULT STDMETHODCALLTYPE SetOption(BSTR name, VARIANT_BOOL* previous) = 0;
  virtual HRESULT STDMETHODCALLTYPE ClearOption(BSTR name) = 0;
};

inline constexpr IID IID_IWorkspaceFactoryOpenOptions = {
    0x25809750, 0x53ff, 0x48e1, {0xb1, 0x5e, 0x55, 0xf4, 0xaf, 0x68, 0x1e, 0xcf}};
template <>
inline constexpr const IID& kInterfaceId<IWorkspaceFactoryOpenOptions> =
    IID_IWorkspaceFactoryOpenOptions;

// What only the text data source answers.
struct ITextFileWorkspaceFactory : public IUnknown {
  // `path` is a full file path.
  virtual HRESULT STDMETHODCALLTYPE FieldDelimiter(BSTR path, OLECHAR* delimiter) = 0;
};

inline constexpr IID IID_ITextFileWorkspaceFactory = {
    0xa9f5561b, 0x801b, 0x40d1, {0x96, 0xcb, 0x8b, 0x21, 0xc7, 0x98, 0x5c, 0x1a}};
template <>
inline constexpr const IID& kInterfaceId<ITextFileWorkspaceFactory> = IID_ITextFileWorkspaceFactory;

}  // namespace quenra
