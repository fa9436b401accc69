#include "host/CoreSupport/QUENRALocale.h"

#include <atomic>
#include <optional>

#include "platform/CodePages.h"
#include "platform/OleText.h"

namespace quenra {
namespace {

std::atomic<LCID> userLocale{LOCALE_USER_DEFAULT};
std::atomic<UINT> chosenCodePage{0};  // what the application set; 0 is nothing
std::atomic<UINT> localeCodePage{0};  // that of the locale set with SetLocale; 0 is none

// The ANSI code page of a locale; 0 when it has none, as for languages that only Unicode writes.
UINT AnsiCodePageOf(LCID locale) noexcept {
  DWORD codePage = 0;
  constexpr LCTYPE kType = LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER;
  constexpr int kUnits = sizeof(codePage) / sizeof(WCHAR);
  if (::GetLocaleInfoW(locale, kType, reinterpret_cast<LPWSTR>(&codePage), kUnits) == 0) return 0;
  return ::IsValidCodePage(codePage) ? codePage : 0;
}

// The full path of the module's file; empty after a failure.
std::u16string PathOfModule(HMODULE module) {
  // No path on any system in use is longer than this many code units.
  constexpr std::size_t kLongest = 0x10000;
  std::u16string path(MAX_PATH, u'\0');
  while (true) {
    const DWORD length =
        ::GetModuleFileNameW(module, AsOle(path.data()), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    if (path.size() >= kLongest) return {};
    path.resize(path.size() * 2);
  }
}

// The module beside `path` for a language; null when there is none.
HMODULE LoadBeside(const std::u16string& path, std::u16string_view language) {
  const std::size_t nameStart = path.find_last_of(u"/\\") + 1;  // npos + 1 is 0
  std::size_t dot = path.rfind(u'.');
  if (dot == std::u16string::npos || dot < nameStart) dot = path.size();
  std::u16string localized = path.substr(0, dot);
  localized += u'.';
  localized += language;
  localized += path.substr(dot);
  return ::LoadLibraryW(AsOle(localized.c_str()));
}

std::u16string NameOfLocale(LCID locale) {
  WCHAR name[LOCALE_NAME_MAX_LENGTH];
  const int units = ::LCIDToLocaleName(locale, name, LOCALE_NAME_MAX_LENGTH, 0);
  if (units <= 1) return {};
  return std::u16string(AsText(name), static_cast<std::size_t>(units - 1));
}

}  // namespace

LCID QUENRALocale::GetLocale() noexcept { return userLocale.load(); }

bool QUENRALocale::SetLocale(std::u16string_view name) {
  if (name.find(u'\0') != std::u16string_view::npos) return false;
  const LCID locale = ::LocaleNameToLCID(AsOle(std::u16string(name).c_str()), 0);
  // A locale that Windows knows by its name alone has this number in common with all its kind, and
  // its values cannot be asked for by number.
  if (locale == 0 || locale == LOCALE_CUSTOM_UNSPECIFIED) return false;
  localeCodePage.store(AnsiCodePageOf(locale));
  userLocale.store(locale);
  return true;
}

void QUENRALocale::ResetLocale() noexcept {
  localeCodePage.store(0);
  userLocale.store(LOCALE_USER_DEFAULT);
}

UINT QUENRALocale::GetAnsiCodePage() noexcept {
  if (const UINT chosen = chosenCodePage.load()) return chosen;
  if (const UINT ofLocale = localeCodePage.load()) return ofLocale;
  return ::GetACP();
}

bool QUENRALocale::SetAnsiCodePage(UINT codePage) noexcept {
  if (codePage != 0 && !::IsValidCodePage(codePage)) return false;
  chosenCodePage.store(codePage);
  return true;
}

std::u16string QUENRALocale::Value(LCTYPE type, int bufferUnits) {
  if (bufferUnits <= 0) return {};
  std::u16string value(static_cast<std::size_t>(bufferUnits), u'\0');
  const int units = ::GetLocaleInfoW(GetLocale(), type, AsOle(value.data()), bufferUnits);
  value.resize(units > 0 ? static_cast<std::size_t>(units - 1) : 0);
  return value;
}

HMODULE QUENRALocale::LoadLocalizedRes(HMODULE module) noexcept try {
  const std::u16string path = PathOfModule(module);
  const std::u16string name = NameOfLocale(GetLocale());
  if (path.empty() || name.empty()) return module;
  if (const HMODULE localized = LoadBeside(path, name)) return localized;
  const std::size_t hyphen = name.find(u'-');
  if (hyphen == std::u16string::npos) return module;
  const HMODULE localized = LoadBeside(path, std::u16string_view(name).substr(0, hyphen));
  return localized != nullptr ? localized : module;
} catch (...) {
  return module;  // out of memory: the texts that are at hand
}

}  // namespace quenra
