#include "platform/ThreadLife.h"

#include <atomic>
#include <utility>

#include "platform/Threads.h"

struct ThreadLife::State {
  DWORD id = ::GetCurrentThreadId();
  std::atomic<bool> ended = false;
};

namespace {

// Marks the life as ended when the thread ends. The template keeps the state's type to its class.
template <class State>
class Owner {
 public:
  ~Owner() {
    if (state) state->ended.store(true, std::memory_order_release);
    isOver = true;
  }

  std::shared_ptr<State> state;
  // Without a destructor, so that it can be asked when the owner has gone.
  inline static thread_local constinit bool isOver = false;
};

}  // namespace

ThreadLife::ThreadLife(std::shared_ptr<const State> state) noexcept : state_(std::move(state)) {}

ThreadLife ThreadLife::OfThisThread() {
  thread_local Owner<State> owner;
  if (Owner<State>::isOver) {
    // Another destructor of this thread asks. Nobody would mark this life any more.
    auto state = std::make_shared<State>();
    state->ended = true;
    return ThreadLife(std::move(state));
  }
  if (!owner.state) owner.state = std::make_shared<State>();
  return ThreadLife(owner.state);
}

DWORD ThreadLife::Id() const noexcept { return state_->id; }

bool ThreadLife::HasEnded() const noexcept { return state_->ended.load(std::memory_order_acquire); }

bool operator==(const ThreadLife& left, const ThreadLife& right) noexcept {
  return left.state_ == right.state_;
}
