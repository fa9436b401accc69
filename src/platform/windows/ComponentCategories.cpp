// comcat.h and the Windows headers come in a fixed order.
// clang-format off
#include "platform/ComponentCategories.h"
#include <comcat.h>
#include <cwchar>
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

bool HasCategory(REFCLSID classId, REFGUID category) noexcept {
  wchar_t classText[39] = {};
  wchar_t categoryText[39] = {};
  ::StringFromGUID2(classId, classText, 39);
  ::StringFromGUID2(category, categoryText, 39);
  wchar_t path[160] = {};
  std::swprintf(path, 160, L"CLSID\\%ls\\Implemented Categories\\%ls", classText, categoryText);
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  ::RegCloseKey(key);
  return true;
}

}  // namespace

HRESULT RegisterImplementedCategory(REFCLSID classId, REFGUID category) noexcept {
  return ChangeCategory(&ICatRegister::RegisterClassImplCategories, classId, category);
}

HRESULT UnregisterImplementedCategory(REFCLSID classId, REFGUID category) noexcept {
  // Registrars differ in what they answer for a category that the class does not have.
  if (!HasCategory(classId, category)) return S_OK;
  return ChangeCategory(&ICatRegister::UnRegisterClassImplCategories, classId, category);
}
