#include "plugin/TableFieldSource.h"

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/com/ComCatch.h"
#include "host/interfaces/HostClasses.h"

namespace quenra {
namespace {

using TextFile::FieldDefinition;
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

}  // namespace

HRESULT NewField(const FieldDefinition& definition, ComPtr<HostField>& field) {
  ComPtr<HostFieldEdit> edit;
  HRESULT result = CreateComponentInstance(CLSID_HostField, edit.Receive());
  if (FAILED(result)) return result;
  result = SetUp(definition, *edit);
  if (FAILED(result)) return result;
  if (definition.isCoordinate || definition.isPair) {
    result = TagAsCoordinate(edit.Get());
    if (FAILED(result)) return result;
  }
  ComPtr<HostField> made;
  result = edit.QueryInterface(made.Receive());
  if (SUCCEEDED(result)) field = std::move(made);
  return result;
}

HRESULT STDMETHODCALLTYPE TableFieldSource::GetSourceFieldCount(LONG* count) {
  if (count == nullptr) return E_POINTER;
  *count = static_cast<LONG>(fields_->size());
  return S_OK;
}

HRESULT STDMETHODCALLTYPE TableFieldSource::MakeSourceField(LONG index, HostField** field) try {
  if (field == nullptr) return E_POINTER;
  *field = nullptr;
  if (!Has(index)) return E_INVALIDARG;
  const auto place = static_cast<std::size_t>(index);
  const FieldDefinition* const stored = fields_->Stored(place);
  ComPtr<HostField> made;
  const HRESULT result = NewField(stored != nullptr ? *stored : (*fields_)[place], made);
  *field = made.Detach();
  return result;
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TableFieldSource::GetSourceFieldName(LONG index, BSTR* name) try {
  if (name == nullptr) return E_POINTER;
  *name = nullptr;
  if (!Has(index)) return E_INVALIDARG;
  const auto place = static_cast<std::size_t>(index);
  const FieldDefinition* const stored = fields_->Stored(place);
  return stored != nullptr ? CopyToBstr(stored->name, name)
                           : CopyToBstr((*fields_)[place].name, name);
} catch (...) {
  return HResultFromCurrentException();
}

}  // namespace quenra
