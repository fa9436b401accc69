// What every COM object of ours has in common: its reference count, its place in the module's count
// of live objects, aggregation, its class, and the source of its error information.
//
// A class derives from Implements<Interfaces...> (Implements.h), which derives from this:
//
//   class Widget : public Implements<IWidget> {
//    public:
//     std::u16string_view ClassName() const noexcept override { return u"Widget"; }
//     const CLSID* ClassId() const noexcept override { return &CLSID_Widget; }
//     HRESULT STDMETHODCALLTYPE Turn(LONG degrees) override;
//   };
//
//   const ComPtr<Widget> widget = MakeObject<Widget>();
//
// The object's identity is its internal unknown. Without an outer object every face counts on it;
// with one, the faces hand IUnknown's calls to the outer object and the internal unknown alone
// belongs to whoever aggregates.
#pragma once

#include <atomic>
#include <string_view>

#include "host/interfaces/HostInternalUnknown.h"

namespace quenra {

class Unknown {
 public:
  Unknown(const Unknown&) = delete;
  Unknown& operator=(const Unknown&) = delete;

  // The object's own unknown, whatever aggregates it. No reference is taken.
  IQUENRAInternalUnknown* InternalUnknown() noexcept { return &internal_; }

  // The unknown that decides over the object's life: the outer object, else its own. No reference
  // is taken.
  IUnknown* ControllingUnknown() noexcept { return outer_ != nullptr ? outer_ : &internal_; }

  // The object's own references at this moment.
  ULONG ReferenceCount() const noexcept { return references_.load(); }

  // The class's name, for diagnosis.
  virtual std::u16string_view ClassName() const noexcept = 0;

  // The class's identifier, valid for the module's life; null when the class has none.
  virtual const CLSID* ClassId() const noexcept { return nullptr; }

  // Where the object's error information comes from. An empty text means that the object has none,
  // and that ISupportErrorInfo is refused.
  virtual std::u16string_view ErrorSource() const noexcept { return {}; }
  virtual std::u16string_view HelpFile() const noexcept { return {}; }

 protected:
  // Starts with one reference, which belongs to the creator. `outer` outlives the object, which
  // takes no reference to it.
  explicit Unknown(IUnknown* outer = nullptr) noexcept;
  virtual ~Unknown();

  // The pointer to the face for `iid`, without a reference; null when the class has no such face.
  virtual void* FindFace(REFIID iid) noexcept = 0;

  // Asked for what neither the class nor the base answers. `*result` is null on entry. To be
  // overridden by a class that hands such requests on.
  virtual HRESULT QueryOther(REFIID iid, void** result) noexcept;

  // IUnknown's calls as the faces of the object see them.
  HRESULT ControllingQueryInterface(REFIID iid, void** result) noexcept;
  ULONG ControllingAddRef() noexcept;
  ULONG ControllingRelease() noexcept;

 private:
  class Internal final : public IQUENRAInternalUnknown {
   public:
    explicit Internal(Unknown& owner) noexcept : owner_(owner) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

   private:
    Unknown& owner_;
  };

  HRESULT OwnQueryInterface(REFIID iid, void** result) noexcept;
  ULONG OwnAddRef() noexcept;
  ULONG OwnRelease() noexcept;

  std::atomic<ULONG> references_{1};
  Internal internal_{*this};
  IUnknown* const outer_;
};

}  // namespace quenra
