// Takes arbitrary bytes for the name of a file, and arbitrary text.
//
// Holds: the text of any bytes gives the same bytes back; text without lone surrogates comes back
// from its bytes; a path is put together of the parts that it is taken apart into.

#include "FuzzInput.h"
#include "platform/FileNames.h"
#include "schema/SchemaIniPaths.h"

namespace {

using Fuzz::Check;

bool HasLoneSurrogate(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((text[i] & 0xF800) != 0xD800) continue;
    const bool isPair = text[i] < 0xDC00 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    if (!isPair) return true;
    ++i;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  Check(NativeFromFileName(FileNameFromNative(bytes)) == bytes);
  const std::u16string text = Fuzz::FuzzInput(data, size).RestAsText();
  const std::string native = NativeFromFileName(text);
  if (!HasLoneSurrogate(text)) Check(FileNameFromNative(native) == text);
  Check(NativeFromFileName(FileNameFromNative(native)) == native);

  const std::u16string folder = TextFile::FolderOf(text);
  Check(text.starts_with(folder));
  const std::u16string leaf = text.substr(text.find_last_of(u'/') + 1);
  const std::u16string joined = TextFile::JoinPath(folder, leaf);
  Check(TextFile::FolderOf(joined) == folder && joined.ends_with(leaf));
  return 0;
}
