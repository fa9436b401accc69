// File names as UTF-16 text and as the system spells them.
//
// Elsewhere than on Windows a file name is any bytes. Those that are UTF-8 become the text they
// spell; a byte that is no part of UTF-8 becomes the lone surrogate U+DC00 + byte (U+DC80..U+DCFF).
// So every name that a folder lists can be opened again, and two names never become one text.
//
//   const std::u16string name = FileNameFromNative(entry.path().filename().native());
//   std::ifstream stream(folder / NativeFromFileName(name));
#pragma once

#include <string>
#include <string_view>

#include "platform/ComTypes.h"

#ifdef _WIN32
using NativeFileName = std::wstring;
#else
using NativeFileName = std::string;
#endif

// Gives back the same native name from FileNameFromNative's result. A lone surrogate that no name
// has given rise to (below U+DC80 or above U+DCFF) is written as the three bytes of its code, which
// is then no name that FileNameFromNative could have answered with that text.
PLATFORM_API std::u16string FileNameFromNative(
    std::basic_string_view<NativeFileName::value_type> name);
PLATFORM_API NativeFileName NativeFromFileName(std::u16string_view name);
