// Appends the rows that the host hands over to a table's file.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "host/com/Implements.h"
#include "host/interfaces/PlugInLoader.h"
#include "schema/RowWriter.h"

namespace quenra {

// The file is complete when the loader goes; a host that wants to know whether it is, asks through
// the event log, since an ending object cannot answer.
class TextFileLoader final : public Implements<IPlugInDatasetLoader> {
 public:
  // `writer` is open.
  explicit TextFileLoader(std::unique_ptr<TextFile::RowWriter> writer);
  ~TextFileLoader() override;

  std::u16string_view ClassName() const noexcept override { return u"TextFileLoader"; }
  std::u16string_view ErrorSource() const noexcept override;
  std::u16string_view HelpFile() const noexcept override;

  // S_OK whatever the values are: one that its field cannot hold is left blank and told to the
  // event log. A file that cannot be written chains an error.
  HRESULT STDMETHODCALLTYPE LoadRow(HostRowBuffer* row) override;

 private:
  class Fetched;

  HRESULT FetchAndWrite(HostRowBuffer& row);
  HRESULT Write(std::span<const VARIANT> values);

  const std::unique_ptr<TextFile::RowWriter> writer_;
  std::vector<VARIANT> values_;  // of a row that does not lend its own, else VT_EMPTY
};

}  // namespace quenra
