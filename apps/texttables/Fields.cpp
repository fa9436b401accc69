#include "Fields.h"

#include <algorithm>
#include <charconv>

#include "Failures.h"
#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/CharacterClasses.h"
#include "host/com/ComPtr.h"

namespace TextTables {

namespace {

struct TypeName {
  LONG type;
  const char* name;
};
constexpr TypeName kTypeNames[] = {
    {kSmallIntegerField, "SmallInteger"},
    {kIntegerField, "Integer"},
    {kBigIntegerField, "BigInteger"},
    {kSingleField, "Single"},
    {kDoubleField, "Double"},
    {kStringField, "String"},
    {kDateField, "Date"},
    {kDateOnlyField, "DateOnly"},
    {kTimeOnlyField, "TimeOnly"},
    {kTimestampOffsetField, "TimestampOffset"},
    {kObjectIdField, "ObjectId"},
    {kGuidField, "Guid"},
    {kGlobalIdField, "GlobalId"},
};

constexpr char LowerAscii(char byte) noexcept {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

bool EqualsFoldAscii(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

Field Read(quenra::HostField& field) {
  Field result;
  quenra::BString text;
  Check(field.GetName(text.Receive()), u"field");
  result.name = text.View();
  Check(field.GetType(&result.type), result.name);
  Check(field.GetLength(&result.length), result.name);
  Check(field.GetPrecision(&result.precision), result.name);
  if (const auto tagged = quenra::QueryFor<quenra::HostFieldTag>(&field)) {
    Check(tagged->GetTag(text.Receive()), result.name);
    result.tag = text.View();
  }
  return result;
}

}  // namespace

std::vector<Field> FieldsOf(quenra::IPlugInDatasetHelper& dataset, const std::u16string& table) {
  quenra::ComPtr<quenra::HostFieldCollection> collection;
  Check(dataset.DescribeFields(0, collection.Receive()), table);
  LONG count = 0;
  Check(collection->GetFieldCount(&count), table);
  std::vector<Field> fields;
  fields.reserve(static_cast<std::size_t>(std::max<LONG>(count, 0)));
  for (LONG i = 0; i < count; ++i) {
    quenra::ComPtr<quenra::HostField> field;
    Check(collection->GetField(i, field.Receive()), table);
    fields.push_back(Read(*field));
  }
  return fields;
}

std::string FieldTypeName(LONG type) {
  for (const TypeName& entry : kTypeNames)
    if (entry.type == type) return entry.name;
  return "Type" + std::to_string(type);
}

std::optional<LONG> FieldTypeOf(std::string_view name) {
  for (const TypeName& entry : kTypeNames)
    if (EqualsFoldAscii(entry.name, name)) return entry.type;
  LONG type = 0;
  const char* const end = name.data() + name.size();
  const auto result = std::from_chars(name.data(), end, type);
  const bool digits = !name.empty() && name[0] >= '0' && name[0] <= '9';
  if (!digits || result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return type;
}

std::string FieldTypeNames() {
  std::string names;
  for (const TypeName& entry : kTypeNames)
    names += (names.empty() ? "" : ", ") + std::string(entry.name);
  return names;
}

bool IsVirtualCoordinate(const Field& field) { return field.tag == u"virtual coordinate field"; }

std::u16string FoldedName(std::u16string_view name) {
  std::u16string folded(name);
  std::transform(folded.begin(), folded.end(), folded.begin(), quenra::ToUpper);
  return folded;
}

FieldNames::FieldNames(const std::vector<Field>& fields) {
  // Of several with one name the first stays.
  for (std::size_t i = 0; i < fields.size(); ++i) {
    exact_.emplace(fields[i].name, static_cast<int>(i));
    folded_.emplace(FoldedName(fields[i].name), static_cast<int>(i));
  }
}

int FieldNames::Find(const std::u16string& name) const {
  const auto exact = exact_.find(name);
  if (exact != exact_.end()) return exact->second;
  const auto folded = folded_.find(FoldedName(name));
  return folded != folded_.end() ? folded->second : -1;
}

}  // namespace TextTables
