// The embedded host's field: texts empty and numbers 0 until they are set.
#pragma once

#include <string>

#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFields.h"

namespace quenra {

class EmbeddedField final : public Implements<HostField, HostFieldEdit, HostFieldTag> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedField"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostField; }

  // HostField
  HRESULT STDMETHODCALLTYPE GetName(BSTR* name) override;
  HRESULT STDMETHODCALLTYPE GetAliasName(BSTR* name) override;
  HRESULT STDMETHODCALLTYPE GetType(LONG* type) override;
  HRESULT STDMETHODCALLTYPE GetLength(LONG* length) override;
  HRESULT STDMETHODCALLTYPE GetPrecision(LONG* precision) override;

  // HostFieldEdit. E_INVALIDARG for a type or a precision below 0.
  HRESULT STDMETHODCALLTYPE SetName(BSTR name) override;
  HRESULT STDMETHODCALLTYPE SetAliasName(BSTR name) override;
  HRESULT STDMETHODCALLTYPE SetType(LONG type) override;
  HRESULT STDMETHODCALLTYPE SetLength(LONG length) override;
  HRESULT STDMETHODCALLTYPE SetPrecision(LONG precision) override;

  // HostFieldTag
  HRESULT STDMETHODCALLTYPE GetTag(BSTR* tag) override;
  HRESULT STDMETHODCALLTYPE SetTag(BSTR tag) override;

 private:
  std::u16string name_;
  std::u16string aliasName_;
  std::u16string tag_;
  LONG type_ = 0;
  LONG length_ = 0;
  LONG precision_ = 0;
};

}  // namespace quenra
