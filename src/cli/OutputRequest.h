#pragma once

#include "cli/OpenTake.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tavi::cli {

/// What the commands that write a picture or a film have in common.
struct OutputRequest {
    std::string take;
    std::string output;
    std::vector<std::string> assignments; ///< "key=value", set on top of what is stored.
    double smallestSide = 1;              ///< Of the output, pixels.
};

/// The smallest side that encoders of H.265 take.
constexpr double kSmallestFilm = 16;

/// Adds --set to a command. `assignments` outlives it.
void addAssignments(CLI::App& command, std::vector<std::string>& assignments);

/// A message for the user, and the status that the program ends with.
struct Failure {
    int exitCode = 1; ///< 1 failed, 2 wrong usage.
    std::string message;
};

/// Opens the take for one run, with its `recordingPath` set to the folder that
/// was named, after looking whether the options can make a film at all (rates
/// and sizes that the encoder and the time grid can hold) and the output can be
/// written. The desktop's arrow becomes the one that is drawn.
Result<OpenTake, Failure> openForOutput(const OutputRequest& request, MediaLibrary& media);

} // namespace tavi::cli
