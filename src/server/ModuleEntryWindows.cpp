// On Windows: what happens when the module is loaded and unloaded.
#include "platform/Modules.h"

#ifdef _WIN32

#include "resources/ResourceStrings.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    ::DisableThreadLibraryCalls(module);
    quenra::AttachResources(module);
  } else if (reason == DLL_PROCESS_DETACH) {
    quenra::DetachResources();
  }
  return TRUE;
}

#endif
