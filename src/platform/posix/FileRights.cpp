#include "platform/posix/FileRights.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <optional>
#include <string_view>

namespace {

constexpr mode_t kModeBits = 07777;

using Attributes = std::map<std::string, std::string, std::less<>>;

// One file's extended attributes, by its path or by its descriptor.
struct AttributeSource {
  const char* path = nullptr;
  int descriptor = -1;

  ssize_t List(char* names, std::size_t size) const {
    return path != nullptr ? ::llistxattr(path, names, size)
                           : ::flistxattr(descriptor, names, size);
  }
  ssize_t Get(const char* name, char* value, std::size_t size) const {
    return path != nullptr ? ::lgetxattr(path, name, value, size)
                           : ::fgetxattr(descriptor, name, value, size);
  }
};

// These say what a file's contents are, and the system makes them.
bool IsOfContents(std::string_view name) {
  return name == "security.ima" || name == "security.evm" || name == "security.capability";
}

// Nothing when they cannot be read; none on a file system that has no such thing.
std::optional<Attributes> AttributesOf(const AttributeSource& source) {
  Attributes attributes;
  const ssize_t room = source.List(nullptr, 0);
  if (room < 0 && (errno == ENOTSUP || errno == ENOSYS)) return attributes;
  if (room < 0) return std::nullopt;
  std::string names(static_cast<std::size_t>(room), '\0');
  const ssize_t size = source.List(names.data(), names.size());
  if (size < 0) return std::nullopt;
  names.resize(static_cast<std::size_t>(size));
  for (std::size_t start = 0; start < names.size();) {
    const std::string name = names.c_str() + start;
    start += name.size() + 1;
    if (IsOfContents(name)) continue;
    const ssize_t length = source.Get(name.c_str(), nullptr, 0);
    if (length < 0) return std::nullopt;
    std::string value(static_cast<std::size_t>(length), '\0');
    if (length > 0 && source.Get(name.c_str(), value.data(), value.size()) != length)
      return std::nullopt;
    attributes.emplace(name, std::move(value));
  }
  return attributes;
}

bool TakeOverAttributes(const std::string& path, int to) {
  const std::optional<Attributes> wanted = AttributesOf({path.c_str(), -1});
  const std::optional<Attributes> present = AttributesOf({nullptr, to});
  if (!wanted.has_value() || !present.has_value()) return false;
  // A new file may have got an access list from its folder.
  for (const auto& [name, value] : *present)
    if (!wanted->contains(name) && ::fremovexattr(to, name.c_str()) != 0) return false;
  for (const auto& [name, value] : *wanted) {
    const auto found = present->find(name);
    if (found != present->end() && found->second == value) continue;
    if (::fsetxattr(to, name.c_str(), value.data(), value.size(), 0) != 0) return false;
  }
  return true;
}

// Flags that a user sets ("chattr"); the others tell how the file system stores the file. A file
// that nobody may change or that only grows is not replaced anyway.
constexpr unsigned kUserFlags = FS_SECRM_FL | FS_UNRM_FL | FS_COMPR_FL | FS_SYNC_FL | FS_NODUMP_FL |
                                FS_NOATIME_FL | FS_NOCOMP_FL | FS_JOURNAL_DATA_FL | FS_NOTAIL_FL |
                                FS_DIRSYNC_FL | FS_NOCOW_FL;

bool TakeOverFlags(const std::string& path, int to) {
  const int from = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (from < 0) return true;  // a file that may be written but not read keeps what it has
  unsigned wanted = 0;
  unsigned present = 0;
  const bool known =
      ::ioctl(from, FS_IOC_GETFLAGS, &wanted) == 0 && ::ioctl(to, FS_IOC_GETFLAGS, &present) == 0;
  ::close(from);
  if (!known || ((wanted ^ present) & kUserFlags) == 0) return true;
  unsigned flags = (present & ~kUserFlags) | (wanted & kUserFlags);
  return ::ioctl(to, FS_IOC_SETFLAGS, &flags) == 0;
}

}  // namespace

bool TakeOverRights(const std::string& path, const struct stat& status, int to) {
  struct stat now {};
  if (::fstat(to, &now) != 0) return false;
  const bool isOwned = now.st_uid == status.st_uid && now.st_gid == status.st_gid;
  // The mode comes last: a change of the owner takes bits away, and one of the access list changes
  // them.
  if ((!isOwned && ::fchown(to, status.st_uid, status.st_gid) != 0) ||
      !TakeOverAttributes(path, to) || ::fchmod(to, status.st_mode & kModeBits) != 0 ||
      !TakeOverFlags(path, to))
    return false;
  // A file system may take all of this and do nothing.
  return ::fstat(to, &now) == 0 && now.st_uid == status.st_uid && now.st_gid == status.st_gid &&
         (now.st_mode & kModeBits) == (status.st_mode & kModeBits);
}
