// Threads that get the id of a thread that has ended. Ids come back after tens of thousands of
// others, so the system's answer is replaced: the host library asks through the program's own
// definition.
#ifndef _WIN32

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>

#include "host/CoreSupport/Components.h"
#include "module/ModuleTest.h"
#include "platform/Threads.h"

namespace {

thread_local pid_t givenId = 0;

}  // namespace

extern "C" __attribute__((visibility("default"))) pid_t gettid() noexcept {
  return givenId != 0 ? givenId : static_cast<pid_t>(::syscall(SYS_gettid));
}

namespace quenra::test {
namespace {

class ThreadIdPosixTest : public ModuleTest {
 protected:
  static void RunWithId(pid_t id, const std::function<void()>& work) {
    std::thread([&] {
      givenId = id;
      EXPECT_EQ(::GetCurrentThreadId(), static_cast<DWORD>(id));
      work();
    }).join();
  }

  // Sets the option on this thread's factory, and answers whether it was set.
  bool SetAgain() const {
    VARIANT_BOOL previous = VARIANT_FALSE;
    const auto options = Factory().As<IWorkspaceFactoryOpenOptions>();
    EXPECT_EQ(options->SetOption(BString(u"ReadAsManyRowsAsNeeded").Get(), &previous), S_OK);
    return previous != VARIANT_FALSE;
  }

  // Of a thread that runs, so that the system knows it.
  const pid_t id_ = ::gettid();
};

TEST_F(ThreadIdPosixTest, LaterThreadHasAFactoryOfItsOwn) {
  for (int i = 0; i < 50; ++i) {
    RunWithId(id_, [this] {
      EXPECT_FALSE(SetAgain());
      EXPECT_TRUE(SetAgain()) << "within one life it is the same factory";
    });
  }
}

TEST_F(ThreadIdPosixTest, FactoryThatIsHeldStaysWithItsLife) {
  ComPtr<IPlugInWorkspaceFactoryHelper2> held;
  RunWithId(id_, [&] { held = Factory(); });
  RunWithId(id_, [&] {
    EXPECT_NE(Factory(), held);
    EXPECT_EQ(Factory(), Factory());
  });
  held.Reset();
}

// The thread that has the id now may never ask for a factory.
TEST_F(ThreadIdPosixTest, EndedLifeIsForgottenThoughItsIdIsInUse) {
  const LONG before = LiveComponentCount();
  RunWithId(id_, [this] { EXPECT_TRUE(Factory()); });
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
  EXPECT_EQ(LiveComponentCount(), before);
}

// Thread-local objects of the host may come to the module when its own are gone.
TEST_F(ThreadIdPosixTest, LastStepsOfAThreadLeaveNothing) {
  struct AtTheEnd {
    std::function<void()> work;
    ~AtTheEnd() {
      if (work) work();
    }
  };
  std::thread([this] {
    static thread_local AtTheEnd atTheEnd;
    atTheEnd.work = [this] {
      EXPECT_TRUE(Factory());
      EXPECT_TRUE(Factory());
    };
    EXPECT_TRUE(Factory());  // made later, so it goes before
  }).join();
  EXPECT_EQ(module_->CanUnloadNow(), S_OK);
}

}  // namespace
}  // namespace quenra::test

#endif
