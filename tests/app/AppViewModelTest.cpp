#include "app/RunningApp.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using test::makeTake;
using test::runLoopUntil;
using test::writeFile;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class AppViewModelTest : public test::RunningApp {};

TEST_F(AppViewModelTest, startsWithTheSplashAndNothingElse) {
    launch();
    EXPECT_EQ(app->currentMode(), AppMode::splash());
    EXPECT_THAT(app->recordings(), IsEmpty());
    EXPECT_FALSE(app->showSettings());
    EXPECT_EQ(app->statusBarService(), nullptr);
}

TEST_F(AppViewModelTest, homeComesOneAndAHalfSecondsAfterTheCheckAndNoEarlier) {
    makeTake(library / "take");
    app = std::make_unique<AppViewModel>(ports());
    EXPECT_THAT(desktop.calls(), ElementsAre("preflight"));
    EXPECT_THAT(timers.running(), IsEmpty()) << "the splash is counted from the end of the check";
    settle();
    EXPECT_THAT(timers.running(), ElementsAre(1.5));
    EXPECT_EQ(mode(), "splash");
    endSplash();
    EXPECT_EQ(mode(), "home");
    EXPECT_THAT(names(), ElementsAre("take"));
    EXPECT_THAT(timers.running(), IsEmpty());
}

TEST_F(AppViewModelTest, theContentIsTriedWhereTheQuickAnswerIsNo) {
    permission.isGranted = false;
    launchHome();
    EXPECT_EQ(mode(), "home");
    EXPECT_THAT(log.calls(), ElementsAre("content"));
}

TEST_F(AppViewModelTest, theContentIsNotAskedWhereTheQuickAnswerIsYes) {
    launchHome();
    EXPECT_THAT(log.calls(), IsEmpty());
}

class WithoutPermission : public AppViewModelTest {
protected:
    WithoutPermission() { takePermission(); }

    void takePermission() {
        permission.isGranted = false;
        content.error = CaptureError{CaptureError::Kind::noWindowSystem, ""};
    }
};

TEST_F(WithoutPermission, theSplashLeadsToThePermissionScreenAndNothingIsLoaded) {
    makeTake(library / "take");
    launchHome();
    EXPECT_EQ(mode(), "permission");
    EXPECT_THAT(app->recordings(), IsEmpty());
}

TEST_F(WithoutPermission, comingBackWithThePermissionLeadsHome) {
    makeTake(library / "take");
    launchHome();
    app->sceneBecameActive();
    settle();
    EXPECT_EQ(mode(), "permission");
    permission.isGranted = true;
    app->sceneBecameActive();
    settle();
    EXPECT_EQ(mode(), "home");
    EXPECT_THAT(names(), ElementsAre("take"));
}

TEST_F(WithoutPermission, checkingAgainIsTheSame) {
    launchHome();
    app->recheckPermission();
    settle();
    EXPECT_EQ(mode(), "permission");
    content.error.reset();
    app->recheckPermission();
    settle();
    EXPECT_EQ(mode(), "home");
}

TEST_F(WithoutPermission, aRequestThatIsRefusedOpensTheSettingsAndNothingMore) {
    launchHome();
    app->requestPermission();
    settle();
    EXPECT_THAT(desktop.calls(), ElementsAre("preflight", "request",
                                             std::string("open ") + kScreenCaptureSettingsUrl));
    EXPECT_EQ(mode(), "permission");
}

TEST_F(WithoutPermission, aRequestThatIsGrantedChecksAgain) {
    launchHome();
    permission.isGrantedOnRequest = true;
    permission.isGranted = true;
    app->requestPermission();
    settle();
    EXPECT_EQ(mode(), "home");
    EXPECT_THAT(desktop.calls(), Not(Contains(testing::StartsWith("open"))));
}

TEST_F(AppViewModelTest, comingBackOutsideThePermissionScreenDoesNothing) {
    makeTake(library / "take");
    launchHome();
    permission.isGranted = false;
    content.error = CaptureError{CaptureError::Kind::noWindowSystem, ""};
    for (const bool isEditing : {false, true}) {
        if (isEditing) {
            app->openRecording(
                QUrl::fromLocalFile(QString::fromStdString((library / "take").string())));
        }
        const auto modeBefore = app->currentMode();
        const auto callsBefore = desktop.calls();
        app->sceneBecameActive();
        settle();
        EXPECT_EQ(app->currentMode(), modeBefore);
        EXPECT_EQ(desktop.calls(), callsBefore);
    }
}

TEST_F(AppViewModelTest, anAnswerThatComesAfterTheEndIsDropped) {
    permission.isGranted = false;
    app = std::make_unique<AppViewModel>(ports());
    app.reset();
    settle();
    EXPECT_THAT(timers.running(), IsEmpty());
}

TEST_F(AppViewModelTest, modesFollowTheScreensControls) {
    makeTake(library / "take");
    launchHome();
    app->newRecording();
    EXPECT_EQ(mode(), "recording");
    makeTake(library / "other", 200);
    app->leaveRecording();
    EXPECT_EQ(mode(), "home");
    EXPECT_THAT(names(), ElementsAre("other", "take"));
    app->openRecording(QUrl::fromLocalFile(QString::fromStdString((library / "take").string())));
    EXPECT_EQ(app->currentMode(), AppMode::editing(library / "take"));
    EXPECT_EQ(app->editingName(), "take");
    std::filesystem::remove_all(library / "other");
    app->leaveEditor();
    EXPECT_EQ(mode(), "home");
    EXPECT_THAT(names(), ElementsAre("take")) << "the library is read anew";
}

TEST_F(AppViewModelTest, aTakeThatIsGoneIsToldAndGoesFromTheLibrary) {
    makeTake(library / "gone", 2);
    makeTake(library / "there", 1);
    launchHome();
    std::filesystem::remove_all(library / "gone");
    app->openRecording(QUrl::fromLocalFile(QString::fromStdString((library / "gone").string())));
    EXPECT_EQ(mode(), "home");
    EXPECT_EQ(app->notice(), "\"gone\" is not there any more.");
    EXPECT_THAT(names(), ElementsAre("there"));
}

TEST_F(AppViewModelTest, aFolderWithoutAVideoIsNoTakeToOpen) {
    std::filesystem::create_directories(library / "photos");
    launch();
    app->openTake(library / "photos");
    endSplash();
    EXPECT_EQ(mode(), "home");
    EXPECT_EQ(app->notice(), "\"photos\" can't be opened: there is no video in it.");
}

TEST_F(AppViewModelTest, aTakeThatIsGoneLeavesTheOpenOneAlone) {
    makeTake(library / "take");
    launchHome();
    app->openTake(library / "take");
    app->openTake(library / "gone/");
    EXPECT_EQ(app->currentMode(), AppMode::editing(library / "take"));
    EXPECT_EQ(app->notice(), "\"gone\" is not there any more.");
}

TEST(AppModeTest, twoEditingsAreEqualWhenTheirFoldersAre) {
    EXPECT_EQ(AppMode::editing("/a"), AppMode::editing("/a"));
    EXPECT_NE(AppMode::editing("/a"), AppMode::editing("/b"));
    EXPECT_NE(AppMode::home(), AppMode::recording());
}

TEST_F(AppViewModelTest, aTakeFromOutsideWaitsForTheSplashAndForThePermission) {
    makeTake(library / "take");
    launch();
    app->openTake(library / "take");
    EXPECT_EQ(mode(), "splash");
    endSplash();
    EXPECT_EQ(app->currentMode(), AppMode::editing(library / "take"));
    app->leaveEditor();
    app->openTake(library / "take");
    EXPECT_EQ(mode(), "editing");
    app->leaveEditor();
    app->newRecording();
    app->openTake(library / "take");
    EXPECT_EQ(mode(), "recording") << "a take that runs is not torn away";
}

TEST_F(AppViewModelTest, changesAreToldOnceAndEqualValuesNot) {
    launchHome();
    int modes = 0;
    int settings = 0;
    QObject::connect(app.get(), &AppViewModel::currentModeChanged, [&] { ++modes; });
    QObject::connect(app.get(), &AppViewModel::showSettingsChanged, [&] { ++settings; });
    app->setShowSettings(true);
    app->setShowSettings(true);
    app->newRecording();
    app->newRecording();
    EXPECT_EQ(settings, 1);
    EXPECT_EQ(modes, 1);
}

TEST_F(AppViewModelTest, deletingRemovesTheFolderAndReadsTheLibrary) {
    makeTake(library / "a", 2);
    makeTake(library / "b", 1);
    launchHome();
    EXPECT_TRUE(app->deleteRecording(app->recordings()[0]));
    EXPECT_FALSE(std::filesystem::exists(library / "a"));
    EXPECT_THAT(names(), ElementsAre("b"));
}

TEST_F(AppViewModelTest, aDeleteThatFailsIsToldAndReadsNothing) {
    makeTake(library / "a");
    launchHome();
    const RecordingItem item = app->recordings()[0];
    std::filesystem::remove_all(library / "a");
    int scans = 0;
    QObject::connect(app.get(), &AppViewModel::recordingsChanged, [&] { ++scans; });
    const auto deleted = app->deleteRecording(item);
    ASSERT_FALSE(deleted);
    EXPECT_EQ(deleted.error().description(), "\"a\" is not there any more.");
    EXPECT_EQ(scans, 0);
}

TEST_F(AppViewModelTest, aBatchGoesOnPastAFailureAndTellsTheFirst) {
    for (const char* name : {"a", "b", "c", "d"}) {
        makeTake(library / name, 'z' - name[0]);
    }
    launchHome();
    const auto items = app->recordings();
    std::filesystem::remove_all(library / "b");
    std::filesystem::remove_all(library / "d");
    int scans = 0;
    QObject::connect(app.get(), &AppViewModel::recordingsChanged, [&] { ++scans; });
    const auto deleted = app->deleteRecordings(items);
    ASSERT_FALSE(deleted);
    EXPECT_EQ(deleted.error().path, library / "b");
    EXPECT_FALSE(std::filesystem::exists(library / "c"));
    EXPECT_THAT(app->recordings(), IsEmpty());
    EXPECT_EQ(scans, 1);
}

TEST_F(AppViewModelTest, anEmptyBatchOnlyReadsTheLibrary) {
    launchHome();
    makeTake(library / "a");
    EXPECT_TRUE(app->deleteRecordings({}));
    EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(AppViewModelTest, renamingMovesTheFolderBesideItself) {
    makeTake(library / "a");
    launchHome();
    EXPECT_TRUE(app->renameRecording(app->recordings()[0], "b c"));
    EXPECT_THAT(names(), ElementsAre("b c"));
    EXPECT_FALSE(std::filesystem::exists(library / "a"));
}

TEST_F(AppViewModelTest, aRenameNeverReplacesAnythingAndReadsNothing) {
    makeTake(library / "a");
    std::filesystem::create_directory(library / "empty");
    launchHome();
    int scans = 0;
    QObject::connect(app.get(), &AppViewModel::recordingsChanged, [&] { ++scans; });
    const auto renamed = app->renameRecording(app->recordings()[0], "empty");
    ASSERT_FALSE(renamed);
    EXPECT_EQ(renamed.error().kind, RecordingFileError::Kind::nameTaken);
    EXPECT_TRUE(std::filesystem::exists(library / "a" / "video.mov"));
    EXPECT_EQ(scans, 0);
}

class HandOver : public AppViewModelTest {
protected:
    void launchRecording() {
        launchHome();
        app->newRecording();
        app->setRecordingViewModel(model.get());
    }
    bool waitForMode(const std::string& name) {
        return runLoopUntil([&] {
            settle();
            return mode() == name;
        });
    }
    std::vector<std::string> windowCalls() {
        auto calls = desktop.calls();
        std::erase(calls, "preflight");
        return calls;
    }
};

TEST_F(HandOver, aTakeMiniaturizesTheKeyWindowAndShowsItsTime) {
    windows.add("first");
    windows.key = windows.add("key");
    launchRecording();
    app->beginRecording(*model);
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize key"));
    ASSERT_TRUE(statusItems.isShown());
    EXPECT_EQ(statusItems.titles.back(), " 00:00");
    clock.advance(61);
    timers.tick(RecordingStatusBarService::kInterval);
    EXPECT_EQ(statusItems.titles.back(), " 01:01");
}

TEST_F(HandOver, theWindowIsAwayBeforeADisplaysFirstPicture) {
    windows.key = windows.add("main");
    launchRecording();
    load();
    QObject::connect(model.get(), &RecordingViewModel::isStartingChanged,
                     [this] { app->recordingStartChanged(*model); });
    startTake();
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize main"));
    app->beginRecording(*model);
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize main")) << "once";
    app->finishRecording(std::nullopt);
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize main", "deminiaturize main", "activate"));
}

TEST_F(HandOver, aStartThatFailsBringsTheWindowBack) {
    windows.key = windows.add("main");
    launchRecording();
    load();
    screen.startError = CaptureError{CaptureError::Kind::connectionLost, ""};
    QObject::connect(model.get(), &RecordingViewModel::isStartingChanged,
                     [this] { app->recordingStartChanged(*model); });
    run(model->startRecording());
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize main", "deminiaturize main", "activate"));
    EXPECT_EQ(mode(), "recording");
}

TEST_F(HandOver, aTakeOfAWindowLeavesTheOwnOneUntilItRuns) {
    windows.key = windows.add("main");
    launchRecording();
    load();
    model->setCaptureMode(CaptureMode::window);
    QObject::connect(model.get(), &RecordingViewModel::isStartingChanged,
                     [this] { app->recordingStartChanged(*model); });
    run(model->startRecording());
    EXPECT_THAT(windowCalls(), IsEmpty());
    app->beginRecording(*model);
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize main"));
}

TEST_F(HandOver, withoutAKeyWindowTheFirstIsTaken) {
    windows.add("first");
    windows.add("second");
    launchRecording();
    app->beginRecording(*model);
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize first"));
}

TEST_F(HandOver, withoutAnyWindowTheStatusItemComesAllTheSame) {
    launchRecording();
    app->beginRecording(*model);
    EXPECT_THAT(windowCalls(), IsEmpty());
    EXPECT_TRUE(statusItems.isShown());
}

TEST_F(HandOver, aClickOnTheStatusItemStopsTheTakeAndOpensIt) {
    windows.key = windows.add("main");
    launchRecording();
    load();
    startTake();
    app->beginRecording(*model);
    statusItems.click();
    ASSERT_TRUE(waitForMode("editing"));
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(app->currentMode(), AppMode::editing(model->folder()));
    EXPECT_EQ(app->statusBarService(), nullptr);
    EXPECT_FALSE(statusItems.isShown());
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize main", "deminiaturize main", "activate"));
    EXPECT_THAT(names(), IsEmpty()) << "the editor needs no list";
}

TEST_F(HandOver, aClickAfterTheModelHasGoneLeadsHomeWithAFreshList) {
    launchRecording();
    app->beginRecording(*model);
    model.reset();
    makeTake(library / "take");
    statusItems.click();
    ASSERT_TRUE(waitForMode("home"));
    EXPECT_THAT(names(), ElementsAre("take"));
    EXPECT_FALSE(statusItems.isShown());
}

TEST_F(HandOver, aClickWithoutATakeLeadsHome) {
    launchRecording();
    app->beginRecording(*model);
    statusItems.click();
    EXPECT_TRUE(waitForMode("home"));
}

TEST_F(HandOver, aClickThatComesWhenTheProgramEndsDoesNothing) {
    launchRecording();
    app->beginRecording(*model);
    statusItems.click();
    app.reset();
    background.runAll();
    appMain.runAll();
    EXPECT_FALSE(statusItems.isShown());
}

TEST_F(HandOver, ofTwoMiniaturizedWindowsOnlyTheFirstIsRestored) {
    windows.add("shown");
    windows.add("a")->miniaturize();
    windows.add("b")->miniaturize();
    launchRecording();
    app->finishRecording(std::nullopt);
    EXPECT_THAT(windowCalls(),
                ElementsAre("miniaturize a", "miniaturize b", "deminiaturize a", "activate"));
}

TEST_F(HandOver, aSecondBeginningReplacesTheStatusItem) {
    launchRecording();
    app->beginRecording(*model);
    auto* first = app->statusBarService();
    app->beginRecording(*model);
    EXPECT_NE(app->statusBarService(), nullptr);
    EXPECT_NE(app->statusBarService(), first);
}

TEST_F(HandOver, theScreensOwnStopLeavesStatusItemAndWindowAsTheyAre) {
    windows.key = windows.add("main");
    launchRecording();
    app->beginRecording(*model);
    app->openFinishedTake(library / "take");
    EXPECT_EQ(app->currentMode(), AppMode::editing(library / "take"));
    EXPECT_TRUE(statusItems.isShown());
    EXPECT_THAT(windowCalls(), ElementsAre("miniaturize main"));
}

TEST_F(HandOver, leavingTheScreenEndsACountdown) {
    launchRecording();
    load();
    model->startCountdown([] {});
    ASSERT_TRUE(model->isCountingDown());
    app->leaveRecording();
    EXPECT_FALSE(model->isCountingDown());
    EXPECT_EQ(mode(), "home");
}

TEST_F(HandOver, leavingTheScreenDuringATakeSavesItAndListsIt) {
    launchRecording();
    load();
    startTake();
    app->beginRecording(*model);
    writeFile(folders().front() / "video.mov", ""); // the fake writer leaves none
    app->leaveRecording();
    ASSERT_TRUE(waitForMode("home"));
    EXPECT_EQ(names().size(), 1u);
    EXPECT_FALSE(statusItems.isShown());
}

} // namespace
} // namespace tavi
