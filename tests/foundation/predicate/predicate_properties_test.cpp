// Laws that hold for all predicates.

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/predicate/predicate.h"
#include "foundation/text/text_encoding.h"
#include "tests/foundation/predicate/predicate_rows.h"
#include "tests/support/properties.h"
#include "values/record.h"

namespace skerrow::foundation {
namespace {

// A condition and what it comes to, for the laws below.
std::pair<std::u16string, bool> arbitraryCondition(int depth) {
  const int kind = *rc::gen::inRange(0, depth > 0 ? 5 : 2);
  if (kind == 0) return {u"TRUEPREDICATE", true};
  if (kind == 1) {
    const int a = *rc::gen::inRange(0, 3);
    const int b = *rc::gen::inRange(0, 3);
    const auto digit = [](int number) {
      return std::u16string(1, static_cast<char16_t>(u'0' + number));
    };
    return {digit(a) + u" < " + digit(b), a < b};
  }
  const auto [left, isLeft] = arbitraryCondition(depth - 1);
  if (kind == 2) return {u"NOT (" + left + u")", !isLeft};
  const auto [right, isRight] = arbitraryCondition(depth - 1);
  if (kind == 3) return {u"(" + left + u") && (" + right + u")", isLeft && isRight};
  return {u"(" + left + u") OR (" + right + u")", isLeft || isRight};
}

RC_GTEST_PROP(Predicate, JoinsAndNegatesLikeLogic, ()) {
  const auto [format, expected] = arbitraryCondition(4);
  RC_ASSERT(Predicate::parse(format).evaluate(Value()) == expected);
}

std::u16string arbitraryText(std::u16string_view alphabet, int longest) {
  std::u16string text;
  const int length = *rc::gen::inRange(0, longest);
  for (int i = 0; i < length; ++i) {
    text += alphabet[*rc::gen::inRange<std::size_t>(0, alphabet.size())];
  }
  return text;
}

// The same question asked of a recursion that is slow and plain.
bool isLike(std::u16string_view text, std::u16string_view pattern) {
  if (pattern.empty()) return text.empty();
  if (pattern.front() == u'*') {
    return isLike(text, pattern.substr(1)) || (!text.empty() && isLike(text.substr(1), pattern));
  }
  return !text.empty() && (pattern.front() == u'?' || pattern.front() == text.front()) &&
         isLike(text.substr(1), pattern.substr(1));
}

RC_GTEST_PROP(Predicate, AgreesWithAPlainMatchOfWildcards, ()) {
  const std::u16string text = arbitraryText(u"ab", 10);
  const std::u16string pattern = arbitraryText(u"ab*?", 8);
  const std::vector<Value> arguments = {Value(std::u16string_view(text)),
                                        Value(std::u16string_view(pattern))};
  RC_ASSERT(Predicate::parse(u"%@ LIKE %@", arguments).evaluate(Value()) == isLike(text, pattern));
}

RC_GTEST_PROP(Predicate, RelatesItsOperatorsToEachOther, ()) {
  const auto value = [] {
    switch (*rc::gen::inRange(0, 4)) {
      case 0:
        return Value();
      case 1:
        return Value(Number::signed64(*rc::gen::inRange(-2, 3)));
      case 2:
        return Value(Number::real(*rc::gen::inRange(-4, 5) / 2.0));
      default:
        return Value(arbitraryText(u"aAé", 3));
    }
  };
  const Record item{{u"a", value()}, {u"b", value()}};
  const auto holds = [&](std::u16string_view format) {
    return Predicate::parse(format).evaluate(Value(item));
  };
  RC_ASSERT(holds(u"a = b") == !holds(u"a != b"));
  RC_ASSERT(holds(u"a = b") == holds(u"b = a"));
  RC_ASSERT(holds(u"a < b") == holds(u"b > a"));
  RC_ASSERT(holds(u"a <= b") == holds(u"b >= a"));
  RC_ASSERT(holds(u"a <= b") == (holds(u"a < b") || (holds(u"a = b") && holds(u"a != nil"))));
  RC_ASSERT(holds(u"a BETWEEN {b, b}") == (holds(u"a <= b AND a >= b")));
  RC_ASSERT(holds(u"a IN {b}") == holds(u"a = b"));
  RC_ASSERT(holds(u"{b} CONTAINS a") == holds(u"a = b"));
  RC_ASSERT(holds(u"ANY {a, b} = b"));
  RC_ASSERT(holds(u"a CONTAINS b") == holds(u"b IN a"));
  if (holds(u"a =[cd] b")) RC_ASSERT(!holds(u"a <[cd] b") && !holds(u"a >[cd] b"));
  if (holds(u"a BEGINSWITH b") || holds(u"a ENDSWITH b")) RC_ASSERT(holds(u"a CONTAINS b"));
  if (holds(u"a = b")) RC_ASSERT(holds(u"a =[cd] b"));
}

RC_GTEST_PROP(Predicate, EndsInAnAnswerOrAReasonForAnyWords, ()) {
  static const std::vector<std::u16string> kWords = {
      u"a",       u"SELF",     u"1",       u"'x'",   u"$v",      u"(",    u")",   u"{",   u"}",
      u"[",       u"]",        u",",       u".",     u"+",       u"-",    u"*",   u"**",  u"/",
      u"=",       u"<",        u"AND",     u"OR",    u"NOT",     u"!",    u"ANY", u"ALL", u"IN",
      u"BETWEEN", u"LIKE",     u"MATCHES", u"nil",   u"sum(",    u"@max", u"#in", u"%%",  u":=",
      u"[c]",     u"SUBQUERY", u"CAST",    u"FIRST", u"CONTAINS"};
  std::u16string format;
  const int count = *rc::gen::inRange(1, 14);
  for (int i = 0; i < count; ++i) {
    format += kWords[*rc::gen::inRange<std::size_t>(0, kWords.size())] + u" ";
  }
  try {
    (void)Predicate::parse(format).evaluate(person());
  } catch (const PredicateError& error) {
    RC_ASSERT(error.reason().starts_with("Unable to "));
    RC_ASSERT(error.reason().find(utf8FromUtf16(format)) != std::string::npos);
  }
}

}  // namespace
}  // namespace skerrow::foundation
