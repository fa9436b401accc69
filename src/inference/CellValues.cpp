#include "inference/CellValues.h"

namespace TextFile {

void SetNumber(VARIANT& value, FieldType type, const NumberValue& number) noexcept {
  switch (type) {
    case FieldType::kSmallInteger:
      value.vt = VT_I2;
      value.iVal = static_cast<SHORT>(number.integer);
      break;
    case FieldType::kInteger:
      value.vt = VT_I4;
      value.lVal = static_cast<LONG>(number.integer);
      break;
    case FieldType::kBigInteger:
      value.vt = VT_I8;
      value.llVal = number.integer;
      break;
    case FieldType::kSingle:
      value.vt = VT_R4;
      value.fltVal = number.single;
      break;
    default:
      SetDouble(value, number.real);
      break;
  }
}

bool SetOtherNumber(CellWay way, char16_t decimalSymbol, std::string_view text,
                    VARIANT& value) noexcept {
  const FieldType type = way == CellWay::kDouble    ? FieldType::kDouble
                         : way == CellWay::kInteger ? FieldType::kInteger
                                                    : FieldType::kBigInteger;
  NumberValue number;
  if (!NumberFormat::ConvertBytes(decimalSymbol, text, type, number)) return false;
  SetNumber(value, type, number);
  return true;
}

}  // namespace TextFile
