#include "schema/SchemaIniPaths.h"

#include <boost/filesystem.hpp>
#include <optional>

#include "host/DataCore/DataCoreUtil.h"
#include "platform/FileNames.h"

namespace TextFile {

namespace {

namespace fs = boost::filesystem;

constexpr std::u16string_view kSchemaIni = u"schema.ini";
// The misspelling is the name that programs sharing the folder know.
constexpr std::u16string_view kTemporary = u"~scheam.ini";

constexpr char16_t kSeparator = static_cast<char16_t>(fs::path::preferred_separator);

// NOLINTNEXTLINE(misc-redundant-expression): they differ on Windows
constexpr bool IsSeparator(char16_t unit) noexcept { return unit == u'/' || unit == kSeparator; }

// The only name in the folder that differs from schema.ini in letter case alone.
std::optional<std::u16string> NameInOtherCase(std::u16string_view folder) {
  // A UTF-16 unit has at most three bytes, so longer names need not be converted.
  constexpr std::size_t kLongestNative = 3 * kSchemaIni.size();
  std::optional<std::u16string> found;
  boost::system::error_code error;
  const fs::path native(NativeFromFileName(folder.empty() ? std::u16string_view(u".") : folder));
  for (fs::directory_iterator entry(native, error), end; !error && entry != end;
       entry.increment(error)) {
    const fs::path leaf = entry->path().filename();
    if (leaf.native().size() > kLongestNative) continue;
    std::u16string name = FileNameFromNative(leaf.native());
    boost::system::error_code ignored;
    if (!quenra::DataCoreUtil::CompareFoldCase(name, kSchemaIni) ||
        !fs::is_regular_file(entry->path(), ignored))
      continue;
    if (found.has_value()) return std::nullopt;
    found = std::move(name);
  }
  return found;
}

}  // namespace

std::u16string JoinPath(std::u16string_view folder, std::u16string_view name) {
  std::u16string path(folder);
  if (!path.empty() && !IsSeparator(path.back())) path += kSeparator;
  path += name;
  return path;
}

std::u16string FolderOf(std::u16string_view path) {
  std::size_t end = path.size();
  while (end > 0 && !IsSeparator(path[end - 1])) --end;
  if (end == 0) return {};
  std::size_t trimmed = end;
  while (trimmed > 0 && IsSeparator(path[trimmed - 1])) --trimmed;
  const bool root = trimmed == 0 || path[trimmed - 1] == u':';
  return std::u16string(path.substr(0, root ? end : trimmed));
}

SchemaIniPaths::SchemaIniPaths(std::u16string_view folder)
    : schemaIni(JoinPath(folder, kSchemaIni)), temporary(JoinPath(folder, kTemporary)) {
  boost::system::error_code ignored;
  if (fs::exists(fs::symlink_status(fs::path(NativeFromFileName(schemaIni)), ignored))) return;
  if (const auto name = NameInOtherCase(folder)) schemaIni = JoinPath(folder, *name);
}

}  // namespace TextFile
