// Replacement templates: never an error, and the same as ICU's own replacement
// wherever ICU takes the template.

#include <unicode/uregex.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/text/text_encoding.h"
#include "text/regex/regex_service.h"

using skerrow::Text;

namespace {

constexpr std::u16string_view kPattern = u"(a)(b)?(?<name>c)()()()()()()()(d)?";
constexpr std::u16string_view kSubject = u"xacd-abc\U0001F600";

// False where ICU refuses the template.
bool replaceByIcu(const std::u16string& source, std::u16string& result) {
  UErrorCode status = U_ZERO_ERROR;
  URegularExpression* const regex =
      uregex_open(kPattern.data(), static_cast<std::int32_t>(kPattern.size()), 0, nullptr, &status);
  uregex_setText(regex, kSubject.data(), static_cast<std::int32_t>(kSubject.size()), &status);
  result.resize(64 + source.size() * 16);
  const std::int32_t length =
      uregex_replaceAll(regex, source.data(), static_cast<std::int32_t>(source.size()),
                        result.data(), static_cast<std::int32_t>(result.size()), &status);
  uregex_close(regex);
  result.resize(static_cast<std::size_t>(length));
  return U_SUCCESS(status);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static skerrow::text::RegexService regex;
  static const Text pattern(kPattern);
  static const Text subject(kSubject);
  const std::u16string source =
      skerrow::foundation::utf16FromUtf8Replacing({reinterpret_cast<const char*>(data), size});
  const Text ours = regex.stringByReplacingOccurrencesOfRegex(subject, pattern,
                                                              Text(std::u16string_view(source)));
  std::u16string expected;
  if (!source.empty() && replaceByIcu(source, expected) && ours.view() != expected) std::abort();
  return 0;
}
