#include "platform/byte_stream.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "platform/platform_error.h"
#include "tests/support/scratch_folder.h"

namespace skerrow::platform {
namespace {

using tests::ScratchFolder;

std::string failureOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const PlatformError& error) {
    return error.localizedDescription();
  }
  return "no failure";
}

std::string readInPieces(InputFile& file, std::size_t capacity) {
  std::string content;
  std::string piece(capacity, '\0');
  while (const std::size_t count = file.read(piece.data(), capacity))
    content.append(piece, 0, count);
  return content;
}

TEST(ReadWholeFile, GivesEveryByte) {
  const ScratchFolder folder;
  const std::string contents[] = {"",
                                  "a",
                                  std::string("\0\xFF\n", 3),
                                  std::string(4095, 'x'),
                                  std::string(4096, 'y'),
                                  std::string(4097, 'z'),
                                  std::string(1 << 20, 'b')};
  for (const std::string& content : contents) {
    EXPECT_EQ(readWholeFile(folder.write("file é 🏔", content)), content) << content.size();
  }
}

TEST(ReadWholeFile, FollowsLinks) {
  const ScratchFolder folder;
  std::filesystem::create_symlink(folder.write("file", "content"), folder.path("link"));
  EXPECT_EQ(readWholeFile(folder.path("link")), "content");
}

// Files that the system makes up say that they are empty.
TEST(ReadWholeFile, ReadsMoreThanTheSizeThatTheSystemTells) {
  const std::string content = readWholeFile("/proc/self/status");
  EXPECT_TRUE(content.starts_with("Name:")) << content;
  EXPECT_TRUE(content.ends_with('\n'));
}

TEST(ReadWholeFile, RefusesWhatIsNoRegularFileWithoutWaitingForIt) {
  const ScratchFolder folder;
  const std::string pipe = folder.path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path :
       {folder.path(), pipe, std::string("/dev/null"), std::string("/")}) {
    EXPECT_EQ(failureOf([&] { readWholeFile(path); }),
              "Could not read “" + path + "”: it is not a regular file.");
  }
}

TEST(ReadWholeFile, SaysWhyAFileCannotBeOpened) {
  const ScratchFolder folder;
  folder.write("file", "");
  std::filesystem::create_symlink(folder.path("nowhere"), folder.path("dangling"));
  const std::string missing = folder.path("missing é");
  const std::pair<std::string, std::string> rows[] = {
      {missing, "No such file or directory."},
      {folder.path("dangling"), "No such file or directory."},
      {folder.path("file/inside"), "Not a directory."},
      {"", "No such file or directory."},
      {folder.path(std::string(300, 'x')), "File name too long."},
  };
  for (const auto& [path, reason] : rows) {
    EXPECT_EQ(failureOf([&path = path] { readWholeFile(path); }),
              "Could not open the file “" + path + "”: " + reason);
  }
}

TEST(ReadWholeFile, RefusesAPathWithNulWhateverStandsBeforeIt) {
  const ScratchFolder folder;
  const std::string file = folder.write("file", "content");
  for (const std::string& before : {file, folder.path("missing"), folder.path(), std::string()}) {
    EXPECT_EQ(failureOf([&] { readWholeFile(before + std::string("\0x", 2)); }),
              "Could not open the file: a path cannot contain the character NUL.")
        << before;
  }
}

TEST(InputFile, ReadsFromFrontToBackInPiecesOfAnySize) {
  const ScratchFolder folder;
  const std::string content = "0123456789 é";
  folder.write("file", content);
  for (const std::size_t capacity : {1U, 2U, 5U, 100U}) {
    InputFile file(folder.path("file"));
    EXPECT_EQ(readInPieces(file, capacity), content);
    char more = 0;
    EXPECT_EQ(file.read(&more, 1), 0U);
  }
}

TEST(InputFile, SeesWhatIsAddedWhileItIsOpen) {
  const ScratchFolder folder;
  folder.write("file", "first");
  InputFile file(folder.path("file"));
  EXPECT_EQ(readInPieces(file, 3), "first");
  std::ofstream(folder.path("file"), std::ios::app) << " second";
  EXPECT_EQ(readInPieces(file, 3), " second");
}

TEST(InputFile, ReadsAPipeToItsEnd) {
  const ScratchFolder folder;
  const std::string path = folder.path("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const std::string content(200000, 'p');
  std::jthread writer([&] { std::ofstream(path, std::ios::binary) << content; });
  InputFile file(path);
  EXPECT_EQ(readInPieces(file, 4096), content);
}

TEST(InputFile, IsNamedByItsPathForMessages) {
  const ScratchFolder folder;
  folder.write("file", "");
  EXPECT_EQ(InputFile(folder.path("file")).name(), "the file “" + folder.path("file") + "”");
  EXPECT_EQ(InputFile::standardInput().name(), "standard input");
}

TEST(InputFile, SaysWhatCannotBeRead) {
  const ScratchFolder folder;
  const std::string path = folder.path();
  EXPECT_EQ(failureOf([&] {
              InputFile file(path);
              char byte = 0;
              file.read(&byte, 1);
            }),
            "Could not read the file “" + path + "”: Is a directory.");
  EXPECT_EQ(failureOf([] { const InputFile file(std::string("\0", 1)); }),
            "Could not open the file: a path cannot contain the character NUL.");
}

TEST(InputFile, MovingHandsTheOpenFileOver) {
  const ScratchFolder folder;
  folder.write("file", "content");
  InputFile file(folder.path("file"));
  char first = 0;
  ASSERT_EQ(file.read(&first, 1), 1U);
  InputFile moved = std::move(file);
  EXPECT_EQ(readInPieces(moved, 100), "ontent");
}

// Points one of the standard streams elsewhere for a while.
class Redirected {
 public:
  Redirected(int stream, int target) : stream_(stream), saved_(::dup(stream)) {
    std::fflush(stdout);
    ::dup2(target, stream);
    ::close(target);
  }
  Redirected(const Redirected&) = delete;
  Redirected& operator=(const Redirected&) = delete;
  ~Redirected() {
    ::dup2(saved_, stream_);
    ::close(saved_);
  }

 private:
  int stream_;
  int saved_;
};

int openForWriting(const std::string& path) {
  return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

TEST(OutputStream, WritesEverythingInOrderWhateverTheSizesOfThePieces) {
  const ScratchFolder folder;
  std::string expected;
  {
    const Redirected redirected(STDOUT_FILENO, openForWriting(folder.path("out")));
    OutputStream output = OutputStream::standardOutput();
    for (const std::size_t size : {0U, 1U, 65535U, 1U, 65536U, 65537U, 300000U, 7U}) {
      const std::string piece(size, static_cast<char>('a' + size % 26));
      output.write(piece);
      output.put('|');
      expected += piece + '|';
    }
    output.flush();
  }
  EXPECT_EQ(readWholeFile(folder.path("out")), expected);
}

TEST(OutputStream, HandsNothingOverBeforeItMust) {
  const ScratchFolder folder;
  const Redirected redirected(STDOUT_FILENO, openForWriting(folder.path("out")));
  OutputStream output = OutputStream::standardOutput();
  output.write("waiting");
  EXPECT_EQ(readWholeFile(folder.path("out")), "");
  output.flush();
  EXPECT_EQ(readWholeFile(folder.path("out")), "waiting");
  output.flush();
  EXPECT_EQ(readWholeFile(folder.path("out")), "waiting");
}

TEST(OutputStream, SaysThatTheDeviceIsFull) {
  const Redirected redirected(STDOUT_FILENO, ::open("/dev/full", O_WRONLY | O_CLOEXEC));
  OutputStream output = OutputStream::standardOutput();
  output.put('x');
  EXPECT_EQ(failureOf([&] { output.flush(); }),
            "Could not write to standard output: No space left on device.");
  EXPECT_EQ(failureOf([&] { output.write(std::string(100000, 'x')); }),
            "Could not write to standard output: No space left on device.");
}

TEST(OutputStream, SaysThatThePipeIsClosedInsteadOfEndingTheProgram) {
  reportClosedPipesAsErrors();
  std::array<int, 2> ends = {};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  ::close(ends[0]);
  const Redirected redirected(STDOUT_FILENO, ends[1]);
  OutputStream output = OutputStream::standardOutput();
  output.put('x');
  EXPECT_EQ(failureOf([&] { output.flush(); }), "Could not write to standard output: Broken pipe.");
}

TEST(StandardInput, IsReadToItsEndAndStaysOpen) {
  const ScratchFolder folder;
  const std::string path = folder.write("in", "given");
  const Redirected redirected(STDIN_FILENO, ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  {
    InputFile input = InputFile::standardInput();
    EXPECT_EQ(readInPieces(input, 2), "given");
  }
  EXPECT_NE(::fcntl(STDIN_FILENO, F_GETFD), -1);
}

// Another program that shares a pipe may have set it so that it does not block.
TEST(StandardInput, WaitsForAPipeThatDoesNotBlock) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
  const std::string content(300000, 'p');
  std::jthread writer([&, end = ends[1]] {
    std::size_t written = 0;
    while (written < content.size()) {
      const ssize_t count = ::write(end, content.data() + written, content.size() - written);
      if (count > 0) written += static_cast<std::size_t>(count);
      if (count < 0) std::this_thread::yield();
    }
    ::close(end);
  });
  const Redirected redirected(STDIN_FILENO, ends[0]);
  InputFile input = InputFile::standardInput();
  EXPECT_EQ(readInPieces(input, 4096), content);
}

TEST(OutputStream, WaitsForAPipeThatDoesNotBlock) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  ASSERT_EQ(::fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
  const std::string content(1000000, 'p');  // more than a pipe holds
  std::string received;
  std::jthread reader([&, end = ends[0]] {
    std::array<char, 1000> piece = {};
    for (ssize_t count = 0; (count = ::read(end, piece.data(), piece.size())) > 0;) {
      received.append(piece.data(), static_cast<std::size_t>(count));
    }
    ::close(end);
  });
  {
    const Redirected redirected(STDOUT_FILENO, ends[1]);
    OutputStream output = OutputStream::standardOutput();
    output.write(content);
    output.flush();
  }
  reader.join();
  EXPECT_EQ(received, content);
}

TEST(EndProcess, EndsAtOnceWithTheStatus) {
  EXPECT_EXIT(endProcess(7), testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace skerrow::platform
