// Whether bytes of a delimited table lie inside quotes, told from a piece of them although what
// stands in front of it is not known.
//
//   QuoteStates states(dialect);
//   states.Prepend(lastPiece);                  // pieces from the end of the text to its front
//   if (!states.IsSettled()) states.Prepend(theOneBefore);
//   if (states.AtEnd() == QuoteStates::End::kInQuotes) ...
//
// Every state that the reader may be in at a piece's front is followed to the end. Ordinary quoted
// text leaves one state after a line or two, whatever it began with, since a quote inside unquoted
// text opens nothing. Lines end in line feeds.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reading/RecordScan.h"

namespace TextFile {

class QuoteStates {
 public:
  // kUnclear: the bytes alone do not tell whether a character in front of a quote is white space.
  enum class End : std::uint8_t { kOutside, kInQuotes, kUnclear };

  // Nothing is known, and the text ends here. `dialect` has a text delimiter.
  explicit QuoteStates(const RecordDialect& dialect) noexcept;

  // Goes back over the bytes in front of those known. They begin with a whole character.
  void Prepend(std::string_view bytes) noexcept;
  // The bytes known begin a record.
  void BeginHere() noexcept;

  // Whether the end is the same whatever stands in front of the bytes known.
  bool IsSettled() const noexcept;
  // At the end of the text, or of its last line if that has no end; IsSettled.
  End AtEnd() const noexcept;

 private:
  static constexpr std::size_t kStates = 18;
  static constexpr std::size_t kUnclearState = kStates;

  using State = std::uint8_t;
  using States = std::array<State, kStates + 1>;  // kUnclearState is the last one

  std::size_t KindAt(std::string_view bytes, std::size_t& at) const noexcept;
  std::string_view SkipUnquoted(std::string_view bytes, States& states) const noexcept;
  void Follow(std::string_view bytes, States& states) const noexcept;
  static std::size_t Merge(States& live, std::size_t count, States& places) noexcept;

  RecordDialect dialect_;
  std::array<std::uint8_t, 256> kinds_;  // of bytes
  States ends_;                          // of the text, for each state in front of what is known
};

}  // namespace TextFile
