// Names and values of locales, as IcuServices hands them out.
#pragma once

#include <optional>
#include <string>

#include "platform/ComTypes.h"
#include "platform/posix/LocaleValues.h"

namespace IcuLocales {

std::optional<std::string> FromTag(const std::string& tag);
std::string WithRegion(const std::string& locale);
std::string TagOf(const std::string& locale);
LCID LcidOf(const std::string& locale);
std::optional<std::string> FromLcid(LCID lcid);
LocaleValues Read(const std::string& locale);

}  // namespace IcuLocales
