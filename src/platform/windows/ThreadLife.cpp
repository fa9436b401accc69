#include "platform/ThreadLife.h"

bool HasThreadEnded(DWORD id) noexcept {
  const HANDLE thread = ::OpenThread(SYNCHRONIZE | THREAD_QUERY_LIMITED_INFORMATION, FALSE, id);
  if (thread == nullptr) return ::GetLastError() == ERROR_INVALID_PARAMETER;
  // An id that now belongs to another process's thread is no thread of ours.
  const bool ended = ::WaitForSingleObject(thread, 0) == WAIT_OBJECT_0 ||
                     ::GetProcessIdOfThread(thread) != ::GetCurrentProcessId();
  ::CloseHandle(thread);
  return ended;
}
