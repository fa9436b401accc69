// Which files of a folder are text tables.
//
//   std::vector<std::u16string> names;
//   ForEachTextFile(folder, [&](std::u16string_view name) { names.emplace_back(name); return true;
//   });
#pragma once

#include <boost/system/error_code.hpp>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "reading/TextDatasetDescription.h"

namespace quenra {

// Whether the name's extension is ".txt", ".csv", ".tsv", ".psv", ".tab" or ".asc". Letter case
// does not matter; only A to Z have cases here.
bool IsTextFileName(std::u16string_view name) noexcept;

// Whether there is a directory at the path; links are followed.
bool IsDirectory(std::u16string_view path);

// Whether a workspace can be opened there: a directory, or an object that is no plain file (a
// network redirector may show a folder as such). A status that cannot be had is a refusal.
bool IsWorkspaceFolder(std::u16string_view path);

// Hands the visitor the name of each regular text file, in the file system's order, until it
// answers false. Entries that vanish, and links that lead nowhere, are passed over. Answers why the
// folder cannot be walked to its end.
boost::system::error_code ForEachTextFile(
    std::u16string_view folder, const std::function<bool(std::u16string_view name)>& visitor);

// The description, not opened yet, of the file or other object named `name` in the folder, whatever
// its extension. Nullopt when there is none, or when the name leads to another folder.
std::optional<TextFile::TextDatasetDescription> FindTable(std::u16string_view folder,
                                                          std::u16string_view name);

}  // namespace quenra
