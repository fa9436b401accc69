#ifndef _WIN32

#include "RegisteredModule.h"

namespace TextTables {

Apartment::~Apartment() = default;

void Apartment::Enter() noexcept {}

quenra::ComPtr<quenra::IPlugInWorkspaceFactoryHelper2> CreateRegisteredFactory(Apartment&) {
  return {};
}

}  // namespace TextTables

#endif
