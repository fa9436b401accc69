// What the platform asks of ICU: the customs and names of locales, code pages, letter case.
//
//   Icu().lcidOf("de_DE");  // 0x0407
//
// ICU and what uses it are a library of their own, which is loaded when first asked for. Most
// processes never ask: they run in en-US or C, which the platform knows by itself, and read ASCII
// or UTF-8. Loading ICU and its data takes as long as the rest of a program's start.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/ComTypes.h"
#include "platform/posix/LocaleValues.h"

class CodePageTable;

// Whatever these give is the caller's. All are safe from any thread.
struct IcuServices {
  // As the functions of posix/LocaleNames.h, for every locale.
  std::optional<std::string> (*localeFromTag)(const std::string& tag);
  std::string (*withRegion)(const std::string& locale);
  std::string (*tagOf)(const std::string& locale);
  LCID (*lcidOf)(const std::string& locale);
  std::optional<std::string> (*localeFromLcid)(LCID lcid);

  // `locale` is an ICU name with language and region.
  LocaleValues (*readLocale)(const std::string& locale);

  // Null for a code page that is unknown, or that is neither of one nor of two bytes a character.
  std::unique_ptr<CodePageTable> (*loadCodePage)(UINT codePage);

  char16_t (*toUpper)(char16_t unit);
};

// Loads the library when it is not loaded yet, so that no lock may be held by the caller which the
// start of another library could ask for. Ends the process when it is missing, as the system's
// loader does. The library stays loaded.
const IcuServices& Icu();

// The library's only entry, and its name.
extern "C" PLATFORM_API const IcuServices* quenraIcuServices();
inline constexpr char kIcuServicesEntry[] = "quenraIcuServices";
