#include "plugin/WorkspaceOptions.h"

#include "host/CoreSupport/BString.h"
#include "host/CoreSupport/Variant.h"
#include "host/DataCore/DataCoreUtil.h"

namespace quenra {
namespace {

using TextFile::OpenOptions;

enum class Option { kUnknown, kReadAsManyRows, kNoLatLongFields, kTimeOnlyFields };

Option OptionOfName(std::u16string_view name) noexcept {
  if (DataCoreUtil::CompareFoldCase(name, u"ReadAsManyRowsAsNeeded"))
    return Option::kReadAsManyRows;
  if (DataCoreUtil::CompareFoldCase(name, u"DoNotAutoGenerateLatLongFields"))
    return Option::kNoLatLongFields;
  if (DataCoreUtil::CompareFoldCase(name, u"InferTimeOnlyFields")) return Option::kTimeOnlyFields;
  return Option::kUnknown;
}

// Only this spelling asks for the older mapping; any other value is a newer version's.
bool IsOldVersion(const VARIANT& value) noexcept {
  return value.vt == VT_BSTR && ViewOf(value.bstrVal) == u"13.1";
}

bool HostWantsOldMapping() {
  VARIANT option;
  ::VariantInit(&option);
  const bool known = DataCoreUtil::QueryOptionRegistry(u"Use31FieldTypeMapping", option);
  VARIANT number;
  ::VariantInit(&number);
  const bool wanted =
      known && SUCCEEDED(::VariantChangeType(&number, &option, 0, VT_I4)) && number.lVal == 1;
  ::VariantClear(&option);
  return wanted;
}

}  // namespace

bool SetOpenOption(OpenOptions& options, std::u16string_view name, bool& reported) {
  switch (OptionOfName(name)) {
    case Option::kReadAsManyRows:
      reported = options.readAsManyRowsAsNeeded;
      options.readAsManyRowsAsNeeded = true;
      return true;
    case Option::kNoLatLongFields:
      reported = !options.generateLatLongFields;
      options.generateLatLongFields = false;
      return true;
    case Option::kTimeOnlyFields:
      // The other way round than for the other options; hosts have come to count on it.
      reported = !options.inferTimeOnlyFields;
      options.inferTimeOnlyFields = true;
      return true;
    case Option::kUnknown:
      break;
  }
  return false;
}

bool ClearOpenOption(OpenOptions& options, std::u16string_view name) {
  switch (OptionOfName(name)) {
    case Option::kReadAsManyRows:
      options.readAsManyRowsAsNeeded = false;
      return true;
    case Option::kNoLatLongFields:
      options.generateLatLongFields = true;
      return true;
    case Option::kTimeOnlyFields:
      options.inferTimeOnlyFields = false;
      return true;
    case Option::kUnknown:
      break;
  }
  return false;
}

void ApplyFieldTypeVersion(OpenOptions& options, HostPropertySet* properties) {
  bool old = false;
  bool present = false;
  if (properties != nullptr) {
    const BString name(u"FIELD_TYPE_VERSION");
    VARIANT value;
    ::VariantInit(&value);
    present = properties->GetProperty(name.Get(), &value) == S_OK;
    old = present && IsOldVersion(value);
    ::VariantClear(&value);
  }
  if (!present) old = HostWantsOldMapping();
  if (old) options.fieldTypeVersion = TextFile::kOldFieldTypeVersion;
}

}  // namespace quenra
