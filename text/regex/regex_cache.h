#pragma once
// RegexCache: the compiled patterns in use, so that a script which calls a
// command in a loop compiles its pattern once. 13 sets of 4 entries, each set in
// least-recently-used order, with two short cuts in front: the entry used last,
// and a look-aside table of 64 slots.
//
// One lock guards all of it and is held only while a pattern is looked up,
// compiled or handed back. Matching runs outside it: a lease gives its holder a
// clone of the compiled pattern, and clones wait in their entry for the next
// lease. So two operations with one pattern run at once, and an operation may
// call the service again.
//
// Safe to use from any thread. Leases must not outlive the cache.

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/collation/text_search.h"
#include "foundation/regex/compiled_regex.h"
#include "text/regex/regex_error.h"
#include "values/text.h"
#include "work/locked.h"

namespace skerrow::text {

/// One thing that happened in the cache, for tests and diagnostics.
struct RegexCacheEvent {
  enum class Kind : std::uint8_t {
    lastUsedHit,   ///< found as the entry used last
    lookAsideHit,  ///< found through the look-aside table
    setHit,        ///< found in its set
    miss,          ///< compiled
    eviction,      ///< left its entry, for the pattern of the miss that follows
  };
  Kind kind;
  std::size_t set;    // 0 to 12
  std::size_t entry;  // of the set, 0 to 3; entry 0 is the one that set searches pass over
  Text pattern;
};

class RegexCache {
 public:
  static constexpr std::size_t kSetCount = 13;
  static constexpr std::size_t kEntriesPerSet = 4;
  static constexpr std::size_t kLookAsideSlots = 64;

  /// Called under the lock; must not use the cache.
  using Observer = std::function<void(const RegexCacheEvent&)>;

  class Lease;

  explicit RegexCache(Observer observer = {});

  /// The compiled pattern. Throws RegexFailure where it does not compile (then no
  /// entry is left behind), RegexRangeException where it is too long and
  /// RegexInternalFault where ICU fails at what it must not.
  [[nodiscard]] Lease lease(const Text& pattern, RegexOptions options);

  /// Forgets every pattern.
  void clear();

  /// Forgets the subjects that patterns were last set to.
  void forgetSubjects();

  /// Which set a pattern belongs to.
  static std::size_t setOf(const Text& pattern, RegexOptions options) noexcept;
  /// Which look-aside slot points at it; equal patterns in different texts differ here.
  static std::size_t lookAsideSlotOf(const Text& pattern, RegexOptions options) noexcept;

 private:
  // A clone and the subject that it was last set to, if it remembers one. A long
  // subject is not remembered, so that the cache keeps no large text alive.
  struct Matcher {
    foundation::CompiledRegex regex;
    std::optional<Text> subject;

    void forgetSubject();
  };

  struct Entry {
    Text pattern;
    std::size_t hash = 0;
    RegexOptions options = kNoRegexOptions;
    std::optional<foundation::CompiledRegex> compiled;  // never searches, only makes clones
    std::shared_ptr<const foundation::TextSearch> required;
    std::vector<Matcher> idle;
    std::uint64_t generation = 0;  // changes when the entry is emptied

    [[nodiscard]] bool holds(const Text& wanted, RegexOptions wantedOptions) const noexcept;
    void empty() noexcept;
  };

  // What the lock guards.
  class Entries {
   public:
    explicit Entries(Observer observer) : observer_(std::move(observer)) {}

    /// The place of the entry that holds the pattern; it is compiled if there is none.
    [[nodiscard]] std::size_t placeOf(const Text& pattern, RegexOptions options);
    [[nodiscard]] Entry& at(std::size_t place) { return entries_[place]; }
    void clear();
    void forgetSubjects();

   private:
    static constexpr std::size_t kEntryCount = kSetCount * kEntriesPerSet;

    [[nodiscard]] std::optional<std::size_t> findEntry(const Text& pattern, RegexOptions options);
    [[nodiscard]] std::size_t compileEntry(const Text& pattern, RegexOptions options);
    [[nodiscard]] std::size_t leastRecentlyUsedEntry(std::size_t set) const;
    void markUsed(std::size_t entry, std::size_t lookAsideSlot);
    void tell(RegexCacheEvent::Kind kind, std::size_t entry) const;

    std::array<Entry, kEntryCount> entries_;
    std::array<std::uint16_t, kSetCount> usage_{};  // per set, a 4 by 4 bit matrix
    std::array<std::uint8_t, kLookAsideSlots> lookAside_{};
    std::optional<std::size_t> lastUsed_;
    Observer observer_;
  };

  [[nodiscard]] static Matcher takeMatcher(Entry& entry);
  void giveBack(std::size_t entry, std::uint64_t generation, Matcher matcher);

  work::Locked<Entries> entries_;
};

/// The right to search with one pattern, until the end of its scope.
class RegexCache::Lease {
 public:
  Lease(Lease&& other) noexcept;
  Lease& operator=(Lease&&) = delete;
  ~Lease();

  [[nodiscard]] foundation::CompiledRegex& regex() noexcept { return matcher_->regex; }
  [[nodiscard]] const foundation::CompiledRegex& regex() const noexcept { return matcher_->regex; }

  /// A text that every match holds, if such a one is known; else null.
  [[nodiscard]] const foundation::TextSearch* required() const noexcept { return required_.get(); }

  /// Sets the pattern to a range of a subject, in place.
  void setSubject(const Text& subject, foundation::UnitRange range);

 private:
  friend class RegexCache;
  Lease(RegexCache& cache, std::size_t place, Entry& entry);

  RegexCache* cache_;
  std::size_t entry_;
  std::uint64_t generation_;
  std::shared_ptr<const foundation::TextSearch> required_;
  std::optional<Matcher> matcher_;
};

}  // namespace skerrow::text
