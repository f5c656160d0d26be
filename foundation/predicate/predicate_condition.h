#pragma once
// The conditions of a predicate, as a tree that never changes once it is built:
// comparisons, what joins and negates them, and the two constants.
//
// A null equals only a null and is neither less nor greater than anything. Texts,
// numbers and dates have an order among themselves; what compares values of two
// kinds by order, or looks for a text in what is none, is unknown.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/collation/text_relation.h"
#include "foundation/predicate/predicate_expression.h"
#include "foundation/predicate/wildcard_pattern.h"
#include "values/value_index.h"

namespace skerrow::foundation {

class Condition {
 public:
  Condition() = default;
  Condition(const Condition&) = delete;
  Condition& operator=(const Condition&) = delete;
  virtual ~Condition() = default;

  virtual Truth evaluate(PredicateEvaluation& evaluation) const = 0;
};

/// TRUEPREDICATE and FALSEPREDICATE.
class ConstantCondition final : public Condition {
 public:
  explicit ConstantCondition(bool isTrue) : truth_(truthOf(isTrue)) {}
  Truth evaluate(PredicateEvaluation&) const override { return truth_; }

 private:
  Truth truth_;
};

/// AND and OR of any number of conditions; later ones are left out once the answer is sure.
class CompoundCondition final : public Condition {
 public:
  enum class Join : std::uint8_t { all, any };
  CompoundCondition(Join join, std::vector<ConditionPointer> conditions)
      : conditions_(std::move(conditions)), join_(join) {}
  Truth evaluate(PredicateEvaluation& evaluation) const override;

 private:
  std::vector<ConditionPointer> conditions_;
  Join join_;
};

class NegatedCondition final : public Condition {
 public:
  explicit NegatedCondition(ConditionPointer condition) : condition_(std::move(condition)) {}
  Truth evaluate(PredicateEvaluation& evaluation) const override {
    return opposite(condition_->evaluate(evaluation));
  }

 private:
  ConditionPointer condition_;
};

enum class Comparison : std::uint8_t {
  equal,
  notEqual,
  less,
  lessOrEqual,
  greater,
  greaterOrEqual,
  between,
  in,
  contains,
  beginsWith,
  endsWith,
  like,
  matches,
  typeEquals,  ///< UTI-EQUALS: type identifiers, whose case does not matter
};

/// ANY, ALL and NONE apply a comparison to every item of the list on its left.
enum class Quantifier : std::uint8_t { none, any, all, noneOf };

class ComparisonCondition final : public Condition {
 public:
  struct Parts {
    ExpressionPointer left;
    ExpressionPointer right;
    Comparison comparison = Comparison::equal;
    TextOptions options;
    Quantifier quantifier = Quantifier::none;
    std::size_t matchSlot = 0;  // of a MATCHES
  };

  /// `locale` serves the option [l].
  ComparisonCondition(Parts parts, const std::string& locale);
  Truth evaluate(PredicateEvaluation& evaluation) const override;

 private:
  Truth relate(const Value& left, const Value& right, PredicateEvaluation& evaluation) const;
  Truth quantify(const Value& left, const Value& right, PredicateEvaluation& evaluation) const;
  bool isEqual(const Value& left, const Value& right, PredicateEvaluation& evaluation) const;
  std::optional<std::partial_ordering> order(const Value& left, const Value& right,
                                             PredicateEvaluation& evaluation) const;
  Truth isBetween(const Value& value, const Value& bounds, PredicateEvaluation& evaluation) const;
  Truth isIn(const Value& part, const Value& whole, PredicateEvaluation& evaluation) const;
  Truth isPartOf(const Value& whole, const Value& part, TextPlace place,
                 PredicateEvaluation& evaluation) const;
  Truth relateTexts(const Value& left, const Value& right, PredicateEvaluation& evaluation) const;
  Truth isLike(std::u16string_view text, const Value& pattern,
               PredicateEvaluation& evaluation) const;
  std::u16string_view foldedRight(const Value& right, PredicateEvaluation& evaluation) const;

  Parts parts_;
  TextRelation relation_;
  const Value* constantRight_ = nullptr;
  // Prepared where the right side is constant:
  std::u16string folded_;                   // a text, folded
  std::optional<WildcardPattern> pattern_;  // of a LIKE
  std::optional<TextRelation::Part> part_;  // of what is looked for in other texts
  std::optional<ValueSet> members_;         // of an IN over many values
};

}  // namespace skerrow::foundation
