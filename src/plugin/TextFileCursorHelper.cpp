#include "plugin/TextFileCursorHelper.h"

#include <utility>
#include <vector>

#include "host/com/ComCatch.h"
#include "plugin/TextFileErrors.h"
#include "resources/ResourceStrings.h"

namespace quenra {
namespace {

bool HasNoRecord(const TextFile::Reader& reader) noexcept {
  return reader.record().empty() && (!reader.IsOpen() || reader.StreamAtEnd());
}

}  // namespace

TextFileCursorHelper::TextFileCursorHelper(
    std::shared_ptr<const TextFile::TextDatasetDescription> table, TextFile::ReaderPtr reader,
    FieldMap map)
    : map_(std::move(map)),
      finished_(HasNoRecord(*reader)),
      reader_(std::move(reader)),
      converter_(std::move(table), &LoadResourceString, TextFile::RowConverter::Reported::kNull) {}

HRESULT STDMETHODCALLTYPE TextFileCursorHelper::AdvanceRecord() try {
  if (onPlainRow_ && plainRow_.GoOn()) return S_OK;
  if (!finished_) {
    onPlainRow_ = reader_->ReadPlainRow(plainRow_);
    finished_ = !onPlainRow_ && !reader_->ReadRecord();
  }
  return finished_ ? S_FALSE : S_OK;
} catch (...) {
  finished_ = true;
  return HResultFromCurrentException();
}

HRESULT STDMETHODCALLTYPE TextFileCursorHelper::AtLastRecord(VARIANT_BOOL* finished) {
  if (finished == nullptr) return E_POINTER;
  *finished = finished_ ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE TextFileCursorHelper::ReadRecordValues(HostRowBuffer*, LONG* objectId) {
  return objectId == nullptr ? E_POINTER : E_FAIL;
}

HRESULT STDMETHODCALLTYPE TextFileCursorHelper::ReadRecordShape(IUnknown* geometry) {
  return geometry == nullptr ? E_INVALIDARG : E_FAIL;
}

HRESULT STDMETHODCALLTYPE TextFileCursorHelper::ReadRecordValuesFast(HostFieldValue* values) try {
  if (values == nullptr) return E_POINTER;
  if (values != values_) AimAt(values);
  if (onPlainRow_)
    converter_.Convert(plainRow_);
  else
    converter_.Convert(reader_->record());
  if (!converter_.messages().empty()) ChainMessages();
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

// A value that does not fit never stops the cursor: the host finds the text in the error chain.
void TextFileCursorHelper::ChainMessages() const {
  std::vector<MessageText> messages;
  for (const auto& [field, message] : converter_.messages())
    if (SlotOf(field) >= 0) messages.push_back(message);
  ChainErrorsWithoutSource(kFieldValueError, messages);
}

// Only -1 is agreed upon for fields that are not wanted, but no other negative entry can name a
// slot either.
LONG TextFileCursorHelper::SlotOf(std::size_t field) const noexcept {
  return field < map_.size() ? map_[static_cast<ULONG>(field)] : -1;
}

// Hosts keep their slots for all rows, so that this happens once.
void TextFileCursorHelper::AimAt(HostFieldValue* values) noexcept {
  for (std::size_t field = 0; field < converter_.fieldCount(); ++field) {
    const LONG slot = SlotOf(field);
    converter_.SetSlot(field, slot >= 0 ? &values[slot].value : nullptr);
  }
  values_ = values;
}

}  // namespace quenra
