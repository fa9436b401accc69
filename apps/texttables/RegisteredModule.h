// The module that is registered with the system, where hosts find modules by that.
#pragma once

#include "host/com/ComPtr.h"
#include "host/interfaces/PlugInWorkspaceFactory.h"

namespace TextTables {

// The apartment of the thread that enters it, until the end of its life; nothing elsewhere than on
// Windows. It is worth asking for only where the system makes the objects: it brings a window.
class Apartment {
 public:
  Apartment() = default;
  ~Apartment();  // NOLINT(performance-trivially-destructible): not on Windows
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  // To be called once.
  void Enter() noexcept;

 private:
  [[maybe_unused]] bool entered_ = false;
};

// A workspace factory of the registered module, in `apartment`; empty, and the apartment not
// entered, when none is registered, and always elsewhere than on Windows. Throws a Refusal when
// the registered one cannot be had.
quenra::ComPtr<quenra::IPlugInWorkspaceFactoryHelper2> CreateRegisteredFactory(
    Apartment& apartment);

}  // namespace TextTables
