#include "capture/RecordingScreen.h"

namespace tavi {
namespace {

using test::runLoopUntil;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Not;
using testing::SizeIs;

const CaptureDevice kOtherMicrophone{"alsa.head", "Headset", CaptureDeviceKind::microphone};

class RecordingViewModelTest : public test::RecordingScreen {
protected:
    /// Whether the warm microphone is that one.
    bool isWarm(const CaptureDevice& microphone) {
        return log.calls().back() == "startRunning" && sessions.isRunning() &&
               lastOpened() == microphone.id;
    }
    std::string lastOpened() const {
        std::string id;
        for (const std::string& call : log.calls()) {
            constexpr std::string_view kCall = "makeDeviceInput ";
            id = call.starts_with(kCall) ? call.substr(kCall.size()) : id;
        }
        return id;
    }
};

TEST_F(RecordingViewModelTest, startsIdleWithTheMicrophoneOnAndTheCameraOff) {
    EXPECT_THAT(model->availableDisplays(), IsEmpty());
    EXPECT_THAT(model->availableWindows(), IsEmpty());
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(model->elapsedTime(), 0);
    EXPECT_EQ(model->captureMode(), CaptureMode::display);
    EXPECT_EQ(model->selectedDisplayIndex(), 0);
    EXPECT_EQ(model->selectedWindowIndex(), 0);
    EXPECT_THAT(model->windowThumbnails(), IsEmpty());
    EXPECT_THAT(model->displayThumbnails(), IsEmpty());
    EXPECT_FALSE(model->isCameraEnabled());
    EXPECT_FALSE(model->isCameraAvailable());
    EXPECT_THAT(model->availableCameras(), IsEmpty());
    EXPECT_EQ(model->selectedCameraIndex(), 0);
    EXPECT_TRUE(model->isAudioEnabled());
    EXPECT_THAT(model->availableMicrophones(), IsEmpty());
    EXPECT_EQ(model->selectedMicrophoneIndex(), 0);
    EXPECT_FALSE(model->isCountingDown());
    EXPECT_THAT(log.calls(), IsEmpty());
}

TEST_F(RecordingViewModelTest, captureModesAreDisplayAndWindowInThatOrder) {
    EXPECT_THAT((RawValues<CaptureMode>::names), ElementsAre("Display", "Window"));
    model->setProperty("captureMode", "Window");
    EXPECT_EQ(model->captureMode(), CaptureMode::window);
    model->setProperty("captureMode", "Screen");
    EXPECT_EQ(model->property("captureMode").toString(), "Window") << "an unknown name is ignored";
}

TEST_F(RecordingViewModelTest, sourcesAreLoadedInOrder) {
    load();
    EXPECT_THAT(newCalls(),
                ElementsAre("content", "window 9 640x426", "display 3 640x480 cursor",
                            "requestAccess camera", "devices camera", "requestAccess microphone",
                            "devices microphone", "makeSession", "makeDeviceInput alsa.mic",
                            "addInput alsa.mic", "addAudioOutput", "startRunning"));
    EXPECT_THAT(model->availableDisplays(), ElementsAre(kFakeDisplay));
    EXPECT_THAT(model->availableWindows(), ElementsAre(kFakeWindow));
    EXPECT_THAT(model->availableCameras(), ElementsAre(kFakeCamera));
    EXPECT_TRUE(model->isCameraAvailable());
    EXPECT_THAT(model->availableMicrophones(), ElementsAre(kFakeMicrophone));
    EXPECT_THAT(messages.str(), IsEmpty());
}

TEST_F(RecordingViewModelTest, listsAreThereBeforeTheirPictures) {
    bool hadDisplays = false;
    QObject::connect(&*model, &RecordingViewModel::windowThumbnailsChanged,
                     [&] { hadDisplays = !model->availableDisplays().empty(); });
    load();
    EXPECT_TRUE(hadDisplays);
}

TEST_F(RecordingViewModelTest, contentThatCannotBeHadIsPrintedAndChangesNothing) {
    content.error = CaptureError{CaptureError::Kind::noWindowSystem, "DISPLAY is not set"};
    load();
    EXPECT_EQ(messages.str(),
              "Failed to get shareable content: " + content.error->description() + "\n");
    EXPECT_THAT(model->availableDisplays(), IsEmpty());
    EXPECT_THAT(newCalls(), ElementsAre("content"));
}

TEST_F(RecordingViewModelTest, windowsThatUsersDoNotMeanAreNotOffered) {
    Window hidden = kFakeWindow;
    hidden.isOnScreen = false;
    Window small = kFakeWindow;
    small.frame.height = 100;
    Window nameless = kFakeWindow;
    nameless.applicationName.clear();
    content.list.windows = {hidden, small, kFakeWindow, nameless};
    load();
    EXPECT_THAT(model->availableWindows(), ElementsAre(kFakeWindow));
}

TEST_F(RecordingViewModelTest, picturesArePublishedOnceEachAndFailuresAreMissing) {
    Window second = kFakeWindow;
    second.id = 10;
    Window third = kFakeWindow;
    third.id = 11;
    content.list.windows = {kFakeWindow, second, third};
    screenshots.unavailable = {10, kFakeDisplay.id};
    int windowChanges = 0;
    int displayChanges = 0;
    QObject::connect(&*model, &RecordingViewModel::windowThumbnailsChanged,
                     [&] { ++windowChanges; });
    QObject::connect(&*model, &RecordingViewModel::displayThumbnailsChanged,
                     [&] { ++displayChanges; });
    load();
    EXPECT_THAT(model->windowThumbnails(), testing::UnorderedElementsAre(Key(0), Key(2)));
    EXPECT_EQ(model->windowThumbnails().at(2)->width(), 640);
    EXPECT_THAT(model->displayThumbnails(), IsEmpty());
    EXPECT_EQ(windowChanges, 1);
    EXPECT_EQ(displayChanges, 1);
}

TEST_F(RecordingViewModelTest, withoutAccessThereAreNoCameras) {
    devices.forbidden = {CaptureDeviceKind::camera};
    load();
    EXPECT_FALSE(model->isCameraAvailable());
    EXPECT_THAT(newCalls(), Not(Contains("devices camera")));
    EXPECT_THAT(model->availableMicrophones(), SizeIs(1));
}

TEST_F(RecordingViewModelTest, withoutAccessThereAreNoMicrophonesAndNoWarmUp) {
    devices.forbidden = {CaptureDeviceKind::microphone};
    load();
    EXPECT_THAT(model->availableMicrophones(), IsEmpty());
    EXPECT_TRUE(model->isCameraAvailable());
    EXPECT_EQ(sessions.sessionCount(), 0U);
}

TEST_F(RecordingViewModelTest, modelThatGoesWhileItLoadsLeavesNothingBehind) {
    model->load();
    model.reset();
    QCoreApplication::processEvents();
    EXPECT_THAT(newCalls(), ElementsAre("content"));
}

TEST_F(RecordingViewModelTest, microphoneIsReadyAfterThreeEqualSamples) {
    load();
    EXPECT_FALSE(model->isMicrophoneReady());
    warmUp(2);
    EXPECT_FALSE(model->isMicrophoneReady());
    warmUp(1);
    EXPECT_TRUE(model->isMicrophoneReady());
}

TEST_F(RecordingViewModelTest, restartEndsTheWarmUpBefore) {
    devices.plugged.push_back(kOtherMicrophone);
    load();
    warmUp();
    newCalls();
    model->setSelectedMicrophoneIndex(1);
    run(model->warmUpAudio());
    EXPECT_THAT(newCalls(), ElementsAre("stopRunning", "makeSession", "makeDeviceInput alsa.head",
                                        "addInput alsa.head", "addAudioOutput", "startRunning"));
    EXPECT_FALSE(model->isMicrophoneReady());
    EXPECT_EQ(sessions.sessionCount(), 1U);
}

TEST_F(RecordingViewModelTest, microphoneThatIsSwitchedOffIsNotKeptWarm) {
    load();
    model->setIsAudioEnabled(false);
    run(model->warmUpAudio());
    EXPECT_EQ(sessions.sessionCount(), 0U);
    model->setIsAudioEnabled(true);
    run(model->warmUpAudio());
    EXPECT_TRUE(isWarm(kFakeMicrophone));
}

TEST_F(RecordingViewModelTest, microphoneThatIsNotInTheListIsNotWarmedUp) {
    load();
    for (const int index : {1, -1}) {
        model->setSelectedMicrophoneIndex(index);
        run(model->warmUpAudio());
        EXPECT_EQ(sessions.sessionCount(), 0U) << index;
    }
}

TEST_F(RecordingViewModelTest, warmUpThatFailsIsPrintedAndNotKept) {
    const CaptureDeviceError gone{CaptureDeviceError::Kind::gone, "Desk Microphone"};
    sessions.deviceErrors = {{kFakeMicrophone.id, gone}};
    load();
    EXPECT_EQ(messages.str(), "Audio warm-up failed: " + gone.description() + "\n");
    EXPECT_EQ(model->microphoneError(), gone.description());
    EXPECT_EQ(sessions.sessionCount(), 0U);
    sessions.deviceErrors.clear();
    run(model->warmUpAudio());
    EXPECT_THAT(model->microphoneError(), IsEmpty());
    EXPECT_TRUE(isWarm(kFakeMicrophone));
}

TEST_F(RecordingViewModelTest, ofSeveralRestartsInARowTheLastOneCounts) {
    devices.plugged.push_back(kOtherMicrophone);
    load();
    model->setSelectedMicrophoneIndex(1);
    model->restartAudioWarmUp();
    model->setSelectedMicrophoneIndex(0);
    model->restartAudioWarmUp();
    model->setSelectedMicrophoneIndex(1);
    model->restartAudioWarmUp();
    ASSERT_TRUE(runLoopUntil([&] { return isWarm(kOtherMicrophone); }));
    EXPECT_EQ(sessions.sessionCount(), 1U);
}

TEST_F(RecordingViewModelTest, microphoneSwitchedOffWhileItIsOpenedIsClosedAgain) {
    load();
    model->restartAudioWarmUp();
    model->setIsAudioEnabled(false);
    model->restartAudioWarmUp();
    ASSERT_TRUE(runLoopUntil([&] { return sessions.sessionCount() == 0; }));
    EXPECT_FALSE(model->isMicrophoneReady());
}

TEST_F(RecordingViewModelTest, modelThatGoesStopsItsMicrophone) {
    load();
    model.reset();
    EXPECT_EQ(sessions.sessionCount(), 0U);
}

TEST_F(RecordingViewModelTest, modelThatGoesWhileAMicrophoneIsOpenedClosesIt) {
    load();
    model->restartAudioWarmUp();
    model.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(sessions.sessionCount(), 0U);
}

TEST_F(RecordingViewModelTest, screensSeeRowsOfNamesAndSizes) {
    Window odd = kFakeWindow;
    odd.title.clear();
    content.list.windows = {kFakeWindow, odd};
    content.list.displays.push_back({4, "DP-2", 1280, 720, {640, 0, 1280, 720}, false});
    load();
    const auto displays = model->property("availableDisplays").toList();
    ASSERT_EQ(displays.size(), 2);
    EXPECT_EQ(displays[1].toMap()["name"].toString(), "Display 2");
    EXPECT_EQ(displays[1].toMap()["width"].toInt(), 1280);
    EXPECT_EQ(displays[1].toMap()["height"].toInt(), 720);
    const auto windows = model->property("availableWindows").toList();
    ASSERT_EQ(windows.size(), 2);
    EXPECT_EQ(windows[0].toMap()["appName"].toString(), "Editor");
    EXPECT_EQ(windows[0].toMap()["title"].toString(), "notes");
    EXPECT_EQ(windows[1].toMap()["title"].toString(), "");
    const auto cameras = model->property("availableCameras").toList();
    ASSERT_EQ(cameras.size(), 1);
    EXPECT_EQ(cameras[0].toMap()["name"].toString(), "Lid Camera");
    const auto pictures = model->property("windowThumbnails").toMap();
    EXPECT_EQ(pictures["0"].value<PixelBufferPtr>(), model->windowThumbnails().at(0));
}

} // namespace
} // namespace tavi
