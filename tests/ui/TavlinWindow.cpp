#include "TavlinWindow.h"

#include <QColor>
#include <QElapsedTimer>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <unistd.h>

namespace tavi::test {

namespace {

// The machine may be busy with other things; a program that works needs a second.
constexpr int kPatience = 60'000; // milliseconds
constexpr int kLook = 100;        // milliseconds between two looks

QProcessEnvironment environmentFor(const TemporaryFolder& folder, const std::string& display) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name :
         {"QT_QUICK_BACKEND", "QT_SCALE_FACTOR", "WAYLAND_DISPLAY", "LANGUAGE"}) {
        environment.remove(QLatin1String(name));
    }
    const auto set = [&](const char* name, const std::string& value) {
        environment.insert(QLatin1String(name), QString::fromStdString(value));
    };
    set("DISPLAY", display);
    set("QT_QPA_PLATFORM", "xcb");
    set("HOME", folder.path());
    set("TAVI_DOCUMENTS_DIR", folder / "Documents");
    set("XDG_CONFIG_HOME", folder / "config");
    set("XDG_CACHE_HOME", folder / "cache");
    set("XDG_RUNTIME_DIR", folder / "run");
    set("XDG_SESSION_TYPE", "x11");
    set("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    set("LC_ALL", "C.UTF-8");
    return environment;
}

bool isClose(const QColor& one, const QColor& other) {
    constexpr int kTolerance = 12; // video and blending round
    return std::abs(one.red() - other.red()) <= kTolerance &&
           std::abs(one.green() - other.green()) <= kTolerance &&
           std::abs(one.blue() - other.blue()) <= kTolerance;
}

void end(QProcess& process) {
    if (process.state() == QProcess::NotRunning) {
        return;
    }
    process.terminate();
    if (!process.waitForFinished(kPatience)) {
        ADD_FAILURE() << process.program().toStdString() << " does not end";
        process.kill();
        process.waitForFinished();
    }
}

} // namespace

TavlinWindow::TavlinWindow(const std::string& screen) : m_server(screen) {
    std::filesystem::create_directories(m_folder / "run");
    std::filesystem::permissions(m_folder / "run", std::filesystem::perms::owner_all);
    const QProcessEnvironment environment = environmentFor(m_folder, m_server.name());
    m_manager.setProcessEnvironment(environment);
    m_program.setProcessEnvironment(environment);
    m_program.setProcessChannelMode(QProcess::ForwardedChannels);
    m_manager.start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
    EXPECT_TRUE(m_manager.waitForStarted(kPatience));
    EXPECT_TRUE(eventually([this] {
        return output(QStringLiteral("xprop"),
                      {QStringLiteral("-root"), QStringLiteral("_NET_SUPPORTING_WM_CHECK")})
                   .find("window id") != std::string::npos;
    })) << "no window manager";
}

TavlinWindow::~TavlinWindow() {
    end(m_program);
    end(m_manager);
}

void TavlinWindow::addTake(const std::string& name, int age) {
    const auto folder = library() / name;
    std::filesystem::create_directories(folder);
    const std::string film = (folder / "video.mov").string();
    const int status = QProcess::execute(
        QStringLiteral("ffmpeg"),
        QStringLiteral(
            "-v error -f lavfi -i color=c=0xC81E1E:s=640x360:r=10 -t 1 -c:v mjpeg -q:v 2")
                .split(u' ')
            << QString::fromStdString(film));
    EXPECT_EQ(status, 0);
    std::ostringstream json;
    json << R"({"startDate":)" << 780000000 + age * 1000
         << R"(,"duration":1,"screenWidth":640,"screenHeight":360,"cursorEvents":[],)"
         << R"("cursorImages":[],"hasCamera":false,"hasAudio":false,"cameraStartDelay":0})";
    writeFile(folder / "metadata.json", json.str());
}

void TavlinWindow::setVariable(const QString& name, const QString& value) {
    QProcessEnvironment environment = m_program.processEnvironment();
    environment.insert(name, value);
    m_program.setProcessEnvironment(environment);
}

void TavlinWindow::start(const QStringList& arguments) {
    m_program.start(QStringLiteral(TAVI_BINARY_DIR "/tavlin"), arguments);
    ASSERT_TRUE(m_program.waitForStarted(kPatience));
    ASSERT_TRUE(eventually([this] {
        m_window = output(QStringLiteral("xdotool"),
                          {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                           QStringLiteral("--name"), QStringLiteral("^Tavlin$")});
        m_window = m_window.substr(0, m_window.find('\n'));
        return !m_window.empty();
    })) << "no window";
    output(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"), QStringLiteral("--sync"),
                                       QString::fromStdString(m_window)});
}

std::string TavlinWindow::output(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessEnvironment(m_manager.processEnvironment());
    process.start(program, arguments);
    process.waitForFinished(kPatience);
    return process.readAllStandardOutput().toStdString();
}

QSize TavlinWindow::size() {
    return picture().size();
}

void TavlinWindow::resize(QSize size) {
    output(QStringLiteral("xdotool"),
           {QStringLiteral("windowsize"), QString::fromStdString(m_window),
            QString::number(size.width()), QString::number(size.height())});
}

QImage TavlinWindow::picture() {
    QProcess process;
    process.setProcessEnvironment(m_manager.processEnvironment());
    process.start(QStringLiteral("import"),
                  {QStringLiteral("-silent"), QStringLiteral("-window"),
                   QString::fromStdString(m_window), QStringLiteral("bmp:-")});
    process.waitForFinished(kPatience);
    return QImage::fromData(process.readAllStandardOutput(), "BMP");
}

bool TavlinWindow::shows(QPoint place, const QColor& colour) {
    const QImage now = picture();
    return now.rect().contains(place) && isClose(now.pixelColor(place), colour);
}

QStringList TavlinWindow::moveTo(QPoint place) const {
    return {QStringLiteral("mousemove"), QStringLiteral("--window"),
            QString::fromStdString(m_window), QString::number(place.x()),
            QString::number(place.y())};
}

void TavlinWindow::drag(const std::vector<QPoint>& places) {
    const QString xdotool = QStringLiteral("xdotool");
    output(xdotool, moveTo(places.front()) << QStringLiteral("mousedown") << QStringLiteral("1"));
    for (const QPoint place : places) {
        output(xdotool, moveTo(place));
    }
    output(xdotool, {QStringLiteral("mouseup"), QStringLiteral("1")});
}

void TavlinWindow::click(QPoint place, int button, const std::string& modifier) {
    QStringList command = moveTo(place);
    const QString key = QString::fromStdString(modifier);
    if (!modifier.empty()) {
        command << QStringLiteral("keydown") << key;
    }
    command << QStringLiteral("click") << QString::number(button);
    if (!modifier.empty()) {
        command << QStringLiteral("keyup") << key;
    }
    output(QStringLiteral("xdotool"), command);
}

void TavlinWindow::pressKey(const std::string& key) {
    output(QStringLiteral("xdotool"), {QStringLiteral("key"), QString::fromStdString(key)});
}

void TavlinWindow::type(const std::string& text) {
    output(QStringLiteral("xdotool"), {QStringLiteral("type"), QStringLiteral("--delay"),
                                       QStringLiteral("20"), QString::fromStdString(text)});
}

void TavlinWindow::waitUntilStill() {
    QImage before;
    EXPECT_TRUE(eventually([&] {
        const QImage now = picture();
        const bool still = now == before && isAsleep();
        before = now;
        pass(0.2);
        return still;
    })) << "the window never rests";
}

bool TavlinWindow::eventually(const std::function<bool()>& condition) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > kPatience) {
            return false;
        }
        QTest::qWait(kLook);
    }
    return true;
}

void TavlinWindow::pass(double seconds) {
    QTest::qWait(int(seconds * 1e3));
}

bool TavlinWindow::hasEnded() {
    return m_program.state() == QProcess::NotRunning || m_program.waitForFinished(kPatience);
}

bool TavlinWindow::isAsleep() {
    const std::filesystem::directory_iterator tasks(
        "/proc/" + std::to_string(m_program.processId()) + "/task");
    return std::all_of(begin(tasks), end(tasks), [](const auto& task) {
        const std::string status = readFile(task.path() / "stat");
        return status.find(") R ") == std::string::npos;
    });
}

std::size_t TavlinWindow::processEntries(const std::string& folder) {
    const std::filesystem::directory_iterator entries(
        "/proc/" + std::to_string(m_program.processId()) + folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::size_t TavlinWindow::threads() {
    return processEntries("/task");
}

std::size_t TavlinWindow::descriptors() {
    return processEntries("/fd");
}

double TavlinWindow::processorSeconds() {
    std::ifstream file("/proc/" + std::to_string(m_program.processId()) + "/stat");
    std::string line;
    std::getline(file, line);
    std::istringstream fields(line.substr(line.rfind(')') + 2));
    std::string skipped;
    double user = 0;
    double system = 0;
    for (int field = 3; field < 14; ++field) {
        fields >> skipped;
    }
    fields >> user >> system;
    return (user + system) / double(sysconf(_SC_CLK_TCK));
}

} // namespace tavi::test
