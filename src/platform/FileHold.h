// Keeps a file from growing while it is replaced, removed or measured.
//
//   FileHold hold;
//   if (hold.Take(path) == FileHold::Result::kBusy) ...
//
// Whoever adds rows to a table's file has the file itself locked meanwhile, by its descriptor
// (flock on POSIX systems), and makes sure before that the file still has its name. On Windows the
// system does as much: a file that is open for writing is neither replaced nor removed there, and
// nothing has to be held.
#pragma once

#include "platform/FileNames.h"

class PLATFORM_API FileHold {
 public:
  enum class Result {
    kTaken,
    kMissing,  // there is no such file
    kBusy,     // somebody has gone on writing to it for ten seconds
    kUnable,   // it is no file, or cannot be opened
  };

  FileHold() = default;
  ~FileHold();
  FileHold(const FileHold&) = delete;
  FileHold& operator=(const FileHold&) = delete;

  // Waits until nobody writes to the file. Nobody does until LetGrow.
  Result Take(const NativeFileName& path);

  // Whether the path still leads to the file that was taken, also after LetGrow.
  bool IsAt(const NativeFileName& path) const;

  void LetGrow();

 private:
#ifndef _WIN32
  int descriptor_ = -1;
#endif
};
