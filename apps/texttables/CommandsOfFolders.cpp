// list and claim.
#include <algorithm>
#include <filesystem>

#include "Commands.h"
#include "Failures.h"
#include "JsonText.h"
#include "ModuleHost.h"
#include "ShownText.h"
#include "Terminal.h"
#include "TextEncoding.h"
#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostClasses.h"
#include "platform/FileNames.h"

namespace TextTables {

namespace {

using quenra::ComPtr;

std::filesystem::path PathOf(std::u16string_view name) {
  return std::filesystem::path(NativeFromFileName(name));
}

// Programs get names as the system spells them; a terminal gets nothing that commands it.
void AppendNames(const std::vector<std::u16string>& names, bool json, Output& output) {
  const bool escaped = Terminal::StandardOutputIsTerminal();
  if (json) output.Append('[');
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (json) {
      if (i > 0) output.Append(", ");
      AppendJsonString(output, names[i]);
    } else {
      output.Append(escaped ? ShownWhole(names[i]) : FileNameBytes(names[i]));
      output.Append('\n');
    }
  }
  if (json) output.Append("]\n");
}

std::vector<std::u16string> TitlesOf(quenra::HostArray& datasets) {
  LONG count = 0;
  Check(datasets.GetCount(&count), u"tables");
  std::vector<std::u16string> titles;
  for (LONG i = 0; i < count; ++i) {
    ComPtr<IUnknown> element;
    Check(datasets.GetElement(i, element.Receive()), u"tables");
    const auto info = element.As<quenra::IPlugInDatasetInfo>();
    quenra::BString title;
    Check(info ? info->DatasetFileTitle(title.Receive()) : E_NOINTERFACE, u"tables");
    titles.emplace_back(title.View());
  }
  return titles;
}

struct FolderEntry {
  std::u16string name;
  bool isDirectory = false;
};

// In the order of their names: a file system's own order means nothing to anybody.
std::vector<FolderEntry> EntriesOf(const std::u16string& folder) {
  std::vector<FolderEntry> entries;
  std::error_code error;
  std::filesystem::directory_iterator place(PathOf(folder), error);
  while (!error && place != std::filesystem::directory_iterator()) {
    std::error_code unknown;  // an entry that vanishes meanwhile is no directory
    entries.push_back(
        {FileNameFromNative(place->path().filename().native()), place->is_directory(unknown)});
    place.increment(error);
  }
  if (error) throw SystemRefusal(error.value(), folder);
  std::sort(entries.begin(), entries.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return entries;
}

std::vector<FolderEntry> EntriesFrom(const std::u16string& folder,
                                     const std::vector<std::u16string>& names) {
  std::vector<FolderEntry> entries;
  for (const std::u16string& name : names) {
    std::error_code unknown;
    entries.push_back(
        {name, std::filesystem::is_directory(PathOf(folder) / PathOf(name), unknown)});
  }
  return entries;
}

ComPtr<quenra::HostFileNames> FileNamesOf(const std::vector<FolderEntry>& entries) {
  ComPtr<quenra::HostFileNames> list;
  Check(quenra::CreateComponentInstance(quenra::CLSID_HostFileNames, list.Receive()),
        u"file names");
  for (const FolderEntry& entry : entries) {
    const quenra::BString name(entry.name);
    Check(list->Add(name.Get(), entry.isDirectory ? VARIANT_TRUE : VARIANT_FALSE), entry.name);
  }
  return list;
}

// The entries that are no longer in `list`, in their own order. What is left in the list stands in
// that order too.
std::vector<std::u16string> MissingFrom(quenra::HostFileNames& list,
                                        const std::vector<FolderEntry>& entries) {
  std::vector<std::u16string> missing;
  Check(list.Reset(), u"file names");
  quenra::BString left;
  VARIANT_BOOL isDirectory = VARIANT_FALSE;
  bool more = list.Next(left.Receive(), &isDirectory) == S_OK;
  for (const FolderEntry& entry : entries) {
    if (more && left.View() == entry.name) {
      more = list.Next(left.Receive(), &isDirectory) == S_OK;
    } else {
      missing.push_back(entry.name);
    }
  }
  return missing;
}

}  // namespace

void RunList(const CommandLine& line, Output& output) {
  const ModuleHost host(line.global);
  const auto workspace = host.OpenFolder(line.path);
  ComPtr<quenra::HostArray> datasets;
  Check(workspace->EnumerateDatasets(quenra::kDatasetTypeTable, datasets.Receive()), line.path);
  std::vector<std::u16string> titles;
  if (datasets) titles = TitlesOf(*datasets);
  std::sort(titles.begin(), titles.end());
  AppendNames(titles, line.json, output);
}

void RunClaim(const CommandLine& line, Output& output) {
  const ModuleHost host(line.global);
  const std::u16string folder(WithoutTrailingSeparators(line.path));
  const std::vector<FolderEntry> entries =
      line.names.empty() ? EntriesOf(folder) : EntriesFrom(folder, line.names);
  const auto list = FileNamesOf(entries);
  const quenra::BString path(folder);
  quenra::BString workspace;
  Check(host.Factory().ClaimWorkspaceFiles(path.Get(), list.Get(), workspace.Receive()), folder);
  AppendNames(MissingFrom(*list, entries), line.json, output);
}

}  // namespace TextTables
