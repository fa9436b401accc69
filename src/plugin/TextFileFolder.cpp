#include "plugin/TextFileFolder.h"

#include <boost/filesystem.hpp>

#include "platform/FileNames.h"
#include "reading/OpenTextDataset.h"
#include "schema/SchemaIniPaths.h"

namespace quenra {
namespace {

namespace fs = boost::filesystem;

constexpr std::u16string_view kExtensions[] = {u".TXT", u".CSV", u".TSV",
                                               u".PSV", u".TAB", u".ASC"};

constexpr char16_t UpperAscii(char16_t unit) noexcept {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

bool EqualsUpper(std::u16string_view text, std::u16string_view upper) noexcept {
  if (text.size() != upper.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (UpperAscii(text[i]) != upper[i]) return false;
  return true;
}

// A status that cannot be had is file_type status_error or file_not_found.
fs::file_type TypeOf(std::u16string_view path) {
  boost::system::error_code error;
  return fs::status(fs::path(NativeFromFileName(path)), error).type();
}

bool IsRegularFile(const fs::directory_entry& entry) {
  boost::system::error_code error;
  return entry.status(error).type() == fs::regular_file;
}

}  // namespace

bool IsTextFileName(std::u16string_view name) noexcept {
  const std::u16string_view extension = TextFile::ExtensionOf(name);
  for (const std::u16string_view known : kExtensions)
    if (EqualsUpper(extension, known)) return true;
  return false;
}

bool IsDirectory(std::u16string_view path) { return TypeOf(path) == fs::directory_file; }

bool IsWorkspaceFolder(std::u16string_view path) {
  switch (TypeOf(path)) {
    case fs::status_error:
    case fs::file_not_found:
    case fs::regular_file:
    case fs::symlink_file:
      return false;
    default:
      return true;
  }
}

boost::system::error_code ForEachTextFile(
    std::u16string_view folder, const std::function<bool(std::u16string_view name)>& visitor) {
  boost::system::error_code error;
  fs::directory_iterator entry(fs::path(NativeFromFileName(folder)), error);
  for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
    // The name first: the status costs a call of the system where the folder does not tell it.
    const std::u16string name = FileNameFromNative(entry->path().filename().native());
    if (!IsTextFileName(name) || !IsRegularFile(*entry)) continue;
    if (!visitor(name)) return {};
  }
  return error;
}

std::optional<TextFile::TextDatasetDescription> FindTable(std::u16string_view folder,
                                                          std::u16string_view name) {
  // A name with a folder part leads elsewhere, or is another spelling of a name of this folder.
  if (name.empty() || !TextFile::FolderOf(name).empty()) return std::nullopt;
  const fs::file_type type = TypeOf(TextFile::JoinPath(folder, name));
  if (type == fs::status_error || type == fs::file_not_found) return std::nullopt;
  return TextFile::DescribeFile(folder, name);
}

}  // namespace quenra
