// What the data source chained for the host, and what the program says on standard error.
#pragma once

#include <string>
#include <string_view>

#include "platform/ComTypes.h"

namespace TextTables {

struct ChainedError {
  HRESULT code = E_FAIL;
  std::string text;
};

// The error chained with `code`, else the newest of the chain, else one without a text. The chain
// is empty afterwards.
ChainedError TakeChainedError(HRESULT code);

// Prints every chained error as a warning, the oldest first, and empties the chain. With `quiet`
// nothing is printed. Costs next to nothing when there is none: it is called for every row.
void ReportWarnings(bool quiet);

// "texttables: warning: 0x80040955: text".
void ReportWarning(HRESULT code, std::string_view text);

// "texttables: error: 0x80040351: text". Texts keep their line breaks.
void ReportRefusal(HRESULT code, std::string_view text);

// "texttables: text" and where help is: on the page of that command, or for none on the general
// one.
void ReportUsageError(std::string_view text, std::string_view helpPage);

}  // namespace TextTables
