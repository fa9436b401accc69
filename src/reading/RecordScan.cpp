#include "reading/RecordScan.h"

#include <algorithm>

#include "host/CoreSupport/CharacterClasses.h"
#include "reading/ByteBlock.h"
#include "reading/RecordScanKernel.h"
#include "reading/VectorKernels.h"

namespace TextFile {

namespace {

template <class Block>
void Run(const RecordDialect& dialect, RecordScanState& state, std::string_view bytes, bool last) {
  state = RecordScanKernel<Block>(dialect, state, bytes.data()).Take(bytes.size(), last);
}

// Whether the last byte may be the end of a white space character beyond ASCII, in UTF-8 or in a
// code page of one byte a character.
bool MayEndInWhiteSpace(std::string_view text) noexcept {
  const auto last = static_cast<unsigned char>(text.back());
  if (last == 0x85 || last == 0xA0) return true;
  // U+1680, U+2000 to U+205F and U+3000 have three bytes in UTF-8.
  const auto middle = static_cast<unsigned char>(text.size() < 2 ? 0 : text[text.size() - 2]);
  return last < 0xB0 && (middle == 0x80 || middle == 0x81 || middle == 0x9A);
}

}  // namespace

QuoteMeaning MeaningOfQuote(const RecordDialect& dialect, std::string_view before) noexcept {
  if (before.ends_with(dialect.textDelimiter)) return QuoteMeaning::kLiteral;
  const auto isBlank = [&](char byte) {
    return byte != dialect.delimiter && static_cast<unsigned char>(byte) < 0x80 &&
           quenra::IsWhiteSpace(static_cast<unsigned char>(byte));
  };
  while (!before.empty() && isBlank(before.back())) before.remove_suffix(1);
  if (before.empty()) return QuoteMeaning::kUndecided;
  const char last = before.back();
  if (last == dialect.delimiter) return QuoteMeaning::kOpens;
  // A field that goes on behind its closing quote may still be blank.
  if (last == dialect.textDelimiter) return QuoteMeaning::kUndecided;
  if (static_cast<unsigned char>(last) >= 0x80 && MayEndInWhiteSpace(before))
    return QuoteMeaning::kUndecided;
  return QuoteMeaning::kLiteral;
}

RecordScan::RecordScan(const RecordDialect& dialect, Code code) noexcept
    : dialect_(dialect), kernel_(Choose(code)) {
  Begin();
}

RecordScan::Kernel RecordScan::Choose(Code code) noexcept {
  if (code == Code::kPlain) return &Run<PlainBlock>;
  if (code == Code::kBest && HasAvx512Kernels()) return &RunAvx512Scan;
  if (code != Code::kBaseline && HasAvx2Kernels()) return &RunAvx2Scan;
  return &Run<BaselineBlock>;
}

void RecordScan::Begin() noexcept {
  const std::int64_t records = state_.records;
  const bool sawNonAscii = state_.sawNonAscii;
  state_ = {};
  state_.records = records;
  state_.sawNonAscii = sawNonAscii;
  // As if a record had just ended.
  state_.ends = state_.quoteStarts = std::uint64_t{1} << 63;
}

std::size_t RecordScan::Take(std::string_view bytes, bool last) noexcept {
  kernel_(dialect_, state_, bytes, last);
  if (last && !state_.undecided) TakeUnterminated(bytes.substr(state_.recordStart));
  const std::size_t whole = state_.recordStart;
  state_.scanned -= std::min(whole, state_.scanned);
  state_.recordStart = 0;
  return whole;
}

// Takes the record that the end of the file ends.
void RecordScan::TakeUnterminated(std::string_view record) noexcept {
  if (record.empty()) return;
  // One or two quotes are no record; anything longer that begins with one holds text.
  state_.undecided = dialect_.textDelimiter != '\0' && record.size() <= 2 &&
                     record.starts_with(dialect_.textDelimiter);
  if (state_.undecided) return;
  ++state_.records;
  state_.recordStart += record.size();
}

}  // namespace TextFile
