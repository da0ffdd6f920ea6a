#include "capture/InputMonitoringService.h"
#include "capture/RecordingViewModel.h"
#include "fakes/FakeOverlay.h"
#include "platform/qt/QtTimers.h"
#include "platform/x11/RealAdapters.h"
#include "platform/x11/RecordedVideo.h"
#include "platform/x11/X11Screenshots.h"
#include "platform/x11/X11ShareableContent.h"
#include "platform/x11/X11SourceFrames.h"
#include "project/RecordingMetadataJson.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <set>
#include <sstream>

namespace tavi {
namespace {

using test::Painter;
using test::waitFor;
using test::XTestServer;

/// A recording screen's model over the real adapters; only the countdown's panel is not shown.
class RealScreen {
public:
    explicit RealScreen(const std::string& server)
        : adapters(server),
          m_content(server),
          m_screenshots(server),
          m_frames(server) {}
    ~RealScreen() {
        model.reset();
        test::runLoopFor(0);
    }

    /// Waits until a task is done.
    bool finish(QCoro::Task<> task) {
        auto isDone = std::make_shared<bool>(false);
        note(std::move(task), isDone);
        return waitFor([isDone] { return *isDone; });
    }

    std::filesystem::path stop() {
        auto folder = std::make_shared<std::optional<std::filesystem::path>>();
        EXPECT_TRUE(finish(keep(model->stopRecording(), folder)));
        return folder->value_or("");
    }

    /// The journal of its only take as it is now.
    std::string journal() const {
        const std::filesystem::directory_iterator folder(library.path());
        return test::readFile(folder->path() / "recording.journal");
    }

    test::RealAdapters adapters;
    test::TemporaryFolder library;
    QtTimers timers;
    FakeOverlayPanels panels;
    std::ostringstream messages;
    InputMonitoringService permission{{adapters.launcher, timers, adapters.main,
                                       [this] { return adapters.helperPath; }, processExists,
                                       [](const std::string&) {}}};

private:
    using Folder = std::optional<std::filesystem::path>;

    static QCoro::Task<> note(QCoro::Task<> task, std::shared_ptr<bool> isDone) {
        co_await task;
        *isDone = true;
    }
    static QCoro::Task<> keep(QCoro::Task<Folder> task, std::shared_ptr<Folder> folder) {
        *folder = co_await task;
    }

    X11ShareableContent m_content;
    X11Screenshots m_screenshots;
    X11SourceFrames m_frames;

public:
    std::unique_ptr<RecordingViewModel> model = std::make_unique<RecordingViewModel>(
        RecordingViewModel::Ports{.content = m_content,
                                  .screenshots = &m_screenshots,
                                  .devices = nullptr,
                                  .take = adapters.ports(&permission),
                                  .overlay = {panels, m_frames, timers},
                                  .library = [this] { return library.path(); },
                                  .messages = messages,
                                  .applicationId = "tavlin",
                                  .countdownSeconds = 1});
};

TEST(ConductedTake, isCountedDownRecordedAndSaved) {
    const XTestServer server("640x480x24");
    Painter painter(server);
    painter.fill(0, 0, 640, 480, 0x204080);
    ASSERT_TRUE(server.run("xset m 1/1 0"));
    ASSERT_TRUE(server.run("xdotool mousemove 100 100"));
    RealScreen screen(server.name());
    ASSERT_TRUE(screen.finish(screen.model->loadSources()));
    ASSERT_EQ(screen.model->availableDisplays().size(), 1U);
    ASSERT_EQ(screen.model->displayThumbnails().size(), 1U);
    EXPECT_EQ(screen.model->displayThumbnails().at(0)->height(), 480);

    screen.permission.startProbe();
    ASSERT_TRUE(waitFor([&] { return screen.permission.isGranted(); })) << "keys need no asking";
    bool hasStarted = false;
    screen.model->startCountdown([&] { hasStarted = true; });
    EXPECT_EQ(screen.panels.lastFrame, (Rect{0, 0, 640, 480}));
    ASSERT_TRUE(waitFor([&] { return hasStarted; })) << screen.messages.str();
    EXPECT_FALSE(screen.panels.isOpen());
    EXPECT_TRUE(waitFor([&] { return screen.permission.helperPID() == 0; }))
        << "the take's helper listens alone";
    ASSERT_TRUE(waitFor([&] { return screen.model->elapsedTime() > 0.5; }));
    painter.fill(0, 240, 640, 240, 0xC04020);
    ASSERT_TRUE(server.run("xdotool mousemove_relative 50 20 click 1"));
    ASSERT_TRUE(waitFor([&] { // What is typed before the take's helper listens is lost.
        EXPECT_TRUE(server.run("xdotool key ctrl+k"));
        test::runLoopFor(0.2);
        return screen.journal().find("keyDown") != std::string::npos;
    }));
    ASSERT_TRUE(waitFor([&] { return screen.model->elapsedTime() > 1.5; }));
    const auto folder = screen.stop();

    EXPECT_EQ(screen.model->failureText(), "");
    EXPECT_EQ(screen.messages.str(), "");
    EXPECT_GE(test::readAll(folder / "video.mov").size(), 2U);
    const auto metadata = decodeRecordingMetadata(test::readFile(folder / "metadata.json")).value();
    EXPECT_GT(metadata.duration, 1.5);
    std::set<std::string> log;
    for (const CursorEvent& event : metadata.cursorEvents) {
        const bool isFirst = log.insert(std::string(rawValue(event.eventType))).second;
        EXPECT_TRUE(isFirst || event.keyCharacter == "k") << rawValue(event.eventType);
    }
    EXPECT_THAT(log,
                testing::UnorderedElementsAre("move", "leftMouseDown", "leftMouseUp", "keyDown"));
    EXPECT_TRUE(std::filesystem::exists(folder / "cursor_0.png"));
}

TEST(ConductedTake, whoseServerDiesIsSavedByItself) {
    XTestServer server("320x240x24");
    RealScreen screen(server.name());
    ASSERT_TRUE(screen.finish(screen.model->loadSources()));
    ASSERT_TRUE(screen.finish(screen.model->startRecording()));
    ASSERT_TRUE(waitFor([&] { return screen.model->elapsedTime() > 0; }));
    QString ended;
    QObject::connect(&*screen.model, &RecordingViewModel::recordingEnded,
                     [&](const QString& folder) { ended = folder; });
    server.die();
    ASSERT_TRUE(waitFor([&] { return !ended.isEmpty(); }));
    EXPECT_FALSE(screen.model->isRecording());
    EXPECT_THAT(screen.model->failureText(), testing::HasSubstr("display server"));
    const std::filesystem::path folder = ended.toStdString();
    EXPECT_EQ(test::readAll(folder / "video.mov").size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(folder / "metadata.json"));
}

/// The probe alone, with the real helper.
TEST(KeyProbe, isGrantedOnAnXServerAndEndsWithItsScreen) {
    const XTestServer server;
    RealScreen screen(server.name());
    InputMonitoringService& service = screen.permission;
    service.startProbe();
    const pid_t pid = service.helperPID();
    ASSERT_GE(pid, 1);
    service.startProbe();
    EXPECT_EQ(service.helperPID(), pid) << "one probe is enough";
    ASSERT_TRUE(waitFor([&] { return service.isGranted(); }));
    EXPECT_TRUE(processExists(pid)) << "it stays";
    service.stopProbe();
    EXPECT_EQ(service.helperPID(), 0);
    EXPECT_TRUE(waitFor([pid] { return !processExists(pid); }));
    EXPECT_TRUE(service.isGranted());
}

} // namespace
} // namespace tavi
