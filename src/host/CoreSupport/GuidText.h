// The usual text of an identifier: "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in upper case.
#pragma once

#include <string>

#include "platform/OleText.h"

namespace quenra {

inline std::u16string GuidText(const GUID& guid) {
  constexpr int kUnits = 39;  // 38 characters and the terminating zero
  std::u16string text(kUnits, u'\0');
  const int written = ::StringFromGUID2(guid, AsOle(text.data()), kUnits);
  text.resize(written > 0 ? static_cast<std::size_t>(written - 1) : 0);
  return text;
}

}  // namespace quenra
