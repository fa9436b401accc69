// Gives up an administrator's rights for a scope, so that what a file's mode forbids is refused.
// Elsewhere than on POSIX systems, and for ordinary users, nothing changes.
#pragma once

#ifndef _WIN32
#include <unistd.h>
#endif

class OrdinaryUser {
 public:
#ifdef _WIN32
  OrdinaryUser() = default;
#else
  OrdinaryUser() : user_(::geteuid()) {
    constexpr uid_t kNobody = 65534;
    if (user_ == 0) changed_ = ::seteuid(kNobody) == 0;
  }
  ~OrdinaryUser() {
    if (changed_) changed_ = ::seteuid(user_) != 0;
  }
#endif
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

#ifndef _WIN32
 private:
  uid_t user_;
  bool changed_ = false;
#endif
};
