#pragma once
// Reading and writing bytes: files and the standard streams. Errors are thrown
// as PlatformError. One thread at a time for each object.

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace skerrow::platform {

/// A file, pipe or terminal that is read from front to back.
class InputFile {
 public:
  /// Opens a file by its path.
  explicit InputFile(const std::string& path);
  static InputFile standardInput();

  InputFile(InputFile&& other) noexcept;
  InputFile& operator=(InputFile&&) = delete;
  ~InputFile();

  /// Fills up to `capacity` bytes and says how many; 0 is the end.
  std::size_t read(char* buffer, std::size_t capacity);

  /// What to call this in a message.
  [[nodiscard]] const std::string& name() const noexcept { return name_; }

 private:
  InputFile(int descriptor, std::string name) noexcept;

  int descriptor_;
  std::string name_;
};

/// Buffered writing to one of the standard streams.
class OutputStream {
 public:
  static OutputStream standardOutput();

  void put(char character) {
    if (used_ == kCapacity) flush();
    buffer_[used_++] = character;
  }
  void write(std::string_view bytes);
  /// Hands everything to the system; throws when it does not take it.
  void flush();

  /// A place in what is written.
  struct Place {
    std::size_t flushes;
    std::size_t used;
  };
  [[nodiscard]] Place place() const noexcept { return {flushes_, used_}; }
  /// Takes back what was written behind a place; false where it has been handed over.
  bool goBackTo(Place place) noexcept;

 private:
  static constexpr std::size_t kCapacity = 64 * 1024;

  OutputStream(int descriptor, std::string name);
  void writeAll(const char* bytes, std::size_t count);

  int descriptor_;
  std::string name_;
  std::size_t used_ = 0;
  std::size_t flushes_ = 0;
  // Inside, as giving a large block back makes the allocator tidy all that it has, at the
  // very time when somebody waits for the end.
  std::array<char, kCapacity> buffer_{};
};

/// The whole content of a regular file.
std::string readWholeFile(const std::string& path);

/// Keeps the places of standard streams that were closed, so that nothing else is
/// opened there; using such a stream is then an error. To be called first of all.
void keepStandardStreams() noexcept;

/// A closed pipe is then reported where it is written to, instead of ending the program.
void reportClosedPipesAsErrors() noexcept;

/// Ends the program at once with a status, without waiting for work still running.
[[noreturn]] void endProcess(int status) noexcept;

}  // namespace skerrow::platform
