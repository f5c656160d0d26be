#include "foundation/predicate/predicate_error.h"

#include "foundation/text/quoted_text.h"

namespace skerrow::foundation {

namespace {

constexpr std::size_t kLongestFormat = 200;
constexpr std::size_t kLongestPlace = 20;

}  // namespace

PredicateError PredicateError::unreadable(std::u16string_view format, std::size_t place,
                                          std::string_view what) {
  std::string reason = "Unable to parse the predicate “";
  reason += excerpt(format, place, kLongestFormat);
  reason += "” at ";
  if (place >= format.size()) {
    reason += "its end";
  } else {
    reason += "“" + excerpt(format.substr(place), 0, kLongestPlace) + "” (character " +
              std::to_string(place + 1) + ")";
  }
  reason += ": ";
  reason += what;
  reason += ".";
  return PredicateError(reason);
}

PredicateError PredicateError::failing(std::u16string_view format, std::string_view what) {
  std::string reason = "Unable to evaluate the predicate “";
  reason += excerpt(format, 0, kLongestFormat);
  reason += "”: ";
  reason += what;
  reason += ".";
  return PredicateError(reason);
}

}  // namespace skerrow::foundation
