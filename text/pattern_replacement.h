#pragma once
// What commands have the regular-expression service do for them, stopped when the
// command is told to stop.

#include <memory>
#include <string_view>

#include "core/command.h"
#include "text/regex/regex_service.h"
#include "text/working_text.h"

namespace skerrow::text {

/// The service that all commands share.
std::shared_ptr<RegexService> sharedRegexService(const core::CommandContext& context);

/// A fixed pattern, without options, and the template that its matches give way to.
struct PatternReplacement {
  std::u16string_view usingPattern;
  std::u16string_view withString;
};

/// Replaces every match in the whole text. False where the service cannot, and then
/// nothing comes of the text.
bool replaceMatchesIn(WorkingText& text, const PatternReplacement& replacement,
                      RegexService& service);

}  // namespace skerrow::text
