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

struct Cache {
  std::mutex mutex;
  bool filled = false;
  Environment environment;
  UserLocale user;
  LCID lcid = 0;
  UINT ansi = 0;
  UINT oem = 0;
};

// Calls `read` with the cache brought up to date, under its lock.
template <typename Read>
auto WithCache(Read read) {
  static Cache& cache = *new Cache;
  const std::lock_guard<std::mutex> guard(cache.mutex);
  bool changed = !cache.filled;
  for (std::size_t i = 0; i < kVariables.size(); ++i) {
    const char* const value = Variable(i);
    if (cache.environment[i] == value) continue;
    cache.environment[i] = value;
    changed = true;
  }
  if (changed) {
    cache.user = Resolve(cache.environment);
    cache.lcid = LcidOf(cache.user.language);
    const LocaleValues& values = LocaleValues::Of(cache.user.language);
    // A Windows whose user writes a language without ANSI code page runs with the western one.
    cache.ansi = values.ansiCodePage != 0 ? values.ansiCodePage : 1252;
    cache.oem = values.ansiCodePage != 0 ? values.oemCodePage : 437;
    cache.filled = true;
  }
  return read(cache);
}

}  // namespace

UserLocale UserLocale::Current() {
  return WithCache([](const Cache& cache) { return cache.user; });
}

LCID GetUserDefaultLCID() {
  return WithCache([](const Cache& cache) { return cache.lcid; });
}

UINT GetACP() {
  return WithCache([](const Cache& cache) { return cache.ansi; });
}

UINT GetOEMCP() {
  return WithCache([](const Cache& cache) { return cache.oem; });
}
