// A pattern and a subject, a zero unit between them: every operation of the
// regular-expression service answers or throws what it promises, in any range of
// the subject; the matches are those of the engine alone, and with the pieces
// between them they make the range.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "text/regex/regex_service.h"

using skerrow::Text;
using skerrow::Value;
namespace text = skerrow::text;

namespace {

bool isWhatTheEngineFinds(const std::vector<Value>& matches, const Text& subject,
                          const Text& pattern, const text::RegexCall& call) {
  auto engine = skerrow::foundation::CompiledRegex::compile(pattern.view(), call.options);
  engine.setSubject(subject.view(), *call.range);
  skerrow::foundation::MatchMonitor monitor(call.timeLimit);
  std::size_t count = 0;
  try {
    while (engine.findNext(monitor)) {
      if (count == matches.size()) return false;
      if (matches[count++].text() != engine.group(0).of(subject.view())) return false;
    }
  } catch (const skerrow::foundation::RegexFault&) {
    return true;  // given up: nothing to compare
  }
  return count == matches.size();
}

// Anywhere in a text of so many units.
skerrow::foundation::UnitRange rangeFrom(std::uint8_t start, std::uint8_t end, std::size_t units) {
  const std::size_t location = std::min<std::size_t>(start, units);
  const std::size_t cut = std::min<std::size_t>(end, units - location);
  return {location, units - location - cut};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 4) return 0;
  static text::RegexService regex;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  text::RegexCall call{
      .options = static_cast<text::RegexOptions>(data[0] & 0x2FU) | ((data[1] & 1U) << 8U),
      .timeLimit = std::chrono::milliseconds(20)};
  const std::u16string units = skerrow::foundation::utf16FromUtf8Replacing(bytes.substr(4));
  const std::size_t border = std::min(units.find(u'\0'), units.size());
  const Text pattern(units.substr(0, border));
  const Text subject(units.substr(std::min(border + 1, units.size())));
  call.range = rangeFrom(data[2], data[3], subject.unitCount());
  try {
    const auto matches = regex.componentsMatchedByRegex(subject, pattern, call);
    if (!isWhatTheEngineFinds(matches, subject, pattern, call)) std::abort();
    const auto groups = regex.arrayOfCaptureComponentsMatchedByRegex(subject, pattern, call);
    const auto pieces = regex.componentsSeparatedByRegex(subject, pattern, call);
    if (groups.size() != matches.size() || pieces.size() != matches.size() + 1) std::abort();
    std::u16string joined(pieces[0].text());
    for (std::size_t i = 0; i < matches.size(); ++i) {
      joined += matches[i].text();
      joined += pieces[i + 1].text();
    }
    if (joined != call.range->of(subject.view())) std::abort();
    const Text same = regex.stringByReplacingOccurrencesOfRegex(
        subject, pattern, Text(std::u16string_view(u"$0")), call);
    if (same != subject) std::abort();
  } catch (const text::RegexFailure& failure) {
    if (failure.error().details().isEmpty()) std::abort();
  }
  return 0;
}
