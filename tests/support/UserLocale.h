// The user's locale and the ANSI code page for the length of one test.
//
//   const UserLocale german(u"de-DE");
#pragma once

#include <gtest/gtest.h>

#include <string_view>

#include "host/CoreSupport/QUENRALocale.h"

class UserLocale {
 public:
  explicit UserLocale(std::u16string_view name) { Set(name); }
  UserLocale(const UserLocale&) = delete;
  UserLocale& operator=(const UserLocale&) = delete;
  ~UserLocale() {
    quenra::QUENRALocale::ResetLocale();
    quenra::QUENRALocale::SetAnsiCodePage(0);
  }

  // Of an object, which takes the change back.
  // NOLINTNEXTLINE(readability-convert-member-functions-to-static)
  void Set(std::u16string_view name) {
    EXPECT_TRUE(quenra::QUENRALocale::SetLocale(name));
    EXPECT_TRUE(quenra::QUENRALocale::SetAnsiCodePage(1252));
  }
};

// A test whose results depend on the locale: it starts in en-US with code page 1252.
class EnglishTest : public ::testing::Test {
 protected:
  UserLocale locale_{u"en-US"};
};
