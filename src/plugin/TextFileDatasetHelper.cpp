#include "plugin/TextFileDatasetHelper.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/FileStat.h"
#include "host/com/ComCatch.h"
#include "plugin/FieldMap.h"
#include "plugin/HostObjects.h"
#include "plugin/TextFileCursorHelper.h"
#include "plugin/TextFileErrors.h"
#include "plugin/TextFileLoader.h"
#include "reading/OpenTextDataset.h"
#include "reading/ReaderFactory.h"
#include "reading/RecordCount.h"
#include "schema/SchemaIniPaths.h"

namespace quenra {
namespace {

// Writes an answer that needs no work.
template <class Value>
HRESULT Answer(Value* result, Value value, HRESULT code = S_OK) noexcept {
  if (result == nullptr) return E_POINTER;
  *result = value;
  return code;
}

// What the user should know although all went well.
void ChainRemark(std::u16string_view remark) noexcept {
  if (!remark.empty()) ChainTextFileError(kSectionStood, remark);
}

HRESULT NotSupported(const void* result) noexcept { return result == nullptr ? E_POINTER : E_FAIL; }

}  // namespace

TextFileDatasetHelper::TextFileDatasetHelper(TextFile::TextDatasetDescription description,
                                             const TextFile::OpenOptions& options)
    : description_(
          std::make_shared<const TextFile::TextDatasetDescription>(std::move(description))),
      options_(options) {}

HRESULT TextFileDatasetHelper::EnsureOpen() noexcept try {
  if (description_->loaded) return S_OK;
  // A copy is opened, since a failed attempt may leave half-applied options behind.
  auto attempt = std::make_shared<TextFile::TextDatasetDescription>(*description_);
  auto status = TextFile::OpenDatasetStatus::kScanFailed;
  TextFile::LayoutMisfit misfit;
  if (TextFile::OpenTextDataset(*attempt, options_, status, &misfit)) {
    description_ = std::move(attempt);
    return S_OK;
  }
  if (status == TextFile::OpenDatasetStatus::kFileNotOpened)
    return ChainTextFileError(kFileNotOpened, NameAsMessage(description_->name));
  return ChainTextFileError(E_FAIL, MisfitMessage(description_->name, misfit));
} catch (...) {
  return HResultFromOpenException(description_->name);
}

void TextFileDatasetHelper::KeepDatePrecision(
    const std::vector<TextFile::FieldDefinition>& created) {
  auto marked = std::make_shared<TextFile::TextDatasetDescription>(*description_);
  for (std::size_t i = 0; i < std::min(created.size(), marked->fields.size()); ++i)
    if (marked->fields.TypeOf(i) == TextFile::FieldType::kDate)
      marked->fields[i].hasDatePrecision = created[i].hasDatePrecision;
  description_ = std::move(marked);
}

TextFile::TableLocation TextFileDatasetHelper::Location() const {
  return {TextFile::FolderOf(description_->path), description_->name};
}

std::u16string_view TextFileDatasetHelper::ErrorSource() const noexcept { return kErrorSource; }

std::u16string_view TextFileDatasetHelper::HelpFile() const noexcept { return kHelpFile; }

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::DatasetFileTitle(BSTR* title) {
  return CopyToBstr(description_->name, title);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::DatasetKind(LONG* kind) {
  constexpr LONG kTable = 10;
  return Answer(kind, kTable);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::ShapeKind(LONG* kind) {
  return Answer<LONG>(kind, 0);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::ShapeColumnName(BSTR* name) {
  return Answer<BSTR>(name, nullptr);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::SubclassCount(LONG* count) {
  return Answer<LONG>(count, 0, E_FAIL);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::SubclassName(LONG, BSTR* name) {
  return Answer<BSTR>(name, nullptr, E_FAIL);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::SubclassIndex(BSTR, LONG* index) {
  // Hosts always hand over a place for the index, and this slot has never looked.
  *index = 0;
  return E_FAIL;
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::Extent(IUnknown** envelope) {
  return Answer<IUnknown*>(envelope, nullptr, E_FAIL);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::DescribeFields(LONG,
                                                                HostFieldCollection** fields) try {
  if (fields == nullptr) return E_POINTER;
  *fields = nullptr;
  if (!fields_) {
    if (const HRESULT result = EnsureOpen(); FAILED(result)) return result;
    // The fields live in the description.
    const std::shared_ptr<const TextFile::FieldList> fieldList(description_, &description_->fields);
    if (const HRESULT result = NewFieldCollection(fieldList, fields_); FAILED(result))
      return result;
  }
  *fields = ComPtr<HostFieldCollection>(fields_).Detach();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::RowIdColumnIndex(LONG, LONG* index) {
  return Answer<LONG>(index, -1);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::ShapeColumnIndex(LONG, LONG* index) {
  return Answer<LONG>(index, -1);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::FetchRowById(LONG, LONG, VARIANT,
                                                              IPlugInCursorHelper** cursor) {
  return NotSupported(cursor);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::FetchAllRows(LONG, BSTR, VARIANT fieldMap,
                                                              IPlugInCursorHelper** cursor) try {
  if (cursor == nullptr) return E_POINTER;
  *cursor = nullptr;
  if (const HRESULT result = EnsureOpen(); FAILED(result)) return result;
  FieldMap map(fieldMap);
  if (!map.IsUsable()) return E_INVALIDARG;
  *cursor = MakeObject<TextFileCursorHelper>(description_, TextFile::MakeDataReader(*description_),
                                             std::move(map))
                .Detach();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::FetchRowsInExtent(LONG, IUnknown*, VARIANT_BOOL,
                                                                   BSTR, VARIANT,
                                                                   IPlugInCursorHelper** cursor) {
  return NotSupported(cursor);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::AllowsCopy(VARIANT_BOOL* allowed) {
  return Answer(allowed, VARIANT_BOOL{VARIANT_TRUE});
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::CopyDataset(BSTR newName,
                                                             HostWorkspace* target) try {
  if (ViewOf(newName).empty() || target == nullptr) return E_INVALIDARG;
  BString folder;
  if (const HRESULT result = target->WorkspacePath(folder.Receive()); FAILED(result)) return result;
  const TextFile::TableLocation copy{std::u16string(ViewOf(folder.Get())),
                                     std::u16string(ViewOf(newName))};
  ChainRemark(TextFile::CopyTableFiles(Location(), copy));
  return S_OK;
} catch (...) {
  return HResultFromTableException();
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::AllowsDelete(VARIANT_BOOL* allowed) {
  return Answer(allowed, VARIANT_BOOL{VARIANT_TRUE});
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::DeleteDataset() try {
  TextFile::DeleteTableFiles(Location());
  return S_OK;
} catch (...) {
  return HResultFromTableException();
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::AllowsRename(VARIANT_BOOL* allowed) {
  return Answer(allowed, VARIANT_BOOL{VARIANT_TRUE});
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::RenameDataset(BSTR newName, BSTR* resultName) try {
  if (resultName == nullptr) return E_POINTER;
  *resultName = nullptr;
  const std::u16string_view name = ViewOf(newName);
  auto renamed = std::make_shared<TextFile::TextDatasetDescription>(*description_);
  const TextFile::TableLocation location = Location();
  ChainRemark(TextFile::RenameTableFiles(location, name));
  renamed->name = name;
  renamed->path = TextFile::JoinPath(location.folder, name);
  description_ = std::move(renamed);
  return CopyToBstr(name, resultName);
} catch (...) {
  return HResultFromTableException();
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::CreateLoader(IUnknown*,
                                                              IPlugInDatasetLoader** loader) try {
  if (loader == nullptr) return E_POINTER;
  *loader = nullptr;
  if (const HRESULT result = EnsureOpen(); FAILED(result)) return result;
  auto writer = std::make_unique<TextFile::RowWriter>(*description_);
  if (!writer->Open()) return ChainTextFileError(E_FAIL, writer->failure());
  *loader = MakeObject<TextFileLoader>(std::move(writer)).Detach();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::CountRows(LONG, LONG* count) try {
  if (count == nullptr) return E_POINTER;
  *count = -1;
  if (const HRESULT result = EnsureOpen(); FAILED(result)) return result;
  constexpr std::int64_t kMost = std::numeric_limits<LONG>::max();
  *count = static_cast<LONG>(std::min(TextFile::CountDataRecords(*description_), kMost));
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::FileTime(LONG kind, LONG* time) {
  if (time == nullptr) return E_POINTER;
  return Answer<LONG>(time, FileStat(description_->path).GetFileTime(kind));
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::FileSize(LONG* size) {
  if (size == nullptr) return E_POINTER;
  return Answer<LONG>(size, FileStat(description_->path).GetFileSize());
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::FileMode(LONG* mode) {
  if (mode == nullptr) return E_POINTER;
  const int found = FileStat(description_->path).GetFileMode();
  return Answer<LONG>(mode, found == 2 || found == 4 || found == 6 ? found : 0);
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::FileSize64(LONGLONG* size) {
  if (size == nullptr) return E_POINTER;
  return Answer<LONGLONG>(size, FileStat(description_->path).GetFileSize64());
}

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::Reserved1() { return S_OK; }

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::Reserved2() { return S_OK; }

HRESULT STDMETHODCALLTYPE TextFileDatasetHelper::TableDelimiter(OLECHAR* delimiter) {
  if (delimiter == nullptr) return E_POINTER;
  *delimiter = 0;
  if (const HRESULT result = EnsureOpen(); FAILED(result)) return result;
  *delimiter = static_cast<OLECHAR>(description_->options.delimiter);
  return S_OK;
}

}  // namespace quenra
