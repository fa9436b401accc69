// Takes down what reaches the event log while it lives.
//
//   EventRecorder events;
//   ...
//   EXPECT_EQ(events.at(0).name, u"...");
#pragma once

#include <string>
#include <vector>

#include "host/AppEventLog/EventLog.h"

class EventRecorder {
 public:
  struct Event {
    quenra::EventLogRecord::Kind kind;
    int type;
    int argument;
    std::u16string name;
    std::u16string text;
    std::u16string context;
  };

  EventRecorder() {
    quenra::EventLog::SetSink([this](const quenra::EventLogRecord& record) {
      events_.push_back({record.kind, record.type, record.argument, std::u16string(record.name),
                         std::u16string(record.text), std::u16string(record.context)});
    });
  }
  EventRecorder(const EventRecorder&) = delete;
  EventRecorder& operator=(const EventRecorder&) = delete;
  ~EventRecorder() { quenra::EventLog::SetSink({}); }

  std::size_t size() const noexcept { return events_.size(); }
  const Event& at(std::size_t index) const { return events_.at(index); }

 private:
  std::vector<Event> events_;
};
