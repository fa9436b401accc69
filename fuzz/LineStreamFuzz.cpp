// Reads arbitrary bytes as lines. The first byte holds switches: six bits for the size of the
// blocks, one for zero-terminated lines, one for CR as line delimiter.
//
// Holds: the lines do not depend on how the bytes arrive; a second walk gives the same lines as
// long as the encoding did not change on the first; a zero unit ends every line when asked for,
// and stands nowhere else in the lines of 8-bit files; encodings that are not read give no line.

#include <memory>
#include <vector>

#include "FuzzInput.h"
#include "reading/TextLineStream.h"

namespace {

using Fuzz::Check;
using TextFile::TextEncoding;
using TextFile::TextLineStream;

void OpenBytes(TextLineStream& stream, std::string_view bytes, unsigned switches,
               std::size_t blockSize) {
  stream.Open(
      std::make_unique<Fuzz::MemoryFile>(bytes),
      (switches & 0x40) != 0 ? TextLineStream::kTerminateLines : TextLineStream::kPlainLines,
      blockSize);
  if ((switches & 0x80) != 0) stream.SetLineDelimiter('\r');
}

std::vector<std::u16string> LinesOf(TextLineStream& stream) {
  std::vector<std::u16string> lines;
  std::u16string line;
  while (stream.ReadLine(line)) lines.push_back(line);
  Check(stream.AtEnd());
  Check(!stream.ReadLine(line));
  return lines;
}

bool Is8Bit(TextEncoding encoding) {
  return encoding == TextEncoding::kAnsi || encoding == TextEncoding::kUtf8;
}

bool IsRead(TextEncoding encoding) {
  return Is8Bit(encoding) || encoding == TextEncoding::kUtf16LE;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::FuzzInput input(data, size);
  const unsigned switches = input.TakeSwitches();
  const std::string_view bytes = input.Rest();

  TextLineStream whole;
  OpenBytes(whole, bytes, switches, TextLineStream::kDefaultBlockSize);
  const TextEncoding before = whole.encoding();
  const std::vector<std::u16string> lines = LinesOf(whole);
  const TextEncoding encoding = whole.encoding();
  Check(IsRead(encoding) || lines.empty());
  // Only a file without a mark changes its encoding, and it ends with one.
  Check(encoding != TextEncoding::kUndetermined);
  Check(before == encoding || before == TextEncoding::kUndetermined);

  for (const std::u16string& line : lines) {
    if ((switches & 0x40) != 0) Check(!line.empty() && line.back() == u'\0');
    if (Is8Bit(encoding) && !line.empty()) Check(line.find(u'\0') >= line.size() - 1);
  }

  TextLineStream pieces;
  OpenBytes(pieces, bytes, switches, 1 + (switches & 0x3F));
  Check(LinesOf(pieces) == lines && pieces.encoding() == encoding);

  // Lines that passed for UTF-8 before one failed are ANSI the second time.
  whole.Rewind();
  const std::vector<std::u16string> again = LinesOf(whole);
  Check(again.size() == lines.size());
  if (encoding != TextEncoding::kAnsi) Check(again == lines);
  return 0;
}
