#include "plugin/TextFileWorkspaceFactory.h"

#include <boost/filesystem/path.hpp>
#include <string>
#include <utility>

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/com/ComCatch.h"
#include "host/interfaces/HostClasses.h"
#include "platform/FileNames.h"
#include "plugin/FileNameClaims.h"
#include "plugin/HostObjects.h"
#include "plugin/TextFileErrors.h"
#include "plugin/TextFileFolder.h"
#include "plugin/TextFileWorkspaceHelper.h"
#include "plugin/WorkspaceOptions.h"
#include "reading/OpenTextDataset.h"
#include "resources/ResourceStrings.h"
#include "resources/StringIds.h"
#include "schema/SchemaIniPaths.h"

namespace quenra {
namespace {

// Without the separator at its end. Three characters may be a drive's root, which keeps its own.
std::u16string FolderOfWorkspaceText(std::u16string_view text) {
  if (text.size() > 3 && (text.back() == u'/' || text.back() == u'\\')) text.remove_suffix(1);
  return std::u16string(text);
}

// The folder of a full file path, with a root directory behind a drive that lacks one.
std::u16string RootedFolderOf(std::u16string_view path) {
  std::u16string folder = TextFile::FolderOf(path);
  if (!boost::filesystem::path(NativeFromFileName(folder)).has_root_directory()) folder += u'/';
  return folder;
}

std::u16string_view LeafOf(std::u16string_view path) {
  std::u16string_view leaf = path.substr(TextFile::FolderOf(path).size());
  while (!leaf.empty() && !TextFile::FolderOf(leaf).empty()) leaf.remove_prefix(1);
  return leaf;
}

bool FolderHoldsTextFile(std::u16string_view folder) {
  if (!IsDirectory(folder)) return false;
  bool found = false;
  // One that cannot be walked holds none, as far as anybody can tell.
  ForEachTextFile(folder, [&found](std::u16string_view) {
    found = true;
    return false;
  });
  return found;
}

// What the host receives for a question about text files.
HRESULT AnswerWhether(bool found, VARIANT_BOOL* result) noexcept {
  *result = found ? VARIANT_TRUE : VARIANT_FALSE;
  return found ? S_OK : S_FALSE;
}

}  // namespace

TextFileWorkspaceFactory::TextFileWorkspaceFactory(IUnknown* outer) noexcept : Implements(outer) {
  if (FAILED(CreateComponentInstance(CLSID_HostWorkspaceFactory, ControllingUnknown(), IID_IUnknown,
                                     generic_.ReceiveVoid())))
    generic_.Reset();
}

HRESULT TextFileWorkspaceFactory::QueryOther(REFIID iid, void** result) noexcept {
  // The aggregated object's error information would speak of another class than this one.
  if (!generic_ || IsEqualIID(iid, IID_ISupportErrorInfo)) return E_NOINTERFACE;
  return generic_->QueryInterface(iid, result);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::SourceName(BSTR* name) {
  return CopyToBstr(u"TextFile", name);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::DatasetKindText(LONG datasetType,
                                                                    BSTR* text) try {
  if (text == nullptr) return E_POINTER;
  *text = nullptr;
  if (datasetType != kDatasetTypeTable) return S_OK;
  return CopyToBstr(LoadResourceString(kTextFileText), text);
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::WorkspaceKindText(VARIANT_BOOL,
                                                                      BSTR* text) try {
  if (text == nullptr) return E_POINTER;
  *text = nullptr;
  return CopyToBstr(LoadResourceString(kTextFileDataText), text);
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::FactoryKindId(HostClassIdentifier** id) {
  return NewClassIdentifier(CLSID_TextFileWorkspaceFactory, id);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::WorkspaceKind(LONG* kind) {
  if (kind == nullptr) return E_POINTER;
  *kind = 0;  // a workspace of files
  return S_OK;
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::SupportsQueryLanguage(VARIANT_BOOL* result) {
  if (result == nullptr) return E_POINTER;
  *result = VARIANT_FALSE;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::IsTextWorkspace(BSTR folder,
                                                                    VARIANT_BOOL* result) try {
  if (result != nullptr) *result = VARIANT_FALSE;
  if (folder == nullptr || result == nullptr) return E_POINTER;
  return AnswerWhether(FolderHoldsTextFile(ViewOf(folder)), result);
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::FindWorkspaceFiles(BSTR folder,
                                                                       HostFileNames* names,
                                                                       VARIANT_BOOL* result) try {
  if (names == nullptr) return IsTextWorkspace(folder, result);
  if (result != nullptr) *result = VARIANT_FALSE;
  if (folder == nullptr || result == nullptr) return E_POINTER;
  return AnswerWhether(HoldsTextFile(*names), result);
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::ClaimWorkspaceFiles(BSTR folder,
                                                                        HostFileNames* names,
                                                                        BSTR* workspace) try {
  if (workspace != nullptr) *workspace = nullptr;
  if (folder == nullptr || workspace == nullptr) return E_POINTER;
  if (names != nullptr && !ClaimTextFiles(*names)) return S_FALSE;
  return CopyToBstr(ViewOf(folder), workspace);
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE
TextFileWorkspaceFactory::OpenFolderWorkspace(BSTR workspace, IPlugInWorkspaceHelper** helper) {
  return OpenFolderWorkspace(workspace, nullptr, helper);
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::OpenFolderWorkspace(
    BSTR workspace, HostPropertySet* properties, IPlugInWorkspaceHelper** helper) try {
  if (helper == nullptr) return E_POINTER;
  *helper = nullptr;
  const std::u16string folder = FolderOfWorkspaceText(ViewOf(workspace));
  TextFile::OpenOptions options = options_;
  ApplyFieldTypeVersion(options, properties);
  ComPtr<TextFileWorkspaceHelper> opened = MakeObject<TextFileWorkspaceHelper>(folder, options);
  if (IsWorkspaceFolder(folder)) {
    opened->SetFolderVerified();
  } else if (const HRESULT result = ChainErrorWithoutSource(kFolderRejected, NameAsMessage(folder));
             FAILED(result)) {
    return result;
  }
  *helper = opened.Detach();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::SetOption(BSTR name, VARIANT_BOOL* previous) {
  bool reported = false;
  if (!SetOpenOption(options_, ViewOf(name), reported)) return E_INVALIDARG;
  if (previous != nullptr) *previous = reported ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::ClearOption(BSTR name) {
  return ClearOpenOption(options_, ViewOf(name)) ? S_OK : E_INVALIDARG;
}

HRESULT STDMETHODCALLTYPE TextFileWorkspaceFactory::FieldDelimiter(BSTR path,
                                                                   OLECHAR* delimiter) try {
  if (delimiter != nullptr) *delimiter = 0;
  const std::u16string_view file = ViewOf(path);
  if (file.empty()) return E_INVALIDARG;
  if (delimiter == nullptr) return E_POINTER;
  const std::u16string folder = RootedFolderOf(file);
  auto table = IsWorkspaceFolder(folder) ? FindTable(folder, LeafOf(file)) : std::nullopt;
  if (!table) return kTableNotFound;
  auto status = TextFile::OpenDatasetStatus::kScanFailed;
  if (!TextFile::OpenTextDataset(*table, options_, status)) return E_FAIL;
  // Hosts have always received the low byte, with its sign: U+00A7 arrives as U+FFA7.
  const auto byte = static_cast<signed char>(table->options.delimiter);
  *delimiter = static_cast<OLECHAR>(byte);
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

}  // namespace quenra
