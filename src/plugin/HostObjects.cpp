#include "plugin/HostObjects.h"

#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostClasses.h"
#include "plugin/TableFieldSource.h"

namespace quenra {
namespace {

using TextFile::FieldList;

// Of more fields the host's collection makes those that it is asked for, if it can. Fewer cost
// little, and a collection that holds them itself needs nothing more of the module.
constexpr std::size_t kMostFieldsAdded = 4096;

HRESULT AddFields(const FieldList& fields, HostFieldCollectionEdit& collection) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const TextFile::FieldDefinition* const stored = fields.Stored(i);
    ComPtr<HostField> field;
    HRESULT result = NewField(stored != nullptr ? *stored : fields[i], field);
    if (FAILED(result)) return result;
    result = collection.AddField(field.Get());
    if (FAILED(result)) return result;
  }
  return S_OK;
}

}  // namespace

HRESULT NewClassIdentifier(const CLSID& classId, HostClassIdentifier** result) noexcept {
  if (result == nullptr) return E_POINTER;
  *result = nullptr;
  ComPtr<HostClassIdentifier> identifier;
  if (FAILED(CreateComponentInstance(CLSID_HostClassIdentifier, identifier.Receive())) ||
      FAILED(identifier->SetValue(&classId)))
    return E_FAIL;
  *result = identifier.Detach();
  return S_OK;
}

HRESULT NewFieldCollection(const std::shared_ptr<const FieldList>& fields,
                           ComPtr<HostFieldCollection>& result) {
  ComPtr<HostFieldCollectionEdit> edit;
  HRESULT status = CreateComponentInstance(CLSID_HostFieldCollection, edit.Receive());
  if (FAILED(status)) return status;
  const auto filling = fields->size() > kMostFieldsAdded ? edit.As<HostFieldCollectionFilling>()
                                                         : ComPtr<HostFieldCollectionFilling>();
  status = filling ? filling->FillFrom(MakeObject<TableFieldSource>(fields).Get())
                   : AddFields(*fields, *edit);
  if (FAILED(status)) return status;
  ComPtr<HostFieldCollection> collection;
  status = edit.QueryInterface(collection.Receive());
  if (SUCCEEDED(status)) result = std::move(collection);
  return status;
}

}  // namespace quenra
