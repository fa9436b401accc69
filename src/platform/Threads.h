// Locks, atomic counts and thread identity.
//
//   CRITICAL_SECTION lock = {};
//   ::InitializeCriticalSection(&lock);
//   ::EnterCriticalSection(&lock);  // the owner may enter again
//   ::LeaveCriticalSection(&lock);
//   ::DeleteCriticalSection(&lock);
#pragma once

#include "platform/ComTypes.h"

#ifndef _WIN32

#include <pthread.h>

struct CRITICAL_SECTION {
  pthread_mutex_t mutex;
};
using LPCRITICAL_SECTION = CRITICAL_SECTION*;

extern "C" {

PLATFORM_API void InitializeCriticalSection(LPCRITICAL_SECTION section);
PLATFORM_API void EnterCriticalSection(LPCRITICAL_SECTION section);
PLATFORM_API BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section);
PLATFORM_API void LeaveCriticalSection(LPCRITICAL_SECTION section);
PLATFORM_API void DeleteCriticalSection(LPCRITICAL_SECTION section);

PLATFORM_API DWORD GetCurrentThreadId();

}  // extern "C"

// Answer the new value.
inline LONG InterlockedIncrement(volatile LONG* value) {
  return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedDecrement(volatile LONG* value) {
  return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST);
}
// Answer the old value.
inline LONG InterlockedExchange(volatile LONG* target, LONG value) {
  return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedCompareExchange(volatile LONG* target, LONG value, LONG comparand) {
  __atomic_compare_exchange_n(target, &comparand, value, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
  return comparand;
}

#endif
