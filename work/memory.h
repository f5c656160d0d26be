#pragma once
// Memory as a measure: what a thread makes is counted while a MemoryScope lives,
// and the piece that would go beyond its allowance is not made: MemoryExceeded is
// thrown in its place, so that everything made before can be given back.
//
// Counted is what goes through operator new and delete on this thread. A task that
// gives back what others made for it may have taken less than nothing; that is as
// it should be, as the machine has that much more.

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <utility>

namespace skerrow::work {

/// Thrown where a piece of memory is asked for that the work may not have.
class MemoryExceeded : public std::bad_alloc {
 public:
  MemoryExceeded(std::size_t wanted, std::size_t allowance) noexcept
      : wanted_(wanted), allowance_(allowance) {}

  /// What the work would have taken in all, in bytes.
  [[nodiscard]] std::size_t wanted() const noexcept { return wanted_; }
  [[nodiscard]] std::size_t allowance() const noexcept { return allowance_; }
  [[nodiscard]] const char* what() const noexcept override { return "more memory than allowed"; }

 private:
  std::size_t wanted_;
  std::size_t allowance_;
};

/// The same, found out before anything was made, by somebody who can say what it is.
class ResultTooLarge : public MemoryExceeded {
 public:
  ResultTooLarge(std::size_t wanted, std::size_t allowance, std::string what) noexcept
      : MemoryExceeded(wanted, allowance), what_(std::move(what)) {}

  /// "a list of 3000000000 items"
  [[nodiscard]] const char* what() const noexcept override { return what_.c_str(); }

 private:
  std::string what_;
};

namespace detail {
struct Tally {
  std::int64_t taken;
  std::int64_t allowance;
};
extern constinit thread_local Tally tally;
}  // namespace detail

/// What the work of this thread may still take, in bytes; very much while nobody measures.
[[nodiscard]] std::size_t memoryLeft() noexcept;

/// For what is about to be made of so many pieces of so many bytes each. `what` says in
/// words what it is, as in "a list of 3000000000 items". Throws ResultTooLarge.
void requireMemory(std::size_t count, std::size_t bytesEach, const std::string& what);

/// As long as it lives, this thread may take so many bytes. Scopes nest: the inner one
/// has no more than what the outer one has left.
class MemoryScope {
 public:
  explicit MemoryScope(std::size_t allowance) noexcept;
  MemoryScope(const MemoryScope&) = delete;
  MemoryScope& operator=(const MemoryScope&) = delete;
  ~MemoryScope();

 private:
  detail::Tally before_;
};

/// "1.5 GB": a size for people, in powers of ten.
std::string sizeInWords(std::size_t bytes);

}  // namespace skerrow::work
