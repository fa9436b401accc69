// An interface that an object answers through a small object of its own.
//
// The tear-off counts its own references and keeps the object alive. It answers the one interface
// itself; every other question, IUnknown included, goes to the object, so that identity holds.
#pragma once

#include <atomic>
#include <new>

#include "host/com/ComPtr.h"
#include "host/com/LiveObjects.h"
#include "host/com/Unknown.h"

namespace quenra {

// `Derived` is the class itself, with a constructor that takes the object.
template <class Derived, class Interface>
class TearOff : public Interface {
 public:
  TearOff(const TearOff&) = delete;
  TearOff& operator=(const TearOff&) = delete;

  // `*result` receives the interface, with a reference for the caller; null and E_OUTOFMEMORY when
  // memory is exhausted.
  static HRESULT Create(Unknown& object, void** result) noexcept {
    auto* const tearOff = new (std::nothrow) Derived(object);
    *result = static_cast<Interface*>(tearOff);
    return tearOff != nullptr ? S_OK : E_OUTOFMEMORY;
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
    if (!IsEqualIID(iid, kInterfaceId<Interface>)) return keepAlive_->QueryInterface(iid, result);
    if (result == nullptr) return E_POINTER;
    *result = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }

  ULONG STDMETHODCALLTYPE AddRef() override {
    return references_.fetch_add(1, std::memory_order_relaxed) + 1;
  }

  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete static_cast<Derived*>(this);
    return left;
  }

 protected:
  explicit TearOff(Unknown& object) noexcept
      : object_(object), keepAlive_(object.ControllingUnknown()) {
    AddLiveObject();
  }
  ~TearOff() { RemoveLiveObject(); }

  Unknown& object() const noexcept { return object_; }

 private:
  std::atomic<ULONG> references_{1};
  Unknown& object_;
  const ComPtr<IUnknown> keepAlive_;
};

}  // namespace quenra
