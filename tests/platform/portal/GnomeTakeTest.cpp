#include "base/Clock.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/portal/GnomeDesktop.h"
#include "platform/x11/RecordedVideo.h"
#include "platform/x11/RecorderProcess.h"
#include "project/RecordingMetadataJson.h"
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

/// Where the pointer was sent, and when by the clock of the log's dates.
struct Sent {
    double x = 0;
    double y = 0;
    double date = 0; ///< Seconds as in Date.
};

double dateNow() {
    return SystemClock().now().sinceReference;
}

class TakeUnderGnome : public testing::Test {
protected:
    /// Answers the desktop's question until the take runs.
    bool agree(RecorderProcess& recorder) {
        return waitFor(
            [&] {
                desktop.answerDialog();
                return waitFor([&] { return hasBegun(recorder); }, 3);
            },
            60);
    }

    static bool hasBegun(const RecorderProcess& recorder) {
        const std::string journal = recorder.journal();
        return std::count(journal.begin(), journal.end(), '\n') > 1;
    }

    static std::size_t loggedMoves(const RecorderProcess& recorder) {
        const std::string journal = recorder.journal();
        std::size_t count = 0;
        for (auto at = journal.find("\"move\""); at != std::string::npos;
             at = journal.find("\"move\"", at + 1)) {
            ++count;
        }
        return count;
    }

    /// A busy compositor puts moves together that it is late for: each waits for the one before.
    std::vector<Sent> movePointer(const RecorderProcess& recorder) {
        std::vector<Sent> sent;
        for (int i = 0; i < 20; ++i) {
            const double x = 100 + i * 50;
            const double y = 600 - i * 25;
            const std::size_t before = loggedMoves(recorder);
            sent.push_back({x, y, dateNow()});
            desktop.movePointer(x, y);
            EXPECT_TRUE(waitFor([&] { return loggedMoves(recorder) > before; })) << x << ", " << y;
        }
        return sent;
    }

    static RecordingMetadata metadataOf(const RecorderProcess& recorder) {
        return decodeRecordingMetadata(test::readFile(recorder.take() / "metadata.json")).value();
    }

    GnomeDesktop desktop;
};

/// Seconds from the sending of a position to its event; absent where there is none within two
/// pixels.
std::optional<double> lateness(const Sent& sent, const RecordingMetadata& take) {
    for (const CursorEvent& event : take.cursorEvents) {
        const double date = take.startDate.sinceReference + event.timestamp;
        if (std::hypot(event.x - sent.x, event.y - sent.y) <= 2 && date >= sent.date - 0.001) {
            return date - sent.date;
        }
    }
    return std::nullopt;
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
    desktop.openTerminal();
    const auto sent = movePointer(first);
    first.signal(SIGINT);
    ASSERT_EQ(first.wait(), 0) << first.errors();

    const RecordingMetadata take = metadataOf(first);
    EXPECT_EQ(take.screenWidth, GnomeDesktop::kWidth);
    EXPECT_EQ(take.screenHeight, GnomeDesktop::kHeight);
    double quickest = 1000;
    for (const Sent& position : sent) {
        const auto late = lateness(position, take);
        EXPECT_TRUE(late) << position.x << ", " << position.y << " is not in the log";
        quickest = std::min(quickest, late.value_or(quickest));
    }
    EXPECT_LE(quickest, 2.0 / 60); // on a busy machine others are later
    for (std::size_t image = 0; image < take.cursorImageInfos.size(); ++image) {
        EXPECT_TRUE(
            std::filesystem::exists(first.take() / ("cursor_" + std::to_string(image) + ".png")));
    }

    const auto pictures = test::readAll(first.take() / "video.mov");
    ASSERT_GT(pictures.size(), 5U);
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
    EXPECT_THAT(token, HasSubstr("display-1 "));
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
