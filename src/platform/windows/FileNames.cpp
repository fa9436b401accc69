#include "platform/FileNames.h"

// Windows' file names are UTF-16 code units already, lone surrogates included.

std::u16string FileNameFromNative(std::wstring_view name) {
  return std::u16string(name.begin(), name.end());
}

std::wstring NativeFromFileName(std::u16string_view name) {
  return std::wstring(name.begin(), name.end());
}
