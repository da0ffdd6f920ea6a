#include "editor/TimelineStopsViewModel.h"

#include "editor/TimelineViewModel.h"
#include "support/OpenEditor.h"

#include <QRectF>
#include <QSignalSpy>
#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Role = TimelineStopsViewModel::Role;

ZoomKeyframe keyframe(double start, double end) {
    ZoomKeyframe made;
    made.timestamp = start;
    made.endTime = end;
    made.transitionDuration = 0.5;
    made.rect = {320, 180, 640, 360};
    return made;
}

/// The timeline of 600 points beside the take of a minute, which has two keyframes and a cut.
class TimelineStops : public test::OpenEditor {
protected:
    void SetUp() override {
        EditProject project;
        project.recordingPath = "file:///take/";
        project.keyframes = {keyframe(10, 20), keyframe(30, 40)};
        project.keyframes[0].zoomCurve = {{Uuid::make(), 14, 2}, {Uuid::make(), 16, 3}};
        project.keyframes[1].zoomCurve = {{Uuid::make(), 35, 2}};
        project.trimState = {1, {}, {{Uuid::make(), 24, 26}}};
        writeProject(project);
        open();
        timeline = std::make_unique<TimelineViewModel>(*editor);
        timeline->setTrackWidth(600);
    }
    void TearDown() override { timeline.reset(); }

    TimelineStopsViewModel& stops() { return *timeline->stops(); }
    QVariant at(int row, int role) { return stops().data(stops().index(row), role); }
    std::vector<std::string> names() {
        std::vector<std::string> all;
        for (int row = 0; row < stops().rowCount(); ++row) {
            all.push_back(at(row, Role::NameRole).toString().toStdString());
        }
        return all;
    }
    int row(const std::string& name) {
        const auto all = names();
        const auto found = std::ranges::find(all, name);
        EXPECT_NE(found, all.end()) << name;
        return static_cast<int>(found - all.begin());
    }
    const EditProject& project() { return editor->project(); }
    void select(std::size_t keyframe) { editor->selectKeyframe(project().keyframes[keyframe].id); }

    std::unique_ptr<TimelineViewModel> timeline;
};

TEST_F(TimelineStops, areTrimCutsAndKeyframes) {
    EXPECT_THAT(names(),
                ElementsAre("Start of the film, 00:01:00", "Cut from 00:24:00 to 00:26:00",
                            "Keyframe 1, from 00:10:00 to 00:20:00",
                            "Keyframe 2, from 00:30:00 to 00:40:00", "End of the film, 01:00:00"));
}

TEST_F(TimelineStops, partsOfTheSelectedKeyframeFollowIt) {
    QSignalSpy resets(&stops(), &TimelineStopsViewModel::modelReset);
    QSignalSpy removed(&stops(), &TimelineStopsViewModel::rowsRemoved);
    select(0);
    EXPECT_THAT(names(),
                ElementsAre("Start of the film, 00:01:00", "Cut from 00:24:00 to 00:26:00",
                            "Keyframe 1, from 00:10:00 to 00:20:00",
                            "Start of keyframe 1, 00:10:00", "End of keyframe 1, 00:20:00",
                            "Curve of keyframe 1", "Zoom of 2.0 at 00:14:00",
                            "Zoom of 3.0 at 00:16:00", "Keyframe 2, from 00:30:00 to 00:40:00",
                            "End of the film, 01:00:00"));
    EXPECT_EQ(resets.size() + removed.size(), 0) << "what stays keeps its row";
}

TEST_F(TimelineStops, standWhereTheyAreDrawn) {
    select(0);
    EXPECT_EQ(at(row("Cut from 00:24:00 to 00:26:00"), Role::PlaceRole), QRectF(240, 0, 20, 109));
    EXPECT_EQ(at(row("Keyframe 1, from 00:10:00 to 00:20:00"), Role::PlaceRole),
              QRectF(105, 0, 90, 109));
    EXPECT_EQ(at(row("Start of keyframe 1, 00:10:00"), Role::PlaceRole), QRectF(98.5, 44.5, 3, 20));
    const int point = row("Zoom of 2.0 at 00:14:00");
    EXPECT_EQ(at(point, Role::LaneRole), 1);
    EXPECT_EQ(at(point, Role::PlaceRole).toRectF().center().x(), 140);
}

TEST_F(TimelineStops, areGoneWithoutALength) {
    media.known.erase("video.mov");
    timeline.reset();
    open();
    timeline = std::make_unique<TimelineViewModel>(*editor);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(TimelineStops, trimGoesToThePlayhead) {
    editor->seek(5);
    stops().activate(row("Start of the film, 00:01:00"));
    EXPECT_EQ(project().trimState.inPoint, 5);
    editor->seek(50);
    stops().activate(row("End of the film, 01:00:00"));
    EXPECT_EQ(project().trimState.outPoint, 50);
}

TEST_F(TimelineStops, cutIsShownAndRestored) {
    stops().activate(row("Cut from 00:24:00 to 00:26:00"));
    EXPECT_EQ(editor->currentTime(), 24);
    stops().remove(row("Cut from 00:24:00 to 00:26:00"));
    EXPECT_THAT(project().trimState.cutSegments, IsEmpty());
}

TEST_F(TimelineStops, keyframeIsSelectedAndRemoved) {
    stops().activate(row("Keyframe 2, from 00:30:00 to 00:40:00"));
    EXPECT_EQ(editor->selectedKeyframeID(), project().keyframes[1].id);
    EXPECT_EQ(editor->currentTime(), 30);
    stops().remove(row("Keyframe 2, from 00:30:00 to 00:40:00"));
    EXPECT_EQ(project().keyframes.size(), 1U);
}

TEST_F(TimelineStops, edgesGoToThePlayheadAsByADrag) {
    select(0);
    editor->seek(12);
    stops().activate(row("Start of keyframe 1, 00:10:00"));
    EXPECT_EQ(project().keyframes[0].timestamp, 12);
    editor->seek(32);
    stops().activate(row("End of keyframe 1, 00:20:00"));
    EXPECT_EQ(project().keyframes[0].endTime, 30) << "where the next one begins";
    editor->seek(2);
    stops().activate(row("End of keyframe 1, 00:30:00"));
    EXPECT_DOUBLE_EQ(project().keyframes[0].endTime, 12.1) << "the shortest there is";
}

TEST_F(TimelineStops, pointIsAddedAtTheLevelOfTheCurve) {
    select(0);
    editor->seek(15);
    stops().activate(row("Curve of keyframe 1"));
    const auto& curve = project().keyframes[0].zoomCurve;
    ASSERT_EQ(curve.size(), 3U);
    EXPECT_EQ(curve[1].time, 15);
    EXPECT_DOUBLE_EQ(curve[1].zoomLevel, 2.5);
    editor->seek(10.2);
    stops().activate(row("Curve of keyframe 1"));
    EXPECT_EQ(curve.size(), 3U) << "not in a ramp";
}

TEST_F(TimelineStops, pointIsMovedRaisedAndRemoved) {
    select(0);
    editor->seek(17);
    stops().activate(row("Zoom of 2.0 at 00:14:00"));
    EXPECT_THAT(names(), testing::Contains("Zoom of 2.0 at 00:17:00"));
    stops().nudge(row("Zoom of 2.0 at 00:17:00"), 1);
    stops().nudge(row("Zoom of 2.1 at 00:17:00"), -200);
    stops().remove(row("Zoom of 1.0 at 00:17:00"));
    EXPECT_EQ(project().keyframes[0].zoomCurve.size(), 1U);
}

TEST_F(TimelineStops, rowThatMovesKeepsItsDelegate) {
    select(0);
    const QPersistentModelIndex first = stops().index(row("Zoom of 2.0 at 00:14:00"));
    editor->seek(18);
    stops().activate(first.row());
    EXPECT_EQ(first.data(Role::NameRole), "Zoom of 2.0 at 00:18:00");
    EXPECT_EQ(first.row(), row("Zoom of 3.0 at 00:16:00") + 1);
}

} // namespace
} // namespace tavi
