// Reads plain numbers with the vector instructions that nearly every x86-64 processor has.
#pragma once

#include <string_view>

#include "inference/PlainNumber.h"

namespace TextFile {

using PlainNumberReader = bool (*)(char16_t decimalSymbol, std::u16string_view text,
                                   PlainNumber& number) noexcept;

// The quickest way of this processor: ReadPlainNumber, or one that gives the same for every text.
PlainNumberReader QuickestPlainNumberReader() noexcept;

}  // namespace TextFile
