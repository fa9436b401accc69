// The ISupportErrorInfo of every object that has an error source.
#pragma once

#include "host/com/TearOff.h"

namespace quenra {

class ErrorInfoImpl final : public TearOff<ErrorInfoImpl, ISupportErrorInfo> {
 public:
  explicit ErrorInfoImpl(Unknown& object) noexcept : TearOff(object) {}

  // S_OK for every interface: whichever method fails, its error may carry a text.
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override;
};

}  // namespace quenra
