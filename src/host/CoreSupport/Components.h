// Creation of the host's objects by class.
//
//   ComPtr<HostFieldCollectionEdit> fields;
//   const HRESULT result = CreateComponentInstance(CLSID_HostFieldCollection, fields.Receive());
#pragma once

#include "host/HostApi.h"
#include "host/interfaces/InterfaceId.h"

namespace quenra {

// Creates an object of one of the classes of host/interfaces/HostClasses.h. With an `outer`
// object only IID_IUnknown may be asked for, and only classes that can be aggregated allow it
// (CLASS_E_NOAGGREGATION otherwise): of the embedded ones the workspace factory alone. E_POINTER
// for a null `object`, REGDB_E_CLASSNOTREG for a class that nobody supplies. `*object` is null
// after any failure; the caller releases it.
QUENRA_HOST_API HRESULT CreateComponentInstance(const CLSID& classId, IUnknown* outer,
                                                const IID& interfaceId, void** object) noexcept;

template <class Interface>
HRESULT CreateComponentInstance(const CLSID& classId, Interface** object) noexcept {
  return CreateComponentInstance(classId, nullptr, kInterfaceId<Interface>,
                                 reinterpret_cast<void**>(object));
}

// A function that makes an object, with the contract of CreateComponentInstance.
using ComponentCreator = HRESULT (*)(IUnknown* outer, const IID& interfaceId, void** object);

// Lets an application supply its own class for `classId`, in place of the embedded one. A null
// `creator` brings the embedded one back. To be called before a module is loaded.
QUENRA_HOST_API void SetComponentCreator(const CLSID& classId, ComponentCreator creator);

// How many embedded host objects, chained errors among them, are alive in this process: what an
// application that released everything can check at its end.
QUENRA_HOST_API LONG LiveComponentCount() noexcept;

}  // namespace quenra
