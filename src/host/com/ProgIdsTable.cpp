// Elsewhere than on Windows: a table of the module's own.
#include "host/com/ProgIds.h"

#ifndef _WIN32

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/OleText.h"

namespace quenra {
namespace {

struct ProgIdTable {
  std::mutex mutex;
  std::vector<std::pair<CLSID, std::u16string>> entries;
};

ProgIdTable& Table() {
  static ProgIdTable table;
  return table;
}

}  // namespace

void RegisterProgId(const CLSID& classId, std::u16string_view progId) {
  ProgIdTable& table = Table();
  const std::lock_guard lock(table.mutex);
  for (auto& [known, text] : table.entries) {
    if (!IsEqualCLSID(known, classId)) continue;
    text = progId;
    return;
  }
  table.entries.emplace_back(classId, progId);
}

HRESULT ProgIdOfClass(const CLSID& classId, BSTR* progId) noexcept {
  *progId = nullptr;
  ProgIdTable& table = Table();
  const std::lock_guard lock(table.mutex);
  for (const auto& [known, text] : table.entries) {
    if (!IsEqualCLSID(known, classId)) continue;
    *progId = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
    return *progId != nullptr ? S_OK : E_OUTOFMEMORY;
  }
  return REGDB_E_CLASSNOTREG;
}

}  // namespace quenra

#endif
