#include "schema/TableFailure.h"

#include <boost/filesystem.hpp>

#include "platform/FileNames.h"

namespace TextFile {

namespace {

// The system's messages are in the encoding of its file names.
std::u16string WordsOf(const std::error_code& error) {
  return FileNameFromNative(boost::filesystem::path(error.message()).native());
}

}  // namespace

quenra::MessageText FileMessage(std::u16string_view path, std::u16string_view reason) {
  quenra::MessageText message;
  message.Insert(path).Add(u": ").Insert(reason);
  return message;
}

std::u16string WithReason(std::u16string_view what, const std::error_code& error) {
  std::u16string text(what);
  if (error) text += u" (" + WordsOf(error) + u')';
  return text;
}

void FailTable(std::u16string_view path, std::u16string_view reason) {
  throw TableFailure{FileMessage(path, reason), false};
}

void FailTable(std::u16string_view path, const std::error_code& error) {
  FailTable(path, WordsOf(error));
}

void FailTable(std::u16string_view path, const ExclusiveFile& file) {
  if (file.Obstacle().empty()) FailTable(path, file.error());
  FailTable(path, file.Obstacle());
}

}  // namespace TextFile
