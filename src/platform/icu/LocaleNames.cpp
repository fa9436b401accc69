#include <unicode/uloc.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "platform/LocaleInfo.h"
#include "platform/icu/IcuLocales.h"

namespace {

template <typename Read>
std::string ReadName(Read read) {
  char name[ULOC_FULLNAME_CAPACITY];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = read(name, ULOC_FULLNAME_CAPACITY, &status);
  if (U_FAILURE(status) || length <= 0 || length >= ULOC_FULLNAME_CAPACITY) return {};
  return std::string(name, static_cast<std::size_t>(length));
}

std::string LanguageOf(const std::string& locale) {
  return ReadName([&](char* name, int32_t size, UErrorCode* status) {
    return uloc_getLanguage(locale.c_str(), name, size, status);
  });
}

std::string RegionOf(const std::string& locale) {
  return ReadName([&](char* name, int32_t size, UErrorCode* status) {
    return uloc_getCountry(locale.c_str(), name, size, status);
  });
}

std::string ScriptOf(const std::string& locale) {
  return ReadName([&](char* name, int32_t size, UErrorCode* status) {
    return uloc_getScript(locale.c_str(), name, size, status);
  });
}

std::string Maximized(const std::string& locale) {
  return ReadName([&](char* name, int32_t size, UErrorCode* status) {
    return uloc_addLikelySubtags(locale.c_str(), name, size, status);
  });
}

std::string WithoutKeywords(const std::string& locale) {
  return ReadName([&](char* name, int32_t size, UErrorCode* status) {
    return uloc_getBaseName(locale.c_str(), name, size, status);
  });
}

bool IsNumericRegion(const std::string& region) {
  return region.size() == 3 &&
         std::all_of(region.begin(), region.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool HasDataFor(const std::string& language) {
  static const std::vector<std::string>& known = *[] {
    auto* const names = new std::vector<std::string>;
    for (int32_t i = 0; i < uloc_countAvailable(); ++i) {
      names->push_back(LanguageOf(uloc_getAvailable(i)));
    }
    std::sort(names->begin(), names->end());
    return names;
  }();
  return std::binary_search(known.begin(), known.end(), language);
}

bool IsKnown(const std::string& locale) {
  // "no" is Norwegian without saying which; ICU keeps its data under "nb".
  const std::string language = LanguageOf(locale);
  if (!HasDataFor(language) && language != "no") return false;
  const std::string region = RegionOf(locale);
  return region.empty() || IsNumericRegion(region) || *uloc_getISO3Country(locale.c_str()) != 0;
}

// The number of Windows' own for a locale with region, 0 when it has none. ICU answers the number
// of the bare language where it knows none of the region, so the answer is tried backwards.
LCID WindowsLcid(const std::string& locale) {
  const std::string maximized = Maximized(locale);
  for (const std::string& candidate : {locale, maximized}) {
    const LCID lcid = uloc_getLCID(candidate.c_str());
    if (lcid == 0) continue;
    const std::string back = ReadName([&](char* name, int32_t size, UErrorCode* status) {
      return uloc_getLocaleForLCID(lcid, name, size, status);
    });
    if (!RegionOf(back).empty() && Maximized(back) == maximized) return lcid;
  }
  return 0;
}

// Locales named in this process for which Windows has no number, in the order of naming. Their
// numbers are LOCALE_CUSTOM_UNSPECIFIED with the position in the upper half, from 1: the number
// without it means, as on Windows, a locale that cannot be told by its number.
class CustomLocales {
 public:
  static CustomLocales& Instance() {
    static CustomLocales& instance = *new CustomLocales;
    return instance;
  }

  // 0 when all numbers have been given.
  LCID NumberOf(const std::string& locale) {
    const std::lock_guard<std::mutex> guard(mutex_);
    auto found = std::find(names_.begin(), names_.end(), locale);
    if (found == names_.end()) {
      if (names_.size() == kMostNames) return 0;
      found = names_.insert(names_.end(), locale);
    }
    const auto position = static_cast<LCID>(found - names_.begin()) + 1;
    return LOCALE_CUSTOM_UNSPECIFIED | (position << 16);
  }

  std::optional<std::string> NameOf(LCID lcid) {
    if ((lcid & 0xFFFFu) != LOCALE_CUSTOM_UNSPECIFIED) return std::nullopt;
    const std::lock_guard<std::mutex> guard(mutex_);
    const std::size_t position = lcid >> 16;
    if (position == 0 || position > names_.size()) return std::nullopt;
    return names_[position - 1];
  }

 private:
  static constexpr std::size_t kMostNames = 0xFFFF;

  std::mutex mutex_;
  std::vector<std::string> names_;
};

}  // namespace

namespace IcuLocales {

std::optional<std::string> FromTag(const std::string& tag) {
  // ICU would take underscores too; Windows does not.
  if (tag.empty() || tag.find('_') != std::string::npos) return std::nullopt;
  int32_t parsed = 0;
  std::string locale = ReadName([&](char* name, int32_t size, UErrorCode* status) {
    return uloc_forLanguageTag(tag.c_str(), name, size, &parsed, status);
  });
  if (parsed != static_cast<int32_t>(tag.size())) return std::nullopt;
  locale = WithoutKeywords(locale);
  if (locale.empty() || !IsKnown(locale)) return std::nullopt;
  return locale;
}

std::string WithRegion(const std::string& locale) {
  if (!RegionOf(locale).empty()) return locale;
  const std::string maximized = Maximized(locale);
  const std::string region = RegionOf(maximized);
  if (region.empty()) return locale;
  const std::string script = ScriptOf(locale);
  const std::string language = LanguageOf(locale);
  return script.empty() ? language + "_" + region : language + "_" + script + "_" + region;
}

std::string TagOf(const std::string& locale) {
  std::string name = locale;
  // Windows writes Chinese with its region alone when that tells the script.
  const std::string region = RegionOf(locale);
  if (LanguageOf(locale) == "zh" && !region.empty() &&
      Maximized("zh_" + region) == Maximized(locale)) {
    name = "zh_" + region;
  }
  return ReadName([&](char* tag, int32_t size, UErrorCode* status) {
    return uloc_toLanguageTag(name.c_str(), tag, size, false, status);
  });
}

LCID LcidOf(const std::string& locale) {
  const LCID known = RegionOf(locale).empty() ? uloc_getLCID(locale.c_str()) : WindowsLcid(locale);
  return known != 0 ? known : CustomLocales::Instance().NumberOf(locale);
}

std::optional<std::string> FromLcid(LCID lcid) {
  if (std::optional<std::string> custom = CustomLocales::Instance().NameOf(lcid)) return custom;
  const std::string locale =
      WithoutKeywords(ReadName([&](char* name, int32_t size, UErrorCode* status) {
        return uloc_getLocaleForLCID(lcid, name, size, status);
      }));
  if (locale.empty() || locale == "root") return std::nullopt;
  return locale;
}

}  // namespace IcuLocales
