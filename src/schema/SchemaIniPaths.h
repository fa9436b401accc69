// Where a folder's schema.ini and its temporary companion are, and how paths are put together.
#pragma once

#include <string>
#include <string_view>

namespace TextFile {

// `folder` and `name` with one separator between them; `name` alone when `folder` is empty.
std::u16string JoinPath(std::u16string_view folder, std::u16string_view name);

// The path without its last component; empty when it has only one. A root keeps its separator.
std::u16string FolderOf(std::u16string_view path);

struct SchemaIniPaths {
  // Looks for "schema.ini": the exact name, else, on file systems that tell letter case apart, the
  // only regular file whose name is equal without regard to case.
  explicit SchemaIniPaths(std::u16string_view folder);

  std::u16string schemaIni;
  std::u16string temporary;  // the finished copy that replaces schema.ini, in the same folder
};

}  // namespace TextFile
