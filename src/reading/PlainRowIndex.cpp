#include "reading/PlainRowIndex.h"

#include <algorithm>

#include "reading/ByteBlock.h"
#include "reading/PlainRowKernel.h"
#include "reading/VectorKernels.h"

namespace TextFile {

namespace {

template <class Block>
void IndexRows(const PlainRowDialect& dialect, PlainRowState& state) {
  PlainRowKernel<Block>(dialect, state).TakeBlocks();
}

}  // namespace

PlainRowIndex::PlainRowIndex(const PlainRowDialect& dialect, Code code) noexcept
    : dialect_(dialect), kernel_(Choose(code)) {}

PlainRowIndex::Kernel PlainRowIndex::Choose(Code code) noexcept {
  if (code == Code::kPlain) return &IndexRows<PlainBlock>;
  if (code == Code::kBest && HasAvx512Kernels()) return &IndexRowsAvx512;
  if (code != Code::kBaseline && HasAvx2Kernels()) return &IndexRowsAvx2;
  return &IndexRows<BaselineBlock>;
}

// Goes on with the rows found before, if one of them begins at `begin`.
bool PlainRowIndex::GoTo(const Source& source, const char* begin) noexcept {
  if (source.version != version_ || source.asciiOnly != state_.asciiOnly) return false;
  while (begin_ < begin && row_ < state_.rowCount) {
    firstBound_ = state_.rows[row_++];
    begin_ = state_.bounds[firstBound_] + 1;
  }
  return begin_ == begin;
}

void PlainRowIndex::Restart(const Source& source, const char* begin) {
  version_ = source.version;
  state_ = {};
  state_.next = begin_ = begin;
  state_.end = source.bytes.data() + source.bytes.size();
  state_.asciiOnly = source.asciiOnly;
  state_.bounds = bounds_.get();
  state_.rows = rows_.get();
  MakePlaces();
  state_.boundCount = 1;
  row_ = firstBound_ = 0;
}

// Looks for rows behind those taken so far. False when none comes.
bool PlainRowIndex::FindRow() {
  if (state_.stopped) return false;
  // What has been found of the next row is kept.
  std::copy(state_.bounds + firstBound_, state_.bounds + state_.boundCount, state_.bounds);
  state_.boundCount -= firstBound_;
  state_.rowCount = row_ = firstBound_ = 0;
  while (state_.rowCount == 0 && !state_.stopped && state_.next < state_.end) {
    MakePlaces();
    kernel_(dialect_, state_);
  }
  return state_.rowCount != 0;
}

// For what a kernel finds, and one bound in front of it.
void PlainRowIndex::MakePlaces() {
  if (rows_ == nullptr) {
    rows_ = std::make_unique_for_overwrite<std::uint32_t[]>(kPlaces);
    state_.rows = rows_.get();
  }
  if (boundCapacity_ - state_.boundCount > kPlaces) return;
  const std::size_t capacity = 2 * boundCapacity_ + kPlaces + 1;
  auto larger = std::make_unique_for_overwrite<PlainRow::Bound[]>(capacity);
  std::copy_n(state_.bounds, state_.boundCount, larger.get());
  bounds_ = std::move(larger);
  boundCapacity_ = capacity;
  state_.bounds = bounds_.get();
}

}  // namespace TextFile
