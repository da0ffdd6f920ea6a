#include "render/StillFrame.h"

#include "render/CameraFrames.h"
#include "render/ExportError.h"
#include "render/FrameComposer.h"
#include "render/SourceFrames.h"

#include <fmt/format.h>

namespace tavi {

namespace {

/// A moment of the source, and the kept range that it lies in.
struct SourceMoment {
    double time = 0;
    double rangeStart = 0;
    double rangeEnd = 0;
};

Result<SourceMoment, std::string> sourceMoment(const OutputTimeline& timeline, double outputTime) {
    for (std::size_t i = 0; i < timeline.ranges.size(); ++i) {
        const TimeRange& range = timeline.ranges[i];
        const double time = outputTime - timeline.outputOffsets[i];
        if (time >= 0 && time < range.end - range.start) {
            return SourceMoment{range.start + time, range.start, range.end};
        }
    }
    return fail(fmt::format("There is no frame at {} s: the output runs from 0 up to {} s",
                            outputTime, timeline.duration()));
}

/// The camera's picture of one moment, as an export of the whole range shows it.
PixelBufferPtr cameraPicture(MediaLibrary& media, const Asset& video, const EditProject& project,
                             const SourceMoment& moment) {
    const auto camera = openCamera(media, project, video.path.parent_path());
    if (!camera) {
        return nullptr;
    }
    CameraFrames frames(media, *camera, project.cameraStartDelay,
                        {.start = moment.rangeStart, .end = moment.rangeEnd}, moment.time);
    frames.advance(moment.time);
    return frames.current();
}

} // namespace

Result<PixelBuffer, std::string> renderStillFrame(MediaLibrary& media, const Asset& asset,
                                                  const EditProject& project, double outputTime) {
    OutputTimeline timeline = makeOutputTimeline(project, asset.duration.seconds());
    if (timeline.ranges.empty() || asset.videoTracks.empty()) {
        return fail(description(ExportError::noVideoTrack) + " Trim and cuts leave nothing of " +
                    asset.path.string());
    }
    const auto moment = sourceMoment(timeline, outputTime);
    if (!moment) {
        return fail(moment.error());
    }
    const auto start = MediaTime::fromSeconds(moment->time, MediaTime::kNanoseconds);
    const auto end = MediaTime::fromSeconds(moment->rangeEnd, MediaTime::kNanoseconds);
    auto reader = media.makeVideoReader(asset, asset.videoTracks.front(), {start, end - start});
    if (!reader) {
        return fail(reader.error().description());
    }
    if (moment->rangeStart >= endOfVideo(asset)) {
        (*reader)->cancelReading(); // a range beyond the video shows nothing
    }
    SourceFrames source(*std::move(reader));
    source.advance(moment->time);
    if (!source.current()) {
        return fail(fmt::format("The video holds no picture at {} s: {}", moment->time,
                                asset.path.string()));
    }
    FrameComposer composer(project, std::move(timeline), asset.videoTracks.front().naturalSize);
    const FrameSize size = composer.frameSize();
    PixelBuffer image(size.width, size.height);
    composer.composeFrame(source.current(), cameraPicture(media, asset, project, *moment),
                          outputTime, image);
    return image;
}

} // namespace tavi
