#include "editor/EditorViewModel.h"

#include "project/AppSettings.h"
#include "project/RecordingFolder.h"
#include "support/OpenEditor.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EditorViewModelTest : public test::OpenEditor {};

EditProject plainProject() {
    EditProject project;
    project.recordingPath = "file:///somewhere/";
    return project;
}

ZoomKeyframe keyframe(double start, double end) {
    ZoomKeyframe made;
    made.timestamp = start;
    made.endTime = end;
    return made;
}

// Opening

TEST_F(EditorViewModelTest, startsWithTheDefaultsOfAFreshTake) {
    open(false);
    EXPECT_EQ(editor->currentTime(), 0);
    EXPECT_EQ(editor->duration(), 0);
    EXPECT_FALSE(editor->isPlaying());
    EXPECT_EQ(editor->canvasMode(), CanvasMode::preview);
    EXPECT_FALSE(editor->selectedKeyframeID());
    EXPECT_EQ(editor->videoSize(), (Size{1920, 1080}));
    EXPECT_EQ(editor->autoZoomSettings(), (AutoZoomSettings{0.5, true}));
    EXPECT_FALSE(editor->isMarkingCut());
    EXPECT_FALSE(editor->cutStartMarker());
    EXPECT_TRUE(editor->isCameraReady());
    EXPECT_EQ(editor->project().recordingPath, folderUrl(folder));
    EXPECT_THAT(editor->project().keyframes, IsEmpty());
}

TEST_F(EditorViewModelTest, freshTakeHasTheLookOfTheSettings) {
    AppSettings settings;
    settings.appearanceSettings.cornerRadius = 21;
    settings.outputSettings.fps = 30;
    saveAppSettings(settings, library.path());
    open();
    EXPECT_EQ(editor->project().appearanceSettings, settings.appearanceSettings);
    EXPECT_EQ(editor->project().outputSettings.fps, 30);
}

TEST_F(EditorViewModelTest, savedProjectIsOpenedAsItStands) {
    EditProject project = plainProject();
    project.keyframes = {keyframe(1, 2)};
    project.trimState.inPoint = 3;
    writeProject(project);
    open();
    EXPECT_EQ(editor->project().keyframes, project.keyframes);
    EXPECT_EQ(editor->project().trimState, project.trimState);
    EXPECT_EQ(editor->project().recordingPath, "file:///somewhere/");
}

TEST_F(EditorViewModelTest, brokenProjectBecomesAFreshOneAtTheFirstAutosave) {
    writeFile("project.json", "{\"keyframes\":");
    open();
    EXPECT_THAT(editor->project().keyframes, IsEmpty());
    pass();
    EXPECT_EQ(saved().recordingPath, folderUrl(folder));
}

TEST_F(EditorViewModelTest, videoTellsLengthAndSizeAMomentLater) {
    open(false);
    QSignalSpy durations(editor.get(), &EditorViewModel::durationChanged);
    QSignalSpy sizes(editor.get(), &EditorViewModel::videoSizeChanged);
    settle();
    EXPECT_EQ(durations.size(), 1);
    EXPECT_EQ(sizes.size(), 1);
    EXPECT_EQ(editor->duration(), 60);
    EXPECT_EQ(editor->videoSize(), (Size{1280, 720}));
    EXPECT_EQ(editor->keptDuration(), 60);
    EXPECT_FALSE(editor->isVideoUnreadable());
}

TEST_F(EditorViewModelTest, videoThatCanNotBeReadLeavesTheFirstValues) {
    media.known.clear();
    EditProject project = plainProject();
    project.keyframes = {keyframe(1, -1)};
    writeProject(project);
    open();
    EXPECT_EQ(editor->duration(), 0);
    EXPECT_EQ(editor->videoSize(), (Size{1920, 1080}));
    EXPECT_EQ(editor->project().keyframes[0].endTime, -1) << "its end isn't known";
    EXPECT_TRUE(editor->isVideoUnreadable());
}

TEST_F(EditorViewModelTest, videoWithoutPicturesHasALengthOnly) {
    media.known["video.mov"] = asset(7, {});
    open();
    EXPECT_EQ(editor->duration(), 7);
    EXPECT_EQ(editor->videoSize(), (Size{1920, 1080}));
}

TEST_F(EditorViewModelTest, logComesFromTheMetadataAlways) {
    addCamera(0.25);
    writeProject(plainProject());
    open();
    EXPECT_THAT(editor->project().cursorEvents, SizeIs(1));
    EXPECT_EQ(editor->project().videoHeight, 720);
    EXPECT_EQ(editor->project().cameraStartDelay, 0.25);
}

TEST_F(EditorViewModelTest, brokenMetadataLeavesTheSavedProjectWithoutALog) {
    EditProject project = plainProject();
    project.keyframes = {keyframe(1, 2)};
    writeProject(project);
    writeFile("metadata.json", "nothing");
    open();
    EXPECT_EQ(editor->project().keyframes, project.keyframes);
    EXPECT_THAT(editor->project().cursorEvents, IsEmpty());
}

TEST_F(EditorViewModelTest, openEndsAreClosedForGood) {
    EditProject project = plainProject();
    project.keyframes = {keyframe(20, -1), keyframe(4, -1)};
    project.keyframes[0].rect = {0, 0, 960, 540};
    project.keyframes[0].transitionDuration = 1;
    writeProject(project);
    open();
    const auto stored = saved().keyframes;
    EXPECT_EQ(stored, editor->project().keyframes);
    ASSERT_THAT(stored, SizeIs(2));
    EXPECT_EQ(stored[0].endTime, 20);
    EXPECT_EQ(stored[1].endTime, 60);
    ASSERT_THAT(stored[1].zoomCurve, SizeIs(2));
    EXPECT_EQ(stored[1].zoomCurve[0].zoomLevel, 2) << "of 1920, before the video's width is known";
}

TEST_F(EditorViewModelTest, whatIsLoadedAfterTheEditorIsGoneIsDropped) {
    addCamera(0.5);
    open(false);
    editor->generateKeyframes();
    editor->handleKey(Qt::Key_Space, 0);
    editor.reset();
    settle();
    pass();
    EXPECT_FALSE(isSaved());
}

// The camera

TEST_F(EditorViewModelTest, takeWithoutACameraHasOnePlayer) {
    EditProject project = plainProject();
    project.cameraSettings.enabled = false;
    writeProject(project);
    open();
    EXPECT_EQ(players.made.count("camera.mov"), 0U);
    EXPECT_TRUE(editor->isCameraReady());
    EXPECT_FALSE(editor->project().cameraSettings.enabled);
    editor->togglePlayback();
    EXPECT_THAT(newCalls(), ElementsAre("video.mov setRate 1.0 0.000 at 100.050"));
}

TEST_F(EditorViewModelTest, cameraIsShownAtEveryOpening) {
    EditProject project = plainProject();
    project.cameraSettings.enabled = false;
    writeProject(project);
    addCamera(0);
    open();
    EXPECT_TRUE(editor->project().cameraSettings.enabled);
}

TEST_F(EditorViewModelTest, cameraAHundredthLateIsPlayedAsItIs) {
    addCamera(0.01);
    open(false);
    EXPECT_TRUE(editor->isCameraReady());
    settle();
    EXPECT_THAT(newCalls(), IsEmpty());
}

TEST_F(EditorViewModelTest, cameraThatCameLaterGetsADelayedItem) {
    addCamera(0.011);
    open(false);
    EXPECT_FALSE(editor->isCameraReady());
    editor->togglePlayback();
    editor->seek(3);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov seek 3.000"));
    EXPECT_FALSE(editor->isPlaying());
    settle();
    EXPECT_TRUE(editor->isCameraReady());
    EXPECT_THAT(newCalls(), ElementsAre("camera.mov replaceCurrentItem"));
    const PlayerItem item = players.made.at("camera.mov")->current.value();
    ASSERT_TRUE(item.delayedTrack);
    EXPECT_EQ(item.path, folder / "camera.mov");
    EXPECT_EQ(item.delayedTrack->start, MediaTime::fromSeconds(0.011));
    EXPECT_EQ(item.delayedTrack->duration.seconds(), 50);
}

TEST_F(EditorViewModelTest, cameraWithoutPicturesIsNeverReady) {
    addCamera(0.5);
    media.known["camera.mov"] = asset(50, {});
    open();
    EXPECT_FALSE(editor->isCameraReady());
    editor->togglePlayback();
    editor->seek(2);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov seek 2.000"));
    EXPECT_EQ(editor->currentTime(), 2);
}

TEST_F(EditorViewModelTest, bothPlayersStartAtOneTickFromOneTime) {
    addCamera(0);
    open();
    video().time = MediaTime::fromSeconds(7.5);
    editor->togglePlayback();
    EXPECT_THAT(newCalls(), ElementsAre("video.mov setRate 1.0 7.500 at 100.050",
                                        "camera.mov setRate 1.0 7.500 at 100.050"));
    EXPECT_TRUE(editor->isPlaying());
    editor->togglePlayback();
    EXPECT_THAT(newCalls(), ElementsAre("video.mov pause", "camera.mov pause"));
    EXPECT_FALSE(editor->isPlaying());
}

TEST_F(EditorViewModelTest, seekMovesThePlayheadAtOnceAndBothPlayers) {
    addCamera(0);
    open();
    QSignalSpy moved(editor.get(), &EditorViewModel::currentTimeChanged);
    editor->seek(1.00001);
    EXPECT_EQ(editor->currentTime(), 1.00001);
    EXPECT_EQ(moved.size(), 1);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov seek 1.000", "camera.mov seek 1.000"));
}

// Playback

class EditorPlaybackTest : public test::OpenEditor {
protected:
    void play(const TrimState& trim, double from) {
        EditProject project = plainProject();
        project.trimState = trim;
        writeProject(project);
        open();
        editor->seek(from);
        newCalls();
        editor->togglePlayback();
    }

    static TimeRange cut(double start, double end) { return {Uuid::make(), start, end}; }
};

TEST_F(EditorPlaybackTest, playheadFollowsThePlayer) {
    open();
    EXPECT_EQ(video().tickInterval, (MediaTime{1, 30}));
    video().tick(4.25);
    EXPECT_EQ(editor->currentTime(), 4.25);
}

TEST_F(EditorPlaybackTest, playingFromOutsideTheTrimStartsAtTheInPoint) {
    for (const double from : {0.5, 20.0, 30.0}) {
        play({1, 20, {}}, from);
        EXPECT_THAT(newCalls(),
                    ElementsAre("video.mov seek 1.000", "video.mov setRate 1.0 1.000 at 100.050"))
            << from;
    }
}

TEST_F(EditorPlaybackTest, playingFromInsideTheTrimStartsThere) {
    play({1, 20, {}}, 19.9);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov setRate 1.0 19.900 at 100.050"));
}

TEST_F(EditorPlaybackTest, untrimmedTakeStartsWhereItStands) {
    play({}, 60);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov setRate 1.0 60.000 at 100.050"));
}

TEST_F(EditorPlaybackTest, endOfTheTrimPausesAndLeavesThePlayhead) {
    play({1, 20, {}}, 5);
    newCalls();
    video().tick(19.99);
    EXPECT_TRUE(editor->isPlaying());
    video().tick(20);
    EXPECT_FALSE(editor->isPlaying());
    EXPECT_EQ(editor->currentTime(), 20);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov pause"));
}

TEST_F(EditorPlaybackTest, endOfTheFilePausesAndGoesToTheInPoint) {
    play({1, {}, {}}, 5);
    newCalls();
    video().reachEnd();
    EXPECT_FALSE(editor->isPlaying());
    EXPECT_EQ(editor->currentTime(), 1);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov pause", "video.mov seek 1.000"));
}

TEST_F(EditorPlaybackTest, cutIsSkippedAtTheFirstTickInIt) {
    play({0, {}, {cut(8, 9), cut(3, 4)}}, 3.5);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov setRate 1.0 3.500 at 100.050"))
        << "it starts in the cut";
    video().tick(3.53);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov seek 4.000"));
    EXPECT_EQ(editor->currentTime(), 4);
    video().tick(4);
    EXPECT_THAT(newCalls(), IsEmpty()) << "its end is outside";
}

TEST_F(EditorPlaybackTest, endOfACutBetweenTwoTicksIsReachedByOneSeek) {
    const double end = 4.0003; // nearest tick of 1/600 s: 4.0
    play({0, {}, {cut(3, end)}}, 2);
    newCalls();
    video().tick(3.01);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov seek 4.000"));
    video().tick(4.0);
    EXPECT_THAT(newCalls(), IsEmpty());
}

TEST_F(EditorPlaybackTest, cutPastTheOutPointIsSkippedAndThenPlaybackEnds) {
    play({0, 10, {cut(9, 12)}}, 5);
    newCalls();
    video().tick(9.01);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov seek 12.000"));
    video().tick(12);
    EXPECT_FALSE(editor->isPlaying());
    EXPECT_EQ(editor->currentTime(), 12);
}

TEST_F(EditorPlaybackTest, pausedPlayheadMayStandInACut) {
    play({0, {}, {cut(3, 4)}}, 1);
    editor->togglePlayback();
    newCalls();
    video().tick(3.5);
    EXPECT_THAT(newCalls(), IsEmpty());
    EXPECT_EQ(editor->currentTime(), 3.5);
}

// Saving

TEST_F(EditorViewModelTest, openedTakeIsSavedOnceThoughNothingWasEdited) {
    open();
    EXPECT_FALSE(isSaved());
    EXPECT_THAT(timers.running(), ElementsAre(0.5));
    pass();
    EXPECT_EQ(saved().recordingPath, folderUrl(folder));
    removeSaved();
    pass();
    EXPECT_FALSE(isSaved());
}

TEST_F(EditorViewModelTest, changesAreSavedHalfASecondAfterTheLast) {
    open();
    pass();
    removeSaved();
    for (int i = 0; i < 5; ++i) {
        editor->changeProject([i](EditProject& p) { p.appearanceSettings.cornerRadius = i; });
        EXPECT_THAT(timers.running(), ElementsAre(0.5)) << "begun anew";
        EXPECT_FALSE(isSaved());
    }
    pass();
    EXPECT_EQ(saved().appearanceSettings.cornerRadius, 4);
}

TEST_F(EditorViewModelTest, playheadSelectionAndCanvasSaveNothing) {
    open();
    pass();
    removeSaved();
    editor->seek(3);
    editor->selectKeyframe(Uuid::make());
    editor->setCanvasMode(CanvasMode::raw);
    editor->setAutoZoomSettings({0.9, false});
    editor->toggleCut();
    editor->cancelCut();
    pass();
    EXPECT_FALSE(isSaved());
}

TEST_F(EditorViewModelTest, lookBecomesTheDefaultOfNewTakes) {
    AppSettings settings;
    settings.defaultCameraEnabled = true;
    settings.defaultAudioEnabled = true;
    saveAppSettings(settings, library.path());
    open();
    editor->changeProject([](EditProject& p) {
        p.appearanceSettings.cornerRadius = 33;
        p.outputSettings.fps = 24;
        p.cursorSettings.showClickEffect = true;
        p.cameraSettings.enabled = false;
        p.autoZoomSettings.aggressiveness = 0.75;
    });
    editor->persistDefaults();
    const AppSettings stored = loadAppSettings(library.path());
    EXPECT_TRUE(stored.defaultCameraEnabled);
    EXPECT_TRUE(stored.defaultAudioEnabled);
    EXPECT_EQ(stored.appearanceSettings.cornerRadius, 33);
    EXPECT_EQ(stored.outputSettings.fps, 24);
    EXPECT_TRUE(stored.cursorSettings.showClickEffect);
    EXPECT_FALSE(stored.cameraSettings.enabled);
    EXPECT_EQ(stored.autoZoomSettings.aggressiveness, 0.75);
}

TEST_F(EditorViewModelTest, withoutSettingsTheTwoSwitchesAreWrittenAsOff) {
    open();
    editor->persistDefaults();
    const AppSettings stored = loadAppSettings(library.path());
    EXPECT_FALSE(stored.defaultCameraEnabled);
    EXPECT_FALSE(stored.defaultAudioEnabled);
}

TEST_F(EditorViewModelTest, folderThatIsGoneIsNoTrouble) {
    open();
    std::filesystem::remove_all(library.path());
    editor->addKeyframe();
    pass();
    EXPECT_THAT(editor->project().keyframes, SizeIs(1));
}

// The sizes that follow

TEST_F(EditorViewModelTest, outputFollowsTheVideoWhereTheProjectSaysSo) {
    open();
    editor->changeProject([](EditProject& p) { p.outputSettings = {{1920, 1080}, 60, true}; });
    EXPECT_EQ(editor->outputSize(), (Size{1920, 1080}));
    editor->changeProject([](EditProject& p) { p.outputSettings = {{1080, 1080}, 60, false}; });
    EXPECT_EQ(editor->outputAspectRatio(), 1);
}

TEST_F(EditorViewModelTest, keptDurationLeavesOutWhatIsCut) {
    open();
    editor->setTrimIn(10);
    editor->setTrimOut(50);
    editor->seek(20);
    editor->toggleCut();
    editor->seek(25);
    editor->toggleCut();
    EXPECT_EQ(editor->keptDuration(), 35);
}

} // namespace
} // namespace tavi
