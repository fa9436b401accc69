// The host's date and time with an offset from UTC.
#pragma once

#include "host/interfaces/InterfaceId.h"

namespace quenra {

// A pair of values: the local date and time, and how far it is ahead of UTC.
struct HostTimestampOffset : public IUnknown {
  // `date` is an OLE date in local time; `offsetMinutes` is positive east of Greenwich.
  virtual HRESULT STDMETHODCALLTYPE SetValue(DATE date, SHORT offsetMinutes) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetDate(DATE* date) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetOffsetMinutes(SHORT* offsetMinutes) = 0;
};

inline constexpr IID IID_HostTimestampOffset = {
    0xbc759665, 0xafa3, 0x4eda, {0x99, 0x61, 0xd1, 0x43, 0x40, 0xa2, 0x82, 0xf4}};
template <>
inline constexpr const IID& kInterfaceId<HostTimestampOffset> = IID_HostTimestampOffset;

}  // namespace quenra
