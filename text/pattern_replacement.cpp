#include "text/pattern_replacement.h"

namespace skerrow::text {

std::shared_ptr<RegexService> sharedRegexService(const core::CommandContext& context) {
  return context.services->of<RegexService>();
}

bool replaceMatchesIn(WorkingText& text, const PatternReplacement& replacement,
                      RegexService& service) {
  const Text pattern(replacement.usingPattern);
  const Text withString(replacement.withString);
  try {
    text = service.stringByReplacingOccurrencesOfRegex(text.text(), pattern, withString, {});
    return true;
  } catch (const RegexException&) {
    return false;
  }
}

}  // namespace skerrow::text
