#ifndef _WIN32

#include <cstdlib>
#include <optional>

#include "support/TemporaryFolder.h"
#include "support/TestRegistry.h"

namespace quenra::test {

struct TestRegistry::Place {
  TemporaryFolder folder;
  std::optional<std::string> before;
};

TestRegistry::TestRegistry() : place_(std::make_unique<Place>()) {
  if (const char* const old = std::getenv("QUENRA_REGISTRY")) place_->before = old;
  ::setenv("QUENRA_REGISTRY", place_->folder.Native(u"registry").c_str(), 1);
}

TestRegistry::~TestRegistry() {
  if (place_->before)
    ::setenv("QUENRA_REGISTRY", place_->before->c_str(), 1);
  else
    ::unsetenv("QUENRA_REGISTRY");
}

}  // namespace quenra::test

#endif
