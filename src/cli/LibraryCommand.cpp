#include "cli/LibraryCommand.h"

#include "app/RecordingLibrary.h"
#include "base/Clock.h"
#include "capture/TakeRecovery.h"
#include "cli/Output.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "project/JsonWriter.h"
#include "project/RecordingFolder.h"
#include "render/YuvConverter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <ctime>
#include <memory>

namespace tavi {

namespace {

std::string localDateText(Date date) {
    const auto seconds = static_cast<time_t>(date.sinceEpoch());
    tm local{};
    localtime_r(&seconds, &local);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", local.tm_year + 1900,
                       local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

std::string durationText(double seconds) {
    const auto whole = static_cast<long long>(seconds);
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

std::string json(const std::vector<RecordingItem>& items) {
    JsonWriter out;
    out.beginArray();
    for (const RecordingItem& item : items) {
        out.beginObject();
        out.field("name", item.url.filename().string());
        out.field("path", item.url.string());
        out.field("date", item.date.sinceReference);
        out.field("duration", item.duration);
        out.endObject();
    }
    out.endArray();
    return out.finish().value_or("[]");
}

void printTable(const std::vector<RecordingItem>& items) {
    for (const RecordingItem& item : items) {
        cli::printLine(fmt::format("{}  {:>7}  {}", localDateText(item.date),
                                   durationText(item.duration), item.url.string()));
    }
}

std::vector<RecordingItem> scanLibrary(const std::filesystem::path& directory) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    FfmpegImageFiles imageFiles;
    const TakeRecovery recovery(media, imageFiles);
    return scanRecordings(
        directory, SystemClock().now(),
        [&recovery](const std::filesystem::path& folder) { recovery.recover(folder); });
}

} // namespace

void addLibraryCommand(CLI::App& app, int& exitCode) {
    auto asJson = std::make_shared<bool>(false);
    CLI::App* command = app.add_subcommand("library", "List the takes, newest first");
    command->add_flag("--json", *asJson, "Print JSON");
    command->callback([asJson, &exitCode] {
        const auto directory = recordingsDirectory();
        const auto items = scanLibrary(directory);
        if (*asJson) {
            cli::printLine(json(items));
        } else if (items.empty()) {
            std::cerr << "No takes in " << directory.string() << "\n";
        } else {
            printTable(items);
        }
        exitCode = 0;
    });
}

} // namespace tavi
