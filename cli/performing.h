#pragma once
// Performing events inside the program's own process: one from the command line,
// or as many as standard input holds.

namespace skerrow::cli {

struct PerformOne;

/// Prints the result on a line of its own, or the script error on standard error.
int performOne(const PerformOne& asked);

/// Answers every line of standard input with one line, in order, each handed over
/// before the next line is read.
int performStream();

}  // namespace skerrow::cli
