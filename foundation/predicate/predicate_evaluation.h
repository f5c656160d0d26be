#pragma once
// What the evaluation of one predicate on one item needs beside the predicate:
// the item, the variables, and room that is kept from item to item so that simple
// comparisons allocate nothing. It belongs to one thread.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/collation/text_relation.h"
#include "foundation/key_path/step_budget.h"
#include "foundation/predicate/predicate_surroundings.h"
#include "foundation/predicate/wildcard_pattern.h"
#include "foundation/regex/whole_match.h"
#include "values/record.h"
#include "values/value.h"

namespace skerrow::foundation {

/// What a condition says of an item. Unknown is what comes of an item of the wrong
/// kind: it is neither true nor, under NOT, false, and an item of which the whole
/// predicate is unknown does not satisfy it (Kleene's three-valued logic).
enum class Truth : std::uint8_t { no, yes, unknown };

constexpr Truth truthOf(bool isTrue) { return isTrue ? Truth::yes : Truth::no; }

constexpr Truth opposite(Truth truth) {
  return truth == Truth::unknown ? truth : truthOf(truth == Truth::no);
}

/// An evaluation that cannot go on. The reason is a clause without a full stop.
class EvaluationFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class PredicateEvaluation {
 public:
  /// A slot for every variable and every MATCHES of the predicate. The surroundings stay
  /// where they are as long as this lives.
  PredicateEvaluation(std::size_t variableCount, std::size_t matchCount,
                      const PredicateSurroundings& surroundings)
      : surroundings_(surroundings), variables_(variableCount), matches_(matchCount) {}

  /// Begins with a new item. Both must stay where they are until the evaluation
  /// ends; `given` may be null.
  void begin(const Value& item, const Record* given) {
    item_ = &item;
    given_ = given;
    steps_.begin();
    if (hasAssigned_) forgetVariables();
  }

  [[nodiscard]] const Value& item() const { return *item_; }

  /// The value of a variable: the one that the predicate itself has set, else the
  /// given one. Throws EvaluationFault when there is neither.
  const Value& variable(std::size_t slot, const Value& name) const;

  /// Sets a variable until the evaluation ends.
  void assign(std::size_t slot, Value value);

  /// Sets a variable for as long as this object lives.
  class Binding {
   public:
    Binding(PredicateEvaluation& evaluation, std::size_t slot);
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;
    ~Binding();

    void set(Value value);

   private:
    PredicateEvaluation& evaluation_;
    std::size_t slot_;
    Value before_;
    bool wasSet_;
  };

  /// What one item may cost, so that no predicate runs without end.
  StepBudget& steps() { return steps_; }

  WholeMatch& match(std::size_t slot) { return matches_[slot]; }
  TextRelation::Workspace& texts() { return texts_; }
  WildcardPattern& pattern() { return pattern_; }
  /// The user's, by its Olson name; empty where nothing says it.
  const std::string& timeZone();
  /// Both throw EvaluationFault where the surroundings do not say.
  Date now() const;
  std::mt19937_64& random();

 private:
  static constexpr std::uint64_t kMaximumSteps = 1ULL << 27U;

  struct Variable {
    Value value;
    bool isSet = false;
  };

  void forgetVariables();

  const PredicateSurroundings& surroundings_;
  const Value* item_ = nullptr;
  const Record* given_ = nullptr;
  std::vector<Variable> variables_;
  bool hasAssigned_ = false;
  StepBudget steps_{kMaximumSteps};
  std::vector<WholeMatch> matches_;
  TextRelation::Workspace texts_;
  WildcardPattern pattern_;
  std::vector<std::mt19937_64> random_;  // one once it is needed
  std::optional<std::string> timeZone_;  // once it is needed
};

}  // namespace skerrow::foundation
