// The memory that texts live in.
//
//   char* block = TakeBstrBlock(size);  // null when memory is exhausted
//   GiveBstrBlock(block, size);
//
// With QUENRA_BSTR_CACHE each thread keeps some of the small blocks that it gives back, since a
// table's texts come and go row by row and the general allocator takes several times as long.
// Without it, in builds made for finding errors, every block is malloc's own, so that memory
// checkers see every misuse.
#pragma once

#include <cstddef>
#include <cstdlib>

#ifdef QUENRA_BSTR_CACHE

namespace BstrBlocks {

inline constexpr std::size_t kStep = 32;     // sizes are rounded up to this
inline constexpr std::size_t kClasses = 17;  // so larger blocks than 512 bytes are not kept
inline constexpr std::size_t kMostKept = std::size_t{256} * 1024;  // bytes a thread

// What a thread keeps: free blocks by size, each beginning with the next one's address.
struct Cache {
  void* first[kClasses];
  std::size_t bytes;
  enum : char { kUnwatched, kWatched, kClosed } state;
};

// The initial-exec model makes this a single instruction away; it is small enough for the room that
// the system reserves for libraries loaded late.
extern thread_local constinit Cache cache
    [[gnu::tls_model("initial-exec"), gnu::visibility("hidden")]];

// Lets the cache be emptied when the thread ends. False when that is over.
bool Watch() noexcept;

constexpr std::size_t ClassOf(std::size_t size) noexcept { return (size + kStep - 1) / kStep; }

}  // namespace BstrBlocks

inline char* TakeBstrBlock(std::size_t size) noexcept {
  using namespace BstrBlocks;
  const std::size_t sizeClass = ClassOf(size);
  if (sizeClass >= kClasses) return static_cast<char*>(std::malloc(size));
  void* const block = cache.first[sizeClass];
  if (block == nullptr) return static_cast<char*>(std::malloc(sizeClass * kStep));
  cache.first[sizeClass] = *static_cast<void**>(block);
  cache.bytes -= sizeClass * kStep;
  return static_cast<char*>(block);
}

// `size` is the one that the block was taken with, in whatever thread.
inline void GiveBstrBlock(char* block, std::size_t size) noexcept {
  using namespace BstrBlocks;
  const std::size_t sizeClass = ClassOf(size);
  if (sizeClass >= kClasses || cache.bytes >= kMostKept ||
      (cache.state != Cache::kWatched && !Watch()))
    return std::free(block);
  *reinterpret_cast<void**>(block) = cache.first[sizeClass];
  cache.first[sizeClass] = block;
  cache.bytes += sizeClass * kStep;
}

#else

inline char* TakeBstrBlock(std::size_t size) noexcept {
  return static_cast<char*>(std::malloc(size));
}
inline void GiveBstrBlock(char* block, std::size_t) noexcept { std::free(block); }

#endif
