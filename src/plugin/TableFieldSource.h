// A table's fields as the host's collection asks for them.
#pragma once

#include <memory>
#include <utility>

#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostFields.h"
#include "schema/FieldList.h"

namespace quenra {

// A new field of the host's that is as `definition` says. `*result` is left alone, and the failure
// of the host's object is answered, when one cannot be made. May throw std::bad_alloc.
HRESULT NewField(const TextFile::FieldDefinition& definition, ComPtr<HostField>& result);

class TableFieldSource final : public Implements<HostFieldSource> {
 public:
  explicit TableFieldSource(std::shared_ptr<const TextFile::FieldList> fields)
      : fields_(std::move(fields)) {}

  std::u16string_view ClassName() const noexcept override { return u"TableFieldSource"; }

  HRESULT STDMETHODCALLTYPE GetSourceFieldCount(LONG* count) override;
  HRESULT STDMETHODCALLTYPE MakeSourceField(LONG index, HostField** field) override;
  HRESULT STDMETHODCALLTYPE GetSourceFieldName(LONG index, BSTR* name) override;

 private:
  bool Has(LONG index) const noexcept {
    return index >= 0 && static_cast<std::size_t>(index) < fields_->size();
  }

  const std::shared_ptr<const TextFile::FieldList> fields_;
};

}  // namespace quenra
