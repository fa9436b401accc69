// Why an operation on a table's files was refused or failed, for the user.
#pragma once

#include <string>
#include <string_view>
#include <system_error>

#include "host/CoreSupport/MessageText.h"
#include "platform/ExclusiveFile.h"

namespace TextFile {

// Thrown inside the core; the message names the file and the reason.
struct TableFailure {
  quenra::MessageText message;
  bool taken = false;  // something has the name that a table was to get
};

// "path: reason". Neither is words of ours alone: reasons name fields and files too.
quenra::MessageText FileMessage(std::u16string_view path, std::u16string_view reason);

// `what` has failed, and the system's own words for why, in brackets.
std::u16string WithReason(std::u16string_view what, const std::error_code& error);

[[noreturn]] void FailTable(std::u16string_view path, std::u16string_view reason);
// With the system's own words.
[[noreturn]] void FailTable(std::u16string_view path, const std::error_code& error);
// The same for what a temporary file could not do, or what was in its way.
[[noreturn]] void FailTable(std::u16string_view path, const ExclusiveFile& file);

}  // namespace TextFile
