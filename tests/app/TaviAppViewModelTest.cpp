#include "app/RunningApp.h"
#include "app/TaviApp.h"
#include "capture/RecorderLock.h"

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
    void openRecordingScreen() {
        launchHome();
        program->appViewModel()->newRecording();
    }

    test::TemporaryFolder lockFolder;
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

TEST_F(TaviAppTest, theNewsAreThoseOfTheRunningVersion) {
    launchHome();
    EXPECT_TRUE(program->notificationViewModel()->hasUnread());
}

TEST_F(TaviAppTest, aCountdownHoldsTheLockOfTheOneRecorder) {
    openRecordingScreen();
    auto* opened = program->recordingViewModel();
    run(opened->loadSources());
    opened->startCountdown([] {});
    EXPECT_TRUE(test::runLoopUntil([&] {
        return std::filesystem::exists(lockFolder.path()) &&
               !std::filesystem::is_empty(lockFolder.path());
    }));
    EXPECT_TRUE(opened->isCountingDown());
    EXPECT_EQ(program->appViewModel()->notice(), "");
}

TEST_F(TaviAppTest, withoutAPlaceForTheLockTheCountdownEndsAndTheUserIsTold) {
    std::filesystem::remove_all(lockFolder.path());
    openRecordingScreen();
    auto* opened = program->recordingViewModel();
    run(opened->loadSources());
    opened->startCountdown([] {});
    EXPECT_TRUE(test::runLoopUntil([&] { return !opened->isCountingDown(); }));
    EXPECT_NE(program->appViewModel()->notice(), "");
}

} // namespace
} // namespace tavi
