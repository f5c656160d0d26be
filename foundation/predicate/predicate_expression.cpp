#include "foundation/predicate/predicate_expression.h"

#include <cmath>
#include <string>

#include "foundation/date/long_date_time.h"
#include "foundation/number/number_text.h"
#include "foundation/predicate/predicate_condition.h"
#include "foundation/predicate/predicate_function.h"
#include "foundation/text/text_encoding.h"
#include "values/record.h"

namespace skerrow::foundation {

namespace {

// What an item of a list costs that is copied, or asked a condition, in steps.
constexpr std::size_t kStepsOfCopy = 4;
constexpr std::size_t kStepsOfCondition = 8;

const Value* put(Value value, Value& room) {
  room = std::move(value);
  return &room;
}

const Value* putText(const std::string& text, Value& room) {
  return put(Value(utf16FromUtf8Replacing(text)), room);
}

}  // namespace

const Value* KeyPathExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  if (base_ == nullptr) return path_.find(evaluation.item(), room, evaluation.steps());
  Value baseRoom;
  const Value* const base = base_->evaluate(evaluation, baseRoom);
  if (base == nullptr) return nullptr;
  Value foundRoom;
  const Value* const found = path_.find(*base, foundRoom, evaluation.steps());
  if (found == nullptr) return nullptr;
  return put(*found, room);  // a copy, as the base may go
}

const Value* VariableExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  if (assigned_ != nullptr) {
    const Value* const assigned = assigned_->evaluate(evaluation, room);
    if (assigned == nullptr) return nullptr;
    evaluation.assign(slot_, *assigned);
  }
  return &evaluation.variable(slot_, name_);
}

const Value* AggregateExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  std::vector<Value> values;
  values.reserve(items_.size());
  for (const ExpressionPointer& item : items_) {
    Value itemRoom;
    const Value* const value = item->evaluate(evaluation, itemRoom);
    if (value == nullptr) return nullptr;
    values.push_back(*value);
  }
  evaluation.steps().spend(kStepsOfCopy * values.size());
  return put(Value(std::move(values)), room);
}

const Value* ArithmeticExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  Value operandRoom;
  evaluation.steps().spend(steps_.size());
  Number result = Number::signed64(0);
  bool hasNull = false;
  for (const Step& step : steps_) {
    const Value* const operand = step.operand->evaluate(evaluation, operandRoom);
    if (operand == nullptr) return nullptr;
    if (operand->isNull()) {
      hasNull = true;
    } else if (!operand->isNumber()) {
      return nullptr;
    } else if (!hasNull) {
      result = &step == steps_.data() ? operand->number()
                                      : calculate(step.operation, result, operand->number());
    }
  }
  return put(hasNull ? Value() : Value(result), room);
}

const Value* NegationExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  const Value* const operand = operand_->evaluate(evaluation, room);
  if (operand == nullptr || operand->isNull()) return operand;
  if (!operand->isNumber()) return nullptr;
  return put(negated(operand->number()), room);
}

const Value* IndexExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  Value baseRoom;
  const Value* const base = base_->evaluate(evaluation, baseRoom);
  if (base == nullptr) return nullptr;
  if (base->isNull()) return put(Value(), room);
  if (place_ == Place::size) {
    if (!base->isList() && !base->isRecord()) return nullptr;
    const std::size_t count = base->isList() ? base->items().size() : base->record().fieldCount();
    return put(Number::signed64(static_cast<std::int64_t>(count)), room);
  }
  if (place_ == Place::at) {
    Value indexRoom;
    const Value* const index = index_->evaluate(evaluation, indexRoom);
    if (index == nullptr) return nullptr;
    if (base->isRecord()) {
      const Value* const found = base->record().find(*index);
      return put(found != nullptr ? *found : Value(), room);
    }
    if (!base->isList() || !index->isNumber()) return nullptr;
    const double position = index->number().asReal();
    if (position != std::trunc(position)) return nullptr;
    const bool isInside = position >= 0 && position < static_cast<double>(base->items().size());
    return put(isInside ? base->items()[static_cast<std::size_t>(position)] : Value(), room);
  }
  if (!base->isList()) return nullptr;
  if (base->items().empty()) return put(Value(), room);
  return put(place_ == Place::first ? base->items().front() : base->items().back(), room);
}

const Value* FunctionExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  std::vector<Value> arguments(arguments_.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    Value argumentRoom;
    const Value* const argument = arguments_[i]->evaluate(evaluation, argumentRoom);
    if (argument == nullptr) return nullptr;
    arguments[i] = *argument;
    evaluation.steps().spendOnContent(*argument);
  }
  std::optional<Value> result = function_.call(arguments, evaluation);
  if (!result) return nullptr;
  return put(*std::move(result), room);
}

const Value* CastExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  Value operandRoom;
  const Value* const operand = operand_->evaluate(evaluation, operandRoom);
  if (operand == nullptr) return nullptr;
  if (operand->isNull()) return put(Value(), room);
  const Kind kind = operand->kind();
  if (kind == Kind::text) evaluation.steps().spendOnText(operand->text().size());
  switch (target_) {
    case Target::number:
      if (kind == Kind::number) return put(*operand, room);
      if (kind == Kind::date) return put(Number::real(operand->date().seconds), room);
      if (kind == Kind::text) return put(numberAtFront(operand->text()), room);
      return nullptr;
    case Target::text: {
      if (kind == Kind::text) return put(*operand, room);
      if (kind == Kind::number) return put(Value(textFromNumber(operand->number())), room);
      if (kind == Kind::url) return putText(operand->url().absoluteString, room);
      if (kind != Kind::date) return nullptr;
      const std::optional<std::int64_t> seconds = longDateTimeFromDate(operand->date());
      if (!seconds) return nullptr;
      const std::optional<std::string> text = iso8601FromLongDateTime(*seconds);
      return text ? putText(*text, room) : nullptr;
    }
    case Target::date: {
      if (kind == Kind::date) return put(*operand, room);
      if (kind == Kind::number) return put(Date{operand->number().asReal()}, room);
      if (kind != Kind::text) return nullptr;
      const std::optional<std::int64_t> seconds =
          longDateTimeFromPlainIso8601(utf8FromUtf16(operand->text()), evaluation.timeZone());
      return seconds ? put(dateFromLongDateTime(*seconds), room) : nullptr;
    }
  }
  return nullptr;
}

SubqueryExpression::SubqueryExpression(ExpressionPointer list, std::size_t slot,
                                       ConditionPointer condition)
    : list_(std::move(list)), slot_(slot), condition_(std::move(condition)) {}

SubqueryExpression::~SubqueryExpression() = default;

const Value* SubqueryExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  Value listRoom;
  const Value* const list = list_->evaluate(evaluation, listRoom);
  if (list == nullptr) return nullptr;
  if (list->isNull()) return put(Value(), room);
  if (!list->isList()) return nullptr;
  const Value held = *list;  // the condition may set the variable that the list lies in
  std::vector<Value> found;
  PredicateEvaluation::Binding binding(evaluation, slot_);
  for (const Value& item : held.items()) {
    evaluation.steps().spend(kStepsOfCondition);
    binding.set(item);
    if (condition_->evaluate(evaluation) == Truth::yes) found.push_back(item);
  }
  return put(Value(std::move(found)), room);
}

ConditionalExpression::ConditionalExpression(ConditionPointer condition, ExpressionPointer ifTrue,
                                             ExpressionPointer otherwise)
    : condition_(std::move(condition)),
      ifTrue_(std::move(ifTrue)),
      otherwise_(std::move(otherwise)) {}

ConditionalExpression::~ConditionalExpression() = default;

const Value* ConditionalExpression::evaluate(PredicateEvaluation& evaluation, Value& room) const {
  const bool isTrue = condition_->evaluate(evaluation) == Truth::yes;
  return (isTrue ? ifTrue_ : otherwise_)->evaluate(evaluation, room);
}

}  // namespace skerrow::foundation
