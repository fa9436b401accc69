// The instances of a class that has one instance a thread.
//
// A hash table by thread id. The lowest bits of an id say little where systems hand out multiples
// of a power of two, so bucket and order go by the id shifted right; a match is of the thread's
// life, since an id may have belonged to a thread that has ended.
//
//   if (ThreadTable<T>::Entry* entry = table.Find(ThreadLife::OfThisThread())) entry->instance->...
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include "host/com/ComPtr.h"
#include "platform/ThreadLife.h"

namespace quenra {

// Not safe from several threads at once: the owner holds a lock.
template <class T>
class ThreadTable {
 public:
  struct Entry {
    ThreadLife thread;
    ComPtr<T> instance;
    ULONG unusedCount = 0;  // the instance's references when nobody but the table holds it
  };

  // Valid until the table changes; null when the thread has none.
  Entry* Find(const ThreadLife& thread) noexcept {
    for (Entry& entry : BucketOf(thread))
      if (entry.thread == thread) return &entry;
    return nullptr;
  }

  // The thread must have no entry yet. Nothing changes when memory is exhausted (std::bad_alloc).
  void Insert(Entry entry) {
    Bucket& bucket = BucketOf(entry.thread);
    const auto place =
        std::upper_bound(bucket.begin(), bucket.end(), KeyOf(entry.thread),
                         [](DWORD key, const Entry& other) { return key < KeyOf(other.thread); });
    bucket.insert(place, std::move(entry));
  }

  // Takes out the entries that `matches` accepts and hands them over, so that the caller decides
  // when the instances go.
  template <class Predicate>
  std::vector<Entry> TakeIf(Predicate matches) {
    std::vector<Entry> taken;
    for (Bucket& bucket : buckets_) TakeFrom(bucket, matches, taken);
    return taken;
  }

 private:
  using Bucket = std::vector<Entry>;

  // A prime, so that ids in steps of any other number spread. Hosts have a few dozen threads.
  static constexpr std::size_t kBucketCount = 61;

  static DWORD KeyOf(const ThreadLife& thread) noexcept { return thread.Id() >> 4; }
  Bucket& BucketOf(const ThreadLife& thread) noexcept {
    return buckets_[KeyOf(thread) % kBucketCount];
  }

  template <class Predicate>
  static void TakeFrom(Bucket& bucket, Predicate matches, std::vector<Entry>& taken) {
    for (auto entry = bucket.begin(); entry != bucket.end();) {
      if (!matches(*entry)) {
        ++entry;
        continue;
      }
      taken.push_back(std::move(*entry));
      entry = bucket.erase(entry);
    }
  }

  std::array<Bucket, kBucketCount> buckets_;
};

}  // namespace quenra
