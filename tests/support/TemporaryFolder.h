// A folder of its own for one test, gone with everything in it when the test ends.
//
//   TemporaryFolder folder;
//   folder.Write("a.csv", "x,y\n1,2\n");
//   OpenSomething(folder.Path(u"a.csv"));
//   EXPECT_EQ(folder.Read("schema.ini"), "[a.csv]\n");
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() /
              ("text-tables-test-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ignored);
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& native() const noexcept { return path_; }

  // As the code under test takes paths.
  std::u16string Path() const { return path_.u16string(); }
  std::u16string Path(std::u16string_view name) const { return (path_ / name).u16string(); }

  // Writes the bytes as they stand, over an older file of the name (UTF-8).
  void Write(std::string_view name, std::string_view bytes) const {
    std::ofstream stream(FileOf(name), std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) throw std::runtime_error("cannot write " + std::string(name));
  }

  // The bytes of a file; empty when there is none (see Exists).
  std::string Read(std::string_view name) const {
    std::ifstream stream(FileOf(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  }

  bool Exists(std::string_view name) const { return std::filesystem::exists(FileOf(name)); }

  std::filesystem::path FileOf(std::string_view name) const {
    return path_ / std::filesystem::path(std::u8string(name.begin(), name.end()));
  }

 private:
  std::filesystem::path path_;
};
