// The scalar types, result codes and base interfaces of COM.
//
// On Windows this is the SDK's own header. Elsewhere the same names are declared here with the same
// widths, values, slot orders and interface identifiers, so that an interface written against this
// header has one binary layout per system.
//
//   STDMETHODIMP Plain::QueryInterface(REFIID iid, void** result) {
//     if (result == nullptr) return E_POINTER;
//     *result = IsEqualIID(iid, IID_IUnknown) ? static_cast<IUnknown*>(this) : nullptr;
//     if (*result == nullptr) return E_NOINTERFACE;
//     AddRef();
//     return S_OK;
//   }
#pragma once

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <oaidl.h>
#include <objbase.h>
#include <olectl.h>
#include <unknwn.h>
#include <windows.h>

// What is not the system's own exists once in a process, in the shared host library.
#ifdef QUENRA_HOST_BUILD
#define PLATFORM_API __declspec(dllexport)
#else
#define PLATFORM_API __declspec(dllimport)
#endif

#else

#include <cstdint>
#include <cstring>

// Each platform function exists once in a process, in the shared host library, and is exported
// there.
#define PLATFORM_API __attribute__((visibility("default")))

// One calling convention serves every function on these systems.
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define WINAPI
#define CALLBACK
#define STDMETHODIMP HRESULT STDMETHODCALLTYPE
#define STDMETHODIMP_(type) type STDMETHODCALLTYPE
#define STDMETHOD(method) virtual HRESULT STDMETHODCALLTYPE method
#define STDMETHOD_(type, method) virtual type STDMETHODCALLTYPE method
#define PURE = 0
#define STDAPI extern "C" PLATFORM_API HRESULT STDAPICALLTYPE
#define STDAPI_(type) extern "C" PLATFORM_API type STDAPICALLTYPE

// LONG and its kin are 32 bits wide on every system; `long` is not.
using CHAR = char;
using BYTE = std::uint8_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using WORD = std::uint16_t;
using INT = int;
using UINT = unsigned int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using FLOAT = float;
using DOUBLE = double;
using BOOL = int;
using LCID = DWORD;
using HRESULT = std::int32_t;
using SCODE = LONG;
using WCHAR = char16_t;
using OLECHAR = char16_t;
using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using LPSTR = CHAR*;
using LPCSTR = const CHAR*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using LPBOOL = BOOL*;
using LPDWORD = DWORD*;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;
inline constexpr int MAX_PATH = 260;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_ABORT = static_cast<HRESULT>(0x80004004u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_PENDING = static_cast<HRESULT>(0x8000000Au);
inline constexpr HRESULT E_BOUNDS = static_cast<HRESULT>(0x8000000Bu);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFu);
inline constexpr HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005u);
inline constexpr HRESULT E_HANDLE = static_cast<HRESULT>(0x80070006u);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);

inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110u);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111u);
inline constexpr HRESULT CLASS_E_NOTLICENSED = static_cast<HRESULT>(0x80040112u);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154u);
inline constexpr HRESULT SELFREG_E_TYPELIB = static_cast<HRESULT>(0x80040200u);
inline constexpr HRESULT SELFREG_E_CLASS = static_cast<HRESULT>(0x80040201u);

inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = static_cast<HRESULT>(0x80020001u);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = static_cast<HRESULT>(0x80020003u);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = static_cast<HRESULT>(0x80020004u);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005u);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = static_cast<HRESULT>(0x80020006u);
inline constexpr HRESULT DISP_E_BADVARTYPE = static_cast<HRESULT>(0x80020008u);
inline constexpr HRESULT DISP_E_EXCEPTION = static_cast<HRESULT>(0x80020009u);
inline constexpr HRESULT DISP_E_OVERFLOW = static_cast<HRESULT>(0x8002000Au);
inline constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000Bu);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = static_cast<HRESULT>(0x8002000Du);

inline constexpr DWORD SEVERITY_SUCCESS = 0;
inline constexpr DWORD SEVERITY_ERROR = 1;
inline constexpr DWORD FACILITY_ITF = 4;
inline constexpr DWORD FACILITY_WIN32 = 7;

// Macros on Windows, where some callers spell them ::SUCCEEDED and others do not; write neither
// `::`.
constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }

constexpr HRESULT MAKE_HRESULT(DWORD severity, DWORD facility, DWORD code) {
  return static_cast<HRESULT>((severity << 31) | (facility << 16) | code);
}
constexpr DWORD HRESULT_CODE(HRESULT hr) { return static_cast<DWORD>(hr) & 0xFFFFu; }
constexpr DWORD HRESULT_FACILITY(HRESULT hr) { return (static_cast<DWORD>(hr) >> 16) & 0x1FFFu; }

// A value that is already an HRESULT failure, and 0, pass unchanged.
constexpr HRESULT HRESULT_FROM_WIN32(DWORD error) {
  const auto value = static_cast<HRESULT>(error);
  return value <= 0 ? value : MAKE_HRESULT(SEVERITY_ERROR, FACILITY_WIN32, error & 0xFFFFu);
}

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using CATID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using LPGUID = GUID*;
using LPCLSID = CLSID*;

static_assert(sizeof(GUID) == 16);

inline bool IsEqualGUID(REFGUID a, REFGUID b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }
inline bool IsEqualIID(REFIID a, REFIID b) { return IsEqualGUID(a, b); }
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) { return IsEqualGUID(a, b); }
inline bool operator==(REFGUID a, REFGUID b) { return IsEqualGUID(a, b); }

extern "C" {

PLATFORM_API extern const GUID GUID_NULL;
PLATFORM_API extern const IID IID_IUnknown;
PLATFORM_API extern const IID IID_IDispatch;
PLATFORM_API extern const IID IID_IClassFactory;
PLATFORM_API extern const IID IID_IErrorInfo;
PLATFORM_API extern const IID IID_ICreateErrorInfo;
PLATFORM_API extern const IID IID_ISupportErrorInfo;

// Writes `guid` as {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX} with upper-case digits. Answers 39, the
// characters written with the terminating zero, or 0 when `size` (in characters) is less than that;
// then the buffer is untouched.
PLATFORM_API int StringFromGUID2(REFGUID guid, OLECHAR* buffer, int size);

// Reads what StringFromGUID2 writes, in either letter case. A null text gives GUID_NULL and S_OK.
// Other text answers CO_E_CLASSSTRING or, for a null result, E_INVALIDARG; the result is then
// zeros.
PLATFORM_API HRESULT CLSIDFromString(LPCOLESTR text, LPCLSID result);
PLATFORM_API HRESULT IIDFromString(LPCOLESTR text, IID* result);

}  // extern "C"

inline constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3u);

// Interfaces carry no virtual destructor: it would take two slots of the table.
struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;
};
using LPUNKNOWN = IUnknown*;

struct IClassFactory : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) = 0;
  virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;
};

#endif
