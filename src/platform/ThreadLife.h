// Whether a thread is still there.
//
//   if (HasThreadEnded(id)) DropWhatItLeft(id);
#pragma once

#include "platform/ComTypes.h"

// `id` comes from GetCurrentThreadId() in this process. True only when no thread of the process has
// that id any more; when the system cannot tell, false. Ids are used again, so false may also speak
// of a later thread.
PLATFORM_API bool HasThreadEnded(DWORD id) noexcept;
