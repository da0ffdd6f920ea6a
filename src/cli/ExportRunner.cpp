#include "cli/ExportRunner.h"

#include "cli/Output.h"
#include "cli/ProgressBar.h"
#include "platform/qt/QtExecutor.h"
#include "render/ExportViewModel.h"

#include <QEventLoop>

#include <set>

namespace tavi::cli {

namespace {

/// The file was named on the command line.
class NamedFile final : public SavePanel {
public:
    explicit NamedFile(std::filesystem::path file) : m_file(std::move(file)) {}
    void chooseFile(const std::string&, Answer answer) override { answer(m_file); }

private:
    std::filesystem::path m_file;
};

/// The path is printed; who wants to see the file opens it.
class NoViewer final : public FileViewer {
public:
    void select(const std::filesystem::path&) override {}
};

void warn(const ExportReport& report) {
    if (report.isSourceDamaged) {
        failed("Warning: a part of the take's video is damaged; a picture stands still there.");
    }
    if (report.isSoundDamaged) {
        failed("Warning: the take's sound can't be read to its end; the film is silent there.");
    }
}

/// What the user reads. An open take has a video track, so the text for having
/// none is that of a take which trim and cuts leave nothing of.
std::string explained(const std::string& error, const OpenTake& take) {
    const bool isCutAway = error == description(ExportError::noVideoTrack);
    return error +
           (isCutAway ? " Trim and cuts leave nothing of " + take.folder.string() : std::string());
}

} // namespace

bool ExportRunner::run(const OpenTake& take, const std::filesystem::path& output,
                       const std::string& label) {
    const SystemClock clock;
    NamedFile panel(output);
    NoViewer viewer;
    const auto makeService = [&] {
        auto service = std::make_unique<VideoExportService>(m_media, clock);
        service->isDraft = m_isDraft;
        return service;
    };
    QtExecutor main;
    ExportViewModel model({makeService, clock, panel, viewer, main});
    QEventLoop loop;
    {
        ProgressBar bar(label);
        QObject::connect(&model, &ExportViewModel::progressChanged,
                         [&] { bar.update(model.progress(), model.estimatedTimeRemaining()); });
        QObject::connect(&model, &ExportViewModel::errorChanged, &loop, &QEventLoop::quit);
        QObject::connect(&model, &ExportViewModel::exportedURLChanged, &loop, &QEventLoop::quit);
        model.exportProject(take.project);
        m_signals.whenTheyCome([&model] { model.cancelExport(); });
        loop.exec();
    }
    if (model.error()) {
        failed(explained(*model.error(), take));
        return false;
    }
    warn(*model.report());
    printLine(output.string());
    return true;
}

std::vector<std::filesystem::path> filmPaths(const std::vector<std::string>& takes,
                                             const std::filesystem::path& folder) {
    std::set<std::string> names;
    std::vector<std::filesystem::path> paths;
    for (const std::string& take : takes) {
        // "take/" and "take" are one; "." is the folder that it stands for.
        const auto full = std::filesystem::absolute(takeFolder(take)).lexically_normal();
        const std::string stem =
            (full.has_filename() ? full : full.parent_path()).filename().string();
        std::string name = stem;
        for (int number = 2; !names.insert(name).second; ++number) {
            name = stem + "_" + std::to_string(number);
        }
        paths.push_back(folder / (name + ".mp4"));
    }
    return paths;
}

} // namespace tavi::cli
