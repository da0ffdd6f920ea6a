#include "cli/ExportCommand.h"

#include "cli/ExportRunner.h"
#include "cli/Output.h"
#include "cli/OutputRequest.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "render/YuvConverter.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <fmt/format.h>

#include <memory>

namespace tavi {

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

struct ExportOptions {
    std::vector<std::string> takes;
    std::string output;       ///< Empty with a folder.
    std::string outputFolder; ///< For any number of takes.
    std::vector<std::string> assignments;
    bool isDraft = false;
};

/// Exports every take that can be; the status tells whether all could.
int exportTakes(const ExportOptions& options, const std::vector<std::filesystem::path>& films) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    cli::ExportRunner runner(media, options.isDraft);
    int status = 0;
    for (std::size_t i = 0; i < films.size() && !runner.isStopped(); ++i) {
        const auto take = cli::openForOutput(
            {options.takes[i], films[i].string(), options.assignments, cli::kSmallestFilm}, media);
        if (!take) {
            cli::failed(take.error().message);
            status = take.error().exitCode;
            if (status == kWrongUsage) {
                return status; // the other takes would say the same
            }
            continue;
        }
        const std::string label = films.size() > 1 ? fmt::format("{}/{} {} ", i + 1, films.size(),
                                                                 films[i].stem().string())
                                                   : std::string();
        if (!runner.run(*take, films[i], label)) {
            status = kFailed;
        }
    }
    return runner.isStopped() ? kFailed : status;
}

int runExport(const ExportOptions& options) {
    if (options.output.empty() == options.outputFolder.empty()) {
        cli::failed("Where does the film go? Name it with --output FILE, or a folder with "
                    "--out-dir DIR");
        return kWrongUsage;
    }
    if (options.takes.size() > 1 && options.outputFolder.empty()) {
        cli::failed("Several takes make several films; name a folder for them with --out-dir DIR");
        return kWrongUsage;
    }
    int argumentCount = 1;
    char name[] = "tavi";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    // Only the folder itself: a mistyped path makes no tree. What stands in the way is told per
    // film.
    std::error_code ignored;
    std::filesystem::create_directory(options.outputFolder, ignored);
    return exportTakes(options, options.outputFolder.empty()
                                    ? std::vector<std::filesystem::path>{options.output}
                                    : cli::filmPaths(options.takes, options.outputFolder));
}

} // namespace

void addExportCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* command = app.add_subcommand("export", "Make the finished films of takes");
    command->add_option("TAKE", options->takes, "Folders of takes, or their names in the library")
        ->required();
    command->add_option("-o,--output", options->output, "MP4 file to write, of one take");
    command->add_option("--out-dir", options->outputFolder,
                        "Folder for the films, each named after its take; made if missing");
    command->add_flag("--draft", options->isDraft,
                      "Encode as quickly as possible; rougher at the same size");
    cli::addAssignments(*command, options->assignments);
    command->callback([options, &exitCode] { exitCode = runExport(*options); });
}

} // namespace tavi
