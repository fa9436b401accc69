// The embedded host's date and time with an offset. Zeros until it is set.
#pragma once

#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostTimestampOffset.h"

namespace quenra {

class EmbeddedTimestampOffset final : public Implements<HostTimestampOffset> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedTimestampOffset"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostTimestampOffset; }

  HRESULT STDMETHODCALLTYPE SetValue(DATE date, SHORT offsetMinutes) override;
  HRESULT STDMETHODCALLTYPE GetDate(DATE* date) override;
  HRESULT STDMETHODCALLTYPE GetOffsetMinutes(SHORT* offsetMinutes) override;

 private:
  DATE date_ = 0;
  SHORT offsetMinutes_ = 0;
};

}  // namespace quenra
