// The ids of the module's texts (resources/StringTable.inc).
#pragma once

#include <cstdint>

namespace quenra {

inline constexpr std::uint32_t kTextFileText = 101;
inline constexpr std::uint32_t kTextFileDataText = 102;
// The message of a schema.ini error is this plus the error's code.
inline constexpr std::uint32_t kFirstParseErrorText = 103;

}  // namespace quenra
