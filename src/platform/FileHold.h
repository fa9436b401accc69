// Keeps a file from growing while it is replaced or removed.
//
//   FileHold hold;
//   if (hold.Take(path) == FileHold::Result::kBusy) ...
//
// Whoever adds rows to a table's file has the file itself locked meanwhile (RegularFile), and makes
// sure that it still has its name. On Windows the system does as much: a file that is open for
// writing is neither replaced nor removed there, and one that is held could not be either, so that
// nothing is held.
#pragma once

#include "platform/FileNames.h"
#include "platform/RegularFile.h"

class PLATFORM_API FileHold {
 public:
  enum class Result {
    kTaken,
    kMissing,  // there is no such file
    kBusy,     // somebody has had it locked for ten seconds
    kUnable,   // it is no file, or cannot be opened
  };

  // Waits until nobody writes to the file. Nobody does while this object lives.
  Result Take(const NativeFileName& path);

  // Whether the path still leads to the file that was taken.
  bool IsAt(const NativeFileName& path) const;

 private:
  RegularFile file_;
};
