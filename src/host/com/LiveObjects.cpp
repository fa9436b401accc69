#include "host/com/LiveObjects.h"

#include <atomic>

namespace quenra {
namespace {

std::atomic<LONG> liveObjects{0};

}  // namespace

LONG AddLiveObject() noexcept { return liveObjects.fetch_add(1) + 1; }

LONG RemoveLiveObject() noexcept { return liveObjects.fetch_sub(1) - 1; }

LONG LiveObjectCount() noexcept { return liveObjects.load(); }

}  // namespace quenra
