// Class factories that keep one instance a thread.
//
//   factory->CreateInstance(nullptr, IID_IUnknown, &first);
//   factory->CreateInstance(nullptr, IID_IUnknown, &second);  // the same object on this thread
#pragma once

#include <vector>

#include "host/CoreSupport/CriticalSection.h"
#include "host/interfaces/HostInternalUnknown.h"
#include "platform/ThreadLife.h"
#include "server/ClassFactory.h"
#include "server/ThreadTable.h"

namespace quenra {

// The instance stays until DropUnusedInstance finds that nobody but the factory holds it.
template <class T>
class SingletonClassFactory final : public ClassFactory<T>, public ISingleton {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
    return ClassFactory<T>::QueryInterface(iid, result);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ClassFactory<T>::AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return ClassFactory<T>::Release(); }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override
      try {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return InstanceOfThisThread()->QueryInterface(iid, result);
  } catch (...) {
    return HResultFromCurrentException();
  }

  HRESULT STDMETHODCALLTYPE DropUnusedInstance() override try {
    const ThreadLife self = ThreadLife::OfThisThread();
    DropUnused([&self](const ThreadLife& thread) { return thread == self || thread.HasEnded(); });
    return S_OK;
  } catch (...) {
    return HResultFromCurrentException();
  }

 protected:
  ~SingletonClassFactory() override { DropUnusedInstance(); }

  void* FindFace(REFIID iid) noexcept override {
    if (IsEqualIID(iid, IID_ISingleton)) return static_cast<ISingleton*>(this);
    return ClassFactory<T>::FindFace(iid);
  }

 private:
  using Entry = typename ThreadTable<T>::Entry;

  // Creates the instance under the lock: no thread is looked up by another one, but the table is
  // one for all of them.
  ComPtr<T> InstanceOfThisThread() {
    const ThreadLife thread = ThreadLife::OfThisThread();
    const AutoLock lock(section_);
    if (const Entry* const known = table_.Find(thread)) return known->instance;
    // A thread that has ended cannot ask for its instance to be dropped. What such threads left
    // goes before another one joins, so the table is no longer than the threads that live.
    DropUnused([](const ThreadLife& other) { return other.HasEnded(); });
    ComPtr<T> instance = MakeObject<T>();
    const ULONG unusedCount = instance->ReferenceCount();
    table_.Insert({thread, instance, unusedCount});
    return instance;
  }

  // Lets go of the instances of the threads that `concerns` accepts and that nobody else holds.
  template <class Predicate>
  void DropUnused(Predicate concerns) {
    const AutoLock lock(section_);
    const std::vector<Entry> dropped = table_.TakeIf([&concerns](const Entry& entry) {
      return entry.instance->ReferenceCount() == entry.unusedCount && concerns(entry.thread);
    });
  }

  CriticalSection section_;
  ThreadTable<T> table_;
};

}  // namespace quenra
