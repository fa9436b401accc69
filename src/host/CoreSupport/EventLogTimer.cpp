#include "host/CoreSupport/EventLogTimer.h"

#include "host/AppEventLog/EventLog.h"

namespace quenra {

EventLogTimer::EventLogTimer(int type, std::u16string_view name, std::u16string_view beginText,
                             std::u16string_view endText, std::u16string_view context, int argument)
    : type_(type),
      argument_(argument),
      name_(name),
      endText_(endText),
      context_(context),
      start_(std::chrono::steady_clock::now()) {
  EventLogRecord record;
  record.kind = EventLogRecord::Kind::kBegin;
  record.type = type_;
  record.argument = argument_;
  record.name = name_;
  record.text = beginText;
  record.context = context_;
  EventLog::Report(record);
}

EventLogTimer::~EventLogTimer() {
  EventLogRecord record;
  record.kind = EventLogRecord::Kind::kEnd;
  record.type = type_;
  record.argument = argument_;
  record.name = name_;
  record.text = endText_;
  record.context = context_;
  record.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  EventLog::Report(record);
}

}  // namespace quenra
