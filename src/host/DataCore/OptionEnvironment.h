// Host options from the process's environment, where the system uses it for settings.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quenra {

// The text of the environment variable QUENRA_OPTION_<name>; nothing when it is not set, and always
// nothing on Windows.
std::optional<std::u16string> OptionFromEnvironment(std::u16string_view name);

}  // namespace quenra
