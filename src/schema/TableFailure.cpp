#include "schema/TableFailure.h"

#include <boost/filesystem.hpp>

#include "platform/FileNames.h"

namespace TextFile {

void FailTable(std::u16string_view path, std::u16string_view reason) {
  std::u16string text(path);
  text += u": ";
  text += reason;
  throw TableFailure{std::move(text), false};
}

void FailTable(std::u16string_view path, const std::error_code& error) {
  // The system's messages are in the encoding of its file names.
  FailTable(path, FileNameFromNative(boost::filesystem::path(error.message()).native()));
}

void FailTable(std::u16string_view path, const ExclusiveFile& file) {
  if (file.Obstacle().empty()) FailTable(path, file.error());
  FailTable(path, file.Obstacle());
}

}  // namespace TextFile
