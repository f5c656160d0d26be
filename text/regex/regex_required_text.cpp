#include "text/regex/regex_required_text.h"

#include <algorithm>
#include <cstddef>

#include "foundation/text/code_points.h"

namespace skerrow::text {

namespace {

// Options under which a literal character still matches itself and nothing else.
constexpr RegexOptions kHarmlessOptions = kMultiline | kDotAll | kUnicodeWordBreaks;
// Escapes by a letter that match a character or a place, and never a group or more.
constexpr std::u16string_view kClassEscapes = u"dDwWsShHvVRXbBAZzG";

// Thrown, and caught below, where a pattern is not understood for certain.
struct InDoubt {};

class PatternReader {
 public:
  explicit PatternReader(std::u16string_view pattern) : pattern_(pattern) {}

  std::u16string read() {
    while (next_ < pattern_.size()) readItem();
    endRun();
    return longest_;
  }

 private:
  void readItem() {
    const char16_t unit = pattern_[next_];
    switch (unit) {
      case u'\\':
        return readEscape();
      case u'[':
        return skip(&PatternReader::skipClass);
      case u'(':
        return skip(&PatternReader::skipGroup);
      case u'.':
      case u'^':
      case u'$':
        return skip(&PatternReader::skipUnit);
      case u'|':
      case u')':
        throw InDoubt{};
      case u'+':
        ++next_;  // once is certain
        return endRun();
      case u'?':
      case u'*':
        ++next_;
        return dropLastLiteral();
      case u'{':
        skipUntil(u'}');
        return dropLastLiteral();
      default:
        return readLiteral();
    }
  }

  void readLiteral() {
    const foundation::CodePoint point = foundation::codePointAt(pattern_, next_);
    if (point.isLoneSurrogate()) throw InDoubt{};
    takeLiteral(point.unitCount);
  }

  void readEscape() {
    ++next_;
    if (next_ == pattern_.size()) throw InDoubt{};
    const char16_t unit = pattern_[next_];
    const bool isSign = unit < 0x80 && unit > u' ' && !isLetterOrDigit(unit);
    if (isSign) return takeLiteral(1);
    if (kClassEscapes.find(unit) == std::u16string_view::npos) throw InDoubt{};
    skip(&PatternReader::skipUnit);
  }

  void takeLiteral(std::size_t unitCount) {
    lastLiteral_ = run_.size();
    run_ += pattern_.substr(next_, unitCount);
    next_ += unitCount;
  }

  // What was read last need not occur.
  void dropLastLiteral() {
    run_.resize(std::min(lastLiteral_, run_.size()));
    endRun();
  }

  void endRun() {
    if (run_.size() > longest_.size()) longest_ = run_;
    run_.clear();
    lastLiteral_ = 0;
  }

  void skip(void (PatternReader::*item)()) {
    endRun();
    (this->*item)();
  }

  void skipUnit() { ++next_; }

  void skipUntil(char16_t last) {
    const std::size_t end = pattern_.find(last, next_);
    if (end == std::u16string_view::npos) throw InDoubt{};
    next_ = end + 1;
  }

  // A backslash and the unit that it changes.
  void skipEscape() {
    if (next_ + 1 >= pattern_.size()) throw InDoubt{};
    const char16_t unit = pattern_[next_ + 1];
    if (unit == u'Q' || unit == u'E') throw InDoubt{};
    next_ += 2;
  }

  void deepen() {
    if (++depth_ > kDeepest) throw InDoubt{};
  }

  void skipClass() {
    deepen();
    ++next_;
    if (next_ < pattern_.size() && pattern_[next_] == u'^') ++next_;
    if (next_ < pattern_.size() && pattern_[next_] == u']') throw InDoubt{};
    while (next_ < pattern_.size()) {
      const char16_t unit = pattern_[next_];
      if (unit == u'\\') {
        skipEscape();
      } else if (unit == u'[') {
        skipClass();
      } else if (++next_, unit == u']') {
        --depth_;
        return;
      }
    }
    throw InDoubt{};
  }

  void skipGroup() {
    deepen();
    ++next_;
    if (next_ < pattern_.size() && pattern_[next_] == u'?') readGroupKind();
    while (next_ < pattern_.size()) {
      const char16_t unit = pattern_[next_];
      if (unit == u'\\') {
        skipEscape();
      } else if (unit == u'[') {
        skipClass();
      } else if (unit == u'(') {
        skipGroup();
      } else if (++next_, unit == u')') {
        --depth_;
        return;
      }
    }
    throw InDoubt{};
  }

  // Groups that set options or hold comments change how all the rest is read; but
  // (?m) and (?s) do not change what a literal character matches.
  void readGroupKind() {
    const std::u16string_view kind = pattern_.substr(next_ + 1);
    for (const std::u16string_view harmless : {u"m)", u"s)", u"ms)", u"sm)"}) {
      if (kind.starts_with(harmless)) return;
    }
    constexpr std::u16string_view kPlainKinds = u":=!<>";
    if (kind.empty() || kPlainKinds.find(kind.front()) == std::u16string_view::npos)
      throw InDoubt{};
  }

  static constexpr bool isLetterOrDigit(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'a' && unit <= u'z');
  }

  static constexpr int kDeepest = 64;

  std::u16string_view pattern_;
  std::size_t next_ = 0;
  int depth_ = 0;
  std::u16string run_;
  std::size_t lastLiteral_ = 0;
  std::u16string longest_;
};

}  // namespace

std::u16string requiredText(std::u16string_view pattern, RegexOptions options) {
  if ((options & ~kHarmlessOptions) != 0) return {};
  try {
    return PatternReader(pattern).read();
  } catch (const InDoubt&) {
    return {};
  }
}

}  // namespace skerrow::text
