// Conversion between bytes of a code page and UTF-16.
//
// On Windows this is the SDK's header. Elsewhere UTF-8 is converted by code of our own and the
// ANSI and OEM code pages by tables filled from ICU once, so every call is safe from any thread.
//
//   const int size = ::MultiByteToWideChar(CP_UTF8, 0, bytes, count, nullptr, 0);  // asks the size
//   std::u16string text(static_cast<std::size_t>(size), u'\0');
//   ::MultiByteToWideChar(CP_UTF8, 0, bytes, count, AsOle(text.data()), size);
#pragma once

#include "platform/ComTypes.h"
#include "platform/LastError.h"

#ifndef _WIN32

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_OEMCP = 1;
inline constexpr UINT CP_THREAD_ACP = 3;
inline constexpr UINT CP_UTF8 = 65001;

inline constexpr DWORD MB_PRECOMPOSED = 0x01;
inline constexpr DWORD MB_ERR_INVALID_CHARS = 0x08;
inline constexpr DWORD WC_ERR_INVALID_CHARS = 0x80;
inline constexpr DWORD WC_NO_BEST_FIT_CHARS = 0x400;

extern "C" {

// Answers the UTF-16 code units written, or needed when `size` is 0. `length` is in bytes; -1 means
// up to and with the terminating zero. Answers 0 after a failure, with the last error
//   ERROR_INVALID_PARAMETER       null or empty input, unknown code page, unknown size
//   ERROR_INSUFFICIENT_BUFFER     `size` code units do not hold the result
//   ERROR_NO_UNICODE_TRANSLATION  MB_ERR_INVALID_CHARS was given and a byte has no meaning
// Without MB_ERR_INVALID_CHARS each maximal ill-formed part of UTF-8 becomes one U+FFFD.
PLATFORM_API int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int length,
                                     LPWSTR text, int size);

// The other way; sizes in bytes. `defaultChar` (null: the code page's own) stands for what the code
// page lacks, and *usedDefaultChar (may be null) tells whether that happened; with CP_UTF8 both
// must be null. A lone surrogate becomes U+FFFD, or fails with WC_ERR_INVALID_CHARS.
PLATFORM_API int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int length,
                                     LPSTR bytes, int size, LPCSTR defaultChar,
                                     LPBOOL usedDefaultChar);

// The ANSI and OEM code pages of the user's language. A language without an ANSI code page of its
// own (Hindi is one) has 1252 and 437, as such a Windows has.
PLATFORM_API UINT GetACP();
PLATFORM_API UINT GetOEMCP();

PLATFORM_API BOOL IsValidCodePage(UINT codePage);

}  // extern "C"

#endif
