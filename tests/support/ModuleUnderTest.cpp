#include "support/ModuleUnderTest.h"

#include <stdexcept>
#include <string>

#include "platform/OleText.h"
#include "support/TestText.h"

namespace quenra::test {
namespace {

template <class Function>
Function Find(HMODULE module, const char* name) {
  const FARPROC found = ::GetProcAddress(module, name);
  if (found == nullptr) throw std::runtime_error(std::string("the module lacks ") + name);
  // By way of void*: the compiler takes a cast between two function types for a mistake.
  return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

}  // namespace

ModuleUnderTest::ModuleUnderTest() : handle_(::LoadLibraryW(AsOle(ToUtf16(MODULE_FILE).c_str()))) {
  if (handle_ == nullptr) throw std::runtime_error("cannot load " MODULE_FILE);
}

ModuleUnderTest::~ModuleUnderTest() { ::FreeLibrary(handle_); }

HRESULT ModuleUnderTest::GetClassObject(const CLSID& classId, const IID& iid, void** result) const {
  using Function = HRESULT(STDAPICALLTYPE*)(const CLSID&, const IID&, void**);
  return Find<Function>(handle_, "DllGetClassObject")(classId, iid, result);
}

HRESULT ModuleUnderTest::Call(const char* name) const {
  return Find<HRESULT(STDAPICALLTYPE*)()>(handle_, name)();
}

}  // namespace quenra::test
