#include "WhyNotOpened.h"

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "platform/FileNames.h"

namespace TextTables {

namespace {

namespace fs = std::filesystem;

std::string MessageOf(std::errc error) { return std::make_error_code(error).message(); }

// What the path leads to, or why that cannot be told.
fs::file_type TypeOf(const fs::path& path, std::string& reason) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  if (error) {
    reason = error.message();
  } else if (type == fs::file_type::not_found) {
    reason = MessageOf(std::errc::no_such_file_or_directory);
  }
  return type;
}

std::string NameOf(fs::file_type type) {
  switch (type) {
    case fs::file_type::directory:
      return MessageOf(std::errc::is_a_directory);
    case fs::file_type::fifo:
      return "it is a named pipe";
    case fs::file_type::socket:
      return "it is a socket";
    case fs::file_type::block:
    case fs::file_type::character:
      return "it is a device";
    default:
      return "it is no file";
  }
}

}  // namespace

std::string WhyFileIsNotOpened(std::u16string_view path) {
  const fs::path file(NativeFromFileName(path));
  std::string reason;
  const fs::file_type type = TypeOf(file, reason);
  if (!reason.empty()) return reason;
  // Only what is a file is opened for the answer: a pipe would wait for its other end.
  if (type != fs::file_type::regular) return NameOf(type);
  errno = 0;
  if (const std::ifstream stream(file, std::ios::binary); stream || errno == 0) return {};
  return std::generic_category().message(errno);
}

std::string WhyFolderIsNotOpened(std::u16string_view path) {
  std::string reason;
  const fs::file_type type = TypeOf(fs::path(NativeFromFileName(path)), reason);
  if (!reason.empty() || type == fs::file_type::directory) return reason;
  return MessageOf(std::errc::not_a_directory);
}

}  // namespace TextTables
