#include "reading/Reader.h"

#include "inference/TypeInference.h"

namespace TextFile {

Reader::Reader(const TextDatasetDescription& description) {
  stream_.Open(description.path, TextLineStream::kTerminateLines);
  if (description.options.recordTerminator != stream_.lineDelimiter()) SwitchRecordTerminator();
}

void Reader::Rewind() {
  stream_.Rewind();
  lineUsedUp_ = true;
}

void Reader::ReadHeader(TypeInference& inference, SchemaOptions& options) {
  const HeaderReading first = inference.ReadHeader();
  if (!first.foundRecord || !first.reachedEnd) return;

  SwitchRecordTerminator();
  inference.ForgetHeader();
  const HeaderReading second = inference.ReadHeader();
  if (second.foundRecord && !second.reachedEnd) {
    options.recordTerminator = recordTerminator();
    return;
  }
  SwitchRecordTerminator();
  inference.ForgetHeader();
  inference.ReadHeader();
}

bool Reader::TakeCharacter(char16_t& unit) {
  if (lineUsedUp_) {
    if (!stream_.ReadLine(line_)) return false;
    cursor_ = 0;
    lineUsedUp_ = false;
  }
  unit = line_[cursor_];
  if (unit != u'\0') {
    ++cursor_;
    return true;
  }
  unit = TerminatorUnit();
  lineUsedUp_ = true;
  return true;
}

char16_t Reader::PeekCharacter() const noexcept {
  const char16_t unit = lineUsedUp_ ? u'\0' : line_[cursor_];
  return unit != u'\0' ? unit : TerminatorUnit();
}

}  // namespace TextFile
