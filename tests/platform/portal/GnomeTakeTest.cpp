#include "platform/portal/GnomeTake.h"

#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/x11/RecordedVideo.h"
#include "support/PixelColour.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <csignal>

namespace tavi {
namespace {

using test::GnomeDesktop;
using test::RecorderProcess;
using test::waitFor;
using testing::HasSubstr;

/// Where the pointer was sent, and when.
struct Sent {
    Point place;
    double date = 0; ///< Seconds as in Date.
};

class TakeUnderGnome : public test::GnomeTake {
protected:
    std::vector<Sent> movePointerAbout(const RecorderProcess& recorder) {
        std::vector<Sent> sent;
        for (int i = 0; i < 20; ++i) {
            sent.push_back({{100.0 + i * 50, 600.0 - i * 25}, test::dateNow()});
            movePointer(recorder, sent.back().place);
        }
        return sent;
    }
};

/// The first event within two pixels of a position since it was sent; null where there is none.
const CursorEvent* eventOf(const Sent& sent, const RecordingMetadata& take) {
    for (const CursorEvent& event : take.cursorEvents) {
        const double date = take.startDate.sinceReference + event.timestamp;
        if (std::hypot(event.x - sent.place.x, event.y - sent.place.y) <= 2 &&
            date >= sent.date - 0.001) {
            return &event;
        }
    }
    return nullptr;
}

/// How long the positions took to come to the log: in seconds, and in pictures of the take, which
/// come as fast as the machine makes them. In order, each by itself.
struct Lateness {
    std::vector<double> seconds;
    std::vector<std::ptrdiff_t> pictures;
};

Lateness latenessOf(const std::vector<Sent>& sent, const RecordingMetadata& take,
                    const std::vector<VideoSample>& pictures) {
    Lateness lateness;
    for (const Sent& position : sent) {
        const CursorEvent* event = eventOf(position, take);
        if (event == nullptr) {
            ADD_FAILURE() << position.place.x << ", " << position.place.y << " is not in the log";
            continue;
        }
        const double from = position.date - take.startDate.sinceReference;
        const double to = event->timestamp;
        lateness.seconds.push_back(to - from);
        lateness.pictures.push_back(
            std::count_if(pictures.begin(), pictures.end(), [&](const VideoSample& picture) {
                const double time = picture.presentationTime.seconds();
                return time > from && time <= to;
            }));
    }
    std::sort(lateness.seconds.begin(), lateness.seconds.end());
    std::sort(lateness.pictures.begin(), lateness.pictures.end());
    return lateness;
}

/// Seconds from one picture to the next; on a busy machine pictures are rarer.
double meanInterval(const std::vector<VideoSample>& pictures) {
    const MediaTime length = pictures.back().presentationTime - pictures.front().presentationTime;
    return length.seconds() / static_cast<double>(pictures.size() - 1);
}

/// Pixels of the picture's right half, without its margins, that the terminal doesn't have.
int foreignPixels(const PixelBuffer& picture) {
    int count = 0;
    for (int y = picture.height() / 10; y < picture.height() * 9 / 10; ++y) {
        for (int x = picture.width() * 55 / 100; x < picture.width() * 9 / 10; ++x) {
            count += test::colourDistance(picture, x, y, GnomeDesktop::kColour) > 60 ? 1 : 0;
        }
    }
    return count;
}

TEST_F(TakeUnderGnome, hasThePointerBesideThePicturesAndIsAskedForOnce) {
    RecorderProcess first("");
    ASSERT_TRUE(agree(first)) << first.errors();
    constexpr int kEveryFrame = 60;
    desktop.openTerminal(kEveryFrame);
    const auto sent = movePointerAbout(first);
    first.signal(SIGINT);
    ASSERT_EQ(first.wait(), 0) << first.errors();

    const RecordingMetadata take = metadataOf(first);
    EXPECT_EQ(take.screenWidth, GnomeDesktop::kWidth);
    EXPECT_EQ(take.screenHeight, GnomeDesktop::kHeight);
    const auto pictures = test::readAll(first.take() / "video.mov");
    ASSERT_GT(pictures.size(), 5U);
    const Lateness lateness = latenessOf(sent, take, pictures);
    ASSERT_EQ(lateness.seconds.size(), sent.size());
    const std::size_t middle = sent.size() / 2;
    RecordProperty("medianMilliseconds", std::to_string(lateness.seconds[middle] * 1000));
    RecordProperty("medianPictures", std::to_string(lateness.pictures[middle]));
    EXPECT_LE(lateness.pictures[middle], 2);
    EXPECT_LE(lateness.seconds.front(), 2 * meanInterval(pictures));
    for (std::size_t image = 0; image < take.cursorImageInfos.size(); ++image) {
        EXPECT_TRUE(
            std::filesystem::exists(first.take() / ("cursor_" + std::to_string(image) + ".png")));
    }

    EXPECT_LE(test::colourDistance(*pictures.back().image, 640, 700, GnomeDesktop::kColour), 4);
    // The pointer, which stood right of the terminal's text, is in the film and not in the video.
    EXPECT_EQ(foreignPixels(*pictures.back().image), 0);
    int status = 0;
    const auto still = first.library() / "still.png";
    const std::string printed = first.run("render '" + first.take().string() + "' --at " +
                                              std::to_string(take.cursorEvents.back().timestamp) +
                                              " -o '" + still.string() + "'",
                                          status);
    ASSERT_EQ(status, 0) << printed;
    const auto film = FfmpegImageFiles().readPng(still);
    ASSERT_TRUE(film);
    EXPECT_GT(foreignPixels(**film), 20);
    EXPECT_LT(foreignPixels(**film), 2000);

    const std::string token = test::readFile(desktop.tokenFile());
    EXPECT_THAT(token, HasSubstr("display-"));
    RecorderProcess second("", {"--duration", "1"});
    EXPECT_EQ(second.wait(), 0) << second.errors(); // nobody answered a question
    EXPECT_TRUE(std::filesystem::exists(second.take() / "video.mov"));
}

TEST_F(TakeUnderGnome, isSavedWhenTheSessionEnds) {
    RecorderProcess recorder("");
    ASSERT_TRUE(agree(recorder)) << recorder.errors();
    desktop.endSession();
    recorder.wait();
    EXPECT_THAT(recorder.errors(), HasSubstr("The recording ended early. The desktop ended the "
                                             "screen cast"));
    EXPECT_GT(test::readAll(recorder.take() / "video.mov").size(), 0U);
    EXPECT_TRUE(std::filesystem::exists(recorder.take() / "metadata.json"));
    EXPECT_THAT(recorder.out(), HasSubstr(recorder.take().string()));
}

} // namespace
} // namespace tavi
