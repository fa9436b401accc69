// One open folder of text files.
#pragma once

#include <string>

#include "host/com/Implements.h"
#include "host/interfaces/PlugInWorkspace.h"
#include "inference/OpenOptions.h"
#include "plugin/TextFileDatasetHelper.h"
#include "schema/TableFiles.h"

namespace quenra {

class TextFileWorkspaceHelper final
    : public Implements<IPlugInWorkspaceHelper, IPlugInWorkspaceHelper2, IPlugInMetadataPath,
                        IPlugInCreateDataset, IPlugInWorkspaceProperties, ITextFileWorkspace> {
 public:
  // The options are copied, and passed on to every table. The folder lists no tables until it is
  // marked as verified.
  TextFileWorkspaceHelper(std::u16string folder, const TextFile::OpenOptions& options);

  void SetFolderVerified() noexcept { workspace_.folderVerified = true; }

  std::u16string_view ClassName() const noexcept override { return u"TextFileWorkspaceHelper"; }
  std::u16string_view ErrorSource() const noexcept override;
  std::u16string_view HelpFile() const noexcept override;

  // IPlugInWorkspaceHelper
  HRESULT STDMETHODCALLTYPE RowIdIsRecordNumber(VARIANT_BOOL* result) override;
  HRESULT STDMETHODCALLTYPE RowCountIsComputed(VARIANT_BOOL* result) override;
  // A new object at every call, whatever the type and name.
  HRESULT STDMETHODCALLTYPE CreateNativeType(LONG datasetType, BSTR name,
                                             INativeType** type) override;
  // Tables that are not opened yet, in the file system's order. S_FALSE, and nothing is written,
  // for types that a folder of text files does not hold.
  HRESULT STDMETHODCALLTYPE EnumerateDatasets(LONG datasetType, HostArray** datasets) override;
  // An opened table. Any file of the folder will do, whatever its extension.
  HRESULT STDMETHODCALLTYPE OpenDatasetByName(BSTR name, IPlugInDatasetHelper** dataset) override;

  // IPlugInWorkspaceHelper2
  HRESULT STDMETHODCALLTYPE ReservedQuery1(VARIANT_BOOL* result) override;
  HRESULT STDMETHODCALLTYPE ReservedQuery2(VARIANT_BOOL* result) override;
  HRESULT STDMETHODCALLTYPE ReservedQuery3(VARIANT_BOOL* result) override;

  // IPlugInMetadataPath
  HRESULT STDMETHODCALLTYPE MetadataFilePath(BSTR name, BSTR* path) override;

  // IPlugInCreateDataset. Takes the place of a file of that name; a failure leaves it as it was.
  HRESULT STDMETHODCALLTYPE CreateTable(BSTR name, HostFieldCollection* fields,
                                        IPlugInDatasetHelper** dataset) override;

  // ITextFileWorkspace. Keeps a file of that name, also one that comes while the table is made.
  HRESULT STDMETHODCALLTYPE CreateNewTable(BSTR name, HostFieldCollection* fields,
                                           IPlugInDatasetHelper** dataset) override;

  // IPlugInWorkspaceProperties
  HRESULT STDMETHODCALLTYPE ReservedQuery(VARIANT_BOOL* result) override;
  HRESULT STDMETHODCALLTYPE SupportsFieldType(LONG type, VARIANT_BOOL* supported) override;

 private:
  struct WorkspaceRecord {
    std::u16string folder;
    bool folderVerified = false;
  };

  HRESULT Create(BSTR name, HostFieldCollection* fields, TextFile::ExistingFile existing,
                 IPlugInDatasetHelper** dataset) const;

  // Null when there is no such table.
  ComPtr<TextFileDatasetHelper> FindDataset(std::u16string_view name) const;

  WorkspaceRecord workspace_;
  const TextFile::OpenOptions options_;
};

}  // namespace quenra
