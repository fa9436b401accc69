#include "host/CoreSupport/CharacterClasses.h"

#include <cstdint>

namespace quenra {
namespace {

#include "host/CoreSupport/CaseTable.inc"

}  // namespace

char16_t ToUpperByTable(char16_t unit) noexcept {
  const unsigned block = kCaseBlockOfUnit[unit >> kCaseBlockBits];
  const unsigned place = unit & ((1u << kCaseBlockBits) - 1);
  // Distances wrap around at 16 bits.
  return static_cast<char16_t>(unit + kCaseDistances[block][place]);
}

}  // namespace quenra
