#include "reading/Reader.h"

#include "inference/TypeInference.h"
#include "reading/UnitSearch.h"

namespace TextFile {

Reader::Reader(const TextDatasetDescription& description) {
  if (description.openStream)
    description.openStream(stream_);
  else
    stream_.Open(description.path, TextLineStream::kTerminateLines);
  if (description.options.recordTerminator != stream_.lineDelimiter()) SwitchRecordTerminator();
}

void Reader::Rewind() {
  stream_.Rewind();
  lineUsedUp_ = true;
}

void Reader::SkipRecords(RecordScan& scan) {
  // A line may hold several records; the scan knows nothing of what is left of one.
  if (lineUsedUp_) stream_.SkipRecords(scan);
}

void Reader::ReadHeader(TypeInference& inference, SchemaOptions& options) {
  const HeaderReading first = inference.ReadHeader();
  if (!first.foundRecord || !first.reachedEnd) return;

  // What the file does not have cannot cut it: the second reading would give the first one's
  // record.
  if (!stream_.MayHold(recordTerminator() == '\n' ? '\r' : '\n')) return;
  SwitchRecordTerminator();
  inference.ForgetHeader();
  const HeaderReading second = inference.ReadHeader();
  // Without a record now, a file of nothing but the other line ends has none.
  if (second.foundRecord ? !second.reachedEnd : first.onlyLineEnds) {
    options.recordTerminator = recordTerminator();
    return;
  }
  SwitchRecordTerminator();
  inference.ForgetHeader();
  inference.ReadHeader();
}

bool Reader::CanReleaseLine() const noexcept {
  if (!lineUsedUp_) return false;
  const char16_t* const begin = line_.data();
  for (std::size_t i = 0; i < record_.size(); ++i)
    if (record_[i].data() < begin || record_[i].data() + record_[i].size() > begin + line_.size())
      return false;
  return true;
}

std::u16string Reader::ReleaseLine() {
  record_ = Record();
  return line_.Release();
}

bool Reader::ReadNextLine() {
  if (!record_.empty() || !record_.OpenField().empty()) {
    record_.KeepLine(line_.View());
    recordIsInOneLine_ = false;
  }
  if (!stream_.ReadLine(line_)) return false;
  line_.Pad(kSearchPadding);
  cursor_ = 0;
  lineUsedUp_ = false;
  return true;
}

}  // namespace TextFile
