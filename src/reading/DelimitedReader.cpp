#include "reading/DelimitedReader.h"

#include "host/CoreSupport/CharacterClasses.h"
#include "inference/TypeInference.h"

namespace TextFile {

namespace {

constexpr char16_t kCandidates[] = {u',', u';', u'\t', u'|', u' '};

}  // namespace

DelimitedReader::DelimitedReader(const TextDatasetDescription& description)
    : Reader(description),
      delimiter_(description.options.delimiter),
      textDelimiter_(description.options.textDelimiter) {}

bool DelimitedReader::ReadRecord() {
  if (record_.empty() && StreamAtEnd()) return false;
  record_.Clear();
  for (;;) {
    TakeFields();
    if (!record_.empty()) return true;
    if (StreamAtEnd()) return false;
    // A blank line between records is no record.
  }
}

// Takes one record's characters, up to a record terminator outside quotes or to the end of the
// file, which also ends an unterminated quote.
void DelimitedReader::TakeFields() {
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
      hasText = false;
    } else if (unit == terminator) {
      break;
    } else {
      record_.Append(unit);
    }
  }
  EndRecord();
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
