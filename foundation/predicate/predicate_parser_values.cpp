// The half of the parser that reads values: keys, constants, calls and indexes.

#include <algorithm>
#include <utility>

#include "foundation/predicate/predicate_parser.h"
#include "foundation/text/quoted_text.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::foundation {

namespace {

std::string noFunction(std::u16string_view name) { return "there is no function " + quoted(name); }

}  // namespace

// A value and the keys and indexes behind it, or a condition in brackets.
PredicateParser::Operand PredicateParser::parseValue() {
  Postfix value;
  value.place = token_.begin;
  switch (token_.kind) {
    case TokenKind::word:
    case TokenKind::key:
      parseWord(value);
      break;
    case TokenKind::text:
      setConstant(value, Value(std::move(token_.text)));
      break;
    case TokenKind::number:
      setConstant(value, token_.number);
      break;
    case TokenKind::variable:
      parseVariable(value);
      break;
    case TokenKind::placeholder:
      parsePlaceholder(value);
      break;
    default:
      if (takeSymbol(u"{")) {
        value.base = parseAggregate(value.height);
      } else if (Operand condition; token_.isSymbol(u"(")) {
        if (parseBracketed(value, condition)) return condition;
      } else {
        fail(token_.begin, "a value is missing");
      }
  }
  for (;;) {
    if (takeSymbol(u".")) {
      parseKey(value);
    } else if (token_.isSymbol(u"[")) {
      parseIndex(value);
    } else {
      break;
    }
  }
  const std::size_t place = value.place;
  const std::size_t height = value.height + 1;
  return made(finished(std::move(value)), place, height);
}

// What stands behind a full stop.
void PredicateParser::parseKey(Postfix& value) {
  std::u16string key;
  if (token_.kind == TokenKind::placeholder && token_.text == u"K") {
    key = keyArgument();
  } else if (token_.kind == TokenKind::word || token_.kind == TokenKind::key) {
    key = keyword_ == Keyword::self ? u"self" : token_.text;
  } else {
    fail(token_.begin, "a key is missing behind “.”");
  }
  if (value.hasKeys) value.keys += u'.';
  value.keys += key;
  value.hasKeys = true;
  advance();
}

// True for a condition, which takes no keys.
bool PredicateParser::parseBracketed(Postfix& value, Operand& condition) {
  const std::size_t place = token_.begin;
  advance();
  Operand inner = parseOperand(kOr);
  expectSymbol(u")", "“)” is missing");
  inner.place = place;
  if (std::holds_alternative<ConditionPointer>(inner.content)) {
    condition = std::move(inner);
    return true;
  }
  value.height = inner.height;
  value.base = takeExpression(std::move(inner));
  return false;
}

void PredicateParser::parseWord(Postfix& value) {
  if (keyword_ != Keyword::none) return parseKeywordValue(value);
  const PredicateToken word = token_;
  advance();
  const bool isCall =
      word.kind == TokenKind::word && (token_.isSymbol(u"(") || token_.isSymbol(u":"));
  if (isCall) {
    value.base = parseCall(word, value.height);
    return;
  }
  value.keys = word.text;
  value.hasKeys = true;
}

void PredicateParser::parseKeywordValue(Postfix& value) {
  const std::size_t place = token_.begin;
  switch (keyword_) {
    case Keyword::null:
      return setConstant(value, Value());
    case Keyword::yes:
      return setConstant(value, Number::boolean(true));
    case Keyword::no:
      return setConstant(value, Number::boolean(false));
    case Keyword::self:
      value.base = std::make_unique<SelfExpression>();
      return advance();
    case Keyword::subquery:
      advance();
      value.base = parseSubquery(value.height);
      return;
    case Keyword::cast:
      advance();
      value.base = parseCast(value.height);
      return;
    case Keyword::ternary:
      advance();
      value.base = parseTernary(value.height);
      return;
    case Keyword::function:
      advance();
      value.base = parseFunctionForm(place, value.height);
      return;
    case Keyword::anyKey:
    case Keyword::fetch:
      fail(place, "ANYKEY and FETCH serve searches of a database and are not available");
    default:
      fail(place, "a value is missing; a key that is a reserved word has a “#” in front");
  }
}

const Value& PredicateParser::nextArgument() {
  if (usedArguments_ == arguments_.size()) {
    fail(token_.begin, "there is no argument for the placeholder");
  }
  return arguments_[usedArguments_++];
}

std::u16string PredicateParser::keyArgument() {
  const Value& argument = nextArgument();
  if (!argument.isText()) fail(token_.begin, "the argument is no text, which a key must be");
  return std::u16string(argument.text());
}

void PredicateParser::parsePlaceholder(Postfix& value) {
  const std::u16string kind = token_.text;
  if (kind == u"%") return setConstant(value, Value(u"%"));
  if (kind == u"K") {
    value.keys = keyArgument();
    value.hasKeys = true;
    return advance();
  }
  const Value& argument = nextArgument();
  if (kind == u"@") return setConstant(value, argument);
  // The printf family: S and s take a text, C and c a character, the rest a number.
  if (kind == u"s" || kind == u"S") {
    if (!argument.isText()) fail(token_.begin, "the argument is no text");
    return setConstant(value, argument);
  }
  if (!argument.isNumber()) fail(token_.begin, "the argument is no number");
  if (kind == u"c" || kind == u"C") {
    const auto unit = static_cast<char16_t>(argument.number().asInteger());
    return setConstant(value, Value(std::u16string_view(&unit, 1)));
  }
  const bool isReal = std::u16string_view(u"eEfFgGaA").find(kind) != std::u16string_view::npos;
  setConstant(value, isReal ? Number::real(argument.number().asReal())
                            : Number::signed64(argument.number().asInteger()));
}

std::size_t PredicateParser::variableSlot(const std::u16string& name) {
  Value key(name);
  const std::size_t slot = variableIndex_.findOrInsert(
      key, variables_.size(), [this](std::size_t i) -> const Value& { return variables_[i]; });
  if (slot != ValueIndex::kNone) return slot;
  variables_.push_back(std::move(key));
  return variables_.size() - 1;
}

void PredicateParser::parseVariable(Postfix& value) {
  const std::size_t slot = variableSlot(token_.text);
  advance();
  ExpressionPointer assigned;
  if (takeSymbol(u":=")) {
    Operand operand = parseOperand(kCalculation);
    value.height = operand.height;
    assigned = takeExpression(std::move(operand));
  }
  value.base = std::make_unique<VariableExpression>(slot, variables_[slot], std::move(assigned));
}

void PredicateParser::parseIndex(Postfix& value) {
  const std::size_t place = value.place;
  std::size_t height = value.height;
  ExpressionPointer base = finished(std::move(value));
  advance();
  using Place = IndexExpression::Place;
  Place which = Place::at;
  ExpressionPointer index;
  if (keyword_ == Keyword::first || keyword_ == Keyword::last || keyword_ == Keyword::size) {
    which = keyword_ == Keyword::first  ? Place::first
            : keyword_ == Keyword::last ? Place::last
                                        : Place::size;
    advance();
  } else {
    index = parseArgument(height);
  }
  expectSymbol(u"]", "“]” is missing");
  checkHeight(height + 1, place);
  value = Postfix{std::make_unique<IndexExpression>(std::move(base), which, std::move(index)),
                  {},
                  false,
                  place,
                  height + 1};
}

void PredicateParser::setConstant(Postfix& value, Value constant) {
  value.base = std::make_unique<ConstantExpression>(std::move(constant));
  advance();
}

ExpressionPointer PredicateParser::finished(Postfix value) const {
  if (!value.hasKeys) return std::move(value.base);
  const bool isOfItem = dynamic_cast<const SelfExpression*>(value.base.get()) != nullptr;
  try {
    return std::make_unique<KeyPathExpression>(isOfItem ? nullptr : std::move(value.base),
                                               KeyPath(value.keys, KeyPath::TextKeys::published));
  } catch (const KeyPathError& error) {
    std::string reason = error.reason();
    reason.pop_back();
    fail(value.place, reason);
  }
}

ExpressionPointer PredicateParser::parseArgument(std::size_t& height) {
  Operand operand = parseOperand(kOr);
  height = std::max(height, operand.height);
  return takeExpression(std::move(operand));
}

// Values between commas up to the closing bracket; the opening one has been read.
std::vector<ExpressionPointer> PredicateParser::parseList(std::u16string_view closing,
                                                          std::size_t& height) {
  std::vector<ExpressionPointer> items;
  if (takeSymbol(closing)) return items;
  do {
    items.push_back(parseArgument(height));
  } while (takeSymbol(u","));
  expectSymbol(closing, closing == u"}" ? "“,” or “}” is missing" : "“,” or “)” is missing");
  return items;
}

ExpressionPointer PredicateParser::parseAggregate(std::size_t& height) {
  std::vector<ExpressionPointer> items = parseList(u"}", height);
  ++height;
  const bool isConstant = std::ranges::all_of(
      items, [](const ExpressionPointer& item) { return item->constant() != nullptr; });
  if (!isConstant) return std::make_unique<AggregateExpression>(std::move(items));
  std::vector<Value> values;
  values.reserve(items.size());
  for (const ExpressionPointer& item : items) values.push_back(*item->constant());
  return std::make_unique<ConstantExpression>(Value(std::move(values)));
}

// name(a, b), and add:to:(a, b)
ExpressionPointer PredicateParser::parseCall(const PredicateToken& name, std::size_t& height) {
  std::u16string fullName = name.text;
  while (takeSymbol(u":")) {
    fullName += u':';
    if (token_.kind != TokenKind::word) continue;
    fullName += token_.text;
    advance();
    if (!token_.isSymbol(u":")) fail(token_.begin, "“:” is missing in the name of a function");
  }
  const PredicateFunction* const function = PredicateFunction::named(fullName);
  if (function == nullptr) {
    fail(name.begin, noFunction(fullName));
  }
  expectSymbol(u"(", "“(” is missing behind the name of a function");
  std::vector<ExpressionPointer> arguments = parseList(u")", height);
  ++height;
  return call(*function, std::move(arguments), name.begin);
}

ExpressionPointer PredicateParser::call(const PredicateFunction& function,
                                        std::vector<ExpressionPointer> arguments,
                                        std::size_t place) const {
  const bool fits =
      arguments.size() >= function.fewestArguments && arguments.size() <= function.mostArguments;
  if (!fits) {
    fail(place,
         "the function “" + utf8FromUtf16(function.name) + "” does not take this number of values");
  }
  return std::make_unique<FunctionExpression>(function, std::move(arguments));
}

// FUNCTION("sum:", list), or FUNCTION(a, "add:to:", b) with the first value in front.
ExpressionPointer PredicateParser::parseFunctionForm(std::size_t place, std::size_t& height) {
  expectSymbol(u"(", "“(” is missing behind FUNCTION");
  std::vector<ExpressionPointer> arguments = parseList(u")", height);
  ++height;
  const Value* unknown = nullptr;
  for (std::size_t i = 0; i < std::min<std::size_t>(arguments.size(), 2); ++i) {
    const Value* const name = arguments[i]->constant();
    if (name == nullptr || !name->isText()) continue;
    const PredicateFunction* const function = PredicateFunction::named(name->text());
    if (function == nullptr) {
      unknown = name;
      continue;
    }
    arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(i));
    return call(*function, std::move(arguments), place);
  }
  if (unknown != nullptr) fail(place, noFunction(unknown->text()));
  fail(place, R"(FUNCTION needs the name of a function, as in FUNCTION("sum:", list))");
}

ExpressionPointer PredicateParser::parseSubquery(std::size_t& height) {
  expectSymbol(u"(", "“(” is missing behind SUBQUERY");
  ExpressionPointer list = parseArgument(height);
  expectSymbol(u",", "“,” is missing");
  if (token_.kind != TokenKind::variable) {
    fail(token_.begin, "a variable such as $x is missing in SUBQUERY");
  }
  const std::size_t slot = variableSlot(token_.text);
  advance();
  expectSymbol(u",", "“,” is missing");
  Operand operand = parseOperand(kOr);
  height = std::max(height, operand.height) + 1;
  ConditionPointer condition = takeCondition(std::move(operand));
  expectSymbol(u")", "“)” is missing");
  return std::make_unique<SubqueryExpression>(std::move(list), slot, std::move(condition));
}

ExpressionPointer PredicateParser::parseCast(std::size_t& height) {
  expectSymbol(u"(", "“(” is missing behind CAST");
  ExpressionPointer operand = parseArgument(height);
  ++height;
  expectSymbol(u",", "“,” is missing");
  const std::u16string_view name =
      token_.kind == TokenKind::text ? token_.text : std::u16string_view();
  CastExpression::Target target = CastExpression::Target::number;
  if (name == u"NSString") {
    target = CastExpression::Target::text;
  } else if (name == u"NSDate") {
    target = CastExpression::Target::date;
  } else if (name != u"NSNumber" && name != u"NSDecimalNumber") {
    fail(token_.begin, R"(CAST goes to "NSNumber", "NSString" or "NSDate")");
  }
  advance();
  expectSymbol(u")", "“)” is missing");
  return std::make_unique<CastExpression>(std::move(operand), target);
}

ExpressionPointer PredicateParser::parseTernary(std::size_t& height) {
  expectSymbol(u"(", "“(” is missing behind TERNARY");
  Operand operand = parseOperand(kOr);
  height = std::max(height, operand.height);
  ConditionPointer condition = takeCondition(std::move(operand));
  expectSymbol(u",", "“,” is missing");
  ExpressionPointer ifTrue = parseArgument(height);
  expectSymbol(u",", "“,” is missing");
  ExpressionPointer otherwise = parseArgument(height);
  ++height;
  expectSymbol(u")", "“)” is missing");
  return std::make_unique<ConditionalExpression>(std::move(condition), std::move(ifTrue),
                                                 std::move(otherwise));
}

}  // namespace skerrow::foundation
