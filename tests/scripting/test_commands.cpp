#include "tests/scripting/test_commands.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "argument_keys/TestInsist.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/text/text_encoding.h"
#include "tests/support/describe.h"
#include "work/stopping.h"

namespace skerrow {

namespace {

std::shared_ptr<tests::Stage> theStage;  // set and read on the main thread

std::string textOf(const std::optional<ScriptValue>& value) {
  const auto text = value ? core::textFromScriptValue(*value) : std::nullopt;
  return text ? foundation::utf8FromUtf16(text->view()) : std::string();
}

// Gives back in words what came, and in which shape.
class TestEcho final : public core::Command {
 private:
  std::optional<Value> compute() override {
    std::string words;
    if (directParameter()) words += "direct: " + tests::described(*directParameter()) + "; ";
    for (const auto& argument : scripting::testDictionary().command("TestEcho")->arguments) {
      const Value* given = evaluatedArguments().find(core::ArgumentKey(argument.key));
      if (given != nullptr)
        words += std::string(argument.key) + ": " + tests::described(*given) + "; ";
    }
    return Value(foundation::utf16FromUtf8Replacing(words));
  }
};

// Says what is not there.
class TestInsist final : public core::Command {
  void check() override {
    if (!evaluatedArguments().has(argument_keys::TestInsist::asked)) {
      throw core::ScriptError(2005, "Asked.");
    }
  }
  std::optional<Value> compute() override { return Value(u"all there"); }
};

class TestAsk final : public core::Command {
  std::optional<Value> compute() override {
    const std::string text = textOf(directParameter());
    if (text.empty()) throw core::ScriptError(2006, "No text.");
    return Value(foundation::utf16FromUtf8Replacing(text));
  }
};

class TestShutShop final : public core::Command {
  std::optional<Value> compute() override { return std::nullopt; }
};

class TestBehave final : public core::Command {
 private:
  void check() override {
    way_ = textOf(directParameter());
    if (way_ == "reject") throw core::ScriptError(2001, "Rejected.");
  }

  std::optional<Value> compute() override {
    if (way_ == "fail") throw core::ScriptError(2002, "Failed.");
    if (way_ == "break") throw std::runtime_error("Broken.");
    if (way_ == "nothing") return std::nullopt;
    if (way_ == "unanswered") leaveUnanswered(core::ScriptError(2003, "Kept."));
    return Value(foundation::utf16FromUtf8Replacing(way_));
  }

  std::string way_;
};

// Works until the stage releases it or it is cancelled.
class TestWorkLong final : public core::Command {
 public:
  TestWorkLong() = default;
  TestWorkLong(const TestWorkLong&) = delete;
  TestWorkLong& operator=(const TestWorkLong&) = delete;
  ~TestWorkLong() override { stage_->ended.add(); }

 private:
  [[nodiscard]] QuitTimer quitTimer() const override { return QuitTimer::stoppedWhileWorking; }

  std::optional<Value> compute() override {
    const std::string way = textOf(directParameter());
    stage_->started.add();
    while (!stage_->release.isSet()) {
      if (way != "deaf" && work::isStopAsked()) {
        stage_->cancelled.add();
        throw work::Stopped{};
      }
      std::this_thread::yield();
    }
    if (way == "fail") throw core::ScriptError(2004, "Failed late.");
    return Value(u"released " + foundation::utf16FromUtf8Replacing(way));
  }

  std::shared_ptr<tests::Stage> stage_ = tests::stage();
};

class TestAnswerAtOnce final : public core::Command {
 private:
  std::optional<Value> performDefaultImplementation() override {
    if (!directParameter()) return std::nullopt;
    return core::unpack(*directParameter());
  }
  std::optional<Value> compute() override { throw std::logic_error("This never computes."); }
};

}  // namespace

std::unique_ptr<core::Command> createTestEcho() { return std::make_unique<TestEcho>(); }
std::unique_ptr<core::Command> createTestInsist() { return std::make_unique<TestInsist>(); }
std::unique_ptr<core::Command> createTestAsk() { return std::make_unique<TestAsk>(); }
std::unique_ptr<core::Command> createShutShop() { return std::make_unique<TestShutShop>(); }
std::unique_ptr<core::Command> createTestBehave() { return std::make_unique<TestBehave>(); }
std::unique_ptr<core::Command> createTestWorkLong() { return std::make_unique<TestWorkLong>(); }
std::unique_ptr<core::Command> createTestAnswerAtOnce() {
  return std::make_unique<TestAnswerAtOnce>();
}

namespace tests {

std::shared_ptr<Stage> stage() { return theStage ? theStage : std::make_shared<Stage>(); }
void setStage(std::shared_ptr<Stage> stage) { theStage = std::move(stage); }

}  // namespace tests
}  // namespace skerrow
