#include "capture/CursorImageBytes.h"
#include "capture/TakeRecorder.h"
#include "capture/TakeRecovery.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeExecutor.h"
#include "fakes/FakeHelper.h"
#include "fakes/FakeMedia.h"
#include "fakes/FakePointer.h"
#include "fakes/FakeScreen.h"
#include "project/RecordingMetadataJson.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

namespace tavi {
namespace {

constexpr int kDiedEarly = 9; ///< Before anything was logged.
constexpr int kDiedLate = 10; ///< With two events in the journal.

SystemCursor cursorOf(std::uint8_t shade) {
    PixelBuffer image(2, 2);
    image.row(0)[0] = shade;
    return {cursorImageBytes(image, 0, 0), {0, 0}, {2, 2}};
}

/// A take over fakes in a process that ends, as by SIGKILL, at the n-th thing that the take asks
/// of its ports.
class MortalTake {
public:
    MortalTake(const std::filesystem::path& library, int lastStep)
        : m_library(library),
          m_lastStep(lastStep) {
        m_log.whenNoted = [this] { step(); };
        m_images.whileWriting = m_log.whenNoted;
        m_pointer.arrow = m_pointer.current = cursorOf(0);
        m_pointer.location = {10, 10};
    }

    void run() {
        const Display display{3, "test", 640, 480, {0, 0, 640, 480}, true};
        if (!m_recorder.start(display, m_library)) {
            _exit(1);
        }
        const auto folder = std::filesystem::directory_iterator(m_library)->path();
        test::writeFile(folder / "video.mov", "film");
        m_screen.sendPicture(1);
        m_screen.settle();
        logTwoEvents();
        m_recorder.tick();
        while (test::readFile(folder / "recording.journal").find("scroll") == std::string::npos) {
            usleep(1000); // the disk is written on another thread
        }
        m_isLogged = true;
        m_recorder.stop();
    }

private:
    void step() {
        if (++m_steps == m_lastStep) {
            _exit(m_isLogged ? kDiedLate : kDiedEarly);
        }
    }

    void logTwoEvents() {
        m_clock.advance(0.5);
        m_pointer.fire(PointerEventKind::leftMouseDown);
        m_clock.advance(0.5);
        m_pointer.current = cursorOf(7);
        m_pointer.fire(PointerEventKind::scrollWheel);
    }

    const std::filesystem::path m_library;
    const int m_lastStep;
    std::atomic<int> m_steps = 0;
    bool m_isLogged = false;
    CallLog m_log;
    FakeScreenStreams m_screen;
    FakeMediaLibrary m_media{&m_log};
    FakeImageFiles m_images;
    FakePointer m_pointer{&m_log};
    FakeHelperLauncher m_launcher;
    FakeClock m_clock;
    FakeExecutor m_main;
    TakeRecorder m_recorder{
        {m_screen,
         m_media,
         m_images,
         {m_pointer, m_pointer, m_pointer, m_launcher, m_clock, m_main, nullptr, std::nullopt}}};
};

/// The exit status of such a process: 0 when the take was over before that step.
int statusOfTake(const std::filesystem::path& library, int lastStep) {
    const pid_t pid = fork();
    if (pid == 0) {
        MortalTake(library, lastStep).run();
        _exit(0);
    }
    int raw = 0;
    waitpid(pid, &raw, 0);
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

/// What is in the folder of a library's only take after somebody looked at it.
struct Found {
    explicit Found(const std::filesystem::path& library)
        : folder(std::filesystem::directory_iterator(library)->path()) {
        FakeMediaLibrary media;
        wasCompleted = TakeRecovery(media, images).recover(folder);
        hasJournal = std::filesystem::exists(folder / "recording.journal");
        sidecar = decodeRecordingMetadata(test::readFile(folder / "metadata.json"));
    }

    std::filesystem::path folder;
    FakeImageFiles images;
    bool wasCompleted = false;
    bool hasJournal = false;
    Result<RecordingMetadata, JsonError> sidecar;
};

TEST(TakeRecorderDeath, atAnyStepLeavesATakeThatCanBeCompleted) {
    int status = -1;
    int late = 0;
    for (int step = 1; status != 0; ++step) {
        const test::TemporaryFolder library;
        status = statusOfTake(library.path(), step);
        ASSERT_TRUE(status == 0 || status == kDiedEarly || status == kDiedLate) << step;
        if (status == kDiedEarly) {
            continue;
        }
        const Found found(library.path());
        EXPECT_EQ(found.wasCompleted, status == kDiedLate) << step;
        EXPECT_FALSE(found.hasJournal) << step;
        ASSERT_TRUE(found.sidecar) << step;
        ASSERT_EQ(found.sidecar->cursorEvents.size(), 2U) << step;
        EXPECT_EQ(found.sidecar->cursorEvents[1].eventType, CursorEventType::scroll);
        EXPECT_EQ(found.sidecar->cursorEvents[1].cursorImageId, 1);
        EXPECT_NEAR(found.sidecar->duration, 1, 1e-6) << step;
        EXPECT_EQ(found.sidecar->cursorImageInfos.size(), 2U) << step;
        EXPECT_EQ(found.images.written.size(), status == kDiedLate ? 2U : 0U) << step;
        late += status == kDiedLate ? 1 : 0;
    }
    EXPECT_GT(late, 8) << "monitors, writer and images each have their steps";
}

TEST(TakeRecorderDeath, whileItStartsHarmsNobody) {
    int status = kDiedEarly;
    for (int step = 1; status == kDiedEarly; ++step) {
        const test::TemporaryFolder library;
        status = statusOfTake(library.path(), step);
        const Found found(library.path());
        EXPECT_EQ(found.sidecar.has_value(), std::filesystem::exists(found.folder / "video.mov"))
            << step;
    }
    EXPECT_NE(status, kDiedEarly);
}

} // namespace
} // namespace tavi
