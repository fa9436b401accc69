/* What a host in plain C needs of COM. On Windows it is the system's; elsewhere it is declared
 * here, and the functions are in the host library. */
#pragma once

#ifdef _WIN32

#ifndef COBJMACROS
#define COBJMACROS
#endif
#include <oaidl.h>
#include <objbase.h>
#include <oleauto.h>
#include <windows.h>

#else

#include <stdint.h>
#include <uchar.h>

#define STDMETHODCALLTYPE
#define S_OK ((HRESULT)0)
#define E_FAIL ((HRESULT)0x80004005u)
#define FAILED(result) ((result) < 0)
#define SUCCEEDED(result) ((result) >= 0)
#define VARIANT_FALSE ((VARIANT_BOOL)0)
#define CP_UTF8 65001u

typedef int32_t HRESULT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef uint32_t UINT;
typedef uint32_t DWORD;
typedef int BOOL;
typedef int64_t LONGLONG;
typedef int16_t VARIANT_BOOL;
typedef char16_t OLECHAR;
typedef OLECHAR* BSTR;
typedef void* HMODULE;
typedef intptr_t (*FARPROC)(void);
typedef struct SAFEARRAY SAFEARRAY;

typedef struct GUID {
  uint32_t Data1;
  uint16_t Data2;
  uint16_t Data3;
  uint8_t Data4[8];
} GUID;

enum {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_I8 = 20,
  VT_ARRAY = 0x2000
};

/* 24 bytes where pointers have 8. */
typedef struct VARIANT {
  uint16_t vt;
  uint16_t reserved[3];
  union {
    int16_t iVal;
    int32_t lVal;
    int64_t llVal;
    float fltVal;
    double dblVal;
    double date;
    BSTR bstrVal;
    void* punkVal;
    SAFEARRAY* parray;
    struct {
      void* pvRecord;
      void* pRecInfo;
    } record;
  };
} VARIANT;

BSTR SysAllocString(const OLECHAR* text);
UINT SysStringLen(BSTR text);
void SysFreeString(BSTR text);
void VariantInit(VARIANT* value);
HRESULT VariantClear(VARIANT* value);
SAFEARRAY* SafeArrayCreateVector(uint16_t vt, LONG lowerBound, ULONG elements);
HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value);
HRESULT SetErrorInfo(ULONG reserved, void* info);

HMODULE LoadLibraryW(const OLECHAR* fileName);
FARPROC GetProcAddress(HMODULE module, const char* name);
BOOL FreeLibrary(HMODULE module);

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* bytes, int length, OLECHAR* text,
                        int size);
int WideCharToMultiByte(UINT codePage, DWORD flags, const OLECHAR* text, int length, char* bytes,
                        int size, const char* defaultChar, BOOL* usedDefaultChar);

#endif
