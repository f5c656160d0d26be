// SKWValueForKeyPathCommand: the value that a key path finds in an item.

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "argument_keys/SKWValueForKeyPathCommand.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/key_path/key_path.h"
#include "scripting/dictionary/kind_words.h"
#include "scripting/refusal.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWValueForKeyPathCommand;

constexpr core::ErrorEntry kSpaceInPath = {1281, "A keyPath cannot contain a space character."};
constexpr core::ErrorEntry kLookupFailed = {1282, "%@"};

class SKWValueForKeyPathCommand final : public core::Command {
  void check() override {
    path_ = *core::textFromScriptValue(*directParameter());
    if (path_.view().find(u' ') != std::u16string_view::npos) throw core::ScriptError(kSpaceInPath);
    const Value* item = evaluatedArguments().find(key::ofItem);
    if (item == nullptr) {
      scripting::refuseMissing(key::ofItem, wordsOf(scripting::Kinds::any).one);
    }
    item_ = item->raw();
  }

  std::optional<Value> compute() override {
    const Value item = core::unpack(std::move(item_)).value_or(Value());
    try {
      return foundation::KeyPath(path_.view()).valueIn(item);
    } catch (const foundation::KeyPathError& error) {
      throw core::ScriptError(kLookupFailed, error.reason());
    }
  }

  Text path_;
  ScriptValue item_;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWValueForKeyPathCommand() {
  return std::make_unique<lists::SKWValueForKeyPathCommand>();
}

}  // namespace skerrow
