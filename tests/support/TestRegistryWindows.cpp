#ifdef _WIN32

#include "support/TestRegistry.h"

namespace quenra::test {

struct TestRegistry::Place {};

TestRegistry::TestRegistry() = default;
TestRegistry::~TestRegistry() = default;

}  // namespace quenra::test

#endif
