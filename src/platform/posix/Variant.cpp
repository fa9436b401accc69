#include <cstring>

#include "platform/OleAutomation.h"
#include "platform/posix/VariantTypes.h"

namespace {

HRESULT CopyText(BSTR source, BSTR* copy) {
  *copy = nullptr;
  if (source == nullptr) return S_OK;
  *copy = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(source), SysStringByteLen(source));
  return *copy != nullptr ? S_OK : E_OUTOFMEMORY;
}

// Turns *value, whose bits were copied from another variant, into one that owns what it holds.
// After a failure it owns nothing.
HRESULT Own(VARIANT* value) {
  if (IsByRef(value->vt)) return S_OK;
  HRESULT hr = S_OK;
  if (IsArray(value->vt)) {
    SAFEARRAY* const source = value->parray;
    hr = SafeArrayCopy(source, &value->parray);
  } else if (value->vt == VT_BSTR) {
    const BSTR source = value->bstrVal;
    hr = CopyText(source, &value->bstrVal);
  } else if (value->vt == VT_UNKNOWN || value->vt == VT_DISPATCH) {
    if (value->punkVal != nullptr) value->punkVal->AddRef();
  }
  if (FAILED(hr)) value->vt = VT_EMPTY;
  return hr;
}

// Clears *target and moves *value into it; *value is cleared instead when that fails.
HRESULT Replace(VARIANT* target, VARIANT* value) {
  const HRESULT hr = VariantClear(target);
  if (FAILED(hr)) {
    VariantClear(value);
    return hr;
  }
  *target = *value;
  return S_OK;
}

// Copies the value that a VT_BYREF variant points at into *value, without owning it.
HRESULT Follow(const VARIANT& reference, VARIANT* value) {
  if (reference.byref == nullptr) return E_INVALIDARG;
  const auto vt = static_cast<VARTYPE>(reference.vt & ~VT_BYREF);
  if (vt == VT_VARIANT) {
    const VARIANT& inner = *reference.pvarVal;
    if (inner.vt == (VT_VARIANT | VT_BYREF)) return E_INVALIDARG;
    if (IsByRef(inner.vt)) return Follow(inner, value);
    if (!IsValidVariantType(inner.vt)) return DISP_E_BADVARTYPE;
    *value = inner;
    return S_OK;
  }
  // NOLINTNEXTLINE(bugprone-sizeof-expression): the value is the pointer
  const std::size_t size = IsArray(vt) ? sizeof(SAFEARRAY*) : VariantValueSize(vt);
  if (size == 0) return E_INVALIDARG;
  VariantInit(value);
  value->vt = vt;
  std::memcpy(&value->llVal, reference.byref, size);
  return S_OK;
}

}  // namespace

bool IsValidVariantType(VARTYPE vt) {
  constexpr int kFlags = VT_ARRAY | VT_BYREF;
  const int base = vt & ~kFlags;
  const bool isKnown = (base <= VT_UINT && base != 15) && base != VT_DECIMAL;
  if (!isKnown) return false;
  // A reference to nothing and an array of nothing are no types; a bare variant is none either.
  if ((vt & kFlags) != 0) return base > VT_NULL;
  return base != VT_VARIANT;
}

std::size_t VariantValueSize(VARTYPE vt) {
  switch (vt) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    case VT_BSTR:
    case VT_UNKNOWN:
    case VT_DISPATCH:
      return sizeof(void*);
    default:
      return 0;
  }
}

HRESULT FollowVariant(const VARIANT& source, VARIANT* value) {
  if (IsByRef(source.vt)) return Follow(source, value);
  *value = source;
  return S_OK;
}

void VariantInit(VARIANTARG* value) {
  if (value != nullptr) std::memset(value, 0, sizeof *value);
}

HRESULT VariantClear(VARIANTARG* value) {
  if (value == nullptr) return E_INVALIDARG;
  if (!IsValidVariantType(value->vt)) return DISP_E_BADVARTYPE;
  if (!IsByRef(value->vt)) {
    if (IsArray(value->vt)) {
      const HRESULT hr = SafeArrayDestroy(value->parray);
      if (FAILED(hr)) return hr;
    } else if (value->vt == VT_BSTR) {
      SysFreeString(value->bstrVal);
    } else if ((value->vt == VT_UNKNOWN || value->vt == VT_DISPATCH) && value->punkVal != nullptr) {
      value->punkVal->Release();
    }
  }
  value->vt = VT_EMPTY;
  return S_OK;
}

HRESULT VariantCopy(VARIANTARG* target, const VARIANTARG* source) {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  if (target == source) return S_OK;
  if (!IsValidVariantType(source->vt)) return DISP_E_BADVARTYPE;
  VARIANT copy = *source;
  const HRESULT hr = Own(&copy);
  return FAILED(hr) ? hr : Replace(target, &copy);
}

HRESULT VariantCopyInd(VARIANT* target, const VARIANTARG* source) {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  if (!IsByRef(source->vt)) return VariantCopy(target, source);
  if (!IsValidVariantType(source->vt)) return E_INVALIDARG;
  VARIANT copy;
  HRESULT hr = Follow(*source, &copy);
  if (FAILED(hr)) return hr;
  hr = Own(&copy);
  return FAILED(hr) ? hr : Replace(target, &copy);
}
