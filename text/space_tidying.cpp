#include "text/space_tidying.h"

#include <algorithm>
#include <cstddef>

#include "foundation/text/character_sets.h"

namespace skerrow::text {

namespace {

constexpr char16_t kEmDash = u'\u2014';

// A run of spaces and what stands on either side, line feeds for the text's ends.
struct SpaceRun {
  std::size_t count;
  char16_t before;
  char16_t after;
};

// Shortens every run of spaces to as many as `kept` says, at most as many as there are.
template <class Kept>
void shortenSpaceRuns(std::u16string& units, Kept&& kept) {
  const std::size_t count = units.size();
  std::size_t written = 0;
  for (std::size_t i = 0; i < count;) {
    if (units[i] != u' ') {
      units[written++] = units[i++];
      continue;
    }
    const char16_t before = i == 0 ? u'\n' : units[i - 1];
    const std::size_t begin = i;
    while (i < count && units[i] == u' ') ++i;
    const SpaceRun run{i - begin, before, i == count ? u'\n' : units[i]};
    for (std::size_t spaces = kept(run); spaces > 0; --spaces) units[written++] = u' ';
  }
  units.resize(written);
}

}  // namespace

void removeSpacesAtLineEdges(std::u16string& units) {
  shortenSpaceRuns(units, [](const SpaceRun& run) {
    const bool isAtEdge = foundation::isNewline(run.before) || foundation::isNewline(run.after);
    return isAtEdge ? 0 : run.count;
  });
}

void collapseSpaceRuns(std::u16string& units) {
  shortenSpaceRuns(units, [](const SpaceRun& run) { return std::min<std::size_t>(run.count, 1); });
}

void removeSpacesAroundDashes(std::u16string& units) {
  shortenSpaceRuns(units, [](const SpaceRun& run) {
    return run.before == kEmDash || run.after == kEmDash ? 0 : run.count;
  });
}

}  // namespace skerrow::text
