#include "support/HostTables.h"

#include <stdexcept>

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostTimestampOffset.h"

namespace quenra::test {
namespace {

template <class Interface>
ComPtr<Interface> Make(const CLSID& classId) {
  ComPtr<Interface> object;
  if (FAILED(CreateComponentInstance(classId, object.Receive())))
    throw std::runtime_error("the host has no such object");
  return object;
}

// A value of the type, to be filled in.
VARIANT& Begin(Variant& value, VARTYPE type) {
  VARIANT& raw = *value.Receive();
  raw.vt = type;
  return raw;
}

}  // namespace

ComPtr<HostFieldCollection> MakeFields(const std::vector<FieldAsked>& fields) {
  auto collection = Make<HostFieldCollection>(CLSID_HostFieldCollection);
  for (const FieldAsked& asked : fields) {
    const auto field = Make<HostField>(CLSID_HostField);
    const auto edit = field.As<HostFieldEdit>();
    edit->SetName(BString(asked.name).Get());
    edit->SetType(asked.type);
    edit->SetLength(asked.length);
    edit->SetPrecision(asked.precision);
    collection.As<HostFieldCollectionEdit>()->AddField(field.Get());
  }
  return collection;
}

ComPtr<HostRowBuffer> MakeRow(const ComPtr<HostFieldCollection>& fields,
                              const std::vector<Variant>& values) {
  auto row = Make<HostRowBuffer>(CLSID_HostRowBuffer);
  row.As<HostRowBufferEdit>()->SetFields(fields.Get());
  LONG index = 0;
  for (const Variant& value : values) row->SetValue(index++, value.Address());
  return row;
}

ComPtr<HostWorkspace> MakeWorkspace(std::u16string_view folder) {
  auto workspace = Make<HostWorkspace>(CLSID_HostWorkspace);
  workspace.As<HostWorkspaceEdit>()->SetWorkspacePath(BString(folder).Get());
  return workspace;
}

Variant NullValue() {
  Variant value;
  Begin(value, VT_NULL);
  return value;
}

Variant SmallValue(SHORT number) {
  Variant value;
  Begin(value, VT_I2).iVal = number;
  return value;
}

Variant BigValue(LONGLONG number) {
  Variant value;
  Begin(value, VT_I8).llVal = number;
  return value;
}

Variant SingleValue(float number) {
  Variant value;
  Begin(value, VT_R4).fltVal = number;
  return value;
}

Variant DateValue(DATE date) {
  Variant value;
  Begin(value, VT_DATE).date = date;
  return value;
}

Variant StampValue(DATE date, SHORT offsetMinutes) {
  auto stamp = Make<HostTimestampOffset>(CLSID_HostTimestampOffset);
  stamp->SetValue(date, offsetMinutes);
  Variant value;
  Begin(value, VT_UNKNOWN).punkVal = stamp.Detach();
  return value;
}

}  // namespace quenra::test
