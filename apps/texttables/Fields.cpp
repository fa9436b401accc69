#include "Fields.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <utility>

#include "Failures.h"
#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/CharacterClasses.h"

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

std::u16string ReadName(quenra::HostField& field) {
  quenra::BString text;
  Check(field.GetName(text.Receive()), u"field");
  return std::u16string(text.View());
}

Field Read(quenra::HostField& field) {
  Field result;
  result.name = ReadName(field);
  Check(field.GetType(&result.type), result.name);
  Check(field.GetLength(&result.length), result.name);
  Check(field.GetPrecision(&result.precision), result.name);
  if (const auto tagged = quenra::QueryFor<quenra::HostFieldTag>(&field)) {
    quenra::BString text;
    Check(tagged->GetTag(text.Receive()), result.name);
    result.tag = text.View();
  }
  return result;
}

}  // namespace

TableFields::TableFields(quenra::IPlugInDatasetHelper& dataset, std::u16string table)
    : table_(std::move(table)) {
  Check(dataset.DescribeFields(0, collection_.Receive()), table_);
  LONG count = 0;
  Check(collection_->GetFieldCount(&count), table_);
  size_ = static_cast<std::size_t>(std::max<LONG>(count, 0));
}

quenra::ComPtr<quenra::HostField> TableFields::At(std::size_t index) const {
  quenra::ComPtr<quenra::HostField> field;
  Check(collection_->GetField(static_cast<LONG>(index), field.Receive()), table_);
  return field;
}

Field TableFields::operator[](std::size_t index) const { return Read(*At(index)); }

std::u16string TableFields::NameOf(std::size_t index) const { return ReadName(*At(index)); }

LONG TableFields::TypeOf(std::size_t index) const {
  LONG type = 0;
  Check(At(index)->GetType(&type), table_);
  return type;
}

std::vector<Field> FieldsOf(quenra::IPlugInDatasetHelper& dataset, const std::u16string& table) {
  const TableFields fields(dataset, table);
  std::vector<Field> all;
  all.reserve(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) all.push_back(fields[i]);
  return all;
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

std::vector<std::size_t> FindFields(const TableFields& fields,
                                    const std::vector<std::u16string>& names) {
  const std::size_t none = fields.size();
  std::unordered_map<std::u16string, std::size_t> exact;
  std::unordered_map<std::u16string, std::size_t> folded;
  for (const std::u16string& name : names) {
    exact.emplace(name, none);
    folded.emplace(FoldedName(name), none);
  }
  // From the last one on, so that of several with one name the first stays.
  for (std::size_t i = fields.size(); i-- > 0;) {
    const std::u16string name = fields.NameOf(i);
    if (const auto found = folded.find(FoldedName(name)); found != folded.end()) found->second = i;
    if (const auto found = exact.find(name); found != exact.end()) found->second = i;
  }
  std::vector<std::size_t> places;
  for (const std::u16string& name : names) {
    const std::size_t place = exact[name];
    places.push_back(place != none ? place : folded[FoldedName(name)]);
  }
  return places;
}

}  // namespace TextTables
