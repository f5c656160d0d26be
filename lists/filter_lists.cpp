// SKWFilterLists: keeps the items of a list, or of each list in a list of lists,
// for which one or more predicates are true.

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "argument_keys/SKWFilterLists.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/predicate/predicate.h"
#include "foundation/text/quoted_text.h"
#include "lists/list_input.h"
#include "work/stopping.h"

namespace skerrow::lists {

using namespace literals;

namespace {

namespace key = argument_keys::SKWFilterLists;
using core::ErrorEntry;
using core::ScriptError;
using foundation::Predicate;
using foundation::PredicateError;
using foundation::PredicateSurroundings;
using Items = std::vector<Value>;

constexpr ErrorEntry kNotAList = {1167, "Direct parameter is not a list."};
constexpr ErrorEntry kSublistNotAList = {1161, "Not all elements are lists."};
constexpr ErrorEntry kBadSinglePredicate = {1162, "%@"};
constexpr ErrorEntry kNotAPair = {
    1163, "Invalid predicate with argument list; format is {predString, listOfArgs}."};
constexpr ErrorEntry kWrongKindsInPair = {
    1164, "Invalid predicate with argument list; format is {predString, listOfArgs}."};
constexpr ErrorEntry kNeitherTextNorPair = {
    1165, "Invalid predicate. Should be predString, or {predString, listOfArgs}."};
constexpr ErrorEntry kFilteringFailed = {1166, "%@"};
// Kept: a direct parameter that is no list has this number too.
constexpr ErrorEntry kBadPredicate = {1167, "%@"};
constexpr ErrorEntry kEmptyPredicate = {
    1168, "Invalid predicate; format should be either predString *or* {predString, listOfArgs}."};
constexpr ErrorEntry kNeedsArguments = {1169,
                                        "Invalid predicate; '%@' implies the use of arguments, so "
                                        "it should be in a list along with a list of arguments."};
// Kept: two failures have this number.
constexpr ErrorEntry kWrongArgumentCount = {
    1169,
    "Invalid predicate with argument list; number of arguments does not match argument string."};

std::size_t occurrences(std::u16string_view text, std::u16string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::u16string_view::npos;
       at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

std::size_t placeholders(std::u16string_view format) {
  return occurrences(format, u"%K") + occurrences(format, u"%@");
}

template <class Parse>
Predicate parsed(const ErrorEntry& failure, Parse&& parse) {
  try {
    return parse();
  } catch (const PredicateError& error) {
    throw ScriptError(failure, error.reason());
  }
}

Predicate predicateFromText(std::u16string_view format, const PredicateSurroundings& surroundings) {
  if (placeholders(format) > 0) {
    throw ScriptError(kNeedsArguments, foundation::shortened(format));
  }
  if (format.empty()) throw ScriptError(kEmptyPredicate);
  return parsed(kBadPredicate, [&] { return Predicate::parse(format, {}, surroundings); });
}

Predicate predicateFromPair(std::span<const Value> pair,
                            const PredicateSurroundings& surroundings) {
  if (pair.size() != 2) throw ScriptError(kNotAPair);
  if (!pair[0].isText() || !pair[1].isList()) throw ScriptError(kWrongKindsInPair);
  const auto format = pair[0].text();
  const auto arguments = pair[1].items();
  if (placeholders(format) != arguments.size()) throw ScriptError(kWrongArgumentCount);
  return parsed(kBadPredicate, [&] { return Predicate::parse(format, arguments, surroundings); });
}

std::vector<Predicate> predicatesFrom(const ScriptValue& given,
                                      const PredicateSurroundings& surroundings) {
  std::vector<Predicate> predicates;
  // Kept: placeholders in a bare text are not looked for.
  if (const auto text = core::textFromScriptValue(given)) {
    predicates.push_back(parsed(kBadSinglePredicate,
                                [&] { return Predicate::parse(text->view(), {}, surroundings); }));
    return predicates;
  }
  if (given.type() != "list"_code) throw ScriptError(kNeitherTextNorPair);
  const Value list = core::unpackAEList(given);
  for (const Value& item : list.items()) {
    if (item.isText()) {
      predicates.push_back(predicateFromText(item.text(), surroundings));
    } else if (item.isList()) {
      predicates.push_back(predicateFromPair(item.items(), surroundings));
    } else {
      throw ScriptError(kNeitherTextNorPair);
    }
  }
  return predicates;
}

class SKWFilterLists final : public core::Command {
  void check() override {
    if (!directParameter() || directParameter()->type() != "list"_code) {
      throw ScriptError(kNotAList);
    }
  }

  std::optional<Value> compute() override {
    given_ = (*takeDirectParameter()).takeItems();
    const bool isInSublists = evaluatedArguments().isSet(key::doSublists);
    const auto isList = [](const ScriptValue& item) { return item.type() == "list"_code; };
    if (isInSublists && !std::ranges::all_of(given_, isList)) {
      throw ScriptError(kSublistNotAList);
    }
    std::vector<Predicate> predicates;
    if (const Value* given = evaluatedArguments().find(key::predicateList)) {
      predicates = predicatesFrom(given->raw(), surroundings());
    }
    try {
      if (!isInSublists) return filtered(given_, predicates);
      Items sublists;
      sublists.reserve(given_.size());
      for (const ScriptValue& item : given_) {
        sublists.emplace_back(filtered(item.items(), predicates));
      }
      return sublists;
    } catch (const PredicateError& error) {
      throw ScriptError(kFilteringFailed, error.reason());
    }
  }

  [[nodiscard]] PredicateSurroundings surroundings() const {
    const platform::Platform& platform = context().platform;
    return {.environment = &platform.environment,
            .clock = &context().clock,
            .chance = &platform.chance};
  }

  // The items for which all predicates are true. An item is unpacked just before the
  // first predicate is asked, as one that it is not true of is needed no more.
  [[nodiscard]] static Items filtered(std::span<const ScriptValue> items,
                                      std::span<const Predicate> predicates) {
    Items kept;
    for (const ScriptValue& item : items) {
      Value value = core::unpack(item).value_or(Value());
      if (predicates.empty() || isTrueOf(predicates.front(), value)) {
        kept.push_back(std::move(value));
      }
    }
    for (const Predicate& predicate :
         predicates.subspan(std::min<std::size_t>(1, predicates.size()))) {
      std::erase_if(kept, [&](const Value& value) { return !isTrueOf(predicate, value); });
    }
    return kept;
  }

  static bool isTrueOf(const Predicate& predicate, const Value& value) {
    work::stopIfAsked();
    return predicate.evaluate(value);
  }

  // A member, as what is given back with the command keeps no script waiting.
  std::vector<ScriptValue> given_;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWFilterLists() {
  return std::make_unique<lists::SKWFilterLists>();
}

}  // namespace skerrow
