// The error of a schema.ini that cannot be understood.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace TextFile {

// The message for the user is the string resource 103 + code.
enum class ParseErrorCode : std::uint32_t {
  kMissingFieldName = 0,
  kMissingFieldType = 1,
  kUnknownFieldType = 2,
  kWidthKeywordExpected = 3,
  kBadFieldWidth = 4,
  kFixedWidthFieldsMissing = 5,
  kBadDateFormat = 6,
  kDuplicateOption = 7,
  kInvalidFormat = 8,
  kDoubleQuoteDelimiter = 9,
  kInvalidOptionValue = 10,
  kUnknownOption = 11,
};

class ParseError : public std::exception {
 public:
  // `text` is the offending text of schema.ini; it may be empty.
  ParseError(ParseErrorCode code, std::u16string_view text) : code_(code), text_(text) {}

  // The text is the line as it stood: key, "=", value.
  ParseError(ParseErrorCode code, std::u16string_view key, std::u16string_view value)
      : code_(code), text_(key) {
    text_ += u'=';
    text_ += value;
  }

  const char* what() const noexcept override { return "Schema.ini parse error"; }
  ParseErrorCode code() const noexcept { return code_; }
  const std::u16string& text() const noexcept { return text_; }

 private:
  ParseErrorCode code_;
  std::u16string text_;
};

}  // namespace TextFile
