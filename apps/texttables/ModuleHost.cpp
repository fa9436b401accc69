#include "ModuleHost.h"

#include <filesystem>

#include "Failures.h"
#include "ModuleFile.h"
#include "ShownText.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/Variant.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/HostClasses.h"
#include "platform/FileNames.h"

namespace TextTables {

namespace {

using quenra::ComPtr;

using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
using CanUnloadFunction = HRESULT(STDAPICALLTYPE*)();

#ifdef _WIN32
constexpr std::u16string_view kSeparators = u"/\\";
#else
constexpr std::u16string_view kSeparators = u"/";
#endif

// How many characters at the start of a path are its root: "/" or "C:\".
std::size_t RootLength(std::u16string_view path) {
  std::size_t length = 0;
#ifdef _WIN32
  if (path.size() > 1 && path[1] == u':') length = 2;
#endif
  if (length < path.size() && kSeparators.find(path[length]) != std::u16string_view::npos) ++length;
  return length;
}

ComPtr<quenra::HostPropertySet> PropertiesWith(const std::u16string& fieldTypeVersion) {
  ComPtr<quenra::HostPropertySet> properties;
  Check(quenra::CreateComponentInstance(quenra::CLSID_HostPropertySet, properties.Receive()),
        u"properties");
  const quenra::BString name(u"FIELD_TYPE_VERSION");
  const quenra::Variant value(fieldTypeVersion);
  Check(properties->SetProperty(name.Get(), value.Address()), name.View());
  return properties;
}

}  // namespace

std::u16string_view WithoutTrailingSeparators(std::u16string_view folder) {
  const std::size_t root = RootLength(folder);
  while (folder.size() > root && kSeparators.find(folder.back()) != std::u16string_view::npos)
    folder.remove_suffix(1);
  return folder;
}

TablePath SplitTablePath(std::u16string_view path) {
  std::size_t start = path.find_last_of(kSeparators);
  start = start == std::u16string_view::npos ? RootLength(path) : start + 1;
  TablePath result{std::u16string(WithoutTrailingSeparators(path.substr(0, start))),
                   std::u16string(path.substr(start))};
  if (result.name.empty())
    throw UsageError("\"" + Shown(path) + "\" names no table; a table is FOLDER/NAME");
  if (result.folder.empty()) result.folder = u".";
  return result;
}

std::u16string PathOf(const TablePath& path) {
  const std::filesystem::path file = std::filesystem::path(NativeFromFileName(path.folder)) /
                                     std::filesystem::path(NativeFromFileName(path.name));
  return FileNameFromNative(file.native());
}

ModuleHost::ModuleHost(const GlobalOptions& options)
    : showProgress_(!options.quiet), fieldTypeVersion_(options.fieldTypeVersion) {
  try {
    CreateFactory(options);
    SetOpenOptions(options);
  } catch (...) {
    Unload();
    throw;
  }
}

ModuleHost::~ModuleHost() { Unload(); }

void ModuleHost::CreateFactory(const GlobalOptions& options) {
  if (!options.moduleFile) factory_ = CreateRegisteredFactory(apartment_);
  if (factory_) return;
  module_ = LoadModule(options.moduleFile);
  const auto getClassObject = EntryOf<GetClassObjectFunction>(module_, "DllGetClassObject");
  if (getClassObject == nullptr) throw UsageError("the module is no data source", kGeneralHelp);
  ComPtr<IClassFactory> classFactory;
  Check(getClassObject(quenra::CLSID_TextFileWorkspaceFactory, IID_IClassFactory,
                       classFactory.ReceiveVoid()),
        u"workspace factory");
  Check(classFactory->CreateInstance(nullptr, quenra::IID_IPlugInWorkspaceFactoryHelper2,
                                     factory_.ReceiveVoid()),
        u"workspace factory");
}

void ModuleHost::SetOpenOptions(const GlobalOptions& options) {
  const std::pair<bool, std::u16string_view> switches[] = {
      {options.readAsManyRowsAsNeeded, u"ReadAsManyRowsAsNeeded"},
      {options.noLatLongFields, u"DoNotAutoGenerateLatLongFields"},
      {options.inferTimeOnlyFields, u"InferTimeOnlyFields"}};
  const auto openOptions = factory_.As<quenra::IWorkspaceFactoryOpenOptions>();
  for (const auto& [wanted, name] : switches) {
    if (!wanted) continue;
    const quenra::BString option(name);
    Check(openOptions ? openOptions->SetOption(option.Get(), nullptr) : E_NOINTERFACE, name);
  }
}

// A module that still counts live objects stays loaded: its code is needed.
void ModuleHost::Unload() noexcept {
  factory_.Reset();
  if (module_ == nullptr) return;
  const auto canUnload = EntryOf<CanUnloadFunction>(module_, "DllCanUnloadNow");
  if (canUnload == nullptr || canUnload() == S_OK) ::FreeLibrary(module_);
  module_ = nullptr;
}

ComPtr<quenra::IPlugInWorkspaceHelper> ModuleHost::OpenFolder(std::u16string_view folder) const {
  const std::u16string_view place = WithoutTrailingSeparators(folder);
  const quenra::BString path(place);
  ComPtr<quenra::HostPropertySet> properties;
  if (fieldTypeVersion_) properties = PropertiesWith(*fieldTypeVersion_);
  ComPtr<quenra::IPlugInWorkspaceHelper> workspace;
  CheckOpened(factory_->OpenFolderWorkspace(path.Get(), properties.Get(), workspace.Receive()),
              place, place);
  return workspace;
}

ComPtr<quenra::IPlugInDatasetHelper> ModuleHost::OpenTable(const TablePath& path) const {
  const auto workspace = OpenFolder(path.folder);
  const quenra::BString name(path.name);
  ComPtr<quenra::IPlugInDatasetHelper> dataset;
  const WaitingLine waiting = Wait(path);
  CheckOpened(workspace->OpenDatasetByName(name.Get(), dataset.Receive()), path.name, PathOf(path));
  return dataset;
}

WaitingLine ModuleHost::Wait(const TablePath& path) const {
  std::error_code error;
  const std::uintmax_t bytes =
      std::filesystem::file_size(std::filesystem::path(NativeFromFileName(PathOf(path))), error);
  return {showProgress_, Shown(path.name), error ? 0 : bytes};
}

}  // namespace TextTables
