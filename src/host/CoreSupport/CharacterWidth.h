// How wide a terminal shows a character.
//
//   const int columns = ColumnsOf(U'\u6771');  // 2
#pragma once

#include "host/HostApi.h"

namespace quenra {

// Columns: two for the characters that Unicode's East Asian Width calls wide or fullwidth (emoji
// among them), none for marks that stand on the character before, characters without a shape, and
// the vowels and final consonants of Hangul written in letters; else one. As terminals count, each
// character counts by itself: what some of them draw as one (a family, a flag) takes its parts.
QUENRA_HOST_API int ColumnsOf(char32_t character) noexcept;

}  // namespace quenra
