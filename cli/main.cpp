#include <span>

#include "cli/program.h"
#include "platform/byte_stream.h"

int main(int count, char** words) {
  skerrow::platform::keepStandardStreams();
  skerrow::platform::reportClosedPipesAsErrors();
  const std::span<const char* const> all(words, static_cast<std::size_t>(count));
  // A command that was given up may still be running: it goes with the process.
  skerrow::platform::endProcess(skerrow::cli::runProgram(all.subspan(all.empty() ? 0 : 1)));
}
