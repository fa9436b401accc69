#include "JsonReader.h"

namespace TextTables {

namespace {

// A row needs three levels; the reader calls itself for each.
constexpr int kGreatestDepth = 64;

constexpr bool IsPlain(char byte) noexcept {
  return byte >= 0x20 && byte != '"' && byte != '\\' && static_cast<unsigned char>(byte) < 0x80;
}

// The least code point that so many continuation bytes may spell.
constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};

}  // namespace

void JsonDocument::Parse(std::string_view source) {
  source_ = source;
  place_ = 0;
  nodes_.clear();
  text_.clear();
  SkipBlanks();
  ReadValue(0);
  SkipBlanks();
  if (place_ < source_.size()) Fail("there is more behind the value");
}

void JsonDocument::Fail(const char* what) const {
  throw JsonError("bad JSON at byte " + std::to_string(place_ + 1) + ": " + what);
}

void JsonDocument::SkipBlanks() noexcept {
  while (place_ < source_.size() && (source_[place_] == ' ' || source_[place_] == '\t' ||
                                     source_[place_] == '\r' || source_[place_] == '\n'))
    ++place_;
}

bool JsonDocument::Take(char byte) noexcept {
  if (place_ >= source_.size() || source_[place_] != byte) return false;
  ++place_;
  return true;
}

std::size_t JsonDocument::BeginNode(JsonKind kind) {
  JsonNode node;
  node.kind = kind;
  node.sourceBegin = place_;
  node.textBegin = text_.size();
  nodes_.push_back(node);
  return nodes_.size() - 1;
}

void JsonDocument::EndNode(std::size_t index) {
  nodes_[index].next = nodes_.size();
  nodes_[index].sourceEnd = place_;
  nodes_[index].textEnd = text_.size();
}

void JsonDocument::ReadValue(int depth) {
  if (place_ >= source_.size()) Fail("a value is missing");
  switch (source_[place_]) {
    case '"':
      return ReadString();
    case '[':
      return ReadArray(depth + 1);
    case '{':
      return ReadObject(depth + 1);
    case 'n':
      return ReadWord("null", JsonKind::kNull);
    case 't':
      return ReadWord("true", JsonKind::kTrue);
    case 'f':
      return ReadWord("false", JsonKind::kFalse);
    default:
      return ReadNumber();
  }
}

void JsonDocument::ReadWord(std::string_view word, JsonKind kind) {
  if (source_.substr(place_, word.size()) != word) Fail("a value is expected");
  const std::size_t node = BeginNode(kind);
  place_ += word.size();
  EndNode(node);
}

bool JsonDocument::IsDigit() const noexcept {
  return place_ < source_.size() && source_[place_] >= '0' && source_[place_] <= '9';
}

void JsonDocument::TakeDigits() {
  if (!IsDigit()) Fail("a digit is expected");
  while (IsDigit()) ++place_;
}

void JsonDocument::ReadNumber() {
  const std::size_t node = BeginNode(JsonKind::kNumber);
  const bool negative = Take('-');
  if (!negative && !IsDigit()) Fail("a value is expected");
  if (!Take('0')) TakeDigits();
  if (IsDigit()) Fail("a number has no zeros in front");
  if (Take('.')) TakeDigits();
  if (Take('e') || Take('E')) {
    if (!Take('+')) Take('-');
    TakeDigits();
  }
  EndNode(node);
}

void JsonDocument::ReadArray(int depth) {
  if (depth > kGreatestDepth) Fail("too many brackets in each other");
  const std::size_t node = BeginNode(JsonKind::kArray);
  ++place_;
  std::size_t count = 0;
  SkipBlanks();
  if (!Take(']')) {
    do {
      SkipBlanks();
      ReadValue(depth);
      ++count;
      SkipBlanks();
    } while (Take(','));
    if (!Take(']')) Fail("a comma or a closing bracket is expected");
  }
  nodes_[node].count = count;
  EndNode(node);
}

void JsonDocument::ReadObject(int depth) {
  if (depth > kGreatestDepth) Fail("too many brackets in each other");
  const std::size_t node = BeginNode(JsonKind::kObject);
  ++place_;
  std::size_t count = 0;
  SkipBlanks();
  if (!Take('}')) {
    do {
      SkipBlanks();
      if (place_ >= source_.size() || source_[place_] != '"') Fail("a name in quotes is expected");
      ReadString();
      SkipBlanks();
      if (!Take(':')) Fail("a colon is expected");
      SkipBlanks();
      ReadValue(depth);
      ++count;
      SkipBlanks();
    } while (Take(','));
    if (!Take('}')) Fail("a comma or a closing brace is expected");
  }
  nodes_[node].count = count;
  EndNode(node);
}

void JsonDocument::ReadString() {
  const std::size_t node = BeginNode(JsonKind::kString);
  ++place_;
  for (;;) {
    if (place_ >= source_.size()) Fail("a closing quote is missing");
    const char byte = source_[place_];
    if (IsPlain(byte)) {
      text_ += static_cast<char16_t>(byte);
      ++place_;
    } else if (byte == '"') {
      break;
    } else if (byte == '\\') {
      ReadEscape();
    } else if (static_cast<unsigned char>(byte) < 0x20) {
      Fail("a control character must be escaped");
    } else {
      ReadUtf8();
    }
  }
  ++place_;
  EndNode(node);
}

void JsonDocument::ReadEscape() {
  constexpr std::string_view kLetters = "\"\\/bfnrt";
  constexpr std::u16string_view kMeanings = u"\"\\/\b\f\n\r\t";
  const char letter = place_ + 1 < source_.size() ? source_[place_ + 1] : '\0';
  if (letter == 'u') {
    text_ += ReadHexDigits();
    return;
  }
  const std::size_t index = kLetters.find(letter);
  if (index == std::string_view::npos) Fail("there is no such escape");
  text_ += kMeanings[index];
  place_ += 2;
}

char16_t JsonDocument::ReadHexDigits() {
  constexpr std::size_t kLength = 6;  // \uXXXX
  if (source_.size() - place_ < kLength) Fail("an escape is cut off");
  unsigned value = 0;
  for (const char digit : source_.substr(place_ + 2, kLength - 2)) {
    value <<= 4;
    if (digit >= '0' && digit <= '9') {
      value |= static_cast<unsigned>(digit - '0');
    } else if (digit >= 'a' && digit <= 'f') {
      value |= static_cast<unsigned>(digit - 'a' + 10);
    } else if (digit >= 'A' && digit <= 'F') {
      value |= static_cast<unsigned>(digit - 'A' + 10);
    } else {
      Fail("an escape has four hexadecimal digits");
    }
  }
  place_ += kLength;
  return static_cast<char16_t>(value);
}

void JsonDocument::ReadUtf8() {
  const auto byteAt = [this](std::size_t place) -> unsigned {
    return place < source_.size() ? static_cast<unsigned char>(source_[place]) : 0u;
  };
  const unsigned lead = byteAt(place_);
  const unsigned more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4) Fail("this is not UTF-8");
  char32_t value = lead & (0x3Fu >> more);
  for (unsigned i = 1; i <= more; ++i) {
    const unsigned byte = byteAt(place_ + i);
    if ((byte & 0xC0) != 0x80) Fail("this is not UTF-8");
    value = (value << 6) | (byte & 0x3F);
  }
  if (value < kLeast[more] || value > 0x10FFFF || (value & 0xFFFFF800) == 0xD800)
    Fail("this is not UTF-8");
  if (value >= 0x10000) {
    text_ += static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
    text_ += static_cast<char16_t>(0xDC00 + (value & 0x3FF));
  } else {
    text_ += static_cast<char16_t>(value);
  }
  place_ += more + 1;
}

}  // namespace TextTables
