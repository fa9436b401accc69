// What the registry says of classes: their ProgIDs and their categories.
#include <string>

#include "platform/ComponentCategories.h"
#include "platform/Registry.h"

namespace {

constexpr LSTATUS kDone = static_cast<LSTATUS>(ERROR_SUCCESS);

std::u16string TextOf(REFGUID guid) {
  OLECHAR text[39] = {};
  ::StringFromGUID2(guid, text, 39);
  return text;
}

// The default value of a key.
LSTATUS ReadDefault(const std::u16string& path, std::u16string& text) {
  HKEY key = nullptr;
  LSTATUS result = ::RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key);
  if (result != kDone) return result;
  DWORD size = 0;
  do {
    // Another program may make the value longer between the calls.
    text.resize(size / sizeof(char16_t));
    result = ::RegQueryValueExW(key, nullptr, nullptr, nullptr,
                                size != 0 ? reinterpret_cast<BYTE*>(text.data()) : nullptr, &size);
  } while ((result == kDone && text.empty()) || result == static_cast<LSTATUS>(ERROR_MORE_DATA));
  ::RegCloseKey(key);
  if (result == kDone) text.resize(size / sizeof(char16_t) - 1);
  return result;
}

HRESULT NotFoundOr(HRESULT notFound, LSTATUS result) {
  return result == static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND) ? notFound : REGDB_E_READREGDB;
}

std::u16string CategoryPath(REFCLSID classId, REFGUID category) {
  return u"CLSID\\" + TextOf(classId) + u"\\Implemented Categories\\" + TextOf(category);
}

}  // namespace

extern "C" {

HRESULT CLSIDFromProgID(LPCOLESTR progId, LPCLSID classId) try {
  if (progId == nullptr || classId == nullptr) return E_INVALIDARG;
  *classId = GUID_NULL;
  if (*progId == 0) return CO_E_CLASSSTRING;
  std::u16string text;
  const LSTATUS result = ReadDefault(std::u16string(progId) + u"\\CLSID", text);
  if (result != kDone) return NotFoundOr(CO_E_CLASSSTRING, result);
  return ::CLSIDFromString(text.c_str(), classId);
} catch (...) {
  return E_OUTOFMEMORY;
}

HRESULT ProgIDFromCLSID(REFCLSID classId, LPOLESTR* progId) try {
  if (progId == nullptr) return E_INVALIDARG;
  *progId = nullptr;
  std::u16string text;
  const LSTATUS result = ReadDefault(u"CLSID\\" + TextOf(classId) + u"\\ProgID", text);
  if (result != kDone) return NotFoundOr(REGDB_E_CLASSNOTREG, result);
  *progId = static_cast<LPOLESTR>(::CoTaskMemAlloc((text.size() + 1) * sizeof(OLECHAR)));
  if (*progId == nullptr) return E_OUTOFMEMORY;
  (*progId)[text.copy(*progId, text.size())] = 0;
  return S_OK;
} catch (...) {
  return E_OUTOFMEMORY;
}

}  // extern "C"

HRESULT RegisterImplementedCategory(REFCLSID classId, REFGUID category) noexcept try {
  HKEY key = nullptr;
  const LSTATUS result =
      ::RegCreateKeyExW(HKEY_CLASSES_ROOT, CategoryPath(classId, category).c_str(), 0, nullptr,
                        REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key, nullptr);
  if (result != kDone) return HRESULT_FROM_WIN32(static_cast<DWORD>(result));
  ::RegCloseKey(key);
  return S_OK;
} catch (...) {
  return E_OUTOFMEMORY;
}

HRESULT UnregisterImplementedCategory(REFCLSID classId, REFGUID category) noexcept try {
  const LSTATUS result =
      ::RegDeleteKeyW(HKEY_CLASSES_ROOT, CategoryPath(classId, category).c_str());
  return result == static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND)
             ? S_OK
             : HRESULT_FROM_WIN32(static_cast<DWORD>(result));
} catch (...) {
  return E_OUTOFMEMORY;
}
