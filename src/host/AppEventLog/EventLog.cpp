#include "host/AppEventLog/EventLog.h"

#include <memory>
#include <utility>

#include "host/CoreSupport/CriticalSection.h"

namespace quenra {
namespace {

struct LogState {
  CriticalSection section;
  std::shared_ptr<const EventLog::Sink> sink;
};

// Never destroyed: objects that report may outlive this library's own static objects.
LogState& State() {
  static auto* const state = new LogState;
  return *state;
}

// Whether this thread is inside the sink. What the sink itself reports is dropped, since it would
// come back to the sink without end.
thread_local bool insideSink = false;

class InsideSink {
 public:
  InsideSink() noexcept { insideSink = true; }
  ~InsideSink() { insideSink = false; }
  InsideSink(const InsideSink&) = delete;
  InsideSink& operator=(const InsideSink&) = delete;
};

}  // namespace

void EventLog::SetSink(Sink sink) {
  std::shared_ptr<const Sink> next;
  if (sink) next = std::make_shared<const Sink>(std::move(sink));
  {
    LogState& state = State();
    const AutoLock lock(state.section);
    state.sink.swap(next);
  }
  // The old sink goes here, outside the lock: its destructor is the application's.
}

void EventLog::Write(std::u16string_view message) noexcept {
  EventLogRecord record;
  record.text = message;
  Report(record);
}

void EventLog::Report(const EventLogRecord& record) noexcept {
  if (insideSink) return;
  try {
    LogState& state = State();
    const AutoLock lock(state.section);
    // A sink may set another one: this holds it until it returns.
    const std::shared_ptr<const Sink> sink = state.sink;
    if (!sink) return;
    const InsideSink mark;
    (*sink)(record);
  } catch (...) {
    // A log that fails must not fail the work that it tells of.
  }
}

}  // namespace quenra
