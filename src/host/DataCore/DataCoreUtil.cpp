#include "host/DataCore/DataCoreUtil.h"

#include <map>
#include <string>

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/CriticalSection.h"
#include "host/CoreSupport/Variant.h"
#include "host/DataCore/OptionEnvironment.h"

namespace quenra {
namespace {

struct OptionTable {
  CriticalSection section;
  std::map<std::u16string, Variant> values;  // by the name in upper case
};

// Never destroyed: a value may belong to a library that is gone when this one ends.
OptionTable& Options() {
  static auto* const options = new OptionTable;
  return *options;
}

std::u16string UpperCase(std::u16string_view name) {
  std::u16string upper(name);
  for (char16_t& unit : upper) unit = ToUpper(unit);
  return upper;
}

}  // namespace

bool DataCoreUtil::QueryOptionRegistry(std::u16string_view name, VARIANT& value) {
  ::VariantInit(&value);
  {
    OptionTable& options = Options();
    const AutoLock lock(options.section);
    const auto found = options.values.find(UpperCase(name));
    if (found != options.values.end()) return SUCCEEDED(found->second.CopyTo(&value));
  }
  const std::optional<std::u16string> text = OptionFromEnvironment(name);
  if (!text) return false;
  value = Variant(*text).Detach();
  return true;
}

void DataCoreUtil::SetOption(std::u16string_view name, const VARIANT* value) {
  const std::u16string key = UpperCase(name);
  Variant copy;
  const bool present = value != nullptr && SUCCEEDED(copy.CopyFrom(*value));
  OptionTable& options = Options();
  const AutoLock lock(options.section);
  if (present) {
    options.values.insert_or_assign(key, std::move(copy));
  } else {
    options.values.erase(key);
  }
}

bool DataCoreUtil::CompareFoldCase(std::u16string_view left, std::u16string_view right) noexcept {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i)
    if (left[i] != right[i] && ToUpper(left[i]) != ToUpper(right[i])) return false;
  return true;
}

}  // namespace quenra
