#include "EditorWindow.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <cmath>

namespace tavi::test {
namespace {

using Lane = EditorWindow::Lane;

const QJsonValue kGone(QJsonValue::Undefined);
constexpr double kRounded = 1e-6;   ///< What arithmetic may do to a time.
constexpr double kTick = 1.0 / 600; ///< Seconds: where the playhead stands is told in these.
constexpr double kMiddle = 0.5;     ///< Of a lane.
constexpr double kLow = 0.9;

/// The editor of a take in the real program, used by pointer and keys. What each step leaves in
/// `project.json` is compared with all that was there before.
class EditorWindowTest : public testing::Test {
protected:
    void SetUp() override { m_window.open(); }

    /// Puts the playhead by a click on the timeline; the moment that it then stands at.
    double goTo(double time) {
        const QPoint place = m_window.onTimeline(Lane::upper, time, kLow);
        m_window.click(place);
        const double moment = m_window.timeAt(place);
        EXPECT_TRUE(
            m_window.eventually([&] { return std::abs(m_window.playhead() - moment) < 0.035; }));
        return moment;
    }

    /// Adds a zoom of two seconds and selects it; the moment at which it begins.
    double addKeyframe(double time) {
        const double start = goTo(time);
        m_window.click("Keyframe");
        const QJsonArray rect{QJsonArray{96, 54}, QJsonArray{448, 252}}; // seven tenths
        m_window.expectChanges({{"keyframes[0]",
                                 QJsonObject{{"timestamp", start},
                                             {"endTime", start + 2},
                                             {"rect", rect},
                                             {"waypoints", QJsonArray{}},
                                             {"zoomCurve", QJsonArray{}},
                                             {"transitionDuration", 0.5},
                                             {"easingType", "Ease In-Out"}},
                                 kTick}});
        m_window.click(m_window.onTimeline(Lane::upper, start + 1, kMiddle));
        m_window.click("Zoom");
        m_window.find("KEYFRAME 1");
        return start;
    }

    /// Marks a cut by keys; its ends.
    std::pair<double, double> cut(double from, double to) {
        const double start = goTo(from);
        m_window.press("ctrl+b");
        m_window.find("End Cut");
        const double end = goTo(to);
        m_window.press("ctrl+b");
        m_window.expectChanges(
            {{"trimState.cutSegments[0]", QJsonObject{{"start", start}, {"end", end}}, kTick}});
        return {start, end};
    }

    bool exists(const char* file) { return std::filesystem::exists(m_window.library() / file); }

    EditorWindow m_window;
};

TEST_F(EditorWindowTest, timelineIsEditedByThePointer) {
    const auto at = [&](Lane lane, double time, double height = kMiddle) {
        return m_window.onTimeline(lane, time, height);
    };
    const QPoint in = at(Lane::upper, 0.5);
    m_window.drag({at(Lane::upper, 0), at(Lane::upper, 0.2), in});
    m_window.expectChanges({{"trimState.inPoint", m_window.timeAt(in), kRounded}});
    const QPoint out = at(Lane::upper, 7.4);
    m_window.drag({at(Lane::upper, 8), at(Lane::upper, 7.8), out});
    m_window.expectChanges({{"trimState.outPoint", m_window.timeAt(out), kRounded}});

    const double start = addKeyframe(2);
    const QPoint right = at(Lane::upper, 5);
    m_window.drag({at(Lane::upper, start + 2), at(Lane::upper, 4.5), right});
    m_window.expectChanges({{"keyframes[0].endTime", m_window.timeAt(right), kRounded}});
    const QPoint left = at(Lane::upper, 1.6);
    m_window.drag({at(Lane::upper, start), at(Lane::upper, 1.8), left});
    m_window.expectChanges({{"keyframes[0].timestamp", m_window.timeAt(left), kRounded}});

    const QPoint point = at(Lane::lower, 3, 0.6);
    m_window.click(point);
    m_window.expectChanges(
        {{"keyframes[0].zoomCurve[0]",
          QJsonObject{{"time", m_window.timeAt(point)}, {"zoomLevel", m_window.levelAt(point)}},
          kRounded}});
    const QPoint higher = at(Lane::lower, 3.5, 0.3);
    m_window.drag({point, at(Lane::lower, 3.2, 0.4), higher});
    m_window.expectChanges(
        {{"keyframes[0].zoomCurve[0].time", m_window.timeAt(higher), kRounded},
         {"keyframes[0].zoomCurve[0].zoomLevel", m_window.levelAt(higher), kRounded}});
    m_window.click(higher, 3);
    m_window.click("Delete Point");
    m_window.expectChanges({{"keyframes[0].zoomCurve[0]", kGone}});
    m_window.click("Reset all trims & cuts");
    m_window.expectChanges({{"trimState.inPoint", 0}, {"trimState.outPoint", kGone}});
    m_window.expectNoChange();
}

TEST_F(EditorWindowTest, clickOnTheCanvasAddsAPointOfThePan) {
    const double start = addKeyframe(2);
    m_window.click("Raw"); // where the whole video is seen
    const QRectF frame = m_window.find("Canvas", "graphic").area;
    constexpr double kPadding = 0.03;
    const QRectF content = frame.adjusted(frame.width() * kPadding, frame.height() * kPadding,
                                          -frame.width() * kPadding, -frame.height() * kPadding);
    const QPoint place =
        (content.topLeft() + QPointF(content.width() / 4, content.height() / 3)).toPoint();
    m_window.click(place);
    constexpr double kPixel = 1; // of the video, where a click isn't truer
    m_window.expectChanges({{"keyframes[0].waypoints[0]",
                             QJsonObject{{"time", start},
                                         {"centerX", EditorWindow::kVideoWidth / 4.0},
                                         {"centerY", EditorWindow::kVideoHeight * 2 / 3.0}},
                             kPixel}});
    m_window.click("Delete");
    m_window.expectChanges({{"keyframes[0]", kGone}});
    m_window.expectNoChange();
}

TEST_F(EditorWindowTest, cutIsSkippedAndRestored) {
    const auto [start, end] = cut(3, 5);
    goTo(2.5);
    m_window.press("space");
    std::vector<double> seen;
    ASSERT_TRUE(m_window.eventually([&] {
        seen.push_back(m_window.playhead());
        return seen.back() > end + 0.1;
    })) << "it never came behind the cut";
    m_window.press("space");
    for (const double time : seen) {
        EXPECT_TRUE(time < start + 0.5 || time > end - 0.05) << time << " was played";
    }
    m_window.click(m_window.onTimeline(Lane::upper, 4, kMiddle), 3);
    m_window.click("Restore Section");
    m_window.expectChanges({{"trimState.cutSegments[0]", kGone}});
    m_window.expectNoChange();
}

TEST_F(EditorWindowTest, everyControlOfTheBackgroundChangesItsField) {
    m_window.click("Auto");
    m_window.setSlider("Background Size", 0.12, 0, 0.3);
    m_window.click("Custom");
    m_window.click("Color");
    m_window.click("Color code");
    m_window.press("ctrl+a");
    m_window.type("#336699");
    m_window.press("Return", "Escape");
    m_window.expectChanges({{"outputSettings.autoAspectRatio", true},
                            {"appearanceSettings.padding", 0.12},
                            {"appearanceSettings.backgroundStyle", "solidCustom"},
                            {"appearanceSettings.solidColor.red", 0.2, 1e-4},
                            {"appearanceSettings.solidColor.green", 0.4, 1e-4},
                            {"appearanceSettings.solidColor.blue", 0.6, 1e-4}});
    m_window.click("Gradient");
    m_window.click("berry");
    m_window.expectChanges({{"appearanceSettings.backgroundStyle", "gradient"},
                            {"appearanceSettings.gradientPresetIndex", 3}});
    m_window.click("Blur");
    m_window.setSlider("Blur Radius", 60, 20, 80);
    m_window.expectChanges(
        {{"appearanceSettings.backgroundStyle", "blur"}, {"appearanceSettings.blurRadius", 60}});
    EXPECT_TRUE(m_window.find("Blur").isChecked()) << "who doesn't see it is told";
    EXPECT_FALSE(m_window.find("Gradient").isChecked());
    m_window.click("Aurora");
    m_window.click("ocean");
    m_window.click("Animate");
    m_window.expectChanges({{"appearanceSettings.backgroundStyle", "wallpaper"},
                            {"appearanceSettings.wallpaperPreset", "ocean"},
                            {"appearanceSettings.animateBackground", true}});
    m_window.click("White");
    m_window.setSlider("Corner Radius", 20, 0, 40);
    m_window.click("Shadow");
    m_window.setSlider("Radius", 40, 5, 50);
    m_window.setSlider("Opacity", 0.8, 0.1, 1);
    m_window.expectChanges({{"appearanceSettings.backgroundStyle", "solidWhite"},
                            {"appearanceSettings.cornerRadius", 20},
                            {"appearanceSettings.shadowEnabled", true},
                            {"appearanceSettings.shadowRadius", 40},
                            {"appearanceSettings.shadowOpacity", 0.8}});
    m_window.expectNoChange();
}

TEST_F(EditorWindowTest, everyControlOfPointerKeysAndCameraChangesItsField) {
    m_window.click("CURSOR", "check box");
    m_window.click("Circle");
    m_window.setSlider("Size", 60, 12, 120);
    m_window.click("Rapid");
    m_window.expectChanges({{"cursorSettings.showCursor", false},
                            {"cursorSettings.cursorStyle", "Circle"},
                            {"cursorSettings.cursorSize", 60},
                            {"cursorSettings.smoothingPreset", "Rapid"}});
    m_window.click("KEYSTROKES", "check box");
    m_window.click("L");
    m_window.setSlider("Display Duration", 4, 1, 5);
    m_window.expectChanges({{"cursorSettings.showKeystrokes", true},
                            {"cursorSettings.keystrokeSize", "L"},
                            {"cursorSettings.keystrokeDisplayDuration", 4}});
    constexpr int kOfCamera = 1; // the second one of that name
    m_window.click("Top Left");
    m_window.setSlider("Size", 0.3, 0.1, 0.4, kOfCamera);
    m_window.setSlider("Corner Radius", 210, 0, 420, kOfCamera);
    m_window.setSlider("Margin", 0.07, 0.01, 0.1);
    m_window.setSlider("Border", 6, 0, 8);
    m_window.click("Shadow", "check box", kOfCamera);
    m_window.click("CAMERA", "check box");
    m_window.expectChanges({{"cameraSettings.position", "Top Left"},
                            {"cameraSettings.sizeFraction", 0.3},
                            {"cameraSettings.cornerRadius", 210, 2}, // it has no steps
                            {"cameraSettings.marginFraction", 0.07},
                            {"cameraSettings.borderWidth", 6},
                            {"cameraSettings.shadowEnabled", false},
                            {"cameraSettings.enabled", false}});
    m_window.expectNoChange();
}

TEST_F(EditorWindowTest, everyControlOfZoomAndFilmChangesItsField) {
    addKeyframe(2);
    m_window.setSlider("Speed", 0.8, 0.1, 2);
    m_window.click("Spring");
    m_window.expectChanges(
        {{"keyframes[0].transitionDuration", 0.8}, {"keyframes[0].easingType", "Spring"}});
    m_window.click("Details");
    m_window.find("448");
    m_window.setSlider("Intensity", 0.8, 0, 1);
    m_window.expectNoChange();

    m_window.click("Export", {}, 1); // the tab
    m_window.click("1440p");
    m_window.click("30 fps");
    m_window.expectChanges({{"outputSettings.resolution[0]", 2560},
                            {"outputSettings.resolution[1]", 1440},
                            {"outputSettings.fps", 30}});
    m_window.click("Custom");
    m_window.enter("Width", "1001");
    m_window.expectChanges(
        {{"outputSettings.resolution[0]", 1002}, {"outputSettings.resolution[1]", 564}});
    m_window.enter("Height", "400");
    m_window.expectChanges(
        {{"outputSettings.resolution[0]", 712}, {"outputSettings.resolution[1]", 400}});
    m_window.click("Custom", {}, 1);
    m_window.enter("Frames per second", "500");
    m_window.expectChanges({{"outputSettings.fps", 120}});
    m_window.enter("Frames per second", "0");
    m_window.expectNoChange();
}

TEST_F(EditorWindowTest, generatesWhatTheCommandLineDoes) {
    m_window.click("Zoom");
    m_window.setSlider("Intensity", 0.8, 0, 1);
    m_window.click("Generate");
    const auto told = QJsonDocument::fromJson(QByteArray::fromStdString(
        m_window.tavi({"zoom", QString::fromStdString(m_window.take().string()), "--aggressiveness",
                       "0.8", "--dry-run"})));
    ASSERT_GT(told.array().size(), 0);
    std::vector<EditorWindow::Change> expected;
    std::vector<EditorWindow::Change> cleared;
    for (const QJsonValue keyframe : told.array()) {
        const std::string path = "keyframes[" + std::to_string(expected.size()) + "]";
        expected.push_back({path, keyframe, kRounded});
        cleared.push_back({path, kGone});
    }
    m_window.expectChanges(expected);
    m_window.find(QString::number(expected.size()) + " keyframes generated");
    m_window.click("Clear");
    m_window.expectChanges(cleared);
    m_window.expectNoChange();
}

TEST_F(EditorWindowTest, exportsAndCancels) {
    m_window.click("Export");
    m_window.chooseFile("first.mp4");
    m_window.click("Cancel");
    EXPECT_TRUE(m_window.eventually([&] { return !m_window.shows("Exporting"); }));
    EXPECT_TRUE(m_window.eventually([&] { return !exists("first.mp4"); }));

    m_window.click("Export", {}, 1);
    m_window.click("Custom", {}, 1);
    m_window.enter("Frames per second", "24");
    m_window.click("Custom");
    m_window.click("Width");
    m_window.press("ctrl+a");
    m_window.type("320");
    m_window.click("Export"); // what was typed counts, though the field still has the focus
    m_window.expectChanges({{"outputSettings.fps", 24},
                            {"outputSettings.resolution[0]", 320},
                            {"outputSettings.resolution[1]", 180}});
    m_window.chooseFile("second"); // the extension comes by itself
    m_window.find("Export Complete");
    EXPECT_EQ(m_window.probe("second.mp4"), "hevc,hvc1,320,180,24/1,192\n");
    m_window.click("Close");
    EXPECT_TRUE(m_window.eventually([&] { return !m_window.shows("Export Complete"); }));
    m_window.expectNoChange();
}

TEST_F(EditorWindowTest, aRunningExportIsNotLostWithoutAQuestion) {
    m_window.click("Export", {}, 1);
    m_window.click("4K"); // it takes a while
    m_window.click("60 fps");
    m_window.click("Export");
    m_window.chooseFile("film.mp4");
    m_window.find("Exporting");
    m_window.click("Library");
    m_window.click("Keep Exporting");
    m_window.find("Exporting");
    EXPECT_TRUE(m_window.eventually([&] { return !m_window.shows("Keep Exporting"); }));

    m_window.openFromOutside();
    m_window.click("OK");
    EXPECT_TRUE(m_window.eventually([&] { return !m_window.shows("OK"); }));
    m_window.find("Exporting");

    m_window.press("alt+F4");
    m_window.click("Keep Exporting");
    EXPECT_TRUE(m_window.eventually([&] { return !m_window.shows("Keep Exporting"); }));
    m_window.find("Exporting");

    m_window.press("ctrl+q");
    m_window.click("Stop and Leave");
    EXPECT_TRUE(m_window.hasEnded());
    EXPECT_FALSE(exists("film.mp4"));
}

TEST_F(EditorWindowTest, keysAreTheEditorsUnlessTextIsTyped) {
    goTo(1);
    for (int i = 0; i < 20 && !m_window.find("Keyframe").isFocused(); ++i) {
        m_window.press("Tab");
        m_window.pass(0.05);
    }
    ASSERT_TRUE(m_window.find("Keyframe").isFocused());
    m_window.press("space");
    m_window.find("Pause");
    m_window.press("shift+Left"); // which pauses first
    m_window.find("Play");
    m_window.expectNoChange();

    m_window.click("Export", {}, 1);
    m_window.click("Custom");
    const double before = m_window.playhead();
    m_window.click("Width");
    m_window.press("End", "Left", "Left", "space", "BackSpace", "BackSpace", "8", "Return");
    m_window.expectChanges(
        {{"outputSettings.resolution[0]", 1820}, {"outputSettings.resolution[1]", 1024}});
    EXPECT_EQ(m_window.playhead(), before);
    m_window.press("Right"); // the field is left
    EXPECT_TRUE(m_window.eventually([&] { return m_window.playhead() > before; }));
}

} // namespace
} // namespace tavi::test
