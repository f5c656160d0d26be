#include "text/csv_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/text/character_sets.h"
#include "tests/support/properties.h"
#include "tests/support/stopped_work.h"

namespace skerrow::text {
namespace {

using Items = std::vector<Value>;
using Fields = std::vector<std::u16string>;

Value tableOf(const std::vector<Fields>& rows) {
  Items table;
  for (const Fields& row : rows) {
    Items fields;
    for (const std::u16string& field : row) fields.emplace_back(std::u16string_view(field));
    table.emplace_back(std::move(fields));
  }
  return table;
}

Value csv(std::u16string_view text) { return parseCSVIn(text); }
Value tsv(std::u16string_view text) { return parseTSVIn(text); }

std::u16string inQuotes(std::u16string_view field) {
  std::u16string result = u"\"";
  for (const char16_t unit : field) result.append(unit == u'"' ? 2 : 1, unit);
  return result += u'"';
}

// Small tables: a hundred rows of a hundred fields of a hundred units would take a second each.
rc::Gen<std::vector<Fields>> tablesOf(rc::Gen<char16_t> unit) {
  // An empty last field would be left out.
  const auto rows =
      rc::gen::map(rc::gen::container<Fields>(rc::gen::container<std::u16string>(std::move(unit))),
                   [](Fields row) {
                     row.emplace_back(u"end");
                     return row;
                   });
  return rc::gen::scale(0.2, rc::gen::container<std::vector<Fields>>(rows));
}

RC_GTEST_PROP(CsvReader, ReadsBackWhatWasWrittenInQuotes, ()) {
  const auto rows =
      *tablesOf(rc::gen::element<char16_t>(u'a', u'"', u',', u' ', u'\t', u'\n', u'\r', u'\u2028'));
  std::u16string text;
  for (const Fields& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) text += (i == 0 ? u"" : u", ") + inQuotes(row[i]);
    text += u"\r\n";
  }
  RC_ASSERT(csv(text) == tableOf(rows));
}

RC_GTEST_PROP(CsvReader, CutsPlainFieldsAtCommasAndLineEnds, ()) {
  const auto rows =
      *tablesOf(rc::gen::element<char16_t>(u'a', u'é', u'\xD83D', u'\u2027', u'\u202A', u'\u0084'));
  std::u16string text;
  for (const Fields& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) text += (i == 0 ? u"" : u",") + row[i];
    text += u'\n';
  }
  RC_ASSERT(csv(text) == tableOf(rows));
}

RC_GTEST_PROP(CsvReader, AcceptsEveryText, ()) {
  const auto text = *rc::gen::container<std::u16string>(
      rc::gen::element<char16_t>(u'a', u'"', u'"', u',', u' ', u'\n', u'\v', u'\x85'));
  const Value table = csv(text);
  for (const Value& row : table.items()) {
    RC_ASSERT(!row.items().empty());
    for (const Value& field : row.items()) RC_ASSERT(field.isText());
  }
}

TEST(CsvReader, JoinsTheRunsOfAField) {
  EXPECT_EQ(csv(u"a\"b\"\"c\nd\"e,f"), tableOf({{u"ab\"c\nde", u"f"}}));
  EXPECT_EQ(csv(u"\"\"\"a\"\"\",b"), tableOf({{u"\"a\"", u"b"}}));
  EXPECT_EQ(csv(u"\"a\"\"\"\"b\""), tableOf({{u"a\"\"b"}}));
}

TEST(CsvReader, TakesAllWhiteSpaceAfterACommaAndNoOther) {
  for (char32_t unit = 1; unit < 0xD800; ++unit) {
    const auto character = static_cast<char16_t>(unit);
    if (foundation::isNewline(character) || character == u',' || character == u'"') continue;
    const std::u16string text = std::u16string(u"x,") + character + u"y";
    const std::u16string field = foundation::isWhiteSpace(character) ? u"y" : text.substr(2);
    ASSERT_EQ(csv(text), tableOf({{u"x", field}})) << static_cast<unsigned>(unit);
  }
}

TEST(CsvReader, StopsWhenNobodyWaitsAnyMore) {
  const tests::StoppedWork stopped;
  EXPECT_THROW(parseCSVIn(u"a"), work::Stopped);
  EXPECT_THROW(parseTSVIn(u"a"), work::Stopped);
}

RC_GTEST_PROP(TsvReader, CutsAtTabsAndParagraphs, ()) {
  const auto unit = rc::gen::element<char16_t>(u'a', u'"', u',', u' ', u'\u2028', u'\u0085', u'\v');
  const auto fields =
      rc::gen::nonEmpty(rc::gen::container<Fields>(rc::gen::container<std::u16string>(unit)));
  const auto rows = *rc::gen::scale(0.2, rc::gen::container<std::vector<Fields>>(fields));
  std::u16string text;
  for (const Fields& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) text += (i == 0 ? u"" : u"\t") + row[i];
    text += u"\r\n";
  }
  RC_ASSERT(tsv(text) == tableOf(rows));
}

TEST(TsvReader, EndsParagraphsAtEachKindOfLineEnd) {
  EXPECT_EQ(tsv(u"\r\r\n\n\u2029"), tableOf({{u""}, {u""}, {u""}, {u""}}));
}

}  // namespace
}  // namespace skerrow::text
