#include "values/hash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace skerrow {
namespace {

// What somebody would send who knows how the hash is made and not the key: bytes that
// cancel out, differ in one place only, or are all zeros.
std::vector<std::string> preparedBytes() {
  std::vector<std::string> all;
  for (std::size_t length = 0; length <= 600; ++length) all.emplace_back(length, '\0');
  for (const std::size_t length : {7U, 8U, 14U, 15U, 24U, 28U, 29U, 64U}) {
    for (std::size_t bit = 0; bit < length * 8; ++bit) {
      std::string bytes(length, '\0');
      bytes[bit / 8] = static_cast<char>(1U << bit % 8);
      all.push_back(bytes);
      for (char& byte : bytes) byte = static_cast<char>(~byte);
      all.push_back(bytes);
    }
  }
  // The same words in every order.
  std::vector<std::string> words = {"1234567", "abcdefg", "ABCDEFG", "\0\0\0\0\0\0\1", "-------"};
  std::ranges::sort(words);
  do {
    std::string bytes;
    for (const std::string& word : words) bytes += word;
    all.push_back(bytes);
  } while (std::ranges::next_permutation(words).found);
  // Only the end differs, by multiples of what a table takes from a hash.
  for (std::uint64_t i = 1; i <= 4000; ++i) {
    std::string bytes(40, 'x');
    const std::uint64_t step = i << 32U;
    bytes.append(reinterpret_cast<const char*>(&step), sizeof step);
    all.push_back(bytes);
  }
  std::ranges::sort(all);
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

std::vector<KeyedHash> someKeys() {
  std::mt19937_64 random(20240301);
  std::vector<KeyedHash> keys;
  for (int i = 0; i < 100; ++i) keys.emplace_back(random(), random());
  return keys;
}

TEST(KeyedHash, NoKeyGivesPreparedBytesOneHash) {
  const std::vector<std::string> prepared = preparedBytes();
  ASSERT_GT(prepared.size(), 7000U);
  for (const KeyedHash& key : someKeys()) {
    std::vector<std::size_t> hashes;
    hashes.reserve(prepared.size());
    for (const std::string& bytes : prepared) {
      hashes.push_back(key.ofBytes(bytes.data(), bytes.size()));
    }
    std::ranges::sort(hashes);
    EXPECT_EQ(std::ranges::adjacent_find(hashes), hashes.end());
  }
}

// As few prepared bytes fall on one slot of a table as chance has it: of some 7600 in 16384
// slots about 7. What had been prepared with success would be hundreds.
TEST(KeyedHash, PreparedBytesSpreadOverATable) {
  constexpr std::size_t kSlots = 16384;
  const std::vector<std::string> prepared = preparedBytes();
  for (const KeyedHash& key : someKeys()) {
    for (const unsigned lowestBit : {0U, 20U, 40U}) {
      std::vector<int> counts(kSlots);
      int most = 0;
      for (const std::string& bytes : prepared) {
        const std::size_t hash = key.ofBytes(bytes.data(), bytes.size());
        most = std::max(most, ++counts[hash >> lowestBit & (kSlots - 1)]);
      }
      EXPECT_LE(most, 16);
    }
  }
}

TEST(KeyedHash, MixesNumbersByTheirPlaces) {
  for (const KeyedHash& key : someKeys()) {
    std::vector<std::size_t> hashes;
    for (std::uint64_t a = 0; a < 40; ++a) {
      for (std::uint64_t b = 0; b < 40; ++b) {
        hashes.push_back(key.mixed(a, b));
        hashes.push_back(key.mixed((a + 1) << 32U, b));
        hashes.push_back(key.mixed(a, (b + 1) << 58U));
      }
    }
    const std::size_t count = hashes.size();
    std::ranges::sort(hashes);
    hashes.erase(std::unique(hashes.begin(), hashes.end()), hashes.end());
    EXPECT_EQ(hashes.size(), count);
    // Sums tell which numbers go together.
    EXPECT_NE(key.mixed(1, 2) + key.mixed(3, 4), key.mixed(1, 4) + key.mixed(3, 2));
  }
}

TEST(KeyedHash, DependsOnItsKey) {
  std::vector<std::size_t> ofText;
  std::vector<std::size_t> ofNumbers;
  for (const KeyedHash& key : someKeys()) {
    ofText.push_back(key.ofBytes("tea", 3));
    ofNumbers.push_back(key.mixed(1, 2));
  }
  for (std::vector<std::size_t>* const hashes : {&ofText, &ofNumbers}) {
    std::ranges::sort(*hashes);
    EXPECT_EQ(std::ranges::adjacent_find(*hashes), hashes->end());
  }
}

TEST(KeyedHash, ReadsNothingBesideItsBytes) {
  const KeyedHash& key = KeyedHash::ofProcess();
  for (std::size_t count = 0; count <= 70; ++count) {
    const std::string alone(count, 'a');
    const std::string inside = "x" + alone + "y";
    EXPECT_EQ(key.ofBytes(alone.data(), count), key.ofBytes(inside.data() + 1, count)) << count;
  }
}

}  // namespace
}  // namespace skerrow
