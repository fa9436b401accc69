// Reads arbitrary bytes as JSON, as load does with each of its lines.
//
// Holds: another reader accepts the same bytes, but for lone surrogates, numbers beyond a double
// and very deep brackets; the nodes lie in their order and within the bytes; the document, written
// again as the program writes JSON, reads the same and is written the same.

#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

#include "FuzzInput.h"
#include "texttables/JsonReader.h"
#include "texttables/JsonText.h"
#include "texttables/TextEncoding.h"

namespace {

using Fuzz::Check;
using TextTables::JsonDocument;
using TextTables::JsonKind;
using TextTables::JsonNode;

// Whether the bytes are JSON. They must outlive the document.
bool Read(std::string_view bytes, JsonDocument& document) {
  try {
    document.Parse(bytes);
    return true;
  } catch (const TextTables::JsonError& error) {
    constexpr std::string_view kTooDeep = "too many brackets in each other";
    // The other reader ends at a zero byte, and passes over a byte-order mark.
    const bool differs = std::string_view(error.what()).ends_with(kTooDeep) ||
                         bytes.find('\0') != std::string_view::npos ||
                         bytes.starts_with("\xEF\xBB\xBF");
    Check(differs || !nlohmann::json::accept(bytes));
    return false;
  }
}

bool HasLoneSurrogate(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const TextTables::CodePoint point = TextTables::CodePointAt(text, i);
    if (TextTables::IsSurrogate(point.value)) return true;
    i += point.units;
  }
  return false;
}

// Writes the value at `index` and answers the node behind it.
std::size_t Write(const JsonDocument& document, std::size_t index, TextTables::Output& output,
                  bool& isPlain) {
  const JsonNode& node = document.At(index);
  const std::string_view source = document.Source(node);
  Check(node.next > index && node.sourceBegin < node.sourceEnd && node.textBegin <= node.textEnd);
  if (node.kind == JsonKind::kString) {
    isPlain = isPlain && !HasLoneSurrogate(document.Text(node));
    TextTables::AppendJsonString(output, document.Text(node));
    return node.next;
  }
  if (node.kind != JsonKind::kArray && node.kind != JsonKind::kObject) {
    if (node.kind == JsonKind::kNumber)
      isPlain = isPlain && std::isfinite(std::strtod(std::string(source).c_str(), nullptr));
    output.Append(source);
    return node.next;
  }
  const bool isObject = node.kind == JsonKind::kObject;
  output.Append(isObject ? '{' : '[');
  std::size_t next = index + 1;
  for (std::size_t i = 0; i < node.count; ++i) {
    if (i > 0) output.Append(',');
    if (isObject) {
      Check(document.At(next).kind == JsonKind::kString);
      next = Write(document, next, output, isPlain);
      output.Append(':');
    }
    next = Write(document, next, output, isPlain);
  }
  output.Append(isObject ? '}' : ']');
  Check(next == node.next);
  return next;
}

std::string Written(const JsonDocument& document, std::size_t& nodes, bool& isPlain) {
  TextTables::StringOutput output;
  nodes = Write(document, 0, output, isPlain);
  return output.Take();
}

void CheckSame(const JsonDocument& first, const JsonDocument& second, std::size_t nodes) {
  for (std::size_t i = 0; i < nodes; ++i) {
    const JsonNode& a = first.At(i);
    const JsonNode& b = second.At(i);
    Check(a.kind == b.kind && a.count == b.count && a.next == b.next);
    Check(first.Text(a) == second.Text(b));
    if (a.kind == JsonKind::kNumber) Check(first.Source(a) == second.Source(b));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  JsonDocument document;
  if (!Read(bytes, document)) return 0;
  std::size_t nodes = 0;
  bool isPlain = true;
  const std::string written = Written(document, nodes, isPlain);
  if (isPlain) Check(nlohmann::json::accept(bytes) && nlohmann::json::accept(written));

  JsonDocument again;
  Check(Read(written, again));
  std::size_t sameNodes = 0;
  Check(Written(again, sameNodes, isPlain) == written && sameNodes == nodes);
  CheckSame(document, again, nodes);
  return 0;
}
