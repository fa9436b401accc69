// Fills the host's row buffer from lines of JSON, as load does. The first line of the input names
// the fields, with a tab between them; a field's type follows from the last character of its name.
// Each further line is a row.
//
// Holds: a line that is no row is refused with a message of well-formed UTF-8; what a line says
// does not depend on the lines in front of it.

#include <string>
#include <vector>

#include "FuzzInput.h"
#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/Variant.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFields.h"
#include "platform/CodePages.h"
#include "texttables/JsonValueText.h"
#include "texttables/LoadedRow.h"

namespace {

using Fuzz::Check;
using Fuzz::FuzzInput;
using quenra::ComPtr;
using TextTables::Field;
using TextTables::LoadedRow;

constexpr std::size_t kMostFields = 64;

std::vector<Field> FieldsOf(std::string_view line) {
  std::vector<Field> fields;
  std::u16string names =
      FuzzInput(reinterpret_cast<const std::uint8_t*>(line.data()), line.size()).RestAsText();
  names += u'\t';
  for (std::size_t end = 0; (end = names.find(u'\t')) != std::u16string::npos;) {
    if (fields.size() == kMostFields) break;
    Field field;
    field.name = names.substr(0, end);
    const char16_t last = field.name.empty() ? u't' : field.name.back();
    field.type = TextTables::kStringField;
    if (last >= u'a' && last < u'a' + 17) field.type = last - u'a';
    field.length = field.type == TextTables::kStringField ? 10 : 0;
    fields.push_back(field);
    names.erase(0, end + 1);
  }
  return fields;
}

template <class Object>
ComPtr<Object> Create(const CLSID& id) {
  ComPtr<Object> object;
  Check(quenra::CreateComponentInstance(id, object.Receive()) == S_OK);
  return object;
}

ComPtr<quenra::HostFieldCollection> CollectionOf(const std::vector<Field>& fields) {
  auto collection = Create<quenra::HostFieldCollection>(quenra::CLSID_HostFieldCollection);
  const auto collectionEdit = collection.As<quenra::HostFieldCollectionEdit>();
  for (const Field& field : fields) {
    const auto object = Create<quenra::HostField>(quenra::CLSID_HostField);
    const auto edit = object.As<quenra::HostFieldEdit>();
    const quenra::BString name(field.name);
    Check(edit->SetName(name.Get()) == S_OK && edit->SetType(field.type) == S_OK &&
          edit->SetLength(field.length) == S_OK);
    Check(collectionEdit->AddField(object.Get()) == S_OK);
  }
  return collection;
}

bool IsUtf8(std::string_view bytes) {
  return bytes.empty() || ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                                static_cast<int>(bytes.size()), nullptr, 0) > 0;
}

// What the row has become: its values, or why it is none.
std::string Outcome(LoadedRow& row, const std::vector<Field>& fields, std::string_view line) {
  try {
    row.Read(line);
  } catch (const TextTables::BadRow& bad) {
    Check(IsUtf8(bad.what()) && FAILED(bad.Code()));
    return bad.what();
  }
  TextTables::StringOutput output;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    quenra::Variant value;
    Check(row.Buffer()->GetValue(static_cast<LONG>(i), value.Receive()) == S_OK);
    Check(value.Type() != VT_EMPTY);
    TextTables::AppendJsonValue(output, value.Get(), fields[i].type);
  }
  for (const std::string& warning : row.Warnings()) Check(IsUtf8(warning));
  return output.Take();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const std::vector<Field> fields = FieldsOf(input.TakeLine());
  const auto collection = CollectionOf(fields);
  LoadedRow row(*collection, fields);
  while (!input.empty()) {
    const std::string line(input.TakeLine());
    LoadedRow fresh(*collection, fields);
    Check(Outcome(row, fields, line) == Outcome(fresh, fields, line));
  }
  return 0;
}
