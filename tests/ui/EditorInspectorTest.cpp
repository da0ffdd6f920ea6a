#include "EditorSceneTest.h"

namespace tavi::test {
namespace {

/// Size and rate of the film, both typed: 1920x1080 at 60 of a video of 16 to 9.
class TypedFilm : public EditorSceneTest {
protected:
    TypedFilm() : EditorSceneTest(QStringLiteral("editor-film")) {}

    /// Types into a field, over what stands there, and leaves it.
    void type(const char* field, std::string_view text, Qt::Key leaving = Qt::Key_Return) {
        click(hasName(field));
        ASSERT_TRUE(focus() && hasName(field)(*focus()));
        key(Qt::Key_A, Qt::ControlModifier);
        key(Qt::Key_Delete);
        for (const char character : text) {
            QTest::keyClick(&m_scene.window(), character);
        }
        key(leaving);
    }
    std::string shown(const char* field) {
        const QQuickItem* item = find(hasName(field));
        return item ? item->property("text").toString().toStdString() : "not there";
    }
    const OutputSettings& output() { return editor().project().outputSettings; }
};

TEST_F(TypedFilm, bothTextsAreThoseOfTheSizeThatWasTaken) {
    type("Width", "1281");
    EXPECT_EQ(output().resolution, (Size{1282, 722}));
    EXPECT_EQ(shown("Width"), "1282");
    EXPECT_EQ(shown("Height"), "722");
    type("Width", "9000");
    type("Width", "9000"); // which changes nothing any more
    EXPECT_EQ(shown("Width"), "7680");
    EXPECT_EQ(shown("Height"), "4320");
    type("Frames per second", "500");
    type("Frames per second", "0500");
    EXPECT_EQ(output().fps, 120);
    EXPECT_EQ(shown("Frames per second"), "120");
}

TEST_F(TypedFilm, whatIsNoSizeStandsUntilTheNextUpdate) {
    const EditProject before = editor().project();
    for (const char* text : {"0", "", "wide", "-8", "1e3"}) {
        type("Height", text);
        EXPECT_EQ(shown("Height"), text);
    }
    EXPECT_EQ(editor().project(), before);
    type("Frames per second", "25");
    EXPECT_EQ(shown("Height"), "1080");
}

TEST_F(TypedFilm, onTheWayThroughTheFieldsNothingIsTakenButWhatWasTyped) {
    type("Width", "1281", Qt::Key_Tab);
    ASSERT_TRUE(focus() && hasName("Height")(*focus()));
    EXPECT_EQ(shown("Height"), "722") << "its text follows, since it isn't edited";
    EXPECT_EQ(focus()->property("selectedText").toString(), QStringLiteral("722"));
    key(Qt::Key_Tab); // 722 lines would be 1284 wide
    EXPECT_EQ(output().resolution, (Size{1282, 722}));
}

/// With keyframe 3 selected.
class ZoomControls : public EditorSceneTest {
protected:
    ZoomControls() : EditorSceneTest(QStringLiteral("editor-keyframe")) {}
};

TEST_F(ZoomControls, detailsStayOpenForTheNextKeyframeAndBehindTheOtherTabs) {
    EXPECT_FALSE(find(hasText("W")));
    click(hasText("Details"));
    EXPECT_TRUE(find(hasText("W")));
    editor().selectKeyframe({});
    m_scene.settle();
    EXPECT_FALSE(find(hasText("W")));
    click(hasText("Export"));
    click(hasText("Zoom"));
    testEditor().select(0);
    m_scene.settle();
    for (const char* row : {"W", "H", "X", "Y", "640", "360", "300", "200"}) {
        EXPECT_TRUE(find(hasText(row))) << row;
    }
    click(hasText("Details"));
    EXPECT_FALSE(find(hasText("W")));
}

TEST_F(ZoomControls, withoutASelectionGenerateAndClearAreThere) {
    editor().selectKeyframe({});
    m_scene.settle();
    EXPECT_TRUE(find(hasText("No Keyframe Selected")));
    EXPECT_TRUE(find(hasText("Generate")));
    click(hasText("Clear"));
    EXPECT_TRUE(editor().project().keyframes.empty());
    EXPECT_FALSE(find(hasText("Clear"))) << "there is nothing more to clear";
    EXPECT_TRUE(find(hasText("Generate")));
}

TEST_F(ZoomControls, theMenuOfACutIsInItsLaneAndNotOnTheRuler) {
    QQuickItem* timeline = find(isA("tavi::TimelineQuickItem"));
    ASSERT_TRUE(timeline);
    const TimelineViewModel& model = *screen().timeline();
    const double x = TimelineGeometry::kLanePadding + model.model().geometry.x(30); // in the cut
    const auto menuAt = [&](double y) {
        QTest::mouseClick(&m_scene.window(), Qt::RightButton, {},
                          timeline->mapToScene(QPointF(x, y)).toPoint());
        m_scene.settle();
        return find(hasText("Restore Section"));
    };
    EXPECT_FALSE(menuAt(TimelineGeometry::kRulerHeight / 2));
    EXPECT_TRUE(menuAt(TimelineGeometry::kRulerHeight + TimelineGeometry::kUpperLaneHeight / 2));
}

} // namespace
} // namespace tavi::test
