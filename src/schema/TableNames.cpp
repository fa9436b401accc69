#include "schema/TableNames.h"

#include <algorithm>
#include <functional>

#include "host/DataCore/DataCoreUtil.h"

namespace TextFile {

namespace {

using quenra::DataCoreUtil;

constexpr std::u16string_view kReservedFiles[] = {u"schema.ini", u"~scheam.ini"};
constexpr std::u16string_view kDevices[] = {u"CON", u"PRN", u"AUX", u"NUL"};
constexpr std::u16string_view kNumberedDevices[] = {u"COM", u"LPT"};
// Windows has no file names with these; the separators are told apart for the message's sake.
constexpr std::u16string_view kForbidden = u"<>:\"|?*";

bool IsDevice(std::u16string_view name) noexcept {
  // A device keeps its meaning whatever the extension.
  std::u16string_view stem = name.substr(0, name.find(u'.'));
  while (stem.ends_with(u' ')) stem.remove_suffix(1);
  const auto is = [&](std::u16string_view device) {
    return DataCoreUtil::CompareFoldCase(stem, device);
  };
  if (std::any_of(std::begin(kDevices), std::end(kDevices), is)) return true;
  if (stem.size() != 4 || stem[3] < u'1' || stem[3] > u'9') return false;
  return std::any_of(std::begin(kNumberedDevices), std::end(kNumberedDevices),
                     [&](std::u16string_view device) {
                       return DataCoreUtil::CompareFoldCase(stem.substr(0, 3), device);
                     });
}

// Files of such names come and go while tables are made, and one that is left is removed.
bool IsTemporary(std::u16string_view name) noexcept {
  const auto endsIn = [&](std::u16string_view extension) {
    return name.size() > extension.size() &&
           DataCoreUtil::CompareFoldCase(name.substr(name.size() - extension.size()), extension);
  };
  return name.front() == u'~' && (endsIn(u".tmp") || endsIn(u".old"));
}

}  // namespace

bool IsReservedFile(std::u16string_view name) noexcept {
  return std::any_of(
      std::begin(kReservedFiles), std::end(kReservedFiles),
      [&](std::u16string_view file) { return DataCoreUtil::CompareFoldCase(name, file); });
}

std::u16string_view WhyNotATableName(std::u16string_view name) noexcept {
  if (name.empty()) return u"the name is empty";
  if (name.find_first_of(u"/\\") != std::u16string_view::npos)
    return u"the name holds a path separator";
  if (name == u"." || name == u"..") return u"the name means a folder";
  if (IsReservedFile(name) || IsTemporary(name) || IsDevice(name)) return u"the name is reserved";
  const bool control =
      std::any_of(name.begin(), name.end(), [](char16_t unit) { return unit < 32; });
  if (control || name.find_first_of(kForbidden) != std::u16string_view::npos)
    return u"the name holds a character that file names cannot have everywhere";
  if (name.back() == u'.' || name.back() == u' ') return u"the name ends in a dot or a blank";
  return {};
}

std::u16string TemporaryNameOf(std::u16string_view name, std::u16string_view extension) {
  // File names end at 255 bytes, and a unit can take three: long ones are told by a hash.
  constexpr std::size_t kLongest = 80;
  constexpr std::size_t kKept = 56;
  std::u16string temporary = u"~" + std::u16string(name.substr(0, kKept));
  if (name.size() <= kLongest) {
    temporary += name.substr(std::min(name.size(), kKept));
  } else {
    const std::string digits = std::to_string(std::hash<std::u16string_view>()(name));
    temporary.append(digits.begin(), digits.end());
  }
  return temporary += extension;
}

}  // namespace TextFile
