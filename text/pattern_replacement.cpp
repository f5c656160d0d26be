#include "text/pattern_replacement.h"

namespace skerrow::text {

std::shared_ptr<RegexService> sharedRegexService(const core::CommandContext& context) {
  return context.services->of<RegexService>();
}

foundation::MatchWatch watchFor(const core::CancelToken& cancelToken) {
  return {.isStopped = [cancelToken] {
    cancelToken.throwIfCancelled();
    return false;
  }};
}

bool replaceMatchesIn(WorkingText& text, const PatternReplacement& replacement,
                      RegexService& service, const core::CancelToken& cancelToken) {
  const foundation::MatchWatch watch = watchFor(cancelToken);
  const Text pattern(replacement.usingPattern);
  const Text withString(replacement.withString);
  try {
    text = service.stringByReplacingOccurrencesOfRegex(text.text(), pattern, withString,
                                                       {.watch = &watch});
    return true;
  } catch (const RegexException&) {
    return false;
  }
}

}  // namespace skerrow::text
