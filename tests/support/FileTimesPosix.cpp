#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "support/FileTimes.h"

void SetFileTimes(const std::filesystem::path& file, long access, long modification) {
  const timespec times[] = {{access, 0}, {modification, 0}};
  if (::utimensat(AT_FDCWD, file.c_str(), times, 0) != 0)
    throw std::system_error(errno, std::generic_category(), file.string());
}

#endif
