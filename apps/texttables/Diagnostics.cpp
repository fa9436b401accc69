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

struct ChainedError {
  HRESULT code = E_FAIL;
  std::string text;
};

ChainedError Read(quenra::HostChainedError* error) {
  ChainedError result;
  error->GetCode(&result.code);
  quenra::BString text;
  error->GetText(text.Receive());
  result.text = MessageBytes(text.View());
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

std::string TakeChainedText(HRESULT code) {
  const std::vector<ChainedError> errors = ReadChain(TakeErrorInfo());
  if (errors.empty()) return {};
  const auto same = std::find_if(errors.begin(), errors.end(),
                                 [code](const ChainedError& error) { return error.code == code; });
  return same != errors.end() ? same->text : errors.front().text;
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

void ReportUsageError(std::string_view text) {
  std::string message = "texttables: ";
  message += ShownMessage(text);
  message += "\nTry 'texttables --help'.\n";
  Terminal::WriteStandardError(message);
}

}  // namespace TextTables
