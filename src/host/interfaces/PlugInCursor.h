// Walking the rows of a table.
//
//   VARIANT_BOOL finished = VARIANT_FALSE;
//   while (cursor->AtLastRecord(&finished) == S_OK && finished == VARIANT_FALSE) {
//     fast->ReadRecordValuesFast(slots);
//     cursor->AdvanceRecord();
//   }
#pragma once

#include "host/interfaces/HostRowBuffer.h"
#include "host/interfaces/InterfaceId.h"

namespace quenra {

// One value slot of the host. The data source writes `value` alone.
struct HostFieldValue {
  VARIANT value;
  void* hostData[2];  // the host's own
};

// A forward-only cursor that stands on a record from the start.
struct IPlugInCursorHelper : public IUnknown {
  // S_OK, or S_FALSE when the last record has been passed.
  virtual HRESULT STDMETHODCALLTYPE AdvanceRecord() = 0;
  // VARIANT_TRUE once there is no current record.
  virtual HRESULT STDMETHODCALLTYPE AtLastRecord(VARIANT_BOOL* finished) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReadRecordValues(HostRowBuffer* row, LONG* objectId) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReadRecordShape(IUnknown* geometry) = 0;
};

inline constexpr IID IID_IPlugInCursorHelper = {
    0x68006dda, 0xd135, 0x4274, {0x9f, 0x5a, 0x45, 0x1a, 0x9a, 0x4f, 0x8b, 0x13}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInCursorHelper> = IID_IPlugInCursorHelper;

// Fetching the current record into the host's slots.
struct IPlugInFastQueryValues : public IUnknown {
  // `values` is indexed by the entries of the cursor's field map.
  virtual HRESULT STDMETHODCALLTYPE ReadRecordValuesFast(HostFieldValue* values) = 0;
};

inline constexpr IID IID_IPlugInFastQueryValues = {
    0xb869b4f7, 0xf64c, 0x41fb, {0xaa, 0xb2, 0x9e, 0x1f, 0x13, 0xed, 0x48, 0xf7}};
template <>
inline constexpr const IID& kInterfaceId<IPlugInFastQueryValues> = IID_IPlugInFastQueryValues;

}  // namespace quenra
