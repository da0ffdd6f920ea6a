#include "capture/RecordingViewModel.h"

#include "capture/Awaiting.h"
#include "capture/OfferedWindows.h"

#include <ostream>
#include <thread>
#include <utility>

namespace tavi {

namespace {

using Folder = std::optional<std::filesystem::path>;

/// The entry at an index that a screen chose; absent when the list has become shorter.
template<typename T>
std::optional<T> entry(const std::vector<T>& list, int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= list.size()) {
        return std::nullopt;
    }
    return list[static_cast<std::size_t>(index)];
}

QString textOf(const std::optional<std::filesystem::path>& path) {
    return path ? QString::fromStdString(path->string()) : QString();
}

} // namespace

RecordingViewModel::RecordingViewModel(Ports ports, QObject* parent)
    : QObject(parent),
      m_ports(std::move(ports)) {}

RecordingViewModel::~RecordingViewModel() {
    m_alive.reset();
    m_question.request_stop();
    // What is under way ends; its task finds nobody.
    m_loader.sync([] {});
    m_worker.sync([] {});
    for (const auto& resume : m_stopWaiters) {
        resume(false);
    }
}

template<typename T>
void RecordingViewModel::publish(T& field, T value, void (RecordingViewModel::*changed)()) {
    if (field != value) {
        field = std::move(value);
        emit(this->*changed)();
    }
}

void RecordingViewModel::setFailure(const std::optional<CaptureError>& failure) {
    publish(m_failure, failure, &RecordingViewModel::failureTextChanged);
}

void RecordingViewModel::setCaptureMode(CaptureMode mode) {
    publish(m_captureMode, mode, &RecordingViewModel::captureModeChanged);
}

void RecordingViewModel::setSelectedDisplayIndex(int index) {
    publish(m_selectedDisplayIndex, index, &RecordingViewModel::selectedDisplayIndexChanged);
}

void RecordingViewModel::setSelectedWindowIndex(int index) {
    publish(m_selectedWindowIndex, index, &RecordingViewModel::selectedWindowIndexChanged);
}

void RecordingViewModel::setSelectedCameraIndex(int index) {
    publish(m_selectedCameraIndex, index, &RecordingViewModel::selectedCameraIndexChanged);
}

void RecordingViewModel::setSelectedMicrophoneIndex(int index) {
    publish(m_selectedMicrophoneIndex, index, &RecordingViewModel::selectedMicrophoneIndexChanged);
}

void RecordingViewModel::setIsCameraEnabled(bool isEnabled) {
    publish(m_isCameraEnabled, isEnabled, &RecordingViewModel::isCameraEnabledChanged);
}

void RecordingViewModel::setIsAudioEnabled(bool isEnabled) {
    publish(m_isAudioEnabled, isEnabled, &RecordingViewModel::isAudioEnabledChanged);
}

int RecordingViewModel::countdownValue() const {
    return m_countdownOverlayService ? m_countdownOverlayService->countdownValue() : 0;
}

std::optional<CaptureDevice> RecordingViewModel::selectedMicrophone() const {
    return entry(m_availableMicrophones, m_selectedMicrophoneIndex);
}

/// Where the source is at this moment; where it was when it was listed if nobody can tell.
std::optional<TakeSource> RecordingViewModel::selectedSource() const {
    SourceFrames& frames = m_ports.overlay.frames;
    if (m_captureMode == CaptureMode::window) {
        auto window = entry(m_availableWindows, m_selectedWindowIndex);
        if (!window) {
            return std::nullopt;
        }
        window->frame = frames.windowFrame(window->id).value_or(window->frame);
        return *window;
    }
    auto display = entry(m_availableDisplays, m_selectedDisplayIndex);
    if (!display) {
        return std::nullopt;
    }
    const Rect asListed{0, 0, static_cast<double>(display->width),
                        static_cast<double>(display->height)};
    display->frame = frames.displayFrame(display->id).value_or(asListed);
    return *display;
}

void RecordingViewModel::startCountdown(std::function<void()> onStarted) {
    if (m_isCountingDown || m_isRecording || m_isStarting) {
        return;
    }
    publish(m_isCountingDown, true, &RecordingViewModel::isCountingDownChanged);
    const auto source = selectedSource();
    if (!source) {
        publish(m_isCountingDown, false, &RecordingViewModel::isCountingDownChanged);
    } else if (m_ports.consent != nullptr) {
        askThenCountDown(source->filter, std::move(onStarted));
    } else {
        countDown(std::move(onStarted));
    }
}

QCoro::Task<> RecordingViewModel::askThenCountDown(ScreenFilter filter,
                                                   std::function<void()> onStarted) {
    const std::weak_ptr<Alive> alive = m_alive;
    setFailure(std::nullopt);
    const bool mayRecord = co_await askForConsent(std::move(filter));
    if (alive.expired()) {
        co_return;
    }
    if (mayRecord && m_isCountingDown) {
        countDown(std::move(onStarted));
        co_return;
    }
    releaseConsent();
    publish(m_isCountingDown, false, &RecordingViewModel::isCountingDownChanged);
}

/// What goes wrong is told by failureText(); a refusal isn't.
QCoro::Task<bool> RecordingViewModel::askForConsent(ScreenFilter filter) {
    const std::weak_ptr<Alive> alive = m_alive;
    const std::stop_source question;
    m_question = question;
    publish(m_isAsking, true, &RecordingViewModel::isAskingChanged);
    auto asking = onQueue(m_worker, m_ports.take.tracking.main,
                          [consent = m_ports.consent, filter, stop = question.get_token()] {
                              return consent->ask(filter, stop);
                          });
    const auto answer = co_await asking;
    if (alive.expired()) {
        co_return false;
    }
    publish(m_isAsking, false, &RecordingViewModel::isAskingChanged);
    if (!answer) {
        setFailure(answer.error());
        m_ports.messages << "Failed to start recording: " << failureText() << std::endl;
    }
    co_return answer&&* answer == Consent::given && !question.stop_requested();
}

void RecordingViewModel::releaseConsent() {
    if (m_ports.consent != nullptr) {
        m_ports.consent->release();
    }
}

void RecordingViewModel::countDown(std::function<void()> onStarted) {
    const auto source = selectedSource();
    if (!source) {
        publish(m_isCountingDown, false, &RecordingViewModel::isCountingDownChanged);
        return;
    }
    m_countdownOverlayService =
        std::make_unique<CountdownOverlayService>(m_ports.overlay, m_ports.countdownSeconds);
    CountdownOverlayService& overlay = *m_countdownOverlayService;
    connect(&overlay, &CountdownOverlayService::countdownValueChanged, this,
            &RecordingViewModel::countdownValueChanged);
    auto completed = [this, onStarted = std::move(onStarted)] { finishCountdown(onStarted); };
    if (const std::uint32_t window = source->filter.windowId; window != 0) {
        overlay.start(window, source->frame, std::move(completed));
    } else {
        overlay.start(source->frame, std::move(completed));
    }
    emit countdownValueChanged();
}

void RecordingViewModel::cancelCountdown() {
    m_question.request_stop();
    if (m_countdownOverlayService) {
        m_countdownOverlayService->cancel();
        m_countdownOverlayService.reset();
        releaseConsent();
        emit countdownValueChanged();
    }
    publish(m_isCountingDown, false, &RecordingViewModel::isCountingDownChanged);
}

void RecordingViewModel::finishCountdown(std::function<void()> onStarted) {
    publish(m_isCountingDown, false, &RecordingViewModel::isCountingDownChanged);
    m_countdownOverlayService.reset();
    emit countdownValueChanged();
    startThenCall(std::move(onStarted));
}

QCoro::Task<> RecordingViewModel::startThenCall(std::function<void()> onStarted) {
    const std::weak_ptr<Alive> alive = m_alive;
    co_await startRecording();
    if (!alive.expired() && m_isRecording) {
        onStarted();
    }
}

QCoro::Task<> RecordingViewModel::startRecording() {
    if (m_isRecording || m_isStarting) {
        co_return;
    }
    const std::weak_ptr<Alive> alive = m_alive;
    publish(m_isStarting, true, &RecordingViewModel::isStartingChanged);
    setFailure(std::nullopt);
    auto source = selectedSource();
    if (source && m_ports.consent != nullptr) {
        const bool mayRecord = co_await askForConsent(source->filter);
        if (alive.expired()) {
            co_return;
        }
        if (!mayRecord) {
            releaseConsent();
            publish(m_isStarting, false, &RecordingViewModel::isStartingChanged);
            co_return;
        }
        source = selectedSource();
    }
    m_recorder = std::make_unique<TakeRecorder>(m_ports.take);
    m_recorder->makeFolder(m_ports.library());
    if (source) {
        co_await startTake(*source);
        if (alive.expired()) {
            co_return;
        }
        releaseConsent();
    }
    publish(m_isStarting, false, &RecordingViewModel::isStartingChanged);
}

/// Kept on purpose: a camera that fails ends the start and not the screen's stream, which goes on
/// for no take until the next start or the end of the model.
QCoro::Task<> RecordingViewModel::startTake(TakeSource source) {
    const std::weak_ptr<Alive> alive = m_alive;
    if (m_captureMode == CaptureMode::display) {
        source.filter.exceptingWindows = co_await ownWindows();
        if (alive.expired()) {
            co_return;
        }
    }
    lendDevices();
    auto starting = onQueue(m_worker, m_ports.take.tracking.main,
                            [recorder = m_recorder.get(), devices = &m_takeDevices, source] {
                                return recorder->startMedia(source, *devices);
                            });
    const auto started = co_await starting;
    if (alive.expired()) {
        co_return;
    }
    takeDevicesBack();
    if (!started) {
        setFailure(started.error());
        m_ports.messages << "Failed to start recording: " << failureText() << std::endl;
        co_return;
    }
    m_recorder->startTracking();
    if (m_ports.wakeLocks != nullptr) {
        m_wakeLock = m_ports.wakeLocks->acquire(tr("A recording is running").toStdString());
    }
    publish(m_isRecording, true, &RecordingViewModel::isRecordingChanged);
    m_timer = m_ports.overlay.timers.repeat(TakeRecorder::kTickInterval, [this] { watchTake(); });
}

QCoro::Task<std::vector<std::uint32_t>> RecordingViewModel::ownWindows() {
    if (m_ports.applicationId.empty()) {
        co_return std::vector<std::uint32_t>();
    }
    auto asking = onQueue(
        m_loader, m_ports.take.tracking.main,
        [source = &m_ports.content, id = m_ports.applicationId, minimizing = m_ports.minimizing] {
            std::this_thread::sleep_for(minimizing);
            const auto content = source->content();
            return content ? windowsOfProgram(content->windows, id) : std::vector<std::uint32_t>();
        });
    co_return co_await asking;
}

void RecordingViewModel::lendDevices() {
    m_takeDevices.camera =
        m_isCameraEnabled ? entry(m_availableCameras, m_selectedCameraIndex) : std::nullopt;
    m_takeDevices.microphone = selectedMicrophone();
    if (m_isAudioEnabled) {
        m_takeDevices.audioWarmUpService = std::move(m_audioWarmUpService);
    }
    m_lentWarmUp = m_warmUpRequests;
}

/// A warm-up that the take had no use for stays, unless another one was asked for meanwhile.
void RecordingViewModel::takeDevicesBack() {
    auto warmUp = std::move(m_takeDevices.audioWarmUpService);
    m_takeDevices = {};
    if (warmUp && m_lentWarmUp == m_warmUpRequests) {
        m_audioWarmUpService = std::move(warmUp);
    }
}

void RecordingViewModel::tick() {
    if (m_isRecording && !m_isStopping) {
        m_recorder->tick();
        publish(m_elapsedTime, m_recorder->elapsedTime(), &RecordingViewModel::elapsedTimeChanged);
    }
}

void RecordingViewModel::watchTake() {
    tick();
    const auto interruption = m_recorder->interruption();
    publish(m_interruption, interruption ? interruption->message() : Message(),
            &RecordingViewModel::interruptionTextChanged);
    if (m_recorder->failure()) {
        endByItself();
    }
}

QCoro::Task<> RecordingViewModel::endByItself() {
    const std::weak_ptr<Alive> alive = m_alive;
    const auto folder = co_await stopRecording();
    if (!alive.expired()) {
        emit recordingEnded(textOf(folder));
    }
}

QCoro::Task<Folder> RecordingViewModel::stopRecording() {
    const std::weak_ptr<Alive> alive = m_alive;
    if (!m_isRecording) {
        co_return Folder();
    }
    if (m_isStopping) {
        Called<bool> stopping(m_ports.take.tracking.main,
                              [this](const auto& resume) { m_stopWaiters.push_back(resume); });
        const bool isStopped = co_await stopping;
        co_return isStopped && !alive.expired() ? Folder(m_folder) : Folder();
    }
    publish(m_isStopping, true, &RecordingViewModel::isStoppingChanged);
    m_timer.reset();
    m_recorder->stopTracking();
    auto finishing = onQueue(m_worker, m_ports.take.tracking.main,
                             [recorder = m_recorder.get()] { return recorder->finish(); });
    const Folder folder = co_await finishing;
    if (alive.expired()) {
        co_return Folder();
    }
    m_folder = folder.value_or(std::filesystem::path());
    reset();
    co_return folder;
}

void RecordingViewModel::reset() {
    setFailure(m_recorder->failure());
    m_recorder.reset();
    m_wakeLock.reset();
    publish(m_interruption, {}, &RecordingViewModel::interruptionTextChanged);
    publish(m_isRecording, false, &RecordingViewModel::isRecordingChanged);
    publish(m_elapsedTime, 0.0, &RecordingViewModel::elapsedTimeChanged);
    publish(m_isStopping, false, &RecordingViewModel::isStoppingChanged);
    for (const auto& resume : std::exchange(m_stopWaiters, {})) {
        resume(true);
    }
}

QCoro::Task<> RecordingViewModel::stopThenTell() {
    const std::weak_ptr<Alive> alive = m_alive;
    const auto folder = co_await stopRecording();
    if (!alive.expired()) {
        emit recordingStopped(textOf(folder));
    }
}

void RecordingViewModel::load() {
    loadSources();
}

void RecordingViewModel::record() {
    startCountdown([this] { emit recordingStarted(); });
}

void RecordingViewModel::stop() {
    stopThenTell();
}

} // namespace tavi
