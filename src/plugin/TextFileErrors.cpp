#include "plugin/TextFileErrors.h"

#include <new>
#include <string>

#include "host/DataCore/DataAccessUtil.h"
#include "host/com/ComCatch.h"
#include "host/interfaces/DataSourceClasses.h"
#include "host/interfaces/PlugInWorkspace.h"
#include "resources/ResourceStrings.h"
#include "resources/StringIds.h"
#include "schema/TableFiles.h"

namespace quenra {
namespace {

constexpr ErrorOrigin kOrigin{kTextFileErrorSource, kErrorSource, kHelpFile};
constexpr ErrorOrigin kOriginWithoutSource{kTextFileErrorSource};

std::u16string Digits(std::uint64_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

MessageText SchemaIniMessage(std::u16string_view tableName, const TextFile::ParseError& error) {
  MessageText message;
  message.Insert(tableName).Add(u"\n\t").Add(
      LoadResourceString(kFirstParseErrorText + static_cast<std::uint32_t>(error.code())));
  if (!error.text().empty()) message.Add(u"\n\t").Insert(error.text());
  return message;
}

std::u16string Counted(std::uint64_t count, std::u16string_view what) {
  std::u16string text = Digits(count);
  text += u' ';
  text += what;
  if (count != 1) text += u's';
  return text;
}

// Rows are counted without the header line, as everywhere; who looks into the file sees it too.
std::u16string RecordName(const TextFile::LayoutMisfit& misfit) {
  if (!misfit.header) return u"row " + Digits(misfit.record);
  if (misfit.record == 1) return u"the header line";
  return u"row " + Digits(misfit.record - 1) + u" (record " + Digits(misfit.record) +
         u" with the header line)";
}

std::u16string DelimiterName(char16_t delimiter) {
  if (delimiter == u'\t') return u"tabs";
  if (delimiter == u' ') return u"spaces";
  return u"\"" + std::u16string(1, delimiter) + u"\"";
}

}  // namespace

MessageText MisfitMessage(std::u16string_view tableName, const TextFile::LayoutMisfit& misfit) {
  using Kind = TextFile::LayoutMisfit::Kind;
  MessageText message;
  message.Insert(tableName).Add(u": ");
  const std::u16string columns = Counted(misfit.columns, u"column");
  if (misfit.kind == Kind::kNoColumns)
    return message.Add(u"schema.ini declares no columns for its fixed-length records");
  if (misfit.kind == Kind::kNoRecord) return message.Add(u"there is no record for its " + columns);
  if (misfit.kind == Kind::kNone) return message.Add(u"no layout fits");
  if (misfit.delimiter != 0 && !misfit.delimiterGiven)
    message.Add(u"no delimiter fits; between ").Insert(DelimiterName(misfit.delimiter)).Add(u", ");
  return message.Add(RecordName(misfit) + u" has " + Counted(misfit.values, u"value") + u" for " +
                     columns);
}

HRESULT ChainTextFileError(HRESULT code, std::u16string_view text) noexcept {
  return DataAccessUtil::ChainError(code, kOrigin, text);
}

HRESULT ChainTextFileError(HRESULT code, const MessageText& message) noexcept {
  return DataAccessUtil::ChainErrors(code, kOrigin, {&message, 1});
}

HRESULT ChainErrorWithoutSource(HRESULT code, const MessageText& message) noexcept {
  return DataAccessUtil::ChainErrors(code, kOriginWithoutSource, {&message, 1});
}

HRESULT ChainErrorsWithoutSource(HRESULT code, std::span<const MessageText> messages) noexcept {
  return DataAccessUtil::ChainErrors(code, kOriginWithoutSource, messages);
}

MessageText NameAsMessage(std::u16string_view name) {
  MessageText message;
  message.Insert(name);
  return message;
}

HRESULT HResultFromTableException() noexcept try {
  try {
    throw;
  } catch (const TextFile::TableFailure& failure) {
    ChainTextFileError(failure.taken ? kFileExists : E_FAIL, failure.message);
    return E_FAIL;
  }
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
} catch (...) {
  return E_FAIL;
}

HRESULT HResultFromOpenException(std::u16string_view tableName) noexcept try {
  try {
    throw;
  } catch (const TextFile::ParseError& error) {
    return ChainTextFileError(kSchemaIniError, SchemaIniMessage(tableName, error));
  }
} catch (...) {
  return HResultFromCurrentException();
}

}  // namespace quenra
