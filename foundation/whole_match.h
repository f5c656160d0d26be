#pragma once
// Whether a regular expression matches a whole text, for predicates. The last
// pattern stays compiled, so that asking the same of many texts is cheap. An
// object belongs to one thread at a time.

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

struct URegularExpression;

namespace skerrow::foundation {

/// A pattern that is none, or that takes too long on a text. The reason is a
/// clause without a full stop.
class WholeMatchError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class MatchCase : bool { sensitive, insensitive };

class WholeMatch {
 public:
  WholeMatch();
  WholeMatch(WholeMatch&&) noexcept;
  WholeMatch& operator=(WholeMatch&&) noexcept;
  ~WholeMatch();

  /// The pattern is in the syntax of ICU. Throws WholeMatchError.
  bool matches(std::u16string_view text, std::u16string_view pattern, MatchCase matchCase);

 private:
  struct Close {
    void operator()(URegularExpression* regex) const;
  };

  void compile(std::u16string_view pattern, MatchCase matchCase);

  std::u16string pattern_;
  std::unique_ptr<URegularExpression, Close> regex_;
};

}  // namespace skerrow::foundation
