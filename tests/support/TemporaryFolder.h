// A folder of its own for one test, removed with everything in it.
//
//   TemporaryFolder folder;
//   folder.Write(u"a.csv", "Id,Name\n1,a\n");
//   Open(folder.Path(u"a.csv"));
#pragma once

#include <boost/filesystem.hpp>
#include <string>
#include <string_view>
#include <vector>

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
