// The module's texts where modules carry no resources of the system's own.
#include "platform/Modules.h"

#ifndef _WIN32

extern "C" {

// NOLINTNEXTLINE(readability-identifier-naming): looked up by this name
PLATFORM_API extern const PlatformStringTableEntry quenraStringTable[];

#define STRING_TABLE_ENTRY(id, text) {id, u##text},
const PlatformStringTableEntry quenraStringTable[] = {
#include "resources/StringTable.inc"
    {0, nullptr}};
#undef STRING_TABLE_ENTRY

}  // extern "C"

#endif
