#include "host/embedded/EmbeddedField.h"

#include "host/CoreSupport/BString.h"
#include "host/embedded/MemberAccess.h"

namespace quenra {
namespace {

HRESULT SetCount(LONG value, LONG& member) noexcept {
  if (value < 0) return E_INVALIDARG;
  member = value;
  return S_OK;
}

}  // namespace

HRESULT STDMETHODCALLTYPE EmbeddedField::GetName(BSTR* name) { return CopyToBstr(name_, name); }

HRESULT STDMETHODCALLTYPE EmbeddedField::GetAliasName(BSTR* name) {
  return CopyToBstr(aliasName_, name);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::GetType(LONG* type) { return CopyOut(type_, type); }

HRESULT STDMETHODCALLTYPE EmbeddedField::GetLength(LONG* length) {
  return CopyOut(length_, length);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::GetPrecision(LONG* precision) {
  return CopyOut(precision_, precision);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::SetName(BSTR name) { return CopyIn(name, name_); }

HRESULT STDMETHODCALLTYPE EmbeddedField::SetAliasName(BSTR name) {
  return CopyIn(name, aliasName_);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::SetType(LONG type) { return SetCount(type, type_); }

// Any number: a data source passes on what a file says of itself.
HRESULT STDMETHODCALLTYPE EmbeddedField::SetLength(LONG length) {
  length_ = length;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedField::SetPrecision(LONG precision) {
  return SetCount(precision, precision_);
}

HRESULT STDMETHODCALLTYPE EmbeddedField::GetTag(BSTR* tag) { return CopyToBstr(tag_, tag); }

HRESULT STDMETHODCALLTYPE EmbeddedField::SetTag(BSTR tag) { return CopyIn(tag, tag_); }

}  // namespace quenra
