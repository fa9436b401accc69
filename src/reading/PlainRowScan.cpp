#include "reading/PlainRowScan.h"

#include "reading/ByteBlock.h"
#include "reading/PlainRowKernel.h"
#include "reading/PlainRowScanVector.h"
#include "reading/RecordScanVector.h"

namespace TextFile {

namespace {

template <class Block>
PlainRowEnd TakePlainRow(const PlainRowDialect& dialect, std::string_view bytes, PlainRow& row) {
  return PlainRowKernel<Block>(dialect, bytes).Take(row);
}

}  // namespace

PlainRowScan::PlainRowScan(const PlainRowDialect& dialect, Code code) noexcept
    : dialect_(dialect), kernel_(Choose(code)) {}

PlainRowScan::Kernel PlainRowScan::Choose(Code code) noexcept {
  if (code == Code::kPlain) return &TakePlainRow<PlainBlock>;
  if (code == Code::kBest && HasAvx512Scan()) return &TakePlainRowAvx512;
  if (code != Code::kBaseline && HasAvx2Scan()) return &TakePlainRowAvx2;
  return &TakePlainRow<BaselineBlock>;
}

}  // namespace TextFile
