#pragma once
// What the programs that compare two ways within one process have in common.

#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>

#include "core/unpack.h"
#include "foundation/text/text_encoding.h"
#include "foundation/url/url.h"
#include "platform/system_platform.h"
#include "values/text.h"

namespace skerrow::bench {

/// A pattern and a text to find it in: the arguments PATTERN FILE of such a program.
struct Task {
  Text pattern;
  Text text;
};

inline double secondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Runs a program: prints the seconds of ours and of the other way, and gives its exit status.
inline int compare(int argc, char** argv, const std::function<void(const Task&)>& ours,
                   const std::function<void(const Task&)>& other) {
  try {
    if (argc != 3) throw std::runtime_error(std::string("usage: ") + argv[0] + " PATTERN FILE");
    const Task task = {Text(foundation::utf16FromUtf8(argv[1]).value()),
                       core::bestStringFromURL(foundation::fileUrl(argv[2]).value(),
                                               platform::SystemFileContents())};
    const double oursSeconds = secondsOf([&] { ours(task); });
    const double otherSeconds = secondsOf([&] { other(task); });
    std::printf("%.6f %.6f\n", oursSeconds, otherSeconds);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}

}  // namespace skerrow::bench
