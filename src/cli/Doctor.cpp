#include "cli/Doctor.h"

#include "app/program/ScreenChoice.h"
#include "cli/DesktopExamination.h"
#include "platform/ffmpeg/EncoderChoice.h"
#include "platform/qt/QtExecutor.h"
#include "project/RecordingFolder.h"

#include <fmt/format.h>

#include <unistd.h>

namespace tavi::cli {

namespace {

constexpr std::uintmax_t kLittleSpace = std::uintmax_t{1} << 30; // a few minutes of a busy screen

Finding examineScreen() {
    QtExecutor main; // nothing is waited for
    Finding finding{"displays", false, {}, "Nothing can be recorded", {}};
    const auto content = openScreenSystem(main, nullptr)->content().content();
    if (!content) {
        finding.detail = content.error().description();
        finding.fix = "See \"session\"";
        return finding;
    }
    for (const auto& display : content->displays) {
        finding.detail += fmt::format("{}{} {}x{}", finding.detail.empty() ? "" : ", ",
                                      display.name, display.width, display.height);
    }
    if (content->displays.empty()) {
        finding.detail = "There is no display";
        finding.fix = "Switch a display on in the desktop's settings";
        return finding;
    }
    finding.works = true;
    finding.cost.clear();
    return finding;
}

/// One finding for a kind of encoding: the encoder in use, and why not a better one.
Finding examineEncoder(const std::string& name, const VideoSettings& settings,
                       const std::string& cost) {
    Finding finding{name, false, {}, {}, {}};
    for (const EncoderTrial& trial : EncoderChoice::shared().report(settings)) {
        if (trial.works && !finding.works) {
            finding.works = true;
            finding.detail = trial.name + finding.detail;
        } else if (!trial.works) {
            finding.detail += fmt::format("; {}: {}", trial.name, trial.reason);
        }
    }
    if (!finding.works) {
        finding.cost = cost;
        finding.fix = "Install FFmpeg with libx265 (Debian: libavcodec-extra or libavcodec59)";
    }
    return finding;
}

/// The folder itself, or the nearest one above it that exists already.
std::filesystem::path nearestExisting(std::filesystem::path folder) {
    std::error_code error;
    while (!std::filesystem::exists(folder, error) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

Finding examineLibrary() {
    const auto library = recordingsDirectory();
    const auto folder = nearestExisting(library);
    if (access(folder.c_str(), W_OK) != 0) {
        return {"library", false, "The folder can't be written: " + folder.string(),
                "No take can be saved",
                "Make it writable, or set TAVI_DOCUMENTS_DIR to another place"};
    }
    std::error_code error;
    const auto space = std::filesystem::space(folder, error);
    const bool enough = !error && space.available >= kLittleSpace;
    return {"library", enough,
            fmt::format("{}, {:.1f} GB free", library.string(),
                        static_cast<double>(space.available) / 1e9),
            enough ? "" : "A long take may end early",
            enough ? "" : "Free some space: a take grows by up to 150 MB a minute"};
}

} // namespace

std::vector<Finding> examineMachine() {
    VideoSettings live;
    live.width = 1920;
    live.height = 1080;
    live.bitRate = 20'000'000;
    live.realTime = true;
    VideoSettings film = live;
    film.bitRate = 10'000'000;
    film.realTime = false;
    auto all = findings(examineDesktop());
    all.push_back(examineScreen());
    all.push_back(examineEncoder("recording encoder", live, "Nothing can be recorded"));
    all.push_back(examineEncoder("export encoder", film, "No film can be made"));
    all.push_back(examineLibrary());
    return all;
}

} // namespace tavi::cli
