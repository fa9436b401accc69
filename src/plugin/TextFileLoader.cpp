#include "plugin/TextFileLoader.h"

#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "host/com/ComCatch.h"
#include "host/com/ComPtr.h"
#include "plugin/TextFileErrors.h"

namespace quenra {
namespace {

// The values of one row, cleared when they go.
class RowValues {
 public:
  explicit RowValues(LONG count) : values_(static_cast<std::size_t>(count)) {
    for (VARIANT& value : values_) ::VariantInit(&value);
  }
  ~RowValues() {
    for (VARIANT& value : values_) ::VariantClear(&value);
  }
  RowValues(const RowValues&) = delete;
  RowValues& operator=(const RowValues&) = delete;

  HRESULT Fetch(HostRowBuffer& row) noexcept {
    LONG index = 0;
    for (VARIANT& value : values_)
      if (const HRESULT result = row.GetValue(index++, &value); FAILED(result)) return result;
    return S_OK;
  }

  const std::vector<VARIANT>& Get() const noexcept { return values_; }

 private:
  std::vector<VARIANT> values_;
};

}  // namespace

TextFileLoader::TextFileLoader(std::unique_ptr<TextFile::RowWriter> writer)
    : writer_(std::move(writer)) {}

TextFileLoader::~TextFileLoader() {
  if (!writer_->Close()) EventLog::Write(writer_->failure());
}

std::u16string_view TextFileLoader::ErrorSource() const noexcept { return kErrorSource; }

std::u16string_view TextFileLoader::HelpFile() const noexcept { return kHelpFile; }

HRESULT STDMETHODCALLTYPE TextFileLoader::LoadRow(HostRowBuffer* row) try {
  if (row == nullptr) return E_INVALIDARG;
  ComPtr<HostFieldCollection> fields;
  if (const HRESULT result = row->GetFields(fields.Receive()); FAILED(result)) return result;
  LONG count = 0;
  if (fields) {
    if (const HRESULT result = fields->GetFieldCount(&count); FAILED(result)) return result;
  }
  if (count < 0) return E_INVALIDARG;
  RowValues values(count);
  if (const HRESULT result = values.Fetch(*row); FAILED(result)) return result;
  if (!writer_->Write(values.Get())) return ChainTextFileError(E_FAIL, writer_->failure());
  return S_OK;
} catch (...) {
  return HResultFromCurrentException();
}

}  // namespace quenra
