// Class factories: a new object for every request.
//
//   ComPtr<IClassFactory> factory;
//   factory.Attach(new ClassFactory<TextFileNativeType>());
#pragma once

#include <atomic>

#include "host/com/ComCatch.h"
#include "host/com/ComPtr.h"
#include "host/com/LiveObjects.h"

namespace quenra {

// Starts with one reference, which belongs to the class table. Factories are no live objects: the
// table keeps them as long as the module is loaded, and would never let it go. A host that holds on
// to the module by a factory alone locks the server.
template <class T>
class ClassFactory : public IClassFactory {
 public:
  ClassFactory() = default;
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
    if (result == nullptr) return E_POINTER;
    *result = FindFace(iid);
    if (*result == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  ULONG STDMETHODCALLTYPE AddRef() override {
    return references_.fetch_add(1, std::memory_order_relaxed) + 1;
  }

  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete this;
    return left;
  }

  // Objects of our classes are not aggregated: CLASS_E_NOAGGREGATION with an outer object.
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override
      try {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return MakeObject<T>()->QueryInterface(iid, result);
  } catch (...) {
    return HResultFromCurrentException();
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock != FALSE)
      AddLiveObject();
    else
      RemoveLiveObject();
    return S_OK;
  }

 protected:
  virtual ~ClassFactory() = default;

  // The pointer to the face for `iid`, without a reference; null when there is none.
  virtual void* FindFace(REFIID iid) noexcept {
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory))
      return static_cast<IClassFactory*>(this);
    return nullptr;
  }

 private:
  std::atomic<ULONG> references_{1};
};

}  // namespace quenra
