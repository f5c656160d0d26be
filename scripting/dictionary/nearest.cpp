#include "scripting/dictionary/nearest.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace skerrow::scripting {

namespace {

// Longer ones are no slips of the pen, and comparing takes the product of the lengths.
constexpr std::size_t kLongestName = 100;

std::string lowercased(std::string_view text) {
  std::string lower(text);
  for (char& byte : lower) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
  }
  return lower;
}

// How many bytes have to be changed, put in, taken out or exchanged with the next one,
// each at most once, to make one text of the other.
std::size_t distanceBetween(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforeLast;
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    beforeLast = std::exchange(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
      const bool isSwapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row.back();
}

std::string question(std::string_view quotes, std::string_view found) {
  const std::string_view open = quotes.substr(0, quotes.size() / 2);
  const std::string_view close = quotes.substr(quotes.size() / 2);
  return "; did you mean " + std::string(open) + std::string(found) + std::string(close) + "?";
}

}  // namespace

// One letter in three may be wrong.
Nearest::Nearest(std::string_view unknown)
    : unknown_(unknown.size() <= kLongestName ? lowercased(unknown) : std::string()),
      distance_(unknown_.size() / 3 + 1) {}

void Nearest::consider(std::string_view text, std::string_view meant) {
  if (unknown_.empty() || text.empty()) return;
  const std::size_t distance = distanceBetween(unknown_, lowercased(text));
  if (distance >= distance_) return;
  distance_ = distance;
  found_ = meant;
}

std::string didYouMean(const Dictionary& dictionary, std::string_view unknownCommand) {
  Nearest nearest(unknownCommand);
  for (const CommandEntry& command : dictionary.commands) {
    nearest.consider(command.name);
    nearest.consider(command.words, command.name);
  }
  return nearest.found().empty() ? "." : question("", nearest.found());
}

std::string didYouMean(const CommandEntry& command, std::string_view unknownArgument) {
  Nearest nearest(unknownArgument);
  for (const ArgumentEntry& argument : command.arguments) {
    nearest.consider(argument.key);
    nearest.consider(argument.words, argument.key);
  }
  return nearest.found().empty() ? "." : question("“”", nearest.found());
}

}  // namespace skerrow::scripting
