// SKWJoinStrings: joins the texts of a list into one, or lists of texts column by
// column, or each of several lists by itself.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "argument_keys/SKWJoinStrings.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "text/text_input.h"
#include "work/stopping.h"

namespace skerrow::text {

using namespace literals;

namespace {

namespace key = argument_keys::SKWJoinStrings;
using core::ErrorEntry;
using core::ScriptError;
using Items = std::vector<Value>;

constexpr ErrorEntry kSublistNotAList = {
    1141, "Can't process sublists because one or more element is not a list."};
// Kept: scripts test for these texts and numbers, also where a list is expected.
constexpr ErrorEntry kFirstNotAList = {1142, "Expected string, found %@."};
constexpr ErrorEntry kUnequalLists = {1142, "Can't merge arrays of differing length."};
constexpr ErrorEntry kLaterNotAList = {1143, "Expected string, found %@."};
constexpr ErrorEntry kItemNotText = {1144, "One or more items in a list is not a string."};

// What kind of thing an item is that is neither a text nor a list.
std::string_view kindName(const ScriptValue& item) {
  const FourCharCode type = item.type();
  if (type == "bool"_code || type == "true"_code || type == "fals"_code) return "boolean";
  if (core::isNumberType(type)) return "number";
  if (core::isFileType(type)) return "file";
  if (type == "ldt "_code) return "date";
  if (type == "rdat"_code) return "data";
  if (item.hasFields()) return "record";
  if (item.isMissingValue() || type == "msng"_code || type == "null"_code) return "missing value";
  if (type == "type"_code) return "class";
  return "value";
}

std::string_view kindName(const Value& item) {
  return item.isText() ? "text" : kindName(item.raw());
}

class SKWJoinStrings final : public core::Command {
  void check() override {
    if (directParameter()->items().empty()) {
      answerAtOnce(Text());
      return;
    }
    const core::Arguments& arguments = evaluatedArguments();
    separator_ = textArgument(arguments.find(key::insertingString)).value_or(Text());
    isInSublists_ = arguments.isSet(key::doSublists);
    isIgnoringBlanks_ = arguments.isSet(key::ignoringBlanks);
  }

  std::optional<Value> compute() override {
    const Value unpacked = core::unpackAEListJustText(*takeDirectParameter());
    if (!isInSublists_) return joined(unpacked.items());
    if (!std::ranges::all_of(unpacked.items(), &Value::isList)) {
      throw ScriptError(kSublistNotAList);
    }
    Items results;
    results.reserve(unpacked.items().size());
    for (const Value& list : unpacked.items()) {
      work::stopIfAsked();
      results.push_back(joined(list.items()));
    }
    return results;
  }

  [[nodiscard]] Value joined(std::span<const Value> list) const {
    if (list.empty() || list.front().isText()) return processSimpleList(list);
    return processListOfLists(list);
  }

  [[nodiscard]] Value processSimpleList(std::span<const Value> list) const {
    return joinedTexts(list.size(), [list](std::size_t i) -> const Value& { return list[i]; });
  }

  // Joins the first items of all lists, the second ones, and so on.
  [[nodiscard]] Value processListOfLists(std::span<const Value> lists) const {
    if (!lists.front().isList()) throw ScriptError(kFirstNotAList, kindName(lists.front()));
    const std::size_t width = lists.front().items().size();
    for (const Value& list : lists) {
      if (!list.isList()) throw ScriptError(kLaterNotAList, kindName(list));
      if (list.items().size() != width) throw ScriptError(kUnequalLists);
    }
    Items columns;
    columns.reserve(width);
    for (std::size_t column = 0; column < width; ++column) {
      work::stopIfAsked();
      columns.push_back(joinedTexts(
          lists.size(), [&](std::size_t i) -> const Value& { return lists[i].items()[column]; }));
    }
    return columns;
  }

  // Joins the texts that `itemAt` gives, in one string that never has to grow.
  template <class ItemAt>
  [[nodiscard]] Value joinedTexts(std::size_t count, ItemAt&& itemAt) const {
    std::size_t unitCount = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const Value& item = itemAt(i);
      if (!item.isText()) throw ScriptError(kItemNotText);
      unitCount += item.text().size() + separator_.unitCount();
    }
    std::u16string result;
    result.reserve(unitCount);
    bool isFirst = true;
    for (std::size_t i = 0; i < count; ++i) {
      const std::u16string_view text = itemAt(i).text();
      if (isIgnoringBlanks_ && text.empty()) continue;
      if (!isFirst) result += separator_.view();
      result += text;
      isFirst = false;
    }
    return result;
  }

  Text separator_;
  bool isInSublists_ = false;
  bool isIgnoringBlanks_ = false;
};

}  // namespace

}  // namespace skerrow::text

namespace skerrow {

std::unique_ptr<core::Command> createSKWJoinStrings() {
  return std::make_unique<text::SKWJoinStrings>();
}

}  // namespace skerrow
