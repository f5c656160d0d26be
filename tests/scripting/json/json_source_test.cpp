#include "scripting/json/json_source.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/scripting/json/json_outcome.h"
#include "tests/support/generators.h"

namespace skerrow::scripting {
namespace {

using tests::eventOrError;
using tests::sourceInPieces;
using tests::valueOrError;

TEST(JsonSource, GivesItsBytesOneByOneAndKnowsItsEnd) {
  for (const std::size_t pieceSize : {1U, 2U, 3U, 100U}) {
    JsonSource source = sourceInPieces("ab\nc", pieceSize);
    std::string taken;
    while (!source.isAtEnd()) {
      EXPECT_EQ(source.offset(), taken.size());
      const char next = source.peek();
      EXPECT_EQ(source.take(), next);
      taken += next;
    }
    EXPECT_EQ(taken, "ab\nc");
    EXPECT_EQ(source.peek(), '\0');
    EXPECT_EQ(source.take(), '\0');
    EXPECT_EQ(source.offset(), 4U);
  }
}

TEST(JsonSource, ANulInTheTextIsNotItsEnd) {
  JsonSource source(std::string_view("a\0b", 3));
  source.take();
  EXPECT_EQ(source.peek(), '\0');
  EXPECT_FALSE(source.isAtEnd());
  source.take();
  EXPECT_EQ(source.take(), 'b');
  EXPECT_TRUE(source.isAtEnd());
}

// Nothing of a long number but its end lies ready when that is taken.
TEST(JsonSource, NumbersMayBeLongAndArriveInPieces) {
  const std::string zeros(200, '0');
  const std::pair<std::string, ScriptValue> numbers[] = {
      {"-0." + zeros + "e5", ScriptValue::real(-0.0)},
      {"1" + zeros + ".0", ScriptValue::real(1e200)},
      {"1" + zeros + "e-190", ScriptValue::real(1e10)},
      {"-1e" + zeros + "1", ScriptValue::real(-10)},
      {"0." + zeros + "1", ScriptValue::real(1e-201)},
      {"123456789", ScriptValue::integer32(123456789)},
      {"[10, -0e" + zeros + "1]",
       ScriptValue::list({ScriptValue::integer32(10), ScriptValue::real(-0.0)})},
  };
  for (const std::size_t pieceSize : {1U, 7U, 64U, 1000U}) {
    for (const auto& [json, value] : numbers) {
      EXPECT_EQ(valueOrError(sourceInPieces(json, pieceSize)), tests::described(value)) << json;
    }
  }
}

TEST(JsonSource, AnEmptyTextIsAtItsEnd) {
  JsonSource source((std::string_view()));
  EXPECT_TRUE(source.isAtEnd());
  EXPECT_EQ(source.currentPlace(), "line 1, column 1");
  JsonSource pieces = sourceInPieces("", 1);
  EXPECT_TRUE(pieces.isAtEnd());
}

TEST(JsonSource, KnowsTheLineAndColumnOfEveryCharacter) {
  const std::string text = "a\n\nbc\r\né🏔x\n";
  const std::pair<std::size_t, const char*> places[] = {
      {0, "line 1, column 1"},  {1, "line 1, column 2"},  {2, "line 2, column 1"},
      {3, "line 3, column 1"},  {4, "line 3, column 2"},  {5, "line 3, column 3"},
      {6, "line 3, column 4"},  {7, "line 4, column 1"},  {9, "line 4, column 2"},
      {13, "line 4, column 3"}, {14, "line 4, column 4"}, {15, "line 5, column 1"}};
  for (const std::size_t pieceSize : {1U, 2U, 5U, 100U}) {
    JsonSource source = sourceInPieces(text, pieceSize);
    for (const auto& [offset, place] : places) {
      while (source.offset() < offset) source.take();
      EXPECT_EQ(source.currentPlace(), place) << offset << " in pieces of " << pieceSize;
    }
  }
}

// Texts with everything that a cut could break: escapes, pairs, lone surrogates,
// characters of several bytes, line ends, errors.
const std::vector<std::string>& tricky() {
  static const std::vector<std::string> texts = {
      R"("plain")",
      R"("\u0041\u00e9\uD83C\uDFD4")",
      R"("\uD83C")",
      R"("\uDFD4\uD83C")",
      R"("\uD83C\uD83C\uDFD4\uDFD4")",
      R"("\uD83Cx\uDFD4")",
      R"("\uD83C\n\uDFD4")",
      R"("\uD83C\\uDFD4")",
      R"("\\uD83C")",
      R"("\\\uD83C\\")",
      R"("\ud83c\udfd4\ud83c")",
      R"("\uDbFf\uDfFf\uDc00")",
      R"(["\uD800","\uD800",{"\uDC00":"\uD800\uDC00"}])",
      "\"é漢🏔\"",
      "[\"é\",\n \"漢\",\n\n  \"🏔\"]",
      R"("\uD83C)",
      R"("\uD83)",
      R"("\u)",
      R"("\)",
      R"("\uD83G")",
      R"("\uD83C\u00G0")",
      R"("\q")",
      "\"\xF8\"",
      "\"\xF8"
      "D83C\xF8\"",
      "\xF8",
      "\"\xED\xA0\x80\"",
      "\"\xC0\xAF\"",
      "\"cut \xE2\x82\"",
      "\"\xE2\x82",
      R"(\uD83C)",
      R"([1,\uD83C])",
      "[1,\n2,\n3,\n}",
      "[1,\r\n\"a\nb\"]",
      R"({"$date": "now"})",
      "{\"a\":\n{\"$date\":\n\"now\"}}",
      std::string("[1,\0 2]", 7),
      std::string("\"a\0b\"", 5),
      std::string("1\0", 2),
      "   \n\t ",
      "1 2",
      R"({"a": 1, "a": 2})",
      "123456789012345678901234567890",
      "[\n  1" + std::string(400, '0') + "]",
      R"({"$date": "now")" + std::string(300, '\n') + "}",
      R"({"a": {"$date": "é"   )" + std::string(300, ' ') + "} }",
      "-0.0e-0",
      "nul",
      "\xEF\xBB\xBF[\"marked\"]",
      "\xEF\xBB\xBF\xEF\xBB\xBF"
      "1",
      "\xEF\xBB",
      "\xEF",
      "[1\xEF\xBB\xBF]",
      "[[[[",
  };
  return texts;
}

TEST(JsonSource, ReadingDoesNotDependOnHowTheBytesAreCut) {
  for (const std::string& text : tricky()) {
    const std::string whole = valueOrError(text);
    for (std::size_t pieceSize = 1; pieceSize <= text.size() + 1; ++pieceSize) {
      EXPECT_EQ(valueOrError(sourceInPieces(text, pieceSize)), whole)
          << tests::described(foundation::utf16FromMacRoman(text)) << " in pieces of " << pieceSize;
    }
  }
}

TEST(JsonSource, ReadingDoesNotDependOnWhereALongTextFallsApart) {
  // The library asks for 64 KiB at a time.
  for (std::size_t before = 65520; before <= 65545; ++before) {
    const std::string text =
        "[\"" + std::string(before, 'x') + R"(\uD83C\uDFD4\uD83C\\uDFD4é",)" + "\n}";
    const std::string whole = valueOrError(text);
    EXPECT_TRUE(whole.starts_with("line 2, column 1: ")) << whole;
    EXPECT_EQ(valueOrError(sourceInPieces(text, 1 << 20)), whole) << before;
    const std::string good = text.substr(0, text.size() - 3) + "]";
    EXPECT_EQ(valueOrError(sourceInPieces(good, 1 << 20)), valueOrError(good)) << before;
  }
}

struct LinesRow {
  const char* about;
  std::string text;
  std::vector<std::string> lines;
};

std::vector<std::string> linesOf(JsonSource source) {
  std::vector<std::string> lines;
  while (source.beginLine()) {
    std::string line;
    while (!source.isAtEnd()) line += source.take();
    lines.push_back(line);
  }
  return lines;
}

const std::vector<LinesRow>& linesRows() {
  static const std::vector<LinesRow> rows = {
      {"nothing", "", {}},
      {"one line without an end", "a", {"a"}},
      {"one line", "a\n", {"a"}},
      {"an empty line", "\n", {""}},
      {"empty lines", "\n\n", {"", ""}},
      {"empty lines around others", "\na\n\nb", {"", "a", "", "b"}},
      {"a return stays with its line", "a\r\nb", {"a\r", "b"}},
      {"NUL stays with its line", std::string("a\0b\nc", 5), {std::string("a\0b", 3), "c"}},
      {"an escape at the end of a line", "\\u12\n\\uD8", {"\\u12", "\\uD8"}},
      {"Unicode", "é\n🏔\n", {"é", "🏔"}},
      {"long lines",
       std::string(70000, 'x') + "\n" + std::string(70000, 'y'),
       {std::string(70000, 'x'), std::string(70000, 'y')}},
  };
  return rows;
}

TEST(JsonSource, StopsAtTheEndOfEachLineWhenLinesAreAskedFor) {
  for (const LinesRow& row : linesRows()) {
    EXPECT_EQ(linesOf(JsonSource(row.text)), row.lines) << row.about;
    for (const std::size_t pieceSize : {1U, 2U, 3U, 7U, 1000U}) {
      if (row.text.size() > 1000 && pieceSize < 1000) continue;
      EXPECT_EQ(linesOf(sourceInPieces(row.text, pieceSize)), row.lines)
          << row.about << " in pieces of " << pieceSize;
    }
  }
}

TEST(JsonSource, ALineThatWasNotTakenToItsEndIsSkipped) {
  for (const std::size_t pieceSize : {1U, 4U, 100U}) {
    JsonSource source = sourceInPieces("first line\nsecond\nthird", pieceSize);
    ASSERT_TRUE(source.beginLine());
    EXPECT_EQ(source.take(), 'f');
    ASSERT_TRUE(source.beginLine());
    EXPECT_EQ(source.take(), 's');
    EXPECT_EQ(source.currentPlace(), "line 2, column 2");
    ASSERT_TRUE(source.beginLine());
    EXPECT_EQ(source.take(), 't');
    EXPECT_FALSE(source.beginLine());
    EXPECT_FALSE(source.beginLine());
  }
}

// An answer must go out before the next line is there.
TEST(JsonSource, DoesNotReadOnToKnowThatALineIsOver) {
  const std::vector<std::string> pieces = {"{\"command\": \"A\"}\n",
                                           "{\"command\": \"\\uD83C\"}\n"};
  std::size_t given = 0;
  JsonSource source([&](char* buffer, std::size_t) {
    if (given == pieces.size()) return std::size_t{0};
    const std::string& piece = pieces[given++];
    std::memcpy(buffer, piece.data(), piece.size());
    return piece.size();
  });
  ASSERT_TRUE(source.beginLine());
  EXPECT_TRUE(eventOrError(source).starts_with("A "));
  EXPECT_EQ(given, 1U);
  ASSERT_TRUE(source.beginLine());
  EXPECT_TRUE(eventOrError(source).starts_with("\xEF\xBF\xBD "));
  EXPECT_EQ(given, 2U);
  EXPECT_FALSE(source.beginLine());
}

TEST(JsonSource, AnErrorInOneLineDoesNotTouchTheNext) {
  for (const std::size_t pieceSize : {1U, 5U, 1000U}) {
    JsonSource source =
        sourceInPieces("{\"command\": \n{\"command\": \"B\"}\n[\n{\"command\": \"C\"}", pieceSize);
    std::vector<std::string> outcomes;
    while (source.beginLine()) outcomes.push_back(eventOrError(source));
    ASSERT_EQ(outcomes.size(), 4U);
    EXPECT_TRUE(outcomes[0].starts_with("line 1, column 13: ")) << outcomes[0];
    EXPECT_EQ(outcomes[1], "B () within 120000");
    EXPECT_TRUE(outcomes[2].starts_with("line 3, column ")) << outcomes[2];
    EXPECT_EQ(outcomes[3], "C () within 120000");
  }
}

std::string anyJsonLikeText() {
  const auto words = rc::gen::element<std::string>(
      "\"", "\\", "\\u", "\\uD83C", "\\uDFD4", "D8", "[", "]", "{", "}", ":", ",", "1", "é", "🏔",
      "\n", "\"a\"", "true", "$", "\xF8", "\xFF", std::string(1, '\0'));
  std::string text;
  for (const std::string& word : *rc::gen::container<std::vector<std::string>>(words)) text += word;
  return text;
}

RC_GTEST_PROP(JsonSource, AnyTextReadsTheSameHoweverItIsCut, ()) {
  const std::string text = anyJsonLikeText();
  const auto pieceSize = *rc::gen::inRange<std::size_t>(1, 20);
  RC_ASSERT(valueOrError(sourceInPieces(text, pieceSize)) == valueOrError(text));
  RC_ASSERT(linesOf(sourceInPieces(text, pieceSize)) == linesOf(JsonSource(text)));
  const std::string quoted = '"' + text + '"';
  RC_ASSERT(valueOrError(sourceInPieces(quoted, pieceSize)) == valueOrError(quoted));
}

}  // namespace
}  // namespace skerrow::scripting
