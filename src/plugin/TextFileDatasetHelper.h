// One text table, as the host sees it.
#pragma once

#include <memory>
#include <vector>

#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/PlugInDataset.h"
#include "inference/OpenOptions.h"
#include "reading/TextDatasetDescription.h"
#include "schema/TableFiles.h"

namespace quenra {

// A plain table: no object ids, no geometry, no queries by extent. The layout of the file is read
// once, by whatever asks for it first; rows are read anew by every cursor.
class TextFileDatasetHelper final
    : public Implements<IPlugInDatasetInfo, IPlugInDatasetHelper, IPlugInFileOperations,
                        IPlugInDatasetLoad, IPlugInRowCount, IDatasetFileStat2, ITextFileDataset> {
 public:
  TextFileDatasetHelper(TextFile::TextDatasetDescription description,
                        const TextFile::OpenOptions& options);

  // Reads the table's layout unless that has been done. After a failure the table is as if nothing
  // had been tried; errors with a text have been chained.
  HRESULT EnsureOpen() noexcept;

  // Carries over which date fields a host has created with precision 1, since no file keeps that.
  // For a table that is open.
  void KeepDatePrecision(const std::vector<TextFile::FieldDefinition>& created);

  std::u16string_view ClassName() const noexcept override { return u"TextFileDatasetHelper"; }
  std::u16string_view ErrorSource() const noexcept override;
  std::u16string_view HelpFile() const noexcept override;

  // IPlugInDatasetInfo
  HRESULT STDMETHODCALLTYPE DatasetFileTitle(BSTR* title) override;
  HRESULT STDMETHODCALLTYPE DatasetKind(LONG* kind) override;
  HRESULT STDMETHODCALLTYPE ShapeKind(LONG* kind) override;
  HRESULT STDMETHODCALLTYPE ShapeColumnName(BSTR* name) override;

  // IPlugInDatasetHelper
  HRESULT STDMETHODCALLTYPE SubclassCount(LONG* count) override;
  HRESULT STDMETHODCALLTYPE SubclassName(LONG index, BSTR* name) override;
  // `index` must not be null.
  HRESULT STDMETHODCALLTYPE SubclassIndex(BSTR name, LONG* index) override;
  HRESULT STDMETHODCALLTYPE Extent(IUnknown** envelope) override;
  // The same collection at every call.
  HRESULT STDMETHODCALLTYPE DescribeFields(LONG classIndex, HostFieldCollection** fields) override;
  HRESULT STDMETHODCALLTYPE RowIdColumnIndex(LONG classIndex, LONG* index) override;
  HRESULT STDMETHODCALLTYPE ShapeColumnIndex(LONG classIndex, LONG* index) override;
  HRESULT STDMETHODCALLTYPE FetchRowById(LONG classIndex, LONG id, VARIANT fieldMap,
                                         IPlugInCursorHelper** cursor) override;
  // Every row, whatever the where clause. E_INVALIDARG for an array that is no field map. The map's
  // array stays locked until the cursor goes.
  HRESULT STDMETHODCALLTYPE FetchAllRows(LONG classIndex, BSTR whereClause, VARIANT fieldMap,
                                         IPlugInCursorHelper** cursor) override;
  HRESULT STDMETHODCALLTYPE FetchRowsInExtent(LONG classIndex, IUnknown* envelope,
                                              VARIANT_BOOL strict, BSTR whereClause,
                                              VARIANT fieldMap,
                                              IPlugInCursorHelper** cursor) override;

  // IPlugInFileOperations. The text file, its section of schema.ini and its metadata file stay
  // together. A failure chains an error that names the file, and is E_FAIL.
  HRESULT STDMETHODCALLTYPE AllowsCopy(VARIANT_BOOL* allowed) override;
  HRESULT STDMETHODCALLTYPE CopyDataset(BSTR newName, HostWorkspace* target) override;
  HRESULT STDMETHODCALLTYPE AllowsDelete(VARIANT_BOOL* allowed) override;
  HRESULT STDMETHODCALLTYPE DeleteDataset() override;
  HRESULT STDMETHODCALLTYPE AllowsRename(VARIANT_BOOL* allowed) override;
  HRESULT STDMETHODCALLTYPE RenameDataset(BSTR newName, BSTR* resultName) override;

  // IPlugInDatasetLoad
  HRESULT STDMETHODCALLTYPE CreateLoader(IUnknown* reserved,
                                         IPlugInDatasetLoader** loader) override;

  // IPlugInRowCount. -1 after a failure.
  HRESULT STDMETHODCALLTYPE CountRows(LONG classIndex, LONG* count) override;

  // IDatasetFileStat2. Zeros when the file is gone.
  HRESULT STDMETHODCALLTYPE FileTime(LONG kind, LONG* time) override;
  HRESULT STDMETHODCALLTYPE FileSize(LONG* size) override;
  HRESULT STDMETHODCALLTYPE FileMode(LONG* mode) override;
  HRESULT STDMETHODCALLTYPE FileSize64(LONGLONG* size) override;
  HRESULT STDMETHODCALLTYPE Reserved1() override;
  HRESULT STDMETHODCALLTYPE Reserved2() override;

  // ITextFileDataset
  HRESULT STDMETHODCALLTYPE TableDelimiter(OLECHAR* delimiter) override;

 private:
  TextFile::TableLocation Location() const;

  // Replaced by the opened description, and never changed after that: cursors share it.
  std::shared_ptr<const TextFile::TextDatasetDescription> description_;
  ComPtr<HostFieldCollection> fields_;  // null until the host asks for it
  const TextFile::OpenOptions options_;
};

}  // namespace quenra
