// Values are copied, read and released on many threads at once. What these tests
// look for is found by the thread and address sanitizers.

#include <gtest/gtest.h>

#include <barrier>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/building.h"
#include "tests/support/describe.h"
#include "values/record.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow {
namespace {

using namespace literals;
using tests::described;
using tests::scriptText;

constexpr int kThreads = 4;
constexpr int kRounds = 2000;

void onThreads(const std::function<void(int thread)>& work) {
  std::barrier start(kThreads);
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      work(thread);
    });
  }
}

Value oneOfEach() {
  return std::vector<Value>{
      Value(u"short"),         Value(std::u16string(1000, u'x')),
      Value::data("bytes"),    Value(Url{"file:///a"}),
      Record{{u"a", u"b"}},    Value(ScriptValue::list({scriptText(u"raw text")})),
      Value(ErrorObject{"e"}), Value(OpaqueObject{"o"}),
  };
}

TEST(Sharing, CopiesOfAValueComeAndGoOnManyThreads) {
  const Value shared = oneOfEach();
  const std::string before = described(shared);
  onThreads([&shared](int) {
    for (int round = 0; round < kRounds; ++round) {
      Value copy = shared;
      const Value item = copy.items()[static_cast<std::size_t>(round) % copy.items().size()];
      copy = item;
    }
  });
  EXPECT_EQ(described(shared), before);
}

TEST(Sharing, TheLastOwnerReleasesAValueWhicheverThreadItIsOn) {
  for (int round = 0; round < 200; ++round) {
    std::vector<Value> owners(kThreads, oneOfEach());
    std::vector<std::size_t> lengths(kThreads);
    onThreads([&](int thread) {
      const auto mine = static_cast<std::size_t>(thread);
      const Value last = std::move(owners[mine]);
      lengths[mine] = last.items()[1].text().size();
    });
    EXPECT_EQ(lengths, std::vector<std::size_t>(kThreads, 1000));
  }
}

TEST(Sharing, OnlyASoleOwnerTakesTheItemsApart) {
  for (int round = 0; round < 200; ++round) {
    std::vector<Value> owners(kThreads, Value(std::vector<Value>{u"one", u"two"}));
    std::vector<std::string> seen(kThreads);
    onThreads([&](int thread) {
      const auto mine = static_cast<std::size_t>(thread);
      std::vector<Value> items = std::move(owners[mine]).takeItems();
      items.at(0) = Number::signed32(thread);
      seen[mine] = described(Value(std::move(items)));
    });
    for (int thread = 0; thread < kThreads; ++thread) {
      EXPECT_EQ(seen[static_cast<std::size_t>(thread)],
                "[signed32 " + std::to_string(thread) + ", “two”]");
    }
  }
}

TEST(Sharing, CopiesOfAScriptValueComeAndGoOnManyThreads) {
  const ScriptValue shared = ScriptValue::list(
      {ScriptValue::text(Text(std::u16string(1000, u'x'))), ScriptValue::integer32(1),
       ScriptValue::withPayload("rdat"_code, "more than eight bytes"),
       ScriptValue::record("reco"_code, {{"pnam"_code, scriptText(u"n")}})});
  const std::string before = described(shared);
  onThreads([&shared](int) {
    for (int round = 0; round < kRounds; ++round) {
      ScriptValue copy = shared;
      copy = ScriptValue(copy.items()[static_cast<std::size_t>(round) % 4]);
      std::vector<ScriptValue> items = ScriptValue(shared).takeItems();
      items.pop_back();
    }
  });
  EXPECT_EQ(described(shared), before);
}

TEST(Sharing, TextPassesBetweenBothSortsOfValueOnManyThreads) {
  const Value shared = std::u16string(500, u'x');
  std::vector<int> sound(kThreads);
  onThreads([&](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      ScriptValue script = ScriptValue::text(shared.sharedText());
      const Value back = *std::move(script).takeText();
      if (back.text().data() == shared.text().data()) ++sound[static_cast<std::size_t>(thread)];
    }
  });
  EXPECT_EQ(sound, std::vector<int>(kThreads, kRounds));
}

}  // namespace
}  // namespace skerrow
