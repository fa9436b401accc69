#include "host/DataCore/OptionEnvironment.h"

#ifndef _WIN32

#include <cstdlib>

#include "platform/FileNames.h"

namespace quenra {

std::optional<std::u16string> OptionFromEnvironment(std::u16string_view name) {
  // The environment holds bytes as file names do, and is read by the same rules.
  const std::string variable = "QUENRA_OPTION_" + NativeFromFileName(name);
  const char* const value = std::getenv(variable.c_str());
  if (value == nullptr) return std::nullopt;
  return FileNameFromNative(value);
}

}  // namespace quenra

#endif
