// Records the first display through the stream and the service that a take uses, until its
// standard input ends.
//
//   record_display none         throws the pictures away where the encoder would take them
//   record_display convert      the same once they are 4:2:0, as encoders take them
//   record_display FILE.mov     encodes them as a take does
//
// Prints a line at the first picture, and at the end one with the pictures taken and dropped.

#include "base/Clock.h"
#include "capture/RecordUntilTold.h"
#include "capture/ScreenCaptureService.h"
#include "capture/ThrowAwayLibrary.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/x11/X11ScreenStreams.h"
#include "platform/x11/X11ShareableContent.h"
#include "render/YuvConverter.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace tavi;

std::unique_ptr<MediaLibrary> libraryFor(const std::string& way) {
    auto colours = std::make_shared<YuvConverter>();
    if (way == "none") {
        return std::make_unique<bench::ThrowAwayLibrary>(nullptr);
    }
    if (way == "convert") {
        return std::make_unique<bench::ThrowAwayLibrary>(colours);
    }
    return std::make_unique<FfmpegMediaLibrary>(colours);
}

int failed(const CaptureError& error) {
    std::fprintf(stderr, "record_display: %s\n", error.description().c_str());
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    const std::string way = argc > 1 ? argv[1] : "none";
    const auto content = X11ShareableContent().content();
    if (!content) {
        return failed(content.error());
    }
    const auto& display = content->displays.front();
    const auto media = libraryFor(way);
    X11ScreenStreams streams;
    const SystemClock clock;
    ScreenCaptureService service(streams, *media, clock);
    if (const auto recorded = bench::recordUntilTold(service, ScreenFilter::display(display.id),
                                                     display.width, display.height, way);
        !recorded) {
        return failed(recorded.error());
    }
    return EXIT_SUCCESS;
}
