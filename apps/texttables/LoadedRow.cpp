#include "LoadedRow.h"

#include <algorithm>

#include "Failures.h"
#include "ShownText.h"
#include "ValueReader.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/Components.h"
#include "host/CoreSupport/Variant.h"
#include "host/interfaces/HostClasses.h"

namespace TextTables {

namespace {

// ERROR_INVALID_DATA, and the data source's own code for values.
constexpr HRESULT kInvalidData = static_cast<HRESULT>(0x8007000Du);
constexpr HRESULT kFieldValueError = static_cast<HRESULT>(0x80040955u);

constexpr std::size_t kNoField = static_cast<std::size_t>(-1);

// Of the names of all fields a message tells so many bytes.
constexpr std::size_t kListedBytes = 600;

std::u16string Folded(std::u16string_view name) {
  std::u16string folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), quenra::ToUpper);
  return folded;
}

std::string Quoted(std::u16string_view name) { return "\"" + Shown(name) + "\""; }

std::string Counted(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

LoadedRow::LoadedRow(quenra::HostFieldCollection& collection, const std::vector<Field>& fields)
    : fields_(fields), given_(fields.size()), warned_(fields.size()) {
  Check(quenra::CreateComponentInstance(quenra::CLSID_HostRowBuffer, buffer_.Receive()),
        u"row buffer");
  const auto edit = buffer_.As<quenra::HostRowBufferEdit>();
  Check(edit ? edit->SetFields(&collection) : E_NOINTERFACE, u"row buffer");
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (!IsVirtualCoordinate(fields_[i])) columns_.push_back(i);
    exact_.emplace(fields_[i].name, i);
    folded_.emplace(Folded(fields_[i].name), i);
  }
}

void LoadedRow::Read(std::string_view json) {
  warnings_.clear();
  try {
    document_.Parse(json);
  } catch (const JsonError& error) {
    throw BadRow(kInvalidData, error.what());
  }
  switch (document_.At(0).kind) {
    case JsonKind::kArray:
      return ReadArray();
    case JsonKind::kObject:
      return ReadObject();
    default:
      throw BadRow(kInvalidData, "a row is an array or an object, not " +
                                     Shown(document_.Source(document_.At(0))));
  }
}

void LoadedRow::ReadArray() {
  const JsonNode& array = document_.At(0);
  const bool whole = array.count == fields_.size();
  if (!whole && array.count != columns_.size()) {
    std::string text = Counted(array.count, "value") + " for " + Counted(columns_.size(), "field");
    if (columns_.size() < fields_.size())
      text += " (" + std::to_string(fields_.size()) + " with the coordinate fields)";
    throw BadRow(kInvalidData, text);
  }
  std::size_t node = 1;
  for (std::size_t i = 0; i < array.count; ++i, node = document_.At(node).next)
    SetValue(whole ? i : columns_[i], node);
  if (whole) return;
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (IsVirtualCoordinate(fields_[i])) SetNull(i);
}

void LoadedRow::ReadObject() {
  given_.assign(fields_.size(), false);
  const JsonNode& object = document_.At(0);
  bool asBefore = true;
  std::size_t node = 1;
  for (std::size_t i = 0; i < object.count; ++i, node = document_.At(node + 1).next) {
    const std::u16string_view name = document_.Text(document_.At(node));
    asBefore = asBefore && i < lastNames_.size() && lastNames_[i].first == name;
    if (!asBefore) {
      lastNames_.resize(i);
      lastNames_.emplace_back(name, FieldNamed(name));
    }
    const std::size_t field = lastNames_[i].second;
    given_[field] = true;
    SetValue(field, node + 1);
  }
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (!given_[i]) SetNull(i);
}

// The first field of that key that the row has not given yet, or kNoField; `known` tells whether
// there is a field of that key at all.
std::size_t LoadedRow::FreeField(const Index& index, const std::u16string& key, bool& known) const {
  std::size_t found = kNoField;
  const auto [begin, end] = index.equal_range(key);
  known = begin != end;
  for (auto entry = begin; entry != end; ++entry)
    if (!given_[entry->second]) found = std::min(found, entry->second);
  return found;
}

// Exactly, else without regard to case. Of several fields of one name each takes its turn.
std::size_t LoadedRow::FieldNamed(std::u16string_view name) const {
  bool known = false;
  std::size_t field = FreeField(exact_, std::u16string(name), known);
  if (!known) field = FreeField(folded_, Folded(name), known);
  if (field != kNoField) return field;
  if (known) throw BadRow(kInvalidData, "field " + Quoted(name) + " is given twice");
  std::string names;
  for (const std::size_t column : columns_) {
    names += (names.empty() ? "; fields: " : ", ") + Shown(fields_[column].name);
    if (names.size() > kListedBytes) {
      names += ", ...";
      break;
    }
  }
  throw BadRow(kInvalidData, "there is no field " + Quoted(name) + names);
}

void LoadedRow::SetNull(std::size_t field) {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_NULL;
  Check(buffer_->SetValue(static_cast<LONG>(field), &value), fields_[field].name);
}

void LoadedRow::SetValue(std::size_t field, std::size_t node) {
  // The file has no column for it: the number follows from the text beside it.
  if (IsVirtualCoordinate(fields_[field])) return SetNull(field);
  const Field& target = fields_[field];
  quenra::Variant value;
  if (!ReadFieldValue(document_, node, target.type, value))
    throw BadRow(kFieldValueError, "field " + Quoted(target.name) + " (" +
                                       FieldTypeName(target.type) + ") cannot hold " +
                                       Shown(document_.Source(document_.At(node))));
  if (target.type == kStringField) WarnOfCut(field, value.Text());
  Check(buffer_->SetValue(static_cast<LONG>(field), value.Address()), target.name);
}

void LoadedRow::WarnOfCut(std::size_t field, std::u16string_view text) {
  const auto length = static_cast<std::size_t>(std::max<LONG>(fields_[field].length, 0));
  if (length == 0 || text.size() <= length || warned_[field]) return;
  warned_[field] = true;
  warnings_.push_back("field " + Quoted(fields_[field].name) + " holds " +
                      Counted(length, "character") + "; a text of " + std::to_string(text.size()) +
                      " is cut");
}

}  // namespace TextTables
