#include "platform/posix/BstrBlocks.h"

#ifdef QUENRA_BSTR_CACHE

namespace BstrBlocks {

thread_local constinit Cache cache = {};

namespace {

// Gives the blocks of its thread back to the general allocator.
class Sweeper {
 public:
  // Of an object, which is there from the first call on.
  // NOLINTNEXTLINE(readability-convert-member-functions-to-static)
  void Watch() noexcept { cache.state = Cache::kWatched; }

  ~Sweeper() {
    // Texts that are freed still later, by other objects of the thread, are not kept.
    cache.state = Cache::kClosed;
    for (void*& first : cache.first) {
      while (first != nullptr) {
        void* const next = *static_cast<void**>(first);
        std::free(first);
        first = next;
      }
    }
    cache.bytes = 0;
  }
};

thread_local Sweeper sweeper;

}  // namespace

bool Watch() noexcept {
  if (cache.state == Cache::kClosed) return false;
  sweeper.Watch();
  return true;
}

}  // namespace BstrBlocks

#endif
