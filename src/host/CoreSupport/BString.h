// Owns one BSTR.
//
//   BString name(u"Id");
//   edit->SetName(name.Get());
//   field->GetName(name.Receive());
//   const std::u16string_view text = name.View();
#pragma once

#include <limits>
#include <new>
#include <string_view>
#include <utility>

#include "platform/OleText.h"

namespace quenra {

// A new BSTR of `text`, zeros inside it included; the caller frees it. An empty text gives an empty
// BSTR, not null. Null when memory is exhausted or the text is longer than a BSTR can be.
inline BSTR NewBstr(std::u16string_view text) noexcept {
  // The length in bytes has 32 bits, and the terminating zero must fit as well.
  constexpr std::size_t kMostUnits = std::numeric_limits<std::int32_t>::max() / 2 - 1;
  if (text.size() > kMostUnits) return nullptr;
  // A null pointer would leave the characters undefined.
  const char16_t* const units = text.data() != nullptr ? text.data() : u"";
  return ::SysAllocStringLen(AsOle(units), static_cast<UINT>(text.size()));
}

// What a method that answers a text does: `*result` receives a new BSTR that the caller frees.
// E_POINTER for a null result; null and E_OUTOFMEMORY when memory is exhausted.
inline HRESULT CopyToBstr(std::u16string_view text, BSTR* result) noexcept {
  if (result == nullptr) return E_POINTER;
  *result = NewBstr(text);
  return *result != nullptr ? S_OK : E_OUTOFMEMORY;
}

class BString {
 public:
  BString() noexcept = default;  // null
  // Throws std::bad_alloc.
  explicit BString(std::u16string_view text) : text_(NewBstr(text)) {
    if (text_ == nullptr) throw std::bad_alloc();
  }
  BString(BString&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  BString& operator=(BString&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  BString(const BString&) = delete;
  BString& operator=(const BString&) = delete;
  ~BString() { ::SysFreeString(text_); }

  BSTR Get() const noexcept { return text_; }
  // Empty for null; valid until the next change.
  std::u16string_view View() const noexcept { return ViewOf(text_); }

  // Frees the text, and offers the place for a call that answers a new one.
  BSTR* Receive() noexcept {
    Reset();
    return &text_;
  }
  void Reset() noexcept { ::SysFreeString(std::exchange(text_, nullptr)); }
  // Hands the text over to the caller.
  [[nodiscard]] BSTR Detach() noexcept { return std::exchange(text_, nullptr); }

  // A copy as a new BSTR, empty for null. E_POINTER for a null result; null and E_OUTOFMEMORY when
  // memory is exhausted.
  HRESULT CopyTo(BSTR* result) const noexcept { return CopyToBstr(View(), result); }

 private:
  BSTR text_ = nullptr;
};

}  // namespace quenra
