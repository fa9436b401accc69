#include "platform/icu/IcuServices.h"

#include <unicode/uchar.h>

#include "platform/icu/IcuLocales.h"
#include "platform/posix/CodePageTable.h"

namespace {

char16_t ToUpper(char16_t unit) { return static_cast<char16_t>(u_toupper(unit)); }

constexpr IcuServices kServices = {
    &IcuLocales::FromTag,  &IcuLocales::WithRegion, &IcuLocales::TagOf,   &IcuLocales::LcidOf,
    &IcuLocales::FromLcid, &IcuLocales::Read,       &CodePageTable::Load, &ToUpper,
};

}  // namespace

const IcuServices* quenraIcuServices() { return &kServices; }
