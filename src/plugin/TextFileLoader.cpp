#include "plugin/TextFileLoader.h"

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/Variant.h"
#include "host/com/ComCatch.h"
#include "host/com/ComPtr.h"
#include "plugin/TextFileErrors.h"

namespace quenra {

// The values of a row, which are cleared when this goes.
class TextFileLoader::Fetched {
 public:
  // `values` are VT_EMPTY, and are so again afterwards.
  explicit Fetched(std::vector<VARIANT>& values) noexcept : values_(values) {}
  ~Fetched() {
    for (VARIANT& value : values_) ClearVariant(value);
  }
  Fetched(const Fetched&) = delete;
  Fetched& operator=(const Fetched&) = delete;

  HRESULT From(HostRowBuffer& row) noexcept {
    LONG index = 0;
    for (VARIANT& value : values_) {
      const HRESULT result = row.GetValue(index++, &value);
      if (FAILED(result)) [[unlikely]]
        return result;
    }
    return S_OK;
  }

 private:
  std::vector<VARIANT>& values_;
};

TextFileLoader::TextFileLoader(std::unique_ptr<TextFile::RowWriter> writer)
    : writer_(std::move(writer)) {}

TextFileLoader::~TextFileLoader() {
  if (!writer_->Close()) EventLog::Write(writer_->failure().text);
}

std::u16string_view TextFileLoader::ErrorSource() const noexcept { return kErrorSource; }

std::u16string_view TextFileLoader::HelpFile() const noexcept { return kHelpFile; }

HRESULT STDMETHODCALLTYPE TextFileLoader::LoadRow(HostRowBuffer* row) try {
  if (row == nullptr) return E_INVALIDARG;
  ComPtr<HostRowBufferLending> lending;
  const VARIANT* values = nullptr;
  LONG count = 0;
  if (SUCCEEDED(row->QueryInterface(IID_HostRowBufferLending, lending.ReceiveVoid())) && lending &&
      SUCCEEDED(lending->LendValues(&values, &count))) {
    if (count < 0 || (values == nullptr && count > 0)) return E_INVALIDARG;
    return Write({values, static_cast<std::size_t>(count)});
  }
  return FetchAndWrite(*row);
} catch (...) {
  return HResultFromCurrentException();
}

HRESULT TextFileLoader::FetchAndWrite(HostRowBuffer& row) {
  ComPtr<HostFieldCollection> fields;
  if (const HRESULT result = row.GetFields(fields.Receive()); FAILED(result)) return result;
  LONG count = 0;
  if (fields) {
    if (const HRESULT result = fields->GetFieldCount(&count); FAILED(result)) return result;
  }
  if (count < 0) return E_INVALIDARG;
  if (values_.size() != static_cast<std::size_t>(count))
    values_.resize(static_cast<std::size_t>(count));
  Fetched values(values_);
  if (const HRESULT result = values.From(row); FAILED(result)) return result;
  return Write(values_);
}

HRESULT TextFileLoader::Write(std::span<const VARIANT> values) {
  return writer_->Write(values) ? S_OK : ChainTextFileError(E_FAIL, writer_->failure());
}

}  // namespace quenra
