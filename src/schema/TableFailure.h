// Why an operation on a table's files was refused or failed, for the user.
#pragma once

#include <string>
#include <string_view>
#include <system_error>

#include "platform/ExclusiveFile.h"

namespace TextFile {

// Thrown inside the core; `text` names the file and the reason.
struct TableFailure {
  std::u16string text;
  bool taken = false;  // something has the name that a table was to get
};

[[noreturn]] void FailTable(std::u16string_view path, std::u16string_view reason);
// With the system's own words.
[[noreturn]] void FailTable(std::u16string_view path, const std::error_code& error);
// The same for what a temporary file could not do, or what was in its way.
[[noreturn]] void FailTable(std::u16string_view path, const ExclusiveFile& file);

}  // namespace TextFile
