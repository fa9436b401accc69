#include "platform/Modules.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/FileNames.h"

namespace {

constexpr char kStringTableSymbol[] = "quenraStringTable";

HMODULE AsModule(void* handle) { return static_cast<HMODULE>(handle); }

void* OpenFile(LPCWSTR fileName, int flags) {
  const std::string path = NativeFromFileName(fileName);
  return ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | flags);
}

// Null when the handle is none.
const link_map* MapOf(HMODULE module) {
  link_map* map = nullptr;
  return ::dlinfo(module, RTLD_DI_LINKMAP, &map) == 0 ? map : nullptr;
}

const link_map* MapOfAddress(const void* address) {
  Dl_info info;
  void* map = nullptr;
  if (::dladdr1(address, &info, &map, RTLD_DL_LINKMAP) == 0) return nullptr;
  return static_cast<const link_map*>(map);
}

// The handle behind a null one: the program itself. It needs no closing.
HMODULE Program() {
  static void* const handle = ::dlopen(nullptr, RTLD_NOW);
  return AsModule(handle);
}

std::string ProgramPath() {
  char path[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

std::string PathOf(const link_map& map) {
  // The program's own entry has no name.
  if (map.l_name == nullptr || map.l_name[0] == 0) return ProgramPath();
  char* const full = ::realpath(map.l_name, nullptr);
  if (full == nullptr) return map.l_name;
  std::string path(full);
  std::free(full);
  return path;
}

// dlsym also looks through the libraries that a module needs; their texts are not the module's.
const PlatformStringTableEntry* StringTableOf(HMODULE module) {
  if (module == nullptr) module = Program();
  const link_map* const map = MapOf(module);
  if (map == nullptr) return nullptr;
  const void* const symbol = ::dlsym(module, kStringTableSymbol);
  if (symbol == nullptr || MapOfAddress(symbol) != map) return nullptr;
  return static_cast<const PlatformStringTableEntry*>(symbol);
}

const char16_t* FindString(HMODULE module, UINT id) {
  const PlatformStringTableEntry* entry = StringTableOf(module);
  if (entry == nullptr) return nullptr;
  for (; entry->text != nullptr; ++entry) {
    if (entry->id == id) return entry->text;
  }
  return nullptr;
}

void* HandleFromMap(const link_map& map) {
  const bool isProgram = map.l_name == nullptr || map.l_name[0] == 0;
  return ::dlopen(isProgram ? nullptr : map.l_name, RTLD_NOW | RTLD_NOLOAD);
}

}  // namespace

HMODULE LoadLibraryW(LPCWSTR fileName) {
  if (fileName == nullptr || *fileName == 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  void* const handle = OpenFile(fileName, 0);
  if (handle == nullptr) SetLastError(ERROR_MOD_NOT_FOUND);
  return AsModule(handle);
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
  if (name == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  if (module == nullptr) module = Program();
  const link_map* const map = MapOf(module);
  if (map == nullptr) {
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
  }
  void* const symbol = ::dlsym(module, name);
  // What the module merely links with is not its export.
  if (symbol == nullptr || MapOfAddress(symbol) != map) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return nullptr;
  }
  return reinterpret_cast<FARPROC>(symbol);
}

BOOL FreeLibrary(HMODULE module) {
  if (module == nullptr || ::dlclose(module) != 0) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  return TRUE;
}

DWORD GetModuleFileNameW(HMODULE module, LPWSTR fileName, DWORD size) {
  std::string path;
  if (module == nullptr) {
    path = ProgramPath();
  } else if (const link_map* const map = MapOf(module)) {
    path = PathOf(*map);
  }
  if (path.empty()) {
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  const std::u16string text = FileNameFromNative(path);
  if (fileName == nullptr || size == 0) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return 0;
  }
  const std::size_t copied = text.copy(fileName, size - 1);
  fileName[copied] = 0;
  if (copied == text.size()) return static_cast<DWORD>(copied);
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return size;
}

BOOL GetModuleHandleExW(DWORD flags, LPCWSTR name, HMODULE* module) {
  if (module == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  *module = nullptr;
  void* handle = nullptr;
  if (name == nullptr) {
    handle = ::dlopen(nullptr, RTLD_NOW);
  } else if ((flags & GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS) != 0) {
    const link_map* const map = MapOfAddress(name);
    if (map != nullptr) handle = HandleFromMap(*map);
  } else {
    handle = OpenFile(name, RTLD_NOLOAD);
  }
  if (handle == nullptr) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return FALSE;
  }
  // The handle stays good: whoever loaded the module still holds it.
  if ((flags & GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT) != 0) ::dlclose(handle);
  *module = AsModule(handle);
  return TRUE;
}

int LoadStringW(HINSTANCE module, UINT id, LPWSTR buffer, int size) {
  if (buffer == nullptr || size < 0) return 0;
  const char16_t* const found = FindString(module, id);
  if (size == 0) {
    // The contract makes the buffer a pointer to a pointer here.
    *reinterpret_cast<const char16_t**>(buffer) = found;
  } else {
    buffer[0] = 0;
  }
  if (found == nullptr) {
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return 0;
  }
  const std::u16string_view text(found);
  if (size == 0) return static_cast<int>(text.size());
  const std::size_t copied = text.copy(buffer, static_cast<std::size_t>(size) - 1);
  buffer[copied] = 0;
  return static_cast<int>(copied);
}

BOOL DisableThreadLibraryCalls(HMODULE module) {
  // Nothing is called when a thread starts or ends, so there is nothing to switch off.
  if (module != nullptr) return TRUE;
  SetLastError(ERROR_INVALID_HANDLE);
  return FALSE;
}
