// Walks the records of one table.
#pragma once

#include <memory>

#include "host/com/Implements.h"
#include "host/interfaces/PlugInCursor.h"
#include "inference/RowConverter.h"
#include "plugin/FieldMap.h"
#include "reading/ReaderFactory.h"

namespace quenra {

// Owns its reader, so cursors of one table do not disturb each other, and shares the table's
// description, so that it outlives the object that it came from.
class TextFileCursorHelper final : public Implements<IPlugInCursorHelper, IPlugInFastQueryValues> {
 public:
  // `reader` stands on the first data record; `map` is usable.
  TextFileCursorHelper(std::shared_ptr<const TextFile::TextDatasetDescription> table,
                       TextFile::ReaderPtr reader, FieldMap map);

  std::u16string_view ClassName() const noexcept override { return u"TextFileCursorHelper"; }

  // S_FALSE once the last record has been passed, for good, even when the file grows. A failure of
  // the file ends the cursor too, so that no host waits for the end in vain.
  HRESULT STDMETHODCALLTYPE AdvanceRecord() override;
  HRESULT STDMETHODCALLTYPE AtLastRecord(VARIANT_BOOL* finished) override;

  // Rows of objects and shapes are not served: E_FAIL.
  HRESULT STDMETHODCALLTYPE ReadRecordValues(HostRowBuffer* row, LONG* objectId) override;
  HRESULT STDMETHODCALLTYPE ReadRecordShape(IUnknown* geometry) override;

  // Fills the slots that the field map names. Slots of fields that the record lacks stay as they
  // are; a value that is reported as not fitting arrives as VT_NULL, with the report chained.
  HRESULT STDMETHODCALLTYPE ReadRecordValuesFast(HostFieldValue* values) override;

 private:
  LONG SlotOf(std::size_t field) const noexcept;
  void ChainMessages() const;
  void AimAt(HostFieldValue* values) noexcept;

  const FieldMap map_;
  bool finished_;
  const TextFile::ReaderPtr reader_;
  TextFile::PlainRow plainRow_;
  bool onPlainRow_ = false;  // the current record is plainRow_, or else the reader's
  TextFile::RowConverter converter_;
  HostFieldValue* values_ = nullptr;  // whose slots the converter fills
};

}  // namespace quenra
