// Elsewhere than on Windows: what happens when the module is loaded and unloaded.
#include "platform/Modules.h"

#ifndef _WIN32

#include "resources/ResourceStrings.h"

namespace {

HMODULE HandleOfThisModule() {
  static const char insideThisModule = 0;
  HMODULE module = nullptr;
  ::GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&insideThisModule), &module);
  return module;
}

// The loader makes it when it has loaded the module, and destroys it before it unmaps the module.
class Attachment {
 public:
  Attachment() { quenra::AttachResources(HandleOfThisModule()); }
  ~Attachment() { quenra::DetachResources(); }
  Attachment(const Attachment&) = delete;
  Attachment& operator=(const Attachment&) = delete;
};

const Attachment kAttachment;

}  // namespace

#endif
