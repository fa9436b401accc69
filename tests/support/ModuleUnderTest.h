// The built module, used through its exports alone.
//
//   ModuleUnderTest module;
//   auto type = module.Create<INativeType>(CLSID_TextFileNativeType);
#pragma once

#include "host/com/ComPtr.h"
#include "platform/Modules.h"

namespace quenra::test {

// Loaded as a host loads it, and unloaded at the end.
class ModuleUnderTest {
 public:
  // Throws std::runtime_error when there is no such module.
  ModuleUnderTest();
  ~ModuleUnderTest();
  ModuleUnderTest(const ModuleUnderTest&) = delete;
  ModuleUnderTest& operator=(const ModuleUnderTest&) = delete;

  HRESULT GetClassObject(const CLSID& classId, const IID& iid, void** result) const;
  // An export that takes nothing, such as "DllCanUnloadNow".
  HRESULT Call(const char* name) const;
  HRESULT CanUnloadNow() const { return Call("DllCanUnloadNow"); }
  HMODULE Handle() const { return handle_; }

  // Empty when the class has no such interface.
  template <class Interface>
  ComPtr<Interface> Create(const CLSID& classId) const {
    ComPtr<Interface> object;
    ComPtr<IClassFactory> factory;
    if (SUCCEEDED(GetClassObject(classId, IID_IClassFactory, factory.ReceiveVoid())) &&
        FAILED(factory->CreateInstance(nullptr, kInterfaceId<Interface>, object.ReceiveVoid())))
      object.Reset();
    return object;
  }

 private:
  HMODULE handle_;
};

}  // namespace quenra::test
