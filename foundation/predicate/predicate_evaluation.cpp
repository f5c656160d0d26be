#include "foundation/predicate/predicate_evaluation.h"

#include <utility>

#include "foundation/text/text_encoding.h"
#include "foundation/text/user_preferences.h"

namespace skerrow::foundation {

const Value& PredicateEvaluation::variable(std::size_t slot, const Value& name) const {
  if (variables_[slot].isSet) return variables_[slot].value;
  const Value* const given = given_ != nullptr ? given_->find(name) : nullptr;
  if (given == nullptr) {
    throw EvaluationFault("there is no value for the variable “$" + utf8FromUtf16(name.text()) +
                          "”");
  }
  return *given;
}

void PredicateEvaluation::assign(std::size_t slot, Value value) {
  variables_[slot] = {std::move(value), true};
  hasAssigned_ = true;
}

void PredicateEvaluation::forgetVariables() {
  for (Variable& variable : variables_) variable = {};
  hasAssigned_ = false;
}

const std::string& PredicateEvaluation::timeZone() {
  if (!timeZone_) {
    const platform::Environment* const environment = surroundings_.environment;
    timeZone_ = environment != nullptr ? userTimeZone(*environment) : std::string();
  }
  return *timeZone_;
}

Date PredicateEvaluation::now() const {
  if (surroundings_.clock == nullptr) throw EvaluationFault("nothing here knows the time");
  constexpr auto kStart = std::chrono::sys_days(std::chrono::year(2001) / 1 / 1);
  const std::chrono::duration<double> since = surroundings_.clock->wall() - kStart;
  return Date{since.count()};
}

std::mt19937_64& PredicateEvaluation::random() {
  if (random_.empty()) {
    if (surroundings_.chance == nullptr) throw EvaluationFault("nothing here draws by chance");
    random_.emplace_back(surroundings_.chance->draw());
  }
  return random_.front();
}

// A variable that an assignment set inside the binding is forgotten with it.
PredicateEvaluation::Binding::Binding(PredicateEvaluation& evaluation, std::size_t slot)
    : evaluation_(evaluation),
      slot_(slot),
      before_(std::exchange(evaluation.variables_[slot].value, Value())),
      wasSet_(std::exchange(evaluation.variables_[slot].isSet, true)) {}

PredicateEvaluation::Binding::~Binding() {
  evaluation_.variables_[slot_] = {std::move(before_), wasSet_};
}

void PredicateEvaluation::Binding::set(Value value) {
  evaluation_.variables_[slot_].value = std::move(value);
}

}  // namespace skerrow::foundation
