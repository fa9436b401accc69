#include "EventLogFile.h"

#include <filesystem>
#include <utility>

#include "Failures.h"
#include "JsonText.h"
#include "NumberText.h"
#include "ShownText.h"
#include "platform/FileNames.h"

namespace TextTables {

namespace {

using quenra::EventLogRecord;

void AppendMember(Output& output, std::string_view key, std::u16string_view value) {
  output.Append(R"(,")");
  output.Append(key);
  output.Append(R"(":)");
  AppendJsonString(output, value);
}

template <class Number>
void AppendMember(Output& output, std::string_view key, Number value) {
  output.Append(R"(,")");
  output.Append(key);
  output.Append(R"(":)");
  AppendShortest(output, value);
}

// What begin and end events have in common.
void AppendTimerMembers(Output& output, const EventLogRecord& record) {
  AppendMember(output, "type", record.type);
  AppendMember(output, "name", record.name);
  AppendMember(output, "text", record.text);
  AppendMember(output, "context", record.context);
  AppendMember(output, "argument", record.argument);
}

std::string LineOf(const EventLogRecord& record) {
  StringOutput line;
  switch (record.kind) {
    case EventLogRecord::Kind::kBegin:
      line.Append(R"({"event":"begin")");
      AppendTimerMembers(line, record);
      break;
    case EventLogRecord::Kind::kEnd:
      line.Append(R"({"event":"end")");
      AppendTimerMembers(line, record);
      AppendMember(line, "seconds", record.seconds);
      break;
    case EventLogRecord::Kind::kMessage:
      line.Append(R"({"event":"message")");
      AppendMember(line, "text", record.text);
      break;
    case EventLogRecord::Kind::kError:
      line.Append(R"({"event":"error","code":)");
      AppendJsonString(line, HexCode(static_cast<HRESULT>(record.code)));
      AppendMember(line, "text", record.text);
      break;
  }
  line.Append("}\n");
  return line.Take();
}

}  // namespace

EventLogFile* EventLogFile::current_ = nullptr;

EventLogFile::EventLogFile(std::u16string_view fileName)
    : file_(std::filesystem::path(NativeFromFileName(fileName)), std::ios::binary) {
  if (!file_) throw UsageError("cannot write the event log " + Shown(fileName), kGeneralHelp);
  current_ = this;
  quenra::EventLog::SetSink([this](const EventLogRecord& record) { Write(record); });
}

EventLogFile::~EventLogFile() {
  quenra::EventLog::SetSink({});
  current_ = nullptr;
}

void EventLogFile::Write(const EventLogRecord& record) {
  try {
    file_ << LineOf(record) << std::flush;
  } catch (...) {
    // The sink must not throw: the data source's work goes on without this line.
  }
}

MessageWatch::MessageWatch() {
  quenra::EventLog::SetSink([this](const EventLogRecord& record) { Hear(record); });
}

MessageWatch::~MessageWatch() {
  EventLogFile* const file = EventLogFile::current_;
  if (file == nullptr) {
    quenra::EventLog::SetSink({});
    return;
  }
  quenra::EventLog::SetSink([file](const EventLogRecord& record) { file->Write(record); });
}

std::vector<std::u16string> MessageWatch::Take() { return std::exchange(messages_, {}); }

void MessageWatch::Hear(const EventLogRecord& record) {
  if (EventLogFile::current_ != nullptr) EventLogFile::current_->Write(record);
  if (record.kind != EventLogRecord::Kind::kMessage) return;
  try {
    messages_.emplace_back(record.text);
  } catch (...) {
    // As above.
  }
}

}  // namespace TextTables
