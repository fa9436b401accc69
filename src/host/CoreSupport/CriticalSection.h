// A lock for short sections, and its holder.
#pragma once

#include "platform/Threads.h"

namespace quenra {

class CriticalSection {
 public:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  CriticalSection() { ::InitializeCriticalSection(&section_); }
  ~CriticalSection() { ::DeleteCriticalSection(&section_); }
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void Lock() noexcept { ::EnterCriticalSection(&section_); }
  void Unlock() noexcept { ::LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_;
};

// Holds a CriticalSection from its construction to the end of its scope.
class [[nodiscard]] AutoLock {
 public:
  explicit AutoLock(CriticalSection& section) noexcept : section_(section) { section_.Lock(); }
  ~AutoLock() { section_.Unlock(); }
  AutoLock(const AutoLock&) = delete;
  AutoLock& operator=(const AutoLock&) = delete;

 private:
  CriticalSection& section_;
};

}  // namespace quenra
