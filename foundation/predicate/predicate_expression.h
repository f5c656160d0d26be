#pragma once
// The expressions of a predicate, as a tree that never changes once it is built.
// An expression gives a value, or none where an item is of the wrong kind: a key
// looked up in a number, arithmetic on texts. That is not a failure; a comparison
// with it is neither true nor false.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "foundation/key_path/key_path.h"
#include "foundation/number/number_arithmetic.h"
#include "foundation/predicate/predicate_evaluation.h"
#include "values/value.h"

namespace skerrow::foundation {

class Condition;
struct PredicateFunction;

class Expression {
 public:
  Expression() = default;
  Expression(const Expression&) = delete;
  Expression& operator=(const Expression&) = delete;
  virtual ~Expression() = default;

  /// The value, which may be missing value; no pointer where an operand is of the wrong
  /// kind. It lies in `room`, in the item or in the tree, or
  /// it is a variable itself, which may be set anew while it is looked at.
  virtual const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const = 0;

  /// The value of an expression that is the same for every item, else null.
  [[nodiscard]] virtual const Value* constant() const { return nullptr; }
};

using ExpressionPointer = std::unique_ptr<const Expression>;
using ConditionPointer = std::unique_ptr<const Condition>;

class ConstantExpression final : public Expression {
 public:
  explicit ConstantExpression(Value value) : value_(std::move(value)) {}
  const Value* evaluate(PredicateEvaluation&, Value&) const override { return &value_; }
  [[nodiscard]] const Value* constant() const override { return &value_; }

 private:
  Value value_;
};

/// SELF: the item.
class SelfExpression final : public Expression {
 public:
  const Value* evaluate(PredicateEvaluation& evaluation, Value&) const override {
    return &evaluation.item();
  }
};

/// A key path on the item, or on what another expression gives.
class KeyPathExpression final : public Expression {
 public:
  KeyPathExpression(ExpressionPointer base, KeyPath path)
      : base_(std::move(base)), path_(std::move(path)) {}
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  ExpressionPointer base_;  // null for the item
  KeyPath path_;
};

/// $name, and $name := value.
class VariableExpression final : public Expression {
 public:
  VariableExpression(std::size_t slot, Value name, ExpressionPointer assigned = nullptr)
      : slot_(slot), name_(std::move(name)), assigned_(std::move(assigned)) {}
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  std::size_t slot_;
  Value name_;
  ExpressionPointer assigned_;  // null for a variable that is only read
};

/// {a, b, c}
class AggregateExpression final : public Expression {
 public:
  explicit AggregateExpression(std::vector<ExpressionPointer> items) : items_(std::move(items)) {}
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  std::vector<ExpressionPointer> items_;
};

/// a + b - c, from left to right. Null where an operand is null.
class ArithmeticExpression final : public Expression {
 public:
  struct Step {
    ArithmeticOperator operation;  // of the first step, not used
    ExpressionPointer operand;
  };
  explicit ArithmeticExpression(std::vector<Step> steps) : steps_(std::move(steps)) {}
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  std::vector<Step> steps_;
};

class NegationExpression final : public Expression {
 public:
  explicit NegationExpression(ExpressionPointer operand) : operand_(std::move(operand)) {}
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  ExpressionPointer operand_;
};

/// a[i], a[FIRST], a[LAST], a[SIZE]. Positions count from 0; null outside the list.
/// A record is indexed by a label.
class IndexExpression final : public Expression {
 public:
  enum class Place : std::uint8_t { at, first, last, size };
  IndexExpression(ExpressionPointer base, Place place, ExpressionPointer index = nullptr)
      : base_(std::move(base)), index_(std::move(index)), place_(place) {}
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  ExpressionPointer base_;
  ExpressionPointer index_;  // for `at` only
  Place place_;
};

class FunctionExpression final : public Expression {
 public:
  FunctionExpression(const PredicateFunction& function, std::vector<ExpressionPointer> arguments)
      : function_(function), arguments_(std::move(arguments)) {}
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  const PredicateFunction& function_;
  std::vector<ExpressionPointer> arguments_;
};

/// CAST(value, "NSNumber"), "NSDecimalNumber", "NSString" or "NSDate". A date is the
/// number of its seconds since 1 January 2001.
class CastExpression final : public Expression {
 public:
  enum class Target : std::uint8_t { number, text, date };
  CastExpression(ExpressionPointer operand, Target target)
      : operand_(std::move(operand)), target_(target) {}
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  ExpressionPointer operand_;
  Target target_;
};

/// SUBQUERY(list, $name, condition): the items that satisfy the condition.
class SubqueryExpression final : public Expression {
 public:
  SubqueryExpression(ExpressionPointer list, std::size_t slot, ConditionPointer condition);
  ~SubqueryExpression() override;
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  ExpressionPointer list_;
  std::size_t slot_;
  ConditionPointer condition_;
};

/// TERNARY(condition, a, b): b unless the condition is true.
class ConditionalExpression final : public Expression {
 public:
  ConditionalExpression(ConditionPointer condition, ExpressionPointer ifTrue,
                        ExpressionPointer otherwise);
  ~ConditionalExpression() override;
  const Value* evaluate(PredicateEvaluation& evaluation, Value& room) const override;

 private:
  ConditionPointer condition_;
  ExpressionPointer ifTrue_;
  ExpressionPointer otherwise_;
};

}  // namespace skerrow::foundation
