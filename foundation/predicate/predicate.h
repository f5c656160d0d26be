#pragma once
// Predicate: a condition on a value, written in the platform's published predicate
// format language, read once and asked of many items.
//
//   Predicate::parse(u"age > 30 AND name BEGINSWITH[cd] 'a'").evaluate(record)
//   Predicate::parse(u"%K == %@", arguments)     filled in order: a key, a value
//   Predicate::parse(u"SELF IN $wanted").evaluate(item, variables)
//   Predicate::parse(u"ANY items.price > 3")
//
// On a record a key names a label, and an absent label is null; SELF is the item.
// An item of the wrong kind does not satisfy the predicate, also not one with NOT.
// What cannot be evaluated at all is an error: division by zero, a pattern of
// MATCHES that is none, a variable without a value, work without measure.
//
// Copies share what was read. A predicate may be used on one thread at a time, a
// copy of it on another.

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "foundation/predicate/predicate_error.h"
#include "foundation/predicate/predicate_surroundings.h"
#include "values/record.h"
#include "values/value.h"

namespace skerrow::foundation {

class PredicateEvaluation;

class Predicate {
 public:
  /// Placeholders are filled from `arguments` in order; a placeholder in quotation
  /// marks is text. Throws PredicateError.
  static Predicate parse(std::u16string_view format, std::span<const Value> arguments = {},
                         const PredicateSurroundings& surroundings = {});

  Predicate(const Predicate& other);
  Predicate(Predicate&&) noexcept;
  Predicate& operator=(Predicate other) noexcept;
  ~Predicate();

  /// Whether the item satisfies the predicate. Throws PredicateError.
  [[nodiscard]] bool evaluate(const Value& item) const;

  /// The same with values for the variables, by their names without "$".
  [[nodiscard]] bool evaluate(const Value& item, const Record& variables) const;

  [[nodiscard]] const std::u16string& format() const noexcept;

 private:
  struct Compiled;

  explicit Predicate(std::shared_ptr<const Compiled> compiled);
  [[nodiscard]] bool evaluate(const Value& item, const Record* variables) const;

  std::shared_ptr<const Compiled> compiled_;
  // Room for evaluations, made for the first one and never shared.
  mutable std::unique_ptr<PredicateEvaluation> evaluation_;
};

}  // namespace skerrow::foundation
