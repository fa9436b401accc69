// The calling thread's last-error code and the codes that the calls in use leave there.
//
//   if (::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, symbol, 1) == 0)
//     reason = ::GetLastError();  // ERROR_INSUFFICIENT_BUFFER
#pragma once

#include "platform/ComTypes.h"

#ifndef _WIN32

inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
inline constexpr DWORD ERROR_INVALID_FLAGS = 1004;
inline constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;
inline constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;

extern "C" {

// Each thread has its own code, 0 at first. Successful calls leave it as it is.
PLATFORM_API DWORD GetLastError();
PLATFORM_API void SetLastError(DWORD error);

}  // extern "C"

#endif
