#pragma once
// Running the program `skerrow` as a person or another program would: words,
// environment and standard streams in; output, errors and exit status out. It is the
// one of this build, or the one that SKERROW_PROGRAM names in the environment. Waiting
// is bounded: a program that takes longer than its limit is killed and the wait
// throws std::runtime_error. One thread at a time for each object.

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace skerrow::tests {

/// Where one of the program's standard streams leads.
struct StandardStream {
  enum class To { pipe, file, nowhere };

  To to = To::pipe;  ///< nowhere: the program is started without it
  std::string path;

  static StandardStream file(std::string path) { return {To::file, std::move(path)}; }
  static StandardStream closed() { return {To::nowhere, {}}; }
};

struct ProgramSetup {
  std::vector<std::string> words;  ///< after the program's name
  StandardStream input = {};
  StandardStream output = {};
  std::vector<std::string> environment = {};  ///< "NAME=value", beside what the tests have
  std::chrono::seconds limit{100};            ///< for hangs only: sanitizers cost a factor of ten
};

/// How the program ended and what it wrote to its pipes.
struct ProgramEnd {
  int waitStatus = 0;
  std::string output;
  std::string errors;

  [[nodiscard]] bool isExit(int status) const;
  [[nodiscard]] std::string summary() const;
};

/// Runs it to its end, giving it all of the input while taking what it writes.
ProgramEnd runProgram(const ProgramSetup& setup, std::string_view input = {});

/// The program while it runs, for tests that talk to it.
class Program {
 public:
  explicit Program(const ProgramSetup& setup);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  /// Kills it if it still runs.
  ~Program();

  /// False when the program does not take its input any more.
  bool write(std::string_view bytes);
  void closeInput();
  /// Leaves its output unread from now on, as a reader that has gone away.
  void closeOutput();

  /// The next line that it writes, without its end; nothing at the end of its output.
  std::optional<std::string> readLine();

  /// The most memory that it has held so far, while it runs.
  [[nodiscard]] std::size_t peakMemoryInBytes() const;

  /// Closes its input and waits until it has ended. What was read before is left out.
  ProgramEnd finish();

 private:
  void waitUntil(const std::function<bool()>& isDone, std::string_view* unwritten = nullptr);
  void collect(int& descriptor, std::string& into);
  void writeSome(std::string_view& bytes);

  pid_t process_ = -1;
  int ended_ = -1;  // readable once the program has ended
  int input_ = -1;
  int output_ = -1;
  int errors_ = -1;
  std::string outputRead_;
  std::string errorsRead_;
  std::chrono::steady_clock::time_point deadline_;
};

}  // namespace skerrow::tests
