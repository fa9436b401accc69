// The loaded module and its workspace factory: everything the program does to tables starts here.
//
//   ModuleHost host(options);
//   const auto table = host.OpenTable(SplitTablePath(u"data/a.csv"));
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"
#include "Progress.h"
#include "RegisteredModule.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"
#include "platform/Modules.h"

namespace TextTables {

// A table's folder and its file's name.
struct TablePath {
  std::u16string folder;
  std::u16string name;
};

// A bare name stands in the folder ".". Throws UsageError when the path ends in a separator.
TablePath SplitTablePath(std::u16string_view path);

// Folder and name put together again.
std::u16string PathOf(const TablePath& path);

// `folder` without the separators at its end, except those of a root.
std::u16string_view WithoutTrailingSeparators(std::u16string_view folder);

class ModuleHost {
 public:
  // Loads the module, which is the registered one unless --module names another, and hands it the
  // open options. Throws UsageError when --module names none, and a Refusal when no module is
  // installed or it gives no factory.
  explicit ModuleHost(const GlobalOptions& options);
  // Every object that came from here must have been released. Unloads the module.
  ~ModuleHost();
  ModuleHost(const ModuleHost&) = delete;
  ModuleHost& operator=(const ModuleHost&) = delete;

  // These throw a Refusal.
  quenra::ComPtr<quenra::IPlugInWorkspaceHelper> OpenFolder(std::u16string_view folder) const;
  quenra::ComPtr<quenra::IPlugInDatasetHelper> OpenTable(const TablePath& path) const;

  // To be held while a call reads the whole table.
  WaitingLine Wait(const TablePath& path) const;

  quenra::IPlugInWorkspaceFactoryHelper2& Factory() const noexcept { return *factory_; }

 private:
  void CreateFactory(const GlobalOptions& options);
  void SetOpenOptions(const GlobalOptions& options);
  void Unload() noexcept;

  Apartment apartment_;       // the last to go
  HMODULE module_ = nullptr;  // null when the system has loaded the module
  bool showProgress_;
  std::optional<std::u16string> fieldTypeVersion_;
  quenra::ComPtr<quenra::IPlugInWorkspaceFactoryHelper2> factory_;
};

}  // namespace TextTables
