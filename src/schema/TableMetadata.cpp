#include "schema/TableMetadata.h"

#include <algorithm>
#include <boost/filesystem.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/DataCore/DataCoreUtil.h"
#include "platform/ExclusiveFile.h"
#include "platform/FileNames.h"
#include "platform/RegularFile.h"
#include "schema/SchemaIniPaths.h"
#include "schema/TableNames.h"

namespace TextFile {

namespace {

constexpr std::u16string_view kExtension = u".xml";

bool IsRegularFile(const std::u16string& path) {
  boost::system::error_code ignored;
  return boost::filesystem::is_regular_file(boost::filesystem::path(NativeFromFileName(path)),
                                            ignored);
}

}  // namespace

bool HasMetadata(const TableLocation& table) { return IsRegularFile(table.MetadataPath()); }

std::u16string MetadataOwner(const TableLocation& table) {
  const std::u16string_view name = table.name;
  if (name.size() <= kExtension.size() ||
      !quenra::DataCoreUtil::CompareFoldCase(name.substr(name.size() - kExtension.size()),
                                             kExtension))
    return {};
  const std::u16string_view owner = name.substr(0, name.size() - kExtension.size());
  return IsRegularFile(JoinPath(table.folder, owner)) ? std::u16string(owner) : std::u16string();
}

void RequireNoMetadataName(const TableLocation& table) {
  if (const std::u16string owner = MetadataOwner(table); !owner.empty())
    FailTable(table.Path(), u"the name is that of the metadata of " + owner);
}

bool HaveSameBytes(const std::u16string& path, const std::u16string& other) {
  constexpr std::size_t kBlockBytes = std::size_t{64} * 1024;
  using Access = RegularFile::Access;
  RegularFile first;
  RegularFile second;
  if (!first.Open(NativeFromFileName(path), Access::kRead) ||
      !second.Open(NativeFromFileName(other), Access::kRead))
    return false;
  std::vector<char> one(kBlockBytes);
  std::vector<char> two(kBlockBytes);
  for (std::uint64_t at = 0;; at += kBlockBytes) {
    const std::ptrdiff_t count = first.ReadAt(at, one.data(), one.size());
    if (count < 0 || second.ReadAt(at, two.data(), two.size()) != count ||
        !std::equal(one.begin(), one.begin() + count, two.begin()))
      return false;
    if (count < static_cast<std::ptrdiff_t>(kBlockBytes)) return true;
  }
}

std::u16string SetAside(const std::u16string& folder, const std::u16string& name) {
  constexpr int kMostTries = 10000;
  const std::u16string path = JoinPath(folder, name);
  for (int number = 1;; ++number) {
    std::u16string extension;
    if (number > 1)
      for (const char digit : "." + std::to_string(number))
        extension += static_cast<char16_t>(digit);
    std::u16string aside = JoinPath(folder, TemporaryNameOf(name, extension + u".old"));
    const std::error_code error =
        ExclusiveFile::Move(NativeFromFileName(path), NativeFromFileName(aside));
    if (!error) return aside;
    if (!ExclusiveFile::MeansTaken(error) || number == kMostTries) FailTable(path, error);
  }
}

}  // namespace TextFile
