// Records whose fields are separated by one character and may be quoted.
#pragma once

#include <optional>

#include "reading/PlainRowIndex.h"
#include "reading/Reader.h"

namespace TextFile {

class SpecialUnitFinder;

// Splitting, with the apostrophe as text delimiter:
//   a,'b,c',d           [a] [b,c] [d]
//   a,'say ''hi''',b    [a] [say 'hi'] [b]
//   x, 'q',y            [x] [q] [y]       white space before an opening quote is dropped
//   x,ab'c,y            [x] [ab'c] [y]    a quote inside unquoted text is a character
// Fields are not trimmed, blank lines are no records, and a quoted field may hold line ends.
class DelimitedReader final : public Reader {
 public:
  explicit DelimitedReader(const TextDatasetDescription& description);

  bool ReadRecord() override;
  bool ReadPlainRow(PlainRow& row) override;

  // Whether a record has ended with the file inside quotes: what is added behind it would be a part
  // of its last field.
  bool EndedInQuotes() const noexcept { return endedInQuotes_; }

  // Splits character by character only, for comparison with the way that looks for delimiters.
  void SplitExactly() noexcept {
    exact_ = true;
    plainRows_.reset();
  }

  // Tries the current delimiter, then ",", ";", tab, "|" and blank.
  bool Scan(SchemaOptions& options, std::vector<FieldDefinition>& fields,
            const OpenOptions& openOptions) override;

 private:
  enum class Single { kReject, kAccept };  // a record of one field

  // What a step of splitting has come to.
  enum class Step { kField, kRecord, kUndecided };

  Step TakeFields();
  Step TakePlainFields();
  Step TakeStoppedField(const SpecialUnitFinder& finder, std::size_t stop);
  Step TakeQuotedField(const SpecialUnitFinder& finder);
  Step EndQuotedField(std::size_t begin, std::size_t close);
  Step TakeFieldWithQuotes(std::size_t quote);
  Step AddField(std::size_t begin, std::size_t end, std::size_t delimiter);
  Step GoBehind(std::size_t delimiter) noexcept;
  Step TakeFieldExactly();
  bool TakeQuote(bool quoting, bool& hasText);
  void EndRecord();
  bool Attempt(Single single, SchemaOptions& options, std::vector<FieldDefinition>& fields,
               const OpenOptions& openOptions);
  bool TryDelimiter(char16_t candidate, Single single, SchemaOptions& options,
                    std::vector<FieldDefinition>& fields, const OpenOptions& openOptions);

  bool exact_ = false;
  bool endedInQuotes_ = false;
  char16_t delimiter_;
  char16_t textDelimiter_;                  // 0: no quoting
  std::optional<PlainRowIndex> plainRows_;  // none where bytes do not tell the fields
};

}  // namespace TextFile
