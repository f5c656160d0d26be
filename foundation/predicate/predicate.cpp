#include "foundation/predicate/predicate.h"

#include <utility>

#include "foundation/predicate/predicate_parser.h"
#include "values/depth.h"

namespace skerrow::foundation {

namespace {

constexpr std::string_view kTooDeep = "a list is nested too deep";

}  // namespace

struct Predicate::Compiled {
  std::u16string format;
  PredicateSurroundings surroundings;
  ParsedPredicate parsed;
};

Predicate::Predicate(std::shared_ptr<const Compiled> compiled) : compiled_(std::move(compiled)) {}

Predicate::Predicate(const Predicate& other) : compiled_(other.compiled_) {}
Predicate::Predicate(Predicate&&) noexcept = default;
Predicate::~Predicate() = default;

Predicate& Predicate::operator=(Predicate other) noexcept {
  compiled_.swap(other.compiled_);
  evaluation_.swap(other.evaluation_);
  return *this;
}

Predicate Predicate::parse(std::u16string_view format, std::span<const Value> arguments,
                           const PredicateSurroundings& surroundings) {
  try {
    return Predicate(std::make_shared<const Compiled>(
        Compiled{std::u16string(format), surroundings,
                 PredicateParser(format, arguments, surroundings).parse()}));
  } catch (const NestingTooDeep&) {
    throw PredicateError::unreadable(format, format.size(), kTooDeep);
  }
}

bool Predicate::evaluate(const Value& item) const { return evaluate(item, nullptr); }

bool Predicate::evaluate(const Value& item, const Record& variables) const {
  return evaluate(item, &variables);
}

bool Predicate::evaluate(const Value& item, const Record* variables) const {
  if (!evaluation_) {
    evaluation_ = std::make_unique<PredicateEvaluation>(
        compiled_->parsed.variables.size(), compiled_->parsed.matchCount, compiled_->surroundings);
  }
  try {
    evaluation_->begin(item, variables);
    return compiled_->parsed.condition->evaluate(*evaluation_) == Truth::yes;
  } catch (const EvaluationFault& fault) {
    throw PredicateError::failing(compiled_->format, fault.what());
  } catch (const TooManySteps& error) {
    throw PredicateError::failing(compiled_->format, error.what() + std::string(" on one item"));
  } catch (const WholeMatchError& error) {
    throw PredicateError::failing(compiled_->format, error.what());
  } catch (const DivisionByZero& error) {
    throw PredicateError::failing(compiled_->format, error.what());
  } catch (const NestingTooDeep&) {
    throw PredicateError::failing(compiled_->format, kTooDeep);
  }
}

const std::u16string& Predicate::format() const noexcept { return compiled_->format; }

}  // namespace skerrow::foundation
