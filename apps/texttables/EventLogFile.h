// The event log as a file of JSON lines.
#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/AppEventLog/EventLog.h"

namespace TextTables {

// From its construction to its end every event is a line of the file. Each line is written at
// once, so that the file tells the story up to a crash.
class EventLogFile {
 public:
  // Replaces the file. Throws UsageError when it cannot be written.
  explicit EventLogFile(std::u16string_view fileName);
  ~EventLogFile();
  EventLogFile(const EventLogFile&) = delete;
  EventLogFile& operator=(const EventLogFile&) = delete;

 private:
  void Write(const quenra::EventLogRecord& record);

  static EventLogFile* current_;
  friend class MessageWatch;

  std::ofstream file_;
};

// Hears the messages beside the file. The sink has one place: one watch at a time, made after the
// file and gone before it.
class MessageWatch {
 public:
  MessageWatch();
  ~MessageWatch();
  MessageWatch(const MessageWatch&) = delete;
  MessageWatch& operator=(const MessageWatch&) = delete;

  // The messages since the last time. Costs next to nothing when there are none: it is called for
  // every row.
  std::vector<std::u16string> Take();

 private:
  void Hear(const quenra::EventLogRecord& record);

  std::vector<std::u16string> messages_;
};

}  // namespace TextTables
