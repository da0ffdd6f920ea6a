#pragma once

#include <string_view>

namespace tavi::cli {

/// Prints "tavi: message" on standard error and returns 1, the status of a
/// command that failed. One line for a person: what happened, to which file,
/// what to do.
int failed(std::string_view message);

/// Prints a line of results on standard output.
void printLine(std::string_view line);

} // namespace tavi::cli
