#include "host/com/Unknown.h"

#include "host/com/ClassIDImpl.h"
#include "host/com/ErrorInfoImpl.h"
#include "host/com/LiveObjects.h"
#include "platform/SingleThread.h"

namespace quenra {
namespace {

// References of an object that is being destroyed. What it holds may take and drop a reference to
// it on its way out (an aggregated object does); the count must not reach zero a second time.
constexpr ULONG kDestroying = 0x40000000;

// Both answer the new count. While there is one thread, the bus need not be locked, which takes
// longer than all else that a call does.

ULONG Increment(std::atomic<ULONG>& count) noexcept {
  if (!IsOnlyThread()) return count.fetch_add(1, std::memory_order_relaxed) + 1;
  const ULONG now = count.load(std::memory_order_relaxed) + 1;
  count.store(now, std::memory_order_relaxed);
  return now;
}

ULONG Decrement(std::atomic<ULONG>& count) noexcept {
  if (!IsOnlyThread()) return count.fetch_sub(1, std::memory_order_acq_rel) - 1;
  const ULONG now = count.load(std::memory_order_relaxed) - 1;
  count.store(now, std::memory_order_relaxed);
  return now;
}

}  // namespace

Unknown::Unknown(IUnknown* outer) noexcept : outer_(outer) { AddLiveObject(); }

Unknown::~Unknown() { RemoveLiveObject(); }

HRESULT Unknown::QueryOther(REFIID, void**) noexcept { return E_NOINTERFACE; }

HRESULT Unknown::ControllingQueryInterface(REFIID iid, void** result) noexcept {
  return outer_ != nullptr ? outer_->QueryInterface(iid, result) : OwnQueryInterface(iid, result);
}

ULONG Unknown::ControllingAddRef() noexcept {
  return outer_ != nullptr ? outer_->AddRef() : OwnAddRef();
}

ULONG Unknown::ControllingRelease() noexcept {
  return outer_ != nullptr ? outer_->Release() : OwnRelease();
}

HRESULT Unknown::OwnQueryInterface(REFIID iid, void** result) noexcept {
  if (result == nullptr) return E_POINTER;
  *result = nullptr;
  if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IQUENRAInternalUnknown)) {
    *result = &internal_;
    OwnAddRef();
    return S_OK;
  }
  if (void* const face = FindFace(iid)) {
    *result = face;
    ControllingAddRef();
    return S_OK;
  }
  if (IsEqualIID(iid, IID_IHostClassId)) return ClassIDImpl::Create(*this, result);
  if (IsEqualIID(iid, IID_ISupportErrorInfo) && !ErrorSource().empty())
    return ErrorInfoImpl::Create(*this, result);
  return QueryOther(iid, result);
}

ULONG Unknown::OwnAddRef() noexcept { return Increment(references_); }

ULONG Unknown::OwnRelease() noexcept {
  const ULONG left = Decrement(references_);
  if (left == 0) {
    references_.store(kDestroying, std::memory_order_relaxed);
    delete this;
  }
  return left;
}

HRESULT STDMETHODCALLTYPE Unknown::Internal::QueryInterface(REFIID iid, void** result) {
  return owner_.OwnQueryInterface(iid, result);
}

ULONG STDMETHODCALLTYPE Unknown::Internal::AddRef() { return owner_.OwnAddRef(); }

ULONG STDMETHODCALLTYPE Unknown::Internal::Release() { return owner_.OwnRelease(); }

}  // namespace quenra
