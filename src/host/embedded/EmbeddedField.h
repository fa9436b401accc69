// The embedded host's field: texts empty and numbers 0 until they are set.
#pragma once

#include <memory>
#include <string>

#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFields.h"

namespace quenra {

class EmbeddedField;

// By which the embedded collection tells the embedded fields among those of a table. It never
// leaves the host.
struct EmbeddedFieldSelf : public IUnknown {
  virtual EmbeddedField& Self() noexcept = 0;
};

inline constexpr IID IID_EmbeddedFieldSelf = {
    0x1c7d94e8, 0x6b20, 0x4f5a, {0x93, 0x8e, 0xd4, 0x17, 0x52, 0xc6, 0xb0, 0x3f}};
template <>
inline constexpr const IID& kInterfaceId<EmbeddedFieldSelf> = IID_EmbeddedFieldSelf;

class EmbeddedField final
    : public Implements<HostField, HostFieldEdit, HostFieldTag, EmbeddedFieldSelf> {
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

  // EmbeddedFieldSelf
  EmbeddedField& Self() noexcept override { return *this; }

  // Whether anybody has set anything since; at first as if somebody had.
  bool HasChanged() const noexcept { return changed_; }
  void ForgetChanges() noexcept { changed_ = false; }

 private:
  std::u16string name_;
  // Few fields have another alias than their name, or a tag, and tables may have a million fields.
  bool aliasIsName_ = false;
  bool changed_ = true;
  std::unique_ptr<std::u16string> otherAlias_;  // null: empty, unless the alias is the name
  std::unique_ptr<std::u16string> tag_;         // null: empty
  LONG type_ = 0;
  LONG length_ = 0;
  LONG precision_ = 0;
};

}  // namespace quenra
