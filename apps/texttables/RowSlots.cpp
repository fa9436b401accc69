#include "RowSlots.h"

#include <algorithm>
#include <new>

#include "Failures.h"
#include "ShownText.h"
#include "host/CoreSupport/Variant.h"

namespace TextTables {

namespace {

UsageError UnknownColumn(const TableFields& fields, const std::u16string& name) {
  std::string text = "there is no column \"" + Shown(name) + "\"; columns: ";
  for (std::size_t i = 0; i < fields.size(); ++i)
    text += (i > 0 ? ", " : "") + Shown(fields.NameOf(i));
  return UsageError(text);
}

std::size_t SlotOf(ColumnPlan& plan, std::size_t field) {
  LONG& slot = plan.fieldMap[field];
  if (slot < 0) slot = static_cast<LONG>(plan.slots++);
  return static_cast<std::size_t>(slot);
}

void AddColumn(ColumnPlan& plan, const TableFields& fields, std::size_t field) {
  plan.columns.push_back({static_cast<std::uint32_t>(field), fields.TypeOf(field),
                          static_cast<std::uint32_t>(SlotOf(plan, field))});
}

// Whether `name` is that of `column` with the suffix, behind which one "_" may tell it apart from
// another column.
bool IsCompanion(std::u16string_view name, const std::u16string& column,
                 std::u16string_view suffix) {
  const std::u16string companion = column + std::u16string(suffix);
  return name == companion || name == companion + u"_";
}

// The point of the virtual coordinate fields at `first` and behind it. Two texts of a coordinate
// each stand in front of their numbers, which are named after them.
PointColumns PointAt(ColumnPlan& plan, const TableFields& fields, std::size_t first) {
  PointColumns point{SlotOf(plan, first), SlotOf(plan, first + 1), std::nullopt};
  if (first >= 2 && IsCompanion(fields.NameOf(first), fields.NameOf(first - 2), u"_D") &&
      IsCompanion(fields.NameOf(first + 1), fields.NameOf(first - 1), u"_D"))
    point.texts = PointColumns::Texts{SlotOf(plan, first - 2), SlotOf(plan, first - 1)};
  return point;
}

}  // namespace

ColumnPlan PlanColumns(const TableFields& fields, const std::vector<std::u16string>& names) {
  ColumnPlan plan;
  plan.fieldMap.assign(fields.size(), -1);
  plan.columns.reserve(names.empty() ? fields.size() : names.size());
  if (names.empty())
    for (std::size_t i = 0; i < fields.size(); ++i) AddColumn(plan, fields, i);
  if (names.empty()) return plan;
  const std::vector<std::size_t> found = FindFields(fields, names);
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (found[i] == fields.size()) throw UnknownColumn(fields, names[i]);
    AddColumn(plan, fields, found[i]);
  }
  return plan;
}

ColumnPlan PlanFeatures(const TableFields& fields, const std::vector<std::u16string>& names) {
  ColumnPlan plan;
  if (!names.empty()) plan = PlanColumns(fields, names);
  plan.fieldMap.resize(fields.size(), -1);
  std::size_t coordinates = 0;  // virtual fields in a row that belong to no point yet
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const bool isVirtual = IsVirtualCoordinate(fields[i]);
    if (names.empty() && !isVirtual) AddColumn(plan, fields, i);
    coordinates = isVirtual ? coordinates + 1 : 0;
    if (coordinates < 2) continue;
    plan.points.push_back(PointAt(plan, fields, i - 1));
    coordinates = 0;
  }
  return plan;
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
FieldMap::FieldMap(const std::vector<LONG>& slots) {
  ::VariantInit(&value_);
  SAFEARRAY* array = ::SafeArrayCreateVector(VT_I4, 0, static_cast<ULONG>(slots.size()));
  if (array == nullptr) throw std::bad_alloc();
  value_.vt = VT_ARRAY | VT_I4;
  value_.parray = array;
  void* data = nullptr;
  Check(::SafeArrayAccessData(array, &data), u"field map");
  std::copy(slots.begin(), slots.end(), static_cast<LONG*>(data));
  ::SafeArrayUnaccessData(array);
}

RowSlots::RowSlots(std::size_t count) : values_(count) {
  for (quenra::HostFieldValue& slot : values_) {
    ::VariantInit(&slot.value);
    slot.hostData[0] = slot.hostData[1] = nullptr;
  }
}

void RowSlots::Clear() noexcept {
  for (quenra::HostFieldValue& slot : values_) quenra::ClearVariant(slot.value);
}

}  // namespace TextTables
