// The module that is registered with the system, where hosts find modules by that.
#pragma once

#include "host/com/ComPtr.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"

namespace TextTables {

// The calling thread's apartment, for as long as it lives; nothing elsewhere than on Windows.
class Apartment {
 public:
  Apartment();
  ~Apartment();
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  [[maybe_unused]] bool entered_ = false;
};

// A workspace factory of the registered module; empty when none is registered, and always empty
// elsewhere than on Windows. Throws a Refusal when the registered one cannot be had.
quenra::ComPtr<quenra::IPlugInWorkspaceFactoryHelper2> CreateRegisteredFactory();

}  // namespace TextTables
