// The event log as a file of JSON lines.
#pragma once

#include <fstream>
#include <string_view>

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

  std::ofstream file_;
};

}  // namespace TextTables
