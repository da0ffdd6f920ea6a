#include "cli/DoctorCommand.h"
#include "cli/ExportCommand.h"
#include "cli/InspectCommand.h"
#include "cli/LibraryCommand.h"
#include "cli/RecordCommand.h"
#include "cli/RenderCommand.h"
#include "cli/SourcesCommand.h"
#include "cli/StopCommand.h"
#include "cli/ZoomCommand.h"

#include <CLI/CLI.hpp>

namespace {

constexpr int kUsageError = 2;

/// Runs the command line; 0 done, 1 failed, 2 wrong usage.
int run(int argc, char** argv) {
    CLI::App app{"Records the screen, zooms where something happens, and makes a film of it."};
    app.name("tavi");
    app.set_version_flag("--version", "tavi " TAVI_VERSION " (build " TAVI_BUILD ")");
    app.require_subcommand(1);

    int exitCode = 0;
    tavi::addSourcesCommand(app, exitCode);
    tavi::addRecordCommand(app, exitCode);
    tavi::addStopCommand(app, exitCode);
    tavi::addLibraryCommand(app, exitCode);
    tavi::addZoomCommand(app, exitCode);
    tavi::addExportCommand(app, exitCode);
    tavi::addRenderCommand(app, exitCode);
    tavi::addInspectCommand(app, exitCode);
    tavi::addDoctorCommand(app, exitCode);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kUsageError;
    }
    return exitCode;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "tavi: " << error.what() << "\n";
        return 1;
    }
}
