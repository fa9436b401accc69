// The registry that a test may write to, and what it holds.
//
// On Windows that is the registry of the machine: the test takes back what it has written.
// Elsewhere it is an empty file of the test's own.
//
//   TestRegistry registry;
//   Register();
//   EXPECT_THAT(registry.Dump(u"workshop.Widget"), ElementsAre("workshop.Widget: =Widget"));
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Registry.h"

namespace quenra::test {

class TestRegistry {
 public:
  TestRegistry();
  ~TestRegistry();
  TestRegistry(const TestRegistry&) = delete;
  TestRegistry& operator=(const TestRegistry&) = delete;

  // A line for each key from `path` down, in the order of names: the path as it was given and read,
  // a colon, and " name=text" for each of its values that the tests know to ask for (the default
  // value, which has no name, and ThreadingModel). Empty when there is no such key.
  std::vector<std::string> Dump(const std::u16string& path) const;

  // Creates the key and sets its default value.
  void Write(const std::u16string& path, const std::u16string& text) const;

 private:
  struct Place;
  std::unique_ptr<Place> place_;
};

}  // namespace quenra::test
