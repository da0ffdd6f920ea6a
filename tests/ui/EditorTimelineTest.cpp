#include "EditorSceneTest.h"

namespace tavi::test {
namespace {

/// The timeline under the pointer, with keyframe 3 selected.
class EditorTimeline : public EditorSceneTest {
protected:
    EditorTimeline() : EditorSceneTest(QStringLiteral("editor-keyframe")) {}

    /// The middle of what stands there for the keyboard.
    QPoint middleOf(const char* name) {
        const QQuickItem* item = find([=](const QQuickItem& other) {
            return other.property("name").toString().startsWith(QLatin1String(name));
        });
        EXPECT_TRUE(item);
        return item ? item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint()
                    : QPoint();
    }
    void press(Qt::MouseButton button, QPoint place) {
        QTest::mousePress(&m_scene.window(), button, {}, place);
    }
    void release(Qt::MouseButton button, QPoint place) {
        QTest::mouseRelease(&m_scene.window(), button, {}, place);
    }
    void move(QPoint place) { QTest::mouseMove(&m_scene.window(), place); }
    double end() { return editor().project().keyframes[2].endTime; }
};

TEST_F(EditorTimeline, theOtherButtonDoesNotDisturbADrag) {
    const QPoint edge = middleOf("End of keyframe 3");
    const double before = end();
    press(Qt::LeftButton, edge);
    move(edge + QPoint(5, 0));
    const double after5 = end();
    EXPECT_GT(after5, before);
    press(Qt::RightButton, edge + QPoint(5, 0));
    release(Qt::RightButton, edge + QPoint(5, 0));
    EXPECT_FALSE(find(hasText("Restore Section"))) << "no menu opens in mid-drag";
    move(edge + QPoint(20, 0));
    EXPECT_GT(end(), after5);
    release(Qt::LeftButton, edge + QPoint(20, 0));
    const double after20 = end();
    move(edge + QPoint(40, 0));
    EXPECT_EQ(end(), after20);
}

} // namespace
} // namespace tavi::test
