#include "text/regex/regex_template.h"

#include <gtest/gtest.h>
#include <unicode/uregex.h>

#include <optional>
#include <string>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"
#include "tests/text/text_literal.h"
#include "text/regex/regex_service.h"

namespace skerrow::text {
namespace {

constexpr const char16_t* kPattern = u"(a)(b)?(?<third>c)";

std::string applied(const char16_t* pattern, const Text& replacement) {
  RegexService regex;
  return foundation::utf8FromUtf16(
      regex.stringByReplacingOccurrencesOfRegex(u"<ac>"_text, textOf(pattern), replacement).view());
}

TEST(RegexTemplate, InsertsGroupsAndLiterals) {
  const struct {
    const char16_t* source;
    const char* expected;
  } cases[] = {
      {u"", "<>"},
      {u"x", "<x>"},
      {u"$0$0", "<acac>"},
      {u"$1-$3", "<a-c>"},
      {u"[$2]", "<[]>"},  // took no part
      {u"$4", "<>"},      // the pattern lacks it
      {u"$4x", "<x>"},
      {u"$45", "<5>"},   // the first digit always counts
      {u"$11", "<a1>"},  // as many digits as name a group
      {u"$01", "<a>"},
      {u"$0003x", "<cx>"},
      {u"$999999999999", "<99999999999>"},
      {u"$", "<$>"},
      {u"$$1", "<$a>"},
      {u"$x", "<$x>"},
      {u"$-1", "<$-1>"},
      {u"$ 1", "<$ 1>"},
      {u"\\$1", "<$1>"},
      {u"\\\\$1", "<\\a>"},
      {u"\\n", "<n>"},
      {u"\\", "<>"},
      {u"x\\", "<x>"},
      {u"\\u00e9", "<é>"},
      {u"\\U0001F600", "<😀>"},
      {u"\\uD83D\\uDE00", "<😀>"},
      {u"\\u00e", "<u00e>"},
      {u"\\U00110000", "<U00110000>"},
      {u"${third}${third}", "<cc>"},
      {u"${none}x", "<x>"},
      {u"${third", "<${third>"},
      {u"${}", "<${}>"},
      {u"${1}", "<${1}>"},  // no name begins with a digit
      {u"${a-b}", "<${a-b}>"},
      {u"$１", "<a>"},  // a digit of another script
      {u"é😀", "<é😀>"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(applied(kPattern, textOf(each.source)), each.expected)
        << foundation::utf8FromUtf16(each.source);
  }
}

TEST(RegexTemplate, ANumberOfTwoDigitsNamesAGroupWhereThereIsOne) {
  EXPECT_EQ(applied(u"()()()()()()()()()(a)c", u"$10|$100|$11"_text), "<a|a0|1>");
}

// What ICU itself makes of a template; nothing where it refuses it.
std::optional<std::u16string> replacedByIcu(const std::u16string& pattern,
                                            const std::u16string& subject,
                                            const std::u16string& source) {
  UErrorCode status = U_ZERO_ERROR;
  URegularExpression* const regex =
      uregex_open(pattern.data(), static_cast<std::int32_t>(pattern.size()), 0, nullptr, &status);
  uregex_setText(regex, subject.data(), static_cast<std::int32_t>(subject.size()), &status);
  std::u16string result(4096, u'\0');
  const std::int32_t length =
      uregex_replaceAll(regex, source.data(), static_cast<std::int32_t>(source.size()),
                        result.data(), static_cast<std::int32_t>(result.size()), &status);
  uregex_close(regex);
  if (U_FAILURE(status)) return std::nullopt;
  result.resize(static_cast<std::size_t>(length));
  return result;
}

RC_GTEST_PROP(RegexTemplate, AgreesWithIcuWhereverIcuAcceptsTheTemplate, ()) {
  const std::u16string subject = u"xacabc-ac";
  const auto part = rc::gen::elementOf(std::vector<std::u16string>{
      u"$", u"\\",    u"{", u"}", u"${third}", u"0",    u"1",  u"2",    u"3",
      u"4", u"9",     u"u", u"U", u"00",       u"0000", u"e9", u"d83d", u"\\ude00",
      u"a", u"third", u"x", u"-", u"é",        u"😀",    u"２"});
  using Parts = std::vector<std::u16string>;
  for (const Parts& parts :
       *rc::gen::container<std::vector<Parts>>(rc::gen::container<Parts>(part))) {
    std::u16string source;
    for (const std::u16string& each : parts) source += each;
    const auto expected = replacedByIcu(kPattern, subject, source);
    if (!expected) continue;
    RegexService regex;
    const Text ours = regex.stringByReplacingOccurrencesOfRegex(
        Text(std::u16string_view(subject)), textOf(kPattern), Text(std::u16string_view(source)));
    RC_ASSERT(foundation::utf8FromUtf16(ours.view()) == foundation::utf8FromUtf16(*expected));
  }
}

}  // namespace
}  // namespace skerrow::text
