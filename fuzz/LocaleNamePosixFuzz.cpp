// Takes arbitrary text for the name of a locale, as --locale gives it.
//
// Holds: a name that is refused changes nothing; one that is known has a number, and the number a
// name that is known by the same number and says the same again; every value of it can be asked
// for.

#include <string>

#include "FuzzInput.h"
#include "host/CoreSupport/QUENRALocale.h"
#include "platform/CodePages.h"
#include "platform/LocaleInfo.h"
#include "platform/OleText.h"

namespace {

using Fuzz::Check;
using quenra::QUENRALocale;

constexpr LCTYPE kTypes[] = {LOCALE_SDECIMAL,   LOCALE_STHOUSAND,   LOCALE_IDIGITS,
                             LOCALE_ILZERO,     LOCALE_SCURRENCY,   LOCALE_ICURRDIGITS,
                             LOCALE_SSHORTDATE, LOCALE_STIMEFORMAT, LOCALE_IDATE,
                             LOCALE_S1159,      LOCALE_S2359};

std::u16string NameOf(LCID locale) {
  char16_t name[LOCALE_NAME_MAX_LENGTH] = {};
  const int size = ::LCIDToLocaleName(locale, AsOle(name), LOCALE_NAME_MAX_LENGTH, 0);
  Check(size > 0 && size <= LOCALE_NAME_MAX_LENGTH);
  Check(name[size - 1] == 0);
  return {name, static_cast<std::size_t>(size - 1)};
}

void CheckValues(LCID locale) {
  for (const LCTYPE type : kTypes) {
    const int size = ::GetLocaleInfoW(locale, type, nullptr, 0);
    Check(size > 0);
    std::u16string text(static_cast<std::size_t>(size) + 1, u'\xABCD');
    Check(::GetLocaleInfoW(locale, type, AsOle(text.data()), size) == size);
    Check(text[static_cast<std::size_t>(size) - 1] == 0 && text.back() == u'\xABCD');
    if (size > 1) Check(::GetLocaleInfoW(locale, type, AsOle(text.data()), size - 1) == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string name = Fuzz::FuzzInput(data, size).RestAsText();
  Check(QUENRALocale::SetLocale(u"en-US"));
  const LCID english = QUENRALocale::GetLocale();
  if (!QUENRALocale::SetLocale(name)) {
    Check(QUENRALocale::GetLocale() == english);
    return 0;
  }
  const LCID locale = QUENRALocale::GetLocale();
  Check(locale != 0);
  Check(::IsValidCodePage(QUENRALocale::GetAnsiCodePage()));
  CheckValues(locale);
  const std::u16string known = NameOf(locale);
  if (known.empty()) return 0;  // the invariant locale
  // A region of old is told by the name of the one that it has become, which has a number too.
  const LCID again = ::LocaleNameToLCID(AsOle(known.c_str()), 0);
  Check(again != 0 && NameOf(again) == known);
  return 0;
}
