// The one place where text of ours (char16_t) and text of COM (OLECHAR) are taken for each other.
//
// OLECHAR is wchar_t on Windows and char16_t elsewhere; both are UTF-16 code units of 16 bits.
//
//   const BSTR name = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
//   const std::u16string copy(ViewOf(name));
//   ::SysFreeString(name);
#pragma once

#include <cstring>
#include <string_view>

#include "platform/OleAutomation.h"

static_assert(sizeof(OLECHAR) == sizeof(char16_t));

#ifdef _WIN32

inline OLECHAR* AsOle(char16_t* text) { return reinterpret_cast<OLECHAR*>(text); }
inline const OLECHAR* AsOle(const char16_t* text) { return reinterpret_cast<const OLECHAR*>(text); }
inline char16_t* AsText(OLECHAR* text) { return reinterpret_cast<char16_t*>(text); }
inline const char16_t* AsText(const OLECHAR* text) {
  return reinterpret_cast<const char16_t*>(text);
}

#else

inline OLECHAR* AsOle(char16_t* text) { return text; }
inline const OLECHAR* AsOle(const char16_t* text) { return text; }
inline char16_t* AsText(OLECHAR* text) { return text; }
inline const char16_t* AsText(const OLECHAR* text) { return text; }

#endif

// The whole text, zeros inside it included; empty for null. Valid as long as the BSTR is.
inline std::u16string_view ViewOf(BSTR text) {
  if (text == nullptr) return {};
  // What SysStringLen answers, without the call: every BSTR has its length in bytes before it.
  UINT bytes = 0;
  std::memcpy(&bytes, reinterpret_cast<const char*>(text) - sizeof bytes, sizeof bytes);
  return {AsText(text), bytes / sizeof(OLECHAR)};
}
