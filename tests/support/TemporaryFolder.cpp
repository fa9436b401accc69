#include "support/TemporaryFolder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "platform/FileNames.h"

namespace quenra::test {

namespace fs = boost::filesystem;

TemporaryFolder::TemporaryFolder() {
  const fs::path made =
      fs::canonical(fs::temp_directory_path()) / fs::unique_path("texttables-%%%%-%%%%-%%%%-%%%%");
  fs::create_directory(made);
  path_ = FileNameFromNative(made.native());
}

TemporaryFolder::~TemporaryFolder() {
  boost::system::error_code ignored;
  fs::remove_all(fs::path(NativeFromFileName(path_)), ignored);
}

std::u16string TemporaryFolder::Path(std::u16string_view name) const {
  std::u16string path = path_;
  path += static_cast<char16_t>(fs::path::preferred_separator);
  path += name;
  return path;
}

fs::path TemporaryFolder::Native() const { return fs::path(NativeFromFileName(path_)); }

fs::path TemporaryFolder::Native(std::u16string_view name) const {
  return fs::path(NativeFromFileName(Path(name)));
}

std::u16string TemporaryFolder::Write(std::u16string_view name, std::string_view bytes) const {
  std::ofstream stream(Native(name).c_str(), std::ios::binary | std::ios::trunc);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (stream.fail()) throw std::runtime_error("a test's file could not be written");
  return Path(name);
}

void TemporaryFolder::Append(std::u16string_view name, std::string_view bytes) const {
  std::ofstream stream(Native(name).c_str(), std::ios::binary | std::ios::app);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string TemporaryFolder::Read(std::u16string_view name) const {
  std::ifstream stream(Native(name).c_str(), std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

bool TemporaryFolder::Exists(std::u16string_view name) const { return fs::exists(Native(name)); }

void TemporaryFolder::MakeFolder(std::u16string_view name) const {
  fs::create_directory(Native(name));
}

void TemporaryFolder::MakeLink(std::u16string_view name, std::u16string_view target) const {
  fs::create_symlink(fs::path(NativeFromFileName(target)), Native(name));
}

void TemporaryFolder::Remove(std::u16string_view name) const { fs::remove_all(Native(name)); }

std::vector<std::u16string> TemporaryFolder::Names() const {
  std::vector<std::u16string> names;
  for (const fs::directory_entry& entry :
       fs::directory_iterator(fs::path(NativeFromFileName(path_))))
    names.push_back(FileNameFromNative(entry.path().filename().native()));
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace quenra::test
