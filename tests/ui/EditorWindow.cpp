#include "EditorWindow.h"

#include "editor/TimelineGeometry.h"
#include "project/RecordingMetadataJson.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

#include <cmath>

namespace tavi::test {

namespace {

using Geometry = TimelineGeometry;

bool areAsExpected(const JsonChanges& changes, const std::vector<EditorWindow::Change>& expected) {
    return changes.size() == expected.size() &&
           std::all_of(expected.begin(), expected.end(), [&](const EditorWindow::Change& change) {
               const auto found = changes.find(change.path);
               return found != changes.end() &&
                      isClose(found->second, change.value, change.tolerance);
           });
}

std::string textOfExpected(const std::vector<EditorWindow::Change>& expected) {
    JsonChanges changes;
    for (const EditorWindow::Change& change : expected) {
        changes[change.path] = change.value;
    }
    return textOf(changes);
}

/// A pointer that goes from corner to corner and clicks twice.
RecordingMetadata metadata() {
    RecordingMetadata made;
    made.startDate = Date{780000000};
    made.duration = EditorWindow::kLength;
    made.screenWidth = EditorWindow::kVideoWidth;
    made.screenHeight = EditorWindow::kVideoHeight;
    made.hasCameraRecording = true;
    made.cameraStartDelay = 0.2;
    for (int i = 0; i <= 160; ++i) {
        const bool isClick = i == 40 || i == 60;
        made.cursorEvents.push_back(
            {i * 0.05, 80 + i * 3.0, 60 + i * 1.5,
             isClick ? CursorEventType::leftMouseDown : CursorEventType::move});
    }
    return made;
}

} // namespace

EditorWindow::EditorWindow()
    : TavlinWindow("1280x1900x24"),
      m_tree(QString::fromStdString((folder() / "run").string())) {
    setVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_tree.address());
    makeTake();
}

void EditorWindow::makeFilm(const char* name, const char* source) {
    const QStringList arguments =
        QStringLiteral("-nostdin -v error -f lavfi -i %1 -t %2 -c:v mjpeg -q:v 5")
            .arg(QLatin1String(source))
            .arg(kLength)
            .split(u' ');
    EXPECT_EQ(QProcess::execute(QStringLiteral("ffmpeg"),
                                arguments +
                                    QStringList{QString::fromStdString((take() / name).string())}),
              0);
}

void EditorWindow::makeTake() {
    std::filesystem::create_directories(take());
    makeFilm("video.mov", "testsrc2=s=640x360:r=30");
    makeFilm("camera.mov", "testsrc=s=160x120:r=15");
    writeFile(take() / "metadata.json", encodeRecordingMetadata(metadata()).value());
}

void EditorWindow::open() {
    start({QString::fromStdString(take().string())});
    resize({1280, 1860});
    find(QStringLiteral("00:08:00")); // the length of the take is known
    ASSERT_TRUE(eventually([this] {
        m_known = project();
        return m_known.isObject();
    })) << "an opened take is saved";
    waitUntilStill();
}

AccessibleItem EditorWindow::find(const QString& name, const QString& role, int number) {
    std::optional<AccessibleItem> found;
    EXPECT_TRUE(eventually([&] {
        found = m_tree.find([&](const QString& other) { return other == name; }, role, number);
        return found.has_value();
    })) << "no "
        << role.toStdString() << " \"" << name.toStdString() << "\" " << number;
    return found.value_or(AccessibleItem());
}

bool EditorWindow::shows(const QString& name) {
    return m_tree.find([&](const QString& other) { return other == name; }).has_value();
}

void EditorWindow::click(const QString& name, const QString& role, int number) {
    click(find(name, role, number).middle());
}

void EditorWindow::setSlider(const QString& name, double value, double from, double to,
                             int number) {
    const QRect area = find(name, QStringLiteral("slider"), number).area;
    constexpr double kEnd = 9; // half a handle and the padding
    const double share = (value - from) / (to - from);
    const double x = area.left() + kEnd + share * (area.width() - 2 * kEnd);
    click(QPoint(static_cast<int>(std::lround(x)), area.center().y()));
}

EditorWindow::Track EditorWindow::track() {
    const QRect area = find(QStringLiteral("Timeline"), QStringLiteral("panel")).area;
    return {area.left() + static_cast<int>(Geometry::kLanePadding), area.top(),
            area.width() - 2 * Geometry::kLanePadding};
}

QPoint EditorWindow::onTimeline(Lane lane, double time, double height) {
    const Track track = this->track();
    const double upper = track.top + Geometry::kRulerHeight + Geometry::kSeparatorHeight;
    const double y = lane == Lane::upper
                         ? upper + height * Geometry::kUpperLaneHeight
                         : upper + Geometry::kUpperLaneHeight + height * Geometry::kLowerLaneHeight;
    const double x = track.left + Geometry{kLength, track.width}.x(time);
    return {static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))};
}

double EditorWindow::timeAt(QPoint place) {
    const Track track = this->track();
    return Geometry{kLength, track.width}.time(place.x() - track.left);
}

double EditorWindow::levelAt(QPoint place) {
    const double lane = track().top + Geometry::kRulerHeight + Geometry::kSeparatorHeight +
                        Geometry::kUpperLaneHeight;
    return Geometry::curveLevel(place.y() - lane, Geometry::kLowerLaneHeight);
}

void EditorWindow::enter(const QString& field, const std::string& text) {
    click(field);
    press("ctrl+a");
    type(text);
    press("Return");
}

QString EditorWindow::dialog() {
    const std::string found = output(QStringLiteral("xdotool"),
                                     {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                      QStringLiteral("--name"), QStringLiteral("^Export$")});
    return QString::fromStdString(found).section(u'\n', 0, 0);
}

bool EditorWindow::dialogStandsBeforeTheWindow() {
    const std::string parent =
        output(QStringLiteral("xprop"),
               {QStringLiteral("-id"), dialog(), QStringLiteral("WM_TRANSIENT_FOR")});
    return QString::fromStdString(parent).contains(
        QStringLiteral("# 0x%1").arg(std::stoul(id()), 0, 16));
}

bool EditorWindow::dialogHasTheKeyboard() {
    const std::string focused =
        output(QStringLiteral("xdotool"), {QStringLiteral("getwindowfocus")});
    return QString::fromStdString(focused).trimmed() == dialog();
}

void EditorWindow::chooseFile(const std::string& name) {
    ASSERT_TRUE(eventually([this] { return !dialog().isEmpty(); })) << "no dialog";
    EXPECT_TRUE(eventually([this] { return dialogStandsBeforeTheWindow(); }));
    EXPECT_TRUE(eventually([this] { return dialogHasTheKeyboard(); }));
    press("ctrl+a");
    type((library() / name).string());
    press("Return");
    ASSERT_TRUE(eventually([this] { return dialog().isEmpty(); }));
}

void EditorWindow::openFromOutside() {
    output(QStringLiteral(TAVI_BINARY_DIR "/tavlin"), {QString::fromStdString(take().string())});
}

std::string EditorWindow::tavi(const QStringList& arguments) {
    return output(QStringLiteral(TAVI_BINARY_DIR "/tavi"), arguments);
}

std::string EditorWindow::probe(const std::string& name) {
    const auto arguments =
        QStringLiteral(
            "-v error -count_packets -select_streams v:0 -of csv=p=0 -show_entries "
            "stream=codec_name,codec_tag_string,width,height,r_frame_rate,nb_read_packets")
            .split(u' ');
    return output(QStringLiteral("ffprobe"),
                  arguments + QStringList{QString::fromStdString((library() / name).string())});
}

double EditorWindow::playhead() {
    static const QRegularExpression clock(QStringLiteral("^(\\d\\d):(\\d\\d):(\\d\\d)$"));
    QRegularExpressionMatch match;
    const auto isTime = [&](const QString& name) {
        match = clock.match(name);
        return match.hasMatch();
    };
    if (!m_tree.find(isTime)) {
        ADD_FAILURE() << "no time in the toolbar";
        return -1;
    }
    return match.captured(1).toInt() * 60 + match.captured(2).toInt() +
           match.captured(3).toInt() / 30.0;
}

void EditorWindow::expectChanges(const std::vector<Change>& expected) {
    QJsonValue now;
    const bool isDone = eventually([&] {
        now = project();
        return areAsExpected(changesBetween(m_known, now), expected);
    });
    EXPECT_TRUE(isDone) << "expected\n"
                        << textOfExpected(expected) << "but changed\n"
                        << textOf(changesBetween(m_known, now));
    m_known = now;
}

void EditorWindow::expectNoChange() {
    pass(0.8); // longer than the editor waits before it saves
    const JsonChanges changes = changesBetween(m_known, project());
    EXPECT_TRUE(changes.empty()) << textOf(changes);
}

} // namespace tavi::test
