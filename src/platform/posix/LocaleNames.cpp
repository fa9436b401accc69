#include "platform/posix/LocaleNames.h"

#include <algorithm>

#include "platform/icu/IcuServices.h"

namespace {

// The locale of those who chose none, known without ICU.
constexpr char kDefault[] = "en_US";
constexpr char kDefaultTag[] = "en-US";
constexpr LCID kDefaultLcid = 0x0409;

struct Modifier {
  const char* name;
  const char* script;
};

// The modifiers of POSIX names that say which script is meant. Others (euro) change nothing here.
constexpr Modifier kModifiers[] = {{"latin", "Latn"}, {"cyrillic", "Cyrl"}, {"devanagari", "Deva"}};

}  // namespace

std::optional<std::string> IcuLocaleFromTag(const std::string& tag) {
  return tag == kDefaultTag ? kDefault : Icu().localeFromTag(tag);
}

std::string IcuLocaleFromEnvironment(const std::string& value) {
  std::string base = value.substr(0, value.find_first_of(".@"));
  const std::size_t at = value.find('@');
  const std::string modifier = at == std::string::npos ? std::string() : value.substr(at + 1);
  if (base.empty() || base == "C" || base == "POSIX") return kDefault;
  for (const Modifier& known : kModifiers) {
    if (modifier != known.name) continue;
    base.insert(std::min(base.find('_'), base.size()), std::string("_") + known.script);
  }
  std::replace(base.begin(), base.end(), '_', '-');
  const std::optional<std::string> locale = IcuLocaleFromTag(base);
  return locale.has_value() ? WithRegion(*locale) : kDefault;
}

std::string WithRegion(const std::string& locale) {
  return locale == kDefault ? locale : Icu().withRegion(locale);
}

std::string TagOf(const std::string& locale) {
  return locale == kDefault ? kDefaultTag : Icu().tagOf(locale);
}

LCID LcidOf(const std::string& locale) {
  return locale == kDefault ? kDefaultLcid : Icu().lcidOf(locale);
}

std::optional<std::string> IcuLocaleFromLcid(LCID lcid) {
  return lcid == kDefaultLcid ? kDefault : Icu().localeFromLcid(lcid);
}
