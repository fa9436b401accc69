// A folder of the process's own for a target that cannot do without files, removed with them at the
// end. TMPDIR on a memory file system makes such a target several times faster.
//
//   static const Fuzz::TemporaryFolder folder;
//   folder.Write("t.csv", bytes);
#pragma once

#include <boost/filesystem.hpp>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "FuzzInput.h"
#include "platform/FileNames.h"

namespace Fuzz {

class TemporaryFolder {
 public:
  TemporaryFolder()
      : path_(boost::filesystem::temp_directory_path() /
              boost::filesystem::unique_path("fuzz-%%%%-%%%%-%%%%")) {
    boost::filesystem::create_directories(path_);
  }
  ~TemporaryFolder() {
    boost::system::error_code ignored;
    boost::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::u16string Path() const { return FileNameFromNative(path_.native()); }

  void Write(const char* name, std::string_view bytes) const {
    std::filebuf file;
    Check(file.open((path_ / name).c_str(), std::ios::out | std::ios::binary | std::ios::trunc));
    const auto size = static_cast<std::streamsize>(bytes.size());
    Check(file.sputn(bytes.data(), size) == size && file.close());
  }

  std::string Read(const char* name) const {
    std::ifstream file((path_ / name).c_str(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

 private:
  boost::filesystem::path path_;
};

}  // namespace Fuzz
