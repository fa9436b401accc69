#include "CommandFiles.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "ModuleHost.h"
#include "Terminal.h"
#include "host/DataCore/DataCoreUtil.h"
#include "platform/FileNames.h"

namespace TextTables {

namespace {

namespace fs = std::filesystem;

fs::path Native(std::u16string_view name) { return {NativeFromFileName(name)}; }

void AddFolder(const fs::path& folder, std::vector<std::u16string>& files) {
  constexpr std::u16string_view kNames[] = {u"schema.ini", u"~scheam.ini"};
  for (const std::u16string_view name : kNames)
    files.push_back(FileNameFromNative((folder / Native(name)).native()));
  // Their names are taken in any letter case.
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::u16string name = FileNameFromNative(entry->path().filename().native());
    if (std::any_of(std::begin(kNames), std::end(kNames), [&](std::u16string_view reserved) {
          return quenra::DataCoreUtil::CompareFoldCase(name, reserved);
        }))
      files.push_back(FileNameFromNative(entry->path().native()));
  }
}

void AddTable(const TablePath& table, std::vector<std::u16string>& files) {
  const fs::path folder = Native(table.folder);
  files.push_back(FileNameFromNative((folder / Native(table.name)).native()));
  files.push_back(FileNameFromNative((folder / Native(table.name + u".xml")).native()));
  AddFolder(folder, files);
}

// A file that is made under a name that is a link is what the link says.
fs::path BehindLinks(fs::path path) {
  constexpr int kMostLinks = 40;
  std::error_code error;
  for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++i)
    path = path.parent_path() / fs::read_symlink(path, error);
  return path;
}

// Neither is there: whether one would be made as the other.
bool WouldBeSame(const fs::path& one, const fs::path& other) {
  const fs::path first = BehindLinks(one);
  const fs::path second = BehindLinks(other);
  const auto folderOf = [](const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
  };
  std::error_code error;
  return fs::equivalent(folderOf(first), folderOf(second), error) &&
         quenra::DataCoreUtil::CompareFoldCase(FileNameFromNative(first.filename().native()),
                                               FileNameFromNative(second.filename().native()));
}

}  // namespace

std::vector<std::u16string> FilesOf(const CommandLine& line) {
  std::vector<std::u16string> files;
  switch (line.command) {
    case Command::kList:
    case Command::kClaim:
      AddFolder(Native(line.path), files);
      break;
    case Command::kLocale:
      break;
    case Command::kRegister:
    case Command::kUnregister:
      if (const char* const registry = std::getenv("QUENRA_REGISTRY"))
        files.push_back(Terminal::TextOfArgument(registry));
      break;
    default:
      AddTable(SplitTablePath(line.path), files);
      break;
  }
  if (line.command == Command::kCopy) AddTable(SplitTablePath(line.target), files);
  if (line.command == Command::kRename)
    AddTable({SplitTablePath(line.path).folder, line.target}, files);
  if (line.source) files.push_back(*line.source);
  if (line.global.moduleFile) files.push_back(*line.global.moduleFile);
  return files;
}

bool IsOneOf(const std::vector<std::u16string>& files, std::u16string_view file) {
  const fs::path path = Native(file);
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) return false;
  if (fs::exists(status) && Terminal::IsStandardStream(file)) return true;
  return std::any_of(files.begin(), files.end(), [&](const std::u16string& name) {
    const fs::path other = Native(name);
    std::error_code ignored;
    if (fs::exists(status)) return fs::equivalent(path, other, ignored);
    return !fs::exists(other, ignored) && WouldBeSame(path, other);
  });
}

}  // namespace TextTables
