#pragma once
// Reads a predicate format into a tree of conditions. A recursive descent over
// operators by their precedence, from loose to tight: OR; AND; NOT; comparisons
// and their quantifiers; + and -; * and /; the sign -; **, which joins to the right.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "foundation/predicate/predicate_condition.h"
#include "foundation/predicate/predicate_expression.h"
#include "foundation/predicate/predicate_function.h"
#include "foundation/predicate/predicate_keyword.h"
#include "foundation/predicate/predicate_scanner.h"
#include "foundation/predicate/predicate_surroundings.h"
#include "values/value.h"
#include "values/value_index.h"

namespace skerrow::foundation {

/// How deep brackets, signs and indexes may nest, and so the tree.
inline constexpr std::size_t kMaximumPredicateNesting = 500;

struct ParsedPredicate {
  ConditionPointer condition;
  std::vector<Value> variables;  ///< the names, by slot
  std::size_t matchCount = 0;    ///< how many MATCHES there are
};

class PredicateParser {
 public:
  /// The arguments fill the placeholders in order; more of them than there are
  /// placeholders do no harm. All must outlive the
  /// parser. Throws PredicateError, here and in parse().
  PredicateParser(std::u16string_view format, std::span<const Value> arguments,
                  const PredicateSurroundings& surroundings);

  /// Reads the whole format. To be called once.
  ParsedPredicate parse();

 private:
  using Keyword = PredicateKeyword;
  using TokenKind = PredicateToken::Kind;

  // Loosest first. Those of calculations stand in the order of the C family of languages,
  // but bits bind more tightly than comparisons, which give no value here.
  enum Precedence : int {
    kNone,
    kOr,
    kAnd,
    kComparison,
    kBitwiseOr,
    kBitwiseXor,
    kBitwiseAnd,
    kShift,
    kSum,
    kProduct,
    kSign,
    kPower,
    kCalculation = kBitwiseOr,  // any of them
  };

  // What has been read: an expression or a condition, where it begins and how deep it is.
  struct Operand {
    std::variant<ExpressionPointer, ConditionPointer> content;
    std::size_t place = 0;
    std::size_t height = 1;
  };

  // An operator between two operands.
  struct Infix {
    Precedence precedence = kNone;
    ArithmeticOperator arithmetic = ArithmeticOperator::add;
    Comparison comparison = Comparison::equal;
  };

  // Counts how deep the descent is for as long as it lives.
  class Descent {
   public:
    explicit Descent(PredicateParser& parser) : parser_(parser) {
      parser_.checkHeight(++parser_.depth_, parser_.token_.begin);
    }
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;
    ~Descent() { --parser_.depth_; }

   private:
    PredicateParser& parser_;
  };

  // What a value is built from, part by part: a base, then keys, then an index, and so on.
  struct Postfix {
    ExpressionPointer base;  // null for the item
    std::u16string keys;
    bool hasKeys = false;
    std::size_t place = 0;
    std::size_t height = 1;
  };

  [[noreturn]] void fail(std::size_t place, std::string_view what) const;
  [[noreturn]] void failUnexpected() const;
  void checkHeight(std::size_t height, std::size_t place) const;

  void advance();
  bool takeSymbol(std::u16string_view symbol);
  void expectSymbol(std::u16string_view symbol, std::string_view what);

  // Operators and conditions.
  ExpressionPointer takeExpression(Operand operand) const;
  ConditionPointer takeCondition(Operand operand) const;
  Operand made(ExpressionPointer expression, std::size_t place, std::size_t height) const;
  Operand made(ConditionPointer condition, std::size_t place, std::size_t height) const;

  // The operator that the current token is, if it is one.
  [[nodiscard]] Infix infix() const;
  static Infix infixOfSymbol(std::u16string_view symbol);
  static Infix infixOfKeyword(Keyword keyword);

  Operand parseOperand(int loosest);
  Operand parsePrefix();
  Operand parseQuantified(Quantifier quantifier);
  Operand parseJoined(Operand left, Precedence precedence);
  Operand parseCompared(Operand left, Comparison comparison, Quantifier quantifier);
  Operand parseCalculated(Operand left, Precedence precedence);
  TextOptions parseOptions();

  // Values.
  Operand parseValue();
  bool parseBracketed(Postfix& value, Operand& condition);
  void parseWord(Postfix& value);
  void parseKeywordValue(Postfix& value);
  void parseKey(Postfix& value);
  [[nodiscard]] const Value& nextArgument();
  [[nodiscard]] std::u16string keyArgument();
  void parsePlaceholder(Postfix& value);
  void parseVariable(Postfix& value);
  void parseIndex(Postfix& value);
  ExpressionPointer finished(Postfix value) const;
  void setConstant(Postfix& value, Value constant);

  std::vector<ExpressionPointer> parseList(std::u16string_view closing, std::size_t& height);
  ExpressionPointer parseAggregate(std::size_t& height);
  ExpressionPointer parseCall(const PredicateToken& name, std::size_t& height);
  ExpressionPointer parseFunctionForm(std::size_t place, std::size_t& height);
  ExpressionPointer parseSubquery(std::size_t& height);
  ExpressionPointer parseCast(std::size_t& height);
  ExpressionPointer parseTernary(std::size_t& height);
  ExpressionPointer call(const PredicateFunction& function,
                         std::vector<ExpressionPointer> arguments, std::size_t place) const;
  ExpressionPointer parseArgument(std::size_t& height);

  std::size_t variableSlot(const std::u16string& name);

  std::u16string_view format_;
  PredicateScanner scanner_;
  std::span<const Value> arguments_;
  const PredicateSurroundings& surroundings_;
  std::size_t usedArguments_ = 0;
  PredicateToken token_;
  Keyword keyword_ = Keyword::none;
  std::size_t depth_ = 0;
  std::vector<Value> variables_;
  ValueIndex variableIndex_;
  std::size_t matchCount_ = 0;
};

}  // namespace skerrow::foundation
