// What predicates refuse, in which words, and where they end: errors, depth, size, work.

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "foundation/predicate/predicate.h"
#include "foundation/text/text_encoding.h"
#include "tests/foundation/predicate/predicate_rows.h"
#include "tests/support/stopped_work.h"
#include "values/depth.h"

namespace skerrow::foundation {
namespace {

struct ErrorRow {
  std::u16string_view format;
  std::string reason;  // behind the quoted format, or the whole
};

TEST(Predicate, SaysWhatIsWrongWithAFormatAndWhere) {
  const ErrorRow rows[] = {
      {u"", "its end: a value is missing."},
      {u"   ", "its end: a value is missing."},
      {u"a ==", "its end: a value is missing."},
      {u"a = = 1", "“= 1” (character 5): a value is missing."},
      {u"= 1", "“= 1” (character 1): a value is missing."},
      {u"a = 1 AND", "its end: a value is missing."},
      {u"a = 1 AND OR b = 2",
       "“OR b = 2” (character 11): a value is missing; a key that is a reserved word has a “#” in "
       "front."},
      {u"(a = 1", "its end: “)” is missing."},
      {u"a = 1)", "“)” (character 6): an operator is missing, or something is left over."},
      {u"a = 1 b = 2", "“b = 2” (character 7): an operator is missing, or something is left over."},
      {u"(a = 1]", "“]” (character 7): “)” is missing."},
      {u"()", "“)” (character 2): a value is missing."},
      {u"a",
       "“a” (character 1): a condition is needed, and this is a value; compare it, as in “= "
       "TRUE”."},
      {u"1 + 2",
       "“1 + 2” (character 1): a condition is needed, and this is a value; compare it, as in “= "
       "TRUE”."},
      {u"a AND b = 1",
       "“a AND b = 1” (character 1): a condition is needed, and this is a value; compare it, as in "
       "“= TRUE”."},
      {u"NOT a",
       "“a” (character 5): a condition is needed, and this is a value; compare it, as in “= "
       "TRUE”."},
      {u"(a = 1) + 2 = 3",
       "“(a = 1) + 2 = 3” (character 1): a value is needed, and this is a condition."},
      {u"1 + (a = 1) = 3",
       "“(a = 1) = 3” (character 5): a value is needed, and this is a condition."},
      {u"a = NOT b",
       "“b” (character 9): a condition is needed, and this is a value; compare it, as "
       "in “= TRUE”."},
      {u"a = TRUEPREDICATE",
       "“TRUEPREDICATE” (character 5): a value is needed, and this is a condition."},
      {u"1 < 2 < 3", "“< 3” (character 7): two comparisons must be joined by AND or OR."},
      {u"a NOT IN {1}",
       "“NOT IN {1}” (character 3): NOT stands in front of the whole comparison, not inside it."},
      {u"(a NOT IN {1})",
       "“NOT IN {1})” (character 4): NOT stands in front of the whole comparison, not inside it."},
      {u"a UTI-CONFORMS-TO 'b'",
       "“UTI-CONFORMS-TO 'b'” (character 3): UTI-CONFORMS-TO is not available."},
      {u"size > 3",
       "“size > 3” (character 1): a value is missing; a key that is a reserved word has a “#” in "
       "front."},
      {u"a = any", "its end: a value is missing."},
      {u"a = first",
       "“first” (character 5): a value is missing; a key that is a reserved word has a “#” in "
       "front."},
      {u"ANYKEY = 1",
       "“ANYKEY = 1” (character 1): ANYKEY and FETCH serve searches of a database "
       "and are not available."},
      {u"FETCH(a, b) = 1",
       "“FETCH(a, b) = 1” (character 1): ANYKEY and FETCH serve searches of a "
       "database and are not available."},
      {u"ANY a", "its end: a comparison is missing."},
      {u"ANY a AND b = 1", "“AND b = 1” (character 7): a comparison is missing."},
      {u"ALL (a = 1)", "its end: a comparison is missing."},
      {u"'abc = 1", "“'abc = 1” (character 1): the closing quotation mark is missing."},
      {u"a = \"x", "“\"x” (character 5): the closing quotation mark is missing."},
      {u"a = 'x\\", "“'x\\” (character 5): the closing quotation mark is missing."},
      {u"a = 'x\\'", "“'x\\'” (character 5): the closing quotation mark is missing."},
      {u"a ? b", "“? b” (character 3): this character has no meaning in predicates."},
      {u"a = `b`", "“`b`” (character 5): this character has no meaning in predicates."},
      {u"a & b",
       "“a & b” (character 1): a condition is needed, and this is a value; compare it, as in “= "
       "TRUE”."},
      {u"a & = 1", "“= 1” (character 5): a value is missing."},
      {u"| 1 = 1", "“| 1 = 1” (character 1): a value is missing."},
      {u"a >> >> 1 = 1", "“>> 1 = 1” (character 6): a value is missing."},
      {u"a = 1 & b = 2", "“= 2” (character 11): two comparisons must be joined by AND or OR."},
      {u"(a = 1) & (b = 2)",
       "“(a = 1) & (b = 2)” (character 1): a value is needed, and this is a condition."},
      {u"a ~ b", "“~ b” (character 3): this character has no meaning in predicates."},
      {u"a = 5 ; b", "“; b” (character 7): this character has no meaning in predicates."},
      {u"12abc = 1",
       "“12abc = 1” (character 1): a number runs into letters or digits that are none of its own."},
      {u"1e = 1",
       "“1e = 1” (character 1): a number runs into letters or digits that are none of its own."},
      {u"0x = 1", "“0x = 1” (character 1): the digits of a number are missing."},
      {u"0b12 = 1",
       "“0b12 = 1” (character 1): a number runs into letters or digits that are none of its own."},
      {u"0xg = 1", "“0xg = 1” (character 1): the digits of a number are missing."},
      {u"0x11112222333344445 = 1",
       "“0x11112222333344445 …” (character 1): the number is out of range."},
      {u"1e999 = 1", "“1e999 = 1” (character 1): the number is out of range."},
      {u"a. = 1", "“= 1” (character 4): a key is missing behind “.”."},
      {u"a.5 = 1", "“.5 = 1” (character 2): an operator is missing, or something is left over."},
      {u"a..b = 1", "“.b = 1” (character 3): a key is missing behind “.”."},
      {u"# = 1", "“# = 1” (character 1): a key is missing behind “#”."},
      {u"@ = 1", "“@ = 1” (character 1): a key is missing behind “@”."},
      {u"$ = 1", "“$ = 1” (character 1): the name of a variable is missing behind “$”."},
      {u"a\\b = 1",
       "“\\b = 1” (character 2): a backslash in a key needs three octal digits, x and "
       "two or u and four hexadecimal digits."},
      {u"@sum = 1",
       "“@sum = 1” (character 1): The collection operator “@sum” needs a key behind "
       "it; “self” stands for numbers and texts themselves."},
      {u"a.@max > 1",
       "“a.@max > 1” (character 1): The collection operator “@max” needs a key "
       "behind it; “self” stands for numbers and texts themselves."},
      {u"a[0 = 1", "“0 = 1” (character 3): a value is needed, and this is a condition."},
      {u"a[0", "its end: “]” is missing."},
      {u"a[] = 1", "“] = 1” (character 3): a value is missing."},
      {u"a[FIRST = 1", "“= 1” (character 9): “]” is missing."},
      {u"{1, 2 = 1", "“2 = 1” (character 5): a value is needed, and this is a condition."},
      {u"{1, 2", "its end: “,” or “}” is missing."},
      {u"{1 2} = 1", "“2} = 1” (character 4): “,” or “}” is missing."},
      {u"{1,} = 1", "“} = 1” (character 4): a value is missing."},
      {u"a =[q] 'b'", "“q] 'b'” (character 5): the options are letters out of c, d, n and l."},
      {u"a =[] 'b'", "“] 'b'” (character 5): the letters of the options are missing."},
      {u"a =[c 'b'", "“'b'” (character 7): “]” is missing behind the options."},
      {u"a =[#c] 'b'", "“#c] 'b'” (character 5): the letters of the options are missing."},
      {u"a BETWEEN 5",
       "“5” (character 11): BETWEEN needs a list of two values, a lower and an upper one."},
      {u"a BETWEEN {1}",
       "“{1}” (character 11): BETWEEN needs a list of two values, a lower and an upper one."},
      {u"a BETWEEN {1, 2, 3}",
       "“{1, 2, 3}” (character 11): BETWEEN needs a list of two values, a lower and an upper one."},
      {u"foo(1) = 1", "“foo(1) = 1” (character 1): there is no function “foo”."},
      {u"foo:bar:(1) = 1", "“foo:bar:(1) = 1” (character 1): there is no function “foo:bar:”."},
      {u"add:to (1, 2) = 3",
       "“(1, 2) = 3” (character 8): “:” is missing in the name of a function."},
      {u"sum: = 3", "“= 3” (character 6): “(” is missing behind the name of a function."},
      {u"sum() = 1",
       "“sum() = 1” (character 1): the function “sum” does not take this number of values."},
      {u"sqrt(1, 2) = 1",
       "“sqrt(1, 2) = 1” (character 1): the function “sqrt” does not take this number of values."},
      {u"now(1) = 1",
       "“now(1) = 1” (character 1): the function “now” does not take this number of values."},
      {u"sum(1", "its end: “,” or “)” is missing."},
      {u"FUNCTION(1, 2) = 3",
       "“FUNCTION(1, 2) = 3” (character 1): FUNCTION needs the name of a "
       "function, as in FUNCTION(\"sum:\", list)."},
      {u"FUNCTION(a, 'b') = 3", "“FUNCTION(a, 'b') = 3” (character 1): there is no function “b”."},
      {u"FUNCTION = 3", "“= 3” (character 10): “(” is missing behind FUNCTION."},
      {u"CAST(1, 'NSColor') = 1",
       "“'NSColor') = 1” (character 9): CAST goes to \"NSNumber\", \"NSString\" or \"NSDate\"."},
      {u"CAST(1) = 1", "“) = 1” (character 7): “,” is missing."},
      {u"CAST 1", "“1” (character 6): “(” is missing behind CAST."},
      {u"SUBQUERY(a, b, c = 1) = 1",
       "“b, c = 1) = 1” (character 13): a variable such as $x is missing in SUBQUERY."},
      {u"SUBQUERY(a, $b, 1) = 1",
       "“1) = 1” (character 17): a condition is needed, and this is a "
       "value; compare it, as in “= TRUE”."},
      {u"TERNARY(1, 2, 3) = 1",
       "“1, 2, 3) = 1” (character 9): a condition is needed, and this is "
       "a value; compare it, as in “= TRUE”."},
      {u"%@ = 1", "“%@ = 1” (character 1): there is no argument for the placeholder."},
      {u"a = %K", "“%K” (character 5): there is no argument for the placeholder."},
      {u"a = %d", "“%d” (character 5): there is no argument for the placeholder."},
      {u"a = %y", "“%y” (character 5): “%” begins no placeholder such as “%@” or “%K”."},
      {u"a = %", "“%” (character 5): “%” begins no placeholder such as “%@” or “%K”."},
      {u"a = %l@", "“%l@” (character 5): “%” begins no placeholder such as “%@” or “%K”."},
  };
  for (const ErrorRow& row : rows) {
    const std::string format = utf8FromUtf16(row.format);
    SCOPED_TRACE(format);
    try {
      const Predicate predicate = Predicate::parse(row.format);
      ADD_FAILURE() << "no error";
    } catch (const PredicateError& error) {
      EXPECT_EQ(error.reason(), "Unable to parse the predicate “" + format + "” at " + row.reason);
    }
  }
}

TEST(Predicate, SaysWhichArgumentsItCannotUse) {
  struct ArgumentErrorRow {
    std::u16string_view format;
    std::vector<Value> arguments;
    std::string reason;
  };
  const ArgumentErrorRow rows[] = {
      {u"%K = 1",
       {integer(1)},
       "“%K = 1” (character 1): the argument is no text, which a key must be."},
      {u"%K = 1",
       {Value()},
       "“%K = 1” (character 1): the argument is no text, which a key must be."},
      {u"%K = %@", {u"a"}, "“%@” (character 6): there is no argument for the placeholder."},
      {u"%K = 1",
       {u"@sum"},
       "“%K = 1” (character 1): The collection operator “@sum” needs a key "
       "behind it; “self” stands for numbers and texts themselves."},
      {u"a = %d", {u"x"}, "“%d” (character 5): the argument is no number."},
      {u"a = %s", {integer(1)}, "“%s” (character 5): the argument is no text."},
      {u"a BETWEEN %@",
       {list({integer(1)})},
       "“%@” (character 11): BETWEEN needs a list of two values, a lower and an upper one."},
  };
  for (const ArgumentErrorRow& row : rows) {
    const std::string format = utf8FromUtf16(row.format);
    SCOPED_TRACE(format);
    try {
      const Predicate predicate = Predicate::parse(row.format, row.arguments);
      ADD_FAILURE() << "no error";
    } catch (const PredicateError& error) {
      EXPECT_EQ(error.reason(), "Unable to parse the predicate “" + format + "” at " + row.reason);
    }
  }
}

TEST(Predicate, SaysWhyItCannotBeEvaluated) {
  const ErrorRow rows[] = {
      {u"1 / 0 = 1", "a number is divided by zero"},
      {u"1.0 / 0 = 1", "a number is divided by zero"},
      {u"age / (age - 34) = 1", "a number is divided by zero"},
      {u"modulus:by:(1, 0) = 1", "a number is divided by zero"},
      {u"divide:by:(1, 0.0) = 1", "a number is divided by zero"},
      {u"$x = 1", "there is no value for the variable “$x”"},
      {u"$größe = 1", "there is no value for the variable “$größe”"},
      {u"SUBQUERY(scores, $x, $x = 1).@count = 1 AND $x = 1",
       "there is no value for the variable “$x”"},
      {u"'a' MATCHES '['", "the pattern “[” of MATCHES fails: a bracket has no partner"},
      {u"'a' MATCHES '(a'", "the pattern “(a” of MATCHES fails: a bracket has no partner"},
      {u"'a' MATCHES '*'",
       "the pattern “*” of MATCHES fails: its syntax is wrong (U_REGEX_RULE_SYNTAX)"},
      {u"'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa' MATCHES '(a+)+b'",
       "the pattern “(a+)+b” of MATCHES fails: matching takes too long"},
  };
  for (const ErrorRow& row : rows) {
    const std::string format = utf8FromUtf16(row.format);
    SCOPED_TRACE(format);
    const Predicate predicate = Predicate::parse(row.format);
    try {
      (void)predicate.evaluate(person());
      ADD_FAILURE() << "no error";
    } catch (const PredicateError& error) {
      EXPECT_EQ(error.reason(),
                "Unable to evaluate the predicate “" + format + "”: " + row.reason + ".");
    }
  }
}

TEST(Predicate, CanBeUsedAgainAfterAnErrorOnOneItem) {
  const Predicate predicate = Predicate::parse(u"10 / SELF = 5");
  EXPECT_TRUE(predicate.evaluate(integer(2)));
  EXPECT_THROW((void)predicate.evaluate(integer(0)), PredicateError);
  EXPECT_TRUE(predicate.evaluate(integer(2)));
  EXPECT_FALSE(predicate.evaluate(integer(5)));
}

TEST(Predicate, RefusesToNestTooDeep) {
  const std::u16string tooDeep[] = {
      repeated(u"(", 10'000) + u"1 = 1" + repeated(u")", 10'000),
      repeated(u"(", 10'000),
      repeated(u"{", 10'000),
      repeated(u"a[", 10'000),
      u"a" + repeated(u"[0]", 10'000) + u" = 1",
      repeated(u"NOT ", 10'000) + u"1 = 1",
      repeated(u"!", 10'000) + u"TRUEPREDICATE",
      repeated(u"-", 10'000) + u"a = 1",
      repeated(u"1 ** ", 10'000) + u"1 = 1",
      repeated(u"sum(", 10'000),
      repeated(u"SUBQUERY(a, $x, ", 10'000),
      repeated(u"TERNARY(", 10'000),
      repeated(u"$x := ", 10'000) + u"1 = 1",
      repeated(u"(a[0] + ", 400) + u"1" + repeated(u")[0][0]", 400) + u" = 1",
  };
  for (const std::u16string& format : tooDeep) {
    SCOPED_TRACE(utf8FromUtf16(format.substr(0, 20)));
    try {
      const Predicate predicate = Predicate::parse(format);
      ADD_FAILURE() << "no error";
    } catch (const PredicateError& error) {
      EXPECT_NE(error.reason().find("nested more than 500 deep"), std::string::npos)
          << error.reason();
      EXPECT_LT(error.reason().size(), 1000U);
    }
  }
}

TEST(Predicate, NestsDeepEnoughForPeople) {
  EXPECT_TRUE(
      Predicate::parse(repeated(u"(", 400) + u"1 = 1" + repeated(u")", 400)).evaluate(Value()));
  EXPECT_TRUE(Predicate::parse(repeated(u"NOT ", 400) + u"1 = 1").evaluate(Value()));
  EXPECT_FALSE(Predicate::parse(repeated(u"NOT ", 401) + u"1 = 1").evaluate(Value()));
}

TEST(Predicate, WorksOnHundredsOfKilobytesOfFormat) {
  EXPECT_TRUE(
      Predicate::parse(repeated(u"SELF = 1 OR ", 20'000) + u"SELF = 2").evaluate(integer(2)));
  EXPECT_TRUE(
      Predicate::parse(repeated(u"SELF > 1 AND ", 20'000) + u"SELF = 2").evaluate(integer(2)));
  EXPECT_TRUE(Predicate::parse(repeated(u"1+", 100'000) + u"1 = 100001").evaluate(Value()));
  EXPECT_TRUE(Predicate::parse(repeated(u"1*", 100'000) + u"1 = 1").evaluate(Value()));
  EXPECT_TRUE(
      Predicate::parse(u"SELF IN {" + repeated(u"1,", 100'000) + u"2}").evaluate(integer(2)));
  EXPECT_TRUE(Predicate::parse(u"'" + repeated(u"x", 250'000) + u"' LIKE 'x*'").evaluate(Value()));
  EXPECT_TRUE(Predicate::parse(repeated(u" ", 250'000) + u"1 = 1").evaluate(Value()));
  EXPECT_TRUE(Predicate::parse(repeated(u"1", 300) + u" > 1").evaluate(Value()));
  const std::u16string unreadable[] = {
      repeated(u"1", 250'000) + u" = 1", repeated(u"a", 250'000),  repeated(u"a.", 100'000),
      repeated(u"'", 249'999),           repeated(u"=", 250'000),  repeated(u"\\", 250'000),
      repeated(u"%", 250'000),           repeated(u"a ", 100'000), repeated(u"$a ", 80'000),
  };
  for (const std::u16string& format : unreadable) {
    try {
      const Predicate predicate = Predicate::parse(format);
      ADD_FAILURE() << "no error";
    } catch (const PredicateError& error) {
      EXPECT_LT(error.reason().size(), 1500U);
    }
  }
}

TEST(Predicate, CutsALongFormatInItsReasonAroundThePlace) {
  const std::u16string format =
      repeated(u"a = 1 AND ", 1000) + u"a ? 1" + repeated(u" AND a = 1", 1000);
  try {
    const Predicate predicate = Predicate::parse(format);
    ADD_FAILURE() << "no error";
  } catch (const PredicateError& error) {
    EXPECT_EQ(error.reason(),
              "Unable to parse the predicate “…= 1 AND " +
                  utf8FromUtf16(repeated(u"a = 1 AND ", 8)) + "a = 1 AND a ? 1" +
                  utf8FromUtf16(repeated(u" AND a = 1", 9)) +
                  " AND a …” at “? 1 AND a = 1 AND a …” (character 10003): this character has no "
                  "meaning in predicates.");
  }
}

TEST(Predicate, EndsWhereWorkOnOneItemHasNoMeasure) {
  const Value numbers = list(std::vector<Value>(1000, integer(1)));
  const std::u16string format =
      u"SUBQUERY(SELF, $a, SUBQUERY(SELF, $b, SELF = SELF).@count = 1).@count = 1";
  try {
    (void)Predicate::parse(format).evaluate(numbers);
    ADD_FAILURE() << "no error";
  } catch (const PredicateError& error) {
    EXPECT_EQ(error.reason(), "Unable to evaluate the predicate “" + utf8FromUtf16(format) +
                                  "”: it takes too many steps on one item.");
  }
}

// Whether the evaluation takes a million steps by its own count: then it looks, or fails where
// it would take all that are allowed at once. Going on to their end would take seconds.
bool takesAMillionSteps(std::u16string_view format, const Value& item,
                        const Record& variables = {}) {
  const Predicate predicate = Predicate::parse(format);
  const tests::StoppedWork stopped;
  try {
    (void)predicate.evaluate(item, variables);
  } catch (const work::Stopped&) {
    return true;
  } catch (const PredicateError&) {
    return true;
  }
  return false;
}

TEST(Predicate, CountsTheStepsThroughLists) {
  const Value numbers = list(std::vector<Value>(300, integer(1)));
  for (const std::u16string_view innermost :
       {u"SUBQUERY(SELF, $c, $c = 2).@count = 1", u"ANY SELF = 2", u"2 IN SELF", u"sum(SELF) = 1",
        u"SELF.self = 1", u"SELF.@sum.self = 1", u"SELF = SELF"}) {
    const std::u16string format = u"SUBQUERY(SELF, $a, SUBQUERY(SELF, $b, " +
                                  std::u16string(innermost) + u").@count = 1).@count = 1";
    EXPECT_TRUE(takesAMillionSteps(format, numbers)) << utf8FromUtf16(format);
  }
  EXPECT_FALSE(takesAMillionSteps(
      u"SUBQUERY(SELF, $a, SUBQUERY(SELF, $b, $b = 2).@count = 1).@count = 1", numbers));
}

TEST(Predicate, CountsTheStepsThroughListsThatDoubleAndDouble) {
  const auto doubled = [](std::u16string_view suffix) {
    std::u16string format = u"($x := {1, 1}) = nil";
    for (int i = 0; i < 60; ++i) {
      format += u" OR ($x := {$x, $x}" + std::u16string(suffix) + u") = nil";
    }
    return format;
  };
  for (const std::u16string& format :
       {doubled(u".@unionOfArrays.self"), doubled(u"") + u" OR $x.self = nil",
        doubled(u"") + u" OR ($y := {$x}) = nil OR $x = $y[0]",
        doubled(u"") + u" OR {$x, $x}.@distinctUnionOfObjects.self = nil",
        doubled(u"") + u" OR $x IN {$x}", doubled(u"") + u" OR mode({$x, $x}) = nil"}) {
    EXPECT_TRUE(takesAMillionSteps(format, Value())) << utf8FromUtf16(format);
  }
  EXPECT_FALSE(takesAMillionSteps(doubled(u""), Value()));
}

TEST(Predicate, CountsTheStepsThroughLongTexts) {
  const Value text(std::u16string(100'000, u'a'));
  const Record variables{{Value(u"many"), list(std::vector<Value>(50'000, Value(u"b")))},
                         {Value(u"text"), text}};
  for (const std::u16string_view format :
       {u"SUBQUERY($many, $x, $text CONTAINS[cd] $x) = nil",
        u"SUBQUERY($many, $x, CAST($text, 'NSNumber') = 1) = nil",
        u"SUBQUERY($many, $x, ($text).uppercaseString = 1) = nil",
        u"SUBQUERY($many, $x, length($text) = 1) = nil"}) {
    EXPECT_TRUE(takesAMillionSteps(format, Value(), variables)) << utf8FromUtf16(format);
  }
  EXPECT_TRUE(takesAMillionSteps(u"SELF LIKE '*" + repeated(u"a?", 10'000) + u"b'", text));
  EXPECT_FALSE(
      takesAMillionSteps(u"SUBQUERY($many, $x, $x CONTAINS[cd] 'c') = nil", Value(), variables));
}

TEST(Predicate, ComparesSomeThousandItemsWithEachOther) {
  const auto thing = [](int number) {
    return Value(Record{{Value(u"p"), integer(number)}, {Value(u"s"), Value(u"x0")}});
  };
  const Record item{{Value(u"l"), list(std::vector<Value>(2000, thing(0)))}};
  for (const std::u16string_view format : {u"SUBQUERY(l, $x, $x.p >= l.@avg.p).@count = 2000",
                                           u"SUBQUERY(l, $x, $x.p IN l.p).@count = 2000",
                                           u"SUBQUERY(l, $x, ANY l.s == $x.s).@count = 2000"}) {
    EXPECT_TRUE(Predicate::parse(format).evaluate(Value(item))) << utf8FromUtf16(format);
  }
}

TEST(Predicate, EndsWhenNobodyWaitsForItAnyMore) {
  const Value numbers = list(std::vector<Value>(100'000, integer(1)));
  const std::u16string_view longOnes[] = {
      u"SUBQUERY(SELF, $a, SELF.@sum.self = 1) = nil",
      u"'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa' MATCHES '(a+)+b'",
  };
  for (const std::u16string_view format : longOnes) {
    SCOPED_TRACE(utf8FromUtf16(format));
    const Predicate predicate = Predicate::parse(format);
    const tests::StoppedWork stopped;
    EXPECT_THROW((void)predicate.evaluate(numbers), work::Stopped);
  }
}

TEST(Predicate, WorksOnTheDeepestValues) {
  Value deepest = integer(1);
  while (deepest.depth() < kMaximumDepth) deepest = list({deepest});
  EXPECT_TRUE(Predicate::parse(u"SELF = SELF").evaluate(deepest));
  EXPECT_TRUE(Predicate::parse(u"SELF[0] != SELF").evaluate(deepest));
  EXPECT_TRUE(Predicate::parse(u"SELF.self = SELF").evaluate(deepest));
  try {
    (void)Predicate::parse(u"{SELF, nil} = nil").evaluate(deepest);
    ADD_FAILURE() << "no error";
  } catch (const PredicateError& error) {
    EXPECT_EQ(error.reason(),
              "Unable to evaluate the predicate “{SELF, nil} = nil”: a list is nested too deep.");
  }
  EXPECT_THROW(Predicate::parse(u"{%@} = nil", std::vector{deepest}), PredicateError);
}

}  // namespace
}  // namespace skerrow::foundation
