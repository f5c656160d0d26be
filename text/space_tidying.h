#pragma once
// Spaces (U+0020, no other white space) at the edges of lines, in runs and around
// dashes. Each function is one pass in place, linear however long the runs are,
// and has the effect of a replacement by the regular expression named with it,
// where ^ and $ match at every line and lines end at LF, VT, FF, CR, U+0085,
// U+2028 and U+2029.

#include <string>

namespace skerrow::text {

/// "^ +", then " +$", by nothing.
void removeSpacesAtLineEdges(std::u16string& units);

/// "  +" by one space.
void collapseSpaceRuns(std::u16string& units);

/// " *— *" by the em dash alone.
void removeSpacesAroundDashes(std::u16string& units);

}  // namespace skerrow::text
