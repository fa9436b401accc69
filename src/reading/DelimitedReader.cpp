#include "reading/DelimitedReader.h"

#include <bit>
#include <string_view>

#include "host/CoreSupport/CharacterClasses.h"
#include "inference/TypeInference.h"
#include "platform/ProcessorClones.h"
#include "reading/UnitSearch.h"

namespace TextFile {

namespace {

constexpr char16_t kCandidates[] = {u',', u';', u'\t', u'|', u' '};

bool EndsLines(char16_t unit) noexcept { return unit == u'\n' || unit == u'\r'; }

// Whether a character is a byte of its own wherever it stands.
bool IsByte(char16_t unit) noexcept { return unit != 0 && unit < 0x80; }

// Whether numbers and dates may have the character: as a text delimiter it could not be told from
// the value that it stands around.
bool IsInValues(char16_t unit) noexcept {
  const char16_t lower = unit | 0x20;
  return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'z') ||
         std::u16string_view(u"+-.,:/").find(unit) != std::u16string_view::npos;
}

}  // namespace

DelimitedReader::DelimitedReader(const TextDatasetDescription& description)
    : Reader(description),
      delimiter_(description.options.delimiter),
      textDelimiter_(description.options.textDelimiter) {
  // Lines of such files are not only ended by zeros, or what ends them would be a delimiter, or a
  // quote would be taken for one.
  if (LinesMayHoldTerminator() || EndsLines(delimiter_) || EndsLines(textDelimiter_))
    SplitExactly();
  else if (IsByte(delimiter_) && delimiter_ != textDelimiter_ &&
           (textDelimiter_ == 0 || (IsByte(textDelimiter_) && !IsInValues(textDelimiter_))))
    plainRows_.emplace(PlainRowDialect{.delimiter = static_cast<char>(delimiter_),
                                       .textDelimiter = static_cast<char>(textDelimiter_)});
}

bool DelimitedReader::ReadPlainRow(PlainRow& row) {
  return plainRows_.has_value() && TakePlainRow(*plainRows_, false, row);
}

bool DelimitedReader::ReadRecord() {
  if (record_.empty() && StreamAtEnd()) return false;
  for (;;) {
    record_.Clear();
    BeginRecord();
    while (TakeFields() == Step::kField) {
    }
    if (!record_.empty()) return true;
    if (StreamAtEnd()) return false;
    // A blank line between records is no record.
  }
}

// Takes fields up to the end of the record, or at least one. Most fields are a part of their line:
// those are found by looking for the next delimiter. Everything else is left to the exact way,
// which takes one character after the other; both stop at the same place with the same text.
DelimitedReader::Step DelimitedReader::TakeFields() {
  // One of the delimiters that a scan tries may be what quotes: it separates nothing then.
  const bool separates = delimiter_ != textDelimiter_;
  if (exact_ || !separates || !EnsureLine() || !RecordIsInOneLine()) return TakeFieldExactly();
  const Step step = TakePlainFields();
  return step == Step::kUndecided ? TakeFieldExactly() : step;
}

// Takes the fields of the line, a block of characters at a time: a delimiter in front of the first
// text delimiter ends a field as it stands. Undecided in front of a field that only the exact way
// can put together.
CLONED_FOR_PROCESSORS
DelimitedReader::Step DelimitedReader::TakePlainFields() {
  const SpecialUnitFinder finder(delimiter_, textDelimiter_);
  const char16_t* const text = line();
  std::size_t begin = cursor();
  std::size_t block = begin;
  for (;;) {
    const SpecialUnits units = finder.Look(text + block);
    const std::uint32_t firstStop = units.stops & (0 - units.stops);
    begin = record_.AddFromLine(text, begin, block, units.delimiters & (firstStop - 1));
    if (firstStop == 0) {
      block += SpecialUnitFinder::kBlockUnits;
      continue;
    }
    SetCursor(begin);
    const Step step =
        TakeStoppedField(finder, block + static_cast<std::size_t>(std::countr_zero(firstStop)));
    if (step != Step::kField) return step;
    block = begin = cursor();
  }
}

// Takes the field at the cursor, whose first text delimiter is at `stop`; or the line ends there.
DelimitedReader::Step DelimitedReader::TakeStoppedField(const SpecialUnitFinder& finder,
                                                        std::size_t stop) {
  if (line()[stop] == 0) return AddField(cursor(), stop, stop);
  return stop == cursor() ? TakeQuotedField(finder) : TakeFieldWithQuotes(stop);
}

// Takes a field that is quoted from its first character to its last.
CLONED_FOR_PROCESSORS
DelimitedReader::Step DelimitedReader::TakeQuotedField(const SpecialUnitFinder& finder) {
  const char16_t* const text = line();
  std::size_t begin = cursor() + 1;
  std::size_t block = begin;
  std::uint32_t stops = finder.Look(text + block).stops;
  for (;;) {
    while (stops == 0) {
      block += SpecialUnitFinder::kBlockUnits;
      stops = finder.Look(text + block).stops;
    }
    const std::size_t close = block + static_cast<std::size_t>(std::countr_zero(stops));
    if (text[close] == 0) break;
    const char16_t behind = text[close + 1];
    if (behind != textDelimiter_) {
      if (behind != delimiter_ && behind != 0) break;
      return EndQuotedField(begin, close);
    }
    // Doubled, it is one of the text, which then has to be put together.
    record_.AppendFromLine(text, begin, close + 1);
    begin = close + 2;
    stops &= stops - 1;
    if (begin - block < SpecialUnitFinder::kBlockUnits) {
      stops &= stops - 1;
    } else {
      block = begin;
      stops = finder.Look(text + block).stops;
    }
  }
  record_.DropOpenField();
  return Step::kUndecided;
}

// The last piece of the field is [begin, close) of the line.
DelimitedReader::Step DelimitedReader::EndQuotedField(std::size_t begin, std::size_t close) {
  if (record_.OpenField().empty()) return AddField(begin, close, close + 1);
  record_.AppendFromLine(line(), begin, close);
  record_.EndField();
  return GoBehind(close + 1);
}

// Takes a field that does not begin with the text delimiter that is at `quote`: single ones inside
// unquoted text are characters.
DelimitedReader::Step DelimitedReader::TakeFieldWithQuotes(std::size_t quote) {
  const char16_t* const text = line();
  const std::size_t begin = cursor();
  if (quenra::IsBlank({text + begin, quote - begin})) return Step::kUndecided;
  const char16_t* hit = text + quote;
  while (*hit != delimiter_ && *hit != 0) {
    if (hit[1] == textDelimiter_) return Step::kUndecided;
    hit = FindEither(hit + 1, delimiter_, textDelimiter_);
  }
  const auto end = static_cast<std::size_t>(hit - text);
  return AddField(begin, end, end);
}

// Adds the part [begin, end) of the line as a field, and goes behind its end.
DelimitedReader::Step DelimitedReader::AddField(std::size_t begin, std::size_t end,
                                                std::size_t delimiter) {
  // A record of one empty field is a blank line.
  if (line()[delimiter] != 0 || !record_.empty() || end > begin)
    record_.AddFromLine(line(), begin, end - begin);
  return GoBehind(delimiter);
}

// Takes the delimiter at that place, or the end of the line.
DelimitedReader::Step DelimitedReader::GoBehind(std::size_t delimiter) noexcept {
  if (line()[delimiter] == 0) {
    UseUpLine();
    return Step::kRecord;
  }
  SetCursor(delimiter + 1);
  return Step::kField;
}

// Takes the characters of one field, up to a delimiter or record terminator outside quotes or to
// the end of the file, which also ends an unterminated quote.
DelimitedReader::Step DelimitedReader::TakeFieldExactly() {
  const char16_t terminator = TerminatorUnit();
  bool quoting = false;
  bool hasText = false;
  char16_t unit = 0;
  while (TakeCharacter(unit)) {
    // NOLINTBEGIN(bugprone-branch-clone): two reasons to be a character
    if (textDelimiter_ != 0 && unit == textDelimiter_) {
      quoting = TakeQuote(quoting, hasText);
    } else if (quoting) {
      record_.Append(unit);
    } else if (unit == delimiter_) {
      record_.EndField();
      return Step::kField;
    } else if (unit == terminator) {
      break;
    } else {
      record_.Append(unit);
    }
    // NOLINTEND(bugprone-branch-clone)
  }
  if (quoting) endedInQuotes_ = true;
  EndRecord();
  return Step::kRecord;
}

// Handles a text delimiter that has just been taken, and answers whether the text behind it is
// quoted. `hasText` remembers that the field is more than white space, so that many quotes behind
// much white space do not make it look at that again and again.
bool DelimitedReader::TakeQuote(bool quoting, bool& hasText) {
  if (!quoting && !hasText) {
    if (quenra::IsBlank(record_.OpenField())) {
      record_.DropOpenField();
      return true;
    }
    hasText = true;
  }
  if (PeekCharacter() == textDelimiter_) {
    // A doubled quote is one literal quote, inside quotes and outside.
    char16_t second = 0;
    TakeCharacter(second);
    record_.Append(textDelimiter_);
    return quoting;
  }
  if (!quoting) record_.Append(textDelimiter_);
  return false;
}

void DelimitedReader::EndRecord() {
  if (!record_.empty() || !record_.OpenField().empty()) record_.EndField();
}

bool DelimitedReader::Scan(SchemaOptions& options, FieldList& fields,
                           const OpenOptions& openOptions) {
  if (!IsOpen()) return false;
  const bool formatGiven = options.IsSpecified(SchemaOptions::kFormat);
  if (Attempt(formatGiven ? Single::kAccept : Single::kReject, options, fields, openOptions))
    return true;
  if (formatGiven) return false;

  for (const Single single : {Single::kReject, Single::kAccept}) {
    // The delimiter current now has just been tried in the first pass. In the second it is the
    // last candidate of the first, so that the delimiter tried at the very start gets its turn.
    const char16_t skipped = delimiter_;
    for (const char16_t candidate : kCandidates) {
      if (candidate == skipped) continue;
      if (TryDelimiter(candidate, single, options, fields, openOptions)) return true;
    }
  }
  return false;
}

bool DelimitedReader::TryDelimiter(char16_t candidate, Single single, SchemaOptions& options,
                                   FieldList& fields, const OpenOptions& openOptions) {
  delimiter_ = options.delimiter = candidate;
  char16_t& decimal = options.number.decimalSymbol;
  // A decimal symbol cannot separate fields too, and semicolons mean decimal commas.
  const bool swap = decimal == candidate || (decimal == u'.' && candidate == u';');
  if (swap) decimal = NumberFormat::SwappedDecimalSymbol(decimal);
  if (Attempt(single, options, fields, openOptions)) return true;
  if (swap) decimal = NumberFormat::SwappedDecimalSymbol(decimal);
  return false;
}

bool DelimitedReader::Attempt(Single single, SchemaOptions& options, FieldList& fields,
                              const OpenOptions& openOptions) {
  TypeInference inference(*this, options, openOptions);
  ReadHeader(inference, options);
  if (single == Single::kReject && inference.lastRecordSize() == 1) return false;
  if (!inference.Scan()) {
    LayoutMisfit misfit = inference.Misfit();
    misfit.delimiter = delimiter_;
    misfit.delimiterGiven = options.IsSpecified(SchemaOptions::kFormat);
    NoteMisfit(misfit);
    return false;
  }
  inference.WriteFields(fields);
  return true;
}

}  // namespace TextFile
