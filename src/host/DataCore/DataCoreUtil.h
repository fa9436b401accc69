// Host options, and comparison of names.
#pragma once

#include <string_view>

#include "host/HostApi.h"
#include "platform/OleAutomation.h"

namespace quenra {

class DataCoreUtil {
 public:
  // The value of a host option: what the application set, else, elsewhere than on Windows, the
  // environment variable QUENRA_OPTION_<name> as a text. False, and VT_EMPTY, when there is none.
  // The caller clears `value`.
  QUENRA_HOST_API static bool QueryOptionRegistry(std::u16string_view name, VARIANT& value);

  // For the application: sets an option for this process; a null `value` takes it away. Names are
  // compared without regard to case. The value is copied; one that cannot be copied takes the
  // option away as well.
  QUENRA_HOST_API static void SetOption(std::u16string_view name, const VARIANT* value);

  // Whether two names are equal without regard to case: the same length, and unit by unit equal
  // after ToUpper (CoreSupport/CharacterClasses.h).
  QUENRA_HOST_API static bool CompareFoldCase(std::u16string_view left,
                                              std::u16string_view right) noexcept;
};

}  // namespace quenra
