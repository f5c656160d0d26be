#include "foundation/predicate/predicate_condition.h"

#include <algorithm>
#include <span>

#include "foundation/number/value_order.h"

namespace skerrow::foundation {

namespace {

// From here on asking a set beats comparing one by one.
constexpr std::size_t kManyMembers = 8;

bool looksForText(Comparison comparison) {
  switch (comparison) {
    case Comparison::beginsWith:
    case Comparison::endsWith:
    case Comparison::like:
    case Comparison::matches:
    case Comparison::typeEquals:
      return true;
    default:
      return false;
  }
}

bool looksForPart(Comparison comparison) {
  return comparison == Comparison::contains || comparison == Comparison::beginsWith ||
         comparison == Comparison::endsWith;
}

}  // namespace

Truth CompoundCondition::evaluate(PredicateEvaluation& evaluation) const {
  const Truth decisive = truthOf(join_ == Join::any);
  Truth result = opposite(decisive);
  for (const ConditionPointer& condition : conditions_) {
    const Truth truth = condition->evaluate(evaluation);
    if (truth == decisive) return truth;
    if (truth == Truth::unknown) result = truth;
  }
  return result;
}

ComparisonCondition::ComparisonCondition(Parts parts, const std::string& locale)
    : parts_(std::move(parts)),
      relation_(parts_.comparison == Comparison::typeEquals ? TextOptions{.caseInsensitive = true}
                                                            : parts_.options,
                locale),
      constantRight_(parts_.right->constant()) {
  if (constantRight_ == nullptr) return;
  if (constantRight_->isText()) {
    std::u16string intermediate;
    std::u16string into;
    folded_ = relation_.folded(constantRight_->text(), into, intermediate);
    if (parts_.comparison == Comparison::like) pattern_.emplace(folded_);
    if (looksForPart(parts_.comparison)) part_ = relation_.part(constantRight_->text());
  }
  if (parts_.comparison == Comparison::in && constantRight_->isList() && relation_.isLiteral() &&
      constantRight_->items().size() >= kManyMembers) {
    members_.emplace(constantRight_->items());
  }
}

Truth ComparisonCondition::evaluate(PredicateEvaluation& evaluation) const {
  evaluation.steps().spend(1);
  Value leftRoom;
  const Value* const left = parts_.left->evaluate(evaluation, leftRoom);
  if (left == nullptr) return Truth::unknown;
  Value rightRoom;
  const Value* const right =
      constantRight_ != nullptr ? constantRight_ : parts_.right->evaluate(evaluation, rightRoom);
  if (right == nullptr) return Truth::unknown;
  if (parts_.quantifier != Quantifier::none) return quantify(*left, *right, evaluation);
  return relate(*left, *right, evaluation);
}

// An empty list satisfies ALL and NONE. No list at all satisfies NONE, which is the
// opposite of ANY.
Truth ComparisonCondition::quantify(const Value& left, const Value& right,
                                    PredicateEvaluation& evaluation) const {
  const bool isAll = parts_.quantifier == Quantifier::all;
  const bool isNone = parts_.quantifier == Quantifier::noneOf;
  if (left.isNull()) return truthOf(isNone);
  if (!left.isList()) return Truth::unknown;
  evaluation.steps().spend(left.items().size());
  const Truth decisive = truthOf(!isAll);
  Truth result = opposite(decisive);
  for (const Value& item : left.items()) {
    const Truth truth = relate(item, right, evaluation);
    if (truth == Truth::unknown) result = truth;
    if (truth != decisive) continue;
    result = truth;
    break;
  }
  return isNone ? opposite(result) : result;
}

Truth ComparisonCondition::relate(const Value& left, const Value& right,
                                  PredicateEvaluation& evaluation) const {
  const Comparison comparison = parts_.comparison;
  switch (comparison) {
    case Comparison::equal:
      return truthOf(isEqual(left, right, evaluation));
    case Comparison::notEqual:
      return truthOf(!isEqual(left, right, evaluation));
    case Comparison::between:
      return isBetween(left, right, evaluation);
    case Comparison::in:
      return isIn(left, right, evaluation);
    case Comparison::contains:
      return isIn(right, left, evaluation);
    default:
      break;
  }
  if (left.isNull() || right.isNull()) return Truth::no;
  if (looksForText(comparison)) return relateTexts(left, right, evaluation);

  const std::optional<std::partial_ordering> found = order(left, right, evaluation);
  if (!found) return Truth::unknown;
  switch (comparison) {
    case Comparison::less:
      return truthOf(*found < 0);
    case Comparison::lessOrEqual:
      return truthOf(*found <= 0);
    case Comparison::greater:
      return truthOf(*found > 0);
    default:
      return truthOf(*found >= 0);
  }
}

std::u16string_view ComparisonCondition::foldedRight(const Value& right,
                                                     PredicateEvaluation& evaluation) const {
  if (&right == constantRight_) return folded_;
  TextRelation::Workspace& work = evaluation.texts();
  return relation_.folded(right.text(), work.right, work.intermediate);
}

bool ComparisonCondition::isEqual(const Value& left, const Value& right,
                                  PredicateEvaluation& evaluation) const {
  if (left.kind() != right.kind()) return false;
  if (left.isText()) {
    evaluation.steps().spendOnText(left.text().size() + right.text().size());
    if (!relation_.isLiteral())
      return relation_.isEqual(left.text(), right.text(), evaluation.texts());
  } else if (left.isList() || left.isRecord()) {
    evaluation.steps().spendOnContent(left);
  }
  return left == right;
}

// Nothing for values without a common order; numbers that are none are unordered.
std::optional<std::partial_ordering> ComparisonCondition::order(
    const Value& left, const Value& right, PredicateEvaluation& evaluation) const {
  if (left.kind() != right.kind()) return std::nullopt;
  switch (left.kind()) {
    case Kind::text:
      evaluation.steps().spendOnText(left.text().size() + right.text().size());
      return relation_.order(left.text(), right.text(), evaluation.texts());
    case Kind::number:
    case Kind::date:
      return compareValues(left, right);
    default:
      return std::nullopt;
  }
}

Truth ComparisonCondition::isBetween(const Value& value, const Value& bounds,
                                     PredicateEvaluation& evaluation) const {
  if (value.isNull() || bounds.isNull()) return Truth::no;
  if (!bounds.isList() || bounds.items().size() != 2) return Truth::unknown;
  const Value& lower = bounds.items()[0];
  const Value& upper = bounds.items()[1];
  if (lower.isNull() || upper.isNull()) return Truth::no;
  const std::optional<std::partial_ordering> fromLower = order(value, lower, evaluation);
  const std::optional<std::partial_ordering> fromUpper = order(value, upper, evaluation);
  if (!fromLower || !fromUpper) return Truth::unknown;
  return truthOf(*fromLower >= 0 && *fromUpper <= 0);
}

// Among the items of a list or the values of a record, or as a part of a text.
Truth ComparisonCondition::isIn(const Value& part, const Value& whole,
                                PredicateEvaluation& evaluation) const {
  if (whole.isNull()) return Truth::no;
  if (members_) {
    evaluation.steps().spendOnContent(part);
    return truthOf(members_->contains(part));
  }
  if (whole.isList() || whole.isRecord()) {
    const auto values = whole.isList() ? whole.items() : whole.record().values();
    evaluation.steps().spend(values.size());
    return truthOf(std::ranges::any_of(
        values, [&](const Value& value) { return isEqual(part, value, evaluation); }));
  }
  if (!whole.isText()) return Truth::unknown;
  if (part.isNull()) return Truth::no;
  if (!part.isText()) return Truth::unknown;
  evaluation.steps().spendOnText(part.text().size() + whole.text().size());

  return isPartOf(whole, part, TextPlace::anywhere, evaluation);
}

Truth ComparisonCondition::isPartOf(const Value& whole, const Value& part, TextPlace place,
                                    PredicateEvaluation& evaluation) const {
  TextRelation::Workspace& work = evaluation.texts();
  if (part_ && &part == constantRight_) {
    return truthOf(relation_.isPartOf(whole.text(), *part_, place, work));
  }
  return truthOf(relation_.isPartOf(whole.text(), part.text(), place, work));
}

Truth ComparisonCondition::relateTexts(const Value& left, const Value& right,
                                       PredicateEvaluation& evaluation) const {
  if (!left.isText() || !right.isText()) return Truth::unknown;
  evaluation.steps().spendOnText(left.text().size() + right.text().size());
  if (parts_.comparison == Comparison::matches) {
    const MatchCase matchCase =
        relation_.options().caseInsensitive ? MatchCase::insensitive : MatchCase::sensitive;
    WholeMatch& match = evaluation.match(parts_.matchSlot);
    if (!relation_.options().diacriticInsensitive) {
      return truthOf(match.matches(left.text(), right.text(), matchCase));
    }
    return truthOf(match.matches(relation_.withoutDiacritics(left.text()),
                                 relation_.withoutDiacritics(right.text()), matchCase));
  }
  if (parts_.comparison == Comparison::beginsWith) {
    return isPartOf(left, right, TextPlace::atFront, evaluation);
  }
  if (parts_.comparison == Comparison::endsWith) {
    return isPartOf(left, right, TextPlace::atEnd, evaluation);
  }
  TextRelation::Workspace& work = evaluation.texts();
  const std::u16string_view text = relation_.folded(left.text(), work.left, work.intermediate);
  if (parts_.comparison == Comparison::typeEquals) {
    return truthOf(text == foldedRight(right, evaluation));
  }
  return isLike(text, right, evaluation);
}

Truth ComparisonCondition::isLike(std::u16string_view text, const Value& pattern,
                                  PredicateEvaluation& evaluation) const {
  const bool isPrepared = pattern_ && &pattern == constantRight_;
  if (!isPrepared) evaluation.pattern().assign(foldedRight(pattern, evaluation));
  const WildcardPattern& prepared = isPrepared ? *pattern_ : evaluation.pattern();
  return truthOf(prepared.matches(text, evaluation.steps()));
}

}  // namespace skerrow::foundation
