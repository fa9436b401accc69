// The user's locale, from the environment.
//
//   const UserLocale user = UserLocale::Current();
//   LocaleValues::Of(user.number).decimal;
#pragma once

#include <string>

// ICU names, each with a region.
struct UserLocale {
  std::string number;
  std::string time;
  std::string currency;
  std::string language;  // the locale that the user's number and name stand for

  // Read anew when the environment has changed. Safe from any thread as long as none writes the
  // environment.
  static UserLocale Current();
};
