#include "plugin/FileNameClaims.h"

#include <set>
#include <string>

#include "host/CoreSupport/BString.h"
#include "plugin/TextFileFolder.h"

namespace quenra {
namespace {

// Steps through the whole list, or until the visitor answers false.
template <class Visitor>
void ForEachName(HostFileNames& names, Visitor visitor) {
  names.Reset();
  for (;;) {
    BString name;
    VARIANT_BOOL isDirectory = VARIANT_FALSE;
    if (names.Next(name.Receive(), &isDirectory) != S_OK) return;
    if (!visitor(name.View(), isDirectory != VARIANT_FALSE)) return;
  }
}

}  // namespace

bool HoldsTextFile(HostFileNames& names) {
  bool found = false;
  ForEachName(names, [&found](std::u16string_view name, bool isDirectory) {
    found = !isDirectory && IsTextFileName(name);
    return !found;
  });
  return found;
}

bool ClaimTextFiles(HostFileNames& names) {
  std::set<std::u16string> companions;
  ForEachName(names, [&](std::u16string_view name, bool isDirectory) {
    if (isDirectory || !IsTextFileName(name)) return true;
    companions.insert(std::u16string(name) + u".xml");
    names.RemoveCurrent();
    return true;
  });
  if (companions.empty()) return false;
  ForEachName(names, [&](std::u16string_view name, bool) {
    if (companions.contains(std::u16string(name))) names.RemoveCurrent();
    return true;
  });
  return true;
}

}  // namespace quenra
