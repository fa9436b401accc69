#include <gtest/gtest.h>

#include <boost/filesystem/exception.hpp>
#include <new>
#include <stdexcept>

#include "host/com/ComCatch.h"

namespace quenra {
namespace {

template <class Exception>
HRESULT ResultOf(const Exception& exception) {
  try {
    throw exception;  // NOLINT(cert-err60-cpp): texts in exceptions are copied
  } catch (...) {
    return HResultFromCurrentException();
  }
}

boost::system::error_code SystemCode(int value) {
  return boost::system::error_code(value, boost::system::system_category());
}

TEST(ComCatchTest, MapsMemoryAndUnknownExceptions) {
  EXPECT_EQ(ResultOf(std::bad_alloc()), E_OUTOFMEMORY);
  EXPECT_EQ(ResultOf(std::runtime_error("x")), E_FAIL);
  EXPECT_EQ(ResultOf(5), E_FAIL);
}

TEST(ComCatchTest, MapsSystemCodes) {
  EXPECT_EQ(ResultOf(boost::system::system_error(SystemCode(5))), E_ACCESSDENIED);
  EXPECT_EQ(ResultOf(boost::system::system_error(SystemCode(0x12345))),
            static_cast<HRESULT>(0x80072345u))
      << "masked to 16 bits";
  EXPECT_EQ(ResultOf(boost::system::system_error(SystemCode(0))), 0);
  EXPECT_EQ(ResultOf(boost::system::system_error(SystemCode(-7))), -7);
}

TEST(ComCatchTest, MapsFileSystemErrors) {
  EXPECT_EQ(ResultOf(boost::filesystem::filesystem_error("open", SystemCode(2))),
            static_cast<HRESULT>(0x80070002u));
}

}  // namespace
}  // namespace quenra
