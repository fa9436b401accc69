#include <dlfcn.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/icu/IcuServices.h"

namespace {

constexpr char kLibrary[] = "libquenraIcu.so";

// It lies beside this library.
std::string LibraryPath() {
  Dl_info info;
  if (::dladdr(reinterpret_cast<const void*>(&Icu), &info) == 0) return kLibrary;
  const std::string self = info.dli_fname;
  return self.substr(0, self.rfind('/') + 1) + kLibrary;
}

const IcuServices& Load() {
  using Entry = decltype(&quenraIcuServices);
  void* const library = ::dlopen(LibraryPath().c_str(), RTLD_LAZY | RTLD_LOCAL);
  void* const entry = library == nullptr ? nullptr : ::dlsym(library, kIcuServicesEntry);
  if (entry == nullptr) {
    std::fprintf(stderr, "error while loading shared libraries: %s\n", ::dlerror());
    std::_Exit(127);
  }
  return *reinterpret_cast<Entry>(entry)();
}

}  // namespace

const IcuServices& Icu() {
  // Threads may load it at the same time, and get the same: waiting for one another here, they
  // could block one that holds the loader's lock.
  static std::atomic<const IcuServices*> loaded{nullptr};
  const IcuServices* services = loaded.load(std::memory_order_acquire);
  if (services == nullptr) {
    services = &Load();
    loaded.store(services, std::memory_order_release);
  }
  return *services;
}
