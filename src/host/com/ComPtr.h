// Holds one reference to a COM object.
//
//   ComPtr<HostArray> tables;
//   const HRESULT result = workspace->EnumerateDatasets(kDatasetTypeAny, tables.Receive());
//   const auto creation = workspace.As<IPlugInCreateDataset>();  // empty when it does not answer
#pragma once

#include <cstddef>
#include <utility>

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// `T` is an interface or a class of ours. Moves leave the source empty.
template <class T>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor): `pointer = nullptr`
  // Takes a reference of its own; null is allowed.
  explicit ComPtr(T* object) noexcept : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ~ComPtr() { Reset(); }

  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  T* Get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  // Lets go of the reference.
  void Reset() noexcept {
    // Emptied first: the object's end may come back to whoever owns this pointer.
    if (T* const object = std::exchange(object_, nullptr)) object->Release();
  }

  // Lets go of the reference, and offers the place for a call that answers a new one.
  T** Receive() noexcept {
    Reset();
    return &object_;
  }
  void** ReceiveVoid() noexcept { return reinterpret_cast<void**>(Receive()); }

  // Takes over a reference that the caller owns.
  void Attach(T* object) noexcept {
    Reset();
    object_ = object;
  }

  // Hands the reference over to the caller.
  [[nodiscard]] T* Detach() noexcept { return std::exchange(object_, nullptr); }

  // Another interface of the object. `*result` is null after a failure; E_POINTER when this is
  // empty. The caller releases the result.
  template <class Other>
  HRESULT QueryInterface(Other** result) const noexcept {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (object_ == nullptr) return E_POINTER;
    return object_->QueryInterface(kInterfaceId<Other>, reinterpret_cast<void**>(result));
  }

  // Another interface of the object; empty when there is none, or no object.
  template <class Other>
  ComPtr<Other> As() const noexcept {
    ComPtr<Other> result;
    if (FAILED(QueryInterface(result.Receive()))) result.Reset();
    return result;
  }

  friend bool operator==(const ComPtr& left, const ComPtr& right) noexcept {
    return left.object_ == right.object_;
  }

 private:
  T* object_ = nullptr;
};

// Another interface of `object` (null allowed); empty when there is none.
template <class Other, class T>
ComPtr<Other> QueryFor(T* object) noexcept {
  ComPtr<Other> result;
  if (object != nullptr &&
      FAILED(object->QueryInterface(kInterfaceId<Other>, result.ReceiveVoid())))
    result.Reset();
  return result;
}

// A new object of one of our own classes, which start with one reference. Throws what the
// constructor throws.
template <class T, class... Arguments>
ComPtr<T> MakeObject(Arguments&&... arguments) {
  ComPtr<T> result;
  result.Attach(new T(std::forward<Arguments>(arguments)...));
  return result;
}

}  // namespace quenra
