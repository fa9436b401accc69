// Whole texts between UTF-8 and UTF-16, for CodePages.cpp.
//
// Runs of ASCII, most of what text tables hold, are widened and narrowed sixteen at a time.
#pragma once

#include <cstddef>

enum class ConversionOutcome { kDone, kBufferTooSmall, kIllFormed };

struct ConversionResult {
  ConversionOutcome outcome;
  std::size_t written;  // units written, or needed when there is no buffer
};

// `text` null asks for the size only. Strict: an ill-formed part fails, else it becomes one U+FFFD.
ConversionResult Utf16FromUtf8(const char* bytes, std::size_t length, bool strict, char16_t* text,
                               std::size_t size);

// The same for lone surrogates.
ConversionResult Utf8FromUtf16(const char16_t* text, std::size_t length, bool strict, char* bytes,
                               std::size_t size);
