// The module's entries.
#include "host/com/ComCatch.h"
#include "host/com/LiveObjects.h"
#include "host/interfaces/HostInternalUnknown.h"
#include "server/ClassTable.h"
#include "server/Registration.h"

using quenra::ClassEntry;
using quenra::ComPtr;
using quenra::CreatableClasses;
using quenra::HResultFromCurrentException;
using quenra::ISingleton;

// `*result` is null after a failure.
STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* result) try {
  if (result != nullptr) *result = nullptr;
  for (const ClassEntry& entry : CreatableClasses())
    if (IsEqualCLSID(entry.classId, classId)) return entry.factory->QueryInterface(iid, result);
  return CLASS_E_CLASSNOTAVAILABLE;
} catch (...) {
  return HResultFromCurrentException();
}

// S_FALSE while the host holds an object or a lock.
STDAPI DllCanUnloadNow() try {
  for (const ClassEntry& entry : CreatableClasses())
    if (const ComPtr<ISingleton> singleton = entry.factory.As<ISingleton>())
      singleton->DropUnusedInstance();
  return quenra::LiveObjectCount() < 1 ? S_OK : S_FALSE;
} catch (...) {
  return S_FALSE;  // what cannot be asked may still hold objects
}

// Tools that register every server they come across shall not register this one: a host does so
// through the entries below.
STDAPI DllRegisterServer() { return S_OK; }

STDAPI DllUnregisterServer() { return S_OK; }

STDAPI quenraDllRegisterServer() try { return quenra::RegisterClasses(); } catch (...) {
  return E_FAIL;
}

STDAPI quenraDllUnregisterServer() try { return quenra::UnregisterClasses(); } catch (...) {
  return SELFREG_E_CLASS;
}
