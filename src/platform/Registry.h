// HKEY_CLASSES_ROOT: what is written down of the classes of this machine.
//
// On Windows this is the SDK's header. Elsewhere the key's contents are one file that a person can
// read, QUENRA_REGISTRY or else quenra/registry in the user's configuration folder:
//
//     [CLSID\{B2E7A59D-0C38-4AC3-BE0B-F18EB40409C5}]
//     @="Text File Workspace Factory"
//
// Keys and values compare without regard to case. Each call that changes something reads the file,
// changes it and puts it back in one rename, while it holds the file's lock: several programs may
// call at once, and a reader never sees half a change.
//
//   HKEY key = nullptr;
//   if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, AsOle(u"CLSID"), 0, KEY_READ, &key) == ERROR_SUCCESS)
//     closed = ::RegCloseKey(key);
#pragma once

#include "platform/ComTypes.h"
#include "platform/LastError.h"

#ifndef _WIN32

struct PlatformRegistryKey;  // never defined for callers
using HKEY = PlatformRegistryKey*;
using LSTATUS = LONG;
using REGSAM = DWORD;
struct FILETIME;
struct SECURITY_ATTRIBUTES;

// The one root. It needs no closing.
#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000000u)))

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_BAD_FILE_TYPE = 222;
inline constexpr DWORD ERROR_FILE_TOO_LARGE = 223;
inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
inline constexpr DWORD ERROR_REGISTRY_CORRUPT = 1015;
inline constexpr DWORD ERROR_REGISTRY_IO_FAILED = 1016;
inline constexpr DWORD ERROR_KEY_DELETED = 1018;

inline constexpr HRESULT REGDB_E_READREGDB = static_cast<HRESULT>(0x80040150u);

extern "C" {

// All of these answer ERROR_SUCCESS or the reason of the failure, which ::GetLastError() does not
// repeat. Paths join names by backslashes; an empty or null one is the key itself. Names hold no
// control characters and no lone surrogates, and no more than 255 characters, and a path from the
// root no more than 512 of them: ERROR_INVALID_PARAMETER.

// Creates what is missing of the path. `*result` is the caller's to close; null after a failure.
PLATFORM_API LSTATUS RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR className,
                                     DWORD options, REGSAM access,
                                     const SECURITY_ATTRIBUTES* rights, HKEY* result,
                                     LPDWORD disposition);

// ERROR_FILE_NOT_FOUND when there is no such key.
PLATFORM_API LSTATUS RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access,
                                   HKEY* result);
PLATFORM_API LSTATUS RegCloseKey(HKEY key);

// Texts alone are kept: another type than REG_SZ is ERROR_INVALID_PARAMETER. `size` counts bytes
// and may include the terminating zero. The empty or null name is the default value.
PLATFORM_API LSTATUS RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type,
                                    const BYTE* data, DWORD size);

// `*size` is the buffer's room in bytes, and then the bytes of the text with its terminating zero.
// ERROR_MORE_DATA when there is less room: the buffer is untouched. A null buffer asks for the
// size.
PLATFORM_API LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type,
                                      BYTE* data, LPDWORD size);

// `*size` is the buffer's room in characters, and then the length without the terminating zero.
// Subkeys come in the order of their names. ERROR_NO_MORE_ITEMS behind the last one.
PLATFORM_API LSTATUS RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD size,
                                   LPDWORD reserved, LPWSTR className, LPDWORD classSize,
                                   FILETIME* written);

// A key that has subkeys is refused with ERROR_ACCESS_DENIED.
PLATFORM_API LSTATUS RegDeleteKeyW(HKEY key, LPCWSTR path);

// The class that a ProgID stands for, and the ProgID of a class. CO_E_CLASSSTRING and GUID_NULL,
// or REGDB_E_CLASSNOTREG and null, when it is not written down; REGDB_E_READREGDB when the file
// cannot be read. The caller frees `*progId` with CoTaskMemFree.
PLATFORM_API HRESULT CLSIDFromProgID(LPCOLESTR progId, LPCLSID classId);
PLATFORM_API HRESULT ProgIDFromCLSID(REFCLSID classId, LPOLESTR* progId);

// Null when memory is exhausted. Freeing null does nothing.
PLATFORM_API LPVOID CoTaskMemAlloc(SIZE_T size);
PLATFORM_API void CoTaskMemFree(LPVOID memory);

}  // extern "C"

#endif
