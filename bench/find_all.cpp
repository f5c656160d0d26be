// find_all PATTERN FILE: finds every match in the text of a file, once with the service that
// commands use and once with a bare ICU loop over the same UTF-16 text. Prints the seconds of
// each, compiling and building the result included; for comparing the two inside one process.

#include <unicode/uregex.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>

#include "core/unpack.h"
#include "foundation/text_encoding.h"
#include "foundation/url.h"
#include "text/regex_service.h"
#include "values/text.h"

namespace {

using skerrow::Text;

double secondsOf(const std::function<std::size_t()>& findAll, std::size_t& count) {
  const auto start = std::chrono::steady_clock::now();
  count = findAll();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::size_t bareLoop(const Text& pattern, const Text& text) {
  UErrorCode status = U_ZERO_ERROR;
  URegularExpression* regex = uregex_open(
      pattern.view().data(), static_cast<std::int32_t>(pattern.unitCount()), 0, nullptr, &status);
  uregex_setText(regex, text.view().data(), static_cast<std::int32_t>(text.unitCount()), &status);
  std::size_t count = 0;
  std::int64_t units = 0;  // of all matches, so that their places are really asked for
  while (uregex_findNext(regex, &status)) {
    units += uregex_end(regex, 0, &status) - uregex_start(regex, 0, &status);
    ++count;
  }
  uregex_close(regex);
  if (U_FAILURE(status) || units < 0) throw std::runtime_error(u_errorName(status));
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 3) throw std::runtime_error("usage: find_all PATTERN FILE");
    const Text pattern(skerrow::foundation::utf16FromUtf8(argv[1]).value());
    const Text text =
        skerrow::core::bestStringFromURL(skerrow::foundation::fileUrl(argv[2]).value());
    std::size_t ours = 0;
    std::size_t bare = 0;
    const double oursSeconds = secondsOf(
        [&] {
          skerrow::text::RegexService service;
          return service.componentsMatchedByRegex(text, pattern).size();
        },
        ours);
    const double bareSeconds = secondsOf([&] { return bareLoop(pattern, text); }, bare);
    if (ours != bare) throw std::runtime_error("the numbers of matches differ");
    std::printf("%.6f %.6f\n", oursSeconds, bareSeconds);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "find_all: %s\n", failure.what());
    return 1;
  }
  return 0;
}
