#include "cli/options.h"

#include <charconv>
#include <string_view>
#include <utility>

#include "foundation/text/quoted_text.h"

namespace skerrow::cli {

namespace {

constexpr std::string_view kHelp =
    R"(Skerrow edits text, lists and records for scripts.

  skerrow perform COMMAND [--direct JSON] [--arguments JSON] [--timeout SECONDS]
      Performs one command and prints its result as typed JSON.
      JSON can be given as it is, as @FILE, or as - to read standard input.
      The time-out is 120 seconds unless given; 0 means none.

  skerrow perform --stdin
      Reads one event a line, such as
        {"command": "SKWModifyList", "direct": [1, 2], "arguments": {"reversingOrder": true}}
      and answers each with one line: {"result": …}, {} or {"error": {…}}.

  skerrow commands [COMMAND]
      Shows what commands there are, or the arguments of one.

  skerrow --version
  skerrow --help

A command takes at most a quarter of the machine's memory, or as many bytes as the
environment variable SKERROW_MEMORY says.

Exit status: 0 when all went well, 1 when a command failed, 2 for wrong usage or
malformed JSON.

  skerrow perform SKWModifyList --direct '[[1,2],[3,4]]' --arguments '{"swapColsAndRows": true}'
  [[1,3],[2,4]]
)";

// The words still to be read.
class Words {
 public:
  explicit Words(std::span<const char* const> words) : words_(words) {}

  [[nodiscard]] bool isEmpty() const { return words_.empty(); }

  std::string take() {
    std::string word = words_.front();
    words_ = words_.subspan(1);
    return word;
  }

  // The value of an option, which follows it after "=" or as the next word.
  std::string valueOf(const std::string& option, std::optional<std::string> attached) {
    if (attached) return std::move(*attached);
    if (isEmpty()) throw UsageError(option + " needs a value after it");
    return take();
  }

  void requireEnd() {
    if (!isEmpty())
      throw UsageError("there is no use for “" + foundation::shortened(take()) + "” here");
  }

 private:
  std::span<const char* const> words_;
};

// "--direct=JSON" in its two parts; a word that is no option stays whole.
std::pair<std::string, std::optional<std::string>> splitOption(std::string word) {
  const std::size_t equals = word.starts_with('-') ? word.find('=') : std::string::npos;
  if (equals == std::string::npos) return {std::move(word), std::nullopt};
  return {word.substr(0, equals), word.substr(equals + 1)};
}

std::chrono::milliseconds timeoutFrom(const std::string& text) {
  double seconds = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, seconds);
  const auto timeout =
      error == std::errc() && stop == end ? scripting::timeoutFromSeconds(seconds) : std::nullopt;
  if (!timeout)
    throw UsageError("--timeout needs a number of seconds, 0 or more, not “" +
                     foundation::shortened(text) + "”");
  return *timeout;
}

void requireNoValue(const std::string& option, const std::optional<std::string>& attached) {
  if (attached) throw UsageError(option + " takes no value");
}

void setOnce(std::optional<std::string>& place, const std::string& option, std::string value) {
  if (place) throw UsageError(option + " is given twice");
  place = std::move(value);
}

Options readPerform(Words words) {
  PerformOne perform;
  std::optional<std::string> timeout;
  bool isStream = false;
  while (!words.isEmpty()) {
    auto [word, attached] = splitOption(words.take());
    if (word == "--direct") {
      setOnce(perform.direct, word, words.valueOf(word, std::move(attached)));
    } else if (word == "--arguments") {
      setOnce(perform.arguments, word, words.valueOf(word, std::move(attached)));
    } else if (word == "--timeout") {
      setOnce(timeout, word, words.valueOf(word, std::move(attached)));
    } else if (word == "--help") {
      requireNoValue(word, attached);
      return ShowHelp{};
    } else if (word == "--stdin") {
      requireNoValue(word, attached);
      isStream = true;
    } else if (word.starts_with('-')) {
      throw UsageError("perform has no option “" + foundation::shortened(word) + "”");
    } else if (!perform.command.empty()) {
      throw UsageError("perform takes one command, and “" + foundation::shortened(word) +
                       "” is a second one");
    } else if (word.find('=') != std::string::npos) {
      throw UsageError("“" + foundation::shortened(word) + "” is no name of a command");
    } else {
      perform.command = word;
    }
  }
  if (isStream) {
    if (!perform.command.empty() || perform.direct || perform.arguments || timeout) {
      throw UsageError("--stdin stands alone: each line that is read says what to perform");
    }
    return PerformStream{};
  }
  if (perform.command.empty()) {
    throw UsageError("perform needs the name of a command, such as SKWModifyList, or --stdin");
  }
  if (perform.direct == "-" && perform.arguments == "-") {
    throw UsageError("--direct and --arguments cannot both be read from standard input");
  }
  if (timeout) perform.timeout = timeoutFrom(*timeout);
  return perform;
}

Options readCommands(Words words) {
  ListCommands list;
  if (!words.isEmpty()) list.command = words.take();
  words.requireEnd();
  if (list.command == "--help") return ShowHelp{};
  return list;
}

}  // namespace

Options readOptions(std::span<const char* const> words) {
  Words left(words);
  if (left.isEmpty()) throw UsageError("say what to do, such as “skerrow perform SKWModifyList”");
  const std::string verb = left.take();
  if (verb == "perform") return readPerform(left);
  if (verb == "commands") return readCommands(left);
  if (verb == "--help" || verb == "-h") {
    left.requireEnd();
    return ShowHelp{};
  }
  if (verb == "--version") {
    left.requireEnd();
    return ShowVersion{};
  }
  throw UsageError("there is nothing called “" + foundation::shortened(verb) + "” to do");
}

std::string helpText() { return std::string(kHelp); }

}  // namespace skerrow::cli
