// The same work done by other tools: ICU's own command-line transliterator, and
// Python's reader of comma-separated values where the two dialects agree.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>

#include "core/unpack.h"
#include "foundation/text/text_encoding.h"
#include "tests/support/in_process.h"
#include "tests/support/scratch_folder.h"

namespace skerrow::text {
namespace {

// What a shell command writes; fails the test when it does not end well.
std::string outputOf(const std::string& command) {
  std::FILE* const pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("could not start: " + command);
  std::string output;
  std::array<char, 65536> piece;
  for (std::size_t count; (count = std::fread(piece.data(), 1, piece.size(), pipe)) > 0;) {
    output.append(piece.data(), count);
  }
  EXPECT_EQ(::pclose(pipe), 0) << command;
  return output;
}

std::string transformed(tests::InProcess& commands, const std::string& text,
                        const std::string& identifier, bool isInverse) {
  const auto scriptText = [](const std::string& utf8) {
    return ScriptValue::text(Text(foundation::utf16FromUtf8(utf8).value()));
  };
  constexpr std::int32_t kIcuTransform = 0x62E56562;
  const core::Reply reply =
      commands.perform({"SKWMungeText",
                        scriptText(text),
                        {{"stringMungeOption", ScriptValue::integer32(kIcuTransform)},
                         {"transformName", scriptText(identifier)},
                         {"transformInverse", ScriptValue::boolean(isInverse)}}});
  if (const auto* error = std::get_if<core::ScriptError>(&reply)) return error->message();
  const auto result = core::textFromScriptValue(*std::get<std::optional<ScriptValue>>(reply));
  return foundation::utf8FromUtf16(result->view());
}

TEST(IcuTransform, GivesWhatTheTransliteratorOfIcuGives) {
  const std::string text =
      "Straße “ΣΑΣ” οδός; щука Ёж, ไทยแลนด์, 漢字かな ッー, क्ष १२, שלום, مرحبا, 각하, e\u0301 "
      "\u00E9, "
      "Ærø ijs ǅ, it's 'quoted' -- 1/2, \\u00e9 &#233;\n";
  const tests::ScratchFolder folder;
  const std::string file = folder.write("text", text);
  tests::InProcess commands;
  for (const std::string identifier : {"Latin-Cyrillic",
                                       "Cyrillic-Latin",
                                       "Any-Latin",
                                       "Latin-ASCII",
                                       "Greek-Latin/UNGEGN",
                                       "Latin-Greek",
                                       "Katakana-Hiragana",
                                       "Hiragana-Katakana",
                                       "Fullwidth-Halfwidth",
                                       "Halfwidth-Fullwidth",
                                       "Any-Title",
                                       "Upper",
                                       "Lower",
                                       "NFD",
                                       "NFKC",
                                       "Any-Name",
                                       "Hex-Any",
                                       "Any-Hex/XML",
                                       "Thai-Latin",
                                       "Han-Latin",
                                       "Devanagari-Latin",
                                       "Hangul-Latin",
                                       "Hebrew-Latin",
                                       "Arabic-Latin",
                                       "Any-Publishing",
                                       "Accents-Any",
                                       "Any-Accents",
                                       "ru-ru_Latn/BGN",
                                       "de-ASCII"}) {
    EXPECT_EQ(transformed(commands, text, identifier, false),
              outputOf("uconv -f UTF-8 -t UTF-8 -x '" + identifier + "' '" + file + "'"))
        << identifier;
  }
}

// Prints events and, behind each, the answer that it must get: tables of fields, written with
// and without quotation marks, as csv.reader reads them back. Left out is what the dialects see
// differently: white space at the start of a field, and rows that end with an empty field.
constexpr const char* kTablesInPython = R"PYTHON(
import csv, io, json, random

some = random.Random(20240301)

def field(isLast):
    length = some.randrange(1 if isLast else 0, 6)
    text = "".join(some.choice('ab é,"\n\t;') for _ in range(length)).lstrip()
    return text or ("x" if isLast else "")

def line(thing):
    print(json.dumps(thing, ensure_ascii=False, separators=(",", ":")))

for _ in range(500):
    rows = [[field(False) for _ in range(some.randrange(4))] + [field(True)]
            for _ in range(some.randrange(1, 5))]
    written = io.StringIO()
    csv.writer(written, lineterminator=some.choice(["\n", "\r\n"]),
               quoting=some.choice([csv.QUOTE_MINIMAL, csv.QUOTE_ALL])).writerows(rows)
    text = written.getvalue()
    read = list(csv.reader(io.StringIO(text, newline="")))
    line({"command": "SKWMungeText", "direct": text, "arguments": {"stringMungeOption": 0x62E56563}})
    line({"result": read})
)PYTHON";

TEST(ParseCsv, GivesWhatPythonsReaderGives) {
  const tests::ScratchFolder folder;
  const std::string lines =
      outputOf("python3 '" + folder.write("tables.py", kTablesInPython) + "'");
  tests::InProcess commands;
  std::size_t count = 0;
  for (std::size_t begin = 0; begin < lines.size(); ++count) {
    const std::size_t eventEnd = lines.find('\n', begin);
    const std::size_t answerEnd = lines.find('\n', eventEnd + 1);
    const std::string event = lines.substr(begin, eventEnd - begin);
    ASSERT_EQ(commands.answer(event), lines.substr(eventEnd + 1, answerEnd - eventEnd - 1))
        << event;
    begin = answerEnd + 1;
  }
  EXPECT_EQ(count, 500U);
}

}  // namespace
}  // namespace skerrow::text
