#include <string>
#include <thread>
#include <vector>

#include "host/DataCore/DataAccessUtil.h"
#include "host/interfaces/HostErrors.h"
#include "platform/OleText.h"
#include "tests/host/HostTest.h"

namespace quenra {
namespace {

constexpr GUID kSource = {
    0xbb82d2c2, 0x6a31, 0x4bf2, {0x95, 0x66, 0x5b, 0x8c, 0x45, 0x06, 0x7a, 0x81}};
constexpr HRESULT kCode = static_cast<HRESULT>(0x80040211u);

ComPtr<IErrorInfo> TakeErrorInfo() {
  ComPtr<IErrorInfo> info;
  ::GetErrorInfo(0, info.Receive());
  return info;
}

std::vector<std::u16string> TextsOf(ComPtr<HostChainedError> error) {
  std::vector<std::u16string> texts;
  while (error) {
    BString text;
    EXPECT_EQ(error->GetText(text.Receive()), S_OK);
    texts.emplace_back(text.View());
    ComPtr<HostChainedError> next;
    const HRESULT result = error->GetNext(next.Receive());
    EXPECT_EQ(result, next ? S_OK : S_FALSE);
    error = std::move(next);
  }
  return texts;
}

using DataAccessUtilTest = HostTest;

TEST_F(DataAccessUtilTest, AnswersTheCodeAndLeavesAnErrorObject) {
  EXPECT_EQ(DataAccessUtil::ChainError(kCode, kSource, u"a.csv"), kCode);
  const ComPtr<IErrorInfo> info = TakeErrorInfo();
  ASSERT_TRUE(info);
  EXPECT_FALSE(TakeErrorInfo()) << "read once";

  BString text;
  EXPECT_EQ(info->GetDescription(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"a.csv");
  EXPECT_EQ(info->GetSource(text.Receive()), S_OK);
  EXPECT_EQ(text.Get(), nullptr) << "there is an identifier, but no text";
  EXPECT_EQ(info->GetHelpFile(text.Receive()), S_OK);
  EXPECT_EQ(text.Get(), nullptr);
  GUID source = {};
  EXPECT_EQ(info->GetGUID(&source), S_OK);
  EXPECT_TRUE(IsEqualGUID(source, kSource));
  DWORD helpContext = 1;
  EXPECT_EQ(info->GetHelpContext(&helpContext), S_OK);
  EXPECT_EQ(helpContext, 0u);
}

TEST_F(DataAccessUtilTest, ErrorObjectAnswersWhatTheSystemsDoesNot) {
  DataAccessUtil::ChainError(kCode, kSource, std::u16string_view(u"a\0b", 3));
  const ComPtr<HostChainedError> error = TakeErrorInfo().As<HostChainedError>();
  ASSERT_TRUE(error);
  HRESULT code = S_OK;
  EXPECT_EQ(error->GetCode(&code), S_OK);
  EXPECT_EQ(code, kCode);
  GUID source = {};
  EXPECT_EQ(error->GetSourceId(&source), S_OK);
  EXPECT_TRUE(IsEqualGUID(source, kSource));
  BString text;
  EXPECT_EQ(error->GetText(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), std::u16string_view(u"a\0b", 3));
}

TEST_F(DataAccessUtilTest, OriginIsAnsweredAsItStands) {
  DataAccessUtil::ChainError(kCode, ErrorOrigin{kSource, u"\"A.B\"", u"\"a.hlp\""}, u"text");
  const ComPtr<IErrorInfo> info = TakeErrorInfo();
  ASSERT_TRUE(info);
  BString text;
  EXPECT_EQ(info->GetSource(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"\"A.B\"");
  EXPECT_EQ(info->GetHelpFile(text.Receive()), S_OK);
  EXPECT_EQ(text.View(), u"\"a.hlp\"");
  GUID id = {};
  EXPECT_EQ(info->GetGUID(&id), S_OK);
  EXPECT_TRUE(IsEqualGUID(id, kSource));
}

TEST_F(DataAccessUtilTest, RefusesNullResults) {
  DataAccessUtil::ChainError(kCode, kSource, u"text");
  const ComPtr<IErrorInfo> info = TakeErrorInfo();
  ASSERT_TRUE(info);
  EXPECT_EQ(info->GetGUID(nullptr), E_POINTER);
  EXPECT_EQ(info->GetSource(nullptr), E_POINTER);
  EXPECT_EQ(info->GetDescription(nullptr), E_POINTER);
  EXPECT_EQ(info->GetHelpFile(nullptr), E_POINTER);
  EXPECT_EQ(info->GetHelpContext(nullptr), E_POINTER);
  const ComPtr<HostChainedError> error = info.As<HostChainedError>();
  EXPECT_EQ(error->GetCode(nullptr), E_POINTER);
  EXPECT_EQ(error->GetSourceId(nullptr), E_POINTER);
  EXPECT_EQ(error->GetNext(nullptr), E_POINTER);
  EXPECT_EQ(error->GetText(nullptr), E_POINTER);
}

TEST_F(DataAccessUtilTest, NewestComesFirst) {
  for (const std::u16string_view text : {u"first", u"second", u"third"})
    DataAccessUtil::ChainError(kCode, kSource, text);
  EXPECT_EQ(TextsOf(TakeErrorInfo().As<HostChainedError>()),
            (std::vector<std::u16string>{u"third", u"second", u"first"}));
}

TEST_F(DataAccessUtilTest, ReadingStartsAnotherChain) {
  DataAccessUtil::ChainError(kCode, kSource, u"old");
  const ComPtr<IErrorInfo> old = TakeErrorInfo();
  DataAccessUtil::ChainError(kCode, kSource, u"new");
  EXPECT_EQ(TextsOf(TakeErrorInfo().As<HostChainedError>()), (std::vector<std::u16string>{u"new"}));
}

TEST_F(DataAccessUtilTest, KeepsTheNewest64) {
  std::vector<std::u16string> expected;
  for (int i = 0; i < 200; ++i) {
    const std::u16string text(static_cast<std::size_t>(i + 1), u'x');
    DataAccessUtil::ChainError(kCode - i, kSource, text);
    if (i >= 200 - 64) expected.insert(expected.begin(), text);
  }
  const ComPtr<HostChainedError> newest = TakeErrorInfo().As<HostChainedError>();
  EXPECT_EQ(TextsOf(newest), expected);
  ComPtr<HostChainedError> second;
  ASSERT_EQ(newest->GetNext(second.Receive()), S_OK);
  HRESULT code = S_OK;
  EXPECT_EQ(second->GetCode(&code), S_OK);
  EXPECT_EQ(code, kCode - 198) << "codes stay with their texts";
}

std::vector<MessageText> NumberedMessages(int count) {
  std::vector<MessageText> messages(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i)
    messages[static_cast<std::size_t>(i)].Insert(std::u16string(static_cast<std::size_t>(i), u'y'));
  return messages;
}

// What a row has to tell of is not cut to what an unread chain may keep.
TEST_F(DataAccessUtilTest, ErrorsOfOneCallAreAllKept) {
  for (int i = 0; i < 70; ++i) DataAccessUtil::ChainError(kCode, kSource, u"before");
  const std::vector<MessageText> messages = NumberedMessages(1000);
  EXPECT_EQ(DataAccessUtil::ChainErrors(kCode, {kSource}, messages), kCode);
  const std::vector<std::u16string> texts = TextsOf(TakeErrorInfo().As<HostChainedError>());
  ASSERT_EQ(texts.size(), 1000u) << "none of those before";
  EXPECT_EQ(texts.front(), messages.back().text) << "the newest first";
  EXPECT_EQ(texts.back(), messages.front().text);

  DataAccessUtil::ChainErrors(kCode, {kSource}, messages);
  DataAccessUtil::ChainErrors(kCode, {kSource}, {messages.data(), 10});
  EXPECT_EQ(TextsOf(TakeErrorInfo().As<HostChainedError>()).size(), 64u) << "nobody read them";

  DataAccessUtil::ChainErrors(kCode, {kSource}, {});
  EXPECT_FALSE(TakeErrorInfo());
}

// As many as a table may have columns: they must not go away one inside the other.
TEST_F(DataAccessUtilTest, LongChainsAreDestroyedWithoutDeepRecursion) {
  DataAccessUtil::ChainErrors(kCode, {kSource}, std::vector<MessageText>(500'000));
  EXPECT_TRUE(TakeErrorInfo());
}

TEST_F(DataAccessUtilTest, ErrorsTellWhichPartsOfTheirTextWerePutIn) {
  MessageText message;
  message.Add(u"In ").Insert(u"a.csv").Add(u", line ").Insert(u"").Insert(u"7");
  DataAccessUtil::ChainErrors(kCode, {kSource}, {&message, 1});
  // Behind so many that the chain is made again.
  for (int i = 0; i < 63; ++i) DataAccessUtil::ChainError(kCode, kSource, u"own words");
  DataAccessUtil::ChainError(kCode, kSource, u"own words");
  EXPECT_EQ(TextsOf(TakeErrorInfo().As<HostChainedError>()).back(), u"own words");

  DataAccessUtil::ChainErrors(kCode, {kSource}, std::vector<MessageText>(65, message));
  DataAccessUtil::ChainError(kCode, kSource, u"own words");
  ComPtr<HostChainedError> error = TakeErrorInfo().As<HostChainedError>();
  LONG count = -1;
  EXPECT_EQ(error.As<HostErrorInserts>()->GetInsertCount(&count), S_OK);
  EXPECT_EQ(count, 0);
  ComPtr<HostChainedError> copied;
  ASSERT_EQ(error->GetNext(copied.Receive()), S_OK);
  const auto inserts = copied.As<HostErrorInserts>();
  ASSERT_TRUE(inserts);
  EXPECT_EQ(inserts->GetInsertCount(&count), S_OK);
  ASSERT_EQ(count, 3);
  const LONG expected[][2] = {{3, 5}, {15, 0}, {15, 1}};
  LONG begin = -1;
  LONG length = -1;
  for (LONG i = 0; i < count; ++i) {
    EXPECT_EQ(inserts->GetInsert(i, &begin, &length), S_OK);
    EXPECT_EQ(begin, expected[i][0]);
    EXPECT_EQ(length, expected[i][1]);
  }
  EXPECT_EQ(inserts->GetInsert(3, &begin, &length), E_INVALIDARG);
  EXPECT_EQ(inserts->GetInsert(-1, &begin, &length), E_INVALIDARG);
  EXPECT_EQ(inserts->GetInsert(0, nullptr, &length), E_POINTER);
  EXPECT_EQ(inserts->GetInsert(0, &begin, nullptr), E_POINTER);
  EXPECT_EQ(inserts->GetInsertCount(nullptr), E_POINTER);
}

TEST_F(DataAccessUtilTest, EachThreadHasItsOwnChain) {
  DataAccessUtil::ChainError(kCode, kSource, u"here");
  std::vector<std::u16string> there;
  std::thread([&there] {
    DataAccessUtil::ChainError(kCode, kSource, u"there");
    there = TextsOf(TakeErrorInfo().As<HostChainedError>());
  }).join();
  EXPECT_EQ(there, (std::vector<std::u16string>{u"there"}));
  EXPECT_EQ(TextsOf(TakeErrorInfo().As<HostChainedError>()),
            (std::vector<std::u16string>{u"here"}));
}

TEST_F(DataAccessUtilTest, ChainGoesWithItsThread) {
  const LONG before = LiveComponentCount();
  std::thread([] { DataAccessUtil::ChainError(kCode, kSource, u"never read"); }).join();
  EXPECT_EQ(LiveComponentCount(), before);
}

TEST_F(DataAccessUtilTest, ForeignErrorJoinsTheChain) {
  ComPtr<ICreateErrorInfo> foreign;
  ASSERT_EQ(::CreateErrorInfo(foreign.Receive()), S_OK);
  std::u16string description = u"somebody else's";
  ASSERT_EQ(foreign->SetDescription(AsOle(description.data())), S_OK);
  std::u16string component = u"Other.Component";
  ASSERT_EQ(foreign->SetSource(AsOle(component.data())), S_OK);
  ComPtr<IErrorInfo> info;
  ASSERT_EQ(foreign->QueryInterface(IID_IErrorInfo, info.ReceiveVoid()), S_OK);
  ::SetErrorInfo(0, info.Get());
  DataAccessUtil::ChainError(kCode, kSource, u"ours");
  const ComPtr<HostChainedError> newest = TakeErrorInfo().As<HostChainedError>();
  EXPECT_EQ(TextsOf(newest), (std::vector<std::u16string>{u"ours", u"somebody else's"}));
  ComPtr<HostChainedError> older;
  ASSERT_EQ(newest->GetNext(older.Receive()), S_OK);
  BString source;
  EXPECT_EQ(older.As<IErrorInfo>()->GetSource(source.Receive()), S_OK);
  EXPECT_EQ(source.View(), component);
}

TEST_F(DataAccessUtilTest, EventLogHearsOfIt) {
  std::uint32_t code = 0;
  std::u16string text;
  int calls = 0;
  EventLog::SetSink([&](const EventLogRecord& record) {
    ++calls;
    EXPECT_EQ(record.kind, EventLogRecord::Kind::kError);
    code = record.code;
    text = record.text;
  });
  DataAccessUtil::ChainError(kCode, kSource, u"a.csv");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(code, 0x80040211u);
  EXPECT_EQ(text, u"a.csv");
}

}  // namespace
}  // namespace quenra
