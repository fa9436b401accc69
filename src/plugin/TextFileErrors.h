// The results and error texts of the data source that hosts know by number.
#pragma once

#include <string_view>

#include "platform/ComTypes.h"
#include "schema/ParseError.h"

namespace quenra {

inline constexpr HRESULT kTableNotFound = static_cast<HRESULT>(0x80040351u);
inline constexpr HRESULT kFolderRejected = static_cast<HRESULT>(0x80040258u);
inline constexpr HRESULT kFileNotOpened = static_cast<HRESULT>(0x80040211u);
inline constexpr HRESULT kSchemaIniError = static_cast<HRESULT>(0x80040311u);
inline constexpr HRESULT kFieldTypeNotSupported = static_cast<HRESULT>(0x80040203u);
inline constexpr HRESULT kFieldValueError = static_cast<HRESULT>(0x80040955u);
// Chained by a call that succeeds: sections of schema.ini stood under a table's new name. The
// system's ERROR_ALREADY_EXISTS.
inline constexpr HRESULT kSectionStood = static_cast<HRESULT>(0x800700B7u);

// Where error information comes from. The quote characters are part of the texts: hosts compare
// them with what they have always received.
inline constexpr std::u16string_view kErrorSource = u"\"quenraDataSourcesFile.TextFileWorkspace\"";
inline constexpr std::u16string_view kHelpFile = u"\"TextFile.hlp\"";

// Chains an error of this data source and answers its code.
HRESULT ChainTextFileError(HRESULT code, std::u16string_view text) noexcept;

// Inside a catch block around an operation on a table's files: what went wrong is chained with the
// file's name and the reason, as E_FAIL; short memory stays E_OUTOFMEMORY.
HRESULT HResultFromTableException() noexcept;

// Inside a catch block around the opening of a table: a schema.ini error is chained with the
// table's name, the message and the offending text, and everything else is mapped as usual.
HRESULT HResultFromOpenException(std::u16string_view tableName) noexcept;

}  // namespace quenra
