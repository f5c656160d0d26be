// Laws that the commands for records, and looking in lists, keep for all values.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/lists/command_results.h"
#include "values/record.h"

namespace skerrow::lists {
namespace {

enum class Merging : std::uint32_t {
  combine = 0x68E56531,
  combineAndJoin,
  add,
  addAndJoin,
  subtract,
};

rc::Gen<Merging> anyMerging() {
  return rc::gen::element(Merging::combine, Merging::combineAndJoin, Merging::add,
                          Merging::addAndJoin, Merging::subtract);
}

Value merged(const Items& records, Merging merging) {
  return resultOf("SKWMergeRecords", records,
                  {{"mergeType", Number::unsigned32(static_cast<std::uint32_t>(merging))}});
}

Items joined(std::span<const Value> a, std::span<const Value> b) {
  Items items(a.begin(), a.end());
  items.insert(items.end(), b.begin(), b.end());
  return items;
}

// The rules of merging as they are told, one pair of records at a time.
Value naivelyMerged(const Value& first, const Value& second, Merging merging) {
  if (merging == Merging::subtract) return first;
  Record result = first.record();
  for (const Record::Field& field : second.record().fields()) {
    const Value* found = first.record().find(field.key);
    if (found == nullptr) {
      result.set(field.key, field.value);
      continue;
    }
    const Value mine = *found;
    const Value& other = field.value;
    if (mine.isRecord() && other.isRecord()) {
      result.set(field.key, naivelyMerged(mine, other, merging));
    } else if (merging == Merging::combine || mine == other) {
      continue;
    } else if (merging == Merging::add || !mine.isList()) {
      result.set(field.key, Items{mine, other});
    } else {
      result.set(field.key,
                 joined(mine.items(), other.isList() ? other.items() : std::span(&other, 1)));
    }
  }
  return result;
}

Items settledRecords(std::size_t fewest, std::size_t most) {
  Items records(*rc::gen::inRange(fewest, most + 1));
  for (Value& record : records) record = settled(*fewRecords());
  return records;
}

RC_GTEST_PROP(MergeRecords, MergesOneRecordAfterTheOther, ()) {
  const Items records = settledRecords(2, 4);
  const Merging merging = *anyMerging();
  Value expected = records.front();
  for (std::size_t i = 1; i < records.size(); ++i) {
    expected = naivelyMerged(expected, records[i], merging);
  }
  RC_ASSERT(merged(records, merging) == expected);
}

RC_GTEST_PROP(MergeRecords, ChangesNothingForEqualRecords, ()) {
  const Value record = settled(*fewRecords());
  RC_ASSERT(isExactly(merged({record, tests::rebuilt(record)}, *anyMerging()), record));
}

RC_GTEST_PROP(MergeRecords, KeepsTheFirstRecordWhenCombining, ()) {
  const Items records = settledRecords(2, 3);
  const Value result = merged(records, Merging::combine);
  for (const Record::Field& field : records.front().record().fields()) {
    const Value* value = result.record().find(field.key);
    RC_ASSERT(value != nullptr);
    if (!field.value.isRecord()) RC_ASSERT(*value == field.value);
  }
}

RC_GTEST_PROP(MergeRecords, JoinsInTheSameWayUnderBothNames, ()) {
  const Items records = settledRecords(2, 4);
  RC_ASSERT(
      isExactly(merged(records, Merging::combineAndJoin), merged(records, Merging::addAndJoin)));
}

// The entries of a record whose counterparts in another do not cover them.
Value naivelyWithout(const Value& record, const Value& other, bool isByLabel) {
  Record rest;
  for (const Record::Field& field : record.record().fields()) {
    const bool isCovered =
        std::ranges::any_of(other.record().fields(), [&](const Record::Field& counterpart) {
          return counterpart.key == field.key && (isByLabel || counterpart.value == field.value);
        });
    if (!isCovered) rest.set(field.key, field.value);
  }
  return rest;
}

RC_GTEST_PROP(CompareRecord, LeavesWhatTheOtherDoesNotCover, ()) {
  const Value first = settled(*fewRecords());
  const Value second = settled(*fewRecords());
  const bool isByLabel = *rc::gen::arbitrary<bool>();
  const Value rests = resultOf("SKWCompareRecord", first,
                               {{"toRecord", second}, {"inRecords", boolean(isByLabel)}});
  RC_ASSERT(rests == Value(Items{naivelyWithout(first, second, isByLabel),
                                 naivelyWithout(second, first, isByLabel)}));
  const Value swapped = resultOf("SKWCompareRecord", second,
                                 {{"toRecord", first}, {"inRecords", boolean(isByLabel)}});
  RC_ASSERT(isExactly(swapped, Items{rests.items()[1], rests.items()[0]}));
}

RC_GTEST_PROP(CompareRecord, LeavesNothingOfEqualRecords, ()) {
  const Value record = settled(*fewRecords());
  RC_ASSERT(resultOf("SKWCompareRecord", record, {{"toRecord", tests::rebuilt(record)}}) ==
            Value(Items{Record(), Record()}));
}

RC_GTEST_PROP(AllLabelsOfRecord, FindsTheLabelsOfEachValueInOrder, ()) {
  const Value record = settled(*fewRecords());
  const Value values = settled(*listOf(fewValues()));
  Items all;
  for (const Record::Field& field : record.record().fields()) all.push_back(field.key);
  RC_ASSERT(isExactly(resultOf("SKWAllLabelsOfRecord", record), all));
  Items expected;
  for (const Value& value : values.items()) {
    for (const Record::Field& field : record.record().fields()) {
      if (field.value == value) expected.push_back(field.key);
    }
  }
  RC_ASSERT(isExactly(resultOf("SKWAllLabelsOfRecord", record, {{"forValues", values}}), expected));
}

// All values under a label: first that of the record itself, then those deeper.
void naiveWalk(const Value& label, const Value& object, Items& found) {
  if (object.isList()) {
    for (const Value& item : object.items()) naiveWalk(label, item, found);
  }
  if (!object.isRecord()) return;
  for (const Record::Field& field : object.record().fields()) {
    if (field.key == label) found.push_back(field.value);
  }
  for (const Record::Field& field : object.record().fields()) {
    naiveWalk(label, field.value, found);
  }
}

RC_GTEST_PROP(ValueForLabel, FindsWhatAWalkThroughEachRecordFinds, ()) {
  const Items records = settledRecords(0, 4);
  const Value label = Value(*rc::gen::element<std::u16string>(u"a", u"\u00E9", u""));
  Items flat;
  Items deep;
  for (const Value& record : records) {
    const Value* value = record.record().find(label);
    flat.push_back(value == nullptr ? Value() : *value);
    Items found;
    naiveWalk(label, record, found);
    deep.emplace_back(std::move(found));
  }
  RC_ASSERT(isExactly(resultOf("SKWValueForLabel", label, {{"inRecords", records}}), flat));
  RC_ASSERT(isExactly(
      resultOf("SKWValueForLabel", label, {{"inRecords", records}, {"doRecursion", boolean(true)}}),
      deep));
}

RC_GTEST_PROP(ValuesForLabel, FindsForSeveralLabelsWhatOneFindsAlone, ()) {
  const Items records = settledRecords(0, 4);
  const auto labels = *rc::gen::resize(
      4, rc::gen::container<Items>(rc::gen::element<Value>(u"a", u"b", u"\u00E9", u"")));
  std::vector<Items> rows(records.size());
  for (const Value& label : labels) {
    const Value column = resultOf("SKWValueForLabel", label, {{"inRecords", records}});
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].push_back(column.items()[i]);
  }
  const Items expected(rows.begin(), rows.end());
  RC_ASSERT(isExactly(resultOf("SKWValuesForLabel", labels, {{"inRecords", records}}), expected));
}

RC_GTEST_PROP(LinkValuesWithLabels, MakesRecordsThatGiveTheValuesBack, ()) {
  const auto texts = *rc::gen::unique<std::vector<std::u16string>>(fewTexts());
  Items labels;
  Items values;
  for (const std::u16string& text : texts) {
    labels.emplace_back(text);
    values.push_back(settled(*fewValues()));
  }
  const Value record = resultOf("SKWLinkValuesWithLabels", values, {{"withLabels", labels}});
  RC_ASSERT(isExactly(resultOf("SKWAllLabelsOfRecord", record), labels));
  RC_ASSERT(isExactly(resultOf("SKWValuesForLabel", labels, {{"inRecords", Items{record}}}),
                      Items{Value(values)}));
  RC_ASSERT(isExactly(
      resultOf("SKWLinkValueListsWithLabels", Items{values, values}, {{"withLabels", labels}}),
      Items{record, record}));
}

RC_GTEST_PROP(RemoveEntriesFromRecord, LeavesNothingThatLinkingAdded, ()) {
  const Value record = settled(*fewRecords());
  const auto labels =
      *rc::gen::container<Items>(rc::gen::element<Value>(u"a", u"b", u"\u00E9", u"new"));
  const Value linked =
      resultOf("SKWLinkValuesWithLabels", labels, {{"withLabels", labels}, {"inRecord", record}});
  const auto removed = [&](const Value& from) {
    return resultOf("SKWRemoveEntriesFromRecord", labels, {{"inRecords", Items{from}}});
  };
  RC_ASSERT(isExactly(removed(linked), removed(record)));
  for (const Value& label : labels) {
    RC_ASSERT(removed(record).items()[0].record().find(label) == nullptr);
  }
}

RC_GTEST_PROP(LookInListFor, FindsWhatANaiveScanFinds, ()) {
  const Items items = itemsOf(
      settled(*rc::gen::suchThat(rc::gen::oneOf(listOf(fewValues()), listOf(tests::anyValue())),
                                 [](const Value& list) { return !list.items().empty(); })));
  Items targets = itemsOf(settled(*rc::gen::resize(3, listOf(fewValues()))));
  if (*rc::gen::arbitrary<bool>()) targets.push_back(*rc::gen::elementOf(items));
  const bool isInverted = *rc::gen::arbitrary<bool>();
  const bool isOnlyFirst = *rc::gen::arbitrary<bool>();
  Items expected;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const bool isFound = std::ranges::find(targets, items[i]) != targets.end();
    if (isFound != isInverted) expected.push_back(integer(i + 1));
    if (isOnlyFirst && !expected.empty()) break;
  }
  NamedValues arguments = {{"matchingItems", targets},
                           {"invertingValue", boolean(isInverted)},
                           {"onlyFirst", boolean(isOnlyFirst)}};
  RC_ASSERT(isExactly(resultOf("SKWLookInListFor", items, arguments), expected));
  arguments.emplace_back("doSublists", boolean(true));
  RC_ASSERT(isExactly(resultOf("SKWLookInListFor", Items{items, Items()}, arguments),
                      Items{expected, Items()}));
  if (targets.size() == 1) {
    arguments[0] = {"matchingItem", targets[0]};
    arguments.pop_back();
    RC_ASSERT(isExactly(resultOf("SKWLookInListFor", items, arguments), expected));
  }
}

}  // namespace
}  // namespace skerrow::lists
