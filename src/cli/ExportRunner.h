#pragma once

#include "cli/MainThread.h"
#include "cli/OpenTake.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tavi::cli {

/// Exports take after take behind one progress line, until a signal asks to stop.
/// Thread: main, with a QCoreApplication.
class ExportRunner {
public:
    /// `media` outlives the runner. `isDraft`: see VideoExportService.
    ExportRunner(MediaLibrary& media, bool isDraft) : m_media(media), m_isDraft(isDraft) {}

    /// Makes the film of one take; prints its path, or why there is none. `label`
    /// stands in front of the progress. True for a film.
    bool run(const OpenTake& take, const std::filesystem::path& output, const std::string& label);

    /// A signal came: no more films.
    bool isStopped() const { return m_signals.hasCome(); }

private:
    MediaLibrary& m_media;
    bool m_isDraft;
    StopSignals m_signals;
};

/// A path for each take's film in `folder`: the name of the take's folder with
/// ".mp4", and a number behind it where two takes have the same.
std::vector<std::filesystem::path> filmPaths(const std::vector<std::string>& takes,
                                             const std::filesystem::path& folder);

} // namespace tavi::cli
