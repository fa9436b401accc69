#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/AppEventLog/EventLog.h"
#include "host/CoreSupport/EventLogTimer.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

using Kind = EventLogRecord::Kind;

// What a sink must copy: the views of the record do not outlive the call.
struct Event {
  Kind kind;
  int type;
  int argument;
  std::u16string name;
  std::u16string text;
  std::u16string context;
  double seconds;
};

class EventLogTest : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    EventLog::SetSink([this](const EventLogRecord& record) {
      events_.push_back({record.kind, record.type, record.argument, std::u16string(record.name),
                         std::u16string(record.text), std::u16string(record.context),
                         record.seconds});
    });
  }

  std::vector<Event> events_;
};

TEST_F(EventLogTest, MessagesReachTheSink) {
  EventLog::Write(u"In file a.csv, ...");
  ASSERT_EQ(events_.size(), 1u);
  EXPECT_EQ(events_[0].kind, Kind::kMessage);
  EXPECT_EQ(events_[0].text, u"In file a.csv, ...");
}

TEST_F(EventLogTest, WithoutSinkEventsAreDropped) {
  EventLog::SetSink(nullptr);
  EventLog::Write(u"nobody hears");
  EXPECT_TRUE(events_.empty());
}

TEST_F(EventLogTest, TimerReportsBeginAndEnd) {
  using Seconds = std::chrono::duration<double>;
  const auto before = std::chrono::steady_clock::now();
  Seconds within{};
  {
    const EventLogTimer timer(2, u"Table.Open", u"start", u"end", u"/data/a.csv", 9);
    ASSERT_EQ(events_.size(), 1u);
    const auto begun = std::chrono::steady_clock::now();
    while (within < std::chrono::milliseconds(5)) within = std::chrono::steady_clock::now() - begun;
  }
  const Seconds around = std::chrono::steady_clock::now() - before;
  ASSERT_EQ(events_.size(), 2u);
  EXPECT_EQ(events_[0].kind, Kind::kBegin);
  EXPECT_EQ(events_[0].text, u"start");
  EXPECT_EQ(events_[0].seconds, 0.0);
  EXPECT_EQ(events_[1].kind, Kind::kEnd);
  EXPECT_EQ(events_[1].text, u"end");
  EXPECT_GE(events_[1].seconds, within.count());
  EXPECT_LE(events_[1].seconds, around.count());
  for (const Event& event : events_) {
    EXPECT_EQ(event.type, 2);
    EXPECT_EQ(event.argument, 9);
    EXPECT_EQ(event.name, u"Table.Open");
    EXPECT_EQ(event.context, u"/data/a.csv");
  }
}

TEST_F(EventLogTest, TimerEndsWhenAnExceptionPasses) {
  const auto work = [] {
    const EventLogTimer timer(1, u"Work", u"start", u"end", u"", 0);
    throw std::runtime_error("stop");
  };
  EXPECT_THROW(work(), std::runtime_error);
  ASSERT_EQ(events_.size(), 2u);
  EXPECT_EQ(events_[1].kind, Kind::kEnd);
}

TEST_F(EventLogTest, SinkThatThrowsDoesNoHarm) {
  EventLog::SetSink([](const EventLogRecord&) { throw std::runtime_error("broken"); });
  EventLog::Write(u"one");
  int calls = 0;
  EventLog::SetSink([&calls](const EventLogRecord&) { ++calls; });
  EventLog::Write(u"two");
  EXPECT_EQ(calls, 1) << "the log goes on behind it";
}

TEST_F(EventLogTest, SinkMayReportAndReplaceItself) {
  int calls = 0;
  EventLog::SetSink([&calls](const EventLogRecord&) {
    ++calls;
    EventLog::Write(u"from the sink");
    EventLog::SetSink(nullptr);
  });
  EventLog::Write(u"one");
  EventLog::Write(u"two");
  EXPECT_EQ(calls, 1);
}

TEST_F(EventLogTest, ComesOneAtATime) {
  int inside = 0;
  int most = 0;
  int calls = 0;
  EventLog::SetSink([&](const EventLogRecord&) {
    most = std::max(most, ++inside);
    ++calls;
    --inside;
  });
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([] {
      for (int i = 0; i < 500; ++i) EventLog::Write(u"event");
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(calls, 2000);
  EXPECT_EQ(most, 1);
}

}  // namespace
}  // namespace quenra
