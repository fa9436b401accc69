// One open folder.
#pragma once

#include "host/interfaces/HostArray.h"
#include "host/interfaces/InterfaceId.h"
#include "host/interfaces/PlugInDataset.h"
#include "host/interfaces/PlugInNativeType.h"

namespace quenra {

// Dataset types a host may ask a workspace for.
inline constexpr LONG kDatasetTypeAny = 1;
inline constexpr LONG kDatasetTypeTable = 10;

// The tables of the folder.
struct IPlugInWorkspaceHelper : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE RowIdIsRecordNumber(VARIANT_BOOL* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE RowCountIsComputed(VARIANT_BOOL* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE CreateNativeType(LONG datasetType, BSTR name,
                                                     INativeType** type) = 0;
  virtual HRESULT STDMETHODCALLTYPE EnumerateDatasets(LONG datasetType, HostArray** datasets) = 0;
  virtual HRESULT STDMETHODCALLTYPE OpenDatasetByName(BSTR name,
                                                      IPlugInDatasetHelper** dataset) = 0;
};

inline constexpr IID IID_IPlugInWorkspaceHelper = {
    0x72a2161c, 0x067d, 0x46e6, {0x92, 0x99, 0x95, 0x3b, 0x3d, 0x3f, 0xaf, 0xa0}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInWorkspaceHelper> = IID_IPlugInWorkspaceHelper;

// Abilities that a folder of text files does not have.
struct IPlugInWorkspaceHelper2 : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE ReservedQuery1(VARIANT_BOOL* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedQuery2(VARIANT_BOOL* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedQuery3(VARIANT_BOOL* result) = 0;
};

inline constexpr IID IID_IPlugInWorkspaceHelper2 = {
    0x03da5098, 0x6a54, 0x487f, {0xbe, 0xe5, 0x7c, 0x0b, 0x3a, 0xab, 0xbd, 0x17}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInWorkspaceHelper2> = IID_IPlugInWorkspaceHelper2;

// Where a table's metadata file is.
struct IPlugInMetadataPath : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE MetadataFilePath(BSTR name, BSTR* path) = 0;
};

inline constexpr IID IID_IPlugInMetadataPath = {
    0x4e09318c, 0xeb64, 0x47e6, {0x89, 0x01, 0xf8, 0x89, 0xc6, 0xb1, 0x8f, 0x69}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInMetadataPath> = IID_IPlugInMetadataPath;

// New tables.
struct IPlugInCreateDataset : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE CreateTable(BSTR name, HostFieldCollection* fields,
                                                IPlugInDatasetHelper** dataset) = 0;
};

inline constexpr IID IID_IPlugInCreateDataset = {
    0x56ddcac2, 0xcddd, 0x4c2c, {0x8e, 0x0e, 0xf2, 0x00, 0x17, 0xa0, 0xb8, 0x0e}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInCreateDataset> = IID_IPlugInCreateDataset;

// Something has the name that a new table was to get (the system's ERROR_FILE_EXISTS).
inline constexpr HRESULT kFileExists = static_cast<HRESULT>(0x80070050u);

// New tables that never take the place of a file.
struct ITextFileWorkspace : public IUnknown {
  // As IPlugInCreateDataset::CreateTable, but a file that has the name is kept, whenever it comes:
  // the answer is kFileExists then.
  virtual HRESULT STDMETHODCALLTYPE CreateNewTable(BSTR name, HostFieldCollection* fields,
                                                   IPlugInDatasetHelper** dataset) = 0;
};

inline constexpr IID IID_ITextFileWorkspace = {
    0x5e0d1a5c, 0x2b8f, 0x4f0b, {0x9c, 0x3e, 0x71, 0x64, 0xd8, 0x2a, 0x95, 0xc7}};
template <>
inline constexpr const IID& kInterfaceId<ITextFileWorkspace> = IID_ITextFileWorkspace;

// What the workspace can hold.
struct IPlugInWorkspaceProperties : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE ReservedQuery(VARIANT_BOOL* result) = 0;
  // Whether CreateTable and DescribeFields handle the field type code.
  virtual HRESULT STDMETHODCALLTYPE SupportsFieldType(LONG type, VARIANT_BOOL* supported) = 0;
};

inline constexpr IID IID_IPlugInWorkspaceProperties = {
    0x379b6c6e, 0xae64, 0x4cf3, {0xaf, 0x33, 0x58, 0x5c, 0xfd, 0x47, 0xb0, 0x3b}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInWorkspaceProperties> =
    IID_IPlugInWorkspaceProperties;

}  // namespace quenra
