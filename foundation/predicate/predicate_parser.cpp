#include "foundation/predicate/predicate_parser.h"

#include <algorithm>
#include <utility>

#include "foundation/predicate/predicate_error.h"
#include "foundation/text/user_preferences.h"

namespace skerrow::foundation {

PredicateParser::PredicateParser(std::u16string_view format, std::span<const Value> arguments,
                                 const PredicateSurroundings& surroundings)
    : format_(format), scanner_(format), arguments_(arguments), surroundings_(surroundings) {
  advance();
}

ParsedPredicate PredicateParser::parse() {
  Operand operand = parseOperand(kOr);
  if (token_.kind != TokenKind::end) failUnexpected();
  return {takeCondition(std::move(operand)), std::move(variables_), matchCount_};
}

void PredicateParser::advance() {
  token_ = scanner_.next();
  keyword_ = keywordOf(token_);
}

bool PredicateParser::takeSymbol(std::u16string_view symbol) {
  if (!token_.isSymbol(symbol)) return false;
  advance();
  return true;
}

void PredicateParser::expectSymbol(std::u16string_view symbol, std::string_view what) {
  if (takeSymbol(symbol)) return;
  if (keyword_ == Keyword::logicalNot || keyword_ == Keyword::typeConformsTo) failUnexpected();
  fail(token_.begin, what);
}

void PredicateParser::fail(std::size_t place, std::string_view what) const {
  throw PredicateError::unreadable(format_, place, what);
}

void PredicateParser::checkHeight(std::size_t height, std::size_t place) const {
  if (height <= kMaximumPredicateNesting) return;
  fail(place, "it is nested more than " + std::to_string(kMaximumPredicateNesting) + " deep");
}

void PredicateParser::failUnexpected() const {
  if (keyword_ == Keyword::logicalNot) {
    fail(token_.begin, "NOT stands in front of the whole comparison, not inside it");
  }
  if (keyword_ == Keyword::typeConformsTo) {
    fail(token_.begin, "UTI-CONFORMS-TO is not available");
  }
  fail(token_.begin, "an operator is missing, or something is left over");
}

ExpressionPointer PredicateParser::takeExpression(Operand operand) const {
  auto* const expression = std::get_if<ExpressionPointer>(&operand.content);
  if (expression == nullptr) fail(operand.place, "a value is needed, and this is a condition");
  return std::move(*expression);
}

ConditionPointer PredicateParser::takeCondition(Operand operand) const {
  auto* const condition = std::get_if<ConditionPointer>(&operand.content);
  if (condition == nullptr) {
    fail(operand.place, "a condition is needed, and this is a value; compare it, as in “= TRUE”");
  }
  return std::move(*condition);
}

PredicateParser::Operand PredicateParser::made(ExpressionPointer expression, std::size_t place,
                                               std::size_t height) const {
  checkHeight(height, place);
  return {std::move(expression), place, height};
}

PredicateParser::Operand PredicateParser::made(ConditionPointer condition, std::size_t place,
                                               std::size_t height) const {
  checkHeight(height, place);
  return {std::move(condition), place, height};
}

PredicateParser::Infix PredicateParser::infix() const {
  return token_.kind == TokenKind::symbol ? infixOfSymbol(token_.text) : infixOfKeyword(keyword_);
}

PredicateParser::Infix PredicateParser::infixOfSymbol(std::u16string_view symbol) {
  const auto comparing = [](Comparison comparison) { return Infix{kComparison, {}, comparison}; };
  const auto calculating = [](Precedence precedence, ArithmeticOperator operation) {
    return Infix{precedence, operation, {}};
  };
  if (symbol == u"&&") return {kAnd, {}, {}};
  if (symbol == u"||") return {kOr, {}, {}};
  if (symbol == u"=" || symbol == u"==") return comparing(Comparison::equal);
  if (symbol == u"!=" || symbol == u"<>") return comparing(Comparison::notEqual);
  if (symbol == u"<") return comparing(Comparison::less);
  if (symbol == u"<=" || symbol == u"=<") return comparing(Comparison::lessOrEqual);
  if (symbol == u">") return comparing(Comparison::greater);
  if (symbol == u">=" || symbol == u"=>") return comparing(Comparison::greaterOrEqual);
  if (symbol == u"|") return calculating(kBitwiseOr, ArithmeticOperator::bitwiseOr);
  if (symbol == u"^") return calculating(kBitwiseXor, ArithmeticOperator::bitwiseXor);
  if (symbol == u"&") return calculating(kBitwiseAnd, ArithmeticOperator::bitwiseAnd);
  if (symbol == u"<<") return calculating(kShift, ArithmeticOperator::shiftLeft);
  if (symbol == u">>") return calculating(kShift, ArithmeticOperator::shiftRight);
  if (symbol == u"+") return calculating(kSum, ArithmeticOperator::add);
  if (symbol == u"-") return calculating(kSum, ArithmeticOperator::subtract);
  if (symbol == u"*") return calculating(kProduct, ArithmeticOperator::multiply);
  if (symbol == u"/") return calculating(kProduct, ArithmeticOperator::divide);
  if (symbol == u"**") return calculating(kPower, ArithmeticOperator::power);
  return {};
}

PredicateParser::Infix PredicateParser::infixOfKeyword(Keyword keyword) {
  const auto comparing = [](Comparison comparison) { return Infix{kComparison, {}, comparison}; };
  switch (keyword) {
    case Keyword::logicalAnd:
      return {kAnd, {}, {}};
    case Keyword::logicalOr:
      return {kOr, {}, {}};
    case Keyword::between:
      return comparing(Comparison::between);
    case Keyword::in:
      return comparing(Comparison::in);
    case Keyword::contains:
      return comparing(Comparison::contains);
    case Keyword::beginsWith:
      return comparing(Comparison::beginsWith);
    case Keyword::endsWith:
      return comparing(Comparison::endsWith);
    case Keyword::like:
      return comparing(Comparison::like);
    case Keyword::matches:
      return comparing(Comparison::matches);
    case Keyword::typeEquals:
      return comparing(Comparison::typeEquals);
    default:
      return {};
  }
}

// An operand and the operators behind it that bind at least as tightly as `loosest`.
PredicateParser::Operand PredicateParser::parseOperand(int loosest) {
  const Descent descent(*this);
  Operand left = parsePrefix();
  for (Infix next = infix(); next.precedence != kNone && next.precedence >= loosest;
       next = infix()) {
    switch (next.precedence) {
      case kOr:
      case kAnd:
        left = parseJoined(std::move(left), next.precedence);
        break;
      case kComparison:
        left = parseCompared(std::move(left), next.comparison, Quantifier::none);
        if (infix().precedence == kComparison) {
          fail(token_.begin, "two comparisons must be joined by AND or OR");
        }
        break;
      default:
        left = parseCalculated(std::move(left), next.precedence);
        break;
    }
  }
  return left;
}

PredicateParser::Operand PredicateParser::parsePrefix() {
  const std::size_t place = token_.begin;
  if (keyword_ == Keyword::logicalNot || token_.isSymbol(u"!")) {
    advance();
    Operand operand = parseOperand(kComparison);
    const std::size_t height = operand.height + 1;
    return made(std::make_unique<NegatedCondition>(takeCondition(std::move(operand))), place,
                height);
  }
  if (token_.isSymbol(u"-")) {
    advance();
    Operand operand = parseOperand(kSign);
    const std::size_t height = operand.height + 1;
    ExpressionPointer expression = takeExpression(std::move(operand));
    const Value* const constant = expression->constant();
    if (constant != nullptr && constant->isNumber()) {
      return made(std::make_unique<ConstantExpression>(Value(negated(constant->number()))), place,
                  1);
    }
    return made(std::make_unique<NegationExpression>(std::move(expression)), place, height);
  }
  switch (keyword_) {
    case Keyword::any:
      return parseQuantified(Quantifier::any);
    case Keyword::all:
      return parseQuantified(Quantifier::all);
    case Keyword::noneOf:
      return parseQuantified(Quantifier::noneOf);
    case Keyword::truePredicate:
    case Keyword::falsePredicate: {
      const bool isTrue = keyword_ == Keyword::truePredicate;
      advance();
      return made(std::make_unique<ConstantCondition>(isTrue), place, 1);
    }
    default:
      return parseValue();
  }
}

PredicateParser::Operand PredicateParser::parseQuantified(Quantifier quantifier) {
  const std::size_t place = token_.begin;
  advance();
  Operand left = parseOperand(kCalculation);
  const Infix next = infix();
  if (next.precedence != kComparison) fail(token_.begin, "a comparison is missing");
  Operand compared = parseCompared(std::move(left), next.comparison, quantifier);
  compared.place = place;
  return compared;
}

PredicateParser::Operand PredicateParser::parseJoined(Operand left, Precedence precedence) {
  const std::size_t place = left.place;
  std::size_t height = left.height;
  std::vector<ConditionPointer> conditions;
  conditions.push_back(takeCondition(std::move(left)));
  while (infix().precedence == precedence) {
    advance();
    Operand right = parseOperand(precedence + 1);
    height = std::max(height, right.height);
    conditions.push_back(takeCondition(std::move(right)));
  }
  const auto join =
      precedence == kAnd ? CompoundCondition::Join::all : CompoundCondition::Join::any;
  return made(std::make_unique<CompoundCondition>(join, std::move(conditions)), place, height + 1);
}

PredicateParser::Operand PredicateParser::parseCompared(Operand left, Comparison comparison,
                                                        Quantifier quantifier) {
  const std::size_t place = left.place;
  std::size_t height = left.height;
  ComparisonCondition::Parts parts;
  parts.comparison = comparison;
  parts.quantifier = quantifier;
  parts.left = takeExpression(std::move(left));
  advance();
  if (token_.isSymbol(u"[")) parts.options = parseOptions();
  Operand right = parseOperand(kCalculation);
  const std::size_t rightPlace = right.place;
  height = std::max(height, right.height);
  parts.right = takeExpression(std::move(right));
  if (comparison == Comparison::matches) parts.matchSlot = matchCount_++;
  if (const Value* const bounds = parts.right->constant();
      comparison == Comparison::between && bounds != nullptr &&
      (!bounds->isList() || bounds->items().size() != 2)) {
    fail(rightPlace, "BETWEEN needs a list of two values, a lower and an upper one");
  }
  const bool isByLanguage = parts.options.localeSensitive && surroundings_.environment != nullptr;
  const std::string locale = isByLanguage ? userLocale(*surroundings_.environment) : "";
  return made(std::make_unique<ComparisonCondition>(std::move(parts), locale), place, height + 1);
}

// A chain of one precedence becomes one step after the other; a power takes what is
// on its right first.
PredicateParser::Operand PredicateParser::parseCalculated(Operand left, Precedence precedence) {
  const std::size_t place = left.place;
  std::size_t height = left.height;
  std::vector<ArithmeticExpression::Step> steps;
  steps.push_back({ArithmeticOperator::add, takeExpression(std::move(left))});
  for (Infix next = infix(); next.precedence == precedence; next = infix()) {
    advance();
    Operand right = parseOperand(precedence == kPower ? precedence : precedence + 1);
    height = std::max(height, right.height);
    steps.push_back({next.arithmetic, takeExpression(std::move(right))});
  }
  return made(std::make_unique<ArithmeticExpression>(std::move(steps)), place, height + 1);
}

TextOptions PredicateParser::parseOptions() {
  TextOptions options;
  advance();
  const bool isWord = token_.kind == TokenKind::word;
  if (!isWord) fail(token_.begin, "the letters of the options are missing");
  for (const char16_t letter : token_.text) {
    switch (letter) {
      case u'c':
      case u'C':
        options.caseInsensitive = true;
        break;
      case u'd':
      case u'D':
        options.diacriticInsensitive = true;
        break;
      case u'n':
      case u'N':
        options.normalized = true;
        break;
      case u'l':
      case u'L':
        options.localeSensitive = true;
        break;
      default:
        fail(token_.begin, "the options are letters out of c, d, n and l");
    }
  }
  advance();
  expectSymbol(u"]", "“]” is missing behind the options");
  return options;
}

}  // namespace skerrow::foundation
