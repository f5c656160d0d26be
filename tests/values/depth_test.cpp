#include "values/depth.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/building.h"
#include "values/record.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow {
namespace {

using namespace literals;

// One level more around a value, in each of the ways there are.
Value inList(Value value) { return std::vector<Value>{std::move(value)}; }
Value inRecord(Value value) { return Record{{u"a", std::move(value)}}; }
Value asKey(Value value) { return Record{{std::move(value), u"a"}}; }
ScriptValue inScriptList(ScriptValue value) { return ScriptValue::list({std::move(value)}); }
ScriptValue inLabelledRecord(ScriptValue value) {
  return tests::labelledRecord({{u"a", std::move(value)}});
}
ScriptValue inScriptRecord(ScriptValue value) {
  return ScriptValue::record("reco"_code, {{"pnam"_code, std::move(value)}});
}

template <class Nested>
Nested nested(Nested value, Nested (*wrap)(Nested), std::uint32_t times) {
  for (std::uint32_t i = 0; i < times; ++i) value = wrap(std::move(value));
  return value;
}

TEST(Depth, CountsOneForAListAndTwoForARecordOfValues) {
  EXPECT_EQ(Value().depth(), 0U);
  EXPECT_EQ(Value(u"text").depth(), 0U);
  EXPECT_EQ(Value(std::vector<Value>{}).depth(), 1U);
  EXPECT_EQ(Value(Record{}).depth(), 2U);
  EXPECT_EQ(inList(inRecord(inList(Value()))).depth(), 4U);
  EXPECT_EQ(asKey(inList(Value())).depth(), 3U);
  EXPECT_EQ(Value(std::vector<Value>{inList(Value()), Value(), inRecord(Value())}).depth(), 3U);
}

TEST(Depth, CountsOneForAListAndTwoForARecordOfScriptValues) {
  EXPECT_EQ(ScriptValue().depth(), 0U);
  EXPECT_EQ(ScriptValue::list({}).depth(), 1U);
  EXPECT_EQ(ScriptValue::record("reco"_code, {}).depth(), 2U);
  EXPECT_EQ(inScriptList(inScriptRecord(ScriptValue())).depth(), 3U);
}

TEST(Depth, TheListOfUserFieldsIsOneOfTheTwoOfARecord) {
  EXPECT_EQ(tests::scriptRecord({}).depth(), 2U);
  EXPECT_EQ(tests::scriptRecord({ScriptValue(), ScriptValue::list({})}).depth(), 3U);
  EXPECT_EQ(tests::scriptRecord({ScriptValue(), tests::scriptRecord({})}).depth(), 4U);
  EXPECT_EQ(inScriptRecord(ScriptValue::list({})).depth(), 3U);
  EXPECT_EQ(inLabelledRecord(ScriptValue::list({})).depth(), 3U);
  EXPECT_EQ(ScriptValue::record("reco"_code, {{"usrf"_code, ScriptValue()}}).depth(), 2U);
}

TEST(Depth, ARawValueIsAsDeepAsWhatItHolds) {
  EXPECT_EQ(Value(ScriptValue()).depth(), 0U);
  EXPECT_EQ(Value(inScriptList(ScriptValue::list({}))).depth(), 2U);
  EXPECT_EQ(inList(inScriptList(ScriptValue())).depth(), 2U);
}

TEST(Depth, TheDeepestThatMayBeIsMadeAndOneMoreIsRefused) {
  const Value list = nested(Value(), inList, kMaximumDepth);
  EXPECT_EQ(list.depth(), kMaximumDepth);
  EXPECT_THROW(inList(list), NestingTooDeep);
  EXPECT_THROW(inRecord(list), NestingTooDeep);

  const Value record = nested(Value(), inRecord, kMaximumDepth / 2);
  EXPECT_EQ(record.depth(), kMaximumDepth);
  EXPECT_THROW(inList(record), NestingTooDeep);
  EXPECT_THROW(inRecord(record), NestingTooDeep);
  EXPECT_THROW(asKey(record), NestingTooDeep);

  const ScriptValue scriptList = nested(ScriptValue(), inScriptList, kMaximumDepth);
  EXPECT_EQ(scriptList.depth(), kMaximumDepth);
  EXPECT_THROW(inScriptList(scriptList), NestingTooDeep);
  EXPECT_THROW(inScriptRecord(scriptList), NestingTooDeep);
  EXPECT_THROW(inList(scriptList), NestingTooDeep);

  const ScriptValue scriptRecord = nested(ScriptValue(), inScriptRecord, kMaximumDepth / 2);
  EXPECT_EQ(scriptRecord.depth(), kMaximumDepth);
  EXPECT_THROW(inScriptRecord(scriptRecord), NestingTooDeep);
  EXPECT_THROW(inLabelledRecord(scriptRecord), NestingTooDeep);
  const ScriptValue labelled = nested(ScriptValue(), inLabelledRecord, kMaximumDepth / 2);
  EXPECT_EQ(labelled.depth(), kMaximumDepth);
  EXPECT_EQ(labelled.fields().size(), 1U);
  EXPECT_THROW(inLabelledRecord(labelled), NestingTooDeep);
}

TEST(Depth, ARecordThatWouldBeOneTooDeepIsRefusedAsWell) {
  const Value list = nested(Value(), inList, kMaximumDepth - 1);
  EXPECT_THROW(inRecord(list), NestingTooDeep);
  EXPECT_NO_THROW(inList(list));
}

TEST(Depth, TheDeepestValuesCanBeComparedHashedCopiedAndDestroyed) {
  const Value one = nested(Value(u"core"), inList, kMaximumDepth);
  const Value other = nested(Value(u"core"), inList, kMaximumDepth);
  EXPECT_TRUE(one == other);
  EXPECT_EQ(one.hash(), other.hash());
  EXPECT_FALSE(one == nested(Value(u"else"), inList, kMaximumDepth));
  const Value record = nested(Value(u"core"), inRecord, kMaximumDepth / 2);
  EXPECT_TRUE(record == nested(Value(u"core"), inRecord, kMaximumDepth / 2));
  EXPECT_TRUE(nested(ScriptValue(), inScriptRecord, kMaximumDepth / 2) ==
              nested(ScriptValue(), inScriptRecord, kMaximumDepth / 2));
  EXPECT_TRUE(nested(ScriptValue(), inLabelledRecord, kMaximumDepth / 2) ==
              nested(ScriptValue(), inLabelledRecord, kMaximumDepth / 2));
}

TEST(Depth, TheRefusalNamesTheLimit) {
  EXPECT_STREQ(NestingTooDeep().what(),
               "Lists and records can be nested at most 4096 deep, where a record counts twice.");
}

}  // namespace
}  // namespace skerrow
