#pragma once
// The program `skerrow`, but for its entry point.

#include <span>

namespace skerrow::cli {

/// Does what the words after the program's name ask for and gives the exit
/// status: 0, 1 for a command that failed, 2 for wrong usage or malformed JSON.
int runProgram(std::span<const char* const> words);

}  // namespace skerrow::cli
