// BSTR, VARIANT, SAFEARRAY, OLE dates and error information.
//
// On Windows this is the SDK's header. Elsewhere the same names are declared here, with the x64
// layouts and the documented results.
//
//   VARIANT value;
//   ::VariantInit(&value);
//   value.vt = VT_BSTR;
//   value.bstrVal = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
//   ::VariantClear(&value);  // frees the text
#pragma once

#include "platform/ComTypes.h"

#ifdef _WIN32

#include <oleauto.h>

#else

// Text with its length in bytes in the four bytes before it and a zero character behind it. It may
// hold zeros, and null stands for empty text. Owned by whoever holds it; freed with SysFreeString.
using BSTR = OLECHAR*;

using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;  // days since 1899-12-30; the fraction is the time of day, whatever the sign

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

enum VARENUM {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_DECIMAL = 14,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_VOID = 24,
  VT_HRESULT = 25,
  VT_PTR = 26,
  VT_SAFEARRAY = 27,
  VT_RECORD = 36,
  VT_VECTOR = 0x1000,
  VT_ARRAY = 0x2000,
  VT_BYREF = 0x4000,
  VT_TYPEMASK = 0xFFF
};

// Ten-thousandths of a currency unit.
union CY {
  struct {
    ULONG Lo;
    LONG Hi;
  };
  LONGLONG int64;
};

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

// rgsabound runs from the last dimension to the first; elements of the first lie next to each
// other.
struct SAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  void* pvData;
  SAFEARRAYBOUND rgsabound[1];
};

inline constexpr USHORT FADF_AUTO = 0x0001;
inline constexpr USHORT FADF_STATIC = 0x0002;
inline constexpr USHORT FADF_EMBEDDED = 0x0004;
inline constexpr USHORT FADF_FIXEDSIZE = 0x0010;
inline constexpr USHORT FADF_HAVEIID = 0x0040;
inline constexpr USHORT FADF_HAVEVARTYPE = 0x0080;
inline constexpr USHORT FADF_BSTR = 0x0100;
inline constexpr USHORT FADF_UNKNOWN = 0x0200;
inline constexpr USHORT FADF_DISPATCH = 0x0400;
inline constexpr USHORT FADF_VARIANT = 0x0800;
inline constexpr USHORT FADF_CREATEVECTOR = 0x2000;

// Declared for the layout of VARIANT. Nothing here creates one; only IUnknown's slots are ever
// called.
struct IDispatch;
struct IRecordInfo;

struct tagVARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONGLONG llVal;
    LONG lVal;
    BYTE bVal;
    SHORT iVal;
    FLOAT fltVal;
    DOUBLE dblVal;
    VARIANT_BOOL boolVal;
    SCODE scode;
    CY cyVal;
    DATE date;
    BSTR bstrVal;
    IUnknown* punkVal;
    IDispatch* pdispVal;
    SAFEARRAY* parray;
    BYTE* pbVal;
    SHORT* piVal;
    LONG* plVal;
    LONGLONG* pllVal;
    FLOAT* pfltVal;
    DOUBLE* pdblVal;
    VARIANT_BOOL* pboolVal;
    SCODE* pscode;
    CY* pcyVal;
    DATE* pdate;
    BSTR* pbstrVal;
    IUnknown** ppunkVal;
    IDispatch** ppdispVal;
    SAFEARRAY** pparray;
    tagVARIANT* pvarVal;
    void* byref;
    CHAR cVal;
    USHORT uiVal;
    ULONG ulVal;
    ULONGLONG ullVal;
    INT intVal;
    UINT uintVal;
    CHAR* pcVal;
    USHORT* puiVal;
    ULONG* pulVal;
    ULONGLONG* pullVal;
    INT* pintVal;
    UINT* puintVal;
    struct {
      void* pvRecord;
      IRecordInfo* pRecInfo;
    };
  };
};
using VARIANT = tagVARIANT;
using VARIANTARG = VARIANT;

// 24 bytes on 64-bit Windows: the record member makes it so.
static_assert(sizeof(void*) != 8 || sizeof(VARIANT) == 24);

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;  // 0 is Sunday
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};

struct IErrorInfo : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* helpFile) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* helpContext) = 0;
};

struct ICreateErrorInfo : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SetGUID(REFGUID guid) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR source) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR description) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR helpFile) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD helpContext) = 0;
};

struct ISupportErrorInfo : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) = 0;
};

// Flags of VariantChangeType.
inline constexpr USHORT VARIANT_NOVALUEPROP = 0x01;
inline constexpr USHORT VARIANT_ALPHABOOL = 0x02;  // booleans become True and False, not -1 and 0
inline constexpr USHORT VARIANT_NOUSEROVERRIDE = 0x04;
inline constexpr USHORT VARIANT_LOCALBOOL = 0x10;

extern "C" {

// --- BSTR --------------------------------------------------------------------------------------
// Allocating calls answer null when memory is exhausted. Lengths are characters unless named Byte.

PLATFORM_API BSTR SysAllocString(const OLECHAR* text);  // null for null
// `text` null leaves the characters undefined, the terminating zero apart.
PLATFORM_API BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
PLATFORM_API BSTR SysAllocStringByteLen(LPCSTR bytes, UINT length);
// Replace *text; answer FALSE and leave it as it was when memory is exhausted. The new text may be
// part of the old one.
PLATFORM_API INT SysReAllocString(BSTR* text, const OLECHAR* newText);
PLATFORM_API INT SysReAllocStringLen(BSTR* text, const OLECHAR* newText, UINT length);
PLATFORM_API void SysFreeString(BSTR text);     // null is allowed
PLATFORM_API UINT SysStringLen(BSTR text);      // 0 for null
PLATFORM_API UINT SysStringByteLen(BSTR text);  // 0 for null

// --- VARIANT -----------------------------------------------------------------------------------

PLATFORM_API void VariantInit(VARIANTARG* value);

// Frees what the variant owns and makes it VT_EMPTY; what a VT_BYREF variant points at is the
// caller's and stays. A null argument answers E_INVALIDARG, an unknown type DISP_E_BADVARTYPE, a
// locked array DISP_E_ARRAYISLOCKED; the variant is then unchanged.
PLATFORM_API HRESULT VariantClear(VARIANTARG* value);

// The target is cleared first. A text or array gets a copy of its own, an object a reference; a
// VT_BYREF variant is copied as a reference by VariantCopy and followed by VariantCopyInd.
PLATFORM_API HRESULT VariantCopy(VARIANTARG* target, const VARIANTARG* source);
PLATFORM_API HRESULT VariantCopyInd(VARIANT* target, const VARIANTARG* source);

// Converts *source to type `vt`; target and source may be the same. Halves round to even numbers.
// Answers DISP_E_OVERFLOW when the value does not fit, DISP_E_TYPEMISMATCH when there is no
// conversion (VT_NULL, arrays, text that is no number), DISP_E_BADVARTYPE when `vt` is no type; the
// target then keeps its value. Text is read and written by the rules of `lcid`, by default the
// user's. A VT_BYREF source is followed.
PLATFORM_API HRESULT VariantChangeType(VARIANTARG* target, const VARIANTARG* source, USHORT flags,
                                       VARTYPE vt);
PLATFORM_API HRESULT VariantChangeTypeEx(VARIANTARG* target, const VARIANTARG* source, LCID lcid,
                                         USHORT flags, VARTYPE vt);

// --- SAFEARRAY ---------------------------------------------------------------------------------
// Dimensions count from 1 in SafeArrayGetLBound and SafeArrayGetUBound, and from the first one in
// `bounds` and `indices`. A null argument answers E_INVALIDARG, or 0 or null where the result is no
// HRESULT.

PLATFORM_API SAFEARRAY* SafeArrayCreate(VARTYPE vt, UINT dimensions, SAFEARRAYBOUND* bounds);
PLATFORM_API SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lowerBound, ULONG elements);
PLATFORM_API HRESULT SafeArrayDestroy(SAFEARRAY* array);  // S_OK for null
PLATFORM_API HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy);
PLATFORM_API HRESULT SafeArrayLock(SAFEARRAY* array);
PLATFORM_API HRESULT SafeArrayUnlock(SAFEARRAY* array);  // E_UNEXPECTED when it is not locked
PLATFORM_API HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
PLATFORM_API HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
PLATFORM_API UINT SafeArrayGetDim(SAFEARRAY* array);
PLATFORM_API UINT SafeArrayGetElemsize(SAFEARRAY* array);
PLATFORM_API HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
PLATFORM_API HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
PLATFORM_API HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* vt);
PLATFORM_API HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** element);
// GetElement gives the caller a copy of its own; PutElement stores a copy and frees the element it
// replaces. For VT_BSTR, VT_UNKNOWN and VT_DISPATCH `value` of PutElement is the pointer itself.
PLATFORM_API HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* value);
PLATFORM_API HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value);

// --- Dates -------------------------------------------------------------------------------------

// Answers TRUE and the OLE date of `time` in whole seconds. FALSE for a day that does not exist, a
// year outside 100..9999, or a time beyond 23:59:59; the result is then untouched.
PLATFORM_API INT SystemTimeToVariantTime(SYSTEMTIME* time, DOUBLE* date);
// The other way, rounded to whole seconds, milliseconds 0. FALSE outside 0100-01-01..9999-12-31.
PLATFORM_API INT VariantTimeToSystemTime(DOUBLE date, SYSTEMTIME* time);

// --- Error information, one object a thread ----------------------------------------------------

// Replaces the thread's object; null clears it. The thread holds a reference of its own.
PLATFORM_API HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info);
// Hands the thread's object over to the caller and clears it. S_FALSE and null when there is none.
PLATFORM_API HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info);
PLATFORM_API HRESULT CreateErrorInfo(ICreateErrorInfo** info);

}  // extern "C"

#endif
