#include "capture/RecordingScreen.h"

namespace tavi {
namespace {

using test::runLoopUntil;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordingCountdown : public test::RecordingScreen {
protected:
    RecordingCountdown() { load(); }

    void start() {
        model->startCountdown([this] {
            ++startedCalls;
            wasRecording = model->isRecording();
        });
    }
    void count(int seconds) {
        for (int i = 0; i < seconds; ++i) {
            timers.tick(kSecond);
        }
    }
    bool isIdleAgain() {
        return runLoopUntil([this] { return !model->isCountingDown() && !model->isStarting(); });
    }

    int startedCalls = 0;
    bool wasRecording = false;
};

TEST_F(RecordingCountdown, runsOverTheDisplayAndThenStartsTheTake) {
    std::vector<int> values;
    QObject::connect(&*model, &RecordingViewModel::countdownValueChanged,
                     [&] { values.push_back(model->countdownValue()); });
    frames.displays[kFakeDisplay.id] = {0, 100, 640, 480};
    start();
    EXPECT_TRUE(model->isCountingDown());
    EXPECT_EQ(panels.lastFrame, (Rect{0, 100, 640, 480}));
    EXPECT_THAT(timers.running(), ElementsAre(kSecond));
    count(4);
    EXPECT_THAT(folders(), IsEmpty());
    count(1);
    EXPECT_FALSE(model->isCountingDown());
    EXPECT_FALSE(panels.isOpen());
    ASSERT_TRUE(runLoopUntil([this] { return startedCalls > 0; }));
    EXPECT_TRUE(wasRecording);
    EXPECT_THAT(values, ElementsAre(5, 4, 3, 2, 1, 0));
    EXPECT_EQ(startedCalls, 1);
}

TEST_F(RecordingCountdown, displayThatNobodyFindsCountsAsAtTheOrigin) {
    frames.displays.clear();
    start();
    EXPECT_EQ(panels.lastFrame, (Rect{0, 0, 640, 480}));
}

TEST_F(RecordingCountdown, followsTheSelectedWindow) {
    model->setCaptureMode(CaptureMode::window);
    start();
    EXPECT_EQ(panels.lastFrame, kFakeWindow.frame);
    EXPECT_THAT(timers.running(), ElementsAre(kSecond, 1.0 / 30));
    frames.windows[kFakeWindow.id] = {5, 6, 300, 200};
    timers.tick(1.0 / 30);
    EXPECT_EQ(panels.lastFrame, (Rect{5, 6, 300, 200}));
}

TEST_F(RecordingCountdown, isNotStartedTwice) {
    start();
    start();
    EXPECT_THAT(timers.running(), ElementsAre(kSecond));
    count(5);
    EXPECT_TRUE(model->isStarting());
    start();
    EXPECT_FALSE(model->isCountingDown()) << "while the take starts";
    ASSERT_TRUE(isIdleAgain());
    start();
    EXPECT_FALSE(model->isCountingDown()) << "while a take runs";
    EXPECT_EQ(startedCalls, 1);
}

struct Selection {
    CaptureMode mode;
    int index;
};

class RecordingCountdownOf : public RecordingCountdown,
                             public testing::WithParamInterface<Selection> {};

TEST_P(RecordingCountdownOf, aSourceThatIsNotInTheListIsRefused) {
    const auto [mode, index] = GetParam();
    model->setCaptureMode(mode);
    model->setSelectedDisplayIndex(index);
    model->setSelectedWindowIndex(index);
    int changes = 0;
    QObject::connect(&*model, &RecordingViewModel::isCountingDownChanged, [&] { ++changes; });
    start();
    EXPECT_FALSE(model->isCountingDown());
    EXPECT_EQ(changes, 2);
    EXPECT_THAT(panels.calls(), testing::Not(testing::Contains("makePanel 5")));
    EXPECT_THAT(folders(), IsEmpty());
    EXPECT_THAT(messages.str(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Indices, RecordingCountdownOf,
                         testing::Values(Selection{CaptureMode::display, 1},
                                         Selection{CaptureMode::display, -1},
                                         Selection{CaptureMode::window, 1},
                                         Selection{CaptureMode::window, -1}));

TEST_F(RecordingCountdown, cancelLeavesTheWarmUpRunningAndStartsNothing) {
    warmUp();
    start();
    count(2);
    model->cancelCountdown();
    EXPECT_FALSE(model->isCountingDown());
    EXPECT_EQ(model->countdownValue(), 0);
    EXPECT_FALSE(panels.isOpen());
    count(5);
    EXPECT_EQ(startedCalls, 0);
    EXPECT_TRUE(model->isMicrophoneReady());
    model->cancelCountdown();
    EXPECT_FALSE(model->isCountingDown());
}

TEST_F(RecordingCountdown, takeThatCannotStartIsNotAnnounced) {
    screen.startError = CaptureError{CaptureError::Kind::sourceGone, ""};
    start();
    count(5);
    ASSERT_TRUE(isIdleAgain());
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(startedCalls, 0);
}

TEST_F(RecordingCountdown, modelThatGoesEndsIt) {
    start();
    model.reset();
    EXPECT_FALSE(panels.isOpen());
    EXPECT_THAT(timers.running(), IsEmpty());
}

TEST_F(RecordingCountdown, screensHearWhenTheTakeRunsAndWhereItLies) {
    bool hasStarted = false;
    QString folder;
    QObject::connect(&*model, &RecordingViewModel::recordingStarted, [&] { hasStarted = true; });
    QObject::connect(&*model, &RecordingViewModel::recordingStopped,
                     [&](const QString& path) { folder = path; });
    model->record();
    count(5);
    ASSERT_TRUE(runLoopUntil([&] { return hasStarted; }));
    sendFirstFrame();
    model->stop();
    ASSERT_TRUE(runLoopUntil([&] { return !folder.isEmpty(); }));
    EXPECT_EQ(folder.toStdString(), folders().at(0).string());
}

} // namespace
} // namespace tavi
