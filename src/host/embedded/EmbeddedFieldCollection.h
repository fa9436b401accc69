// The embedded host's field collection. It only grows.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFields.h"

namespace quenra {

class EmbeddedField;

// The fields of a source are made when they are asked for, and forgotten again when nobody holds
// them: so they cost nothing until then, and the same index gives the same field to who holds it.
// One that somebody has changed is kept, and so are those of an application's own class, which
// cannot be asked whether they have changed.
class EmbeddedFieldCollection final
    : public Implements<HostFieldCollection, HostFieldCollectionEdit, HostFieldCollectionFilling> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedFieldCollection"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostFieldCollection; }

  // HostFieldCollection
  HRESULT STDMETHODCALLTYPE GetFieldCount(LONG* count) override;
  HRESULT STDMETHODCALLTYPE GetField(LONG index, HostField** field) override;
  HRESULT STDMETHODCALLTYPE FindField(BSTR name, LONG* index) override;

  // HostFieldCollectionEdit. E_INVALIDARG for a null field.
  HRESULT STDMETHODCALLTYPE AddField(HostField* field) override;

  // HostFieldCollectionFilling
  HRESULT STDMETHODCALLTYPE FillFrom(HostFieldSource* source) override;

 private:
  // So many fields are kept at least, before it is asked whether anybody still holds them.
  static constexpr std::size_t kFewFields = 64;

  // A field of the source.
  struct MadeField {
    ComPtr<HostField> field;
    EmbeddedField* embedded;  // the same; null for one of another class
  };

  std::size_t Size() const noexcept { return sourceFields_ + added_.size(); }
  HRESULT GetSourceField(std::size_t place, HostField** field);
  HRESULT GetNameAt(std::size_t place, BSTR* name) const;
  static bool IsUnused(const MadeField& made) noexcept;
  void ForgetUnused();

  ComPtr<HostFieldSource> source_;  // null: there is none
  std::size_t sourceFields_ = 0;
  std::unordered_map<std::size_t, MadeField> made_;  // by place
  std::size_t mostMade_ = kFewFields;
  std::vector<ComPtr<HostField>> added_;
};

}  // namespace quenra
