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

std::u16string SchemaIniMessage(std::u16string_view tableName, const TextFile::ParseError& error) {
  std::u16string message(tableName);
  message += u"\n\t";
  message += LoadResourceString(kFirstParseErrorText + static_cast<std::uint32_t>(error.code()));
  if (error.text().empty()) return message;
  message += u"\n\t";
  message += error.text();
  return message;
}

}  // namespace

HRESULT ChainTextFileError(HRESULT code, std::u16string_view text) noexcept {
  return DataAccessUtil::ChainError(
      code, ErrorOrigin{kTextFileErrorSource, kErrorSource, kHelpFile}, text);
}

HRESULT ChainErrorWithoutSource(HRESULT code, std::u16string_view text) noexcept {
  return DataAccessUtil::ChainError(code, kTextFileErrorSource, text);
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
