#include "EventLogFile.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
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

// The log takes the place of an older one. Any other file is somebody's, perhaps needed by this
// very command: a table, the module, a library.
void RequireEventLogOrNothing(std::u16string_view fileName) {
  constexpr std::string_view kBeginning = R"({"event":")";
  const std::filesystem::path path(NativeFromFileName(fileName));
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return;
  std::string beginning(kBeginning.size(), '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(beginning.data(), static_cast<std::streamsize>(beginning.size()));
  if (file.is_open() && (file.gcount() == 0 || beginning == kBeginning)) return;
  throw UsageError(
      "the event log would replace " + Shown(fileName) + ", which is there and holds no event log",
      kGeneralHelp);
}

}  // namespace

EventLogFile* EventLogFile::current_ = nullptr;

EventLogFile::EventLogFile(std::u16string_view fileName) {
  RequireEventLogOrNothing(fileName);
  file_.open(std::filesystem::path(NativeFromFileName(fileName)), std::ios::binary);
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
