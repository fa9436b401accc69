#include "platform/posix/CodePageTable.h"

#include <map>
#include <mutex>

#include "platform/icu/IcuServices.h"

const CodePageTable* CodePageTable::Find(UINT codePage) {
  // The last answer of the thread saves the lock: a file is read with one code page.
  thread_local UINT lastPage = 0;
  thread_local const CodePageTable* lastTable = nullptr;
  if (lastTable != nullptr && lastPage == codePage) return lastTable;

  // Never destroyed: threads may still convert while the process ends.
  static std::mutex& mutex = *new std::mutex;
  static auto& tables = *new std::map<UINT, std::unique_ptr<const CodePageTable>>;
  std::unique_lock<std::mutex> lock(mutex);
  auto found = tables.find(codePage);
  if (found == tables.end()) {
    lock.unlock();
    std::unique_ptr<const CodePageTable> table = Icu().loadCodePage(codePage);
    if (table == nullptr) return nullptr;
    lock.lock();
    found = tables.emplace(codePage, std::move(table)).first;
  }
  lastPage = codePage;
  lastTable = found->second.get();
  return lastTable;
}

bool CodePageTable::IsBestFit(char16_t c, std::uint16_t code) const {
  const auto high = static_cast<unsigned char>(code >> 8);
  const auto low = static_cast<unsigned char>(code);
  return (high != 0 ? Pair(high, low) : Single(low)) != c;
}
