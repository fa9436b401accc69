// A BSTR with an owner.
//
//   const Bstr name(u"a.csv");
//   workspace->OpenDatasetByName(name.Get(), ...);
//
//   Bstr title;
//   info->DatasetFileTitle(title.Receive());
//   Show(title.View());
#pragma once

#include <new>
#include <string_view>

#include "platform/OleText.h"

namespace TextTables {

class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::u16string_view text)
      : text_(::SysAllocStringLen(AsOle(text.data()), static_cast<UINT>(text.size()))) {
    if (text_ == nullptr) throw std::bad_alloc();
  }
  ~Bstr() { ::SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  BSTR Get() const noexcept { return text_; }
  std::u16string_view View() const noexcept { return ViewOf(text_); }

  // For a call that gives a new text; the old one is freed.
  BSTR* Receive() noexcept {
    ::SysFreeString(text_);
    text_ = nullptr;
    return &text_;
  }

 private:
  BSTR text_ = nullptr;
};

}  // namespace TextTables
