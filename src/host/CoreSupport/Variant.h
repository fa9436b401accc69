// Owns one VARIANT.
//
//   Variant value(u"13.1");
//   properties->SetProperty(name.Get(), value.Address());
//   properties->GetProperty(name.Get(), value.Receive());
//   if (value.Type() == VT_BSTR) version = value.Text();
#pragma once

#include <string_view>

#include "host/CoreSupport/BString.h"
#include "platform/OleAutomation.h"

namespace quenra {

// Whether a variant is its own copy, and needs no clearing: a number, a date, a reference. False
// for some more that would be.
inline bool IsPlain(const VARIANT& value) noexcept {
  return value.vt < VT_BSTR || value.vt == VT_I8 || (value.vt & VT_BYREF) != 0;
}

// VariantClear, without its judging of the type for what rows are made of. The variant is a valid
// one.
inline void ClearVariant(VARIANT& value) noexcept {
  if (value.vt == VT_BSTR)
    ::SysFreeString(value.bstrVal);
  else if (!IsPlain(value))
    ::VariantClear(&value);
  value.vt = VT_EMPTY;
}

// CopyVariant of any value.
[[gnu::noinline]] inline HRESULT CopyWholeVariant(const VARIANT& source, VARIANT& target) noexcept {
  target = VARIANT{};
  if (source.vt == VT_BSTR && source.bstrVal != nullptr) {
    target.bstrVal = ::SysAllocStringByteLen(reinterpret_cast<LPCSTR>(source.bstrVal),
                                             ::SysStringByteLen(source.bstrVal));
    if (target.bstrVal == nullptr) return E_OUTOFMEMORY;
    target.vt = VT_BSTR;
    return S_OK;
  }
  // The call's parameter is not const, though it reads alone.
  VARIANT shallow = source;
  return ::VariantCopy(&target, &shallow);
}

// Puts a copy of `source`, a valid variant, into `target`, whatever that held: VariantCopy to an
// empty variant, without its judging of the type for what rows are made of. After a failure
// `target` is VT_EMPTY.
inline HRESULT CopyVariant(const VARIANT& source, VARIANT& target) noexcept {
  if (!IsPlain(source)) return CopyWholeVariant(source, target);
  target = source;
  return S_OK;
}

class Variant {
 public:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
  Variant() noexcept { ::VariantInit(&value_); }  // VT_EMPTY
  // VT_BSTR; throws std::bad_alloc.
  explicit Variant(std::u16string_view text) : Variant() {
    value_.bstrVal = BString(text).Detach();
    value_.vt = VT_BSTR;
  }
  explicit Variant(LONG number) noexcept : Variant() {  // VT_I4
    value_.vt = VT_I4;
    value_.lVal = number;
  }
  explicit Variant(double number) noexcept : Variant() {  // VT_R8
    value_.vt = VT_R8;
    value_.dblVal = number;
  }
  Variant(Variant&& other) noexcept : value_(other.Detach()) {}
  Variant& operator=(Variant&& other) noexcept {
    if (this != &other) {
      Reset();
      value_ = other.Detach();
    }
    return *this;
  }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { ::VariantClear(&value_); }

  VARTYPE Type() const noexcept { return value_.vt; }
  const VARIANT& Get() const noexcept { return value_; }
  const VARIANT* Address() const noexcept { return &value_; }
  // The text of a VT_BSTR, empty for any other type; valid until the next change.
  std::u16string_view Text() const noexcept {
    return value_.vt == VT_BSTR ? ViewOf(value_.bstrVal) : std::u16string_view();
  }

  // Becomes VT_EMPTY.
  void Reset() noexcept {
    ::VariantClear(&value_);
    ::VariantInit(&value_);
  }
  // Becomes VT_EMPTY, and offers the place for a call that fills it.
  VARIANT* Receive() noexcept {
    Reset();
    return &value_;
  }
  // Hands the contents over to the caller; this becomes VT_EMPTY.
  [[nodiscard]] VARIANT Detach() noexcept {
    const VARIANT contents = value_;
    ::VariantInit(&value_);
    return contents;
  }

  // Becomes a copy that owns all it holds: what a VT_BYREF variant points at is copied as well.
  // After a failure this is VT_EMPTY.
  HRESULT CopyFrom(const VARIANT& source) noexcept {
    // The call's parameter is not const, though it reads alone.
    VARIANT shallow = source;
    return ::VariantCopyInd(Receive(), &shallow);
  }

  // Puts a copy into `*result`, whatever that held. E_POINTER for a null result; after any other
  // failure it is VT_EMPTY.
  HRESULT CopyTo(VARIANT* result) const noexcept {
    if (result == nullptr) return E_POINTER;
    return CopyVariant(value_, *result);
  }

  // The value as another type, by OLE's conversion rules; this becomes VT_EMPTY after a failure.
  HRESULT ConvertFrom(const VARIANT& source, VARTYPE type) noexcept {
    VARIANT shallow = source;
    return ::VariantChangeType(Receive(), &shallow, 0, type);
  }

 private:
  VARIANT value_;
};

}  // namespace quenra
