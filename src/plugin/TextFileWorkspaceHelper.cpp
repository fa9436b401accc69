#include "plugin/TextFileWorkspaceHelper.h"

#include <boost/system/system_error.hpp>
#include <utility>
#include <vector>

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/com/ComCatch.h"
#include "host/interfaces/HostClasses.h"
#include "plugin/NewTableFields.h"
#include "plugin/TextFileErrors.h"
#include "plugin/TextFileFolder.h"
#include "plugin/TextFileNativeType.h"
#include "reading/OpenTextDataset.h"
#include "schema/ParseError.h"
#include "schema/SchemaIniPaths.h"

namespace quenra {
namespace {

HRESULT AnswerBool(VARIANT_BOOL* result, bool value) noexcept {
  if (result == nullptr) return E_POINTER;
  *result = value ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

bool IsSupportedFieldType(LONG type) noexcept {
  return (type >= 0 && type <= 5) || (type >= 13 && type <= 16);
}

}  // namespace

TextFileWorkspaceHelper::TextFileWorkspaceHelper(std::u16string folder,
                                                 const TextFile::OpenOptions& options)
    : workspace_{std::move(folder)}, options_(options) {}

std::u16string_view TextFileWorkspaceHelper::ErrorSource() const noexcept { return kErrorSource; }

std::u16string_view TextFileWorkspaceHelper::HelpFile() const noexcept { return kHelpFile; }

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::RowIdIsRecordNumber(VARIANT_BOOL* result) {
  return AnswerBool(result, true);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::RowCountIsComputed(VARIANT_BOOL* result) {
  return AnswerBool(result, false);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::CreateNativeType(LONG, BSTR,
                                                                    INativeType** type) try {
  if (type == nullptr) return E_POINTER;
  *type = nullptr;
  *type = MakeObject<TextFileNativeType>().Detach();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::EnumerateDatasets(LONG datasetType,
                                                                     HostArray** datasets) try {
  if (datasets == nullptr) return E_POINTER;
  if (datasetType != kDatasetTypeAny && datasetType != kDatasetTypeTable) return S_FALSE;
  *datasets = nullptr;
  ComPtr<HostArray> array;
  if (FAILED(CreateComponentInstance(CLSID_HostArray, array.Receive()))) return E_OUTOFMEMORY;
  std::vector<std::u16string> names;
  if (workspace_.folderVerified) {
    const boost::system::error_code error =
        ForEachTextFile(workspace_.folder, [&names](std::u16string_view name) {
          names.emplace_back(name);
          return true;
        });
    // What has been shown until then must not pass for all there is.
    if (error.failed()) throw boost::system::system_error(error);
  }
  for (const std::u16string& name : names) {
    const ComPtr<TextFileDatasetHelper> dataset = FindDataset(name);
    if (!dataset) continue;  // gone since it was listed
    if (const HRESULT result = array->Add(dataset->ControllingUnknown()); FAILED(result))
      return result;
  }
  *datasets = array.Detach();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE
TextFileWorkspaceHelper::OpenDatasetByName(BSTR name, IPlugInDatasetHelper** dataset) try {
  if (dataset == nullptr) return E_POINTER;
  *dataset = nullptr;
  ComPtr<TextFileDatasetHelper> found = FindDataset(ViewOf(name));
  if (!found) return kTableNotFound;
  if (const HRESULT result = found->EnsureOpen(); FAILED(result)) return result;
  *dataset = found.Detach();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::ReservedQuery1(VARIANT_BOOL* result) {
  return AnswerBool(result, false);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::ReservedQuery2(VARIANT_BOOL* result) {
  return AnswerBool(result, false);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::ReservedQuery3(VARIANT_BOOL* result) {
  return AnswerBool(result, false);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::MetadataFilePath(BSTR name, BSTR* path) try {
  if (path == nullptr) return E_POINTER;
  *path = nullptr;
  if (workspace_.folder.empty()) return E_FAIL;
  return CopyToBstr(TextFile::JoinPath(workspace_.folder, ViewOf(name)) + u".xml", path);
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::CreateTable(BSTR name,
                                                               HostFieldCollection* fields,
                                                               IPlugInDatasetHelper** dataset) {
  return Create(name, fields, TextFile::ExistingFile::kReplaced, dataset);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::CreateNewTable(BSTR name,
                                                                  HostFieldCollection* fields,
                                                                  IPlugInDatasetHelper** dataset) {
  return Create(name, fields, TextFile::ExistingFile::kKept, dataset);
}

HRESULT TextFileWorkspaceHelper::Create(BSTR name, HostFieldCollection* fields,
                                        TextFile::ExistingFile existing,
                                        IPlugInDatasetHelper** dataset) const try {
  if (dataset != nullptr) *dataset = nullptr;
  if (ViewOf(name).empty() || fields == nullptr || dataset == nullptr) return E_POINTER;
  std::vector<TextFile::FieldDefinition> definitions;
  if (const HRESULT result = DefinitionsFrom(*fields, definitions); FAILED(result)) return result;
  TextFile::CreateTableFiles({workspace_.folder, std::u16string(ViewOf(name))}, definitions,
                             existing);
  auto created = MakeObject<TextFileDatasetHelper>(
      TextFile::DescribeFile(workspace_.folder, ViewOf(name)), options_);
  // The table is there. When somebody has renamed or removed it already, its first use tells.
  if (SUCCEEDED(created->EnsureOpen())) created->KeepDatePrecision(definitions);
  *dataset = created.Detach();
  return S_OK;
} catch (const TextFile::ParseError&) {
  return HResultFromOpenException(ViewOf(name));
} catch (const TextFile::TableFailure& failure) {
  if (!failure.taken || existing != TextFile::ExistingFile::kKept)
    return HResultFromTableException();
  return ChainTextFileError(kFileExists, failure.message);
} catch (...) {
  return HResultFromTableException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::ReservedQuery(VARIANT_BOOL* result) {
  return AnswerBool(result, false);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceHelper::SupportsFieldType(LONG type,
                                                                     VARIANT_BOOL* supported) {
  return AnswerBool(supported, IsSupportedFieldType(type));
}

ComPtr<TextFileDatasetHelper> TextFileWorkspaceHelper::FindDataset(std::u16string_view name) const {
  auto description = FindTable(workspace_.folder, name);
  if (!description) return {};
  return MakeObject<TextFileDatasetHelper>(*std::move(description), options_);
}

}  // namespace quenra
