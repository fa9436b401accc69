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
  boost::filesystem::path Native() const;
  boost::filesystem::path Native(std::u16string_view name) const;

  // Each replaces what is there, or adds to it; bytes are written as they are. Answers the full
  // path, and throws when the file cannot be written.
  std::u16string Write(std::u16string_view name, std::string_view bytes) const;
  void Append(std::u16string_view name, std::string_view bytes) const;
  // Empty when there is no such file (see Exists).
  std::string Read(std::u16string_view name) const;

  bool Exists(std::u16string_view name) const;
  void MakeFolder(std::u16string_view name) const;
  void MakeLink(std::u16string_view name, std::u16string_view target) const;
  void Remove(std::u16string_view name) const;
  std::vector<std::u16string> Names() const;  // sorted

  // The same for names in ASCII.
  std::u16string Path(std::string_view name) const { return Path(Wide(name)); }
  boost::filesystem::path Native(std::string_view name) const { return Native(Wide(name)); }
  std::u16string Write(std::string_view name, std::string_view bytes) const {
    return Write(Wide(name), bytes);
  }
  std::string Read(std::string_view name) const { return Read(Wide(name)); }
  bool Exists(std::string_view name) const { return Exists(Wide(name)); }

 private:
  static std::u16string Wide(std::string_view name) { return {name.begin(), name.end()}; }

  std::u16string path_;
};

}  // namespace quenra::test
