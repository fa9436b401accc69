#include <cstdlib>
#include <cstring>

#include "platform/OleAutomation.h"

namespace {

// The element type stands before the array, where Windows keeps it too; 16 bytes keep alignment.
constexpr std::size_t kHiddenPrefix = 16;
constexpr ULONG kMaxLocks = 0xFFFF;
constexpr UINT kMaxDimensions = 0xFFFF;

// 0 for a type that no array can hold.
ULONG ElementSize(VARTYPE vt) {
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
    case VT_R4:
    case VT_ERROR:
    case VT_INT:
    case VT_UINT:
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
    case VT_DECIMAL:
      return 16;
    case VT_VARIANT:
      return sizeof(VARIANT);
    default:
      return 0;
  }
}

USHORT FeaturesOf(VARTYPE vt) {
  switch (vt) {
    case VT_BSTR:
      return FADF_BSTR | FADF_HAVEVARTYPE;
    case VT_UNKNOWN:
      return FADF_UNKNOWN | FADF_HAVEVARTYPE;
    case VT_DISPATCH:
      return FADF_DISPATCH | FADF_HAVEVARTYPE;
    case VT_VARIANT:
      return FADF_VARIANT | FADF_HAVEVARTYPE;
    default:
      return FADF_HAVEVARTYPE;
  }
}

std::size_t DescriptorSize(UINT dimensions) {
  return sizeof(SAFEARRAY) + (dimensions - 1) * sizeof(SAFEARRAYBOUND);
}

char* BlockOf(SAFEARRAY* array) { return reinterpret_cast<char*>(array) - kHiddenPrefix; }

VARTYPE TypeOf(SAFEARRAY* array) {
  VARTYPE vt = VT_EMPTY;
  std::memcpy(&vt, BlockOf(array), sizeof vt);
  return vt;
}

void FreeDescriptor(SAFEARRAY* array) { std::free(BlockOf(array)); }

// Null when memory is exhausted. Bounds and data are the caller's to fill.
SAFEARRAY* AllocateDescriptor(VARTYPE vt, UINT dimensions) {
  auto* const block =
      static_cast<char*>(std::calloc(1, kHiddenPrefix + DescriptorSize(dimensions)));
  if (block == nullptr) return nullptr;
  std::memcpy(block, &vt, sizeof vt);
  auto* const array = reinterpret_cast<SAFEARRAY*>(block + kHiddenPrefix);
  array->cDims = static_cast<USHORT>(dimensions);
  array->fFeatures = FeaturesOf(vt);
  array->cbElements = ElementSize(vt);
  return array;
}

// False when the elements do not fit 32 bits.
bool CountElements(const SAFEARRAY* array, std::size_t* count) {
  std::uint64_t total = 1;
  for (UINT i = 0; i < array->cDims; ++i) {
    total *= array->rgsabound[i].cElements;
    if (total * array->cbElements > 0x7FFFFFFFu) return false;
  }
  *count = static_cast<std::size_t>(total);
  return true;
}

// False when memory is exhausted or the array is too big. One byte at least, so that an array
// without elements has data to point at.
bool AllocateData(SAFEARRAY* array) {
  std::size_t count = 0;
  if (!CountElements(array, &count)) return false;
  const std::size_t bytes = count * array->cbElements;
  array->pvData = std::calloc(1, bytes == 0 ? 1 : bytes);
  return array->pvData != nullptr;
}

template <typename T>
T Load(const void* element) {
  T value;
  // NOLINTNEXTLINE(bugprone-sizeof-expression): pointers are elements too
  std::memcpy(&value, element, sizeof value);
  return value;
}

// Makes *target a copy of its own of *source; `target` holds nothing that must be freed.
HRESULT CopyElement(USHORT features, ULONG size, const void* source, void* target) {
  if ((features & FADF_BSTR) != 0) {
    auto* const text = Load<BSTR>(source);
    BSTR copy = nullptr;
    if (text != nullptr) {
      copy = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(text), SysStringByteLen(text));
      if (copy == nullptr) return E_OUTOFMEMORY;
    }
    std::memcpy(target, &copy, sizeof copy);
    return S_OK;
  }
  if ((features & FADF_VARIANT) != 0) {
    VariantInit(static_cast<VARIANT*>(target));
    return VariantCopy(static_cast<VARIANT*>(target), static_cast<const VARIANT*>(source));
  }
  std::memcpy(target, source, size);
  if ((features & (FADF_UNKNOWN | FADF_DISPATCH)) != 0) {
    auto* const object = Load<IUnknown*>(source);
    if (object != nullptr) object->AddRef();
  }
  return S_OK;
}

HRESULT FreeElement(USHORT features, void* element) {
  if ((features & FADF_BSTR) != 0) {
    SysFreeString(Load<BSTR>(element));
  } else if ((features & FADF_VARIANT) != 0) {
    return VariantClear(static_cast<VARIANT*>(element));
  } else if ((features & (FADF_UNKNOWN | FADF_DISPATCH)) != 0) {
    auto* const object = Load<IUnknown*>(element);
    if (object != nullptr) object->Release();
  }
  return S_OK;
}

bool OwnsElements(const SAFEARRAY* array) {
  return (array->fFeatures & (FADF_BSTR | FADF_VARIANT | FADF_UNKNOWN | FADF_DISPATCH)) != 0;
}

const SAFEARRAYBOUND* BoundOf(const SAFEARRAY* array, UINT dimension) {
  if (dimension == 0 || dimension > array->cDims) return nullptr;
  return &array->rgsabound[array->cDims - dimension];
}

// Locks the array while an element is read or written.
class ElementLock {
 public:
  explicit ElementLock(SAFEARRAY* array) : array_(array), result_(SafeArrayLock(array)) {}
  ElementLock(const ElementLock&) = delete;
  ElementLock& operator=(const ElementLock&) = delete;
  ~ElementLock() {
    if (SUCCEEDED(result_)) SafeArrayUnlock(array_);
  }
  HRESULT Result() const { return result_; }

 private:
  SAFEARRAY* array_;
  HRESULT result_;
};

}  // namespace

SAFEARRAY* SafeArrayCreate(VARTYPE vt, UINT dimensions, SAFEARRAYBOUND* bounds) {
  if (bounds == nullptr || dimensions == 0 || dimensions > kMaxDimensions) return nullptr;
  if (ElementSize(vt) == 0) return nullptr;
  SAFEARRAY* const array = AllocateDescriptor(vt, dimensions);
  if (array == nullptr) return nullptr;
  for (UINT i = 0; i < dimensions; ++i) array->rgsabound[dimensions - 1 - i] = bounds[i];
  if (AllocateData(array)) return array;
  FreeDescriptor(array);
  return nullptr;
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lowerBound, ULONG elements) {
  SAFEARRAYBOUND bound = {elements, lowerBound};
  SAFEARRAY* const array = SafeArrayCreate(vt, 1, &bound);
  if (array != nullptr) array->fFeatures = array->fFeatures | FADF_CREATEVECTOR;
  return array;
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  if (array == nullptr) return S_OK;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  std::size_t count = 0;
  if (OwnsElements(array) && CountElements(array, &count)) {
    auto* element = static_cast<char*>(array->pvData);
    for (std::size_t i = 0; i < count; ++i, element += array->cbElements) {
      FreeElement(array->fFeatures, element);
    }
  }
  std::free(array->pvData);
  FreeDescriptor(array);
  return S_OK;
}

HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy) {
  if (copy == nullptr) return E_INVALIDARG;
  *copy = nullptr;
  if (array == nullptr) return S_OK;
  std::size_t count = 0;
  if (!CountElements(array, &count)) return E_INVALIDARG;
  SAFEARRAY* const result = AllocateDescriptor(TypeOf(array), array->cDims);
  if (result == nullptr) return E_OUTOFMEMORY;
  std::memcpy(result->rgsabound, array->rgsabound, array->cDims * sizeof(SAFEARRAYBOUND));
  result->fFeatures = array->fFeatures;
  if (!AllocateData(result)) {
    FreeDescriptor(result);
    return E_OUTOFMEMORY;
  }
  const ULONG size = array->cbElements;
  const auto* const source = static_cast<const char*>(array->pvData);
  auto* const target = static_cast<char*>(result->pvData);
  HRESULT hr = S_OK;
  for (std::size_t i = 0; i < count && SUCCEEDED(hr); ++i) {
    hr = CopyElement(array->fFeatures, size, source + i * size, target + i * size);
  }
  if (FAILED(hr)) {
    SafeArrayDestroy(result);
    return hr;
  }
  *copy = result;
  return S_OK;
}

HRESULT SafeArrayLock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  if (__atomic_add_fetch(&array->cLocks, 1, __ATOMIC_SEQ_CST) <= kMaxLocks) return S_OK;
  __atomic_sub_fetch(&array->cLocks, 1, __ATOMIC_SEQ_CST);
  return E_UNEXPECTED;
}

HRESULT SafeArrayUnlock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  ULONG locks = __atomic_load_n(&array->cLocks, __ATOMIC_SEQ_CST);
  do {
    if (locks == 0) return E_UNEXPECTED;
  } while (!__atomic_compare_exchange_n(&array->cLocks, &locks, locks - 1, false, __ATOMIC_SEQ_CST,
                                        __ATOMIC_SEQ_CST));
  return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
  if (array == nullptr || data == nullptr) return E_INVALIDARG;
  const HRESULT hr = SafeArrayLock(array);
  *data = SUCCEEDED(hr) ? array->pvData : nullptr;
  return hr;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) { return SafeArrayUnlock(array); }

UINT SafeArrayGetDim(SAFEARRAY* array) { return array != nullptr ? array->cDims : 0; }

UINT SafeArrayGetElemsize(SAFEARRAY* array) { return array != nullptr ? array->cbElements : 0; }

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND* const found = BoundOf(array, dimension);
  if (found == nullptr) return DISP_E_BADINDEX;
  *bound = found->lLbound;
  return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND* const found = BoundOf(array, dimension);
  if (found == nullptr) return DISP_E_BADINDEX;
  // One below the lower bound when there are no elements.
  *bound = static_cast<LONG>(static_cast<ULONG>(found->lLbound) + found->cElements - 1);
  return S_OK;
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* vt) {
  if (array == nullptr || vt == nullptr) return E_INVALIDARG;
  *vt = TypeOf(array);
  return S_OK;
}

HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** element) {
  if (array == nullptr || indices == nullptr || element == nullptr) return E_INVALIDARG;
  std::size_t cell = 0;
  std::size_t stride = 1;
  for (UINT dimension = 1; dimension <= array->cDims; ++dimension) {
    const SAFEARRAYBOUND* const bound = BoundOf(array, dimension);
    const std::int64_t offset = static_cast<std::int64_t>(indices[dimension - 1]) - bound->lLbound;
    if (offset < 0 || offset >= static_cast<std::int64_t>(bound->cElements)) return DISP_E_BADINDEX;
    cell += static_cast<std::size_t>(offset) * stride;
    stride *= bound->cElements;
  }
  *element = static_cast<char*>(array->pvData) + cell * array->cbElements;
  return S_OK;
}

HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* value) {
  if (array == nullptr || indices == nullptr || value == nullptr) return E_INVALIDARG;
  const ElementLock lock(array);
  if (FAILED(lock.Result())) return lock.Result();
  void* element = nullptr;
  const HRESULT hr = SafeArrayPtrOfIndex(array, indices, &element);
  if (FAILED(hr)) return hr;
  return CopyElement(array->fFeatures, array->cbElements, element, value);
}

HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value) {
  if (array == nullptr || indices == nullptr) return E_INVALIDARG;
  // Texts and objects are passed as the pointer itself, which may be null.
  const bool isPointer = (array->fFeatures & (FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH)) != 0;
  if (value == nullptr && !isPointer) return E_INVALIDARG;
  const ElementLock lock(array);
  if (FAILED(lock.Result())) return lock.Result();
  void* element = nullptr;
  HRESULT hr = SafeArrayPtrOfIndex(array, indices, &element);
  if (FAILED(hr)) return hr;
  // The copy comes first: the new value may be part of the old one.
  alignas(VARIANT) char copy[sizeof(VARIANT)];
  const void* const source = isPointer ? static_cast<const void*>(&value) : value;
  hr = CopyElement(array->fFeatures, array->cbElements, source, copy);
  if (FAILED(hr)) return hr;
  hr = FreeElement(array->fFeatures, element);
  if (FAILED(hr)) {
    FreeElement(array->fFeatures, copy);
    return hr;
  }
  std::memcpy(element, copy, array->cbElements);
  return S_OK;
}
