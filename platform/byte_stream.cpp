#include "platform/byte_stream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/platform_error.h"

namespace skerrow::platform {

namespace {

constexpr int kClosed = -1;

std::string quoted(const std::string& path) { return "“" + path + "”"; }

void requireNoNul(const std::string& path) {
  if (path.find('\0') == std::string::npos) return;
  throw PlatformError("Could not open the file: a path cannot contain the character NUL.");
}

int openForReading(const std::string& path) {
  requireNoNul(path);
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw PlatformError("Could not open the file " + quoted(path), errno);
  return descriptor;
}

// Whether a call that failed is to be tried again: after a signal at once, on a stream
// that does not block once it is ready. Whoever shares a stream may have set it so.
bool mayTryAgain(int descriptor, short events) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
  constexpr int kForever = -1;
  pollfd waited = {descriptor, events, 0};
  return ::poll(&waited, 1, kForever) >= 0 || errno == EINTR;
}

}  // namespace

InputFile::InputFile(const std::string& path)
    : descriptor_(openForReading(path)), name_("the file " + quoted(path)) {}

InputFile::InputFile(int descriptor, std::string name) noexcept
    : descriptor_(descriptor), name_(std::move(name)) {}

InputFile InputFile::standardInput() { return {STDIN_FILENO, "standard input"}; }

InputFile::InputFile(InputFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, kClosed)), name_(std::move(other.name_)) {}

InputFile::~InputFile() {
  if (descriptor_ > STDERR_FILENO) ::close(descriptor_);
}

std::size_t InputFile::read(char* buffer, std::size_t capacity) {
  for (;;) {
    const ssize_t count = ::read(descriptor_, buffer, capacity);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (!mayTryAgain(descriptor_, POLLIN)) {
      throw PlatformError("Could not read " + name_, errno);
    }
  }
}

OutputStream::OutputStream(int descriptor, std::string name)
    : descriptor_(descriptor), name_(std::move(name)) {}

OutputStream OutputStream::standardOutput() { return {STDOUT_FILENO, "standard output"}; }

void OutputStream::write(std::string_view bytes) {
  if (bytes.size() > kCapacity - used_) {
    flush();
    if (bytes.size() >= kCapacity) return writeAll(bytes.data(), bytes.size());
  }
  std::memcpy(buffer_.data() + used_, bytes.data(), bytes.size());
  used_ += bytes.size();
}

bool OutputStream::goBackTo(Place place) noexcept {
  if (place.flushes != flushes_) return false;
  used_ = place.used;
  return true;
}

void OutputStream::flush() { writeAll(buffer_.data(), std::exchange(used_, 0)); }

void OutputStream::writeAll(const char* bytes, std::size_t count) {
  ++flushes_;
  while (count > 0) {
    const ssize_t written = ::write(descriptor_, bytes, count);
    if (written < 0) {
      if (mayTryAgain(descriptor_, POLLOUT)) continue;
      throw PlatformError("Could not write to " + name_, errno);
    }
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
}

std::string readWholeFile(const std::string& path) {
  requireNoNul(path);
  // Looked at before it is opened: opening a pipe would wait for its other end.
  struct stat status = {};
  if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    throw PlatformError("Could not read " + quoted(path) + ": it is not a regular file.",
                        S_ISDIR(status.st_mode) ? Failure::isAFolder : Failure::other);
  }
  InputFile file(path);
  std::string content(status.st_size > 0 ? static_cast<std::size_t>(status.st_size) + 1 : 4096,
                      '\0');
  std::size_t used = 0;
  while (const std::size_t count = file.read(content.data() + used, content.size() - used)) {
    used += count;
    if (used == content.size()) content.resize(used * 2);
  }
  content.resize(used);
  return content;
}

void keepStandardStreams() noexcept {
  // Each is opened the wrong way round, so that reading or writing it fails.
  constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_RDONLY};
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", kModes[stream]);
  }
}

void reportClosedPipesAsErrors() noexcept { std::signal(SIGPIPE, SIG_IGN); }

void endProcess(int status) noexcept {
  std::fflush(nullptr);
  std::_Exit(status);
}

}  // namespace skerrow::platform
