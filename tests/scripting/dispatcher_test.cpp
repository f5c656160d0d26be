#include "scripting/dispatcher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/scripting/test_commands.h"
#include "tests/support/building.h"
#include "tests/support/describe.h"
#include "tests/support/surroundings.h"

namespace skerrow::scripting {
namespace {

using namespace literals;
using namespace std::chrono_literals;
using tests::described;
using tests::scriptText;
using tests::Stage;

std::string described(const core::Reply& reply) {
  if (const auto* error = std::get_if<core::ScriptError>(&reply)) {
    return "error " + std::to_string(error->number()) + " " + error->message();
  }
  return described(std::get<std::optional<ScriptValue>>(reply));
}

Event event(std::string command, EventArguments arguments = {}) {
  Event made;
  made.command = std::move(command);
  made.arguments = std::move(arguments);
  return made;
}

Event eventWith(std::string command, ScriptValue direct,
                std::chrono::milliseconds timeout = Event::kDefaultTimeout) {
  Event made = event(std::move(command));
  made.directParameter = std::move(direct);
  made.timeout = timeout;
  return made;
}

class DispatcherTest : public testing::Test {
 protected:
  DispatcherTest() { tests::setStage(stage_); }
  ~DispatcherTest() override { stage_->release.set(); }

  std::string perform(Event event) { return described(dispatcher_->perform(std::move(event))); }

  /// Sends an event whose reply is gathered under a name.
  Dispatcher::EventId send(const std::string& name, Event event) {
    return dispatcher_->send(std::move(event), [this, name](const core::Reply& reply) {
      const auto gather = [this, name, reply = described(reply)] {
        replies_[name].push_back(reply);
      };
      if (loop_.isOwnThread()) return gather();
      loop_.post(gather);
    });
  }

  /// Serves everything that was posted to the loop so far.
  void serveWhatIsThere() {
    bool isServed = false;
    loop_.post([&] { isServed = true; });
    loop_.runUntil([&] { return isServed; });
  }

  void serveFor(std::chrono::milliseconds time) {
    bool isOver = false;
    loop_.startTimer(time, [&] { isOver = true; });
    loop_.runUntil([&] { return isOver; });
  }

  void serveUntilReplies(std::size_t count) {
    bool isGivenUp = false;
    const auto timer = loop_.startTimer(tests::kPatience, [&] { isGivenUp = true; });
    loop_.runUntil([&] { return isGivenUp || replies_.size() >= count; });
    loop_.stopTimer(timer);
    EXPECT_FALSE(isGivenUp);
  }

  std::shared_ptr<Stage> stage_ = std::make_shared<Stage>();
  std::map<std::string, std::vector<std::string>> replies_;
  tests::Surroundings surroundings_;
  core::MainLoop& loop_ = surroundings_.loop;
  std::optional<Dispatcher> dispatcher_{std::in_place, testDictionary(), testDictionaryClasses(),
                                        surroundings_.context()};
};

struct ReplyRow {
  const char* about;
  Event event;
  const char* reply;
};

TEST_F(DispatcherTest, AnswersWithWhatTheCommandEndsWith) {
  const ReplyRow rows[] = {
      {"a result", eventWith("TestBehave", scriptText(u"é")), "'utxt' “\\u00E9”"},
      {"an empty result", eventWith("TestBehave", scriptText(u"")), "'utxt' “”"},
      {"nothing", eventWith("TestBehave", scriptText(u"nothing")), "nothing"},
      {"a rejection", eventWith("TestBehave", scriptText(u"reject")), "error 2001 Rejected."},
      {"a failure", eventWith("TestBehave", scriptText(u"fail")), "error 2002 Failed."},
      {"an exception", eventWith("TestBehave", scriptText(u"break")), "error -10000 Broken."},
      {"an answer at once", eventWith("TestAnswerAtOnce", ScriptValue::integer32(5)),
       "'long' 05000000"},
      {"nothing at once", event("TestAnswerAtOnce"), "nothing"},
      {"missing value given as the direct parameter", eventWith("TestAnswerAtOnce", ScriptValue()),
       "'type' 676E736D"},
  };
  for (const ReplyRow& row : rows) EXPECT_EQ(perform(row.event), row.reply) << row.about;
}

TEST_F(DispatcherTest, RefusesWhatTheDictionaryDoesNotHold) {
  const ReplyRow rows[] = {
      {"an unknown command", event("TestNothing"),
       "error -1708 There is no command “TestNothing”."},
      {"no command", event(""), "error -1708 There is no command “”."},
      {"another case", event("testEcho"),
       "error -1708 There is no command “testEcho”; did you mean TestEcho?"},
      {"a command's words", event("echo"),
       "error -1708 There is no command “echo”; did you mean TestEcho?"},
      {"Unicode", event("Écho%@"), "error -1708 There is no command “Écho%@”."},
      {"an unknown command before its arguments", event("Nope", {{"nope", ScriptValue()}}),
       "error -1708 There is no command “Nope”."},
      {"an unknown argument", event("TestEcho", {{"nope", ScriptValue()}}),
       "error -1701 TestEcho has no argument “nope”."},
      {"an argument without a key", event("TestEcho", {{"", ScriptValue()}}),
       "error -1701 TestEcho has no argument “”."},
      {"an argument by its words", event("TestEcho", {{"with text", scriptText(u"a")}}),
       "error -1701 TestEcho has no argument “with text”; did you mean “text”?"},
      {"an unknown one after a known one",
       event("TestEcho", {{"text", scriptText(u"a")}, {"é", scriptText(u"b")}}),
       "error -1701 TestEcho has no argument “é”."},
      {"an argument of a command without any", event("TestWorkLong", {{"text", scriptText(u"a")}}),
       "error -1701 TestWorkLong has no argument “text”."},
      {"a wrong kind", event("TestEcho", {{"text", ScriptValue::integer32(5)}}),
       "error -1700 “text” takes a text, not the integer 5."},
      {"a given missing value", event("TestEcho", {{"date", ScriptValue()}}),
       "error -1700 “date” takes a date, not missing value."},
  };
  for (const ReplyRow& row : rows) EXPECT_EQ(perform(row.event), row.reply) << row.about;
}

TEST_F(DispatcherTest, AsksForWhatIsRequired) {
  const ScriptValue direct = scriptText(u"a");
  const EventArguments texts = {{"texts", ScriptValue::list({})}};
  const EventArguments all = {{"asked", ScriptValue::integer32(1)}, texts[0]};
  const auto insist = [](const std::optional<ScriptValue>& given, EventArguments arguments) {
    Event made = event("TestInsist", std::move(arguments));
    made.directParameter = given;
    return made;
  };
  const ReplyRow rows[] = {
      {"everything there", insist(direct, all), "'utxt' “all there”"},
      {"no direct parameter", insist(std::nullopt, all),
       "error -1715 The direct parameter is missing; it takes a text or a record."},
      {"no argument", insist(direct, {}),
       "error -1715 “texts” is missing; it takes a list of texts."},
      {"nothing", insist(std::nullopt, {}),
       "error -1715 The direct parameter is missing; it takes a text or a record."},
      {"what the command asks for itself", insist(direct, texts), "error 2005 Asked."},
      {"an unknown argument comes first", insist(std::nullopt, {{"nope", direct}}),
       "error -1701 TestInsist has no argument “nope”."},
      {"a wrong kind comes later", insist(direct, {{"asked", direct}}),
       "error -1715 “texts” is missing; it takes a list of texts."},
      {"given as missing value it is of a wrong kind", insist(direct, {{"texts", ScriptValue()}}),
       "error -1700 “texts” takes a list of texts, not missing value."},
      {"a direct parameter of a wrong kind", insist(ScriptValue::integer32(5), all),
       "error -1700 The direct parameter must be a text or a record, not the integer 5."},
      {"a direct parameter that is missing value", insist(ScriptValue(), all),
       "error -1700 The direct parameter must be a text or a record, not missing value."},
      {"a direct parameter that is a record of another class",
       insist(ScriptValue::record("cobj"_code, {}), all), "'utxt' “all there”"},
      {"a direct parameter that the command asks for", event("TestAsk"), "error 2006 No text."},
      {"and that is of a wrong kind", eventWith("TestAsk", ScriptValue::integer32(5)),
       "error 2006 No text."},
      {"an action", event("shutShop"), "nothing"},
  };
  for (const ReplyRow& row : rows) EXPECT_EQ(perform(row.event), row.reply) << row.about;
}

TEST_F(DispatcherTest, RefusesBeforeItReturns) {
  send("unknown", event("TestNothing"));
  EXPECT_EQ(replies_["unknown"].size(), 1U);
}

TEST_F(DispatcherTest, HandsTheArgumentsOverInTheirShapes) {
  const ReplyRow rows[] = {
      {"none", event("TestEcho"), ""},
      {"the direct parameter as it was given",
       eventWith("TestEcho", ScriptValue::typeCode("pnam"_code)), "direct: 'type' 6D616E70; "},
      {"a plain value", event("TestEcho", {{"text", scriptText(u"a")}}), "text: “a”; "},
      {"an enumerator as a constant",
       event("TestEcho", {{"colour", tests::plain("enum"_code, "redC"_code)}}),
       "colour: unsigned32 1919247427; "},
      {"an enumerator as an integer",
       event("TestEcho", {{"colour", ScriptValue::integer32(1919247427)}}),
       "colour: unsigned32 1919247427; "},
      {"a list", event("TestEcho", {{"texts", ScriptValue::list({scriptText(u"a")})}}),
       "texts: [raw 'utxt' “a”]; "},
      {"a single value as a list of one", event("TestEcho", {{"textOrTexts", scriptText(u"a")}}),
       "textOrTexts: [raw 'utxt' “a”]; "},
      {"a record as it was given", event("TestEcho", {{"record", tests::scriptRecord({})}}),
       "record: raw 'reco' {'usrf': 'list' []}; "},
      {"missing value for anything", event("TestEcho", {{"anything", ScriptValue()}}),
       "anything: raw 'type' 676E736D; "},
      {"a repeated key counts as last given",
       event("TestEcho", {{"text", scriptText(u"a")}, {"text", scriptText(u"b")}}), "text: “b”; "},
  };
  for (const ReplyRow& row : rows) {
    const core::Reply reply = dispatcher_->perform(row.event);
    const auto* result = std::get_if<std::optional<ScriptValue>>(&reply);
    ASSERT_TRUE(result != nullptr && result->has_value()) << described(reply);
    EXPECT_EQ(foundation::utf8FromUtf16(*(*result)->heldUnits()), row.reply) << row.about;
  }
}

TEST_F(DispatcherTest, TimesOutAndTellsTheWorkToStop) {
  EXPECT_EQ(perform(eventWith("TestWorkLong", scriptText(u""), 20ms)),
            "error -1712 AppleEvent timed out.");
  EXPECT_TRUE(stage_->cancelled.waitFor(1));
}

TEST_F(DispatcherTest, WorkThatAnswersInTimeDoesNotTimeOut) {
  send("long", eventWith("TestWorkLong", scriptText(u""), 10min));
  ASSERT_TRUE(stage_->started.waitFor(1));
  stage_->release.set();
  serveUntilReplies(1);
  EXPECT_EQ(replies_["long"], std::vector<std::string>{"'utxt' “released ”"});
}

TEST_F(DispatcherTest, WorkThatFailsLateAnswersWithItsFailure) {
  send("long", eventWith("TestWorkLong", scriptText(u"fail")));
  ASSERT_TRUE(stage_->started.waitFor(1));
  stage_->release.set();
  serveUntilReplies(1);
  EXPECT_EQ(replies_["long"], std::vector<std::string>{"error 2004 Failed late."});
}

TEST_F(DispatcherTest, ServesOtherEventsWhileOneWaits) {
  send("long", eventWith("TestWorkLong", scriptText(u""), 10min));
  ASSERT_TRUE(stage_->started.waitFor(1));
  EXPECT_EQ(perform(eventWith("TestBehave", scriptText(u"one"))), "'utxt' “one”");
  EXPECT_EQ(perform(eventWith("TestWorkLong", scriptText(u""), 10ms)),
            "error -1712 AppleEvent timed out.");
  EXPECT_EQ(perform(event("TestNothing")), "error -1708 There is no command “TestNothing”.");
  EXPECT_TRUE(replies_.empty());
  stage_->release.set();
  serveUntilReplies(1);
  EXPECT_EQ(replies_["long"].size(), 1U);
}

TEST_F(DispatcherTest, ATimeOutOf0MeansNone) {
  send("long", eventWith("TestWorkLong", scriptText(u""), Event::kNoTimeout));
  ASSERT_TRUE(stage_->started.waitFor(1));
  serveFor(50ms);
  EXPECT_TRUE(replies_.empty());
  EXPECT_EQ(stage_->cancelled.count(), 0);
  stage_->release.set();
  serveUntilReplies(1);
  EXPECT_EQ(replies_["long"], std::vector<std::string>{"'utxt' “released ”"});
}

TEST_F(DispatcherTest, AReplyAfterTheTimeOutIsDropped) {
  send("deaf", eventWith("TestWorkLong", scriptText(u"deaf"), 10ms));
  serveUntilReplies(1);
  EXPECT_EQ(replies_["deaf"], std::vector<std::string>{"error -1712 AppleEvent timed out."});
  stage_->release.set();
  ASSERT_TRUE(stage_->ended.waitFor(1));
  serveWhatIsThere();
  EXPECT_EQ(replies_["deaf"].size(), 1U);
}

TEST_F(DispatcherTest, ACommandThatIsLeftUnansweredEndsInTheTimeOut) {
  EXPECT_EQ(perform(eventWith("TestBehave", scriptText(u"unanswered"), 20ms)),
            "error -1712 AppleEvent timed out.");
}

TEST_F(DispatcherTest, ACallerThatGoesAwayCancelsTheWorkAndHearsNothing) {
  const auto gone = send("gone", event("TestWorkLong"));
  send("stays", event("TestWorkLong"));
  ASSERT_TRUE(stage_->started.waitFor(2));
  dispatcher_->cancel(gone);
  ASSERT_TRUE(stage_->cancelled.waitFor(1));
  ASSERT_TRUE(stage_->ended.waitFor(1));
  serveWhatIsThere();
  EXPECT_TRUE(replies_.empty());
  stage_->release.set();
  serveUntilReplies(1);
  EXPECT_TRUE(replies_.contains("stays"));
  EXPECT_FALSE(replies_.contains("gone"));
  EXPECT_EQ(stage_->cancelled.count(), 1);
}

TEST_F(DispatcherTest, CancellingWhatIsAnsweredOrUnknownChangesNothing) {
  const auto answered = send("answered", event("TestAnswerAtOnce"));
  serveUntilReplies(1);
  dispatcher_->cancel(answered);
  dispatcher_->cancel(Dispatcher::EventId{12345});
  const auto gone = send("gone", event("TestWorkLong"));
  dispatcher_->cancel(gone);
  dispatcher_->cancel(gone);
  EXPECT_EQ(replies_["answered"].size(), 1U);
  EXPECT_EQ(perform(eventWith("TestBehave", scriptText(u"goes on"))), "'utxt' “goes on”");
}

TEST_F(DispatcherTest, EveryEventHasAnIdentityOfItsOwn) {
  const auto first = send("a", event("TestAnswerAtOnce"));
  const auto second = send("b", event("TestNothing"));
  const auto third = send("c", event("TestWorkLong"));
  EXPECT_NE(first, second);
  EXPECT_NE(second, third);
  EXPECT_NE(first, third);
}

TEST_F(DispatcherTest, ItsEndCancelsWhatRunsAndDropsTheReplies) {
  for (int i = 0; i < 5; ++i) send("hears", event("TestWorkLong"));
  send("deaf", eventWith("TestWorkLong", scriptText(u"deaf")));
  ASSERT_TRUE(stage_->started.waitFor(6));
  dispatcher_.reset();
  EXPECT_TRUE(stage_->cancelled.waitFor(5));
  stage_->release.set();
  ASSERT_TRUE(stage_->ended.waitFor(6));
  serveWhatIsThere();
  EXPECT_TRUE(replies_.empty());
}

TEST_F(DispatcherTest, SeveralEventsRunAtOnceAndEachGetsItsOwnReply) {
  constexpr int kMany = 20;
  for (int i = 0; i < kMany; ++i) {
    const std::string name = std::to_string(i);
    send(name, eventWith("TestWorkLong", scriptText(std::u16string(name.begin(), name.end()))));
  }
  ASSERT_TRUE(stage_->started.waitFor(kMany));
  stage_->release.set();
  serveUntilReplies(kMany);
  for (const auto& [name, replies] : replies_) {
    EXPECT_EQ(replies, std::vector<std::string>{"'utxt' “released " + name + "”"});
  }
}

TEST_F(DispatcherTest, AReceiverMaySendAndEvenPerformOtherEvents) {
  std::string inner;
  dispatcher_->send(eventWith("TestBehave", scriptText(u"outer")), [&](const core::Reply&) {
    send("next", eventWith("TestBehave", scriptText(u"next")));
    loop_.post(
        [&, reply = perform(eventWith("TestBehave", scriptText(u"inner")))] { inner = reply; });
  });
  loop_.runUntil([&] { return !inner.empty() && !replies_.empty(); });
  EXPECT_EQ(inner, "'utxt' “inner”");
  EXPECT_EQ(replies_["next"], std::vector<std::string>{"'utxt' “next”"});
}

TEST_F(DispatcherTest, ShutsDownUnderLoad) {
  constexpr std::size_t kMany = 300;
  std::atomic<std::size_t> answers = 0;
  for (std::size_t i = 0; i < kMany; ++i) {
    dispatcher_->send(eventWith("TestBehave", scriptText(u"x")),
                      [&](const core::Reply&) { ++answers; });
  }
  dispatcher_.reset();
  serveWhatIsThere();
  EXPECT_LE(answers, kMany);
}

TEST_F(DispatcherTest, TakesEventsFromAnyThread) {
  std::vector<std::string> performed(4);
  {
    std::vector<std::jthread> threads;
    tests::Counter ended;
    for (std::size_t i = 0; i < performed.size(); ++i) {
      threads.emplace_back([&, i] {
        for (int round = 0; round < 50; ++round) {
          performed[i] = perform(eventWith("TestBehave", scriptText(u"é")));
          if (performed[i] != "'utxt' “\\u00E9”") break;
        }
        loop_.post([&] { ended.add(); });
      });
    }
    loop_.runUntil([&] { return ended.count() == 4; });
  }
  EXPECT_EQ(performed, std::vector<std::string>(4, "'utxt' “\\u00E9”"));
}

TEST_F(DispatcherTest, WhoWaitsOnAnotherThreadHearsNothingWhenItGoes) {
  std::string reply;
  std::jthread thread([&] { reply = perform(event("TestWorkLong")); });
  while (stage_->started.count() == 0) serveFor(1ms);
  dispatcher_.reset();
  thread.join();
  EXPECT_EQ(reply, "nothing");
}

// A thread beside the main one that performs an event on itself, while the loop is served.
class LendingTest : public DispatcherTest {
 protected:
  struct End {
    std::string reply;
    Dispatcher::Lent lent{};
    bool isOnLentThread = false;
    bool isOnMainThread = false;
    bool isLeftBehindTold = false;
  };

  End performHere(
      Event event, std::function<void()> onReply = [] {}) {
    End end;
    bool isOver = false;
    std::jthread thread([&] {
      const auto self = std::this_thread::get_id();
      end.lent = dispatcher_->performHere(
          std::move(event),
          [&, self](const core::Reply& reply) {
            end.reply = described(reply);
            end.isOnLentThread = std::this_thread::get_id() == self;
            end.isOnMainThread = loop_.isOwnThread();
            onReply();
          },
          [&] { end.isLeftBehindTold = true; });
      loop_.post([&] { isOver = true; });
    });
    loop_.runUntil([&] { return isOver; });
    return end;
  }
};

TEST_F(LendingTest, HasItsCommandWorkOnItself) {
  for (const char* way : {"é", "fail", "break", "nothing", "reject"}) {
    const End end =
        performHere(eventWith("TestBehave", scriptText(foundation::utf16FromUtf8Replacing(way))));
    EXPECT_EQ(end.lent, Dispatcher::Lent::givenBack) << way;
    EXPECT_TRUE(end.isOnLentThread) << way;
    EXPECT_NE(end.reply, "") << way;
  }
}

TEST_F(LendingTest, TakesRefusalsAndAnswersAtOnceToo) {
  EXPECT_EQ(performHere(event("TestNothing")).reply,
            "error -1708 There is no command “TestNothing”.");
  const End end = performHere(eventWith("TestAnswerAtOnce", ScriptValue::integer32(5)));
  EXPECT_EQ(end.reply, "'long' 05000000");
  EXPECT_TRUE(end.isOnLentThread);
}

TEST_F(LendingTest, HearsOfATimeOutWhereNothingWorks) {
  const End end = performHere(eventWith("TestBehave", scriptText(u"unanswered"), 20ms));
  EXPECT_EQ(end.reply, "error -1712 AppleEvent timed out.");
  EXPECT_EQ(end.lent, Dispatcher::Lent::givenBack);
  EXPECT_TRUE(end.isOnLentThread);
  EXPECT_FALSE(end.isLeftBehindTold);
}

TEST_F(LendingTest, IsLeftBehindWhereItsTimeIsOverWhileItWorks) {
  const End end = performHere(eventWith("TestWorkLong", scriptText(u"deaf"), 20ms),
                              [this] { stage_->release.set(); });
  EXPECT_EQ(end.reply, "error -1712 AppleEvent timed out.");
  EXPECT_EQ(end.lent, Dispatcher::Lent::leftBehind);
  EXPECT_TRUE(end.isOnMainThread);
  EXPECT_TRUE(end.isLeftBehindTold);
}

TEST_F(LendingTest, GoesOnWhenTheDispatcherIsGone) {
  std::jthread thread([&] {
    (void)dispatcher_->performHere(
        event("TestWorkLong"), [](const core::Reply&) {}, [] {});
  });
  while (stage_->started.count() == 0) serveFor(1ms);
  dispatcher_.reset();
  EXPECT_TRUE(stage_->cancelled.waitFor(1));
  thread.join();
}

}  // namespace
}  // namespace skerrow::scripting
