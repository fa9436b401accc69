#include "platform/FileHold.h"

#include <cerrno>

FileHold::Result FileHold::Take(const NativeFileName& path) {
  for (;;) {
    // Some file systems lock only what is open for writing.
    if (!file_.Open(path, RegularFile::Access::kAppend) &&
        !file_.Open(path, RegularFile::Access::kRead))
      return file_.error().value() == ENOENT ? Result::kMissing : Result::kUnable;
    if (!file_.Lock()) return Result::kBusy;
    // Another file may have taken its place while this one was waited for.
    if (file_.IsAt(path)) return Result::kTaken;
  }
}

bool FileHold::IsAt(const NativeFileName& path) const { return file_.IsAt(path); }
