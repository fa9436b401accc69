// Reads arbitrary bytes as the file of the registry.
//
// Holds: what was read, written and read again, is the same tree; it is written the same then.

#include "FuzzInput.h"
#include "platform/FileNames.h"
#include "platform/posix/RegistryTree.h"

namespace {

using Fuzz::Check;

bool Parse(std::string_view bytes, RegistryKey& root) {
  return ParseRegistry(FileNameFromNative(bytes), root);
}

// In all letters, which the trees' own order does not look at.
bool Same(const RegistryKey& first, const RegistryKey& second) {
  if (first.values.size() != second.values.size() || first.subkeys.size() != second.subkeys.size())
    return false;
  for (auto a = first.values.begin(), b = second.values.begin(); a != first.values.end(); ++a, ++b)
    if (*a != *b) return false;
  for (auto a = first.subkeys.begin(), b = second.subkeys.begin(); a != first.subkeys.end();
       ++a, ++b)
    if (a->first != b->first || !Same(a->second, b->second)) return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  RegistryKey root;
  if (!Parse({reinterpret_cast<const char*>(data), size}, root)) return 0;
  const std::string written = RegistryText(root);
  RegistryKey again;
  Check(Parse(written, again) && Same(root, again));
  Check(RegistryText(again) == written);
  return 0;
}
