// Whether this thread is the process's only one.
//
//   if (IsOnlyThread()) ++references;  // nobody else looks
#pragma once

#if defined(__has_include)
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define SYSTEM_TELLS_SINGLE_THREAD
#endif
#endif

// False as well where the system does not tell. Stays true until this thread starts another one.
inline bool IsOnlyThread() noexcept {
#ifdef SYSTEM_TELLS_SINGLE_THREAD
  return __libc_single_threaded != 0;
#else
  return false;
#endif
}

#ifdef SYSTEM_TELLS_SINGLE_THREAD
#undef SYSTEM_TELLS_SINGLE_THREAD
#endif
