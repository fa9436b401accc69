// Converts arbitrary text to values by the host's rules and back. The first character chooses the
// locale.
//
// Holds: a conversion that is refused leaves its target alone; the text of a value gives the value
// back; class identifiers come back as they are spelled.

#include <cmath>
#include <iterator>
#include <string>

#include "FuzzInput.h"
#include "host/CoreSupport/GuidText.h"
#include "host/CoreSupport/Variant.h"
#include "platform/LocaleInfo.h"
#include "platform/OleText.h"

namespace {

using Fuzz::Check;
using quenra::Variant;

constexpr const char16_t* kLocales[] = {u"en-US", u"de-DE", u"fr-CH", u"sv-SE", u"ar-EG", u"hi-IN"};
constexpr VARENUM kKinds[] = {VT_I1,  VT_I2, VT_I4, VT_I8, VT_UI1,  VT_UI2, VT_UI4,
                              VT_UI8, VT_R4, VT_R8, VT_CY, VT_DATE, VT_BOOL};

LCID LocaleOf(unsigned switches) {
  const char16_t* const name = kLocales[(switches & 0x0F) % std::size(kLocales)];
  return ::LocaleNameToLCID(AsOle(name), 0);
}

bool Convert(const Variant& source, LCID locale, VARENUM kind, Variant& result) {
  VARIANT* const target = result.Receive();
  target->vt = VT_I4;
  target->lVal = 123456789;
  const HRESULT done = ::VariantChangeTypeEx(target, &source.Get(), locale, VARIANT_ALPHABOOL,
                                             static_cast<VARTYPE>(kind));
  if (!FAILED(done)) {
    Check(target->vt == kind);
    return true;
  }
  Check(target->vt == VT_I4 && target->lVal == 123456789);
  return false;
}

bool IsReal(VARENUM kind) { return kind == VT_R4 || kind == VT_R8 || kind == VT_DATE; }

// The text has no more digits than %G with the type's, and dates whole seconds.
bool Near(VARENUM kind, const VARIANT& a, const VARIANT& b) {
  if (kind == VT_R4) return std::fabs(a.fltVal - b.fltVal) <= 1e-6F * std::fabs(a.fltVal);
  const double difference = std::fabs(a.dblVal - b.dblVal);
  if (kind == VT_DATE) return difference <= 1.0 / 86400;
  return difference <= 1e-14 * std::fabs(a.dblVal);
}

void CheckKind(const Variant& text, LCID locale, VARENUM kind) {
  Variant value;
  if (!Convert(text, locale, kind, value)) return;
  Variant written;
  if (!Convert(value, locale, VT_BSTR, written)) {
    Check(IsReal(kind));
    return;
  }
  Variant again;
  if (!Convert(written, locale, kind, again)) {
    // Near the ends of the range the rounded text lies outside it.
    Check(IsReal(kind));
    return;
  }
  if (IsReal(kind)) {
    Check(Near(kind, value.Get(), again.Get()));
    return;
  }
  Check(value.Get().ullVal == again.Get().ullVal || kind == VT_BOOL || kind == VT_I1 ||
        kind == VT_UI1 || kind == VT_I2 || kind == VT_UI2 || kind == VT_I4 || kind == VT_UI4);
  Variant second;
  Check(Convert(again, locale, VT_BSTR, second) && second.Text() == written.Text());
}

void CheckClassId(const std::u16string& text) {
  CLSID id;
  if (text.empty() || text.front() != u'{' || text.find(u'\0') != std::u16string::npos) return;
  if (FAILED(::CLSIDFromString(AsOle(text.c_str()), &id))) return;
  const std::u16string spelled = quenra::GuidText(id);
  CLSID again;
  Check(::CLSIDFromString(AsOle(spelled.c_str()), &again) == S_OK && again == id);
  Check(spelled.size() == text.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  const LCID locale = LocaleOf(input.TakeSwitches());
  Check(locale != 0);
  const std::u16string text = input.RestAsText();
  const Variant value(text);
  for (const VARENUM kind : kKinds) CheckKind(value, locale, kind);
  CheckClassId(text);
  return 0;
}
