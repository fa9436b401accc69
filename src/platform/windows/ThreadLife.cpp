#include "platform/ThreadLife.h"

#include <new>
#include <utility>

#include "platform/Threads.h"

// The system gives an id to no other thread while somebody has a handle of the thread that had it.
// So two lives that are kept at the same time differ in their ids.
struct ThreadLife::State {
  State() {
    if (::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentThread(), ::GetCurrentProcess(),
                          &thread, SYNCHRONIZE, FALSE, 0) == FALSE)
      throw std::bad_alloc();
  }
  ~State() { ::CloseHandle(thread); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  const DWORD id = ::GetCurrentThreadId();
  HANDLE thread = nullptr;
};

ThreadLife::ThreadLife(std::shared_ptr<const State> state) noexcept : state_(std::move(state)) {}

ThreadLife ThreadLife::OfThisThread() { return ThreadLife(std::make_shared<const State>()); }

DWORD ThreadLife::Id() const noexcept { return state_->id; }

bool ThreadLife::HasEnded() const noexcept {
  return ::WaitForSingleObject(state_->thread, 0) == WAIT_OBJECT_0;
}

bool operator==(const ThreadLife& left, const ThreadLife& right) noexcept {
  return left.Id() == right.Id();
}
