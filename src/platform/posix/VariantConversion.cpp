#include <cfloat>
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "platform/LocaleInfo.h"
#include "platform/OleAutomation.h"
#include "platform/posix/VariantText.h"
#include "platform/posix/VariantTypes.h"

namespace {

constexpr std::int64_t kCurrencyUnit = 10000;
constexpr double kFirstDate = -657435;  // the day before 0100-01-01, whose times lie beyond it
constexpr double kEndDate = 2958466;    // the day after 9999-12-31

// The value of any numeric variant, kept exact until the target type is known.
struct Scalar {
  enum Kind { kSigned, kUnsigned, kReal, kCurrency } kind = kSigned;
  std::int64_t whole = 0;       // of kSigned; of kCurrency ten-thousandths
  std::uint64_t magnitude = 0;  // of kUnsigned
  double real = 0;              // of kReal

  static Scalar Signed(std::int64_t value) { return {kSigned, value, 0, 0}; }
  static Scalar Unsigned(std::uint64_t value) { return {kUnsigned, 0, value, 0}; }
  static Scalar Real(double value) { return {kReal, 0, 0, value}; }
  static Scalar Currency(std::int64_t value) { return {kCurrency, value, 0, 0}; }
};

struct Conversion {
  TextLocale locale;
  USHORT flags;
};

std::u16string_view TextOf(BSTR text) {
  return text != nullptr ? std::u16string_view(text, SysStringLen(text)) : std::u16string_view();
}

bool EqualsIgnoringCase(std::u16string_view text, std::u16string_view lower) {
  if (text.size() != lower.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    const auto folded = static_cast<char16_t>(c >= u'A' && c <= u'Z' ? c + 32 : c);
    if (folded != lower[i]) return false;
  }
  return true;
}

// The words of booleans: as this system writes them, and as scripts of old wrote them.
std::optional<bool> ReadBool(std::u16string_view text) {
  if (EqualsIgnoringCase(text, u"true") || EqualsIgnoringCase(text, u"#true#")) return true;
  if (EqualsIgnoringCase(text, u"false") || EqualsIgnoringCase(text, u"#false#")) return false;
  return std::nullopt;
}

HRESULT ScalarFromText(std::u16string_view text, const Conversion& conversion, Scalar* scalar) {
  const std::optional<TextNumber> number = ReadNumber(text, conversion.locale);
  if (!number.has_value()) {
    const std::optional<bool> word = ReadBool(text);
    if (!word.has_value()) return DISP_E_TYPEMISMATCH;
    *scalar = Scalar::Signed(*word ? VARIANT_TRUE : VARIANT_FALSE);
    return S_OK;
  }
  constexpr std::uint64_t kMaxSigned = std::numeric_limits<std::int64_t>::max();
  if (number->isExact && !number->isNegative) {
    *scalar = Scalar::Unsigned(number->magnitude);
  } else if (number->isExact && number->magnitude <= kMaxSigned) {
    *scalar = Scalar::Signed(-static_cast<std::int64_t>(number->magnitude));
  } else {
    if (std::isinf(number->value)) return DISP_E_OVERFLOW;
    *scalar = Scalar::Real(number->value);
  }
  return S_OK;
}

HRESULT ToScalar(const VARIANT& source, const Conversion& conversion, Scalar* scalar) {
  switch (source.vt) {
    case VT_EMPTY:
      *scalar = Scalar::Signed(0);
      return S_OK;
    case VT_I1:
      // char is signed here, but not on every system.
      *scalar = Scalar::Signed(static_cast<signed char>(source.cVal));
      return S_OK;
    case VT_I2:
      *scalar = Scalar::Signed(source.iVal);
      return S_OK;
    case VT_I4:
    case VT_INT:
      *scalar = Scalar::Signed(source.lVal);
      return S_OK;
    case VT_I8:
      *scalar = Scalar::Signed(source.llVal);
      return S_OK;
    case VT_BOOL:
      *scalar = Scalar::Signed(source.boolVal);
      return S_OK;
    case VT_UI1:
      *scalar = Scalar::Unsigned(source.bVal);
      return S_OK;
    case VT_UI2:
      *scalar = Scalar::Unsigned(source.uiVal);
      return S_OK;
    case VT_UI4:
    case VT_UINT:
      *scalar = Scalar::Unsigned(source.ulVal);
      return S_OK;
    case VT_UI8:
      *scalar = Scalar::Unsigned(source.ullVal);
      return S_OK;
    case VT_R4:
      *scalar = Scalar::Real(source.fltVal);
      return S_OK;
    case VT_R8:
    case VT_DATE:
      *scalar = Scalar::Real(source.dblVal);
      return S_OK;
    case VT_CY:
      *scalar = Scalar::Currency(source.cyVal.int64);
      return S_OK;
    case VT_BSTR:
      return ScalarFromText(TextOf(source.bstrVal), conversion, scalar);
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

double ToReal(const Scalar& scalar) {
  switch (scalar.kind) {
    case Scalar::kSigned:
      return static_cast<double>(scalar.whole);
    case Scalar::kUnsigned:
      return static_cast<double>(scalar.magnitude);
    case Scalar::kCurrency:
      return static_cast<double>(scalar.whole) / static_cast<double>(kCurrencyUnit);
    default:
      return scalar.real;
  }
}

// Ten-thousandths to units, halves to the even neighbour.
std::int64_t RoundCurrency(std::int64_t value) {
  std::int64_t units = value / kCurrencyUnit;
  const std::int64_t rest = value % kCurrencyUnit;
  const std::int64_t twice = rest < 0 ? -rest * 2 : rest * 2;
  if (twice > kCurrencyUnit || (twice == kCurrencyUnit && units % 2 != 0)) {
    units += value < 0 ? -1 : 1;
  }
  return units;
}

// Halves go to the even neighbour: that is how nearbyint rounds unless someone changed the mode.
template <typename T>
HRESULT RealToWhole(double value, T* result) {
  const double rounded = std::nearbyint(value);
  // The upper limit is one more than the greatest value: a power of two, so it is exact.
  const double end = std::ldexp(1.0, std::numeric_limits<T>::digits);
  const double first = std::numeric_limits<T>::is_signed ? -end : 0.0;
  if (!(rounded >= first && rounded < end)) return DISP_E_OVERFLOW;
  *result = static_cast<T>(rounded);
  return S_OK;
}

template <typename T>
HRESULT ToWhole(const Scalar& scalar, T* result) {
  if (scalar.kind == Scalar::kReal) return RealToWhole(scalar.real, result);
  if (scalar.kind == Scalar::kUnsigned) {
    if (!std::in_range<T>(scalar.magnitude)) return DISP_E_OVERFLOW;
    *result = static_cast<T>(scalar.magnitude);
    return S_OK;
  }
  const std::int64_t value =
      scalar.kind == Scalar::kCurrency ? RoundCurrency(scalar.whole) : scalar.whole;
  if (!std::in_range<T>(value)) return DISP_E_OVERFLOW;
  *result = static_cast<T>(value);
  return S_OK;
}

HRESULT ToCurrency(const Scalar& scalar, std::int64_t* result) {
  if (scalar.kind == Scalar::kCurrency) {
    *result = scalar.whole;
    return S_OK;
  }
  if (scalar.kind == Scalar::kReal) {
    return RealToWhole(scalar.real * static_cast<double>(kCurrencyUnit), result);
  }
  std::int64_t units = 0;
  const HRESULT hr = ToWhole(scalar, &units);
  if (FAILED(hr)) return hr;
  return __builtin_mul_overflow(units, kCurrencyUnit, result) ? DISP_E_OVERFLOW : S_OK;
}

HRESULT StoreScalar(const Scalar& scalar, VARTYPE vt, VARIANT* result) {
  switch (vt) {
    case VT_I1: {
      signed char value = 0;
      const HRESULT hr = ToWhole(scalar, &value);
      result->cVal = static_cast<CHAR>(value);
      return hr;
    }
    case VT_I2:
      return ToWhole(scalar, &result->iVal);
    case VT_I4:
    case VT_INT:
      return ToWhole(scalar, &result->lVal);
    case VT_I8:
      return ToWhole(scalar, &result->llVal);
    case VT_UI1:
      return ToWhole(scalar, &result->bVal);
    case VT_UI2:
      return ToWhole(scalar, &result->uiVal);
    case VT_UI4:
    case VT_UINT:
      return ToWhole(scalar, &result->ulVal);
    case VT_UI8:
      return ToWhole(scalar, &result->ullVal);
    case VT_BOOL:
      result->boolVal = ToReal(scalar) != 0 ? VARIANT_TRUE : VARIANT_FALSE;
      return S_OK;
    case VT_R4: {
      const double value = ToReal(scalar);
      if (std::fabs(value) > FLT_MAX) return DISP_E_OVERFLOW;
      result->fltVal = static_cast<float>(value);
      return S_OK;
    }
    case VT_R8:
      result->dblVal = ToReal(scalar);
      return S_OK;
    case VT_DATE: {
      const double value = ToReal(scalar);
      if (!(value > kFirstDate && value < kEndDate)) return DISP_E_OVERFLOW;
      result->date = value;
      return S_OK;
    }
    case VT_CY:
      return ToCurrency(scalar, &result->cyVal.int64);
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

std::u16string Widen(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

std::u16string BoolText(VARIANT_BOOL value, const Conversion& conversion) {
  if ((conversion.flags & (VARIANT_ALPHABOOL | VARIANT_LOCALBOOL)) == 0) {
    return Widen(std::to_string(value));
  }
  return value != VARIANT_FALSE ? u"True" : u"False";
}

HRESULT ToText(const VARIANT& source, const Conversion& conversion, std::u16string* text) {
  const TextLocale& locale = conversion.locale;
  switch (source.vt) {
    case VT_EMPTY:
      text->clear();
      return S_OK;
    case VT_BOOL:
      *text = BoolText(source.boolVal, conversion);
      return S_OK;
    case VT_R4:
      *text = WriteReal(static_cast<double>(source.fltVal), FLT_DIG + 1, locale);
      return S_OK;
    case VT_R8:
      *text = WriteReal(source.dblVal, DBL_DIG, locale);
      return S_OK;
    case VT_CY:
      *text = WriteCurrency(source.cyVal.int64, locale);
      return S_OK;
    case VT_DATE: {
      std::optional<std::u16string> written = WriteDate(source.date, locale);
      if (!written.has_value()) return E_INVALIDARG;
      *text = *std::move(written);
      return S_OK;
    }
    default:
      break;
  }
  Scalar scalar;
  const HRESULT hr = ToScalar(source, conversion, &scalar);
  if (FAILED(hr)) return hr;
  *text = Widen(scalar.kind == Scalar::kUnsigned ? std::to_string(scalar.magnitude)
                                                 : std::to_string(scalar.whole));
  return S_OK;
}

// *result must be fresh; it owns what it holds after success only.
HRESULT Convert(const VARIANT& source, const Conversion& conversion, VARTYPE vt, VARIANT* result) {
  if (source.vt == vt) return VariantCopy(result, &source);
  if (IsArray(source.vt) || IsArray(vt)) return DISP_E_TYPEMISMATCH;
  if (vt == VT_EMPTY && source.vt != VT_NULL) return S_OK;
  HRESULT hr = S_OK;
  if (vt == VT_BSTR) {
    std::u16string text;
    hr = ToText(source, conversion, &text);
    if (FAILED(hr)) return hr;
    result->bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (result->bstrVal == nullptr) return E_OUTOFMEMORY;
  } else if (vt == VT_UNKNOWN && source.vt == VT_DISPATCH) {
    result->punkVal = source.punkVal;
    if (result->punkVal != nullptr) result->punkVal->AddRef();
  } else if (vt == VT_DISPATCH && source.vt == VT_UNKNOWN) {
    void* object = nullptr;
    if (source.punkVal != nullptr &&
        FAILED(source.punkVal->QueryInterface(IID_IDispatch, &object))) {
      return DISP_E_TYPEMISMATCH;
    }
    result->byref = object;
  } else if (vt == VT_DATE && source.vt == VT_BSTR) {
    const std::optional<double> date = ReadDate(TextOf(source.bstrVal), conversion.locale);
    if (!date.has_value()) return DISP_E_TYPEMISMATCH;
    result->date = *date;
  } else {
    Scalar scalar;
    hr = ToScalar(source, conversion, &scalar);
    if (SUCCEEDED(hr)) hr = StoreScalar(scalar, vt, result);
    if (FAILED(hr)) return hr;
  }
  result->vt = vt;
  return S_OK;
}

}  // namespace

HRESULT VariantChangeType(VARIANTARG* target, const VARIANTARG* source, USHORT flags, VARTYPE vt) {
  return VariantChangeTypeEx(target, source, LOCALE_USER_DEFAULT, flags, vt);
}

HRESULT VariantChangeTypeEx(VARIANTARG* target, const VARIANTARG* source, LCID lcid, USHORT flags,
                            VARTYPE vt) {
  if (target == nullptr || source == nullptr) return E_INVALIDARG;
  if (!IsValidVariantType(source->vt) || !IsValidVariantType(vt)) return DISP_E_BADVARTYPE;
  if (IsByRef(vt)) return DISP_E_TYPEMISMATCH;
  VARIANT value;
  HRESULT hr = FollowVariant(*source, &value);
  if (FAILED(hr)) return hr;
  const Conversion conversion{{lcid, (flags & VARIANT_NOUSEROVERRIDE) != 0}, flags};
  VARIANT result;
  VariantInit(&result);
  try {
    hr = Convert(value, conversion, vt, &result);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  if (FAILED(hr)) return hr;
  hr = VariantClear(target);
  if (FAILED(hr)) {
    VariantClear(&result);
    return hr;
  }
  *target = result;
  return S_OK;
}
