// Puts values into the host's slots, which hold nothing that needs clearing.
#pragma once

#include <new>
#include <string_view>

#include "host/CoreSupport/OleDays.h"
#include "inference/CellStep.h"
#include "inference/NumberParsing.h"
#include "inference/PlainDate.h"
#include "inference/PlainNumber.h"
#include "platform/OleAutomation.h"
#include "platform/OleText.h"

namespace TextFile {

inline void SetNull(VARIANT& value) noexcept { value.vt = VT_NULL; }

inline void SetDouble(VARIANT& value, double number) noexcept {
  value.dblVal = number;
  value.vt = VT_R8;
}

// Throws std::bad_alloc.
inline void SetText(VARIANT& value, std::u16string_view text) {
  BSTR copy = ::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()));
  if (copy == nullptr) throw std::bad_alloc();
  value.bstrVal = copy;
  value.vt = VT_BSTR;
}

// False, and the type of `value` stays, when the type of the column (kDouble, kInteger or
// kBigInteger) cannot hold the number, or not by this way.
inline bool SetPlainNumber(CellWay way, const PlainNumber& number, VARIANT& value) noexcept {
  switch (way) {
    case CellWay::kDouble:
      if (!PlainDouble(number, value.dblVal)) return false;
      value.vt = VT_R8;
      return true;
    case CellWay::kInteger:
      if (!PlainInteger(number, value.lVal)) return false;
      value.vt = VT_I4;
      return true;
    default:
      if (!PlainInteger(number, value.llVal)) return false;
      value.vt = VT_I8;
      return true;
  }
}

// Of one of the number types. `number` has its value in the member that belongs to the type.
void SetNumber(VARIANT& value, FieldType type, const NumberValue& number) noexcept;

// The same as SetPlainNumber for the bytes of a number that is not plain: one of more digits, or
// with an exponent. False says nothing about the text.
bool SetOtherNumber(CellWay way, char16_t decimalSymbol, std::string_view text,
                    VARIANT& value) noexcept;

// Whether SetPlainNumber would set it.
inline bool IsPlainValue(CellWay way, const PlainNumber& number) noexcept {
  if (way == CellWay::kDouble) return IsPlainDouble(number);
  LONG integer = 0;
  LONGLONG bigInteger = 0;
  return way == CellWay::kInteger ? PlainInteger(number, integer)
                                  : PlainInteger(number, bigInteger);
}

// False, and the type of `value` stays, for a day that does not exist.
inline bool SetPlainDate(const PlainDate& date, VARIANT& value) noexcept {
  if (!quenra::OleDateOf(date.day, date.seconds * 1000, value.date)) return false;
  value.vt = VT_DATE;
  return true;
}

}  // namespace TextFile
