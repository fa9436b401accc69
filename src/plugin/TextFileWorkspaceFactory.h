// The entry object of the data source: recognises folders of text files and opens them.
#pragma once

#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"
#include "inference/OpenOptions.h"

namespace quenra {

// The host's generic workspace factory is aggregated, when the host has one: its interfaces appear
// on this object.
class TextFileWorkspaceFactory final
    : public Implements<IPlugInWorkspaceFactoryHelper2, IWorkspaceFactoryOpenOptions,
                        ITextFileWorkspaceFactory> {
 public:
  // `outer` (may be null) becomes the controlling unknown.
  explicit TextFileWorkspaceFactory(IUnknown* outer = nullptr) noexcept;

  std::u16string_view ClassName() const noexcept override { return u"TextFileWorkspaceFactory"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_TextFileWorkspaceFactory; }

  // IPlugInWorkspaceFactoryHelper2
  HRESULT STDMETHODCALLTYPE SourceName(BSTR* name) override;
  // Null for everything but tables.
  HRESULT STDMETHODCALLTYPE DatasetKindText(LONG datasetType, BSTR* text) override;
  HRESULT STDMETHODCALLTYPE WorkspaceKindText(VARIANT_BOOL plural, BSTR* text) override;
  HRESULT STDMETHODCALLTYPE FactoryKindId(HostClassIdentifier** id) override;
  HRESULT STDMETHODCALLTYPE WorkspaceKind(LONG* kind) override;
  HRESULT STDMETHODCALLTYPE SupportsQueryLanguage(VARIANT_BOOL* result) override;
  // VARIANT_TRUE and S_OK, or VARIANT_FALSE and S_FALSE.
  HRESULT STDMETHODCALLTYPE IsTextWorkspace(BSTR folder, VARIANT_BOOL* result) override;
  // The same of a list of names; without one, of the folder.
  HRESULT STDMETHODCALLTYPE FindWorkspaceFiles(BSTR folder, HostFileNames* names,
                                               VARIANT_BOOL* result) override;
  // Takes the text files and their metadata files out of the list. S_FALSE and null when there was
  // no text file.
  HRESULT STDMETHODCALLTYPE ClaimWorkspaceFiles(BSTR folder, HostFileNames* names,
                                                BSTR* workspace) override;
  HRESULT STDMETHODCALLTYPE OpenFolderWorkspace(BSTR workspace,
                                                IPlugInWorkspaceHelper** helper) override;
  HRESULT STDMETHODCALLTYPE OpenFolderWorkspace(BSTR workspace, HostPropertySet* properties,
                                                IPlugInWorkspaceHelper** helper) override;

  // IWorkspaceFactoryOpenOptions. They hold for workspaces that are opened later.
  HRESULT STDMETHODCALLTYPE SetOption(BSTR name, VARIANT_BOOL* previous) override;
  HRESULT STDMETHODCALLTYPE ClearOption(BSTR name) override;

  // ITextFileWorkspaceFactory
  HRESULT STDMETHODCALLTYPE FieldDelimiter(BSTR path, OLECHAR* delimiter) override;

 protected:
  HRESULT QueryOther(REFIID iid, void** result) noexcept override;

 private:
  ComPtr<IUnknown> generic_;  // the host's aggregated object; null without one
  TextFile::OpenOptions options_;
};

}  // namespace quenra
