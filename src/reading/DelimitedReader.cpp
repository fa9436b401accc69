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
  if (exact_ || !EnsureLine() || !RecordIsInOneLine()) return TakeFieldExactly();
  const Step step = TakePlainFields();
  return step == Step::kUndecided ? TakeFieldExactly() : step;
}

// Takes the fields of the line that are not quoted, or from their first character to their last;
// single text delimiters inside unquoted text are characters. Undecided in front of any other
// field.
DelimitedReader::Step DelimitedReader::TakePlainFields() {
  const char16_t* const text = line();
  std::size_t begin = cursor();
  for (;;) {
    const PlainField field = FindPlainField(text, begin);
    if (field.step == Step::kUndecided) {
      SetCursor(begin);
      return Step::kUndecided;
    }
    if (field.step == Step::kRecord) {
      UseUpLine();
      // A record of one empty field is a blank line.
      if (!record_.empty() || field.length > 0)
        record_.AddFromLine(text, field.begin, field.length);
      return Step::kRecord;
    }
    record_.AddFromLine(text, field.begin, field.length);
    begin = field.next;
  }
}

// The field at `begin`, or undecided when it has to be put together.
inline DelimitedReader::PlainField DelimitedReader::FindPlainField(
    const char16_t* text, std::size_t begin) const noexcept {
  const char16_t* hit = FindEither(text + begin, delimiter_, textDelimiter_);
  if (*hit != delimiter_ && *hit != 0) {
    const auto quote = static_cast<std::size_t>(hit - text);
    if (quote == begin) return FindQuotedField(text, quote);
    if (quenra::IsBlank({text + begin, quote - begin})) return {Step::kUndecided};
    while (*hit != delimiter_ && *hit != 0) {
      if (hit[1] == textDelimiter_) return {Step::kUndecided};
      hit = FindEither(hit + 1, delimiter_, textDelimiter_);
    }
  }
  const auto end = static_cast<std::size_t>(hit - text);
  return {*hit == 0 ? Step::kRecord : Step::kField, begin, end - begin, end + 1};
}

DelimitedReader::PlainField DelimitedReader::FindQuotedField(const char16_t* text,
                                                             std::size_t quote) const noexcept {
  const char16_t* const close = FindEither(text + quote + 1, textDelimiter_, textDelimiter_);
  if (*close == 0 || (close[1] != delimiter_ && close[1] != 0)) return {Step::kUndecided};
  const auto end = static_cast<std::size_t>(close - text);
  const Step step = close[1] == 0 ? Step::kRecord : Step::kField;
  return {step, quote + 1, end - quote - 1, end + 2};
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
