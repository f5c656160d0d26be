#include "text/regex/regex_template.h"

#include <algorithm>
#include <optional>

#include "foundation/text/character_sets.h"
#include "foundation/text/code_points.h"

namespace skerrow::text {

namespace {

constexpr bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Letters and digits; the first must be a letter.
constexpr bool isNameUnit(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || isDigit(unit);
}

}  // namespace

class RegexTemplate::Parser {
 public:
  Parser(RegexTemplate& target, std::u16string_view source, const foundation::CompiledRegex& regex)
      : target_(target), source_(source), regex_(regex) {}

  void parse() {
    while (next_ < source_.size()) {
      const char16_t unit = source_[next_++];
      if (unit == u'\\') {
        parseEscape();
      } else if (unit != u'$' || !(parseNumber() || parseName())) {
        target_.literals_ += unit;
      }
    }
    endPiece(kNoGroup);
  }

 private:
  void parseEscape() {
    if (next_ == source_.size()) return;
    const char16_t unit = source_[next_++];
    const std::size_t digits = unit == u'u' ? 4 : unit == u'U' ? 8 : 0;
    const auto codePoint =
        digits == 0 ? std::nullopt
                    : foundation::codePointFromHexadecimal(source_.substr(next_), digits);
    if (!codePoint) {
      target_.literals_ += unit;
      return;
    }
    foundation::appendCodePoint(target_.literals_, *codePoint);
    next_ += digits;
  }

  // What follows a $: the first digit always counts, another one only where the
  // longer number still names a group.
  bool parseNumber() {
    std::optional<std::int32_t> number;
    while (next_ < source_.size()) {
      const foundation::CodePoint character = foundation::codePointAt(source_, next_);
      const std::optional<int> digit = foundation::decimalDigit(character.value);
      if (!digit) break;
      const std::int64_t longer = std::int64_t{number.value_or(0)} * 10 + *digit;
      if (longer > regex_.groupCount()) {
        if (number) break;
        next_ += character.unitCount;
        return true;  // a group that the pattern lacks
      }
      number = static_cast<std::int32_t>(longer);
      next_ += character.unitCount;
    }
    if (number) endPiece(*number);
    return number.has_value();
  }

  bool parseName() {
    if (next_ == source_.size() || source_[next_] != u'{') return false;
    const auto* const begin = source_.begin() + next_ + 1;
    const auto* const end = std::find_if_not(begin, source_.end(), isNameUnit);
    if (end == source_.end() || *end != u'}' || begin == end || isDigit(*begin)) return false;
    const std::u16string_view name(begin, end);
    next_ += name.size() + 2;
    if (const auto group = regex_.groupNumber(name)) endPiece(*group);
    return true;
  }

  void endPiece(std::int32_t group) {
    target_.pieces_.push_back({target_.literals_.size(), group});
  }

  RegexTemplate& target_;
  std::u16string_view source_;
  const foundation::CompiledRegex& regex_;
  std::size_t next_ = 0;
};

RegexTemplate::RegexTemplate(const Text& source, const foundation::CompiledRegex& regex) {
  Parser(*this, source.view(), regex).parse();
}

void RegexTemplate::appendTo(std::u16string& result, const foundation::CompiledRegex& match,
                             std::u16string_view subject) const {
  std::size_t literal = 0;
  for (const Piece& piece : pieces_) {
    result.append(literals_, literal, piece.literalEnd - literal);
    literal = piece.literalEnd;
    if (piece.group != kNoGroup) result += match.group(piece.group).of(subject);
  }
}

}  // namespace skerrow::text
