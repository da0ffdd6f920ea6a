#pragma once

#include "base/Geometry.h"
#include "e2e/ExpectedFilm.h"
#include "project/EditProject.h"
#include "render/VideoExportService.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace tavi::e2e {

/// A project of a take whose film shows the video alone, in 160x90 on black.
EditProject plainProject(const std::filesystem::path& take);

/// Adds a stretch that is to be left out, in seconds.
void cut(EditProject& project, double start, double end);

/// A finished export.
struct Film {
    std::filesystem::path path;
    ExportReport report;
    std::vector<double> progress;
};

/// Called after each picture with the service that exports and the share that is done.
using ExportProgress = std::function<void(VideoExportService&, double)>;

/// Exports with the media stack as the programs put it together.
Result<ExportReport, ExportFailure> exportTo(const EditProject& project,
                                             const std::filesystem::path& path,
                                             const ExportProgress& progress = {});

/// Exports to a path of its own. Fails the test where that can't be done.
Film exported(const EditProject& project);

/// The length of a take's video in seconds, as its header says; that of its
/// pieces where the header says none.
double durationOf(const std::filesystem::path& take);

/// The stretches that an export of `project` keeps.
std::vector<Stretch> keptBy(const EditProject& project);

/// The pictures that an export of `project` is to have.
std::vector<ExpectedPicture> expectedPictures(const EditProject& project);

/// The pictures of a film by our own reader. `bubble` is where the camera
/// stands, in pixels from the top left corner.
std::vector<ExpectedPicture> picturesOf(const std::filesystem::path& film,
                                        const std::optional<Rect>& bubble = {});

/// Exports a project and compares the film's pictures with those expected, by our
/// own reader and by the ffmpeg programs. Gives the film for further looks.
Film expectFilm(const EditProject& project, const std::optional<Rect>& bubble = {});

/// A burst of sound in a film.
struct Click {
    double time = 0; ///< Its middle, in seconds.
    double level = 0;
};

/// The bursts in the sound of a film, mono at 44.1 kHz as the ffmpeg program decodes it.
std::vector<Click> clicksByCommand(const std::filesystem::path& film);

/// The same by our own reader.
std::vector<Click> clicksOf(const std::filesystem::path& film);

} // namespace tavi::e2e
