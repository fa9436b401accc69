#include "host/embedded/EmbeddedField.h"

#include "host/CoreSupport/BString.h"
#include "host/embedded/MemberAccess.h"
#include "platform/OleText.h"

namespace quenra {
namespace {

HRESULT SetCount(LONG value, LONG& member) noexcept {
  if (value < 0) return E_INVALIDARG;
  member = value;
  return S_OK;
}

std::u16string_view TextOf(const std::unique_ptr<std::u16string>& text) noexcept {
  return text == nullptr ? std::u16string_view() : *text;
}

// After a failure `member` is as it was.
HRESULT CopyIn(std::u16string_view text, std::unique_ptr<std::u16string>& member) noexcept try {
  member = text.empty() ? nullptr : std::make_unique<std::u16string>(text);
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

}  // namespace

HRESULT STDMETHODCALLTYPE EmbeddedField::GetName(BSTR* name) { return CopyToBstr(name_, name); }

HRESULT STDMETHODCALLTYPE EmbeddedField::GetAliasName(BSTR* name) {
  return CopyToBstr(aliasIsName_ ? std::u16string_view(name_) : TextOf(otherAlias_), name);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::GetType(LONG* type) { return CopyOut(type_, type); }

HRESULT STDMETHODCALLTYPE EmbeddedField::GetLength(LONG* length) {
  return CopyOut(length_, length);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::GetPrecision(LONG* precision) {
  return CopyOut(precision_, precision);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::SetName(BSTR name) {
  changed_ = true;
  if (aliasIsName_ && ViewOf(name) != name_) {
    // The alias stays what it is.
    if (const HRESULT result = CopyIn(name_, otherAlias_); FAILED(result)) return result;
    aliasIsName_ = false;
  }
  return CopyIn(name, name_);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::SetAliasName(BSTR name) {
  changed_ = true;
  const bool isName = ViewOf(name) == name_;
  if (const HRESULT result = CopyIn(isName ? std::u16string_view() : ViewOf(name), otherAlias_);
      FAILED(result))
    return result;
  aliasIsName_ = isName;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedField::SetType(LONG type) {
  changed_ = true;
  return SetCount(type, type_);
}

// Any number: a data source passes on what a file says of itself.
HRESULT STDMETHODCALLTYPE EmbeddedField::SetLength(LONG length) {
  changed_ = true;
  length_ = length;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedField::SetPrecision(LONG precision) {
  changed_ = true;
  return SetCount(precision, precision_);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::GetTag(BSTR* tag) { return CopyToBstr(TextOf(tag_), tag); }

HRESULT STDMETHODCALLTYPE EmbeddedField::SetTag(BSTR tag) {
  changed_ = true;
  return CopyIn(ViewOf(tag), tag_);
}

}  // namespace quenra
