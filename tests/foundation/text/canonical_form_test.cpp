#include "foundation/text/canonical_form.h"

#include <gtest/gtest.h>
#include <unicode/unorm2.h>

#include <string>
#include <vector>

#include "foundation/text/code_points.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

std::u16string canonical(CanonicalForm form, std::u16string_view text) {
  std::u16string result;
  makeCanonical(form, text, result);
  return result;
}

std::u16string byIcu(CanonicalForm form, const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* const normalizer = form == CanonicalForm::composed
                                             ? unorm2_getNFCInstance(&status)
                                             : unorm2_getNFDInstance(&status);
  std::u16string result(text.size() * 4 + 8, u'\0');
  const std::int32_t length =
      unorm2_normalize(normalizer, text.data(), static_cast<std::int32_t>(text.size()),
                       result.data(), static_cast<std::int32_t>(result.size()), &status);
  EXPECT_TRUE(U_SUCCESS(status));
  result.resize(static_cast<std::size_t>(length));
  return result;
}

TEST(CanonicalForm, ComposesAndDecomposes) {
  EXPECT_EQ(canonical(CanonicalForm::decomposed, u"é가Å"), u"e\u0301\u1100\u1161A\u030A");
  EXPECT_EQ(canonical(CanonicalForm::composed, u"e\u0301\u1100\u1161A\u030A"), u"é가Å");
  EXPECT_EQ(canonical(CanonicalForm::decomposed, u"a\u0301\u0323"), u"a\u0323\u0301");
  EXPECT_EQ(canonical(CanonicalForm::decomposed, u""), u"");
  EXPECT_EQ(canonical(CanonicalForm::composed, u"\xD800x\xDC00"), u"\xD800x\xDC00");
}

TEST(CanonicalForm, LeavesTextsAsTheyAreWhereMarksAreFew) {
  std::u16string room;
  const std::u16string_view text = u"a\u0301\u0323 éé";
  EXPECT_EQ(withOrderedMarks(text, room).data(), text.data());
  const std::u16string few(63, u'\u0301');
  EXPECT_EQ(withOrderedMarks(few, room).data(), few.data());
  const std::u16string many(200, u'\u0344');
  EXPECT_EQ(withOrderedMarks(many, room), byIcu(CanonicalForm::decomposed, many));
}

// Rows of marks around the length from which on they are put in order here, of all that
// is special about marks: of several classes, in pairs of units, coming apart.
RC_GTEST_PROP(CanonicalForm, IsWhatIcuMakesOfTheText, ()) {
  const auto part = rc::gen::elementOf(std::vector<std::u16string>{
      u"\u0301", u"\u0323", u"\u0344", u"\u0345", u"\u0F73", u"\u0F71", u"\u0334", u"\u05B8",
      u"\U0001D165", u"\U0001D16E", u"\u0340", u"\u3099", u"\u0F75"});
  const auto other = rc::gen::elementOf(std::vector<std::u16string>{
      u"a", u"é", u"가", u"\U0001D15F", u"\xD834", u"\xDD65", u"𝒳", u"か"});
  std::u16string text;
  const int runs = *rc::gen::inRange(0, 4);
  for (int i = 0; i < runs; ++i) {
    text += *other;
    const int count = *rc::gen::inRange(0, 140);
    for (int j = 0; j < count; ++j) text += *part;
  }
  for (const CanonicalForm form : {CanonicalForm::decomposed, CanonicalForm::composed}) {
    RC_ASSERT(canonical(form, text) == byIcu(form, text));
  }
  std::u16string room;
  RC_ASSERT(byIcu(CanonicalForm::decomposed, std::u16string(withOrderedMarks(text, room))) ==
            byIcu(CanonicalForm::decomposed, text));
}

TEST(CanonicalForm, TakesTimeLinearInTheMarks) {
  std::u16string text;
  for (int i = 0; i < 500'000; ++i) text += u"\u0301\u0323";
  const std::u16string ordered =
      std::u16string(500'000, u'\u0323') + std::u16string(500'000, u'\u0301');
  EXPECT_EQ(canonical(CanonicalForm::decomposed, text), ordered);
  EXPECT_EQ(canonical(CanonicalForm::composed, text), ordered);
}

}  // namespace
}  // namespace skerrow::foundation
