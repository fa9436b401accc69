<<<<<<< HEAD
// A folder of its own for one test, removed with everything in it.
//
//   TemporaryFolder folder;
//   folder.Write(u"a.csv", "Id,Name\n1,a\n");
//   Open(folder.Path(u"a.csv"));
#pragma once

#include <boost/filesystem.hpp>
=======
// A folder of its own for one test, gone with everything in it when the test ends.
//
//   TemporaryFolder folder;
//   const std::u16string path = folder.Write(u"a.csv", "a,b\n1,2\n");
//   EXPECT_EQ(folder.Read(u"schema.ini"), "[a.csv]\n");
#pragma once

#include <algorithm>
#include <boost/filesystem.hpp>
#include <fstream>
#include <iterator>
#include <stdexcept>
>>>>>>> testread
#include <string>
#include <string_view>
#include <vector>

<<<<<<< HEAD
namespace quenra::test {

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Without a separator at the end.
  const std::u16string& Path() const { return path_; }
  std::u16string Path(std::u16string_view name) const;
  boost::filesystem::path Native(std::u16string_view name) const;

  // Each replaces what is there, or adds to it; bytes are written as they are.
  void Write(std::u16string_view name, std::string_view bytes) const;
  void Append(std::u16string_view name, std::string_view bytes) const;
  // Empty when there is no such file.
  std::string Read(std::u16string_view name) const;

  bool Exists(std::u16string_view name) const;
  void MakeFolder(std::u16string_view name) const;
  void MakeLink(std::u16string_view name, std::u16string_view target) const;
  void Remove(std::u16string_view name) const;
  std::vector<std::u16string> Names() const;  // sorted

 private:
  std::u16string path_;
};

}  // namespace quenra::test
=======
#include "platform/FileNames.h"

class TemporaryFolder {
 public:
  TemporaryFolder()
      : folder_(boost::filesystem::temp_directory_path() /
                boost::filesystem::unique_path("text-tables-%%%%-%%%%-%%%%")) {
    boost::filesystem::create_directories(folder_);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    boost::system::error_code ignored;
    boost::filesystem::remove_all(folder_, ignored);
  }

  // Without a separator at its end.
  std::u16string path() const { return FileNameFromNative(folder_.native()); }
  const boost::filesystem::path& native() const noexcept { return folder_; }
  boost::filesystem::path Native(std::u16string_view name) const {
    return folder_ / boost::filesystem::path(NativeFromFileName(name));
  }
  // The full path of a file that need not exist.
  std::u16string PathOf(std::u16string_view name) const {
    return FileNameFromNative(Native(name).native());
  }

  // Makes the file hold exactly these bytes; answers its full path.
  std::u16string Write(std::u16string_view name, std::string_view bytes) const {
    std::ofstream stream(Native(name).c_str(), std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (stream.fail()) throw std::runtime_error("a test's file could not be written");
    return PathOf(name);
  }

  // The file's bytes; throws when there is no such file.
  std::string Read(std::u16string_view name) const {
    std::ifstream stream(Native(name).c_str(), std::ios::binary);
    if (!stream.is_open()) throw std::runtime_error("a test's file could not be read");
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  }

  bool Has(std::u16string_view name) const {
    return boost::filesystem::exists(boost::filesystem::symlink_status(Native(name)));
  }

  // What the folder holds, sorted.
  std::vector<std::u16string> Names() const {
    std::vector<std::u16string> names;
    for (boost::filesystem::directory_iterator entry(folder_), end; entry != end; ++entry)
      names.push_back(FileNameFromNative(entry->path().filename().native()));
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  boost::filesystem::path folder_;
};
>>>>>>> testread
