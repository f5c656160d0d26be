#include "foundation/text/text_encoding.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/generators.h"

namespace skerrow::foundation {
namespace {

using tests::described;
using tests::inHexadecimal;

// The character that the C library has for a byte of the encoding "MACINTOSH".
class MacintoshTable {
 public:
  MacintoshTable() : converter_(iconv_open("UTF-16LE", "MACINTOSH")) {}
  MacintoshTable(const MacintoshTable&) = delete;
  MacintoshTable& operator=(const MacintoshTable&) = delete;
  ~MacintoshTable() {
    if (isOpen()) iconv_close(converter_);
  }
  [[nodiscard]] bool isOpen() const {
    return converter_ != reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr)
  }

  char16_t characterOf(unsigned byte) {
    char in[] = {static_cast<char>(byte)};
    char16_t out = 0;
    char* from = in;
    char* to = reinterpret_cast<char*>(&out);
    std::size_t fromLeft = 1;
    std::size_t toLeft = sizeof out;
    iconv(converter_, &from, &fromLeft, &to, &toLeft);
    return out;
  }

 private:
  iconv_t converter_;
};

// Here the C library has the Greek letter for the increment sign, and another
// place of private use for the apple.
bool isKnownDifference(unsigned byte) { return byte == 0xC6 || byte == 0xF0; }

TEST(MacRoman, HasTheCharacterOfThePublishedTableForEveryByte) {
  MacintoshTable table;
  ASSERT_TRUE(table.isOpen());
  for (unsigned byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const char bytes[] = {static_cast<char>(byte)};
    const std::u16string text = utf16FromMacRoman({bytes, 1});
    ASSERT_EQ(text.size(), 1U);
    if (!isKnownDifference(byte)) {
      EXPECT_EQ(described(text), described(std::u16string(1, table.characterOf(byte))));
    }
    EXPECT_EQ(macRomanFromUtf16(text), std::string(bytes, 1));
  }
  EXPECT_EQ(described(utf16FromMacRoman("\xC6\xF0\xDB")), described(u"\u2206\uF8FF€"));
}

TEST(MacRoman, NothingForCharactersThatItLacks) {
  const std::u16string rows[] = {u"š",      u"ł",      u"ω",      u"\u0080", u"\u009F",
                                 u"¤",      u"\u2126", u"\u0394", u"漢",     u"🏔",
                                 u"\uFFFD", u"\uFEFF", {0xD800},  {0xDFFF},  u"abcdef\u0131\u0130"};
  for (const std::u16string& text : rows) {
    EXPECT_EQ(macRomanFromUtf16(text), std::nullopt) << described(text);
  }
  EXPECT_EQ(macRomanFromUtf16(u""), "");
  EXPECT_EQ(macRomanFromUtf16(u"«Ä»"), "\xC7\x80\xC8");
}

RC_GTEST_PROP(MacRoman, EveryRunOfBytesIsTextAndBack, ()) {
  const std::string bytes = *tests::arbitraryBytes();
  RC_ASSERT(macRomanFromUtf16(utf16FromMacRoman(bytes)) == bytes);
}

struct Utf8Row {
  const char* about;
  std::string bytes;
  std::u16string text;
};

TEST(Utf8, ReadsEveryWellFormedSequenceAndWritesItBack) {
  const Utf8Row rows[] = {
      {"empty", "", u""},
      {"ASCII with NUL", std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
      {"the last of one byte", "\x7F", u"\u007F"},
      {"the first of two bytes", "\xC2\x80", u"\u0080"},
      {"the last of two bytes", "\xDF\xBF", u"\u07FF"},
      {"the first of three bytes", "\xE0\xA0\x80", u"\u0800"},
      {"the last before the surrogates", "\xED\x9F\xBF", u"\uD7FF"},
      {"the first after the surrogates", "\xEE\x80\x80", u"\uE000"},
      {"the last of three bytes", "\xEF\xBF\xBF", u"\uFFFF"},
      {"the first of four bytes", "\xF0\x90\x80\x80", u"\U00010000"},
      {"the last of four bytes", "\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
      {"a byte-order mark is kept",
       "\xEF\xBB\xBF"
       "a",
       u"\uFEFFa"},
      {"eight ASCII bytes and then others", "12345678é12345678", u"12345678é12345678"},
      {"others within eight bytes", "1é3🏔", u"1é3🏔"},
  };
  for (const Utf8Row& row : rows) {
    SCOPED_TRACE(row.about);
    const auto text = utf16FromUtf8(row.bytes);
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(described(*text), described(row.text));
    EXPECT_EQ(described(utf16FromUtf8Replacing(row.bytes)), described(row.text));
    EXPECT_EQ(inHexadecimal(utf8FromUtf16(row.text)), inHexadecimal(row.bytes));
  }
}

TEST(Utf8, IsReadAndWrittenCharacterByCharacterToo) {
  for (const char32_t first : {U'\0', U'\x7F', U'\u0080', U'\u07FF', U'\u0800', U'\uD7FF',
                               U'\uE000', U'\uFFFF', U'\U00010000', U'\U0010FFFF'}) {
    char bytes[4];
    const std::size_t count = encodeUtf8(first, bytes);
    const std::string text(bytes, count);
    const auto read = codePointFromUtf8(text + "more");
    ASSERT_TRUE(read.has_value()) << inHexadecimal(text);
    EXPECT_EQ(read->value, first);
    EXPECT_EQ(read->unitCount, count);
    std::u16string units;
    appendCodePoint(units, first);
    EXPECT_EQ(inHexadecimal(text), inHexadecimal(utf8FromUtf16(units)));
    EXPECT_FALSE(codePointFromUtf8(text.substr(0, count - 1)).has_value());
  }
  for (const char* ill : {"\x80", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82z"}) {
    EXPECT_FALSE(codePointFromUtf8(ill).has_value()) << inHexadecimal(ill);
  }
}

// What stands for each maximal ill-formed subsequence is U+FFFD.
TEST(Utf8, RefusesWhatIsIllFormedAndReplacesItWhereAsked) {
  const Utf8Row rows[] = {
      {"a continuation byte alone", "\x80", u"\uFFFD"},
      {"two of them",
       "a\x80\xBF"
       "b",
       u"a\uFFFD\uFFFDb"},
      {"overlong NUL", std::string("\xC0\x80", 2), u"\uFFFD\uFFFD"},
      {"overlong slash", "\xC1\xAF", u"\uFFFD\uFFFD"},
      {"overlong in three bytes", "\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
      {"overlong in four bytes", "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"the first surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
      {"the last surrogate", "\xED\xBF\xBF", u"\uFFFD\uFFFD\uFFFD"},
      {"a pair of surrogates", "\xED\xA0\xBD\xED\xB8\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"past the last character", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"a byte that begins nothing", "\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"bytes that are never used", "\xFE\xFF", u"\uFFFD\uFFFD"},
      {"cut after one of two", "\xC3", u"\uFFFD"},
      {"cut after two of three", "\xE2\x82", u"\uFFFD"},
      {"cut after one of three", "\xE2", u"\uFFFD"},
      {"cut after three of four", "\xF0\x9F\x8F", u"\uFFFD"},
      {"cut by ASCII",
       "\xE2\x82"
       "a",
       u"\uFFFDa"},
      {"cut by another character", "\xF0\x9F\xC3\xA9", u"\uFFFDé"},
      {"wrong at the very end of a long text", std::string(1000, 'x') + "\xFF",
       std::u16string(1000, u'x') + u"\uFFFD"},
  };
  for (const Utf8Row& row : rows) {
    SCOPED_TRACE(row.about);
    EXPECT_EQ(utf16FromUtf8(row.bytes), std::nullopt);
    EXPECT_EQ(described(utf16FromUtf8Replacing(row.bytes)), described(row.text));
  }
}

TEST(Utf8, WritesTheReplacementCharacterForEachLoneSurrogate) {
  const std::pair<std::u16string, std::string> rows[] = {
      {{0xD800}, "\xEF\xBF\xBD"},
      {{0xDFFF}, "\xEF\xBF\xBD"},
      {{0xD83C, u'a'},
       "\xEF\xBF\xBD"
       "a"},
      {{0xDFD4, 0xD83C}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {{0xD83C, 0xD83C, 0xDFD4}, "\xEF\xBF\xBD\xF0\x9F\x8F\x94"},
  };
  for (const auto& [text, bytes] : rows) {
    EXPECT_EQ(inHexadecimal(utf8FromUtf16(text)), inHexadecimal(bytes)) << described(text);
  }
}

RC_GTEST_PROP(Utf8, WhatItWritesReadsBackButForLoneSurrogates, ()) {
  const std::u16string text = *tests::arbitraryUnits();
  const auto back = utf16FromUtf8(utf8FromUtf16(text));
  RC_ASSERT(back.has_value());
  RC_ASSERT(back->size() == text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isSurrogate = text[i] >= 0xD800 && text[i] <= 0xDFFF;
    RC_ASSERT((*back)[i] == text[i] || (isSurrogate && (*back)[i] == u'\uFFFD'));
  }
}

RC_GTEST_PROP(Utf8, BytesThatAreAcceptedAreWrittenTheSame, ()) {
  const auto whole = rc::gen::map(tests::arbitraryUnits(), utf8FromUtf16);
  const auto cut = rc::gen::map(whole, [](std::string bytes) {
    if (!bytes.empty()) bytes.pop_back();
    return bytes;
  });
  const std::string bytes = *rc::gen::oneOf(tests::arbitraryBytes(), whole, cut);
  const auto text = utf16FromUtf8(bytes);
  if (text) {
    RC_ASSERT(utf8FromUtf16(*text) == bytes);
    RC_ASSERT(utf16FromUtf8Replacing(bytes) == *text);
  } else {
    const std::u16string replaced = utf16FromUtf8Replacing(bytes);
    RC_ASSERT(replaced.find(u'\uFFFD') != std::u16string::npos);
    RC_ASSERT(utf16FromUtf8(utf8FromUtf16(replaced)) == replaced);
  }
}

TEST(Utf16Bytes, AreReadInTheOrderThatAMarkTells) {
  const std::pair<std::string, std::u16string> rows[] = {
      {"", u""},
      {"a", u""},
      {std::string("a\0", 2), u"a"},
      {std::string("a\0b", 3), u"a"},
      {std::string("\xFF\xFE"
                   "a\0",
                   4),
       u"a"},
      {std::string("\xFE\xFF\0a", 4), u"a"},
      {"\xFE\xFF\xD8\x3C\xDF\xD4", u"\U0001F3D4"},
      {"\xFF\xFE", u""},
      {"\xFE\xFF", u""},
      {"\xFF\xFE\xFF\xFE", u"\uFEFF"},
      {"\xFE\xFF\xFE\xFF", u"\uFEFF"},
      {std::string("a\0\xFF\xFE", 4), u"a\uFEFF"},
      {std::string("\0\xD8", 2), std::u16string(1, 0xD800)},
      {std::string("\0\0", 2), std::u16string(1, 0)},
  };
  for (const auto& [bytes, text] : rows) {
    EXPECT_EQ(described(utf16FromUtf16Bytes(bytes)), described(text)) << inHexadecimal(bytes);
  }
}

TEST(FileNames, KeepBytesThatAreNoUtf8) {
  const struct {
    std::string bytes;
    std::u16string text;
  } cases[] = {
      {"", u""},
      {"a/é😀", u"a/é😀"},
      {"\xFF", {u'\xDCFF'}},
      {"a\x80"
       "b",
       {u'a', u'\xDC80', u'b'}},
      {"\xC3", {u'\xDCC3'}},
      {"\xE2\x82", {u'\xDCE2', u'\xDC82'}},
      {"\xED\xB2\x80", {u'\xDCED', u'\xDCB2', u'\xDC80'}},  // would spell a surrogate
      {"\xF0\x9F\x98\x80\xFF", {u'\xD83D', u'\xDE00', u'\xDCFF'}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(textFromFileName(each.bytes), each.text);
    EXPECT_EQ(fileNameFromText(each.text), each.bytes);
  }
}

TEST(FileNames, AreNothingWhereASurrogateStandsForNoByte) {
  for (const char16_t unit : {u'\xD800', u'\xDBFF', u'\xDC00', u'\xDC7F', u'\xDD00', u'\xDFFF'}) {
    EXPECT_EQ(fileNameFromText(std::u16string{u'a', unit, u'b'}), std::nullopt);
  }
}

RC_GTEST_PROP(FileNames, AnyBytesComeBack, ()) {
  const auto bytes = *rc::gen::container<std::string>(
      rc::gen::elementOf(std::string("a/\xC3\xA9\x80\xED\xB2\xF0\x9F\x98\xFF\xE2", 13)));
  RC_ASSERT(fileNameFromText(textFromFileName(bytes)) == bytes);
}

}  // namespace
}  // namespace skerrow::foundation
