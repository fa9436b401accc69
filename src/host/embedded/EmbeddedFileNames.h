// The embedded host's list of file names.
#pragma once

#include <string>
#include <vector>

#include "host/com/Implements.h"
#include "host/interfaces/HostClasses.h"
#include "host/interfaces/HostFileNames.h"

namespace quenra {

class EmbeddedFileNames final : public Implements<HostFileNames> {
 public:
  std::u16string_view ClassName() const noexcept override { return u"EmbeddedFileNames"; }
  const CLSID* ClassId() const noexcept override { return &CLSID_HostFileNames; }

  HRESULT STDMETHODCALLTYPE Reset() override;
  HRESULT STDMETHODCALLTYPE Next(BSTR* name, VARIANT_BOOL* isDirectory) override;
  HRESULT STDMETHODCALLTYPE RemoveCurrent() override;
  // At the end of the list: a later Next delivers it.
  HRESULT STDMETHODCALLTYPE Add(BSTR name, VARIANT_BOOL isDirectory) override;

 private:
  struct Entry {
    std::u16string name;
    bool isDirectory;
  };

  std::vector<Entry> entries_;
  std::size_t next_ = 0;     // the entry that Next delivers
  bool hasCurrent_ = false;  // whether the entry before next_ was delivered and is still there
};

}  // namespace quenra
