#include "EditorSceneTest.h"

namespace tavi::test {
namespace {

/// With keyframe 3 selected.
class EditorKeys : public EditorSceneTest {
protected:
    EditorKeys() : EditorSceneTest(QStringLiteral("editor-keyframe")) {}
};

TEST_F(EditorKeys, spacePlaysAlsoWhileAButtonHasTheFocus) {
    ASSERT_TRUE(tabTo(hasText("Delete")));
    key(Qt::Key_Space);
    EXPECT_TRUE(editor().isPlaying());
    EXPECT_EQ(editor().project().keyframes.size(), 4U);
    key(Qt::Key_Return);
    EXPECT_EQ(editor().project().keyframes.size(), 3U) << "Return is the button's";
}

TEST_F(EditorKeys, arrowsMoveThePlayheadAlsoWhileASliderHasTheFocus) {
    QQuickItem* slider = tabTo(isA("QQuickSlider"));
    ASSERT_TRUE(slider);
    const double value = slider->property("value").toDouble();
    const double before = editor().currentTime();
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(editor().currentTime(), before + 1);
    EXPECT_EQ(slider->property("value").toDouble(), value);
    key(Qt::Key_Up);
    EXPECT_NE(slider->property("value").toDouble(), value) << "Up and Down are the slider's";
    EXPECT_DOUBLE_EQ(editor().currentTime(), before + 1);
}

TEST_F(EditorKeys, choicesGoByUpAndDown) {
    QQuickItem* chosen = tabTo(hasText("Ease In-Out"));
    ASSERT_TRUE(chosen);
    key(Qt::Key_Left);
    EXPECT_EQ(editor().project().keyframes[2].easingType, EasingType::easeInOut);
    key(Qt::Key_Up);
    EXPECT_EQ(editor().project().keyframes[2].easingType, EasingType::easeOut);
}

TEST_F(EditorKeys, escapeEndsACutThenTheSelection) {
    key(Qt::Key_B, Qt::ControlModifier);
    ASSERT_TRUE(editor().isMarkingCut());
    key(Qt::Key_Escape);
    EXPECT_FALSE(editor().isMarkingCut());
    EXPECT_TRUE(editor().selectedKeyframeID());
    key(Qt::Key_Escape);
    EXPECT_FALSE(editor().selectedKeyframeID());
}

TEST_F(EditorKeys, otherKeysAreNobodys) {
    const EditProject before = editor().project();
    for (const Qt::Key other : {Qt::Key_B, Qt::Key_A, Qt::Key_Up, Qt::Key_Delete}) {
        key(other);
    }
    EXPECT_EQ(editor().project(), before);
    EXPECT_FALSE(editor().isMarkingCut());
}

TEST_F(EditorKeys, timelineIsReachedAndEdited) {
    const auto named = [](const char* start) {
        return [=](const QQuickItem& item) {
            return item.property("name").toString().startsWith(QLatin1String(start));
        };
    };
    ASSERT_TRUE(tabTo(named("Keyframe 1")));
    key(Qt::Key_Return);
    ASSERT_EQ(editor().selectedKeyframeID(), editor().project().keyframes[0].id);
    ASSERT_TRUE(tabTo(named("Start of keyframe 1")));
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Return);
    EXPECT_DOUBLE_EQ(editor().project().keyframes[0].timestamp, 4);
    const double level = editor().project().keyframes[0].zoomCurve[0].zoomLevel;
    ASSERT_TRUE(tabTo(named("Zoom of")));
    key(Qt::Key_Up);
    EXPECT_NEAR(editor().project().keyframes[0].zoomCurve[0].zoomLevel, level + 0.1, 1e-9);
    key(Qt::Key_Delete);
    EXPECT_EQ(editor().project().keyframes[0].zoomCurve.size(), 1U);
    EXPECT_TRUE(named("Zoom of")(*focus())) << "the next one";
}

TEST_F(EditorKeys, canvasPointsByArrowsAndReturn) {
    const auto waypoints = [this] { return editor().project().keyframes[2].waypoints.size(); };
    const std::size_t before = waypoints();
    editor().seek(editor().project().keyframes[2].timestamp + 0.5);
    ASSERT_TRUE(tabTo(isA("tavi::Picture")));
    const double time = editor().currentTime();
    key(Qt::Key_Return);
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Right);
    key(Qt::Key_Up);
    EXPECT_EQ(editor().currentTime(), time) << "the arrow keys are the crosshair's";
    EXPECT_EQ(screen().canvas()->crosshair()->place(), QPointF(0.61, 0.49));
    key(Qt::Key_Return);
    EXPECT_EQ(waypoints(), before + 1);
    key(Qt::Key_Escape);
    EXPECT_TRUE(editor().selectedKeyframeID()) << "Escape ended the pointing alone";
    key(Qt::Key_Right);
    EXPECT_GT(editor().currentTime(), time) << "the arrow keys are the editor's again";
    key(Qt::Key_Up);
    EXPECT_EQ(screen().canvas()->crosshair()->place(), QPointF(0.61, 0.49));
}

TEST_F(EditorKeys, canvasLosesTheFocusAndPointsNoMore) {
    editor().seek(editor().project().keyframes[2].timestamp + 0.5);
    ASSERT_TRUE(tabTo(isA("tavi::Picture")));
    key(Qt::Key_Return);
    ASSERT_TRUE(screen().canvas()->crosshair()->isPointing());
    key(Qt::Key_Tab);
    EXPECT_FALSE(screen().canvas()->crosshair()->isPointing());
    const double time = editor().currentTime();
    key(Qt::Key_Right);
    EXPECT_GT(editor().currentTime(), time);
}

} // namespace
} // namespace tavi::test
