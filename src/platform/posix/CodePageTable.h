// The tables of one ANSI or OEM code page, filled from ICU once and kept for the process.
//
//   const CodePageTable* const table = CodePageTable::Find(1252);
//   if (table != nullptr) Use(table->Single(0x80));  // U+20AC
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/ComTypes.h"

class CodePageTable {
 public:
  // Stands in the tables for "no such character".
  static constexpr char16_t kUndefined = 0xFFFF;

  // Null for a code page that is unknown, or that is neither of one nor of two bytes a character.
  // Safe from any thread; the table lives until the process ends.
  static const CodePageTable* Find(UINT codePage);

  // Makes the table, or null as above. Part of the library that uses ICU (see IcuServices.h).
  static std::unique_ptr<CodePageTable> Load(UINT codePage);

  bool IsLead(unsigned char byte) const { return !pairs_.empty() && pairIndex_[byte] != 0; }
  char16_t Single(unsigned char byte) const { return single_[byte]; }
  // `lead` must be a lead byte.
  char16_t Pair(unsigned char lead, unsigned char trail) const {
    return pairs_[static_cast<std::size_t>(pairIndex_[lead] - 1) * 256 + trail];
  }
  // One byte, or two as lead * 256 + trail; kUndefined when the code page has no such character nor
  // one that fits best.
  std::uint16_t Encode(char16_t c) const { return encode_[c]; }
  // Whether `code` from Encode decodes to another character than was encoded.
  bool IsBestFit(char16_t c, std::uint16_t code) const;

  char16_t DefaultCharacter() const { return defaultCharacter_; }
  static constexpr char kDefaultByte = '?';

 private:
  CodePageTable() = default;

  std::array<char16_t, 256> single_{};
  std::array<std::uint8_t, 256> pairIndex_{};  // 0 for no lead byte, else 1 + row in pairs_
  std::vector<char16_t> pairs_;
  std::vector<std::uint16_t> encode_;
  char16_t defaultCharacter_ = u'?';
};
