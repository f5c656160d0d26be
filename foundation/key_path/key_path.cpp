#include "foundation/key_path/key_path.h"

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/key_path/collection_operator.h"
#include "foundation/number/number_text.h"
#include "foundation/text/case_mapping.h"
#include "foundation/text/quoted_text.h"
#include "values/record.h"

namespace skerrow::foundation {

enum class KeyPath::Operator : std::uint8_t {
  none,
  count,
  sum,
  average,
  least,
  greatest,
  unionOfItems,
  distinctUnionOfItems,
  unionOfLists,
  distinctUnionOfLists,
};

struct KeyPath::Failure {
  enum class Kind : std::uint8_t {
    noKeys,       // a value of this kind has no keys
    noList,       // the operator needs a list
    noNumber,     // an item is no number
    noOrder,      // items cannot be compared
    noInnerList,  // an item is no list
    noOperator,   // a key that begins with @ and is no operator
  };
  Kind kind = Kind::noKeys;
  std::size_t index = 0;
  skerrow::Kind valueKind = skerrow::Kind::null;
};

struct KeyPath::Walk {
  StepBudget& steps;
  Failure failure;
};

namespace {

constinit const Value kNull{};

// What it costs to make a list and each item of it, beside the keys that lead there.
constexpr std::size_t kStepsOfList = 16;
constexpr std::size_t kStepsOfItem = 4;

std::string nameOf(Kind kind) {
  switch (kind) {
    case Kind::null:
      return "A missing value";
    case Kind::number:
      return "A number";
    case Kind::date:
      return "A date";
    case Kind::text:
      return "A text";
    case Kind::url:
      return "A URL";
    case Kind::list:
      return "A list";
    case Kind::record:
      return "A record";
    case Kind::data:
    case Kind::raw:
      return "Data";
    case Kind::error:
    case Kind::opaque:
      break;
  }
  return "An object";
}

// True for a text that begins with Y, y, T, t or a digit other than 0, after white
// space, a sign and zeros.
Value truthOf(std::u16string_view text) {
  const std::size_t space = text.find_first_not_of(u" \t\n\r");
  text.remove_prefix(std::min(space, text.size()));
  if (!text.empty() && (text.front() == u'+' || text.front() == u'-')) text.remove_prefix(1);
  text.remove_prefix(std::min(text.find_first_not_of(u'0'), text.size()));
  return Number::boolean(!text.empty() &&
                         std::u16string_view(u"YyTt123456789").find(text.front()) !=
                             std::u16string_view::npos);
}

}  // namespace

KeyPath::Operator KeyPath::operatorNamed(std::u16string_view key) {
  struct Entry {
    std::u16string_view name;
    Operator collectionOperator;
  };
  static constexpr std::array kOperators = {
      Entry{u"@count", Operator::count},
      Entry{u"@sum", Operator::sum},
      Entry{u"@avg", Operator::average},
      Entry{u"@min", Operator::least},
      Entry{u"@max", Operator::greatest},
      Entry{u"@unionOfObjects", Operator::unionOfItems},
      Entry{u"@distinctUnionOfObjects", Operator::distinctUnionOfItems},
      Entry{u"@unionOfArrays", Operator::unionOfLists},
      Entry{u"@distinctUnionOfArrays", Operator::distinctUnionOfLists},
      Entry{u"@unionOfSets", Operator::distinctUnionOfLists},
      Entry{u"@distinctUnionOfSets", Operator::distinctUnionOfLists},
  };
  const auto* const found = std::ranges::find(kOperators, key, &Entry::name);
  return found == kOperators.end() ? Operator::none : found->collectionOperator;
}

KeyPath::KeyPath(std::u16string_view path, TextKeys textKeys) : textKeys_(textKeys) {
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find(u'.', begin), path.size());
    const std::u16string_view key = path.substr(begin, end - begin);
    if (keys_.size() == kMaximumKeys) {
      throw KeyPathError("A key path can have at most " + std::to_string(kMaximumKeys) + " keys.");
    }
    keys_.push_back({Value(key), operatorNamed(key), key == u"self" || key == u"SELF"});
    begin = end + 1;
  }
  const Key& last = keys_.back();
  if (last.collectionOperator != Operator::none && last.collectionOperator != Operator::count) {
    throw KeyPathError("The collection operator " + quoted(last.name.text()) +
                       " needs a key behind it; “self” stands for numbers and texts themselves.");
  }
}

Value KeyPath::valueIn(const Value& item, StepBudget steps) const {
  Value room;
  Walk walk{steps, {}};
  const Value* const found = follow(0, item, room, walk);
  if (found == nullptr) throw KeyPathError(describe(walk.failure));
  return *found;
}

const Value* KeyPath::find(const Value& item, Value& room, StepBudget& steps) const {
  Walk walk{steps, {}};
  return follow(0, item, room, walk);
}

// Walks the keys from one on. A record's value is found where it lies; only what
// has to be made anew goes through `room`.
const Value* KeyPath::follow(std::size_t index, const Value& from, Value& room, Walk& walk) const {
  const Value* current = &from;
  Value made;
  for (; index < keys_.size() && !current->isNull(); ++index) {
    const Key& key = keys_[index];
    walk.steps.spend(1);
    walk.failure.index = index;
    if (current->isRecord() && key.collectionOperator == Operator::none) {
      const Value* const found = current->record().find(key.name);
      current = found != nullptr ? found : &kNull;
      continue;
    }
    // An operator takes the rest of the path, and so does every item of a list.
    if (key.collectionOperator != Operator::none) {
      if (!apply(index, *current, made, walk)) return nullptr;
      index = keys_.size();
    } else if (current->isList()) {
      if (key.name.text().starts_with(u'@')) {
        walk.failure.kind = Failure::Kind::noOperator;
        return nullptr;
      }
      if (!followItems(index, *current, made, walk)) return nullptr;
      index = keys_.size();
    } else if (!lookUp(key, *current, made, walk)) {
      return nullptr;
    }
    // What `current` lay in may go now, as its successor has been made.
    room = std::exchange(made, Value());
    current = &room;
  }
  return current;
}

// What the keys from one on give for every item of a list.
bool KeyPath::followItems(std::size_t index, const Value& list, Value& into, Walk& walk) const {
  walk.steps.spend(kStepsOfList + kStepsOfItem * list.items().size());
  std::vector<Value> found(list.items().size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    Value room;
    const Value* const value = follow(index, list.items()[i], room, walk);
    if (value == nullptr) return false;
    found[i] = *value;
  }
  into = Value(std::move(found));
  return true;
}

// The value of a key in something that is neither a record nor a list.
bool KeyPath::lookUp(const Key& key, const Value& from, Value& into, Walk& walk) const {
  if (key.isSelf) {
    into = from;
    return true;
  }
  if (textKeys_ == TextKeys::published && from.isText()) {
    walk.steps.spendOnText(from.text().size());
    if (lookUpInText(key, from, into)) return true;
  }
  walk.failure.kind = Failure::Kind::noKeys;
  walk.failure.valueKind = from.kind();
  return false;
}

bool KeyPath::lookUpInText(const Key& key, const Value& text, Value& into) const {
  const std::u16string_view units = text.text();
  const std::u16string_view name = key.name.text();
  if (name == u"length") {
    into = Number::signed64(static_cast<std::int64_t>(units.size()));
  } else if (name == u"uppercaseString") {
    into = Value(uppercased(units));
  } else if (name == u"lowercaseString") {
    into = Value(lowercased(units));
  } else if (name == u"intValue" || name == u"integerValue" || name == u"longLongValue") {
    into = Number::signed64(numberAtFront(units).asInteger());
  } else if (name == u"floatValue" || name == u"doubleValue") {
    into = Number::real(numberAtFront(units).asReal());
  } else if (name == u"boolValue") {
    into = truthOf(units);
  } else {
    return false;
  }
  return true;
}

bool KeyPath::apply(std::size_t index, const Value& from, Value& into, Walk& walk) const {
  const Operator collectionOperator = keys_[index].collectionOperator;
  if (collectionOperator == Operator::count && (from.isList() || from.isRecord())) {
    const std::size_t count = from.isList() ? from.items().size() : from.record().fieldCount();
    into = Number::signed64(static_cast<std::int64_t>(count));
    return true;
  }
  if (!from.isList()) {
    walk.failure = {Failure::Kind::noList, index, from.kind()};
    return false;
  }

  // The values to operate on.
  Value rest;
  if (!followItems(index + 1, from, rest, walk)) return false;
  std::vector<Value> found = std::move(rest).takeItems();
  walk.failure.index = index;

  const auto number = [&](std::optional<double> result) {
    walk.failure.kind = Failure::Kind::noNumber;
    if (result) into = Number::real(*result);
    return result.has_value();
  };
  const auto extreme = [&](Extreme which) {
    const ExtremeItem item = extremeOf(which, found);
    walk.failure.kind = Failure::Kind::noOrder;
    if (item.isComparable) into = item.item != nullptr ? *item.item : Value();
    return item.isComparable;
  };
  switch (collectionOperator) {
    case Operator::sum:
      return number(sumOf(found));
    case Operator::average:
      return number(averageOf(found));
    case Operator::least:
      return extreme(Extreme::least);
    case Operator::greatest:
      return extreme(Extreme::greatest);
    default:
      return applyUnion(index, std::move(found), into, walk);
  }
}

bool KeyPath::applyUnion(std::size_t index, std::vector<Value> found, Value& into,
                         Walk& walk) const {
  const Operator collectionOperator = keys_[index].collectionOperator;
  if (collectionOperator == Operator::unionOfLists ||
      collectionOperator == Operator::distinctUnionOfLists) {
    std::vector<Value> joined;
    for (const Value& list : found) {
      if (list.isNull()) continue;
      if (!list.isList()) {
        walk.failure = {Failure::Kind::noInnerList, index, list.kind()};
        return false;
      }
      walk.steps.spend(kStepsOfItem * list.items().size());
      joined.insert(joined.end(), list.items().begin(), list.items().end());
    }
    found = std::move(joined);
  }
  if (collectionOperator == Operator::distinctUnionOfItems ||
      collectionOperator == Operator::distinctUnionOfLists) {
    for (const Value& value : found) walk.steps.spendOnContent(value);
    found = distinct(found);
  }
  into = Value(std::move(found));
  return true;
}

std::string KeyPath::describe(const Failure& failure) const {
  const std::string key = quoted(keys_[failure.index].name.text());
  switch (failure.kind) {
    case Failure::Kind::noKeys:
      return nameOf(failure.valueKind) + " has no value for the key " + key + ".";
    case Failure::Kind::noList:
      return nameOf(failure.valueKind) + " is no list, so the collection operator " + key +
             " cannot be applied to it.";
    case Failure::Kind::noNumber:
      return "The collection operator " + key + " found a value that is not a number.";
    case Failure::Kind::noOrder:
      return "The collection operator " + key + " found values that cannot be compared.";
    case Failure::Kind::noInnerList:
      return nameOf(failure.valueKind) + " is no list, and the collection operator " + key +
             " needs a list of lists.";
    case Failure::Kind::noOperator:
      return "There is no collection operator " + key + ".";
  }
  return {};
}

}  // namespace skerrow::foundation
