// Files of this process cannot grow beyond a size: what a full disk does to a writer, elsewhere
// than on Windows.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace quenra::test {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : signal_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    ::signal(SIGXFSZ, signal_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_ = {};
  void (*signal_)(int);
};

}  // namespace quenra::test
