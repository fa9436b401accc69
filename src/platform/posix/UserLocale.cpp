#include "platform/posix/UserLocale.h"

#include <array>
#include <cstdlib>
#include <mutex>

#include "platform/CodePages.h"
#include "platform/LocaleInfo.h"
#include "platform/posix/LocaleNames.h"
#include "platform/posix/LocaleValues.h"

namespace {

constexpr std::array<const char*, 5> kVariables = {"LC_ALL", "LC_NUMERIC", "LC_TIME", "LC_MONETARY",
                                                   "LANG"};

using Environment = std::array<std::string, kVariables.size()>;

// POSIX treats a variable that is set but empty as unset.
const char* Variable(std::size_t i) {
  const char* const value = std::getenv(kVariables[i]);
  return value != nullptr ? value : "";
}

const std::string& FirstOf(const std::string& a, const std::string& b, const std::string& c) {
  if (!a.empty()) return a;
  return !b.empty() ? b : c;
}

UserLocale Resolve(const Environment& environment) {
  const auto& [all, numeric, time, monetary, lang] = environment;
  UserLocale user;
  user.number = IcuLocaleFromEnvironment(FirstOf(all, numeric, lang));
  user.time = IcuLocaleFromEnvironment(FirstOf(all, time, lang));
  user.currency = IcuLocaleFromEnvironment(FirstOf(all, monetary, lang));
  // Where the three agree they are the user's locale; where they do not, LANG says which is.
  const bool agree = user.number == user.time && user.time == user.currency;
  user.language =
      agree ? user.number
            : IcuLocaleFromEnvironment(FirstOf(lang, numeric, FirstOf(time, monetary, {})));
  return user;
}

struct Values {
  UserLocale user;
  LCID lcid = 0;
  UINT ansi = 0;
  UINT oem = 0;
};

Environment ReadEnvironment() {
  Environment environment;
  for (std::size_t i = 0; i < kVariables.size(); ++i) environment[i] = Variable(i);
  return environment;
}

Values ValuesOf(const Environment& environment) {
  Values result;
  result.user = Resolve(environment);
  result.lcid = LcidOf(result.user.language);
  const LocaleValues& values = LocaleValues::Of(result.user.language);
  // A Windows whose user writes a language without ANSI code page runs with the western one.
  result.ansi = values.ansiCodePage != 0 ? values.ansiCodePage : 1252;
  result.oem = values.ansiCodePage != 0 ? values.oemCodePage : 437;
  return result;
}

struct Cache {
  std::mutex mutex;
  bool filled = false;
  Environment environment;
  Values values;
};

// Calls `read` with the values of the environment as it is now. Nothing is locked while they are
// made, since that may load a library.
template <typename Read>
auto WithValues(Read read) {
  static Cache& cache = *new Cache;
  const auto isCurrent = [](const Environment& environment) {
    for (std::size_t i = 0; i < kVariables.size(); ++i)
      if (environment[i] != Variable(i)) return false;
    return true;
  };
  {
    const std::lock_guard<std::mutex> guard(cache.mutex);
    if (cache.filled && isCurrent(cache.environment)) return read(cache.values);
  }
  Environment environment = ReadEnvironment();
  const Values values = ValuesOf(environment);
  const std::lock_guard<std::mutex> guard(cache.mutex);
  cache.environment = std::move(environment);
  cache.values = values;
  cache.filled = true;
  return read(values);
}

}  // namespace

UserLocale UserLocale::Current() {
  return WithValues([](const Values& values) { return values.user; });
}

LCID GetUserDefaultLCID() {
  return WithValues([](const Values& values) { return values.lcid; });
}

UINT GetACP() {
  return WithValues([](const Values& values) { return values.ansi; });
}

UINT GetOEMCP() {
  return WithValues([](const Values& values) { return values.oem; });
}
