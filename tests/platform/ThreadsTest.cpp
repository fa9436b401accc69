#include <gtest/gtest.h>

#include <thread>

#include "platform/Threads.h"

namespace {

TEST(ThreadsTest, TheOwnerMayEnterAgainAndOthersMayNot) {
  CRITICAL_SECTION lock{};
  ::InitializeCriticalSection(&lock);
  ::EnterCriticalSection(&lock);
  ::EnterCriticalSection(&lock);
  const auto triesFromOutside = [&lock] {
    BOOL entered = FALSE;
    std::thread([&] {
      entered = ::TryEnterCriticalSection(&lock);
      if (entered != FALSE) ::LeaveCriticalSection(&lock);
    }).join();
    return entered;
  };
  EXPECT_EQ(triesFromOutside(), FALSE);
  ::LeaveCriticalSection(&lock);
  EXPECT_EQ(triesFromOutside(), FALSE);
  ::LeaveCriticalSection(&lock);
  EXPECT_EQ(triesFromOutside(), TRUE);
  ::DeleteCriticalSection(&lock);
}

TEST(ThreadsTest, CountsAreAtomicAndAnswerTheNewValue) {
  LONG count = 0;
  EXPECT_EQ(::InterlockedIncrement(&count), 1);
  EXPECT_EQ(::InterlockedDecrement(&count), 0);
  EXPECT_EQ(::InterlockedExchange(&count, 5), 0);
  EXPECT_EQ(::InterlockedCompareExchange(&count, 7, 4), 5);
  EXPECT_EQ(::InterlockedCompareExchange(&count, 0, 5), 5);
  const auto work = [&count] {
    for (int i = 0; i < 10000; ++i) ::InterlockedIncrement(&count);
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(count, 20000);
}

TEST(ThreadsTest, EachThreadHasItsOwnNumber) {
  DWORD other = 0;
  std::thread([&other] { other = ::GetCurrentThreadId(); }).join();
  EXPECT_NE(other, ::GetCurrentThreadId());
}

}  // namespace
