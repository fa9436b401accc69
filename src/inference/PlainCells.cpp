#include "inference/PlainCells.h"

#include "inference/PlainCellsKernel.h"

namespace TextFile {

namespace {

struct CommonValues {
  static bool ReadNumber(char16_t decimalSymbol, std::string_view text,
                         PlainNumber& number) noexcept {
    return ReadPlainNumber(decimalSymbol, text, number);
  }
  static bool ReadDate(const DateFieldFormat& format, std::string_view text,
                       PlainDate& date) noexcept {
    return ReadPlainDate(format, text, date);
  }
};

}  // namespace

const PlainCells& CommonPlainCells() noexcept {
  static constexpr PlainCells kCells = {&PlainCellsKernel<CommonValues>::Convert,
                                        &CommonValues::ReadNumber, &CommonValues::ReadDate};
  return kCells;
}

const PlainCells& QuickestPlainCells() noexcept {
  const PlainCells* const vector = VectorPlainCells();
  return vector != nullptr ? *vector : CommonPlainCells();
}

}  // namespace TextFile
