#ifndef _WIN32

#include "RegisteredModule.h"

namespace TextTables {

Apartment::Apartment() = default;
Apartment::~Apartment() = default;

quenra::ComPtr<quenra::IPlugInWorkspaceFactoryHelper2> CreateRegisteredFactory() { return {}; }

}  // namespace TextTables

#endif
