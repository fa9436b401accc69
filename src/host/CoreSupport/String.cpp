#include "host/CoreSupport/String.h"

namespace quenra {

std::u16string String::FormatMessageW(std::u16string_view format,
                                      std::initializer_list<std::u16string_view> arguments) {
  return ComposeMessage(format, arguments).text;
}

MessageText String::ComposeMessage(std::u16string_view format,
                                   std::initializer_list<std::u16string_view> arguments) {
  MessageText result;
  for (std::size_t i = 0; i < format.size(); ++i) {
    const char16_t unit = format[i];
    const char16_t next = i + 1 < format.size() ? format[i + 1] : u'\0';
    const auto number = static_cast<std::size_t>(next - u'0');
    if (unit == u'%' && next == u'%') {
      result.text += u'%';
      ++i;
    } else if (unit == u'%' && next >= u'1' && next <= u'9' && number <= arguments.size()) {
      result.Insert(arguments.begin()[number - 1]);
      ++i;
    } else {
      result.text += unit;
    }
  }
  return result;
}

}  // namespace quenra
