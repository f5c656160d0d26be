#include "core/command.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/application_delegate.h"
#include "core/item_source.h"
#include "tests/core/waiting.h"
#include "tests/support/building.h"
#include "tests/support/describe.h"
#include "tests/support/surroundings.h"
#include "values/depth.h"
#include "work/stopping.h"

namespace skerrow::core {
namespace {

using tests::described;
using tests::scriptText;
using tests::Signal;

std::string described(const Reply& reply) {
  if (const auto* error = std::get_if<ScriptError>(&reply)) {
    return "error " + std::to_string(error->number()) + " " + error->message();
  }
  return described(std::get<std::optional<ScriptValue>>(reply));
}

// What happens, in order, on whichever thread.
class Log {
 public:
  void add(const std::string& entry) {
    const std::lock_guard lock(mutex_);
    entries_ += (entries_.empty() ? "" : ", ") + entry;
  }
  std::string entries() {
    const std::lock_guard lock(mutex_);
    return entries_;
  }

 private:
  std::mutex mutex_;
  std::string entries_;
};

class LoggingDelegate final : public ApplicationDelegate {
 public:
  explicit LoggingDelegate(Log& log) : log_(log) {}
  void startQuitTimer() override { log_.add("timer started"); }
  void invalidateQuitTimer() override { log_.add("timer stopped"); }

 private:
  Log& log_;
};

// A command that does what a test tells it to.
class TestCommand final : public Command {
 public:
  using Work = std::function<std::optional<Value>(TestCommand&)>;

  using Command::answerAtOnce;
  using Command::answerWithItems;
  using Command::directParameter;
  using Command::evaluatedArguments;
  using Command::finish;
  using Command::laterStep;
  using Command::leaveUnanswered;
  using Command::Place;
  using Command::queueTask;
  using Command::QuitTimer;
  using Command::resumeExecutionWithResult;
  using Command::setScriptErrorNumber;
  using Command::setScriptErrorString;
  using Command::suspendExecution;
  using Command::takeDirectParameter;

  Work onCheck = [](TestCommand&) { return std::nullopt; };
  Work onCompute = [](TestCommand&) { return std::nullopt; };
  Work onPerform;  // instead of the common shape
  QuitTimer timer = QuitTimer::restartedAtStart;
  Place where = Place::worker;
  std::function<void(TestCommand&)> onEnd = [](TestCommand&) {};

  TestCommand() = default;
  TestCommand(const TestCommand&) = delete;
  TestCommand& operator=(const TestCommand&) = delete;
  ~TestCommand() override { onEnd(*this); }

 private:
  [[nodiscard]] QuitTimer quitTimer() const override { return timer; }
  [[nodiscard]] Place place() const override { return where; }
  std::optional<Value> performDefaultImplementation() override {
    return onPerform ? onPerform(*this) : Command::performDefaultImplementation();
  }
  void check() override { onCheck(*this); }
  std::optional<Value> compute() override { return onCompute(*this); }
};

CommandContext contextWith(tests::Surroundings& surroundings, ApplicationDelegate& delegate) {
  return {.loop = surroundings.loop,
          .workers = surroundings.pool,
          .platform = surroundings.platform,
          .clock = surroundings.clock,
          .delegate = delegate,
          .compiler = surroundings.compiler,
          .services = surroundings.services,
          .memoryAllowance = surroundings.memoryAllowance};
}

class CommandTest : public testing::Test {
 protected:
  std::shared_ptr<TestCommand> command(std::optional<ScriptValue> direct = std::nullopt,
                                       Arguments arguments = {}) {
    auto made = std::make_shared<TestCommand>();
    made->prepare(std::move(direct), std::move(arguments), context_, [this](Reply reply) {
      log_.add("resumed");
      replies_.push_back(std::move(reply));
      replyThread_ = std::this_thread::get_id();
      replied_.set();
    });
    return made;
  }

  /// The one reply, whichever way it comes.
  std::string replyOf(TestCommand& command) {
    if (const auto reply = command.perform()) return described(*reply);
    if (!replied_.wait()) return "no reply";
    return described(replies_.at(0));
  }

  Log log_;
  Signal replied_;
  std::vector<Reply> replies_;
  std::thread::id replyThread_;
  LoggingDelegate delegate_{log_};
  tests::Surroundings surroundings_;
  CommandContext context_ = contextWith(surroundings_, delegate_);
};

TEST_F(CommandTest, IsCreatedThenCheckingThenSuspendedThenResumed) {
  const auto command = this->command();
  EXPECT_EQ(command->state(), Command::State::created);
  Command::State whileChecking{};
  Command::State whileComputing{};
  command->onCheck = [&](TestCommand& self) {
    whileChecking = self.state();
    return std::nullopt;
  };
  command->onCompute = [&](TestCommand& self) {
    whileComputing = self.state();
    return std::nullopt;
  };
  EXPECT_EQ(replyOf(*command), "nothing");
  EXPECT_EQ(whileChecking, Command::State::checking);
  EXPECT_EQ(whileComputing, Command::State::suspended);
  EXPECT_EQ(command->state(), Command::State::resumed);
  EXPECT_EQ(command->scriptError(), std::nullopt);
}

TEST_F(CommandTest, ChecksWhereItIsPerformedAndComputesElsewhere) {
  std::thread::id checkThread;
  std::thread::id computeThread;
  const auto command = this->command();
  command->onCheck = [&](TestCommand&) {
    checkThread = std::this_thread::get_id();
    return std::nullopt;
  };
  command->onCompute = [&](TestCommand&) {
    computeThread = std::this_thread::get_id();
    return std::nullopt;
  };
  replyOf(*command);
  EXPECT_EQ(checkThread, std::this_thread::get_id());
  EXPECT_NE(computeThread, std::this_thread::get_id());
  EXPECT_EQ(replyThread_, computeThread);
}

TEST_F(CommandTest, IsSuspendedOnceItIsPerformedUntilItsTaskEnds) {
  Signal release;
  const auto command = this->command();
  command->onCompute = [&](TestCommand&) -> std::optional<Value> {
    if (!release.wait()) return u"never released";
    return u"done";
  };
  EXPECT_EQ(command->perform(), std::nullopt);
  EXPECT_EQ(command->state(), Command::State::suspended);
  EXPECT_FALSE(replied_.isSet());
  release.set();
  ASSERT_TRUE(replied_.wait());
  EXPECT_EQ(described(replies_.at(0)), "'utxt' “done”");
}

struct OutcomeRow {
  const char* about;
  TestCommand::Work work;
  const char* reply;
};

// The same ends of a piece of work, wherever in a command's life it stands.
const std::vector<OutcomeRow>& outcomeRows() {
  static const std::vector<OutcomeRow> rows = {
      {"a text", [](TestCommand&) { return Value(u"é"); }, "'utxt' “\\u00E9”"},
      {"missing value", [](TestCommand&) { return Value(); }, "'type' 676E736D"},
      {"an empty list", [](TestCommand&) { return Value(std::vector<Value>{}); }, "'list' []"},
      {"nothing", [](TestCommand&) { return std::nullopt; }, "nothing"},
      {"a value that scripts cannot hold", [](TestCommand&) { return Value(OpaqueObject{}); },
       "nothing"},
      {"a script error",
       [](TestCommand&) -> std::optional<Value> { throw ScriptError(1123, "Can't."); },
       "error 1123 Can't."},
      {"a script error of negative number and no message",
       [](TestCommand&) -> std::optional<Value> { throw ScriptError(-50, ""); }, "error -50 "},
      {"another exception",
       [](TestCommand&) -> std::optional<Value> { throw std::runtime_error("It broke."); },
       "error -10000 It broke."},
      {"no memory", [](TestCommand&) -> std::optional<Value> { throw std::bad_alloc(); },
       "error -108 There is not enough memory for this."},
      {"nested too deep", [](TestCommand&) -> std::optional<Value> { throw NestingTooDeep(); },
       "error -10000 Lists and records can be nested at most 4096 deep, where a record counts "
       "twice."},
      {"told to stop", [](TestCommand&) -> std::optional<Value> { throw work::Stopped{}; },
       "nothing"},
      {"an error recorded in two halves",
       [](TestCommand& self) -> std::optional<Value> {
         self.setScriptErrorNumber(1012);
         self.setScriptErrorString("Unreadable.");
         return std::nullopt;
       },
       "error 1012 Unreadable."},
      {"the halves the other way round",
       [](TestCommand& self) -> std::optional<Value> {
         self.setScriptErrorString("Unreadable.");
         self.setScriptErrorNumber(1012);
         return std::nullopt;
       },
       "error 1012 Unreadable."},
      {"an error recorded beside a result",
       [](TestCommand& self) -> std::optional<Value> {
         self.setScriptErrorNumber(1);
         self.setScriptErrorString("Wins.");
         return u"loses";
       },
       "error 1 Wins."},
      {"an error thrown after one was recorded",
       [](TestCommand& self) -> std::optional<Value> {
         self.setScriptErrorNumber(1);
         throw ScriptError(2, "Later.");
       },
       "error 2 Later."},
  };
  return rows;
}

TEST_F(CommandTest, AnswersWithWhatItsTaskEndsWith) {
  for (const OutcomeRow& row : outcomeRows()) {
    SCOPED_TRACE(row.about);
    Signal replied;
    std::string reply;
    auto command = std::make_shared<TestCommand>();
    command->onCompute = row.work;
    command->prepare(std::nullopt, {}, context_, [&](Reply given) {
      reply = described(given);
      replied.set();
    });
    EXPECT_EQ(command->perform(), std::nullopt);
    ASSERT_TRUE(replied.wait());
    EXPECT_EQ(reply, row.reply);
    EXPECT_EQ(command->state(), Command::State::resumed);
  }
}

TEST_F(CommandTest, ThatComputesAtOnceAnswersWithoutSuspending) {
  for (const OutcomeRow& row : outcomeRows()) {
    SCOPED_TRACE(row.about);
    const auto command = this->command();
    command->onPerform = row.work;
    const auto reply = command->perform();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(described(*reply), row.reply);
    EXPECT_EQ(command->state(), Command::State::resumed);
    EXPECT_FALSE(replied_.isSet());
  }
}

TEST_F(CommandTest, RejectedInCheckingNeitherSuspendsNorStartsATask) {
  for (const OutcomeRow& row : outcomeRows()) {
    if (!std::string_view(row.reply).starts_with("error")) continue;
    SCOPED_TRACE(row.about);
    const auto command = this->command();
    bool hasComputed = false;
    command->onCheck = [&row](TestCommand& self) -> std::optional<Value> {
      row.work(self);
      throw ScriptError(*self.scriptError());  // a recorded error is thrown by whoever checks
    };
    command->onCompute = [&](TestCommand&) {
      hasComputed = true;
      return std::nullopt;
    };
    const auto reply = command->perform();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(described(*reply), row.reply);
    EXPECT_EQ(command->state(), Command::State::resumed);
    EXPECT_EQ(command.use_count(), 1);  // a queued task would hold it
    EXPECT_FALSE(hasComputed);
    EXPECT_FALSE(replied_.isSet());
  }
}

TEST_F(CommandTest, ResumesOnlyOnceAndOnlyAfterItWasSuspended) {
  const auto command = this->command();
  EXPECT_THROW(command->resumeExecutionWithResult(std::nullopt), std::logic_error);
  command->suspendExecution();
  command->resumeExecutionWithResult(scriptText(u"first"));
  EXPECT_THROW(command->resumeExecutionWithResult(scriptText(u"second")), std::logic_error);
  ASSERT_EQ(replies_.size(), 1U);
  EXPECT_EQ(described(replies_.at(0)), "'utxt' “first”");
}

TEST_F(CommandTest, ResumesOnceWhenSeveralThreadsTry) {
  for (int round = 0; round < 100; ++round) {
    std::atomic<int> answered = 0;
    std::atomic<int> refused = 0;
    auto command = std::make_shared<TestCommand>();
    command->prepare(std::nullopt, {}, context_, [&](const Reply&) { ++answered; });
    command->suspendExecution();
    {
      std::vector<std::jthread> threads;
      for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
          try {
            command->resumeExecutionWithResult(std::nullopt);
          } catch (const std::logic_error&) {
            ++refused;
          }
        });
      }
    }
    EXPECT_EQ(answered, 1);
    EXPECT_EQ(refused, 3);
  }
}

TEST_F(CommandTest, AFailureAfterItWasSuspendedIsAnswered) {
  const auto command = this->command();
  command->onPerform = [](TestCommand& self) -> std::optional<Value> {
    self.suspendExecution();
    throw ScriptError(7, "No thread to run on.");
  };
  const auto atOnce = command->perform();
  const bool isAnswered = atOnce.has_value() || replied_.isSet();
  EXPECT_TRUE(isAnswered);
}

TEST_F(CommandTest, LeftUnansweredRecordsItsErrorAndNeverReplies) {
  Signal ended;
  Command::State lastState{};
  std::optional<ScriptError> lastError;
  auto command = this->command();
  command->onCompute = [](TestCommand&) -> std::optional<Value> {
    TestCommand::leaveUnanswered(ScriptError(1381, "Kept for nobody."));
  };
  command->onEnd = [&](TestCommand& self) {
    lastState = self.state();
    lastError = self.scriptError();
    ended.set();
  };
  EXPECT_EQ(command->perform(), std::nullopt);
  command = nullptr;
  ASSERT_TRUE(ended.wait());
  EXPECT_EQ(lastState, Command::State::suspended);
  EXPECT_EQ(lastError, ScriptError(1381, "Kept for nobody."));
  EXPECT_FALSE(replied_.isSet());
}

TEST_F(CommandTest, LivesUntilItHasResumedWhoeverLetsGoOfIt) {
  Signal release;
  Signal ended;
  auto command = this->command();
  command->onCompute = [&](TestCommand&) -> std::optional<Value> {
    if (!release.wait()) return std::nullopt;
    return u"alive";
  };
  command->onEnd = [&](TestCommand&) { ended.set(); };
  command->perform();
  command = nullptr;
  EXPECT_FALSE(ended.isSet());
  release.set();
  ASSERT_TRUE(replied_.wait());
  EXPECT_EQ(described(replies_.at(0)), "'utxt' “alive”");
  EXPECT_TRUE(ended.wait());
}

TEST_F(CommandTest, HearsThatItIsToldToStopWhileItWorks) {
  Signal working;
  const auto command = this->command();
  command->onCompute = [&](TestCommand&) -> std::optional<Value> {
    working.set();
    while (!work::isStopAsked()) std::this_thread::yield();
    throw work::Stopped{};
  };
  command->perform();
  ASSERT_TRUE(working.wait());
  command->stopSource().request_stop();
  ASSERT_TRUE(replied_.wait());
  EXPECT_EQ(described(replies_.at(0)), "nothing");
  EXPECT_EQ(command->scriptError(), std::nullopt);
}

TEST_F(CommandTest, FindsItsDirectParameterAndArguments) {
  Arguments arguments;
  arguments.set(ArgumentKey("key"), u"value");
  const auto command = this->command(scriptText(u"direct"), std::move(arguments));
  EXPECT_EQ(described(command->directParameter()), "'utxt' “direct”");
  EXPECT_EQ(described(*command->evaluatedArguments().find(ArgumentKey("key"))), "“value”");
  EXPECT_EQ(described(command->takeDirectParameter()), "'utxt' “direct”");
  EXPECT_EQ(described(command->directParameter()), "nothing");
  EXPECT_EQ(described(this->command()->directParameter()), "nothing");
}

TEST_F(CommandTest, MayQueueItsTaskWithoutSuspendingAndStillAnswers) {
  for (int round = 0; round < 100; ++round) {
    Signal replied;
    std::string reply;
    auto command = std::make_shared<TestCommand>();
    command->onPerform = [](TestCommand& self) -> std::optional<Value> {
      self.queueTask();
      return std::nullopt;
    };
    command->onCompute = [](TestCommand&) -> std::optional<Value> { return u"done"; };
    command->prepare(std::nullopt, {}, context_, [&](const Reply& given) {
      reply = described(given);
      replied.set();
    });
    EXPECT_EQ(command->perform(), std::nullopt);
    ASSERT_TRUE(replied.wait());
    EXPECT_EQ(reply, "'utxt' “done”");
    EXPECT_EQ(command->state(), Command::State::resumed);
  }
}

TEST_F(CommandTest, DoesNotBeginATaskThatNobodyWaitsForAnyMore) {
  bool hasBegun = false;
  const auto command = this->command();
  command->onCheck = [](TestCommand& self) {
    self.stopSource().request_stop();
    return std::nullopt;
  };
  command->onCompute = [&](TestCommand&) {
    hasBegun = true;
    return std::nullopt;
  };
  command->perform();
  ASSERT_TRUE(replied_.wait());
  EXPECT_FALSE(hasBegun);
}

TEST_F(CommandTest, MayWorkOnTheMainThreadAndAnswerThere) {
  for (const OutcomeRow& row : outcomeRows()) {
    SCOPED_TRACE(row.about);
    const auto command = this->command();
    command->where = TestCommand::Place::mainThread;
    std::thread::id computeThread;
    command->onCompute = [&](TestCommand& self) {
      computeThread = std::this_thread::get_id();
      return row.work(self);
    };
    const auto reply = command->perform();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(described(*reply), row.reply);
    EXPECT_EQ(computeThread, std::this_thread::get_id());
  }
}

TEST_F(CommandTest, MayResumeLaterFromAStepOnTheMainThread) {
  const auto command = this->command();
  command->where = TestCommand::Place::mainThread;
  std::function<void()> later;
  command->onCompute = [&](TestCommand& self) -> std::optional<Value> {
    self.suspendExecution();
    later = self.laterStep([&self] { self.finish(u"pressed"); });
    return std::nullopt;
  };
  EXPECT_EQ(command->perform(), std::nullopt);
  EXPECT_FALSE(replied_.isSet());
  later();
  ASSERT_TRUE(replied_.wait());
  EXPECT_EQ(described(replies_.at(0)), "'utxt' “pressed”");
  later();  // a window may call back once more
  EXPECT_EQ(replies_.size(), 1U);
}

TEST_F(CommandTest, AFailureInALaterStepIsItsFailure) {
  for (const OutcomeRow& row : outcomeRows()) {
    if (!std::string_view(row.reply).starts_with("error") ||
        std::string_view(row.about).find("recorded") != std::string_view::npos ||
        std::string_view(row.about).find("halves") != std::string_view::npos) {
      continue;
    }
    SCOPED_TRACE(row.about);
    Signal replied;
    std::string reply;
    auto command = std::make_shared<TestCommand>();
    command->where = TestCommand::Place::mainThread;
    std::function<void()> later;
    command->onCompute = [&](TestCommand& self) -> std::optional<Value> {
      self.suspendExecution();
      later = self.laterStep([&self, &row] { row.work(self); });
      return std::nullopt;
    };
    command->prepare(std::nullopt, {}, context_, [&](const Reply& given) {
      reply = described(given);
      replied.set();
    });
    EXPECT_EQ(command->perform(), std::nullopt);
    later();
    ASSERT_TRUE(replied.wait());
    EXPECT_EQ(reply, row.reply);
  }
}

TEST_F(CommandTest, LeavesStepsOutOnceItWasToldToStop) {
  bool hasStepped = false;
  const auto command = this->command();
  command->where = TestCommand::Place::mainThread;
  std::function<void()> later;
  command->onCompute = [&](TestCommand& self) -> std::optional<Value> {
    self.suspendExecution();
    later = self.laterStep([&] { hasStepped = true; });
    return std::nullopt;
  };
  command->perform();
  command->stopSource().request_stop();
  later();
  EXPECT_FALSE(hasStepped);
}

// Counts up to a number, and may fail behind it.
class Counting final : public ItemSource {
 public:
  Counting(int last, std::function<void()> end) : last_(last), end_(std::move(end)) {}
  std::optional<Value> next() override {
    if (count_ < last_) return Value(Number::signed32(++count_));
    end_();
    return std::nullopt;
  }

 private:
  int last_;
  std::function<void()> end_;
  int count_ = 0;
};

TEST_F(CommandTest, MayAnswerWithItemsThatAreMadeAsTheyAreAskedFor) {
  const auto command = this->command();
  command->timer = TestCommand::QuitTimer::stoppedWhileWorking;
  command->onCompute = [&](TestCommand& self) -> std::optional<Value> {
    self.answerWithItems(std::make_unique<Counting>(2, [this] { log_.add("end"); }));
    return std::nullopt;
  };
  EXPECT_EQ(command->perform(), std::nullopt);
  ASSERT_TRUE(replied_.wait());
  EXPECT_EQ(log_.entries(), "timer stopped, resumed");
  const auto items = std::get<std::shared_ptr<ReplyItems>>(replies_.at(0));
  EXPECT_EQ(described(items->next()), "'long' 01000000");
  EXPECT_EQ(described(items->next()), "'long' 02000000");
  EXPECT_EQ(items->next(), std::nullopt);
  EXPECT_EQ(items->next(), std::nullopt);
  EXPECT_EQ(log_.entries(), "timer stopped, resumed, end, timer started");
}

TEST_F(CommandTest, ItemsThatFailThrowTheErrorAndEnd) {
  for (const OutcomeRow& row : outcomeRows()) {
    if (!std::string_view(row.reply).starts_with("error -1")) continue;
    SCOPED_TRACE(row.about);
    Signal replied;
    std::optional<Reply> reply;
    auto command = std::make_shared<TestCommand>();
    command->onCompute = [&](TestCommand& self) -> std::optional<Value> {
      self.answerWithItems(std::make_unique<Counting>(1, [&] { row.work(self); }));
      return std::nullopt;
    };
    command->prepare(std::nullopt, {}, context_, [&](Reply given) {
      reply = std::move(given);
      replied.set();
    });
    EXPECT_EQ(command->perform(), std::nullopt);
    ASSERT_TRUE(replied.wait());
    EXPECT_EQ(described(gathered(std::move(*reply))), row.reply);
  }
}

TEST_F(CommandTest, ItemsEndWhenNobodyWaitsForThemAnyMore) {
  const auto command = this->command();
  command->onCompute = [&](TestCommand& self) -> std::optional<Value> {
    self.answerWithItems(std::make_unique<Counting>(1000, [] {}));
    return std::nullopt;
  };
  command->perform();
  ASSERT_TRUE(replied_.wait());
  const auto items = std::get<std::shared_ptr<ReplyItems>>(replies_.at(0));
  EXPECT_NE(items->next(), std::nullopt);
  command->stopSource().request_stop();
  EXPECT_EQ(items->next(), std::nullopt);
}

TEST_F(CommandTest, WorkThatWouldTakeMoreMemoryThanItMayFailsAndSaysHowMuch) {
  context_.memoryAllowance = 50'000'000;
  const auto command = this->command();
  command->onCompute = [](TestCommand&) -> std::optional<Value> {
    std::vector<std::vector<char>> pieces;
    for (;;) pieces.emplace_back(10'000'000);
  };
  command->perform();
  ASSERT_TRUE(replied_.wait());
  const auto& error = std::get<ScriptError>(replies_.at(0));
  EXPECT_EQ(error.number(), -108);
  EXPECT_EQ(error.message(), "This would take 50 MB of memory, and one command may take 50 MB.");
}

struct TimerRow {
  const char* about;
  TestCommand::QuitTimer timer;
  bool isRejected;
  bool fails;
  const char* log;
};

TEST_F(CommandTest, UsesTheQuitTimerInItsOrder) {
  constexpr auto kRestarted = TestCommand::QuitTimer::restartedAtStart;
  constexpr auto kAtEnd = TestCommand::QuitTimer::restartedAtEnd;
  constexpr auto kStopped = TestCommand::QuitTimer::stoppedWhileWorking;
  const TimerRow rows[] = {
      {"ordinary", kRestarted, false, false, "timer started, checks, works, resumed"},
      {"ordinary that fails", kRestarted, false, true, "timer started, checks, works, resumed"},
      {"ordinary that is rejected", kRestarted, true, false, "timer started, checks"},
      {"long", kStopped, false, false, "timer stopped, checks, works, timer started, resumed"},
      {"long that fails", kStopped, false, true,
       "timer stopped, checks, works, timer started, resumed"},
      {"long that is rejected", kStopped, true, false, "timer stopped, checks"},
      {"running scripts", kAtEnd, false, false, "checks, works, timer started, resumed"},
      {"running scripts that fails", kAtEnd, false, true, "checks, works, timer started, resumed"},
      {"running scripts that is rejected", kAtEnd, true, false, "checks"},
  };
  for (const TimerRow& row : rows) {
    SCOPED_TRACE(row.about);
    Log log;
    Signal replied;
    LoggingDelegate delegate(log);
    auto command = std::make_shared<TestCommand>();
    command->timer = row.timer;
    command->onCheck = [&](TestCommand&) -> std::optional<Value> {
      log.add("checks");
      if (row.isRejected) throw ScriptError(1, "Rejected.");
      return std::nullopt;
    };
    command->onCompute = [&](TestCommand&) -> std::optional<Value> {
      log.add("works");
      if (row.fails) throw std::runtime_error("Failed.");
      return std::nullopt;
    };
    const CommandContext context = contextWith(surroundings_, delegate);
    command->prepare(std::nullopt, {}, context, [&](const Reply&) {
      log.add("resumed");
      replied.set();
    });
    const bool isAtOnce = command->perform().has_value();
    EXPECT_EQ(isAtOnce, row.isRejected);
    if (!isAtOnce) {
      ASSERT_TRUE(replied.wait());
    }
    EXPECT_EQ(log.entries(), row.log);
  }
}

TEST_F(CommandTest, AnAnswerAtOnceLeavesAStoppedQuitTimerStopped) {
  const auto command = this->command();
  command->timer = TestCommand::QuitTimer::stoppedWhileWorking;
  command->onCheck = [](TestCommand& self) -> std::optional<Value> {
    self.answerAtOnce(u"empty");
    return std::nullopt;
  };
  EXPECT_EQ(replyOf(*command), "'utxt' “empty”");
  EXPECT_EQ(log_.entries(), "timer stopped");
}

TEST_F(CommandTest, OnTheMainThreadRestartsTheQuitTimerWhenItsWorkEnds) {
  const auto command = this->command();
  command->where = TestCommand::Place::mainThread;
  command->timer = TestCommand::QuitTimer::restartedAtEnd;
  command->onCompute = [this](TestCommand&) -> std::optional<Value> {
    log_.add("runs");
    return u"done";
  };
  EXPECT_EQ(replyOf(*command), "'utxt' “done”");
  EXPECT_EQ(log_.entries(), "runs, timer started");
}

#ifndef NDEBUG
void performElsewhere() {
  tests::Surroundings surroundings;
  auto command = std::make_shared<TestCommand>();
  command->prepare(std::nullopt, {}, surroundings.context(), [](const Reply&) {});
  std::jthread([&] { command->perform(); }).join();
}

TEST(CommandDeathTest, IsPerformedOnTheLoopsOwnThread) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(performElsewhere(), "isOwnThread");
}
#endif

// Ends with 0 once the command has replied.
void performOneThatThrowsAnInteger() {
  tests::Surroundings surroundings;
  Signal replied;
  auto command = std::make_shared<TestCommand>();
  command->onCompute = [](TestCommand&) -> std::optional<Value> { throw 42; };
  command->prepare(std::nullopt, {}, surroundings.context(), [&](const Reply&) { replied.set(); });
  command->perform();
  std::_Exit(replied.wait() ? 0 : 1);
}

TEST(CommandDeathTest, ATaskThatThrowsNoExceptionObjectDoesNotEndTheProgram) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(performOneThatThrowsAnInteger(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace skerrow::core
