#include "plugin/HostObjects.h"

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostClasses.h"

namespace quenra {
namespace {

using TextFile::FieldDefinition;
using TextFile::FieldList;
using TextFile::FieldType;

// What tells the host that it can build points from the field.
constexpr std::u16string_view kVirtualCoordinateField = u"virtual coordinate field";

// In bytes, of texts in UTF-16 code units; 0 for types that have none.
LONG LengthOf(const FieldDefinition& field) noexcept {
  switch (field.type) {
    case FieldType::kSmallInteger:
      return 2;
    case FieldType::kInteger:
    case FieldType::kSingle:
      return 4;
    case FieldType::kDouble:
    case FieldType::kDate:
    case FieldType::kBigInteger:
    case FieldType::kDateOnly:
    case FieldType::kTimeOnly:
      return 8;
    case FieldType::kString:
      return field.width;
    case FieldType::kTimestampOffset:
      return 10;
    default:
      return 0;
  }
}

bool HasLength(FieldType type) noexcept {
  return type != FieldType::kUndetermined && type != FieldType::kObjectId &&
         type != FieldType::kGuid && type != FieldType::kGlobalId;
}

HRESULT SetUp(const FieldDefinition& field, HostFieldEdit& edit) {
  const BString name(field.name);
  if (const HRESULT result = edit.SetName(name.Get()); FAILED(result)) return result;
  if (const HRESULT result = edit.SetAliasName(name.Get()); FAILED(result)) return result;
  if (const HRESULT result = edit.SetType(static_cast<LONG>(field.type)); FAILED(result))
    return result;
  // A host may refuse a number: schema.ini sets no bounds to a width. The field then has none, but
  // the table can be read all the same.
  if (field.type == FieldType::kDate && field.hasDatePrecision)
    static_cast<void>(edit.SetPrecision(1));
  if (HasLength(field.type)) static_cast<void>(edit.SetLength(LengthOf(field)));
  return S_OK;
}

HRESULT TagAsCoordinate(HostFieldEdit* edit) {
  const ComPtr<HostFieldTag> tag = QueryFor<HostFieldTag>(edit);
  if (!tag) return E_NOINTERFACE;
  return tag->SetTag(BString(kVirtualCoordinateField).Get());
}

HRESULT AddField(const FieldDefinition& definition, HostFieldCollectionEdit& collection) {
  ComPtr<HostFieldEdit> edit;
  HRESULT result = CreateComponentInstance(CLSID_HostField, edit.Receive());
  if (FAILED(result)) return result;
  result = SetUp(definition, *edit);
  if (FAILED(result)) return result;
  if (definition.isCoordinate || definition.isPair) {
    result = TagAsCoordinate(edit.Get());
    if (FAILED(result)) return result;
  }
  ComPtr<HostField> field;
  result = edit.QueryInterface(field.Receive());
  return FAILED(result) ? result : collection.AddField(field.Get());
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

HRESULT NewFieldCollection(const FieldList& fields, ComPtr<HostFieldCollection>& result) {
  ComPtr<HostFieldCollectionEdit> edit;
  HRESULT status = CreateComponentInstance(CLSID_HostFieldCollection, edit.Receive());
  if (FAILED(status)) return status;
  for (const FieldDefinition& field : fields) {
    status = AddField(field, *edit);
    if (FAILED(status)) return status;
  }
  ComPtr<HostFieldCollection> collection;
  status = edit.QueryInterface(collection.Receive());
  if (SUCCEEDED(status)) result = std::move(collection);
  return status;
}

}  // namespace quenra
