#include "DisplayWidth.h"

#include "TextEncoding.h"
#include "host/CoreSupport/CharacterWidth.h"

namespace TextTables {

std::size_t DisplayWidth(std::u16string_view text) noexcept {
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint point = CodePointAt(text, i);
    i += point.units;
    width += static_cast<std::size_t>(quenra::ColumnsOf(point.value));
  }
  return width;
}

std::u16string CutToWidth(std::u16string_view text, std::size_t columns) {
  if (DisplayWidth(text) <= columns) return std::u16string(text);
  std::size_t width = 1;  // of the ellipsis
  std::size_t end = 0;
  while (end < text.size()) {
    const CodePoint point = CodePointAt(text, end);
    width += static_cast<std::size_t>(quenra::ColumnsOf(point.value));
    if (width > columns) break;
    end += point.units;
  }
  return std::u16string(text.substr(0, end)) + u'\u2026';
}

}  // namespace TextTables
