#include "host/embedded/EmbeddedTimestampOffset.h"

#include "host/embedded/MemberAccess.h"

namespace quenra {

HRESULT STDMETHODCALLTYPE EmbeddedTimestampOffset::SetValue(DATE date, SHORT offsetMinutes) {
  date_ = date;
  offsetMinutes_ = offsetMinutes;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE EmbeddedTimestampOffset::GetDate(DATE* date) {
  return CopyOut(date_, date);
}

HRESULT STDMETHODCALLTYPE EmbeddedTimestampOffset::GetOffsetMinutes(SHORT* offsetMinutes) {
  return CopyOut(offsetMinutes_, offsetMinutes);
}

}  // namespace quenra
