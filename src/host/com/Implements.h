// A COM class from the interfaces that it answers.
//
//   class Counter : public Implements<IPlugInRowCount> {
//    public:
//     std::u16string_view ClassName() const noexcept override { return u"Counter"; }
//     HRESULT STDMETHODCALLTYPE CountRows(LONG classIndex, LONG* count) override;
//   };
//
// Answers each interface listed and those that it extends (BaseInterface in
// host/interfaces/InterfaceId.h); Unknown answers the rest. Bases are laid out in the order listed.
#pragma once

#include <type_traits>

#include "host/com/Unknown.h"

namespace quenra {

template <class... Interfaces>
class Implements : public Unknown, public Interfaces... {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
    return ControllingQueryInterface(iid, result);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ControllingAddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return ControllingRelease(); }

 protected:
  explicit Implements(IUnknown* outer = nullptr) noexcept : Unknown(outer) {}

  void* FindFace(REFIID iid) noexcept override {
    void* face = nullptr;
    // The first interface listed wins where two extend the same one.
    static_cast<void>((Matches<Interfaces>(iid, face, static_cast<Interfaces*>(this)) || ...));
    return face;
  }

 private:
  template <class Interface>
  static bool Matches(REFIID iid, void*& face, Interface* candidate) noexcept {
    if constexpr (std::is_same_v<Interface, IUnknown>) {
      return false;  // Unknown answers IUnknown, with the object's identity
    } else {
      if (IsEqualIID(iid, kInterfaceId<Interface>)) {
        face = candidate;
        return true;
      }
      using Base = typename BaseInterface<Interface>::Type;
      return Matches<Base>(iid, face, static_cast<Base*>(candidate));
    }
  }
};

}  // namespace quenra
