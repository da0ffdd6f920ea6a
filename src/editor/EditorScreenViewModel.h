#pragma once

#include "editor/CanvasViewModel.h"
#include "editor/EditorViewModel.h"
#include "editor/ExportSettingsViewModel.h"
#include "editor/InspectorViewModel.h"
#include "editor/TimelineViewModel.h"
#include "editor/ZoomTabViewModel.h"
#include "render/ExportViewModel.h"

#include <QObject>
#include <QString>

#include <memory>

namespace tavi {

/// Everything that the editor's screen binds to, for one opening of a take.
/// Thread: main.
class EditorScreenViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tavi::EditorViewModel* editor READ editor CONSTANT)
    Q_PROPERTY(tavi::TimelineViewModel* timeline READ timeline CONSTANT)
    Q_PROPERTY(tavi::CanvasViewModel* canvas READ canvas CONSTANT)
    Q_PROPERTY(tavi::InspectorViewModel* style READ style CONSTANT)
    Q_PROPERTY(tavi::ZoomTabViewModel* zoom READ zoom CONSTANT)
    Q_PROPERTY(tavi::AutoZoomViewModel* autoZoom READ autoZoom CONSTANT)
    Q_PROPERTY(tavi::ExportSettingsViewModel* exportSettings READ exportSettings CONSTANT)

    // The toolbar.
    Q_PROPERTY(int canvasMode READ canvasMode WRITE setCanvasMode NOTIFY canvasModeChanged)
    Q_PROPERTY(QString timeText READ timeText NOTIFY timeTextChanged)
    Q_PROPERTY(QString totalText READ totalText NOTIFY totalTextChanged)
    Q_PROPERTY(bool isTrimmed READ isTrimmed NOTIFY totalTextChanged)

    // The export.
    /// "": none to show; "exporting", "finished" or "failed".
    Q_PROPERTY(QString exportState READ exportState NOTIFY exportChanged)
    Q_PROPERTY(double exportProgress READ exportProgress NOTIFY exportChanged)
    Q_PROPERTY(QString exportPercentText READ exportPercentText NOTIFY exportChanged)
    Q_PROPERTY(QString exportRemainingText READ exportRemainingText NOTIFY exportChanged)
    Q_PROPERTY(QString exportError READ exportError NOTIFY exportChanged)

public:
    EditorScreenViewModel(const std::filesystem::path& folder, const EditorPorts& ports,
                          std::unique_ptr<ExportViewModel> exportViewModel,
                          QObject* parent = nullptr);

    EditorViewModel* editor() { return &m_editor; }
    TimelineViewModel* timeline() { return &m_timeline; }
    CanvasViewModel* canvas() { return &m_canvas; }
    InspectorViewModel* style() { return &m_style; }
    ZoomTabViewModel* zoom() { return &m_zoom; }
    AutoZoomViewModel* autoZoom() { return &m_editor.autoZoomViewModel(); }
    ExportSettingsViewModel* exportSettings() { return &m_exportSettings; }

    int canvasMode() const { return static_cast<int>(m_editor.canvasMode()); }
    void setCanvasMode(int mode);
    QString timeText() const;
    QString totalText() const; ///< What is kept of the take, where anything is cut away.
    bool isTrimmed() const;

    /// A step of the toolbar's buttons, `frames` of a sixtieth of a second, within the take.
    Q_INVOKABLE void step(int frames);

    QString exportState() const;
    double exportProgress() const { return m_export->progress(); }
    QString exportPercentText() const;
    QString exportRemainingText() const; ///< Empty until it can be told.
    QString exportError() const;

    /// "1m 5s left", below a minute "5s left": whole seconds.
    static QString remainingText(double seconds);

    Q_INVOKABLE void startExport();
    Q_INVOKABLE void cancelExport();
    Q_INVOKABLE void revealExport();
    Q_INVOKABLE void dismissExport(); ///< Shows the end of the last one no more.

signals:
    void canvasModeChanged();
    void timeTextChanged();
    void totalTextChanged();
    void exportChanged();

private:
    EditorViewModel m_editor;
    TimelineViewModel m_timeline;
    CanvasViewModel m_canvas;
    InspectorViewModel m_style;
    ZoomTabViewModel m_zoom;
    ExportSettingsViewModel m_exportSettings;
    std::unique_ptr<ExportViewModel> m_export;
    bool m_isExportDismissed = false;
};

} // namespace tavi
