#include "editor/EditorScreenViewModel.h"

#include "base/MessageText.h"
#include "editor/EditorText.h"

#include <algorithm>
#include <utility>

namespace tavi {

namespace {

constexpr double kFrame = 1.0 / 60; ///< Seconds of a step.

} // namespace

EditorScreenViewModel::EditorScreenViewModel(const std::filesystem::path& folder,
                                             const EditorPorts& ports,
                                             std::unique_ptr<ExportViewModel> exportViewModel,
                                             QObject* parent)
    : QObject(parent),
      m_editor(folder, ports),
      m_timeline(m_editor),
      m_canvas(m_editor, ports.main, ports.background, ports.clock),
      m_style(m_editor),
      m_zoom(m_editor),
      m_exportSettings(m_editor),
      m_export(std::move(exportViewModel)) {
    using Editor = EditorViewModel;
    using Screen = EditorScreenViewModel;
    connect(&m_editor, &Editor::canvasModeChanged, this, &Screen::canvasModeChanged);
    connect(&m_editor, &Editor::currentTimeChanged, this, &Screen::timeTextChanged);
    connect(&m_editor, &Editor::keptDurationChanged, this, &Screen::totalTextChanged);
    for (const auto changed :
         {&ExportViewModel::progressChanged, &ExportViewModel::isExportingChanged,
          &ExportViewModel::exportedURLChanged, &ExportViewModel::errorChanged,
          &ExportViewModel::estimatedTimeRemainingChanged}) {
        connect(m_export.get(), changed, this, &Screen::exportChanged);
    }
}

void EditorScreenViewModel::setCanvasMode(int mode) {
    m_editor.setCanvasMode(mode == 0 ? CanvasMode::raw : CanvasMode::preview);
}

QString EditorScreenViewModel::timeText() const {
    return QString::fromStdString(tavi::timeText(m_editor.currentTime()));
}

bool EditorScreenViewModel::isTrimmed() const {
    return !m_editor.project().trimState.isUntrimmed();
}

QString EditorScreenViewModel::totalText() const {
    return QString::fromStdString(
        tavi::timeText(isTrimmed() ? m_editor.keptDuration() : m_editor.duration()));
}

void EditorScreenViewModel::step(int frames) {
    m_editor.seek(std::clamp(m_editor.currentTime() + frames * kFrame, 0.0,
                             std::max(m_editor.duration(), 0.0)));
}

QString EditorScreenViewModel::exportState() const {
    if (m_export->isExporting()) {
        return "exporting";
    }
    if (m_isExportDismissed) {
        return {};
    }
    if (m_export->exportedURL()) {
        return "finished";
    }
    return m_export->error() ? "failed" : "";
}

QString EditorScreenViewModel::exportPercentText() const {
    return QString::number(static_cast<int>(exportProgress() * 100)) + "%";
}

QString EditorScreenViewModel::exportRemainingText() const {
    const auto seconds = m_export->estimatedTimeRemaining();
    return seconds ? remainingText(*seconds) : QString();
}

QString EditorScreenViewModel::remainingText(double seconds) {
    const auto [minutes, rest] = wholeMinutes(seconds);
    return minutes > 0 ? tr("%1m %2s left").arg(minutes).arg(rest) : tr("%1s left").arg(rest);
}

QString EditorScreenViewModel::exportError() const {
    return translated(m_export->errorMessage().value_or(Message()));
}

void EditorScreenViewModel::startExport() {
    m_isExportDismissed = false;
    m_export->exportProject(m_editor.project());
}

void EditorScreenViewModel::cancelExport() {
    m_export->cancelExport();
}

void EditorScreenViewModel::revealExport() {
    m_export->revealInFinder();
}

void EditorScreenViewModel::dismissExport() {
    m_isExportDismissed = true;
    emit exportChanged();
}

} // namespace tavi
