// The values that predicates are made of: arithmetic, functions, texts, placeholders,
// variables and subqueries.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/predicate/predicate.h"
#include "foundation/text/text_encoding.h"
#include "tests/foundation/predicate/predicate_rows.h"
#include "values/record.h"

namespace skerrow::foundation {
namespace {

TEST(Predicate, Calculates) {
  const Row rows[] = {
      {u"1 + 2 = 3", true},
      {u"5 - 2 - 1 = 2", true},
      {u"2 * 3 + 4 = 10", true},
      {u"2 + 3 * 4 = 14", true},
      {u"(2 + 3) * 4 = 20", true},
      {u"7 / 2 = 3", true},
      {u"-7 / 2 = -3", true},
      {u"7 / 2.0 = 3.5", true},
      {u"7.0 / 2 = 3.5", true},
      {u"8 / 4 / 2 = 1", true},
      {u"2 * 6 / 4 = 3", true},
      {u"2 ** 10 = 1024", true},
      {u"2 ** 3 ** 2 = 512", true},
      {u"(2 ** 3) ** 2 = 64", true},
      {u"2 ** -1 = 0.5", true},
      {u"-2 ** 2 = -4", true},
      {u"2 * -3 = -6", true},
      {u"1 - -1 = 2", true},
      {u"1--1 = 2", true},
      {u"--1 = 1", true},
      {u"-age = -34", true},
      {u"-(age + 1) = -35", true},
      {u"age * 2 - 8 = 60", true},
      {u"age + height > 35.7", true},
      {u"9223372036854775807 + 1 = 9223372036854775808", true},
      {u"9223372036854775807 * 4 > 9223372036854775807", true},
      {u"-9223372036854775808 - 1 < -9223372036854775808.0", false},  // the reals are that coarse
      {u"18446744073709551615 - 18446744073709551614 = 1", true},
      {u"18446744073709551615 * 18446744073709551615 > 1e38", true},
      {u"-9223372036854775808 / -1 = 9223372036854775808", true},
      {u"modulus:by:(-9223372036854775808, -1) = 0", true},
      {u"member + 1 = 2", true},
      {u"age = 30 + 4 AND 30 + 4 = age", true},
      {u"12 & 10 = 8", true},
      {u"12 | 10 = 14", true},
      {u"12 ^ 10 = 6", true},
      {u"1 << 4 = 16", true},
      {u"-16 >> 2 = -4", true},
      {u"1 << 63 = -9223372036854775808", true},
      {u"1 << 64 = 0", true},
      {u"16 << -4 = 1", true},
      {u"1 >> 400 = 0", true},
      {u"-1 >> 400 = -1", true},
      {u"7.9 & 3.9 = 3", true},
      {u"age&2=2", true},
      {u"2 = age & 2 AND age & 1 = 0", true},
      {u"age & 2 = 2 || age | 1 = 0", true},
      {u"1 | 6 ^ 2 & 3 = 5", true},    // 1 | (6 ^ (2 & 3))
      {u"1 + 1 << 2 * 2 = 32", true},  // (1 + 1) << (2 * 2)
      {u"256 >> 4 >> 2 = 4", true},
      {u"(1 << 2) << 1 = 1 << 3", true},
      {u"3 & -2 = 2", true},
      {u"ANY {1, 2, 4} & 4 = 4", false},  // of a list there are no bits
      {u"4 IN {1 << 2, 1 << 3}", true},
      {u"absent & 1 = nil", true},
      {u"nil << 1 = nil", true},
      {u"name & 1 = 0", false},
      {u"NOT name | 1 = 0", false},
  };
  check(rows, person());
}

TEST(Predicate, CallsFunctions) {
  const Row rows[] = {
      {u"sum({1, 2, 3}) = 6", true},
      {u"sum(1, 2, 3) = 6", true},
      {u"sum:({1, 2}) = 3", true},
      {u"SUM({1, 2}) = 3", true},
      {u"sum({}) = 0", true},
      {u"sum({1, nil}) = 1", true},
      {u"sum(scores) = 6", true},
      {u"sum({1, '2'}) = 3", true},
      {u"count({1, 'a', nil}) = 3", true},
      {u"count(tags) = 3", true},
      {u"count(address) = 2", true},
      {u"min({3, 1, 2}) = 1", true},
      {u"max(scores) = 3", true},
      {u"max({'a', 'c', 'b'}) = 'c'", true},
      {u"max({}) = nil", true},
      {u"average({1, 2}) = 1.5", true},
      {u"median({5, 1, 3}) = 3", true},
      {u"median({4, 1, 3, 2}) = 2.5", true},
      {u"median({}) = nil", true},
      {u"mode({1, 2, 2, 3}) = {2}", true},
      {u"mode({1, 2, 2, 1, 3}) = {1, 2}", true},
      {u"mode({2, 2, 3})[0] = 2", true},
      {u"stddev({1, 2, 3, 4, 4, 5, 9, 11}) BETWEEN {3.2185, 3.2186}", true},
      {u"stddev({}) = nil", true},
      {u"add:to:(2, 3) = 5", true},
      {u"from:subtract:(5, 3) = 2", true},
      {u"multiply:by:(2, 3) = 6", true},
      {u"divide:by:(7, 2) = 3", true},
      {u"divide:by:(7.0, 2) = 3.5", true},
      {u"modulus:by:(7, 3) = 1", true},
      {u"modulus:by:(-7, 3) = -1", true},
      {u"modulus:by:(7.5, 2) = 1.5", true},
      {u"raise:toPower:(2, 8) = 256", true},
      {u"sqrt(9) = 3", true},
      {u"log(1000) = 3", true},
      {u"ln(exp(2)) = 2", true},
      {u"floor(1.7) = 1", true},
      {u"floor(-1.2) = -2", true},
      {u"ceiling(1.2) = 2", true},
      {u"trunc(-1.7) = -1", true},
      {u"abs(-3) = 3", true},
      {u"abs(-3.5) = 3.5", true},
      {u"abs(3) = 3", true},
      {u"bitwiseAnd:with:(12, 10) = 8", true},
      {u"bitwiseOr:with:(12, 10) = 14", true},
      {u"bitwiseXor:with:(12, 10) = 6", true},
      {u"leftshift:by:(1, 4) = 16", true},
      {u"leftshift:by:(1, 64) = 0", true},
      {u"leftshift:by:(16, -4) = 1", true},
      {u"rightshift:by:(16, 4) = 1", true},
      {u"rightshift:by:(16, 400) = 0", true},
      {u"onesComplement(0) = -1", true},
      {u"uppercase('aß') = 'ASS'", true},
      {u"lowercase('ÀB') = 'àb'", true},
      {u"uppercase('') = ''", true},
      {u"length('abc') = 3", true},
      {u"random() >= 0", true},
      {u"random(3) BETWEEN {0, 2}", true},
      {u"random(1) = 0", true},
      {u"random(0) = 0", false},
      {u"randomn(2) < 2", true},
      {u"now() > born", true},
      {u"now() > CAST(700000000, 'NSDate')", true},
      {u"noindex(age) = 34", true},
      {u"FUNCTION('sum:', {1, 2}) = 3", true},
      {u"FUNCTION(1, 'add:to:', 2) = 3", true},
      {u"FUNCTION(5, 'from:subtract:', 3) = 2", true},
      {u"function('now') > born", true},
      {u"sum({1, 2}) + max({3}) = 6", true},
      {u"sqrt(sum({4, 5})) = 3", true},
      {u"sum(children.age) = 13", true},
      {u"CAST('12.5', 'NSNumber') = 12.5", true},
      {u"CAST('12 pears', 'NSNumber') = 12", true},
      {u"CAST('12', 'NSDecimalNumber') = 12", true},
      {u"CAST(age, 'NSString') = '34'", true},
      {u"CAST(0.1, 'NSString') = '0.1'", true},
      {u"CAST(2.0, 'NSString') = '2'", true},
      {u"CAST(born, 'NSNumber') = -1000", true},
      {u"CAST(-1000, 'NSDate') = born", true},
      {u"CAST('2001-01-01T00:00:10Z', 'NSDate') = CAST(10, 'NSDate')", true},
      {u"CAST('2001-01-01 00:00:10 +0000', 'NSDate') = CAST(10, 'NSDate')", true},
      {u"CAST('2001-01-02', 'NSDate') > CAST('2001-01-01T12:00', 'NSDate')", true},
      {u"CAST(CAST(0, 'NSDate'), 'NSString') = '2001-01-01T00:00:00Z'", true},
      {u"born < CAST(0, 'NSDate')", true},
      {u"TERNARY(age > 30, 'old', 'young') = 'old'", true},
      {u"TERNARY(age > 40, 'old', 'young') = 'young'", true},
      {u"TERNARY(age > 'x', 1, 2) = 2", true},
      {u"ternary(1 = 1, tags, nil)[0] = 'red'", true},
  };
  check(rows, person());
}

TEST(Predicate, ReadsTextsWithEscapes) {
  const Row rows[] = {
      {u"'it\\'s' = \"it's\"", true},
      {u"\"say \\\"a\\\"\" = 'say \"a\"'", true},
      {u"'a\\tb' = 'a\tb'", true},
      {u"'\\n' = '\n'", true},
      {u"'\\r\\a\\b\\f\\v' = '\r\a\b\f\v'", true},
      {u"'\\\\' = '\\x5c'", true},
      {u"'\\101\\x42\\u0043' = 'ABC'", true},
      {u"'\\X42\\U0043' = 'BC'", true},
      {u"'\\q' = 'q'", true},
      {u"'\\x4' = 'x4'", true},
      {u"'\\ud83d\\ude00' = '\U0001F600'", true},
      {u"'a\"b' = \"a\\\"b\"", true},
      {u"'%@ %K $x' = \"%\\x40 %K $x\"", true},
      {u"'100%%' = '100%\\045'", true},
      {u"%% = '%'", true},
      {u"'5%' CONTAINS %%", true},
  };
  check(rows, Value());
}

TEST(Predicate, TakesTheItemAsSelf) {
  struct SelfRow {
    std::u16string_view format;
    Value item;
    bool expected;
  };
  const SelfRow rows[] = {
      {u"SELF = 'a'", u"a", true},
      {u"SELF > 3", integer(4), true},
      {u"SELF > 3", integer(3), false},
      {u"SELF > 3", u"4", false},
      {u"self BEGINSWITH 'a'", u"abc", true},
      {u"SELF BEGINSWITH 'a'", integer(1), false},
      {u"SELF.length > 2", u"abc", true},
      {u"length > 2", u"abc", true},
      {u"SELF = nil", Value(), true},
      {u"SELF = nil", integer(0), false},
      {u"name = 'x'", integer(5), false},
      {u"name != 'x'", integer(5), false},
      {u"NOT name = 'x'", integer(5), false},
      {u"name = nil", integer(5), false},
      {u"name = nil", Value(), true},
      {u"SELF = 5 OR name = 'x'", integer(5), true},
      {u"name = 'x' OR SELF = 5", integer(5), true},
      {u"SELF[0] = 1", list({integer(1)}), true},
      {u"SELF[SIZE] = 1", list({integer(1)}), true},
      {u"@count = 2", list({integer(1), integer(2)}), true},
      {u"@sum.self = 3", list({integer(1), integer(2)}), true},
      {u"ANY SELF = 2", list({integer(1), integer(2)}), true},
      {u"ANY name = 'x'", list({record({{u"name", u"x"}})}), true},
      {u"SELF IN {1, 2}", integer(2), true},
      {u"SELF.self = 'a'", u"a", true},
      {u"SELF > CAST(0, 'NSDate')", Date{1}, true},
      {u"SELF = SELF", Value::data("x"), true},
      {u"SELF > 1", Number::real(std::numeric_limits<double>::infinity()), true},
  };
  for (const SelfRow& row : rows) {
    EXPECT_EQ(Predicate::parse(row.format).evaluate(row.item), row.expected)
        << utf8FromUtf16(row.format);
  }
}

TEST(Predicate, FillsPlaceholdersInOrder) {
  struct ArgumentRow {
    std::u16string_view format;
    std::vector<Value> arguments;
    bool expected;
  };
  const ArgumentRow rows[] = {
      {u"%K = %@", {u"age", integer(34)}, true},
      {u"%K = %@", {u"initial", u"A"}, true},
      {u"%K BEGINSWITH[cd] %@", {u"name", u"ADE"}, true},
      {u"%K = %@", {u"address.city", u"Oslo"}, true},
      {u"%K.city = %@", {u"address", u"Oslo"}, true},
      {u"%K.@count = 3", {u"children"}, true},
      {u"%K = 38", {u"size"}, true},  // needs no escape
      {u"%K = 1", {u"@count"}, false},
      {u"%K = %@", {u"absent", Value()}, true},
      {u"age IN %@", {list({integer(33), integer(34)})}, true},
      {u"initial IN {%@, %@}", {u"B", u"A"}, true},
      {u"age BETWEEN %@", {list({integer(30), integer(40)})}, true},
      {u"age BETWEEN {%@, %@}", {integer(30), integer(40)}, true},
      {u"born = %@", {Date{-1000}}, true},
      {u"%@ = %@", {u"it's", u"it's"}, true},
      {u"%@.city = 'Rome'", {record({{u"city", u"Rome"}})}, true},
      {u"tags[%@] = 'green'", {integer(1)}, true},
      {u"'%@' = %@", {u"x"}, false},
      {u"'%@' = %@", {u"%@"}, true},
      {u"\"%K\" = %@", {u"%K"}, true},
      {u"initial = %@ AND '%%' = %%%%", {u"A"}, false},
      {u"initial = %@", {u"A", u"more", u"than needed"}, true},
      {u"age = %d AND age = %i AND age = %ld AND age = %u",
       {integer(34), real(34.7), integer(34), integer(34)},
       true},
      {u"height = %f AND height < %lg", {real(1.75), integer(2)}, true},
      {u"initial = %s AND initial = %c", {u"A", integer('A')}, true},
      {u"age = %x", {integer(34)}, true},
  };
  for (const ArgumentRow& row : rows) {
    SCOPED_TRACE(utf8FromUtf16(row.format));
    if (row.format.find(u"%%%%") != std::u16string_view::npos) {
      EXPECT_THROW(Predicate::parse(row.format, row.arguments), PredicateError);
      continue;
    }
    try {
      EXPECT_EQ(Predicate::parse(row.format, row.arguments).evaluate(person()), row.expected);
    } catch (const PredicateError& error) {
      ADD_FAILURE() << error.reason();
    }
  }
}

TEST(Predicate, TakesVariables) {
  const Record variables{{u"LOW", integer(30)},
                         {u"HIGH", integer(40)},
                         {u"NAME", u"adel"},
                         {u"WHO", person()},
                         {u"NONE", Value()}};
  const Row rows[] = {
      {u"age BETWEEN {$LOW, $HIGH}", true},
      {u"age > $HIGH", false},
      {u"name BEGINSWITH[cd] $NAME", true},
      {u"$WHO.address.city = 'Oslo'", true},
      {u"$WHO = SELF", true},
      {u"$NONE = nil", true},
      {u"'$LOW' = $LOW", false},
      {u"($LOW := 33) = 33 AND age > $LOW", true},
      {u"age > $LOW AND ($LOW := 50) = 50 AND age < $LOW", true},
      {u"$NEW := 5 = 5", true},
      {u"($NEW := age).self = 34 AND $NEW = age", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(utf8FromUtf16(row.format));
    const Predicate predicate = Predicate::parse(row.format);
    for (int i = 0; i < 2; ++i) {  // what one evaluation sets, the next one does not see
      EXPECT_EQ(predicate.evaluate(person(), variables), row.expected);
    }
  }
}

TEST(Predicate, SelectsFromListsInSubqueries) {
  const Row rows[] = {
      {u"SUBQUERY(children, $c, $c.age > 3).@count = 2", true},
      {u"SUBQUERY(children, $c, $c.age > 3)[0].name = 'Bo'", true},
      {u"SUBQUERY(children, $c, $c.age > 3 AND $c.name = 'Cy').@count > 0", true},
      {u"SUBQUERY(children, $c, $c.age = nil).name = {'Di'}", true},
      {u"SUBQUERY(scores, $s, $s < 3) = {1, 2}", true},
      {u"subquery(nothing, $s, TRUEPREDICATE) = {}", true},
      // The item of the whole predicate stays the item inside.
      {u"SUBQUERY(scores, $s, $s < age).@count = 3", true},
      {u"SUBQUERY(scores, $a, SUBQUERY(scores, $b, $b < $a).@count = 2) = {3}", true},
      {u"SUBQUERY(scores, $x, SUBQUERY({1}, $x, $x = 1).@count = 1 AND $x > 1) = {3, 2}", true},
      {u"ANY SUBQUERY(children, $c, $c.age > 3).name = 'Cy'", true},
      {u"SUBQUERY(SUBQUERY(scores, $x, $x > 1), $x, $x > 2) = {3}", true},
      {u"($x := {{1, 2}}) != nil AND SUBQUERY($x[0], $x, $x > 1) = {2}", true},
      {u"($x := {1, 2}) != nil AND SUBQUERY($x, $x, $x > 1) = {2} AND $x = {1, 2}", true},
  };
  check(rows, person());
}

}  // namespace
}  // namespace skerrow::foundation
