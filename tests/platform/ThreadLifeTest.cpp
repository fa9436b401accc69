#include <gtest/gtest.h>

#include <optional>
#include <thread>

#include "platform/ThreadLife.h"
#include "platform/Threads.h"

namespace {

TEST(ThreadLifeTest, IsTheSameThroughoutAThread) {
  const ThreadLife life = ThreadLife::OfThisThread();
  EXPECT_TRUE(life == ThreadLife::OfThisThread());
  EXPECT_EQ(life.Id(), ::GetCurrentThreadId());
  EXPECT_FALSE(life.HasEnded());
}

TEST(ThreadLifeTest, EndsWithItsThreadAndIsNoOther) {
  std::optional<ThreadLife> first;
  std::thread([&first] {
    first = ThreadLife::OfThisThread();
    EXPECT_FALSE(first->HasEnded());
  }).join();
  EXPECT_TRUE(first->HasEnded());
  EXPECT_FALSE(*first == ThreadLife::OfThisThread());
  for (int i = 0; i < 300; ++i) {
    std::thread([&first] { EXPECT_FALSE(*first == ThreadLife::OfThisThread()); }).join();
    EXPECT_TRUE(first->HasEnded()) << "whoever has the id now";
  }
}

}  // namespace
