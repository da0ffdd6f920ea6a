#include "app/RunningApp.h"
#include "app/TaviApp.h"
#include "capture/RecorderLock.h"
#include "fakes/FakeAssets.h"
#include "fakes/FakePlayer.h"

#include <QPointer>
#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::HasSubstr;

class NoImages final : public ImageGenerator {
public:
    Result<PixelBufferPtr, MediaError> copyImage(const std::filesystem::path& path, MediaTime,
                                                 Size) override {
        return fail(MediaError{MediaError::Kind::notFound, path.string(), ""});
    }
};

class NoPanel final : public SavePanel {
public:
    void chooseFile(const std::string&, Answer answer) override { answer({}); }
};

class NoViewer final : public FileViewer {
public:
    void select(const std::filesystem::path&) override {}
};

class NoDownloads final : public Downloads {
public:
    void fetchText(const std::string&, std::int64_t, double, Text) override {}
    void fetchFile(const std::string&, const std::filesystem::path&, std::int64_t, double,
                   File) override {}
    void cancel() override {}
};

class NoSignatures final : public Signatures {
public:
    bool isSignedBy(const std::string&, const std::string&, const std::string&) const override {
        return false;
    }
    std::string sha512(const std::filesystem::path&) const override { return {}; }
};

class TaviAppTest : public test::RunningApp {
protected:
    void launchHome() {
        program = std::make_unique<TaviApp>(
            TaviAppPorts{ports(),
                         [this] { return makeModel(); },
                         [this](const std::filesystem::path& folder) { return makeEditor(folder); },
                         keys,
                         images,
                         defaults,
                         {downloads, signatures, timers, appMain, background, library / "updates"},
                         lockFolder.path()},
            PackageConfiguration{}, ProgramVersion{"1.4", "1"});
        settle();
        timers.tick(AppViewModel::kSplashSeconds);
        settle();
    }
    std::unique_ptr<EditorScreenViewModel> makeEditor(const std::filesystem::path& folder) {
        openedTakes.push_back(folder);
        return std::make_unique<EditorScreenViewModel>(
            folder,
            EditorPorts{players, assets, [](const auto&) { return nullptr; }, clock, appMain,
                        background, timers, library.path()},
            std::make_unique<ExportViewModel>(
                ExportViewModel::Ports{nullptr, clock, panel, viewer, appMain}));
    }
    void openRecordingScreen() {
        launchHome();
        program->appViewModel()->newRecording();
    }

    void openTake(const char* name) {
        test::makeTake(library / name);
        program->appViewModel()->openTake(library / name);
    }

    /// Records a moment of the first display, whose video then can't be completed.
    void failAtTheStop() {
        RecordingViewModel& recording = startTakeOfProgram();
        media.finishError = MediaError{MediaError::Kind::cannotWrite, "video.mov", ""};
        recording.stop();
        ASSERT_TRUE(test::runLoopUntil([&] { return program->editorScreen() != nullptr; }));
        settle();
        EXPECT_NE(program->appViewModel()->notice(), "");
    }

    /// Records a moment of the first display.
    RecordingViewModel& startTakeOfProgram() {
        openRecordingScreen();
        RecordingViewModel& recording = *program->recordingViewModel();
        run(recording.loadSources());
        run(recording.startRecording());
        EXPECT_TRUE(recording.isRecording()) << messages.str();
        sendFirstFrame();
        return recording;
    }

    test::TemporaryFolder lockFolder;
    CallLog playing;
    FakePlayers players{playing};
    FakeAssets assets;
    NoPanel panel;
    NoViewer viewer;
    std::vector<std::filesystem::path> openedTakes;
    FakeUserDefaults defaults;
    NoImages images;
    NoDownloads downloads;
    NoSignatures signatures;
    FakeHelperLauncher helpers{&log};
    InputMonitoringService keys{{helpers, timers, main, [] { return std::nullopt; },
                                 [](pid_t) { return true; }, [](const std::string&) {}}};
    std::unique_ptr<TaviApp> program;
};

TEST_F(TaviAppTest, theRecordingScreensModelIsThereBeforeTheModeChanges) {
    launchHome();
    EXPECT_EQ(program->recordingViewModel(), nullptr);
    bool wasThere = false;
    QObject::connect(program->appViewModel(), &AppViewModel::currentModeChanged, program.get(),
                     [&] { wasThere = program->recordingViewModel() != nullptr; });
    program->appViewModel()->newRecording();
    EXPECT_TRUE(wasThere);
    const QPointer<RecordingViewModel> opened = program->recordingViewModel();
    program->appViewModel()->leaveRecording();
    EXPECT_FALSE(opened.isNull()) << "the screen that closes may still look at it";
    EXPECT_TRUE(test::runLoopUntil([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return opened.isNull();
    }));
}

TEST_F(TaviAppTest, theCommandForUpdatesAnswersInTheWindow) {
    launchHome();
    program->settingsViewModel()->checkForUpdates();
    EXPECT_THAT(program->appViewModel()->notice(), HasSubstr("package manager"));
}

TEST_F(TaviAppTest, aTakeIsOpenBeforeTheModeChanges) {
    launchHome();
    EXPECT_EQ(program->editorScreen(), nullptr);
    bool wasThere = false;
    QObject::connect(program->appViewModel(), &AppViewModel::currentModeChanged, program.get(),
                     [&] { wasThere = program->editorScreen() != nullptr; });
    openTake("one");
    EXPECT_TRUE(wasThere);
    EXPECT_THAT(openedTakes, testing::ElementsAre(library / "one"));
}

TEST_F(TaviAppTest, anotherTakeReplacesTheOpenOne) {
    launchHome();
    openTake("one");
    const QPointer first(program->editorScreen());
    openTake("two");
    EXPECT_NE(program->editorScreen(), first.data());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    EXPECT_THAT(openedTakes, testing::ElementsAre(library / "one", library / "two"));
}

TEST_F(TaviAppTest, aTakeIsClosedWithItsScreen) {
    launchHome();
    openTake("one");
    const QPointer first(program->editorScreen());
    program->appViewModel()->leaveEditor();
    EXPECT_EQ(program->editorScreen(), nullptr);
    EXPECT_FALSE(first.isNull()) << "its screen looks at it a moment longer";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
}

TEST_F(TaviAppTest, theNewsAreThoseOfTheRunningVersion) {
    launchHome();
    EXPECT_TRUE(program->notificationViewModel()->hasUnread());
}

TEST_F(TaviAppTest, aCountdownHoldsTheLockOfTheOneRecorder) {
    openRecordingScreen();
    auto* recording = program->recordingViewModel();
    run(recording->loadSources());
    recording->startCountdown([] {});
    EXPECT_TRUE(test::runLoopUntil([&] {
        return std::filesystem::exists(lockFolder.path()) &&
               !std::filesystem::is_empty(lockFolder.path());
    }));
    EXPECT_TRUE(recording->isCountingDown());
    EXPECT_EQ(program->appViewModel()->notice(), "");
}

TEST_F(TaviAppTest, withoutAPlaceForTheLockTheCountdownEndsAndTheUserIsTold) {
    std::filesystem::remove_all(lockFolder.path());
    openRecordingScreen();
    auto* recording = program->recordingViewModel();
    run(recording->loadSources());
    recording->startCountdown([] {});
    EXPECT_TRUE(test::runLoopUntil([&] { return !recording->isCountingDown(); }));
    EXPECT_NE(program->appViewModel()->notice(), "");
}

TEST_F(TaviAppTest, aFileThatFailsAtTheStopIsTold) {
    RecordingViewModel& recording = startTakeOfProgram();
    media.finishError = MediaError{MediaError::Kind::diskFull, "video.mov", ""};
    run(recording.stopRecording());
    EXPECT_THAT(program->appViewModel()->notice(), HasSubstr("The disk is full"));
}

TEST_F(TaviAppTest, aTakeWithoutAVideoIsLeftWhenItsMessageIsRead) {
    failAtTheStop();
    EXPECT_EQ(program->appViewModel()->currentModeName(), "editing");
    program->appViewModel()->setNoticeText({});
    EXPECT_EQ(program->appViewModel()->currentModeName(), "home");
}

TEST_F(TaviAppTest, whatIsLeftOfATakeIsEditedWhenItsMessageIsRead) {
    assets.known["video.mov"] = FakeAssets::asset(2, Size{640, 480});
    failAtTheStop();
    program->appViewModel()->setNoticeText({});
    EXPECT_EQ(program->appViewModel()->currentModeName(), "editing");
}

TEST_F(TaviAppTest, aTakeThatEndsWellIsToldByItsEditorAlone) {
    RecordingViewModel& recording = startTakeOfProgram();
    run(recording.stopRecording());
    EXPECT_EQ(program->appViewModel()->notice(), "");
}

} // namespace
} // namespace tavi
