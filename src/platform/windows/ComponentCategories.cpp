// comcat.h and the Windows headers come in a fixed order.
// clang-format off
#include "platform/ComponentCategories.h"
#include <comcat.h>
// clang-format on

namespace {

// The registrar is created in an apartment; a caller that has none, such as an installer's helper,
// gets one for the length of the call.
class Apartment {
 public:
  Apartment() : entered_(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
  ~Apartment() {
    if (entered_) ::CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  bool entered_;
};

using Change = HRESULT (STDMETHODCALLTYPE ICatRegister::*)(REFCLSID, ULONG, CATID*);

HRESULT ChangeCategory(Change change, REFCLSID classId, CATID category) noexcept {
  const Apartment apartment;
  ICatRegister* registrar = nullptr;
  HRESULT result =
      ::CoCreateInstance(CLSID_StdComponentCategoriesMgr, nullptr, CLSCTX_INPROC_SERVER,
                         IID_ICatRegister, reinterpret_cast<void**>(&registrar));
  if (FAILED(result)) return result;
  result = (registrar->*change)(classId, 1, &category);
  registrar->Release();
  return result;
}

}  // namespace

HRESULT RegisterImplementedCategory(REFCLSID classId, REFGUID category) noexcept {
  return ChangeCategory(&ICatRegister::RegisterClassImplCategories, classId, category);
}

HRESULT UnregisterImplementedCategory(REFCLSID classId, REFGUID category) noexcept {
  const HRESULT result =
      ChangeCategory(&ICatRegister::UnRegisterClassImplCategories, classId, category);
  // Registrars differ in what they call a category that the class does not have.
  const bool hadNone =
      result == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) || result == CAT_E_CATIDNOEXIST;
  return hadNone ? S_OK : result;
}
