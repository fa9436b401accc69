// The application's event log: what data sources report besides their results.
//
// Events go to one sink that the application sets; without one they are dropped.
//
//   EventLog::SetSink([&](const EventLogRecord& record) { texts.emplace_back(record.text); });
//   EventLog::Write(u"In file a.csv, a value does not fit.");
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "host/HostApi.h"

namespace quenra {

struct EventLogRecord {
  enum class Kind { kBegin, kEnd, kMessage, kError };
  Kind kind = Kind::kMessage;
  int type = 0;                 // begin and end: the event type given to the timer
  int argument = 0;             // begin and end: the timer's last argument
  std::u16string_view name;     // begin and end: the event's name
  std::u16string_view text;     // every kind
  std::u16string_view context;  // begin and end: what the work was done on
  std::uint32_t code = 0;       // error: the HRESULT
  double seconds = 0.0;         // end: the time since the begin event
};

class EventLog {
 public:
  // Called on the thread that reports, one event at a time (under a lock); it must not throw.
  // The views in the record live until the sink returns.
  using Sink = std::function<void(const EventLogRecord&)>;

  // An empty function stops the log.
  QUENRA_HOST_API static void SetSink(Sink sink);

  // A message. Never throws.
  QUENRA_HOST_API static void Write(std::u16string_view message) noexcept;

  // Any event. Never throws.
  QUENRA_HOST_API static void Report(const EventLogRecord& record) noexcept;
};

}  // namespace quenra
