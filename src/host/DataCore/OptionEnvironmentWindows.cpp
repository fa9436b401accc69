#include "host/DataCore/OptionEnvironment.h"

#ifdef _WIN32

namespace quenra {

std::optional<std::u16string> OptionFromEnvironment(std::u16string_view) { return std::nullopt; }

}  // namespace quenra

#endif
