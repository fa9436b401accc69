// One life of a thread. The system gives the id of a thread that has ended to another one; what
// belongs to a thread is kept under its life.
//
//   const ThreadLife mine = ThreadLife::OfThisThread();
//   if (kept.life == mine) ...          // this very thread, not one of the same id before it
//   else if (kept.life.HasEnded()) ...  // nobody comes back for it
#pragma once

#include <memory>

#include "platform/ComTypes.h"

// A value: copies speak of the same life. May be kept longer than the thread runs.
class ThreadLife {
 public:
  // Throws std::bad_alloc when memory, or what else the system needs for it, is exhausted. In the
  // very last steps of a thread, when its own life has been marked as ended already, it is a new
  // one that has ended.
  PLATFORM_API static ThreadLife OfThisThread();

  // As GetCurrentThreadId answers in that thread.
  PLATFORM_API DWORD Id() const noexcept;

  // Once true it stays so, whatever thread has the id now.
  PLATFORM_API bool HasEnded() const noexcept;

  PLATFORM_API friend bool operator==(const ThreadLife& left, const ThreadLife& right) noexcept;

 private:
  struct State;

  explicit ThreadLife(std::shared_ptr<const State> state) noexcept;

  std::shared_ptr<const State> state_;
};
