#include "schema/TableFailure.h"

#include <boost/filesystem.hpp>

#include "platform/FileNames.h"

namespace TextFile {

void FailTable(std::u16string_view path, std::u16string_view reason) {
  std::u16string text(path);
  text += u": ";
  text += reason;
  throw TableFailure{std::move(text)};
}

void FailTable(std::u16string_view path, const std::error_code& error) {
  // The system's messages are in the encoding of its file names.
  FailTable(path, FileNameFromNative(boost::filesystem::path(error.message()).native()));
}

void FailTemporary(std::u16string_view temporary, std::u16string_view path,
                   const std::error_code& error) {
  namespace fs = boost::filesystem;
  boost::system::error_code ignored;
  const auto status = fs::symlink_status(fs::path(NativeFromFileName(temporary)), ignored);
  FailTable(fs::exists(status) ? temporary : path, error);
}

}  // namespace TextFile
