#include "editor/EditorViewModel.h"
#include "support/OpenEditor.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A take of a minute with two keyframes and one cut, opened and at rest.
class EditorCommands : public test::OpenEditor {
protected:
    EditorCommands() {
        EditProject project;
        project.recordingPath = "file:///somewhere/";
        for (const double start : {10.0, 30.0}) {
            ZoomKeyframe keyframe;
            keyframe.timestamp = start;
            keyframe.endTime = start + 5;
            keyframe.zoomCurve = {{Uuid::make(), start + 1, 2}};
            project.keyframes.push_back(keyframe);
        }
        project.trimState.cutSegments = {{Uuid::make(), 50, 52}};
        writeProject(project);
        open();
        pass();
        removeSaved();
        newCalls();
    }

    const std::vector<ZoomKeyframe>& keyframes() const { return editor->project().keyframes; }
    const TrimState& trim() const { return editor->project().trimState; }

    /// What was just done is in the file, at once.
    void expectSaved() {
        ASSERT_TRUE(isSaved());
        EXPECT_EQ(saved().keyframes, keyframes());
        EXPECT_EQ(saved().trimState, trim());
        removeSaved();
    }

    void key(int key, Qt::KeyboardModifiers modifiers = {}) {
        EXPECT_TRUE(editor->handleKey(key, modifiers.toInt()));
        settle();
    }
};

TEST_F(EditorCommands, addKeyframeAtThePlayhead) {
    editor->seek(20);
    editor->addKeyframe();
    ASSERT_THAT(keyframes(), SizeIs(3));
    EXPECT_EQ(keyframes()[1].timestamp, 20);
    EXPECT_EQ(keyframes()[1].rect.width, 0.7 * 1280);
    EXPECT_FALSE(editor->selectedKeyframeID());
    expectSaved();
}

TEST_F(EditorCommands, addKeyframeInsideAnotherDoesNothing) {
    editor->seek(12);
    editor->addKeyframe();
    EXPECT_THAT(keyframes(), SizeIs(2));
    EXPECT_FALSE(isSaved());
}

TEST_F(EditorCommands, updateKeyframeIsSavedWithEveryDrag) {
    ZoomKeyframe moved = keyframes()[0];
    for (const double end : {16.0, 17.0, 40.0}) {
        moved.endTime = end;
        editor->updateKeyframe(moved);
        expectSaved();
    }
    EXPECT_EQ(keyframes()[0].endTime, 30);
    editor->updateKeyframe({});
    EXPECT_FALSE(isSaved());
}

TEST_F(EditorCommands, deletedKeyframeIsDeselected) {
    editor->selectKeyframe(keyframes()[0].id);
    editor->deleteKeyframe(keyframes()[0]);
    EXPECT_THAT(keyframes(), SizeIs(1));
    EXPECT_FALSE(editor->selectedKeyframeID());
    expectSaved();
}

TEST_F(EditorCommands, deletingAnotherKeepsTheSelection) {
    const Uuid second = keyframes()[1].id;
    editor->selectKeyframe(second);
    editor->deleteKeyframe(keyframes()[0]);
    EXPECT_EQ(editor->selectedKeyframeID(), second);
}

TEST_F(EditorCommands, unknownIdsAreSavedWhereToldSo) {
    editor->deleteKeyframe({});
    expectSaved();
    editor->removeCut(Uuid::make());
    expectSaved();
    editor->deleteZoomCurvePoint(keyframes()[0].id, Uuid::make());
    expectSaved();
    editor->deleteZoomCurvePoint(Uuid::make(), Uuid::make());
    editor->addZoomCurvePoint(Uuid::make(), {});
    editor->updateZoomCurvePoint(keyframes()[0].id, {});
    EXPECT_FALSE(isSaved());
}

TEST_F(EditorCommands, selectingSeeksToTheStart) {
    editor->selectKeyframe(keyframes()[1].id);
    EXPECT_EQ(editor->currentTime(), 30);
    EXPECT_THAT(newCalls(), ElementsAre("video.mov seek 30.000"));
    editor->selectKeyframe({});
    EXPECT_FALSE(editor->selectedKeyframeID());
    EXPECT_EQ(editor->currentTime(), 30);
    const Uuid unknown = Uuid::make();
    editor->selectKeyframe(unknown);
    EXPECT_EQ(editor->selectedKeyframeID(), unknown);
    EXPECT_THAT(newCalls(), IsEmpty());
    EXPECT_FALSE(isSaved());
}

TEST_F(EditorCommands, waypointNeedsASelectionAroundThePlayhead) {
    editor->addWaypoint(1, 2);
    editor->selectKeyframe(keyframes()[0].id);
    editor->seek(9);
    editor->addWaypoint(1, 2);
    EXPECT_FALSE(isSaved());
    for (const double time : {15.0, 10.0}) {
        editor->seek(time);
        editor->addWaypoint(640, 360);
        expectSaved();
    }
    EXPECT_THAT(keyframes()[0].waypoints,
                ElementsAre(ZoomWaypoint{10, 640, 360}, ZoomWaypoint{15, 640, 360}));
}

TEST_F(EditorCommands, curvePointDragIsSavedLater) {
    const Uuid id = keyframes()[0].id;
    ZoomCurvePoint point = keyframes()[0].zoomCurve[0];
    point.zoomLevel = 3;
    editor->updateZoomCurvePoint(id, point);
    EXPECT_FALSE(isSaved());
    pass();
    expectSaved();
    editor->addZoomCurvePoint(id, {Uuid::make(), 10.5, 1});
    expectSaved();
    editor->deleteZoomCurvePoint(id, point.id);
    expectSaved();
    ASSERT_THAT(keyframes()[0].zoomCurve, SizeIs(1));
    EXPECT_EQ(keyframes()[0].zoomCurve[0].time, 10.5);
}

TEST_F(EditorCommands, clearingTakesTheSelectionToo) {
    editor->selectKeyframe(keyframes()[0].id);
    editor->clearKeyframes();
    EXPECT_THAT(keyframes(), IsEmpty());
    EXPECT_FALSE(editor->selectedKeyframeID());
    expectSaved();
}

TEST_F(EditorCommands, trimHandlesAreSaved) {
    editor->setTrimIn(5);
    expectSaved();
    editor->setTrimOut(99);
    EXPECT_EQ(trim().outPoint, 60);
    expectSaved();
    editor->setTrimOut(5);
    EXPECT_FALSE(isSaved());
    editor->setTrimIn(70);
    EXPECT_FALSE(trim().outPoint);
    expectSaved();
}

TEST_F(EditorCommands, cutIsMarkedAtThePlayheadAndEndedThere) {
    QSignalSpy marks(editor.get(), &EditorViewModel::cutMarkingChanged);
    editor->seek(5);
    editor->toggleCut();
    EXPECT_TRUE(editor->isMarkingCut());
    EXPECT_EQ(editor->cutStartMarker(), 5);
    EXPECT_FALSE(isSaved());
    editor->seek(3);
    editor->toggleCut();
    EXPECT_FALSE(editor->isMarkingCut());
    EXPECT_EQ(marks.size(), 2);
    ASSERT_THAT(trim().cutSegments, SizeIs(2));
    EXPECT_EQ(trim().cutSegments[0].start, 3);
    EXPECT_EQ(trim().cutSegments[0].end, 5);
    expectSaved();
}

TEST_F(EditorCommands, shortCutIsForgotten) {
    editor->seek(5);
    editor->toggleCut();
    editor->seek(5.01);
    editor->toggleCut();
    EXPECT_FALSE(editor->isMarkingCut());
    EXPECT_THAT(trim().cutSegments, SizeIs(1));
    EXPECT_FALSE(isSaved());
}

TEST_F(EditorCommands, removedCutIsRestored) {
    editor->removeCut(trim().cutSegments[0].id);
    EXPECT_THAT(trim().cutSegments, IsEmpty());
    expectSaved();
}

TEST_F(EditorCommands, resetForgetsTrimCutsAndMark) {
    editor->setTrimIn(5);
    editor->setTrimOut(20);
    editor->toggleCut();
    editor->resetTrims();
    EXPECT_EQ(trim(), TrimState{});
    EXPECT_FALSE(editor->isMarkingCut());
    expectSaved();
}

// Keys

TEST_F(EditorCommands, spacePlaysAndPauses) {
    key(Qt::Key_Space);
    EXPECT_TRUE(editor->isPlaying());
    key(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_FALSE(editor->isPlaying());
}

TEST_F(EditorCommands, actionsRunAfterTheKeyWasHandled) {
    EXPECT_TRUE(editor->handleKey(Qt::Key_Space, 0));
    EXPECT_FALSE(editor->isPlaying());
    settle();
    EXPECT_TRUE(editor->isPlaying());
}

TEST_F(EditorCommands, controlBCutsWithAndWithoutShift) {
    EXPECT_FALSE(editor->handleKey(Qt::Key_B, 0));
    settle();
    EXPECT_FALSE(editor->isMarkingCut());
    key(Qt::Key_B, Qt::ControlModifier);
    EXPECT_TRUE(editor->isMarkingCut());
    editor->seek(3);
    key(Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_THAT(trim().cutSegments, SizeIs(2));
}

TEST_F(EditorCommands, escapeEndsTheMarkFirstAndThenTheSelection) {
    editor->selectKeyframe(keyframes()[0].id);
    editor->toggleCut();
    key(Qt::Key_Escape);
    EXPECT_FALSE(editor->isMarkingCut());
    EXPECT_TRUE(editor->selectedKeyframeID());
    key(Qt::Key_Escape);
    EXPECT_FALSE(editor->selectedKeyframeID());
    key(Qt::Key_Escape); // consumed all the same
}

TEST_F(EditorCommands, arrowsStepAFrameOrASecond) {
    editor->seek(10);
    key(Qt::Key_Left);
    EXPECT_DOUBLE_EQ(editor->currentTime(), 10 - 1.0 / 30);
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(editor->currentTime(), 11 - 1.0 / 30);
}

TEST_F(EditorCommands, arrowsStayInTheTakeAndPause) {
    editor->seek(0.5);
    editor->togglePlayback();
    key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(editor->currentTime(), 0);
    EXPECT_FALSE(editor->isPlaying());
    editor->seek(59.99);
    key(Qt::Key_Right);
    EXPECT_EQ(editor->currentTime(), 60);
}

TEST_F(EditorCommands, otherKeysPassOn) {
    for (const int key : {Qt::Key_A, Qt::Key_Up, Qt::Key_Return, Qt::Key_Delete}) {
        EXPECT_FALSE(editor->handleKey(key, 0));
    }
}

// Generation

TEST_F(EditorCommands, generatingWithoutALogEmptiesTheList) {
    editor->selectKeyframe(keyframes()[0].id);
    editor->generateKeyframes();
    EXPECT_TRUE(editor->autoZoomViewModel().isGenerating());
    EXPECT_THAT(keyframes(), SizeIs(2)) << "until it is done";
    settle();
    EXPECT_THAT(keyframes(), IsEmpty());
    EXPECT_FALSE(editor->selectedKeyframeID());
    EXPECT_EQ(editor->autoZoomViewModel().generatedCount(), 0);
    EXPECT_FALSE(editor->autoZoomViewModel().progress());
    expectSaved();
}

TEST_F(EditorCommands, generatedKeyframesReplaceWhatWasEditedMeanwhile) {
    editor->changeProject([](EditProject& project) {
        project.cursorEvents = {{5, 200, 200, CursorEventType::leftMouseDown},
                                {5.1, 210, 200, CursorEventType::leftMouseDown}};
        project.videoHeight = 720;
    });
    editor->setAutoZoomSettings({1.0, true});
    editor->generateKeyframes();
    editor->addKeyframe();
    settle();
    const auto expected = UnifiedAutoZoom::generate(editor->project(), {1280, 720}, 60, 1.0);
    ASSERT_THAT(keyframes(), SizeIs(expected.size()));
    ASSERT_THAT(keyframes(), SizeIs(1));
    EXPECT_EQ(keyframes()[0].timestamp, expected[0].timestamp);
    EXPECT_EQ(keyframes()[0].rect, expected[0].rect) << "of the settings' own intensity";
    const Uuid first = keyframes()[0].id;
    editor->generateKeyframes();
    settle();
    EXPECT_NE(keyframes()[0].id, first);
    EXPECT_EQ(editor->autoZoomViewModel().generatedCount(), 1);
}

} // namespace
} // namespace tavi
