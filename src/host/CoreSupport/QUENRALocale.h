// The user's locale, the ANSI code page and the localised resources, as the application set them.
//
// One setting for the whole process, shared by the application and every module it loads. The
// application sets it before it loads a module; reading is safe from any thread.
//
//   QUENRALocale::SetLocale(u"de-DE");
//   const std::u16string decimal = QUENRALocale::Value(LOCALE_SDECIMAL, 4);  // u","
#pragma once

#include <string>
#include <string_view>

#include "host/HostApi.h"
#include "platform/LocaleInfo.h"
#include "platform/Modules.h"

namespace quenra {

class QUENRALocale {
 public:
  // The user's locale; LOCALE_USER_DEFAULT until the application sets another.
  QUENRA_HOST_API static LCID GetLocale() noexcept;

  // Takes a BCP 47 name. False, and nothing changes, when the system does not know the locale.
  QUENRA_HOST_API static bool SetLocale(std::u16string_view name);

  // Goes back to LOCALE_USER_DEFAULT.
  QUENRA_HOST_API static void ResetLocale() noexcept;

  // The code page that stands for "ANSI" in this process: what the application set, else the one
  // of the locale set with SetLocale, else the system's. Never 0.
  QUENRA_HOST_API static UINT GetAnsiCodePage() noexcept;

  // 0 goes back to the default. False, and nothing changes, when the system has no such code page.
  QUENRA_HOST_API static bool SetAnsiCodePage(UINT codePage) noexcept;

  // One value of the user's locale (GetLocaleInfoW), without its terminating zero. Empty when the
  // value does not fit `bufferUnits` UTF-16 code units, its terminating zero included.
  QUENRA_HOST_API static std::u16string Value(LCTYPE type, int bufferUnits);

  // The module that holds `module`'s texts in the user's language: a file beside it named
  // "<stem>.<language>" plus the module's extension, for the locale's full name and then for its
  // language alone. `module` itself when there is none. The caller frees another module than its
  // own with FreeLibrary.
  QUENRA_HOST_API static HMODULE LoadLocalizedRes(HMODULE module) noexcept;
};

}  // namespace quenra
