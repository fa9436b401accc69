// Reads one JSON text, strictly as RFC 8259 has it, into a flat list of nodes.
//
//   JsonDocument document;
//   document.Parse(R"([1, "a"])");
//   document.At(0).kind;              // kArray
//   document.Text(document.At(2));    // u"a"
//
// Other readers refuse the escape of a lone surrogate, which a table may well hold; this one keeps
// it. A document may be parsed into again and again, and allocates only for what is larger than
// everything before.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace TextTables {

// What is wrong, and where: at which byte, from 1.
class JsonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class JsonKind { kNull, kFalse, kTrue, kNumber, kString, kArray, kObject };

// The nodes below an array or an object stand behind it; those of an object are names (strings)
// and values in turn.
struct JsonNode {
  JsonKind kind = JsonKind::kNull;
  std::size_t next = 0;         // the node behind this one and everything below it
  std::size_t count = 0;        // elements of an array, members of an object
  std::size_t sourceBegin = 0;  // the bytes of the text that spell the value
  std::size_t sourceEnd = 0;
  std::size_t textBegin = 0;  // of a string: its characters
  std::size_t textEnd = 0;
};

class JsonDocument {
 public:
  // `source` is UTF-8 and must stay while the document is used. Throws JsonError; the document is
  // then of no use.
  void Parse(std::string_view source);

  // Node 0 is the whole text.
  const JsonNode& At(std::size_t index) const noexcept { return nodes_[index]; }
  // The characters of a string.
  std::u16string_view Text(const JsonNode& node) const noexcept {
    return std::u16string_view(text_).substr(node.textBegin, node.textEnd - node.textBegin);
  }
  // The value as it is spelled, a number's digits for one.
  std::string_view Source(const JsonNode& node) const noexcept {
    return source_.substr(node.sourceBegin, node.sourceEnd - node.sourceBegin);
  }

 private:
  [[noreturn]] void Fail(const char* what) const;
  void SkipBlanks() noexcept;
  bool Take(char byte) noexcept;
  bool IsDigit() const noexcept;
  void TakeDigits();
  void ReadValue(int depth);
  void ReadWord(std::string_view word, JsonKind kind);
  void ReadNumber();
  void ReadString();
  void ReadArray(int depth);
  void ReadObject(int depth);
  void ReadEscape();
  char16_t ReadHexDigits();
  void ReadUtf8();
  std::size_t BeginNode(JsonKind kind);
  void EndNode(std::size_t index);

  std::string_view source_;
  std::size_t place_ = 0;
  std::vector<JsonNode> nodes_;
  std::u16string text_;
};

}  // namespace TextTables
