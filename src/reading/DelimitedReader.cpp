#include "reading/DelimitedReader.h"

#include "host/CoreSupport/CharacterClasses.h"
#include "inference/TypeInference.h"
#include "reading/UnitSearch.h"

namespace TextFile {

namespace {

constexpr char16_t kCandidates[] = {u',', u';', u'\t', u'|', u' '};

}  // namespace

DelimitedReader::DelimitedReader(const TextDatasetDescription& description)
    : Reader(description),
      delimiter_(description.options.delimiter),
      textDelimiter_(description.options.textDelimiter) {
  // Lines of such files are not only ended by zeros, or a quote would be taken for a delimiter.
  if (LinesMayHoldTerminator() || delimiter_ == textDelimiter_) SplitExactly();
}

bool DelimitedReader::ReadRecord() {
  if (record_.empty() && StreamAtEnd()) return false;
  for (;;) {
    record_.Clear();
    BeginRecord();
    while (TakeField() == Step::kField) {
    }
    if (!record_.empty()) return true;
    if (StreamAtEnd()) return false;
    // A blank line between records is no record.
  }
}

// Takes the next field of the record. Most fields are a part of their line: those are found by
// looking for the next delimiter. Everything else is left to the exact way, which takes one
// character after the other; both stop at the same place with the same text.
DelimitedReader::Step DelimitedReader::TakeField() {
  if (exact_ || !EnsureLine() || !RecordIsInOneLine()) return TakeFieldExactly();
  const Step step = TakePlainField();
  return step == Step::kUndecided ? TakeFieldExactly() : step;
}

// Takes a field that is quoted from its first character to its last, or not quoted at all; single
// text delimiters inside unquoted text are characters. Undecided, and nothing is taken, for others.
DelimitedReader::Step DelimitedReader::TakePlainField() {
  const char16_t* const text = line();
  const std::size_t begin = cursor();
  const char16_t* hit = FindEither(text + begin, delimiter_, textDelimiter_);
  if (*hit != delimiter_ && *hit != 0) {
    const auto quote = static_cast<std::size_t>(hit - text);
    if (quote == begin) return TakeQuotedField(quote);
    if (quenra::IsBlank({text + begin, quote - begin})) return Step::kUndecided;
  }
  while (*hit != delimiter_ && *hit != 0) {
    if (hit[1] == textDelimiter_) return Step::kUndecided;
    hit = FindEither(hit + 1, delimiter_, textDelimiter_);
  }
  return EndPlainField(begin, static_cast<std::size_t>(hit - text));
}

DelimitedReader::Step DelimitedReader::TakeQuotedField(std::size_t quote) {
  const char16_t* const text = line();
  const char16_t* const close = FindEither(text + quote + 1, textDelimiter_, textDelimiter_);
  if (*close == 0 || (close[1] != delimiter_ && close[1] != 0)) return Step::kUndecided;
  const auto end = static_cast<std::size_t>(close - text);
  if (*(close + 1) == delimiter_) {
    record_.AddFromLine(text, quote + 1, end - quote - 1);
    SetCursor(end + 2);
    return Step::kField;
  }
  UseUpLine();
  if (!record_.empty() || end > quote + 1) record_.AddFromLine(text, quote + 1, end - quote - 1);
  return Step::kRecord;
}

// The field [begin, end) of the line, ended by a delimiter or by the line's end. A record of one
// empty field is a blank line.
DelimitedReader::Step DelimitedReader::EndPlainField(std::size_t begin, std::size_t end) {
  if (line()[end] != 0) {
    record_.AddFromLine(line(), begin, end - begin);
    SetCursor(end + 1);
    return Step::kField;
  }
  UseUpLine();
  if (!record_.empty() || end > begin) record_.AddFromLine(line(), begin, end - begin);
  return Step::kRecord;
}

// Takes the characters of one field, up to a delimiter or record terminator outside quotes or to
// the end of the file, which also ends an unterminated quote.
DelimitedReader::Step DelimitedReader::TakeFieldExactly() {
  const char16_t terminator = TerminatorUnit();
  bool quoting = false;
  bool hasText = false;
  char16_t unit = 0;
  while (TakeCharacter(unit)) {
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
  }
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

bool DelimitedReader::Scan(SchemaOptions& options, std::vector<FieldDefinition>& fields,
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
                                   std::vector<FieldDefinition>& fields,
                                   const OpenOptions& openOptions) {
  delimiter_ = options.delimiter = candidate;
  char16_t& decimal = options.number.decimalSymbol;
  // A decimal symbol cannot separate fields too, and semicolons mean decimal commas.
  const bool swap = decimal == candidate || (decimal == u'.' && candidate == u';');
  if (swap) decimal = NumberFormat::SwappedDecimalSymbol(decimal);
  if (Attempt(single, options, fields, openOptions)) return true;
  if (swap) decimal = NumberFormat::SwappedDecimalSymbol(decimal);
  return false;
}

bool DelimitedReader::Attempt(Single single, SchemaOptions& options,
                              std::vector<FieldDefinition>& fields,
                              const OpenOptions& openOptions) {
  TypeInference inference(*this, options, openOptions);
  ReadHeader(inference, options);
  if (single == Single::kReject && inference.lastRecordSize() == 1) return false;
  if (!inference.Scan()) return false;
  inference.WriteFields(fields);
  return true;
}

}  // namespace TextFile
