// Laws that SKWModifyList keeps for all lists.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/unpack.h"
#include "lists/modify_list.h"
#include "tests/support/generators.h"
#include "tests/support/in_process.h"

namespace skerrow::lists {
namespace {

using namespace literals;
using scripting::EventArguments;
using ScriptItems = std::vector<ScriptValue>;

core::Reply replyTo(ScriptValue list, EventArguments arguments,
                    std::chrono::milliseconds timeout = scripting::Event::kDefaultTimeout) {
  tests::InProcess commands;
  return commands.perform({"SKWModifyList", std::move(list), std::move(arguments), timeout});
}

// The items of the changed list; an error fails the property.
ScriptItems changed(const ScriptItems& items, EventArguments arguments) {
  const core::Reply reply = replyTo(ScriptValue::list(items), std::move(arguments));
  if (const auto* error = std::get_if<core::ScriptError>(&reply)) RC_FAIL(error->message());
  const auto& result = *std::get<std::optional<ScriptValue>>(reply);
  return {result.items().begin(), result.items().end()};
}

// The items as they are once they have been through the command. A record with
// two fields of user fields takes a second time to settle.
ScriptItems settled(const ScriptItems& items) { return changed(changed(items, {}), {}); }

ScriptValue integer(std::int64_t value) {
  return ScriptValue::integer32(static_cast<std::int32_t>(value));
}
const ScriptValue kTrue = ScriptValue::boolean(true);

rc::Gen<ScriptValue> asList(const rc::Gen<ScriptItems>& items) {
  return rc::gen::map(items, [](ScriptItems each) { return ScriptValue::list(std::move(each)); });
}

// Items of few different values, so that equal and empty ones meet.
rc::Gen<ScriptValue> fewItems() {
  const auto text = [](std::u16string_view units) { return ScriptValue::text(Text(units)); };
  return rc::gen::element(ScriptValue(), integer(0), integer(1), integer(-2), ScriptValue::real(1),
                          ScriptValue::real(0.5), ScriptValue::boolean(true), text(u""), text(u"a"),
                          text(u"A"), text(u"\U0001F600"), ScriptValue::list({}),
                          ScriptValue::list({ScriptValue(), text(u"")}),
                          ScriptValue::list({integer(1), ScriptValue::list({text(u"a")})}));
}

// Those, and any others.
rc::Gen<ScriptItems> anyItems() {
  const auto others = rc::gen::map(
      rc::gen::scale(0.3, rc::gen::container<ScriptItems>(tests::anyScriptValue())), settled);
  return rc::gen::weightedOneOf<ScriptItems>(
      {{3, rc::gen::container<ScriptItems>(fewItems())}, {1, others}});
}

rc::Gen<ScriptItems> rectangle(bool isRagged = false) {
  return rc::gen::mapcat(rc::gen::inRange<std::size_t>(1, 5), [isRagged](std::size_t width) {
    const auto row = asList(isRagged ? rc::gen::container<ScriptItems>(fewItems())
                                     : rc::gen::container<ScriptItems>(width, fewItems()));
    return rc::gen::nonEmpty(rc::gen::container<ScriptItems>(row));
  });
}

Value content(const ScriptValue& value) { return core::unpack(value).value_or(Value()); }

bool holds(const ScriptItems& items, const ScriptValue& wanted) {
  return std::ranges::any_of(
      items, [&](const ScriptValue& item) { return content(item) == content(wanted); });
}

std::int64_t countOf(const ScriptItems& items) { return static_cast<std::int64_t>(items.size()); }

RC_GTEST_PROP(ModifyList, GivesBackUnchangedWhatHasSettled, ()) {
  const ScriptItems items = settled(*rc::gen::container<ScriptItems>(tests::anyScriptValue()));
  RC_ASSERT(changed(items, {}) == items);
}

RC_GTEST_PROP(ModifyList, ReversesTwiceToTheSame, ()) {
  const ScriptItems items = *anyItems();
  const ScriptItems reversed = changed(items, {{"reversingOrder", kTrue}});
  RC_ASSERT(std::ranges::equal(reversed.rbegin(), reversed.rend(), items.begin(), items.end()));
  RC_ASSERT(changed(reversed, {{"reversingOrder", kTrue}}) == items);
}

RC_GTEST_PROP(ModifyList, MakesUniqueByKeepingFirstOccurrences, ()) {
  const ScriptItems items = *anyItems();
  ScriptItems firsts;
  for (const ScriptValue& item : items) {
    if (!holds(firsts, item)) firsts.push_back(item);
  }
  const ScriptItems unique = changed(items, {{"makingUnique", kTrue}});
  RC_ASSERT(unique == firsts);
  RC_ASSERT(changed(unique, {{"makingUnique", kTrue}}) == unique);
}

RC_GTEST_PROP(ModifyList, PartsTheDistinctItemsByIntersectingAndSubtracting, ()) {
  const ScriptItems items = *anyItems();
  const ScriptItems others = *anyItems();
  ScriptItems common;
  ScriptItems rest;
  for (const ScriptValue& item : changed(items, {{"makingUnique", kTrue}})) {
    (holds(others, item) ? common : rest).push_back(item);
  }
  RC_ASSERT(changed(items, {{"intersectingWithList", ScriptValue::list(others)}}) == common);
  RC_ASSERT(changed(items, {{"subtractingList", ScriptValue::list(others)}}) == rest);
}

RC_GTEST_PROP(ModifyList, FlattensWhatItGrouped, ()) {
  const ScriptItems items = *anyItems();
  const auto size = *rc::gen::inRange<std::size_t>(1, 6);
  const ScriptItems groups =
      changed(items, {{"groupingEvery", integer(static_cast<std::int64_t>(size))}});
  RC_ASSERT(groups.size() == (items.size() + size - 1) / size);
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const std::size_t expected = i + 1 < groups.size() ? size : items.size() - i * size;
    RC_ASSERT(groups[i].items().size() == expected);
  }
  RC_ASSERT(changed(groups, {{"flattening", kTrue}}) == items);
}

RC_GTEST_PROP(ModifyList, FlattensFullyWhateverWasGrouped, ()) {
  const ScriptItems items = *anyItems();
  const ScriptItems flat = changed(items, {{"fullFlattening", kTrue}});
  RC_ASSERT(std::ranges::none_of(flat, &ScriptValue::hasItems));
  RC_ASSERT(changed(flat, {{"fullFlattening", kTrue}}) == flat);
  RC_ASSERT(changed(changed(items, {{"groupingEvery", integer(2)}}), {{"fullFlattening", kTrue}}) ==
            flat);
}

RC_GTEST_PROP(ModifyList, TransposesRectanglesTwiceToTheSame, ()) {
  const ScriptItems rows = *rectangle();
  const ScriptItems columns = changed(rows, {{"swapColsAndRows", kTrue}});
  RC_ASSERT(columns.size() == rows.front().items().size());
  for (const ScriptValue& column : columns) RC_ASSERT(column.items().size() == rows.size());
  RC_ASSERT(changed(columns, {{"xtraColsToRows", kTrue}}) == rows);
}

RC_GTEST_PROP(ModifyList, PadsEveryRowToTheLongest, ()) {
  const ScriptItems rows = *rectangle(true);
  std::size_t longest = 0;
  for (const ScriptValue& row : rows) longest = std::max(longest, row.items().size());
  const ScriptItems padded = changed(rows, {{"addingPadding", integer(99)}});
  RC_ASSERT(padded.size() == rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ScriptItems expected(rows[i].items().begin(), rows[i].items().end());
    expected.resize(longest, integer(99));
    RC_ASSERT(padded[i] == ScriptValue::list(expected));
  }
}

RC_GTEST_PROP(ModifyList, DeletesEveryPositionNamedFromEitherEnd, ()) {
  const ScriptItems items = *anyItems();
  ScriptItems indexes;
  ScriptItems kept;
  for (std::int64_t i = 0; i < countOf(items); ++i) {
    if (*rc::gen::arbitrary<bool>()) {
      kept.push_back(items[static_cast<std::size_t>(i)]);
    } else {
      indexes.push_back(integer(*rc::gen::arbitrary<bool>() ? i + 1 : i - countOf(items)));
    }
  }
  std::ranges::reverse(indexes);
  RC_ASSERT(changed(items, {{"deletingIndexes", ScriptValue::list(indexes)}}) == kept);
}

RC_GTEST_PROP(ModifyList, DeletesWhatItInserted, ()) {
  const ScriptItems items = *anyItems();
  const auto before = *rc::gen::inRange<std::int64_t>(1, countOf(items) + 2);
  const ScriptItems inserted =
      changed(items, {{"insertingItem", *fewItems()}, {"beforeIndex", integer(before)}});
  RC_ASSERT(inserted.size() == items.size() + 1);
  RC_ASSERT(changed(inserted, {{"deletingIndexes", integer(before)}}) == items);
}

RC_GTEST_PROP(ModifyList, InsertsItemsAsOneRun, ()) {
  ScriptItems items = *anyItems();
  const ScriptItems run = *rc::gen::container<ScriptItems>(fewItems());
  const auto before = *rc::gen::inRange<std::int64_t>(1, countOf(items) + 2);
  const ScriptItems inserted = changed(
      items, {{"insertingItems", ScriptValue::list(run)}, {"beforeIndex", integer(before)}});
  items.insert(items.begin() + (before - 1), run.begin(), run.end());
  RC_ASSERT(inserted == items);
}

RC_GTEST_PROP(ModifyList, MovesAnItemBeforeAnother, ()) {
  ScriptItems items = *rc::gen::nonEmpty(anyItems());
  const auto from = *rc::gen::inRange<std::int64_t>(0, countOf(items));
  const auto to = *rc::gen::inRange<std::int64_t>(0, countOf(items) + 1);
  const ScriptItems moved =
      changed(items, {{"movingIndex", integer(from + 1)}, {"beforeIndex", integer(to + 1)}});
  const ScriptValue item = items[static_cast<std::size_t>(from)];
  if (from <= to) {
    items.insert(items.begin() + to, item);
    items.erase(items.begin() + from);
  } else {
    items.erase(items.begin() + from);
    items.insert(items.begin() + to, item);
  }
  RC_ASSERT(moved == items);
}

RC_GTEST_PROP(ModifyList, SwapsTwoItemsFromEitherEnd, ()) {
  ScriptItems items = *rc::gen::nonEmpty(anyItems());
  const auto a = *rc::gen::inRange<std::int64_t>(0, countOf(items));
  const auto b = *rc::gen::inRange<std::int64_t>(0, countOf(items));
  const ScriptValue indexes = ScriptValue::list({integer(a + 1), integer(b - countOf(items))});
  const ScriptItems swapped = changed(items, {{"swappingIndexes", indexes}});
  RC_ASSERT(changed(swapped, {{"swappingIndexes", indexes}}) == items);
  std::swap(items[static_cast<std::size_t>(a)], items[static_cast<std::size_t>(b)]);
  RC_ASSERT(swapped == items);
}

RC_GTEST_PROP(ModifyList, RemovesBlanksWhereverAndTrimsThemAtTheEnd, ()) {
  const auto isBlank = [](const ScriptValue& item) {
    return SKWModifyList::itemIsAnEmpty(content(item));
  };
  ScriptItems items = *anyItems();
  const ScriptItems full = changed(items, {{"removingBlanks", kTrue}});
  const ScriptItems trimmed = changed(items, {{"trimmingBlanks", kTrue}});
  RC_ASSERT(std::ranges::none_of(full, isBlank));
  RC_ASSERT(static_cast<std::ptrdiff_t>(items.size() - full.size()) ==
            std::ranges::count_if(items, isBlank));
  const bool endsInBlank = !trimmed.empty() && isBlank(trimmed.back());
  RC_ASSERT_FALSE(endsInBlank);
  RC_ASSERT(std::ranges::all_of(items.begin() + countOf(trimmed), items.end(), isBlank));
  items.resize(trimmed.size());
  RC_ASSERT(trimmed == items);
}

// A change with what it may be given, so that it often succeeds on a short list.
struct Change {
  std::string key;
  rc::Gen<ScriptValue> argument;
};

std::vector<Change> changesInOrder() {
  const auto yes = rc::gen::just(kTrue);
  const auto index = rc::gen::map(rc::gen::inRange(-3, 5), [](int i) { return integer(i); });
  const auto list = asList(rc::gen::container<ScriptItems>(fewItems()));
  const auto indexes = asList(rc::gen::container<ScriptItems>(2, index));
  return {{"addingPadding", fewItems()},
          {"swapColsAndRows", yes},
          {"deletingIndexes", rc::gen::oneOf(index, indexes)},
          {"flattening", yes},
          {"fullFlattening", yes},
          {"groupingEvery", index},
          {"insertingItem", fewItems()},
          {"insertingItems", list},
          {"intersectingWithList", list},
          {"makingUnique", yes},
          {"mergingIndexes", indexes},
          {"movingIndex", index},
          {"removingBlanks", yes},
          {"replacingNullsWith", fewItems()},
          {"subtractingList", list},
          {"swappingIndexes", indexes},
          {"trimmingBlanks", yes},
          {"xtraColsToRows", yes},
          {"reversingOrder", yes}};
}

RC_GTEST_PROP(ModifyList, MakesManyChangesAsOneAfterAnother, ()) {
  const auto items = *rc::gen::oneOf(rc::gen::container<ScriptItems>(fewItems()), rectangle());
  const EventArguments place = {{"beforeIndex", integer(*rc::gen::element(1, 1, 1, 2, -1))}};
  EventArguments all = place;
  core::Reply last = replyTo(ScriptValue::list(items), {});
  bool isFlattened = false;
  for (const Change& change : changesInOrder()) {
    const bool isAsked = *rc::gen::weightedElement<bool>({{4, false}, {1, true}});
    if (!isAsked) continue;
    if (isFlattened && change.key == "xtraColsToRows") continue;
    isFlattened = isFlattened || change.key == "flattening" || change.key == "fullFlattening";
    EventArguments alone = place;
    alone.emplace_back(change.key, *change.argument);
    all.push_back(alone.back());
    if (std::holds_alternative<core::ScriptError>(last)) continue;
    last = replyTo(*std::get<std::optional<ScriptValue>>(last), alone);
  }
  std::ranges::reverse(all);
  RC_ASSERT(replyTo(ScriptValue::list(items), all) == last);
}

RC_GTEST_PROP(ModifyList, ChangesSublistsAsItChangesListsAlone, ()) {
  const ScriptItems lists = *rectangle(true);
  EventArguments arguments;
  for (const Change& change : changesInOrder()) {
    if (*rc::gen::weightedElement<bool>({{6, false}, {1, true}})) {
      arguments.emplace_back(change.key, *change.argument);
    }
  }
  core::Reply expected;
  ScriptItems results;
  for (const ScriptValue& list : lists) {
    expected = replyTo(list, arguments);
    if (std::holds_alternative<core::ScriptError>(expected)) break;
    results.push_back(*std::get<std::optional<ScriptValue>>(expected));
  }
  if (results.size() == lists.size()) expected = std::optional(ScriptValue::list(results));
  arguments.emplace_back("doSublists", kTrue);
  RC_ASSERT(replyTo(ScriptValue::list(lists), arguments) == expected);
}

// Whatever is given: a list, or an error of the command or of the scripting layer.
RC_GTEST_PROP(ModifyList, AnswersWhateverIsGiven, ()) {
  std::vector<Change> changes = changesInOrder();
  changes.push_back({"insertingInOrder", asList(anyItems())});
  changes.push_back({"beforeIndex", rc::gen::map(rc::gen::inRange(-4, 6), integer)});
  changes.push_back({"doSublists", rc::gen::just(kTrue)});
  EventArguments arguments;
  for (const Change& change : changes) {
    switch (*rc::gen::inRange(0, 8)) {
      case 0:
        arguments.emplace_back(change.key, *change.argument);
        break;
      case 1:
        if (*rc::gen::arbitrary<bool>()) {
          arguments.emplace_back(change.key, *tests::anyScriptValue());
        }
        break;
      default:
        break;
    }
  }
  const auto list = *rc::gen::oneOf(
      asList(rc::gen::container<ScriptItems>(tests::anyScriptValue())), tests::anyScriptValue());
  // A column of another length is never answered, which nobody needs to wait for.
  constexpr std::chrono::milliseconds kSoon(50);
  const core::Reply reply = replyTo(list, arguments, kSoon);
  if (const auto* error = std::get_if<core::ScriptError>(&reply)) {
    const int number = error->number();
    RC_ASSERT((number >= 1121 && number <= 1129) || (number >= 1281 && number <= 1288) ||
              (number >= 1383 && number <= 1388) || number == -1700 || number == -1712);
    RC_ASSERT(!error->message().empty());
  } else {
    RC_ASSERT(std::get<std::optional<ScriptValue>>(reply).value().hasItems());
  }
}

}  // namespace
}  // namespace skerrow::lists
