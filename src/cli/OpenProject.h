#pragma once

#include "cli/OpenTake.h"

#include <string>
#include <vector>

namespace tavi::cli {

/// A message for the user, and the status that the program ends with.
struct Failure {
    int exitCode = 1; ///< 1 failed, 2 wrong usage.
    std::string message;
};

/// Opens a take for one run: its `recordingPath` is the folder that was named,
/// and `assignments` ("key=value") are set on top of what is stored.
Result<OpenTake, Failure> openTakeWithOptions(const std::string& argument,
                                              const std::vector<std::string>& assignments,
                                              MediaLibrary& media);

/// Checks that the options can make a film at all: whole rates and sizes that
/// the encoder and the time grid can hold.
Result<void, Failure> checkOutputOptions(const OpenTake& take);

} // namespace tavi::cli
