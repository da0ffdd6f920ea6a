#include "cli/TakeRunner.h"

#include "cli/Output.h"

#include <QEventLoop>
#include <QTimer>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavi::cli {

namespace {

constexpr const char* kStoppedEarly = "Nothing was recorded: it was stopped before the start.";

/// How often a microphone that warms up is looked at, seconds: below what a person notices.
constexpr double kMicrophonePoll = 0.01;
/// After how long a microphone counts as one that sends nothing, seconds.
constexpr double kMicrophonePatience = 5;

std::string elapsedText(double seconds) {
    const auto whole = static_cast<long long>(seconds);
    return fmt::format("● {}:{:02}  Ctrl-C or `tavi stop` ends the recording", whole / 60,
                       whole % 60);
}

template<typename List, typename Matches>
std::optional<int> indexWhere(const List& list, Matches matches) {
    const auto found = std::find_if(list.begin(), list.end(), matches);
    return found == list.end() ? std::nullopt
                               : std::optional(static_cast<int>(found - list.begin()));
}

} // namespace

TakeRunner::TakeRunner(Ports ports, TakeOptions options)
    : m_ports(ports),
      m_options(std::move(options)) {}

int TakeRunner::run() {
    if (const auto problem = prepare()) {
        return failed(*problem);
    }
    start();
    if (!m_ports.model.isRecording()) {
        const std::string& reason = m_ports.model.failureText();
        return failed(reason.empty() ? kStoppedEarly : reason);
    }
    watch();
    return finish();
}

/// What keeps the take from starting.
TakeRunner::Problem TakeRunner::prepare() {
    m_ports.model.setIsAudioEnabled(false); // until one was chosen
    QCoro::waitFor(m_ports.model.loadSources());
    if (m_ports.model.failure()) {
        return m_ports.model.failureText();
    }
    for (const auto step :
         {&TakeRunner::chooseSource, &TakeRunner::chooseDevices, &TakeRunner::warmUp}) {
        if (auto problem = (this->*step)()) {
            return problem;
        }
    }
    return m_ports.stopSignals.hasCome() ? Problem(kStoppedEarly) : std::nullopt;
}

TakeRunner::Problem TakeRunner::chooseSource() {
    RecordingViewModel& model = m_ports.model;
    if (!m_options.window) {
        model.setSelectedDisplayIndex(m_options.display);
        const bool isThere = std::cmp_less(m_options.display, model.availableDisplays().size());
        return isThere ? std::nullopt
                       : Problem(fmt::format("There is no display {}; `tavi sources` lists them.",
                                             m_options.display));
    }
    const auto index = indexWhere(model.availableWindows(), [this](const Window& window) {
        return window.id == *m_options.window;
    });
    model.setCaptureMode(CaptureMode::window);
    model.setSelectedWindowIndex(index.value_or(-1));
    return index ? std::nullopt : Problem(withoutWindow());
}

/// Why the window is not in the list.
std::string TakeRunner::withoutWindow() const {
    const std::uint32_t id = *m_options.window;
    const auto content = m_ports.content.content();
    const auto windows = content ? content->windows : std::vector<Window>();
    const auto index = indexWhere(windows, [id](const Window& window) { return window.id == id; });
    if (!index) {
        return fmt::format("There is no window {}; `tavi sources` lists them.", id);
    }
    if (!windows[static_cast<std::size_t>(*index)].isOnScreen) {
        return fmt::format("The window {} is minimized; show it first.", id);
    }
    return fmt::format("The window {} is too small or a part of the desktop itself; "
                       "`tavi sources` lists those that can be recorded.",
                       id);
}

TakeRunner::Problem TakeRunner::chooseDevices() {
    RecordingViewModel& model = m_ports.model;
    if (const std::string& name = m_options.devices.camera; !name.empty()) {
        const auto index = indexOfDevice(model.availableCameras(), name, CaptureDeviceKind::camera,
                                         *m_ports.devices);
        if (!index) {
            return index.error();
        }
        model.setSelectedCameraIndex(*index);
        model.setIsCameraEnabled(true);
    }
    if (const std::string& name = m_options.devices.microphone; !name.empty()) {
        const auto index = indexOfDevice(model.availableMicrophones(), name,
                                         CaptureDeviceKind::microphone, *m_ports.devices);
        if (!index) {
            return index.error();
        }
        model.setSelectedMicrophoneIndex(*index);
        model.setIsAudioEnabled(true);
    }
    return std::nullopt;
}

/// Waits for the microphone's format, without which a take is silent.
TakeRunner::Problem TakeRunner::warmUp() {
    RecordingViewModel& model = m_ports.model;
    if (!model.isAudioEnabled()) {
        return std::nullopt;
    }
    QCoro::waitFor(model.warmUpAudio());
    if (!model.microphoneError().empty()) {
        return model.microphoneError();
    }
    QEventLoop loop;
    double waited = 0;
    const auto timer = m_ports.timers.repeat(kMicrophonePoll, [&] {
        waited += kMicrophonePoll;
        if (model.isMicrophoneReady() || waited > kMicrophonePatience) {
            loop.quit();
        }
    });
    m_ports.stopSignals.whenTheyCome([&loop] { loop.quit(); });
    loop.exec();
    if (model.isMicrophoneReady() || m_ports.stopSignals.hasCome()) {
        return std::nullopt;
    }
    const auto index = static_cast<std::size_t>(model.selectedMicrophoneIndex());
    return "The microphone sends nothing: " + model.availableMicrophones()[index].name;
}

void TakeRunner::start() {
    if (m_options.countdown == 0) {
        m_ports.stopSignals.whenTheyCome([this] { m_ports.model.cancelCountdown(); });
        QCoro::waitFor(m_ports.model.startRecording());
    } else {
        countDown();
    }
}

void TakeRunner::countDown() {
    RecordingViewModel& model = m_ports.model;
    QEventLoop loop;
    for (const auto changed :
         {&RecordingViewModel::isCountingDownChanged, &RecordingViewModel::isStartingChanged}) {
        QObject::connect(&model, changed, &loop, [&] {
            if (!model.isCountingDown() && !model.isStarting()) {
                loop.quit();
            }
        });
    }
    model.startCountdown([] {});
    m_ports.stopSignals.whenTheyCome([&model] { model.cancelCountdown(); });
    // Between the end of the count and the start there is a moment of neither.
    while (model.isCountingDown() || model.isStarting()) {
        loop.exec();
    }
}

/// Runs the loop until the take is to end, or has ended by itself.
void TakeRunner::watch() {
    RecordingViewModel& model = m_ports.model;
    QEventLoop loop;
    const auto look = [&] {
        const std::string trouble = model.interruptionText();
        m_ports.line.show(trouble.empty() ? elapsedText(model.elapsedTime()) : trouble);
        const double left = m_options.duration.value_or(INFINITY) - model.elapsedTime();
        if (left <= 0) {
            loop.quit();
        } else if (left < TakeRecorder::kTickInterval) {
            QTimer::singleShot(static_cast<int>(std::ceil(left * 1000)), &loop,
                               [&model] { model.tick(); });
        }
    };
    QObject::connect(&model, &RecordingViewModel::elapsedTimeChanged, &loop, look);
    QObject::connect(&model, &RecordingViewModel::interruptionTextChanged, &loop, look);
    QObject::connect(&model, &RecordingViewModel::isRecordingChanged, &loop, &QEventLoop::quit);
    m_ports.stopSignals.whenTheyCome([&loop] { loop.quit(); });
    look();
    loop.exec();
    m_ports.line.clear();
}

int TakeRunner::finish() {
    RecordingViewModel& model = m_ports.model;
    model.tick();
    const auto stopped = QCoro::waitFor(model.stopRecording());
    printLine(stopped.value_or(model.folder()).string());
    const auto& failure = model.failure();
    if (!failure) {
        return 0;
    }
    failed("The recording ended early. " + failure->description());
    // A window that is closed is one way to end its take, and so is the desktop's own "stop".
    return failure->kind == CaptureError::Kind::sourceClosed ||
                   failure->kind == CaptureError::Kind::castEnded
               ? 0
               : 1;
}

} // namespace tavi::cli
