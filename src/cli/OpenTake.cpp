#include "cli/OpenTake.h"

#include "capture/TakeRecovery.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "project/RecordingFolder.h"
#include "project/TakeLoader.h"

namespace tavi::cli {

namespace {

PixelBufferPtr readCursorImage(const std::filesystem::path& path) {
    return FfmpegImageFiles().readPng(path).value_or(nullptr);
}

} // namespace

std::filesystem::path takeFolder(const std::string& argument) {
    std::filesystem::path path(argument);
    std::error_code error;
    if (!std::filesystem::exists(path, error) && path.is_relative()) {
        auto inLibrary = recordingsDirectory() / path;
        if (std::filesystem::exists(inLibrary, error)) {
            return inLibrary;
        }
    }
    return path;
}

Result<OpenTake, std::string> openTake(const std::string& argument, MediaLibrary& media) {
    const std::filesystem::path folder = takeFolder(argument);
    std::error_code error;
    const auto kind = std::filesystem::status(folder, error);
    if (!std::filesystem::exists(kind)) {
        return fail("No such take: " + folder.string() + " (\"tavi library\" lists the takes)");
    }
    if (!std::filesystem::is_directory(kind)) {
        return fail("A take is a folder, and this is none: " + folder.string());
    }
    const auto video = folder / take::kVideo;
    if (!std::filesystem::exists(video, error)) {
        return fail("The folder is no take, it holds no video.mov: " + folder.string());
    }
    FfmpegImageFiles imageFiles;
    TakeRecovery(media, imageFiles).recover(folder);
    auto asset = media.openAsset(video);
    if (!asset) {
        return fail(asset.error().description());
    }
    if (asset->videoTracks.empty()) {
        return fail(MediaError{MediaError::Kind::noVideoTrack, video.string(), {}}.description());
    }
    return OpenTake{folder, loadTake(folder, readCursorImage), *std::move(asset)};
}

} // namespace tavi::cli
