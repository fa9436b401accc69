#include "platform/windows/FileRights.h"

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

constexpr SECURITY_INFORMATION kParts =
    OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;

// What the system says about a file's owner, group and access list.
class Security {
 public:
  // False when it cannot be read. A file system without such a thing has an empty one.
  bool Read(HANDLE file) {
    DWORD size = 0;
    ::GetKernelObjectSecurity(file, kParts, nullptr, 0, &size);
    const DWORD error = ::GetLastError();
    if (error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION) return true;
    if (error != ERROR_INSUFFICIENT_BUFFER) return false;
    bytes_.resize(size);
    return ::GetKernelObjectSecurity(file, kParts, Get(), size, &size) != FALSE;
  }

  bool IsEmpty() const noexcept { return bytes_.empty(); }
  PSECURITY_DESCRIPTOR Get() { return bytes_.data(); }

  PSID Owner() {
    PSID sid = nullptr;
    BOOL isDefault = FALSE;
    return ::GetSecurityDescriptorOwner(Get(), &sid, &isDefault) ? sid : nullptr;
  }
  PSID Group() {
    PSID sid = nullptr;
    BOOL isDefault = FALSE;
    return ::GetSecurityDescriptorGroup(Get(), &sid, &isDefault) ? sid : nullptr;
  }
  // Null lets everybody do everything.
  PACL List() {
    PACL list = nullptr;
    BOOL isThere = FALSE;
    BOOL isDefault = FALSE;
    return ::GetSecurityDescriptorDacl(Get(), &isThere, &list, &isDefault) && isThere ? list
                                                                                      : nullptr;
  }
  bool Has(SECURITY_DESCRIPTOR_CONTROL bit) {
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    return ::GetSecurityDescriptorControl(Get(), &control, &revision) && (control & bit) != 0;
  }
  // What a set list is taken for: made by hand, or from the folder's.
  void KeepInheritance() {
    if (Has(SE_DACL_AUTO_INHERITED))
      ::SetSecurityDescriptorControl(Get(), SE_DACL_AUTO_INHERIT_REQ, SE_DACL_AUTO_INHERIT_REQ);
  }

 private:
  std::vector<std::byte> bytes_;
};

bool IsSameSid(PSID a, PSID b) {
  return a == b || (a != nullptr && b != nullptr && ::EqualSid(a, b));
}

bool IsSameList(PACL a, PACL b) {
  return a == b || (a != nullptr && b != nullptr && a->AclSize == b->AclSize &&
                    std::memcmp(a, b, a->AclSize) == 0);
}

// Only what differs is set: to become the owner of a file takes a right, to stay it does not.
bool TakeOverSecurity(HANDLE from, HANDLE to) {
  Security wanted;
  Security present;
  if (!wanted.Read(from) || !present.Read(to)) return false;
  if (wanted.IsEmpty() || present.IsEmpty()) return true;
  SECURITY_INFORMATION parts = 0;
  if (!IsSameSid(wanted.Owner(), present.Owner())) parts |= OWNER_SECURITY_INFORMATION;
  if (!IsSameSid(wanted.Group(), present.Group())) parts |= GROUP_SECURITY_INFORMATION;
  const bool isProtected = wanted.Has(SE_DACL_PROTECTED);
  if (!IsSameList(wanted.List(), present.List()) || isProtected != present.Has(SE_DACL_PROTECTED))
    parts |= DACL_SECURITY_INFORMATION | (isProtected ? PROTECTED_DACL_SECURITY_INFORMATION
                                                      : UNPROTECTED_DACL_SECURITY_INFORMATION);
  if (parts == 0) return true;
  wanted.KeepInheritance();
  return ::SetKernelObjectSecurity(to, parts, wanted.Get()) != FALSE;
}

bool HasFurtherStreams(const std::wstring& path) {
  WIN32_FIND_STREAM_DATA stream;
  const HANDLE search = ::FindFirstStreamW(path.c_str(), FindStreamInfoStandard, &stream, 0);
  if (search == INVALID_HANDLE_VALUE) return false;
  bool further = false;
  do {
    further = further || std::wstring_view(stream.cStreamName) != L"::$DATA";
  } while (::FindNextStreamW(search, &stream));
  ::FindClose(search);
  return further;
}

bool TakeOverAttributes(HANDLE from, HANDLE to) {
  constexpr DWORD kStorage = FILE_ATTRIBUTE_COMPRESSED | FILE_ATTRIBUTE_ENCRYPTED;
  constexpr DWORD kCopied = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                            FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  FILE_BASIC_INFO wanted;
  FILE_BASIC_INFO present;
  if (!::GetFileInformationByHandleEx(from, FileBasicInfo, &wanted, sizeof wanted) ||
      !::GetFileInformationByHandleEx(to, FileBasicInfo, &present, sizeof present) ||
      ((wanted.FileAttributes ^ present.FileAttributes) & kStorage) != 0)
    return false;
  FILE_BASIC_INFO set = {};  // zeros leave the times as they are
  set.CreationTime = wanted.CreationTime;
  set.FileAttributes = wanted.FileAttributes & kCopied;
  if (set.FileAttributes == 0) set.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  return ::SetFileInformationByHandle(to, FileBasicInfo, &set, sizeof set) != FALSE;
}

}  // namespace

bool TakeOverRights(const std::wstring& path, HANDLE from, HANDLE to) {
  return !HasFurtherStreams(path) && TakeOverSecurity(from, to) && TakeOverAttributes(from, to);
}
