#include "reading/QuoteStates.h"

#include <algorithm>

#include "reading/ByteSearch.h"

namespace TextFile {

namespace {

// Where the reader is. A field is blank while it holds nothing but white space, and open while it
// is unclear whether it does. Behind a quote inside quotes the next character decides whether that
// has closed them.
enum : std::uint8_t {
  kBlank,
  kOpen,
  kText,
  kQuotedBlank,
  kQuotedOpen,
  kQuotedText,
  kClosingBlank,
  kClosingOpen,
  kClosingText,
  kReaderStates,  // and as many more behind a zero byte, which hides the rest of its line
};

enum Kind : std::uint8_t { kQuote, kDelimiter, kLineEnd, kWhite, kOther, kMaybeWhite, kZero };

constexpr std::uint8_t Sum(int state, int offset) noexcept {
  return static_cast<std::uint8_t>(state + offset);
}

constexpr bool IsInQuotes(std::uint8_t state) noexcept {
  return state >= kQuotedBlank && state <= kQuotedText;
}

// What the text of a field is behind one more character: 0 blank, 1 open, 2 text.
constexpr std::uint8_t Contents(std::uint8_t before, Kind kind) noexcept {
  if (kind == kOther) return 2;
  return kind == kMaybeWhite ? std::max<std::uint8_t>(before, 1) : before;
}

// `unclear` is what becomes of a quote behind an open field.
constexpr std::uint8_t Next(std::uint8_t state, Kind kind, std::uint8_t unclear) noexcept {
  if (state >= kReaderStates) {
    if (kind != kLineEnd) return state;
    state = Sum(state, -kReaderStates);
  } else if (kind == kZero) {
    return Sum(state, kReaderStates);
  }
  if (IsInQuotes(state)) {
    if (kind == kQuote) return Sum(state, kClosingBlank - kQuotedBlank);
    // The delimiter is text like any other; a line end is white space.
    const Kind shown = kind == kDelimiter ? kOther : kind == kLineEnd ? kWhite : kind;
    return Sum(kQuotedBlank, Contents(Sum(state, -kQuotedBlank), shown));
  }
  if (state >= kClosingBlank) {
    if (kind == kQuote) return kQuotedText;
    state = Sum(state, -kClosingBlank);
  }
  if (kind == kDelimiter || kind == kLineEnd) return kBlank;
  if (kind != kQuote) return Contents(state, kind);
  if (state == kOpen) return unclear;
  return state == kBlank ? kQuotedBlank : kText;
}

using Table = std::array<std::array<std::uint8_t, 7>, std::size_t{2} * kReaderStates + 1>;

constexpr Table MakeTable() noexcept {
  Table table{};
  constexpr std::uint8_t kUnclear = 2 * kReaderStates;
  for (std::uint8_t state = 0; state < kUnclear; ++state)
    for (std::uint8_t kind = 0; kind < 7; ++kind)
      table[state][kind] = Next(state, static_cast<Kind>(kind), kUnclear);
  table[kUnclear].fill(kUnclear);
  return table;
}

constexpr Table kTable = MakeTable();

// How many bytes a character that is white space in UTF-8, and perhaps not in the ANSI code page,
// has; 0 when there is none. U+0085, U+00A0, U+1680, U+2000 to U+200A, U+2028, U+2029, U+202F,
// U+205F and U+3000, and A0 alone, which is the no-break space of the code pages.
std::size_t MaybeWhiteBytes(std::string_view bytes) noexcept {
  const auto byte = [&](std::size_t i) {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
  };
  const unsigned second = byte(1);
  const unsigned third = byte(2);
  bool white = false;
  switch (byte(0)) {
    case 0xA0:
      return 1;
    case 0xC2:
      return second == 0x85 || second == 0xA0 ? 2 : 0;
    case 0xE1:
      white = second == 0x9A && third == 0x80;
      break;
    case 0xE2:
      white = (second == 0x80 && ((third >= 0x80 && third <= 0x8A) || third == 0xA8 ||
                                  third == 0xA9 || third == 0xAF)) ||
              (second == 0x81 && third == 0x9F);
      break;
    case 0xE3:
      white = second == 0x80 && third == 0x80;
      break;
    default:
      break;
  }
  return white ? 3 : 0;
}

}  // namespace

static_assert(kTable.size() == 19);

QuoteStates::QuoteStates(const RecordDialect& dialect) noexcept : dialect_(dialect) {
  kinds_.fill(kOther);
  for (const unsigned char white : {'\t', '\v', '\f', '\r', ' '}) kinds_[white] = kWhite;
  kinds_[0] = kZero;
  kinds_['\n'] = kLineEnd;
  kinds_[static_cast<unsigned char>(dialect.delimiter)] = kDelimiter;
  kinds_[static_cast<unsigned char>(dialect.textDelimiter)] = kQuote;
  // The line of the end is ended before anything is added.
  for (std::size_t state = 0; state <= kUnclearState; ++state)
    ends_[state] = kTable[state][kLineEnd];
}

void QuoteStates::Prepend(std::string_view bytes) noexcept {
  States ends{};
  Follow(SkipUnquoted(bytes, ends), ends);
  for (State& end : ends) end = ends_[end];
  ends_ = ends;
}

// Files without a quote are passed over fast: whole lines without one only lead out of what is no
// quoted text. Answers what is left to be followed, and the states in front of it.
std::string_view QuoteStates::SkipUnquoted(std::string_view bytes, States& states) const noexcept {
  for (std::size_t state = 0; state <= kUnclearState; ++state)
    states[state] = static_cast<State>(state);
  const char* const end = bytes.data() + bytes.size();
  const std::size_t lineEnd = bytes.rfind('\n');
  if (lineEnd == std::string_view::npos ||
      FindByte(bytes.data(), end, dialect_.textDelimiter) != end)
    return bytes;
  for (std::size_t state = 0; state < kUnclearState; ++state) {
    const auto shown = static_cast<State>(state % kReaderStates);
    // What is in the lines is not looked at.
    const State quoted = shown == kQuotedText ? shown : State{kQuotedOpen};
    states[state] = IsInQuotes(shown) ? quoted : State{kBlank};
  }
  return bytes.substr(lineEnd + 1);
}

void QuoteStates::BeginHere() noexcept { ends_.fill(ends_[kBlank]); }

std::size_t QuoteStates::KindAt(std::string_view bytes, std::size_t& at) const noexcept {
  const auto byte = static_cast<unsigned char>(bytes[at]);
  if (byte >= 0x80) {
    const std::size_t white = MaybeWhiteBytes(bytes.substr(at));
    at += white == 0 ? 1 : white;
    return white == 0 ? kOther : kMaybeWhite;
  }
  ++at;
  return kinds_[byte];
}

// Replaces states in front of the bytes by those behind them.
void QuoteStates::Follow(std::string_view bytes, States& states) const noexcept {
  // Few different states are left soon, and those are followed.
  constexpr std::size_t kBytesBetween = 64;
  States places{};  // in `live`, for each of the states
  States live = states;
  std::size_t count = live.size();
  for (std::size_t i = 0; i < count; ++i) places[i] = static_cast<State>(i);
  std::size_t merging = 0;
  for (std::size_t at = 0; at < bytes.size();) {
    if (at >= merging) {
      count = Merge(live, count, places);
      merging = at + kBytesBetween;
    }
    const std::size_t kind = KindAt(bytes, at);
    for (std::size_t i = 0; i < count; ++i) live[i] = kTable[live[i]][kind];
  }
  for (std::size_t state = 0; state < states.size(); ++state) states[state] = live[places[state]];
}

// Leaves each of the states once, and answers how many there are.
std::size_t QuoteStates::Merge(States& live, std::size_t count, States& places) noexcept {
  States moved{};
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const State state = live[i];
    const auto same = static_cast<std::size_t>(
        std::find(live.begin(), live.begin() + static_cast<std::ptrdiff_t>(kept), state) -
        live.begin());
    if (same == kept) live[kept++] = state;
    moved[i] = static_cast<State>(same);
  }
  for (State& place : places) place = moved[place];
  return kept;
}

bool QuoteStates::IsSettled() const noexcept {
  return std::all_of(ends_.begin(), ends_.begin() + kStates,
                     [&](State end) { return end == ends_[0]; });
}

QuoteStates::End QuoteStates::AtEnd() const noexcept {
  if (ends_[kBlank] == kUnclearState) return End::kUnclear;
  return IsInQuotes(ends_[kBlank]) ? End::kInQuotes : End::kOutside;
}

}  // namespace TextFile
