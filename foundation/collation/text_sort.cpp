#include "foundation/collation/text_sort.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <string>
#include <utility>

#include "foundation/collation/primary_ranks.h"

namespace skerrow::foundation {

namespace {

using Texts = std::span<const std::u16string_view>;
using Positions = std::vector<std::uint32_t>;

// Below this, preparing keys costs more than it saves.
constexpr std::size_t kFewTexts = 64;

// From here on asking the rules for the rank of each character is worth its milliseconds.
constexpr std::size_t kManyTexts = 16384;

// The comparator's order, completed by the position so that no two are equal.
class TotalOrder {
 public:
  TotalOrder(Texts texts, const TextComparator& comparator, SortDirection direction)
      : texts_(texts), comparator_(comparator), direction_(direction) {}

  bool operator()(std::uint32_t a, std::uint32_t b) const {
    // Equal texts are common where there are many, and cheaper to see than to compare.
    if (texts_[a] != texts_[b]) {
      const std::weak_ordering order = comparator_.compare(texts_[a], texts_[b]);
      if (order != 0) return order < 0;
    }
    // A descending result is reversed as a whole at the end.
    return direction_ == SortDirection::ascending ? a < b : a > b;
  }

 private:
  Texts texts_;
  const TextComparator& comparator_;
  SortDirection direction_;
};

// The fronts of texts as bytes in the order of their units: each unit in the form of
// UTF-8, whose bytes compare as the units do, with zeros behind the end.
class LiteralKeys {
 public:
  explicit LiteralKeys(Texts texts) {
    begins_.reserve(texts.size());
    for (const std::u16string_view text : texts) {
      begins_.push_back(words_.size());
      add(text);
    }
  }

  [[nodiscard]] std::uint64_t word(std::uint32_t position, std::size_t index) const {
    return words_[begins_[position] + index];
  }
  // Whether texts that agree up to this word may still differ behind it.
  [[nodiscard]] bool goesOn(std::uint64_t word, std::size_t index) const {
    return (word & 0xFFU) != 0 && index + 1 < kMostWords;
  }

 private:
  static constexpr std::size_t kMostWords = 8;

  void add(std::u16string_view text) {
    const std::size_t mostWords = words_.size() + kMostWords;
    std::uint64_t word = 0;
    unsigned room = 64;  // bits
    const auto put = [&](unsigned byte) {
      room -= 8;
      word |= std::uint64_t{byte} << room;
      if (room != 0) return;
      words_.push_back(word);
      word = 0;
      room = 64;
    };
    for (const unsigned unit : text) {
      if (unit < 0x80) {
        put(unit);
      } else if (unit < 0x800) {
        put(0xC0U | unit >> 6U);
        put(0x80U | (unit & 0x3FU));
      } else {
        put(0xE0U | unit >> 12U);
        put(0x80U | (unit >> 6U & 0x3FU));
        put(0x80U | (unit & 0x3FU));
      }
      if (words_.size() >= mostWords) return;
    }
    words_.push_back(word);
  }

  std::vector<std::size_t> begins_;
  std::vector<std::uint64_t> words_;
};

class RankKeys {
 public:
  explicit RankKeys(std::size_t count) : fronts_(count) {}

  PrimaryRanks::Front& front(std::uint32_t position) { return fronts_[position]; }

  [[nodiscard]] std::uint64_t word(std::uint32_t position, std::size_t index) const {
    return fronts_[position][index];
  }
  [[nodiscard]] bool goesOn(std::uint64_t word, std::size_t index) const {
    return (word & 0xFFU) != 0 && index + 1 < PrimaryRanks::kWords;
  }

 private:
  std::vector<PrimaryRanks::Front> fronts_;
};

// Whole sort keys of the collation rules, for short texts.
class RuleKeys {
 public:
  RuleKeys(Texts texts, const UCollator* collator)
      : texts_(texts), collator_(collator), begins_(texts.size()) {}

  // False for a text whose key would be long.
  bool add(std::uint32_t position) {
    constexpr std::size_t kLongestText = 64;
    constexpr std::int32_t kLongestKey = 512;
    const std::u16string_view text = texts_[position];
    if (text.size() > kLongestText) return false;
    std::uint8_t key[kLongestKey];
    const std::int32_t length = ucol_getSortKey(
        collator_, text.data(), static_cast<std::int32_t>(text.size()), key, kLongestKey);
    if (length <= 0 || length > kLongestKey) return false;
    begins_[position] = words_.size();
    for (std::int32_t i = 0; i < length; i += 8) {
      std::uint64_t word = 0;
      for (std::int32_t j = i; j < i + 8; ++j) word = word << 8U | (j < length ? key[j] : 0U);
      words_.push_back(word);
    }
    return true;
  }

  [[nodiscard]] std::uint64_t word(std::uint32_t position, std::size_t index) const {
    return words_[begins_[position] + index];
  }
  // A key ends with a zero byte and has none before.
  [[nodiscard]] bool goesOn(std::uint64_t word, std::size_t) const { return (word & 0xFFU) != 0; }

 private:
  Texts texts_;
  const UCollator* collator_;
  std::vector<std::size_t> begins_;
  std::vector<std::uint64_t> words_;
};

// Sorts by one word of the keys after the other; what no word tells apart goes by the total order.
template <class Keys>
void sortByKeys(Positions& positions, const Keys& keys, const TotalOrder& totalOrder) {
  struct Entry {
    std::uint64_t word;
    std::uint32_t position;
  };
  struct Run {
    std::size_t begin, end, index;
  };
  std::vector<Entry> entries(positions.size());
  for (std::size_t i = 0; i < entries.size(); ++i) entries[i].position = positions[i];

  std::vector<Run> runs{{0, entries.size(), 0}};
  while (!runs.empty()) {
    const Run run = runs.back();
    runs.pop_back();
    const auto slice = std::span(entries).subspan(run.begin, run.end - run.begin);
    for (Entry& entry : slice) entry.word = keys.word(entry.position, run.index);
    std::ranges::sort(slice, {}, &Entry::word);
    for (std::size_t begin = 0, end = 0; begin < slice.size(); begin = end) {
      end = begin + 1;
      while (end < slice.size() && slice[end].word == slice[begin].word) ++end;
      if (end - begin == 1) continue;
      if (keys.goesOn(slice[begin].word, run.index)) {
        runs.push_back({run.begin + begin, run.begin + end, run.index + 1});
      } else {
        std::ranges::sort(slice.subspan(begin, end - begin), totalOrder, &Entry::position);
      }
    }
  }
  std::ranges::transform(entries, positions.begin(), &Entry::position);
}

// Merges two sorted runs; a few texts among many are put in place by bisection.
Positions merged(const Positions& many, const Positions& few, const TotalOrder& totalOrder) {
  Positions result;
  result.reserve(many.size() + few.size());
  if (few.size() > many.size() / 16) {
    std::ranges::merge(many, few, std::back_inserter(result), totalOrder);
    return result;
  }
  auto from = many.begin();
  for (const std::uint32_t position : few) {
    const auto place = std::upper_bound(from, many.end(), position, totalOrder);
    result.insert(result.end(), from, place);
    result.push_back(position);
    from = place;
  }
  result.insert(result.end(), from, many.end());
  return result;
}

// Most texts are short and have sort keys; the others are compared.
Positions sortedByRuleKeys(Texts texts, const Positions& positions,
                           const TextComparator& comparator, const TotalOrder& totalOrder) {
  RuleKeys keys(texts, comparator.collator());
  Positions keyed;
  Positions compared;
  for (const std::uint32_t position : positions) {
    (keys.add(position) ? keyed : compared).push_back(position);
  }
  sortByKeys(keyed, keys, totalOrder);
  std::ranges::sort(compared, totalOrder);
  return merged(keyed, compared, totalOrder);
}

// Most texts have ranks; the others have sort keys or are compared.
Positions sortedByRanks(Texts texts, const TextComparator& comparator,
                        const TotalOrder& totalOrder) {
  const PrimaryRanks ranks(comparator);
  RankKeys keys(texts.size());
  Positions ranked;
  Positions others;
  ranked.reserve(texts.size());
  for (std::uint32_t i = 0; i < texts.size(); ++i) {
    (ranks.encode(texts[i], keys.front(i)) ? ranked : others).push_back(i);
  }
  sortByKeys(ranked, keys, totalOrder);
  if (others.empty()) return ranked;
  return merged(ranked, sortedByRuleKeys(texts, others, comparator, totalOrder), totalOrder);
}

void sortByCaselessForms(Texts texts, Positions& positions, const TotalOrder& totalOrder) {
  std::u16string forms;
  std::vector<std::size_t> ends;
  ends.reserve(texts.size());
  for (const std::u16string_view text : texts) {
    forms += caselessForm(text);
    ends.push_back(forms.size());
  }
  std::vector<std::u16string_view> views;
  views.reserve(texts.size());
  for (std::size_t i = 0, begin = 0; i < ends.size(); begin = ends[i++]) {
    views.push_back(std::u16string_view(forms).substr(begin, ends[i] - begin));
  }
  sortByKeys(positions, LiteralKeys(views), totalOrder);
}

}  // namespace

std::vector<std::uint32_t> sortedPositions(std::span<const std::u16string_view> texts,
                                           const TextComparator& comparator,
                                           SortDirection direction) {
  const TotalOrder totalOrder(texts, comparator, direction);
  Positions positions(texts.size());
  std::iota(positions.begin(), positions.end(), 0U);
  if (texts.size() < kFewTexts) {
    std::ranges::sort(positions, totalOrder);
  } else if (comparator.comparison() == TextComparison::sortPlain) {
    sortByKeys(positions, LiteralKeys(texts), totalOrder);
  } else if (comparator.comparison() == TextComparison::sortCaseInsensitive) {
    sortByCaselessForms(texts, positions, totalOrder);
  } else {
    positions = texts.size() < kManyTexts
                    ? sortedByRuleKeys(texts, positions, comparator, totalOrder)
                    : sortedByRanks(texts, comparator, totalOrder);
  }
  if (direction == SortDirection::descending) std::ranges::reverse(positions);
  return positions;
}

std::vector<std::uint32_t> sortRanks(std::span<const std::u16string_view> texts,
                                     const TextComparator& comparator) {
  const Positions positions = sortedPositions(texts, comparator);
  std::vector<std::uint32_t> ranks(texts.size());
  std::uint32_t rank = 0;
  for (std::size_t i = 1; i < positions.size(); ++i) {
    const std::u16string_view before = texts[positions[i - 1]];
    const std::u16string_view text = texts[positions[i]];
    if (before != text && comparator.compare(before, text) != 0) ++rank;
    ranks[positions[i]] = rank;
  }
  return ranks;
}

}  // namespace skerrow::foundation
