// Finds every match of a pattern in a text: with the service that commands use, and with a bare
// ICU loop over the same UTF-16 text; compiling the pattern and making the result included.

#include <unicode/uregex.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "bench/timing.h"
#include "text/regex/regex_service.h"

namespace {

using skerrow::bench::Task;

std::size_t bareLoop(const Task& task) {
  UErrorCode status = U_ZERO_ERROR;
  URegularExpression* regex =
      uregex_open(task.pattern.view().data(), static_cast<std::int32_t>(task.pattern.unitCount()),
                  0, nullptr, &status);
  uregex_setText(regex, task.text.view().data(), static_cast<std::int32_t>(task.text.unitCount()),
                 &status);
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
  std::size_t found = 0;
  return skerrow::bench::compare(
      argc, argv,
      [&found](const Task& task) {
        skerrow::text::RegexService service;
        found = service.componentsMatchedByRegex(task.text, task.pattern).size();
      },
      [&found](const Task& task) {
        if (bareLoop(task) != found) throw std::runtime_error("the numbers of matches differ");
      });
}
