// A pair of begin and end events around a piece of work.
//
//   const EventLogTimer timer(2, u"Workshop.Table.Open", u"start", u"end", u"/data/a.csv", 0);
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "host/HostApi.h"

namespace quenra {

// Hands a begin event to the event log when it is made and an end event when it goes, on every
// path out of the scope. The texts are copied.
class EventLogTimer {
 public:
  QUENRA_HOST_API EventLogTimer(int type, std::u16string_view name, std::u16string_view beginText,
                                std::u16string_view endText, std::u16string_view context,
                                int argument);
  QUENRA_HOST_API ~EventLogTimer();
  EventLogTimer(const EventLogTimer&) = delete;
  EventLogTimer& operator=(const EventLogTimer&) = delete;

 private:
  int type_;
  int argument_;
  std::u16string name_;
  std::u16string endText_;
  std::u16string context_;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace quenra
