// Formatting of message texts, in the manner of the system's message tables.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "host/CoreSupport/MessageText.h"
#include "host/HostApi.h"

namespace quenra {

class String {
 public:
  // `format` with %1 to %9 replaced by the arguments from the first on; "%%" is a percent sign,
  // and a place holder without an argument stays as it is. Arguments are never expanded again.
  QUENRA_HOST_API static std::u16string FormatMessageW(
      std::u16string_view format, std::initializer_list<std::u16string_view> arguments);

  // The same text with the places of its arguments.
  QUENRA_HOST_API static MessageText ComposeMessage(
      std::u16string_view format, std::initializer_list<std::u16string_view> arguments);
};

}  // namespace quenra
