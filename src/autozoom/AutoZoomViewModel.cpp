#include "autozoom/AutoZoomViewModel.h"

#include <QPointer>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tavi {

namespace {

/// The names of RawValues<AnalysisPhase>.
constexpr std::array kPhases{
    QT_TRANSLATE_NOOP("tavi::AutoZoomViewModel", "Detecting activity regions..."),
    QT_TRANSLATE_NOOP("tavi::AutoZoomViewModel", "Simulating camera movements..."),
    QT_TRANSLATE_NOOP("tavi::AutoZoomViewModel", "Generating keyframes..."),
    QT_TRANSLATE_NOOP("tavi::AutoZoomViewModel", "Complete")};
static_assert(std::ranges::equal(kPhases, RawValues<AutoZoomService::AnalysisPhase>::names, {},
                                 [](const char* text) { return std::string_view(text); }));

} // namespace

AutoZoomViewModel::AutoZoomViewModel(Executor& main, Executor& background, QObject* parent)
    : QObject(parent),
      m_main(main),
      m_background(background) {}

QString AutoZoomViewModel::phaseText() const {
    if (!m_progress) {
        return {};
    }
    return tr(kPhases[static_cast<std::size_t>(m_progress->phase)]);
}

double AutoZoomViewModel::overallProgress() const {
    return m_progress ? m_progress->overallProgress : 0;
}

QString AutoZoomViewModel::percentText() const {
    return QString::number(static_cast<int>(overallProgress() * 100)) + "%";
}

void AutoZoomViewModel::generate(std::vector<CursorEvent> events,
                                 const UnifiedAutoZoom::Inputs& inputs,
                                 std::function<void(Keyframes)> done) {
    setGenerating(true);
    m_error.reset();
    emit errorChanged();
    setProgress({});
    // `self` is looked at on the main thread only.
    m_background.post([self = QPointer(this), &main = m_main, service = m_service, inputs,
                       events = std::move(events), done = std::move(done)] {
        auto keyframes = service.generate(events, inputs, [&](const Progress& progress) {
            main.post([self, progress] {
                if (self) {
                    self->setProgress(progress);
                }
            });
        });
        main.post([self, done, keyframes = std::move(keyframes)]() mutable {
            if (self) {
                self->finish(std::move(keyframes), done);
            }
        });
    });
}

void AutoZoomViewModel::finish(Keyframes keyframes, const std::function<void(Keyframes)>& done) {
    m_generatedCount = static_cast<int>(keyframes.size());
    emit generatedCountChanged();
    setGenerating(false);
    done(std::move(keyframes));
}

void AutoZoomViewModel::setGenerating(bool isGenerating) {
    if (m_isGenerating != isGenerating) {
        m_isGenerating = isGenerating;
        emit isGeneratingChanged();
    }
}

void AutoZoomViewModel::setProgress(const std::optional<Progress>& progress) {
    if (m_progress != progress) {
        m_progress = progress;
        emit progressChanged();
    }
}

} // namespace tavi
