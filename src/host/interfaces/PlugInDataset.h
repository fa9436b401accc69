// One table of a workspace.
#pragma once

#include "host/interfaces/HostFields.h"
#include "host/interfaces/HostWorkspace.h"
#include "host/interfaces/InterfaceId.h"
#include "host/interfaces/PlugInCursor.h"
#include "host/interfaces/PlugInLoader.h"

namespace quenra {

// What the table is.
struct IPlugInDatasetInfo : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE DatasetFileTitle(BSTR* title) = 0;
  virtual HRESULT STDMETHODCALLTYPE DatasetKind(LONG* kind) = 0;
  virtual HRESULT STDMETHODCALLTYPE ShapeKind(LONG* kind) = 0;
  virtual HRESULT STDMETHODCALLTYPE ShapeColumnName(BSTR* name) = 0;
};

inline constexpr IID IID_IPlugInDatasetInfo = {
    0x795f59c9, 0x1880, 0x4bdc, {0xa5, 0x95, 0x84, 0x9d, 0xd8, 0x56, 0x57, 0x89}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInDatasetInfo> = IID_IPlugInDatasetInfo;

// The table's fields and rows.
struct IPlugInDatasetHelper : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SubclassCount(LONG* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE SubclassName(LONG index, BSTR* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE SubclassIndex(BSTR name, LONG* index) = 0;
  virtual HRESULT STDMETHODCALLTYPE Extent(IUnknown** envelope) = 0;
  virtual HRESULT STDMETHODCALLTYPE DescribeFields(LONG classIndex,
                                                   HostFieldCollection** fields) = 0;
  virtual HRESULT STDMETHODCALLTYPE RowIdColumnIndex(LONG classIndex, LONG* index) = 0;
  virtual HRESULT STDMETHODCALLTYPE ShapeColumnIndex(LONG classIndex, LONG* index) = 0;
  virtual HRESULT STDMETHODCALLTYPE FetchRowById(LONG classIndex, LONG id, VARIANT fieldMap,
                                                 IPlugInCursorHelper** cursor) = 0;
  // `fieldMap`: VT_ARRAY | VT_I4, one entry a field: the host's slot for it, or -1.
  virtual HRESULT STDMETHODCALLTYPE FetchAllRows(LONG classIndex, BSTR whereClause,
                                                 VARIANT fieldMap,
                                                 IPlugInCursorHelper** cursor) = 0;
  virtual HRESULT STDMETHODCALLTYPE FetchRowsInExtent(LONG classIndex, IUnknown* envelope,
                                                      VARIANT_BOOL strict, BSTR whereClause,
                                                      VARIANT fieldMap,
                                                      IPlugInCursorHelper** cursor) = 0;
};

inline constexpr IID IID_IPlugInDatasetHelper = {
    0xb19b3978, 0xa14d, 0x4571, {0x83, 0x7e, 0xb2, 0xe2, 0xb2, 0x07, 0xab, 0x66}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInDatasetHelper> = IID_IPlugInDatasetHelper;

// Copying, deleting and renaming the table with everything that belongs to it.
struct IPlugInFileOperations : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE AllowsCopy(VARIANT_BOOL* allowed) = 0;
  virtual HRESULT STDMETHODCALLTYPE CopyDataset(BSTR newName, HostWorkspace* target) = 0;
  virtual HRESULT STDMETHODCALLTYPE AllowsDelete(VARIANT_BOOL* allowed) = 0;
  virtual HRESULT STDMETHODCALLTYPE DeleteDataset() = 0;
  virtual HRESULT STDMETHODCALLTYPE AllowsRename(VARIANT_BOOL* allowed) = 0;
  virtual HRESULT STDMETHODCALLTYPE RenameDataset(BSTR newName, BSTR* resultName) = 0;
};

inline constexpr IID IID_IPlugInFileOperations = {
    0x37670218, 0xb1bc, 0x40f3, {0x8b, 0xff, 0x13, 0x6a, 0xc4, 0xcf, 0xbf, 0x23}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInFileOperations> = IID_IPlugInFileOperations;

// Appending rows.
struct IPlugInDatasetLoad : public IUnknown {
  // `reserved` is ignored.
  virtual HRESULT STDMETHODCALLTYPE CreateLoader(IUnknown* reserved,
                                                 IPlugInDatasetLoader** loader) = 0;
};

inline constexpr IID IID_IPlugInDatasetLoad = {
    0x392ecbb3, 0xee0b, 0x4a30, {0x8a, 0x75, 0x43, 0x70, 0x1b, 0x6d, 0xfa, 0xa5}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInDatasetLoad> = IID_IPlugInDatasetLoad;

// Counting rows without fetching them.
struct IPlugInRowCount : public IUnknown {
  virtual HRESULT STDMETHODCALLTYPE CountRows(LONG classIndex, LONG* count) = 0;
};

inline constexpr IID IID_IPlugInRowCount = {
    0x59587400, 0x17d2, 0x4888, {0xb9, 0xa6, 0x15, 0x1c, 0x19, 0xb6, 0x65, 0xdc}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInRowCount> = IID_IPlugInRowCount;

// The table's file. Times are seconds since 1970-01-01 UTC.
struct IDatasetFileStat : public IUnknown {
  // kind 0, 1 or 2; any other gives 0.
  virtual HRESULT STDMETHODCALLTYPE FileTime(LONG kind, LONG* time) = 0;
  // The low 32 bits of the size in bytes.
  virtual HRESULT STDMETHODCALLTYPE FileSize(LONG* size) = 0;
  // 2 writable, 4 readable, 6 both, else 0.
  virtual HRESULT STDMETHODCALLTYPE FileMode(LONG* mode) = 0;
};

inline constexpr IID IID_IDatasetFileStat = {
    0x50f6710f, 0xf200, 0x4f5e, {0xb6, 0xbd, 0xc1, 0xbe, 0xb2, 0xe4, 0xf7, 0x6d}};
template <>
inline constexpr const IID& kInterfaceId<IDatasetFileStat> = IID_IDatasetFileStat;

// Sizes of 64 bits.
struct IDatasetFileStat2 : public IDatasetFileStat {
  virtual HRESULT STDMETHODCALLTYPE FileSize64(LONGLONG* size) = 0;
  // Both do nothing and answer S_OK.
  virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
  virtual HRESULT STDMETHODCALLTYPE Reserved2() = 0;
};

inline constexpr IID IID_IDatasetFileStat2 = {
    0xc83d2e07, 0xaa1c, 0x4e33, {0xba, 0xc6, 0x6d, 0x44, 0x91, 0xe4, 0x69, 0xe6}};
template <>
inline constexpr const IID& kInterfaceId<IDatasetFileStat2> = IID_IDatasetFileStat2;
template <>
struct BaseInterface<IDatasetFileStat2> {
  using Type = IDatasetFileStat;
};

// What only the text data source answers of a table.
struct ITextFileDataset : public IUnknown {
  // The character between the fields as this table was opened; 0 for fixed-width tables.
  virtual HRESULT STDMETHODCALLTYPE TableDelimiter(OLECHAR* delimiter) = 0;
};

inline constexpr IID IID_ITextFileDataset = {
    0x891ae6fd, 0xfa15, 0x4d50, {0xab, 0xea, 0x92, 0xaf, 0xc5, 0xb6, 0xeb, 0xc8}};
template <>
inline constexpr const IID& kInterfaceId<ITextFileDataset> = IID_ITextFileDataset;

}  // namespace quenra
