// The results and error texts of the data source that hosts know by number.
#pragma once

#include <span>
#include <string_view>

#include "host/CoreSupport/MessageText.h"
#include "platform/ComTypes.h"
#include "reading/LayoutMisfit.h"
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

// Chains an error of a workspace, a table or a loader and answers its code.
HRESULT ChainTextFileError(HRESULT code, std::u16string_view text) noexcept;
HRESULT ChainTextFileError(HRESULT code, const MessageText& message) noexcept;

// Chains an error of an object that names no error source, a workspace factory or a cursor, and
// answers its code.
HRESULT ChainErrorWithoutSource(HRESULT code, const MessageText& message) noexcept;
// Chains all that one call has to tell of, the oldest first, so that none is lost.
HRESULT ChainErrorsWithoutSource(HRESULT code, std::span<const MessageText> messages) noexcept;

// The name of a table or a folder alone, which is the whole text of some errors.
MessageText NameAsMessage(std::u16string_view name);

// Why the table of that name cannot be read as a table: which record does not fit its columns.
MessageText MisfitMessage(std::u16string_view tableName, const TextFile::LayoutMisfit& misfit);

// Inside a catch block around an operation on a table's files: answers E_FAIL, and what went wrong
// is chained with the file's name and the reason, as kFileExists when something has the name that a
// table was to get, else as E_FAIL too; short memory stays E_OUTOFMEMORY.
HRESULT HResultFromTableException() noexcept;

// Inside a catch block around the opening of a table: a schema.ini error is chained with the
// table's name, the message and the offending text, and everything else is mapped as usual.
HRESULT HResultFromOpenException(std::u16string_view tableName) noexcept;

}  // namespace quenra
