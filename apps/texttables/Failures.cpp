#include "Failures.h"

#include <cstdio>
#include <system_error>

#include "Diagnostics.h"
#include "ShownText.h"
#include "WhyNotOpened.h"

namespace TextTables {

namespace {

// Codes of the data source.
constexpr HRESULT kTableNotFound = static_cast<HRESULT>(0x80040351u);
constexpr HRESULT kFileNotOpened = static_cast<HRESULT>(0x80040211u);
constexpr HRESULT kFolderRejected = static_cast<HRESULT>(0x80040258u);

struct Meaning {
  HRESULT code;
  const char* text;
};

// The codes that the data source gives without a text of its own, and those of COM.
const Meaning kMeanings[] = {
    {kTableNotFound, "table not found"},
    {static_cast<HRESULT>(0x80040203u), "field type not supported"},
    {kFileNotOpened, "the file cannot be opened"},
    {kFolderRejected, "the folder cannot be opened"},
    {static_cast<HRESULT>(0x80040311u), "schema.ini cannot be understood"},
    {static_cast<HRESULT>(0x80040955u), "a value does not fit its field"},
    {E_FAIL, "the data source cannot do this"},
    {E_POINTER, "a result pointer is missing"},
    {E_INVALIDARG, "an argument is not valid"},
    {E_NOINTERFACE, "the interface is not supported"},
    {E_NOTIMPL, "not implemented"},
    {E_OUTOFMEMORY, "out of memory"},
    {E_UNEXPECTED, "unexpected failure"},
    {CLASS_E_CLASSNOTAVAILABLE, "the module does not hold this class"},
    {REGDB_E_CLASSNOTREG, "the class is not registered"},
    {SELFREG_E_CLASS, "the registration cannot be changed"},
    {CLASS_E_NOAGGREGATION, "the class cannot be aggregated"},
};

std::string InBrackets(const std::string& reason) {
  return reason.empty() ? reason : " (" + reason + ")";
}

// What a person has to be told besides the name, which is all that the data source chains.
std::string Explained(HRESULT code, const std::string& chained, std::u16string_view path) {
  if (code != kFileNotOpened && code != kFolderRejected) return chained;
  const std::string text = chained + ": " + MeaningOf(code);
  if (path.empty()) return text;
  return text +
         InBrackets(code == kFileNotOpened ? WhyFileIsNotOpened(path) : WhyFolderIsNotOpened(path));
}

// A table that the folder does not have needs no reason, but one that is there and not seen does.
std::string WhyNotFound(std::u16string_view path) {
  if (path.empty()) return {};
  const std::string reason = WhyFileIsNotOpened(path);
  const auto missing = std::make_error_code(std::errc::no_such_file_or_directory).message();
  return reason == missing ? std::string() : reason;
}

}  // namespace

std::string MeaningOf(HRESULT code) {
  for (const Meaning& meaning : kMeanings)
    if (meaning.code == code) return meaning.text;
  if (HRESULT_FACILITY(code) == FACILITY_WIN32)
    return std::system_category().message(static_cast<int>(HRESULT_CODE(code)));
  return "failure without a description";
}

std::string HexCode(HRESULT code) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lX",
                static_cast<unsigned long>(static_cast<std::uint32_t>(code)));
  return text;
}

void Check(HRESULT code, std::u16string_view subject) { CheckOpened(code, subject, {}); }

void CheckOpened(HRESULT code, std::u16string_view subject, std::u16string_view path) {
  if (!FAILED(code)) return;
  if (const ChainedError chained = TakeChainedError(code); !chained.text.empty())
    // Calls that answer no more than that they failed may chain what it was.
    throw Refusal(code == E_FAIL ? chained.code : code, Explained(code, chained.text, path));
  std::string text = MeaningOf(code);
  if (!subject.empty()) text += ": " + Shown(subject);
  if (code == kTableNotFound) text += InBrackets(WhyNotFound(path));
  throw Refusal(code, text);
}

Refusal SystemRefusal(int error, std::u16string_view subject) {
  const auto code = static_cast<HRESULT>(0x80070000u | (static_cast<unsigned>(error) & 0xFFFFu));
  return Refusal(code, std::system_category().message(error) + ": " + Shown(subject));
}

}  // namespace TextTables
