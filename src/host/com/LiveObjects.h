// How many COM objects of this module are alive.
//
// The COM base is a static library, so every module that links it counts its own objects, and may
// be unloaded when its count is zero. Safe from any thread.
#pragma once

#include "platform/ComTypes.h"

namespace quenra {

// Each answers the new count. Objects and server locks count alike.
LONG AddLiveObject() noexcept;
LONG RemoveLiveObject() noexcept;

LONG LiveObjectCount() noexcept;

}  // namespace quenra
