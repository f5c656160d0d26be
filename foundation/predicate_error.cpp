#include "foundation/predicate_error.h"

#include <algorithm>

#include "foundation/text_encoding.h"

namespace skerrow::foundation {

namespace {

// At most `length` units of a text around a place, with dots where more was.
std::string excerpt(std::u16string_view text, std::size_t place, std::size_t length) {
  if (text.size() <= length) return utf8FromUtf16(text);
  const std::size_t before = std::min(place, length / 2);
  const std::size_t begin = std::min(place - before, text.size() - length);
  std::string shown = utf8FromUtf16(text.substr(begin, length));
  if (begin > 0) shown.insert(0, "…");
  if (begin + length < text.size()) shown += "…";
  return shown;
}

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
