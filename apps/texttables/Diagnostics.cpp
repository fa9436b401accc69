#include "Diagnostics.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Failures.h"
#include "ShownText.h"
#include "Terminal.h"
#include "TextEncoding.h"
#include "host/CoreSupport/BString.h"
#include "host/com/ComPtr.h"
#include "host/interfaces/HostErrors.h"

namespace TextTables {

namespace {

// The text with the values and names in it as people are shown them. Of an error that does not tell
// them from its own words everything is taken for its own; the whole is made safe when it is
// written.
std::string WithShownInserts(quenra::HostChainedError& error, std::u16string_view text) {
  std::string shown;
  std::size_t place = 0;
  const auto inserts = quenra::QueryFor<quenra::HostErrorInserts>(&error);
  LONG count = 0;
  if (inserts) inserts->GetInsertCount(&count);
  for (LONG i = 0; i < count; ++i) {
    LONG begin = 0;
    LONG length = 0;
    if (FAILED(inserts->GetInsert(i, &begin, &length))) break;
    const auto start = static_cast<std::size_t>(begin);
    const auto end = start + static_cast<std::size_t>(length);
    if (begin < 0 || length < 0 || start < place || end > text.size()) break;
    shown += MessageBytes(text.substr(place, start - place));
    shown += Shown(text.substr(start, end - start));
    place = end;
  }
  return shown + MessageBytes(text.substr(place));
}

ChainedError Read(quenra::HostChainedError* error) {
  ChainedError result;
  error->GetCode(&result.code);
  quenra::BString text;
  error->GetText(text.Receive());
  result.text = WithShownInserts(*error, text.View());
  return result;
}

// An error object of another kind has a description, but no code.
ChainedError ReadPlain(IErrorInfo* info) {
  ChainedError result;
  quenra::BString text;
  info->GetDescription(text.Receive());
  result.text = MessageBytes(text.View());
  return result;
}

// The thread's error object, which is the program's from now on; null when there is none.
quenra::ComPtr<IErrorInfo> TakeErrorInfo() {
  quenra::ComPtr<IErrorInfo> info;
  if (::GetErrorInfo(0, info.Receive()) != S_OK) info = nullptr;
  return info;
}

// The errors of the object's chain, the newest first.
std::vector<ChainedError> ReadChain(const quenra::ComPtr<IErrorInfo>& info) {
  std::vector<ChainedError> errors;
  if (!info) return errors;
  auto error = info.As<quenra::HostChainedError>();
  if (!error) {
    errors.push_back(ReadPlain(info.Get()));
    return errors;
  }
  while (error) {
    errors.push_back(Read(error.Get()));
    quenra::ComPtr<quenra::HostChainedError> next;
    error->GetNext(next.Receive());
    error = std::move(next);
  }
  return errors;
}

void WriteDiagnosis(std::string_view kind, HRESULT code, std::string_view text) {
  std::string line = "texttables: ";
  line += kind;
  line += ": " + HexCode(code) + ": ";
  line += ShownMessage(text);
  line += '\n';
  Terminal::WriteStandardError(line);
}

}  // namespace

ChainedError TakeChainedError(HRESULT code) {
  const std::vector<ChainedError> errors = ReadChain(TakeErrorInfo());
  if (errors.empty()) return {};
  const auto same = std::find_if(errors.begin(), errors.end(),
                                 [code](const ChainedError& error) { return error.code == code; });
  return same != errors.end() ? *same : errors.front();
}

void ReportWarnings(bool quiet) {
  // Called for every row; hardly any has something to tell.
  const quenra::ComPtr<IErrorInfo> info = TakeErrorInfo();
  if (quiet || !info) return;
  std::vector<ChainedError> errors = ReadChain(info);
  std::reverse(errors.begin(), errors.end());
  for (const ChainedError& error : errors) WriteDiagnosis("warning", error.code, error.text);
}

void ReportWarning(HRESULT code, std::string_view text) { WriteDiagnosis("warning", code, text); }

void ReportRefusal(HRESULT code, std::string_view text) { WriteDiagnosis("error", code, text); }

void ReportUsageError(std::string_view text, std::string_view helpPage) {
  std::string message = "texttables: ";
  message += ShownMessage(text);
  message += "\nTry 'texttables ";
  if (!helpPage.empty()) message.append(helpPage).append(" ");
  message += "--help'.\n";
  Terminal::WriteStandardError(message);
}

}  // namespace TextTables
