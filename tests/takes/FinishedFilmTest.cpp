#include "base/Geometry.h"
#include "base/PixelBuffer.h"
#include "project/JsonReader.h"
#include "takes/Flasher.h"
#include "takes/PointerWatch.h"
#include "takes/TakeMedia.h"
#include "takes/TakeRig.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace tavi::test {
namespace {

constexpr double kWidth = 640; ///< Of the screen and of the film.
constexpr double kHeight = 360;
constexpr double kFrame = 1.0 / 30; ///< Of the film, seconds.
constexpr double kNever = 1000;     ///< Seconds.

/// The bubble in the lower right corner, as the settings that a project begins with have it.
constexpr double kBubbleLeft = kWidth * (1 - 0.03 - 0.2);
constexpr double kBubbleSide = kWidth * 0.2;
constexpr double kBubbleMiddle = kHeight - kWidth * (0.03 + 0.1);

/// A frame of the film by what is looked for in it.
struct FilmFrame {
    double time = 0;              ///< Seconds.
    std::optional<Point> pointer; ///< Middle of what is white, from the left upper corner.
    double border = 0;            ///< Of the camera's picture, pixels from the left; 0: none.
};

bool isRed(const std::uint8_t* pixel) {
    return pixel[2] > pixel[0] + 60;
}

bool isBlue(const std::uint8_t* pixel) {
    return pixel[0] > pixel[2] + 60;
}

std::optional<Point> middleOfWhite(const PixelBuffer& picture) {
    constexpr int kWhite = 200;
    double x = 0;
    double y = 0;
    int count = 0;
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            const std::uint8_t* pixel = picture.row(row) + column * 4;
            if (std::min({pixel[0], pixel[1], pixel[2]}) > kWhite) {
                x += column + 0.5;
                y += row + 0.5;
                ++count;
            }
        }
    }
    return count == 0 ? std::nullopt : std::optional(Point{x / count, y / count});
}

/// Where blue turns red in the bubble's middle row.
double borderInBubble(const PixelBuffer& picture) {
    const std::uint8_t* row = picture.row(static_cast<int>(kBubbleMiddle));
    const auto end = static_cast<int>(kBubbleLeft + kBubbleSide);
    int lastBlue = 0;
    for (int x = static_cast<int>(kBubbleLeft); x < end; ++x) {
        if (isBlue(row + x * 4)) {
            lastBlue = x;
        } else if (lastBlue != 0 && isRed(row + x * 4)) {
            return (lastBlue + x + 1) / 2.0;
        }
    }
    return 0;
}

std::vector<FilmFrame> framesOf(const std::filesystem::path& film) {
    std::vector<FilmFrame> frames;
    forEachPicture(film, [&frames](double time, const PixelBuffer& picture) {
        frames.push_back({time, middleOfWhite(picture), borderInBubble(picture)});
    });
    return frames;
}

/// A take of six seconds with everything, in which a user clicks here and there.
class FinishedFilm : public testing::Test {
protected:
    FinishedFilm() {
        camera.sweep();
        EXPECT_TRUE(rig.screen().run("xset m 1/1 0"));
        EXPECT_TRUE(rig.isListed("Test Microphone"));
        EXPECT_TRUE(rig.isListed("Test Camera"));
    }

    void record() {
        std::filesystem::remove_all(rig.home() / "Tavlin");
        painter.fill(0, 0, 640, 360, 0x404040);
        ASSERT_TRUE(rig.screen().run("xdotool mousemove 120 120"));
        auto recording = rig.record("--mic 'Test Microphone' --camera 'Test Camera' --duration 6");
        ASSERT_TRUE(rig.isWriting("camera.mov"));
        sleepUntil(hostSeconds() + 1);
        const double marked = mark();
        PointerWatch watch(rig.screen());
        for (const char* step : {"300 20", "-220 100", "180 -100"}) {
            sleepUntil(hostSeconds() + 0.9);
            ASSERT_TRUE(rig.screen().run(fmt::format(
                "xdotool click 1 sleep 0.05 mousemove_relative -- {} sleep 0.05 click 1", step)));
        }
        stays = watch.stop();
        take = takeOf(recording.get());
        zero = marked - markInFilm();
    }

    /// Paints what can be found in the take, and says when.
    double mark() {
        const double before = hostSeconds();
        painter.fill(0, 320, 40, 40, 0x00A000);
        return (before + hostSeconds()) / 2;
    }
    double markInFilm() const {
        std::optional<double> first;
        forEachPicture(take / "video.mov", [&first](double time, const PixelBuffer& picture) {
            const std::uint8_t* pixel = picture.row(340) + 20 * 4;
            if (!first && pixel[1] > 120 && pixel[2] < 60) {
                first = time;
            }
        });
        EXPECT_TRUE(first);
        return first.value_or(0);
    }

    std::filesystem::path exported(const std::string& name) const {
        const std::filesystem::path film = rig.home() / name;
        const Outcome outcome = rig.tavi(fmt::format(
            "export '{}' -o '{}' --draft --set outputSettings.resolution=640x360 "
            "--set outputSettings.fps=30 --set appearanceSettings.padding=0 "
            "--set appearanceSettings.cornerRadius=0 --set cursorSettings.cursorStyle=Circle "
            "--set cursorSettings.smoothingPreset=None --set cameraSettings.enabled=true "
            "--set cameraSettings.borderWidth=0",
            take.string(), film.string()));
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return film;
    }

    /// What the film shows of the screen at these times, by time: rectangles with the origin at
    /// the left lower corner.
    std::map<double, Rect> shownAt(const std::vector<FilmFrame>& frames) const {
        std::string times;
        for (const FilmFrame& frame : frames) {
            times += fmt::format("{}{}", times.empty() ? "" : ",", frame.time);
        }
        const Outcome outcome =
            rig.tavi(fmt::format("inspect '{}' --output-time --at {}", take.string(), times));
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        std::map<double, Rect> shown;
        JsonDocument document;
        const auto root = document.parse(outcome.out);
        EXPECT_TRUE(root);
        for (const auto at : (*root)["at"].get_array()) {
            const auto crop = at["camera"];
            shown[at["time"].get_double()] = {crop.at(0).get_double(), crop.at(1).get_double(),
                                              crop.at(2).get_double(), crop.at(3).get_double()};
        }
        return shown;
    }

    static void expectTone(const Sound& sound) {
        const Tone tone = toneOf(sound);
        EXPECT_NEAR(sound.seconds(), 6, 0.5);
        EXPECT_NEAR(tone.frequency, 440, 2);
        EXPECT_LT(tone.begin, 1) << "the microphone is opened anew in the camera's session";
        EXPECT_LT(tone.longest, 0.01);
        EXPECT_LT(sound.seconds() - tone.end, 0.1);
    }

    /// The bubble shows the camera's picture of the moment that the film shows.
    void expectCamera(const std::vector<FilmFrame>& frames) const {
        constexpr double kSweep = static_cast<double>(FakeCamera::kSweep) / 1e9;
        std::vector<double> late;
        for (const FilmFrame& frame : frames) {
            const double place = std::fmod(frame.time + zero, kSweep) / kSweep;
            if (frame.border > 0 && place > 0.25 && place < 0.75) {
                // The middle square of the mirrored picture of 640x480.
                const double inBubble = (frame.border - kBubbleLeft) / kBubbleSide;
                late.push_back((place - (560 - 480 * inBubble) / 640) * kSweep);
            }
        }
        ASSERT_GT(late.size(), 60U);
        std::ranges::sort(late);
        // A picture of the camera lasts 33 ms, and a pixel of the bubble stands for 12 ms.
        EXPECT_NEAR(late[late.size() / 2], 0, 0.045) << "seconds";
    }

    /// Where the film shows a place of the screen; absent at its edges and under the bubble.
    static std::optional<Point> inFilm(const PointerStay& stay, const Rect& shown) {
        const Point point{(stay.x - shown.x) * kWidth / shown.width,
                          kHeight - (kHeight - stay.y - shown.y) * kHeight / shown.height};
        constexpr double kEdge = 40;
        const bool isInside = point.x > kEdge && point.x < kWidth - kEdge && point.y > kEdge &&
                              point.y < kHeight - kEdge;
        const bool isInBubble =
            point.x > kBubbleLeft - kEdge && point.y > kBubbleMiddle - kBubbleSide / 2 - kEdge;
        return isInside && !isInBubble ? std::optional(point) : std::nullopt;
    }

    static bool isAt(const FilmFrame& frame, const Point& point) {
        return frame.pointer && std::abs(frame.pointer->x - point.x) <= 1 &&
               std::abs(frame.pointer->y - point.y) <= 1;
    }

    /// Between two moves the pointer stands within a pixel of where it was.
    void expectPointer(const std::vector<FilmFrame>& frames,
                       const std::map<double, Rect>& shown) const {
        constexpr double kBefore = 0.3; // seconds; then the next click may be a while ago
        int plain = 0;
        int zoomed = 0;
        for (std::size_t i = 0; i < stays.size(); ++i) {
            const double begin = i == 0 ? 0 : stays[i].since - zero + 0.2;
            const double end = i + 1 < stays.size() ? stays[i + 1].since - zero - kBefore : 6;
            for (const FilmFrame& frame : frames) {
                const Rect& part = shown.at(frame.time);
                const auto expected = inFilm(stays[i], part);
                if (frame.time < begin || frame.time > end || !expected) {
                    continue;
                }
                ++(part.width < kWidth ? zoomed : plain);
                EXPECT_TRUE(isAt(frame, *expected))
                    << "at " << frame.time << " expected " << expected->x << " " << expected->y
                    << ", is " << (frame.pointer ? frame.pointer->x : -1) << " "
                    << (frame.pointer ? frame.pointer->y : -1);
            }
        }
        EXPECT_GT(plain, 20);
        EXPECT_GT(zoomed, 10);
    }

    /// By how much a film without zooms has the pointer arrive at another time than it did:
    /// seconds, least first.
    std::vector<double> arrivalErrors(const std::vector<FilmFrame>& frames) const {
        std::vector<double> errors;
        for (std::size_t i = 1; i < stays.size(); ++i) {
            const double moved = stays[i].since - zero;
            const Point place{1.0 * stays[i].x, 1.0 * stays[i].y};
            const auto arrived = std::ranges::find_if(frames, [&](const FilmFrame& frame) {
                return frame.time > moved - 0.5 && isAt(frame, place);
            });
            EXPECT_NE(arrived, frames.end());
            if (arrived == frames.end()) {
                return {kNever};
            }
            // The first frame behind that moment, as the middle of all cases has it.
            errors.push_back(std::abs(arrived->time - kFrame / 2 - moved));
        }
        std::ranges::sort(errors);
        return errors;
    }

    TakeRig rig{"640x360x24"};
    Painter painter{rig.screen()};
    FakeMicrophone microphone{"mic", "Test Microphone", {}};
    FakeCamera camera{"cam", "Test Camera", {FakeMode{}}};
    std::vector<PointerStay> stays;
    std::filesystem::path take;
    double zero = 0; ///< Of the film on the host clock, seconds.
};

TEST_F(FinishedFilm, hasTheToneTheCameraAndThePointerWhereTheyWere) {
    // A machine that is busy with other things may notice a move late: it has three tries.
    std::vector<double> errors{kNever};
    for (int i = 0; i < 3 && errors.back() > kFrame; ++i) {
        ASSERT_NO_FATAL_FAILURE(record());
        ASSERT_EQ(stays.size(), 4U);
        errors = arrivalErrors(framesOf(exported("plain.mp4")));
    }
    EXPECT_LT(errors.back(), kFrame) << testing::PrintToString(errors);
    const Outcome zoomed = rig.tavi("zoom '" + take.string() + "'");
    ASSERT_EQ(zoomed.status, 0) << zoomed.err;
    const auto film = exported("zoomed.mp4");
    const auto frames = framesOf(film);
    ASSERT_NEAR(static_cast<double>(frames.size()) * kFrame, 6, 0.5);
    expectTone(soundOf(film));
    expectCamera(frames);
    expectPointer(frames, shownAt(frames));
}

} // namespace
} // namespace tavi::test
