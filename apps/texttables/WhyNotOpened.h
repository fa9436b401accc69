// What the system says of a file or a folder that the data source could not open. The data source
// hands on a code and a name; the reason is asked for afterwards, and may be gone by then.
#pragma once

#include <string>
#include <string_view>

namespace TextTables {

// "Permission denied", "it is a named pipe"; empty when the system sees nothing wrong.
std::string WhyFileIsNotOpened(std::u16string_view path);
std::string WhyFolderIsNotOpened(std::u16string_view path);

}  // namespace TextTables
