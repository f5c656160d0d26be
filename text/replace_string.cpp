// SKWReplaceString: replaces a text, taken literally, in a text, in the texts of a
// list or in the address of a file; everywhere, or where it occurs first or last.

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "argument_keys/SKWReplaceString.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/collation/text_search.h"
#include "foundation/text/text_encoding.h"
#include "text/text_input.h"

namespace skerrow::text {

namespace {

namespace key = argument_keys::SKWReplaceString;
using core::ErrorEntry;
using core::ScriptError;
using foundation::TextSearch;
using foundation::UnitRange;

constexpr int kUnreadableFile = 1061;
constexpr ErrorEntry kFirstAndLast = {
    1062, "The 'only last' option can't be used with the 'only first' option."};

// Kept: of a file that can be read, the address is what is changed and answered.
Text addressOfReadableFile(const ScriptValue& file, const platform::FileContents& files) {
  static_cast<void>(textOfFile(file, files, kUnreadableFile));
  return Text(foundation::utf16FromUtf8Replacing(core::urlFromScriptValue(file)->absoluteString));
}

class SKWReplaceString final : public core::Command {
  void check() override {
    const core::Arguments& arguments = evaluatedArguments();
    replacement_ = textArgument(arguments.find(key::replacementPattern));
    isOnlyFirst_ = arguments.isSet(key::onlyFirst);
    isOnlyLast_ = arguments.isSet(key::onlyLast);
    if (isOnlyFirst_ && isOnlyLast_) throw ScriptError(kFirstAndLast);
    searched_ = arguments.find(key::stringToSearch)->raw();
    sought_ = *core::textFromScriptValue(*directParameter());
    folding_ = {.caseInsensitive = !arguments.isSet(key::caseMatters),
                .diacriticInsensitive = arguments.isSet(key::diacriticalFlag)};
  }

  std::optional<Value> compute() override {
    search_.emplace(sought_.view(), folding_);
    return mapTexts(
        searched_,
        {.convert = [this](const Text& text) -> std::optional<Value> { return replaced(text); },
         .textFromFile =
             [this](const ScriptValue& file) {
               return addressOfReadableFile(file, context().platform.contents);
             }});
  }

  // Without a replacement, and where nothing is found, the text as it is.
  [[nodiscard]] Text replaced(const Text& text) const {
    const std::u16string_view units = text.view();
    const UnitRange found = isOnlyLast_ ? search_->last(units) : search_->first(units);
    if (!replacement_ || !found.isFound()) return text;
    if (!isOnlyFirst_ && !isOnlyLast_) {
      return Text(search_->replacingAll(units, replacement_->view()));
    }
    std::u16string result;
    result.reserve(units.size() - found.length + replacement_->unitCount());
    result.append(units, 0, found.location).append(replacement_->view()).append(units, found.end());
    return Text(std::move(result));
  }

  ScriptValue searched_;
  std::optional<Text> replacement_;
  Text sought_;
  foundation::FoldingOptions folding_;
  std::optional<TextSearch> search_;  // made ready in the task
  bool isOnlyFirst_ = false;
  bool isOnlyLast_ = false;
};

}  // namespace

}  // namespace skerrow::text

namespace skerrow {

std::unique_ptr<core::Command> createSKWReplaceString() {
  return std::make_unique<text::SKWReplaceString>();
}

}  // namespace skerrow
