// Shared libraries loaded by name, and the texts they carry.
//
// On Windows this is the SDK's header. Elsewhere a module is what dlopen gives. Its texts are an
// array that it exports under the C name quenraStringTable:
//
//   extern "C" PLATFORM_API const PlatformStringTableEntry quenraStringTable[];
//   extern "C" const PlatformStringTableEntry quenraStringTable[] = {
//       {101, u"Text file"}, {118, u"Gr\u00F6\u00DFe"}, {102, u""}, {0, nullptr}};
#pragma once

#include "platform/ComTypes.h"
#include "platform/LastError.h"

#ifndef _WIN32

struct PlatformModule;  // never defined: the handle is what dlopen answers
using HMODULE = PlatformModule*;
using HINSTANCE = HMODULE;
using FARPROC = INT_PTR (*)();

// One text of a module; the entry {0, nullptr} ends the table. Ids are unique, in any order.
struct PlatformStringTableEntry {
  unsigned id;
  const char16_t* text;
};

inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;
inline constexpr DWORD DLL_THREAD_ATTACH = 2;
inline constexpr DWORD DLL_THREAD_DETACH = 3;

inline constexpr DWORD GET_MODULE_HANDLE_EX_FLAG_PIN = 1;
inline constexpr DWORD GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT = 2;
inline constexpr DWORD GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS = 4;

extern "C" {

// Null and ERROR_MOD_NOT_FOUND when there is no such module or it cannot be loaded.
PLATFORM_API HMODULE LoadLibraryW(LPCWSTR fileName);
PLATFORM_API FARPROC GetProcAddress(HMODULE module, LPCSTR name);
PLATFORM_API BOOL FreeLibrary(HMODULE module);

// The path of the module's file; null is the program. Answers the characters written without the
// terminating zero. A buffer that is too small is filled and ended by a zero; the answer is then
// `size` and the last error ERROR_INSUFFICIENT_BUFFER. 0 after any other failure.
PLATFORM_API DWORD GetModuleFileNameW(HMODULE module, LPWSTR fileName, DWORD size);

// With FROM_ADDRESS `name` is any address inside the module: the way to one's own handle. A null
// name is the program. Unless UNCHANGED_REFCOUNT is given the caller owes a FreeLibrary.
PLATFORM_API BOOL GetModuleHandleExW(DWORD flags, LPCWSTR name, HMODULE* module);

// Copies the text `id`, cut to `size` - 1 characters, and answers the length without the
// terminating zero; 0 and an empty buffer when the module has no such text. With `size` 0 the
// buffer is taken as a const char16_t** that receives a read-only pointer to the text. A null
// module is the program.
PLATFORM_API int LoadStringW(HINSTANCE module, UINT id, LPWSTR buffer, int size);

PLATFORM_API BOOL DisableThreadLibraryCalls(HMODULE module);

}  // extern "C"

#endif
