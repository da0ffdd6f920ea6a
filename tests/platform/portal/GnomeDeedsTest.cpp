#include "keys/FakeSeat.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/portal/GnomeTake.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <linux/input-event-codes.h>
#include <thread>

namespace tavi {
namespace {

using test::FakeSeat;
using test::GnomeDesktop;
using test::RecorderProcess;
using testing::HasSubstr;
using Type = CursorEventType;

constexpr const char* kKeyboard = "event5";
constexpr const char* kMouse = "event6";
constexpr Point kClicked{300, 200};
constexpr Point kRightClicked{900, 500};
constexpr Point kTyped{700, 300};

/// `tavi` beside a key helper that sees the devices of a seat, and no other program does.
class ProgramOfASeat {
public:
    explicit ProgramOfASeat(const FakeSeat& seat) {
        std::filesystem::copy_file(RecorderProcess::kProgram, path());
        std::string script = "#!/bin/sh\n";
        for (const auto& [name, value] : seat.environment()) {
            script += "export " + name + "='" + value + "'\n";
        }
        script += "exec '" TAVI_BINARY_DIR "/TaviKeys' \"$@\"\n";
        const auto helper = m_folder / "TaviKeys";
        test::writeFile(helper, script);
        std::filesystem::permissions(helper, std::filesystem::perms::owner_all);
    }

    std::string path() const { return m_folder / "tavi"; }

private:
    test::TemporaryFolder m_folder;
};

/// What was done, and between which dates.
struct Deed {
    Type type = Type::move;
    Point place;
    std::string key = {};
    std::uint64_t modifiers = 0;
    double begin = 0; ///< Seconds as in Date.
    double end = 0;   ///< When it was in the log.
};

/// Where two pictures differ.
struct Difference {
    int count = 0;
    Point middle; ///< Of the box around it, pixels from the top left corner.
};

Difference differenceOf(const PixelBuffer& a, const PixelBuffer& b) {
    Difference found;
    int left = a.width();
    int top = a.height();
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const auto* one = a.row(y) + std::ptrdiff_t{x} * 4;
            const auto* other = b.row(y) + std::ptrdiff_t{x} * 4;
            if (!std::equal(one, one + 3, other)) {
                ++found.count;
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
        }
    }
    found.middle = {(left + right) / 2.0, (top + bottom) / 2.0};
    return found;
}

/// Clicks and keys of a keyboard and a mouse, with a pointer that GNOME's portal tells of.
class DeedsUnderGnome : public test::GnomeTake {
protected:
    DeedsUnderGnome() {
        seat.plugIn(kKeyboard);
        seat.plugInMouse(kMouse);
        recorder =
            std::make_unique<RecorderProcess>("", std::vector<std::string>{}, -1, program->path());
    }

    /// Does something and waits until the log has its last event, of that type.
    template<typename Action>
    void deed(std::vector<Deed> deeds, Action action) {
        const double begin = test::dateNow();
        const Type last = deeds.back().type;
        doAndWait(*recorder, std::string(rawValue(last)), action);
        for (Deed& done : deeds) {
            done.begin = begin;
            done.end = test::dateNow();
            all.push_back(std::move(done));
        }
    }

    /// What is typed before the helper listens is lost.
    void waitForHelper() {
        ASSERT_TRUE(test::waitFor(
            [&] {
                seat.type(kKeyboard, {KEY_F1});
                return test::waitFor([&] { return logged(*recorder, "keyDown") > 0; }, 1);
            },
            60));
    }

    void doAll() {
        movePointer(*recorder, kClicked);
        deed({{Type::leftMouseDown, kClicked}, {Type::leftMouseUp, kClicked}},
             [&] { seat.type(kMouse, {BTN_LEFT}); });
        movePointer(*recorder, kRightClicked);
        deed({{Type::rightClick, kRightClicked}}, [&] { seat.type(kMouse, {BTN_RIGHT}); });
        deed({{Type::scroll, kRightClicked}}, [&] { seat.turnWheel(kMouse, 120); });
        movePointer(*recorder, kTyped);
        deed({{Type::keyDown, kTyped, "h"}}, [&] { seat.type(kKeyboard, {KEY_H}); });
        seat.press(kKeyboard, KEY_LEFTCTRL);
        deed({{Type::keyDown, kTyped, "k", 0x40000}}, [&] { seat.type(kKeyboard, {KEY_K}); });
        seat.release(kKeyboard, KEY_LEFTCTRL);
        std::this_thread::sleep_for(std::chrono::milliseconds(600)); // the chips are shown
    }

    /// The film at a time of the take, a pixel of which is one of the take's.
    PixelBufferPtr film(double time, const std::string& settings) {
        int status = 0;
        const auto still = recorder->library().parent_path() / "still.png";
        const std::string printed = recorder->run(
            "render '" + recorder->take().string() + "' --at " + std::to_string(time) + " -o '" +
                still.string() +
                "' --set outputSettings.resolution=1280x720 --set appearanceSettings.padding=0 "
                "--set appearanceSettings.cornerRadius=0 " +
                settings,
            status);
        EXPECT_EQ(status, 0) << printed;
        const auto picture = FfmpegImageFiles().readPng(still);
        EXPECT_TRUE(picture);
        return picture ? *picture : std::make_shared<PixelBuffer>(1, 1);
    }

    Difference made(double time, const std::string& setting) {
        return differenceOf(*film(time, ""), *film(time, "--set cursorSettings." + setting));
    }

    FakeSeat seat;
    std::unique_ptr<ProgramOfASeat> program = std::make_unique<ProgramOfASeat>(seat);
    std::unique_ptr<RecorderProcess> recorder;
    std::vector<Deed> all;
};

TEST_F(DeedsUnderGnome, areInTheLogWhereTheStreamShowsThePointerAndInTheFilm) {
    ASSERT_TRUE(agree(*recorder)) << recorder->errors();
    waitForHelper();
    doAll();
    recorder->signal(SIGINT);
    ASSERT_EQ(recorder->wait(), 0) << recorder->errors();

    const RecordingMetadata take = metadataOf(*recorder);
    std::vector<CursorEvent> events;
    for (const CursorEvent& event : take.cursorEvents) {
        if (event.eventType != Type::move && event.keyCharacter != "F1") {
            events.push_back(event);
        }
    }
    ASSERT_EQ(events.size(), all.size());
    constexpr double kDeviceStep = 1e-3; // seconds; dates and the device's time are read in turn
    for (std::size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(events[i].eventType, all[i].type);
        EXPECT_NEAR(events[i].x, all[i].place.x, 2);
        EXPECT_NEAR(events[i].y, all[i].place.y, 2);
        EXPECT_EQ(events[i].keyCharacter.value_or(""), all[i].key);
        EXPECT_EQ(events[i].keyModifiers.value_or(0), all[i].modifiers);
        const double date = take.startDate.sinceReference + events[i].timestamp;
        EXPECT_GE(date, all[i].begin - kDeviceStep);
        EXPECT_LE(date, all[i].end);
    }

    const Difference ripple = made(events[2].timestamp + 0.2, "showClickEffect=true");
    EXPECT_GT(ripple.count, 100);
    EXPECT_NEAR(ripple.middle.x, kRightClicked.x, 3);
    EXPECT_NEAR(ripple.middle.y, kRightClicked.y, 3);
    const Difference chips = made(events.back().timestamp + 0.5, "showKeystrokes=true");
    EXPECT_GT(chips.count, 500);
    EXPECT_NEAR(chips.middle.x, GnomeDesktop::kWidth / 2.0, 3);
    EXPECT_GT(chips.middle.y, GnomeDesktop::kHeight * 0.7) << "at the bottom";
}

} // namespace
} // namespace tavi
