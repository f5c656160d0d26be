#include "tests/support/program.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace skerrow::tests {

namespace {

constexpr int kClosed = -1;

[[noreturn]] void fail(const char* attempt, int errorNumber) {
  throw std::system_error(errorNumber, std::generic_category(), attempt);
}

void close(int& descriptor) {
  if (descriptor >= 0) ::close(std::exchange(descriptor, kClosed));
}

// What the program is to find as its standard streams. Spawning reports errors
// as its result.
class Redirections {
 public:
  Redirections() { ::posix_spawn_file_actions_init(&actions_); }
  Redirections(const Redirections&) = delete;
  Redirections& operator=(const Redirections&) = delete;
  ~Redirections() {
    ::posix_spawn_file_actions_destroy(&actions_);
    for (int& end : programEnds_) close(end);
  }

  /// Gives our end of the pipe, if it is one.
  int connect(const StandardStream& stream, int standard) {
    const bool isInput = standard == STDIN_FILENO;
    if (stream.to == StandardStream::To::nowhere) {
      ::posix_spawn_file_actions_addclose(&actions_, standard);
      return kClosed;
    }
    if (stream.to == StandardStream::To::file) {
      ::posix_spawn_file_actions_addopen(&actions_, standard, stream.path.c_str(),
                                         isInput ? O_RDONLY : O_WRONLY, 0);
      return kClosed;
    }
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) fail("making a pipe", errno);
    const auto [programEnd, ownEnd] =
        isInput ? std::pair(ends[0], ends[1]) : std::pair(ends[1], ends[0]);
    ::fcntl(ownEnd, F_SETFL, O_NONBLOCK);
    ::posix_spawn_file_actions_adddup2(&actions_, programEnd, standard);
    programEnds_.push_back(programEnd);
    return ownEnd;
  }

  pid_t spawn(const std::vector<std::string>& words, const std::vector<std::string>& environment) {
    const auto pointers = [](const std::vector<std::string>& texts) {
      std::vector<char*> all;
      all.reserve(texts.size() + 1);
      for (const std::string& text : texts) all.push_back(const_cast<char*>(text.c_str()));
      all.push_back(nullptr);
      return all;
    };
    // The tests ignore closed pipes; the program must see to them itself.
    posix_spawnattr_t attributes;
    sigset_t defaults;
    ::sigemptyset(&defaults);
    ::sigaddset(&defaults, SIGPIPE);
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setsigdefault(&attributes, &defaults);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t process = -1;
    const int problem = ::posix_spawn(&process, words.front().c_str(), &actions_, &attributes,
                                      pointers(words).data(), pointers(environment).data());
    ::posix_spawnattr_destroy(&attributes);
    if (problem != 0) fail("starting the program", problem);
    return process;
  }

 private:
  posix_spawn_file_actions_t actions_;
  std::vector<int> programEnds_;
};

std::vector<std::string> environmentWith(const std::vector<std::string>& additions) {
  std::vector<std::string> all = additions;  // the first of a name counts
  for (char** entry = environ; *entry != nullptr; ++entry) all.emplace_back(*entry);
  return all;
}

}  // namespace

bool ProgramEnd::isExit(int status) const {
  return WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == status;
}

std::string ProgramEnd::summary() const {
  const std::string how = WIFSIGNALED(waitStatus)
                              ? "signal " + std::to_string(WTERMSIG(waitStatus))
                              : "status " + std::to_string(WEXITSTATUS(waitStatus));
  return how + ", output “" + output.substr(0, 2000) + "”, errors “" + errors.substr(0, 2000) + "”";
}

ProgramEnd runProgram(const ProgramSetup& setup, std::string_view input) {
  Program program(setup);
  program.write(input);
  return program.finish();
}

Program::Program(const ProgramSetup& setup)
    : deadline_(std::chrono::steady_clock::now() + setup.limit) {
  std::signal(SIGPIPE, SIG_IGN);
  Redirections redirections;
  input_ = redirections.connect(setup.input, STDIN_FILENO);
  output_ = redirections.connect(setup.output, STDOUT_FILENO);
  errors_ = redirections.connect({}, STDERR_FILENO);
  const char* const program = std::getenv("SKERROW_PROGRAM");
  std::vector<std::string> words = {program != nullptr ? program : SKERROW_PROGRAM};
  words.insert(words.end(), setup.words.begin(), setup.words.end());
  process_ = redirections.spawn(words, environmentWith(setup.environment));
  ended_ = static_cast<int>(::syscall(SYS_pidfd_open, process_, 0));
  if (ended_ < 0) fail("watching the program", errno);
}

Program::~Program() {
  if (process_ > 0) {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
  for (int* descriptor : {&ended_, &input_, &output_, &errors_}) close(*descriptor);
}

bool Program::write(std::string_view bytes) {
  std::string_view unwritten = bytes;
  waitUntil([&] { return unwritten.empty() || input_ == kClosed; }, &unwritten);
  return unwritten.empty();
}

void Program::closeInput() { close(input_); }

void Program::closeOutput() { close(output_); }

std::optional<std::string> Program::readLine() {
  std::size_t end = std::string::npos;
  std::size_t searched = 0;
  waitUntil([&] {
    end = outputRead_.find('\n', std::exchange(searched, outputRead_.size()));
    return end != std::string::npos || output_ == kClosed;
  });
  if (end == std::string::npos) return std::nullopt;
  std::string line = outputRead_.substr(0, end);
  outputRead_.erase(0, end + 1);
  return line;
}

std::size_t Program::peakMemoryInBytes() const {
  std::ifstream status("/proc/" + std::to_string(process_) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::stoul(line.substr(6)) * 1024;
  }
  throw std::runtime_error("the program's memory cannot be seen");
}

ProgramEnd Program::finish() {
  closeInput();
  bool hasEnded = false;
  waitUntil([&] {
    pollfd end = {ended_, POLLIN, 0};
    hasEnded = hasEnded || (output_ == kClosed && errors_ == kClosed && ::poll(&end, 1, 0) == 1);
    return hasEnded;
  });
  ProgramEnd end;
  if (::waitpid(std::exchange(process_, -1), &end.waitStatus, 0) < 0) fail("waiting", errno);
  end.output = std::exchange(outputRead_, {});
  end.errors = std::exchange(errorsRead_, {});
  return end;
}

// Takes what the program writes and gives it what it has not been given yet.
void Program::waitUntil(const std::function<bool()>& isDone, std::string_view* unwritten) {
  while (!isDone()) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline_ - std::chrono::steady_clock::now());
    const bool isAllRead = output_ == kClosed && errors_ == kClosed;
    pollfd watched[] = {{unwritten != nullptr ? input_ : kClosed, POLLOUT, 0},
                        {output_, POLLIN, 0},
                        {errors_, POLLIN, 0},
                        {isAllRead ? ended_ : kClosed, POLLIN, 0}};
    const int ready = ::poll(watched, std::size(watched), static_cast<int>(left.count()));
    if (ready < 0 && errno != EINTR) fail("waiting for the program", errno);
    if (ready == 0 || left.count() <= 0) {
      ::kill(process_, SIGKILL);
      throw std::runtime_error("the program took too long; it wrote “" +
                               outputRead_.substr(0, 2000) + "” and “" +
                               errorsRead_.substr(0, 2000) + "”");
    }
    if (watched[0].revents != 0) writeSome(*unwritten);
    if (watched[1].revents != 0) collect(output_, outputRead_);
    if (watched[2].revents != 0) collect(errors_, errorsRead_);
  }
}

void Program::collect(int& descriptor, std::string& into) {
  char buffer[64 * 1024];
  const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
  if (count > 0) {
    into.append(buffer, static_cast<std::size_t>(count));
  } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    close(descriptor);
  }
}

void Program::writeSome(std::string_view& bytes) {
  const ssize_t count = ::write(input_, bytes.data(), bytes.size());
  if (count >= 0) {
    bytes.remove_prefix(static_cast<std::size_t>(count));
  } else if (errno != EAGAIN && errno != EINTR) {
    close(input_);
  }
}

}  // namespace skerrow::tests
