#include "plugin/NewTableFields.h"

#include "host/CoreSupport/BString.h"
#include "host/com/ComPtr.h"
#include "plugin/TextFileErrors.h"

namespace quenra {
namespace {

using TextFile::FieldDefinition;
using TextFile::FieldType;

// Geometry, blobs, rasters and XML have no text form.
bool HasTextForm(LONG type) noexcept {
  return (type >= 0 && type <= 6) || type == 10 || type == 11 || (type >= 13 && type <= 16);
}

HRESULT DefinitionFrom(HostField& field, FieldDefinition& definition) {
  BString name;
  LONG type = 0;
  if (const HRESULT result = field.GetName(name.Receive()); FAILED(result)) return result;
  if (const HRESULT result = field.GetType(&type); FAILED(result)) return result;
  if (!HasTextForm(type)) return kFieldTypeNotSupported;
  definition.name = ViewOf(name.Get());
  definition.type = static_cast<FieldType>(type);
  definition.dateFormat.type = definition.type;
  if (definition.type == FieldType::kString) {
    LONG length = 0;
    if (const HRESULT result = field.GetLength(&length); FAILED(result)) return result;
    definition.width = length > 0 ? length : TextFile::kDefaultTextWidth;
    definition.hasWidth = true;
  }
  if (definition.type == FieldType::kDate) {
    LONG precision = 0;
    if (const HRESULT result = field.GetPrecision(&precision); FAILED(result)) return result;
    definition.hasDatePrecision = precision == 1;
  }
  return S_OK;
}

}  // namespace

HRESULT DefinitionsFrom(HostFieldCollection& fields, std::vector<FieldDefinition>& definitions) {
  LONG count = 0;
  if (const HRESULT result = fields.GetFieldCount(&count); FAILED(result)) return result;
  for (LONG i = 0; i < count; ++i) {
    ComPtr<HostField> field;
    if (const HRESULT result = fields.GetField(i, field.Receive()); FAILED(result)) return result;
    if (!field) return E_INVALIDARG;
    FieldDefinition definition;
    if (const HRESULT result = DefinitionFrom(*field, definition); FAILED(result)) return result;
    definitions.push_back(std::move(definition));
  }
  return S_OK;
}

}  // namespace quenra
