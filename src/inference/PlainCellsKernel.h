// The steps of PlainCells, for any way of reading numbers and dates. Included by the files that
// bring such a way, each compiled for its processors. A Values has
//   static bool ReadNumber(char16_t decimalSymbol, std::string_view text, PlainNumber& number);
//   static bool ReadDate(const DateFieldFormat& format, std::string_view text, PlainDate& date);
#pragma once

#include "host/CoreSupport/CharacterClasses.h"
#include "host/CoreSupport/Variant.h"
#include "inference/CellValues.h"
#include "inference/PlainCells.h"

namespace TextFile {

template <class Values>
class PlainCellsKernel {
 public:
  static const CellStep* Convert(const PlainRow& row, const CellStep* step, const CellStep* end,
                                 const CellFormats& formats, UnitBuffer& text) {
    const std::size_t columns = row.size();
    for (; step != end && step->column < columns; ++step) {
      const std::string_view bytes = row[step->column];
      if (step->wanted) {
        if (!quenra::IsPlain(*step->slot)) quenra::ClearVariant(*step->slot);
        if (!ConvertCell(row, *step, bytes, formats, text)) return step;
      } else if (!Fits(*step, bytes, formats)) {
        return step;
      }
    }
    return step;
  }

 private:
  [[gnu::always_inline]] static inline bool ConvertCell(const PlainRow& row, const CellStep& step,
                                                        std::string_view bytes,
                                                        const CellFormats& formats,
                                                        UnitBuffer& text) {
    if (step.way >= CellWay::kOther) return false;
    if (bytes.empty()) {
      SetNull(*step.slot);
      return true;
    }
    if (step.way == CellWay::kText) {
      ConvertText(row, step.column, bytes, text, *step.slot);
      return true;
    }
    if (step.way == CellWay::kDate) {
      PlainDate date;
      return Values::ReadDate(formats.fields[step.field].dateFormat, bytes, date) &&
             SetPlainDate(date, *step.slot);
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
    PlainNumber number;
    return (Values::ReadNumber(formats.decimalSymbol, bytes, number) &&
            SetPlainNumber(step.way, number, *step.slot)) ||
           SetOtherNumber(step.way, formats.decimalSymbol, bytes, *step.slot);
  }

  // A text that is not empty.
  [[gnu::always_inline]] static inline void ConvertText(const PlainRow& row, std::size_t column,
                                                        std::string_view bytes, UnitBuffer& buffer,
                                                        VARIANT& value) {
    static_assert(kShortField <= kPlainRowPadding);
    char16_t units[kShortField];
    if (bytes.front() > ' ' && bytes.front() != row.textDelimiter() &&
        WidenShortAscii(bytes, units))
      return SetText(value, {units, bytes.size()});
    const std::u16string_view text = row.Text(column, buffer);
    if (quenra::IsBlank(text))
      SetNull(value);
    else
      SetText(value, text);
  }

  // Whether a value that nobody asks for is one of its type, or empty. Its slot is nobody's.
  [[gnu::always_inline]] static inline bool Fits(const CellStep& step, std::string_view bytes,
                                                 const CellFormats& formats) noexcept {
    if (step.way == CellWay::kText || step.way >= CellWay::kOther) return false;
    if (bytes.empty()) return true;
    if (step.way == CellWay::kDate) {
      PlainDate date;
      return Values::ReadDate(formats.fields[step.field].dateFormat, bytes, date) &&
             quenra::IsOleDay(date.day);
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
    PlainNumber number;
    return (Values::ReadNumber(formats.decimalSymbol, bytes, number) &&
            IsPlainValue(step.way, number)) ||
           SetOtherNumber(step.way, formats.decimalSymbol, bytes, *step.slot);
  }
};

}  // namespace TextFile
