#include "plugin/TextFileCursorHelper.h"

#include <algorithm>
#include <utility>

#include "host/CoreSupport/Variant.h"
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
      converter_(std::move(table), &LoadResourceString) {
  for (std::size_t field = 0; field < converter_.fieldCount(); ++field)
    converter_.SetWanted(field, field < map_.size() && map_[static_cast<ULONG>(field)] >= 0);
}

HRESULT STDMETHODCALLTYPE TextFileCursorHelper::AdvanceRecord() try {
  if (!finished_) finished_ = !reader_->ReadRecord();
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
  const std::size_t converted = converter_.Convert(reader_->record());
  const std::size_t count = std::min<std::size_t>(converted, map_.size());
  for (std::size_t field = 0; field < count; ++field) {
    // Only -1 is agreed upon, but no other negative entry can name a slot either.
    const LONG slot = map_[static_cast<ULONG>(field)];
    if (slot >= 0) StoreValue(field, values[slot].value);
  }
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

void TextFileCursorHelper::StoreValue(std::size_t field, VARIANT& slot) {
  ClearVariant(slot);
  const std::u16string* const message = converter_.MessageOf(field);
  if (message == nullptr) {
    converter_.MoveValue(field, slot);
    return;
  }
  slot.vt = VT_NULL;
  // A value that does not fit never stops the cursor: the host finds the text in the error chain.
  ChainTextFileError(kFieldValueError, *message);
}

}  // namespace quenra
