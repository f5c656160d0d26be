#include "text/regex/regex_cache.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "text/regex/regex_required_text.h"

namespace skerrow::text {

namespace {

constexpr std::size_t kIdleMatchersPerEntry = 4;
constexpr std::size_t kLongestRememberedSubject = 64 * 1024;  // units

// A set's word of usage: row e, the four bits from 4e, belongs to entry e.
constexpr std::uint16_t rowOf(std::size_t entry) {
  return static_cast<std::uint16_t>(0xFU << (4 * entry));
}
constexpr std::uint16_t columnOf(std::size_t entry) {
  return static_cast<std::uint16_t>(0x1111U << entry);
}

// Copies of a text share their units, so the address of the units is the text's identity.
std::uintptr_t identityOf(const Text& text) {
  return reinterpret_cast<std::uintptr_t>(text.view().data());
}

std::size_t hashOf(const Text& pattern) { return std::hash<std::u16string_view>{}(pattern.view()); }

// A fault of ICU's own is none of the pattern's.
foundation::CompiledRegex cloneOf(const foundation::CompiledRegex& compiled) {
  try {
    return compiled.clone();
  } catch (const foundation::RegexFault&) {
    throw RegexInternalFault();
  }
}

}  // namespace

std::size_t RegexCache::setOf(const Text& pattern, RegexOptions options) noexcept {
  return (hashOf(pattern) ^ options) % kSetCount;
}

std::size_t RegexCache::lookAsideSlotOf(const Text& pattern, RegexOptions options) noexcept {
  return ((options >> 4U) + (identityOf(pattern) >> 4U) + options) % kLookAsideSlots;
}

void RegexCache::Matcher::forgetSubject() {
  if (subject) regex.setSubject({}, {});
  subject.reset();
}

bool RegexCache::Entry::holds(const Text& wanted, RegexOptions wantedOptions) const noexcept {
  return compiled && options == wantedOptions && pattern == wanted;
}

void RegexCache::Entry::empty() noexcept {
  compiled.reset();
  required.reset();
  idle.clear();
  pattern = Text();
  ++generation;
}

RegexCache::RegexCache(Observer observer) : entries_(Entries(std::move(observer))) {}

RegexCache::Lease RegexCache::lease(const Text& pattern, RegexOptions options) {
  auto entries = entries_.access();
  const std::size_t place = entries->placeOf(pattern, options);
  return {*this, place, entries->at(place)};
}

std::size_t RegexCache::Entries::placeOf(const Text& pattern, RegexOptions options) {
  const std::optional<std::size_t> found = findEntry(pattern, options);
  const std::size_t place = found ? *found : compileEntry(pattern, options);
  markUsed(place, lookAsideSlotOf(pattern, options));
  return place;
}

std::optional<std::size_t> RegexCache::Entries::findEntry(const Text& pattern,
                                                          RegexOptions options) {
  // The entry used last, for the very same text object.
  if (lastUsed_) {
    const Entry& entry = entries_[*lastUsed_];
    if (entry.compiled && entry.options == options &&
        identityOf(entry.pattern) == identityOf(pattern)) {
      tell(RegexCacheEvent::Kind::lastUsedHit, *lastUsed_);
      return lastUsed_;
    }
  }
  // The look-aside table, for an equal text.
  const std::size_t aside = lookAside_[lookAsideSlotOf(pattern, options)];
  if (entries_[aside].holds(pattern, options)) {
    tell(RegexCacheEvent::Kind::lookAsideHit, aside);
    return aside;
  }
  // The set, from its last entry to its second. The first is passed over; that is
  // how this cache is meant to be, so one pattern may come to be held twice.
  const std::size_t hash = hashOf(pattern);
  const std::size_t first = (hash ^ options) % kSetCount * kEntriesPerSet;
  for (std::size_t place = first + kEntriesPerSet - 1; place > first; --place) {
    if (entries_[place].hash == hash && entries_[place].holds(pattern, options)) {
      tell(RegexCacheEvent::Kind::setHit, place);
      return place;
    }
  }
  return std::nullopt;
}

std::size_t RegexCache::Entries::compileEntry(const Text& pattern, RegexOptions options) {
  const std::size_t set = setOf(pattern, options);
  const std::size_t place = set * kEntriesPerSet + leastRecentlyUsedEntry(set);
  Entry& entry = entries_[place];
  if (entry.compiled) tell(RegexCacheEvent::Kind::eviction, place);
  entry.empty();
  if (pattern.unitCount() >= INT_MAX) {
    throw RegexRangeException("Regex string length exceeds INT_MAX");
  }
  try {
    entry.compiled = foundation::CompiledRegex::compile(pattern.view(), options);
  } catch (const foundation::RegexFault& fault) {
    RegexError error;
    error.fault = fault;
    error.regex = pattern;
    error.options = options;
    throw RegexFailure(std::move(error));
  }
  if (const std::u16string required = requiredText(pattern.view(), options); !required.empty()) {
    entry.required = std::make_shared<const foundation::TextSearch>(required);
  }
  entry.idle.reserve(kIdleMatchersPerEntry);
  entry.pattern = pattern;
  entry.hash = hashOf(pattern);
  entry.options = options;
  tell(RegexCacheEvent::Kind::miss, place);
  return place;
}

// Of several entries that were never used, the one that the set search sees first.
std::size_t RegexCache::Entries::leastRecentlyUsedEntry(std::size_t set) const {
  for (std::size_t entry = kEntriesPerSet; entry-- > 0;) {
    if ((usage_[set] & rowOf(entry)) == 0) return entry;
  }
  std::fputs("skerrow: a set of the pattern cache has no least recently used entry\n", stderr);
  std::abort();
}

void RegexCache::Entries::markUsed(std::size_t entry, std::size_t lookAsideSlot) {
  lastUsed_ = entry;
  lookAside_[lookAsideSlot] = static_cast<std::uint8_t>(entry);
  std::uint16_t& usage = usage_[entry / kEntriesPerSet];
  const std::size_t inSet = entry % kEntriesPerSet;
  usage = static_cast<std::uint16_t>((usage | rowOf(inSet)) & ~columnOf(inSet));
}

RegexCache::Matcher RegexCache::takeMatcher(Entry& entry) {
  if (entry.idle.empty()) return {cloneOf(*entry.compiled), std::nullopt};
  Matcher matcher = std::move(entry.idle.back());
  entry.idle.pop_back();
  return matcher;
}

void RegexCache::giveBack(std::size_t entry, std::uint64_t generation, Matcher matcher) {
  if (matcher.subject && matcher.subject->unitCount() > kLongestRememberedSubject) {
    matcher.forgetSubject();
  }
  auto entries = entries_.access();
  Entry& home = entries->at(entry);
  if (home.generation != generation || home.idle.size() >= kIdleMatchersPerEntry) return;
  home.idle.push_back(std::move(matcher));
}

void RegexCache::clear() { entries_.access()->clear(); }

void RegexCache::forgetSubjects() { entries_.access()->forgetSubjects(); }

void RegexCache::Entries::clear() {
  for (Entry& entry : entries_) entry.empty();
  usage_.fill(0);
  lookAside_.fill(0);
  lastUsed_.reset();
}

void RegexCache::Entries::forgetSubjects() {
  for (Entry& entry : entries_) {
    for (Matcher& matcher : entry.idle) matcher.forgetSubject();
  }
}

void RegexCache::Entries::tell(RegexCacheEvent::Kind kind, std::size_t entry) const {
  if (!observer_) return;
  observer_({kind, entry / kEntriesPerSet, entry % kEntriesPerSet, entries_[entry].pattern});
}

RegexCache::Lease::Lease(RegexCache& cache, std::size_t place, Entry& entry)
    : cache_(&cache),
      entry_(place),
      generation_(entry.generation),
      required_(entry.required),
      matcher_(takeMatcher(entry)) {}

RegexCache::Lease::Lease(Lease&& other) noexcept
    : cache_(other.cache_),
      entry_(other.entry_),
      generation_(other.generation_),
      required_(std::move(other.required_)),
      matcher_(std::exchange(other.matcher_, std::nullopt)) {}

RegexCache::Lease::~Lease() {
  if (matcher_) cache_->giveBack(entry_, generation_, std::move(*matcher_));
}

void RegexCache::Lease::setSubject(const Text& subject, foundation::UnitRange range) {
  if (matcher_->subject && identityOf(*matcher_->subject) == identityOf(subject)) {
    regex().restart(range);
    return;
  }
  regex().setSubject(subject.view(), range);
  matcher_->subject = subject;
}

}  // namespace skerrow::text
