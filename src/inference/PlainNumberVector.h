// Reads plain numbers with the vector instructions that nearly every x86-64 processor has.
#pragma once

#include <cstddef>
#include <string_view>

#include "inference/PlainNumber.h"

namespace TextFile {

// Reads the bytes of UTF-8, of which kPlainNumberBytes can be read from the start of `text` on.
using PlainNumberReader = bool (*)(char16_t decimalSymbol, std::string_view text,
                                   PlainNumber& number) noexcept;
inline constexpr std::size_t kPlainNumberBytes = 17;  // a minus and 16 characters

// The quickest way of this processor: ReadPlainNumber, or one that gives the same for every text.
PlainNumberReader QuickestPlainNumberReader() noexcept;

}  // namespace TextFile
