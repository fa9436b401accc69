// The embedded host's row buffer. Without fields until they are set.
#pragma once

#include <memory>

#include "host/CoreSupport/Variant.h"
#include "host/com/ComPtr.h"
#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostRowBuffer.h"

namespace quenra {

class EmbeddedRowBuffer final
    : public Implements<HostRowBuffer, HostRowBufferEdit, HostRowBufferLending> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedRowBuffer"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostRowBuffer; }

  EmbeddedRowBuffer();

  // HostRowBuffer
  HRESULT STDMETHODCALLTYPE GetFields(HostFieldCollection** fields) override;
  HRESULT STDMETHODCALLTYPE GetValue(LONG index, VARIANT* value) override;
  // E_INVALIDARG for a null value. What a VT_BYREF value points at is copied.
  HRESULT STDMETHODCALLTYPE SetValue(LONG index, const VARIANT* value) override;

  // HostRowBufferEdit. E_INVALIDARG for a null collection; nothing changes after a failure.
  HRESULT STDMETHODCALLTYPE SetFields(HostFieldCollection* fields) override;

  // HostRowBufferLending
  HRESULT STDMETHODCALLTYPE LendValues(const VARIANT** values, LONG* count) override;

 private:
  // A negative index is too large as well.
  bool HasField(LONG index) const noexcept { return static_cast<ULONG>(index) < count_; }

  ComPtr<HostFieldCollection> fields_;
  std::unique_ptr<Variant[]> values_;
  ULONG count_ = 0;
};

}  // namespace quenra
