// SKWMergeRecords: several records in one, in one of five ways that differ in what
// becomes of labels that more than one of them has.

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "argument_keys/SKWMergeRecords.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "lists/list_input.h"
#include "values/keys.h"
#include "values/record.h"
#include "work/stopping.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWMergeRecords;
using core::ErrorEntry;
using core::ScriptError;
using Items = std::vector<Value>;

constexpr ErrorEntry kTooFew = {1401, "List must contain at least two records."};
constexpr ErrorEntry kNotARecord = {1402, "One of the items in the list is not a record."};

enum class MergeType : std::uint32_t {
  mergeCombine = 0x68E56531,
  mergeCombineAndJoin = 0x68E56532,
  mergeAdd = 0x68E56533,
  mergeAddAndJoin = 0x68E56534,  // kept: the same as mergeCombineAndJoin
  mergeSubtract = 0x68E56535,
};

// A record that grows as others are merged into it. Values that become lists or
// are records themselves are held open until the end, so that merging many
// records costs no more than they hold.
class GrowingRecord {
 public:
  explicit GrowingRecord(const Record& record)
      : labels_(record.keys()), held_(record.values().begin(), record.values().end()) {}

  void merge(const Record& other, MergeType type) {
    for (const Record::Field& field : other.fields()) {
      const std::size_t position = labels_.position(field.key);
      if (position == Keys::kNone) {
        labels_.append(field.key);
        held_.emplace_back(field.value);
      } else {
        mergeInto(held_[position], field.value, type);
      }
    }
  }

  [[nodiscard]] Record finish() && {
    std::vector<Value> values;
    values.reserve(held_.size());
    for (Held& held : held_) values.push_back(finished(std::move(held)));
    return {std::move(labels_), std::move(values)};
  }

 private:
  using Nested = std::unique_ptr<GrowingRecord>;
  // A value as it came, the items of a list that grows, or a record that does.
  using Held = std::variant<Value, Items, Nested>;

  static void mergeInto(Held& held, const Value& value, MergeType type) {
    if (auto* nested = std::get_if<Nested>(&held); nested != nullptr && value.isRecord()) {
      return (*nested)->merge(value.record(), type);
    }
    if (const auto* plain = std::get_if<Value>(&held);
        plain != nullptr && plain->isRecord() && value.isRecord()) {
      auto grown = std::make_unique<GrowingRecord>(plain->record());
      grown->merge(value.record(), type);
      held = std::move(grown);
      return;
    }
    if (type == MergeType::mergeCombine || equals(held, value)) return;
    if (type == MergeType::mergeAdd) {
      held = Value(Items{finished(std::move(held)), value});
    } else {
      join(held, value);
    }
  }

  // A list takes the other's items, or another value as one more item; any other
  // value makes a list of two.
  static void join(Held& held, const Value& value) {
    if (auto* plain = std::get_if<Value>(&held); plain != nullptr && plain->isList()) {
      held = std::exchange(*plain, Value()).takeItems();
    }
    auto* items = std::get_if<Items>(&held);
    if (items == nullptr) {
      held = Items{finished(std::move(held)), value};
    } else if (value.isList()) {
      items->insert(items->end(), value.items().begin(), value.items().end());
    } else {
      items->push_back(value);
    }
  }

  static bool equals(const Held& held, const Value& value) {
    if (const auto* plain = std::get_if<Value>(&held)) return *plain == value;
    const auto* items = std::get_if<Items>(&held);
    return items != nullptr && value.isList() && std::ranges::equal(*items, value.items());
  }

  static Value finished(Held&& held) {
    if (auto* items = std::get_if<Items>(&held)) return std::move(*items);
    if (auto* nested = std::get_if<Nested>(&held)) return std::move(**nested).finish();
    return std::get<Value>(std::move(held));
  }

  Keys labels_;
  std::vector<Held> held_;  // by the position of the label
};

class SKWMergeRecords final : public core::Command {
  std::optional<Value> compute() override {
    const Value list = core::unpackAEList(*takeDirectParameter());
    const auto records = list.items();
    if (records.size() < 2) throw ScriptError(kTooFew);
    if (!std::ranges::all_of(records, &Value::isRecord)) throw ScriptError(kNotARecord);
    const MergeType type = mergeType();
    // Kept: subtracting gives the first record as it is.
    if (type == MergeType::mergeSubtract) return records.front();
    GrowingRecord merged(records.front().record());
    for (const Value& record : records.subspan(1)) {
      work::stopIfAsked();
      merged.merge(record.record(), type);
    }
    return std::move(merged).finish();
  }

  // A code that names no type stands for combining.
  [[nodiscard]] MergeType mergeType() const {
    const auto code = evaluatedArguments().integer(key::mergeType);
    const auto first = static_cast<std::int64_t>(MergeType::mergeCombine);
    const auto last = static_cast<std::int64_t>(MergeType::mergeSubtract);
    if (!code || *code < first || *code > last) return MergeType::mergeCombine;
    return static_cast<MergeType>(*code);
  }
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWMergeRecords() {
  return std::make_unique<lists::SKWMergeRecords>();
}

}  // namespace skerrow
