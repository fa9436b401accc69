#include "host/CoreSupport/CharacterWidth.h"

#include <algorithm>
#include <iterator>

namespace quenra {
namespace {

struct CodePointRange {
  char32_t first;
  char32_t last;
};

#include "host/CoreSupport/CharacterWidths.inc"

template <std::size_t count>
bool Holds(const CodePointRange (&ranges)[count], char32_t character) noexcept {
  const auto* const range = std::lower_bound(
      std::begin(ranges), std::end(ranges), character,
      [](const CodePointRange& candidate, char32_t value) { return candidate.last < value; });
  return range != std::end(ranges) && range->first <= character;
}

}  // namespace

int ColumnsOf(char32_t character) noexcept {
  if (character < kNoColumn[0].first) return 1;
  if (Holds(kNoColumn, character)) return 0;
  return Holds(kTwoColumns, character) ? 2 : 1;
}

}  // namespace quenra
