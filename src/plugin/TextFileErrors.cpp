#include "plugin/TextFileErrors.h"

#include <new>
#include <string>

#include "host/DataCore/DataAccessUtil.h"
#include "host/com/ComCatch.h"
#include "host/interfaces/DataSourceClasses.h"
#include "resources/ResourceStrings.h"
#include "resources/StringIds.h"
#include "schema/TableFiles.h"

namespace quenra {
namespace {

constexpr ErrorOrigin kOrigin{kTextFileErrorSource, kErrorSource, kHelpFile};
constexpr ErrorOrigin kOriginWithoutSource{kTextFileErrorSource};

MessageText SchemaIniMessage(std::u16string_view tableName, const TextFile::ParseError& error) {
  MessageText message;
  message.Insert(tableName).Add(u"\n\t").Add(
      LoadResourceString(kFirstParseErrorText + static_cast<std::uint32_t>(error.code())));
  if (!error.text().empty()) message.Add(u"\n\t").Insert(error.text());
  return message;
}

}  // namespace

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
    return ChainTextFileError(E_FAIL, failure.text);
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
