#include "text/regex/regex_cache.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/text/text_literal.h"

namespace skerrow::text {
namespace {

using Kind = RegexCacheEvent::Kind;

const char* nameOf(Kind kind) {
  switch (kind) {
    case Kind::lastUsedHit:
      return "last";
    case Kind::lookAsideHit:
      return "aside";
    case Kind::setHit:
      return "set";
    case Kind::miss:
      return "miss";
    case Kind::eviction:
      return "evict";
  }
  return "?";
}

// Equal contents in a text of their own.
Text copyOf(const Text& text) { return Text(text.view()); }

class RegexCacheTest : public testing::Test {
 protected:
  // What a lookup did: "miss 3" is a compilation into entry 3 of the pattern's set.
  std::string use(const Text& pattern, RegexOptions options = kNoRegexOptions) {
    events.clear();
    (void)cache.lease(pattern, options);
    std::string shown;
    for (const RegexCacheEvent& event : events) {
      EXPECT_EQ(event.set,
                event.kind == Kind::eviction ? event.set : RegexCache::setOf(pattern, options));
      shown += (shown.empty() ? "" : ", ") + std::string(nameOf(event.kind)) + " " +
               std::to_string(event.entry);
    }
    return shown;
  }

  // Different patterns of one set, in different look-aside slots.
  std::vector<Text> patternsOfSet(std::size_t set, std::size_t count) {
    std::vector<Text> patterns;
    std::vector<bool> isTaken(RegexCache::kLookAsideSlots);
    for (char16_t unit = u'\u4E00'; patterns.size() < count; ++unit) {
      Text pattern(std::u16string(3, unit));
      const std::size_t slot = RegexCache::lookAsideSlotOf(pattern, kNoRegexOptions);
      if (RegexCache::setOf(pattern, kNoRegexOptions) != set || isTaken[slot]) {
        others.push_back(std::move(pattern));  // keeps its place in memory
        continue;
      }
      isTaken[slot] = true;
      patterns.push_back(std::move(pattern));
    }
    return patterns;
  }

  // Makes the cache forget, for this pattern, the entry used last and the look-aside slot.
  void pushOutOfTheShortCuts(const Text& pattern) {
    const std::size_t slot = RegexCache::lookAsideSlotOf(pattern, kNoRegexOptions);
    const std::size_t set = RegexCache::setOf(pattern, kNoRegexOptions);
    for (char16_t unit = u'\u6000'; unit < u'\u9000'; ++unit) {
      others.emplace_back(std::u16string(1, unit));  // keeps its place in memory
      for (RegexOptions options = 0; options < 16; ++options) {
        if (RegexCache::setOf(others.back(), options) == set) continue;
        if (RegexCache::lookAsideSlotOf(others.back(), options) != slot) continue;
        use(others.back(), options);
        return;
      }
    }
    FAIL() << "no pattern of another set shares the look-aside slot";
  }

  std::vector<RegexCacheEvent> events;
  std::vector<Text> others;
  RegexCache cache{[this](const RegexCacheEvent& event) { events.push_back(event); }};
};

TEST_F(RegexCacheTest, CompilesOnceAndThenFindsTheEntryUsedLast) {
  const Text pattern = u"a+"_text;
  EXPECT_EQ(use(pattern), "miss 3");
  EXPECT_EQ(use(pattern), "last 3");
  EXPECT_EQ(use(Text(pattern)), "last 3");
}

TEST_F(RegexCacheTest, FindsAnEarlierPatternThroughTheLookAsideTable) {
  const std::vector<Text> patterns = patternsOfSet(0, 2);
  use(patterns[0]);
  use(patterns[1]);
  EXPECT_EQ(use(patterns[0]), "aside 3");
  EXPECT_EQ(use(patterns[0]), "last 3");
}

TEST_F(RegexCacheTest, FindsEqualContentsInAnotherTextThroughTheSet) {
  const Text pattern = u"a+"_text;
  use(pattern);
  Text copy = copyOf(pattern);
  while (RegexCache::lookAsideSlotOf(copy, 0) == RegexCache::lookAsideSlotOf(pattern, 0)) {
    others.push_back(copy);
    copy = copyOf(pattern);
  }
  EXPECT_EQ(use(copy), "set 3");
  EXPECT_EQ(use(copy), "aside 3");  // the entry used last holds the first text, not this one
}

TEST_F(RegexCacheTest, TheSamePatternWithOtherOptionsIsAnotherEntry) {
  const Text pattern = u"a+"_text;
  EXPECT_EQ(use(pattern, kNoRegexOptions).substr(0, 4), "miss");
  EXPECT_EQ(use(pattern, kCaseInsensitive).substr(0, 4), "miss");
  EXPECT_EQ(use(pattern, kNoRegexOptions).substr(0, 5), "aside");
  EXPECT_EQ(use(pattern, kCaseInsensitive).substr(0, 5), "aside");
}

TEST_F(RegexCacheTest, AFullSetLosesItsLeastRecentlyUsedPattern) {
  const std::vector<Text> patterns = patternsOfSet(5, 6);
  EXPECT_EQ(use(patterns[0]), "miss 3");
  EXPECT_EQ(use(patterns[1]), "miss 2");
  EXPECT_EQ(use(patterns[2]), "miss 1");
  EXPECT_EQ(use(patterns[3]), "miss 0");
  EXPECT_EQ(use(patterns[0]), "aside 3");
  EXPECT_EQ(use(patterns[4]), "evict 2, miss 2");
  EXPECT_EQ(use(patterns[2]), "aside 1");
  EXPECT_EQ(use(patterns[5]), "evict 0, miss 0");
  EXPECT_EQ(use(patterns[1]), "evict 3, miss 3");
  EXPECT_EQ(events[0].pattern, patterns[0]);
}

TEST_F(RegexCacheTest, TheFiftyThirdPatternTouchesOnlyItsOwnSet) {
  std::vector<std::vector<Text>> sets;
  for (std::size_t set = 0; set < RegexCache::kSetCount; ++set) {
    sets.push_back(patternsOfSet(set, RegexCache::kEntriesPerSet + 1));
  }
  for (const std::vector<Text>& patterns : sets) {
    for (std::size_t i = 0; i < RegexCache::kEntriesPerSet; ++i) {
      EXPECT_EQ(use(patterns[i]), "miss " + std::to_string(3 - i));
    }
  }
  EXPECT_EQ(use(sets[7].back()), "evict 3, miss 3");
  EXPECT_EQ(events[0].set, 7U);
  EXPECT_EQ(events[0].pattern, sets[7][0]);
  for (std::size_t set = 0; set < RegexCache::kSetCount; ++set) {
    for (std::size_t i = 1; i + 1 < RegexCache::kEntriesPerSet; ++i) {
      const std::string found = use(sets[set][i]);
      EXPECT_TRUE(found.starts_with("set") || found.starts_with("aside")) << found;
    }
  }
}

TEST_F(RegexCacheTest, APatternInTheFirstEntryIsFoundOnlyByTheShortCuts) {
  const std::vector<Text> patterns = patternsOfSet(2, 4);
  for (const Text& pattern : patterns) use(pattern);
  EXPECT_EQ(use(patterns[3]), "last 0");
  use(patterns[0]);
  EXPECT_EQ(use(patterns[3]), "aside 0");
  pushOutOfTheShortCuts(patterns[3]);
  EXPECT_EQ(use(patterns[3]), "evict 2, miss 2");  // held twice from here on
  EXPECT_EQ(use(patterns[3]), "last 2");
}

TEST_F(RegexCacheTest, APatternInAnotherEntryIsFoundByItsSet) {
  const std::vector<Text> patterns = patternsOfSet(2, 4);
  for (const Text& pattern : patterns) use(pattern);
  for (const std::size_t i : {0U, 1U, 2U}) {
    pushOutOfTheShortCuts(patterns[i]);
    EXPECT_EQ(use(patterns[i]), "set " + std::to_string(3 - i));
  }
}

TEST_F(RegexCacheTest, APatternThatDoesNotCompileLeavesNoEntryBehind) {
  const Text invalid = u"a("_text;
  for (int round = 0; round < 2; ++round) {
    events.clear();
    try {
      (void)cache.lease(invalid, kNoRegexOptions);
      ADD_FAILURE() << "compiled";
    } catch (const RegexFailure& failure) {
      EXPECT_EQ(failure.error().fault.name, "U_REGEX_MISMATCHED_PAREN");
      EXPECT_EQ(failure.error().regex, invalid);
    }
    EXPECT_TRUE(events.empty());
  }
  EXPECT_EQ(use(patternsOfSet(RegexCache::setOf(invalid, kNoRegexOptions), 1)[0]), "miss 3");
}

TEST_F(RegexCacheTest, AFailedCompilationEmptiesTheLeastRecentlyUsedEntryOfItsSet) {
  const Text invalid = u"a("_text;
  const std::vector<Text> patterns = patternsOfSet(RegexCache::setOf(invalid, kNoRegexOptions), 5);
  for (std::size_t i = 0; i < 4; ++i) use(patterns[i]);
  EXPECT_THROW((void)cache.lease(invalid, kNoRegexOptions), RegexFailure);
  EXPECT_EQ(events.back().kind, Kind::eviction);
  EXPECT_EQ(use(patterns[4]), "miss 3");
}

TEST_F(RegexCacheTest, ClearingForgetsEveryPattern) {
  const Text pattern = u"a+"_text;
  use(pattern);
  cache.clear();
  EXPECT_EQ(use(pattern), "miss 3");
}

TEST_F(RegexCacheTest, AnEvictedPatternStaysUsableForItsHolder) {
  const std::vector<Text> patterns = patternsOfSet(1, 5);
  RegexCache::Lease lease = cache.lease(patterns[0], kNoRegexOptions);
  lease.setSubject(patterns[0], {0, 3});
  for (std::size_t i = 1; i < 5; ++i) use(patterns[i]);
  cache.clear();
  foundation::MatchMonitor monitor;
  EXPECT_TRUE(lease.regex().findNext(monitor));
  EXPECT_FALSE(lease.regex().findNext(monitor));
}

TEST_F(RegexCacheTest, TwoLeasesOfOnePatternSearchIndependently) {
  const Text pattern = u"\\w"_text;
  const Text subject = u"ab"_text;
  foundation::MatchMonitor monitor;
  RegexCache::Lease first = cache.lease(pattern, kNoRegexOptions);
  RegexCache::Lease second = cache.lease(pattern, kNoRegexOptions);
  first.setSubject(subject, {0, 2});
  second.setSubject(subject, {1, 1});
  EXPECT_TRUE(first.regex().findNext(monitor));
  EXPECT_TRUE(second.regex().findNext(monitor));
  EXPECT_EQ(first.regex().group(0).location, 0U);
  EXPECT_EQ(second.regex().group(0).location, 1U);
}

TEST_F(RegexCacheTest, ASubjectIsKeptUntilItIsForgottenUnlessItIsLong) {
  const Text pattern = u"b"_text;
  std::u16string units(100'000, u'a');
  for (const std::size_t length : {300UL, units.size()}) {
    foundation::MatchMonitor monitor;
    for (int round = 0; round < 3; ++round) {
      RegexCache::Lease lease = cache.lease(pattern, kNoRegexOptions);
      Text subject(units.substr(0, length) + u"b");
      lease.setSubject(subject, foundation::UnitRange::whole(subject.view()));
      EXPECT_TRUE(lease.regex().findNext(monitor));
      EXPECT_EQ(lease.regex().group(0).location, length);
    }
    cache.forgetSubjects();
  }
}

TEST_F(RegexCacheTest, ThreadsMayUseOneSetAtOnce) {
  const std::vector<Text> patterns = patternsOfSet(3, 8);
  RegexCache shared;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      foundation::MatchMonitor monitor;
      for (std::size_t round = 0; round < 400; ++round) {
        const Text& pattern = patterns[(round * (i + 1)) % patterns.size()];
        RegexCache::Lease lease = shared.lease(pattern, kNoRegexOptions);
        lease.setSubject(pattern, {0, 3});
        EXPECT_TRUE(lease.regex().findNext(monitor));
        if (round % 100 == 0) shared.clear();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace skerrow::text
