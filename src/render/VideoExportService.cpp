#include "render/VideoExportService.h"

#include "project/RecordingFolder.h"
#include "render/ExportRun.h"

#include <thread>

namespace tavi {

namespace {

constexpr const char* kLogName = "export_debug.log";

/// Pixels of a frame from which on a bit rate holds.
constexpr std::int64_t kUhdPixels = 8'294'400;
constexpr std::int64_t kQhdPixels = 3'686'400;

} // namespace

std::optional<Message> problemOf(const ExportReport& report, const std::filesystem::path& output) {
    if (report.writerError) {
        return report.writerError->message();
    }
    if (!report.hasFile()) {
        return Message("%1: %2", {TAVI_TEXT("Errors", "Nothing was exported, no kept part of the "
                                                      "take holds a picture"),
                                  output.string()});
    }
    return std::nullopt;
}

VideoExportService::VideoExportService(MediaLibrary& media, const Clock& clock)
    : VideoExportService(media, clock, exportLogFile(),
                         [](std::chrono::nanoseconds time) { std::this_thread::sleep_for(time); }) {
}

VideoExportService::VideoExportService(MediaLibrary& media, const Clock& clock,
                                       std::filesystem::path logFile, Sleep sleep)
    : m_media(media),
      m_clock(clock),
      m_logFile(std::move(logFile)),
      m_sleep(std::move(sleep)) {}

Result<ExportReport, ExportFailure>
VideoExportService::exportProject(const EditProject& project, const std::filesystem::path& output,
                                  const Progress& progress) {
    const ExportLog log(m_logFile, m_clock);
    ExportRun run(project, {m_media, log, m_sleep, isCancelled, isDraft});
    return run.open()
        .and_then([&] { return run.startWriting(output); })
        .and_then([&] { return run.writeRanges(progress); })
        .and_then([&] { return run.finish(); });
}

std::filesystem::path exportLogFile() {
    return recordingsDirectory() / kLogName;
}

std::int64_t exportBitRate(int width, int height) {
    const std::int64_t pixels = std::int64_t{width} * height;
    if (pixels >= kUhdPixels) {
        return 40'000'000;
    }
    return pixels >= kQhdPixels ? 20'000'000 : 10'000'000;
}

} // namespace tavi
