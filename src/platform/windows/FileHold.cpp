#include "platform/FileHold.h"

#include <windows.h>

namespace {

bool IsFile(const NativeFileName& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

}  // namespace

FileHold::Result FileHold::Take(const NativeFileName& path) {
  if (IsFile(path)) return Result::kTaken;
  const DWORD error = ::GetLastError();
  const bool missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
  return missing ? Result::kMissing : Result::kUnable;
}

bool FileHold::IsAt(const NativeFileName& path) const { return IsFile(path); }
