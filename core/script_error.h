#pragma once
// ScriptError: how a command fails. It is thrown where the failure is found and
// caught in one place, the command's runner, which answers the script with its
// number and message.

#include <concepts>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "values/number.h"

namespace skerrow::core {

/// One row of a command's table of failures. "%@", "%d" and "%ld" in the message
/// stand for the offending values, in order.
struct ErrorEntry {
  int number;
  std::string_view message;
};

/// Numbers that the scripting layer itself answers with, as the platform defines them.
namespace scripting_error {
inline constexpr int kOutOfMemory = -108;
inline constexpr int kWrongKind = -1700;
inline constexpr int kUnknownArgument = -1701;
inline constexpr int kUnknownCommand = -1708;
inline constexpr int kTimedOut = -1712;
inline constexpr int kMissingArgument = -1715;
inline constexpr int kHandlerFailed = -10000;
}  // namespace scripting_error

/// A number as messages show it: an integer in full, a real in its shortest form.
std::string textFrom(Number number);

class ScriptError : public std::exception {
 public:
  ScriptError(int number, std::string message) : number_(number), message_(std::move(message)) {}

  /// An entry of a table, its placeholders filled with numbers or UTF-8 texts.
  template <class... Values>
  explicit ScriptError(const ErrorEntry& entry, const Values&... values)
      : number_(entry.number), message_(entry.message) {
    [[maybe_unused]] std::size_t from = 0;
    ((from = fillPlaceholder(from, asText(values))), ...);
  }

  [[nodiscard]] int number() const noexcept { return number_; }
  [[nodiscard]] const std::string& message() const noexcept { return message_; }
  [[nodiscard]] const char* what() const noexcept override { return message_.c_str(); }

  friend bool operator==(const ScriptError& a, const ScriptError& b) noexcept {
    return a.number_ == b.number_ && a.message_ == b.message_;
  }

 private:
  static std::string asText(std::integral auto value) { return std::to_string(value); }
  static std::string asText(Number value) { return textFrom(value); }
  static std::string asText(std::string_view value) { return std::string(value); }

  // Fills the first placeholder at or after `from`; returns where the filling ends.
  std::size_t fillPlaceholder(std::size_t from, const std::string& value);

  int number_;
  std::string message_;
};

}  // namespace skerrow::core
