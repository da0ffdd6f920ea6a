#pragma once

#include "autozoom/AutoZoomService.h"
#include "base/Executor.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace tavi {

/// A run of the analysis, as the inspector watches it.
///
/// There is no way to cancel a run: it ends by itself, and what it still has to say when
/// the view model is gone is dropped.
/// Thread: main; the analysis runs on `background`, on copies of its inputs.
class AutoZoomViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isGenerating READ isGenerating NOTIFY isGeneratingChanged)
    Q_PROPERTY(bool hasProgress READ hasProgress NOTIFY progressChanged)
    Q_PROPERTY(QString phaseText READ phaseText NOTIFY progressChanged)
    Q_PROPERTY(double overallProgress READ overallProgress NOTIFY progressChanged)
    Q_PROPERTY(QString percentText READ percentText NOTIFY progressChanged)
    Q_PROPERTY(int generatedCount READ generatedCount NOTIFY generatedCountChanged)

public:
    using Progress = AutoZoomService::Progress;
    using Keyframes = std::vector<ZoomKeyframe>;

    /// Both outlive the view model and every run.
    AutoZoomViewModel(Executor& main, Executor& background, QObject* parent = nullptr);

    bool isGenerating() const { return m_isGenerating; }
    const std::optional<Progress>& progress() const { return m_progress; }
    /// Reserved for a message to the user; no run sets it.
    const std::optional<QString>& error() const { return m_error; }
    int generatedCount() const { return m_generatedCount; } ///< Keyframes of the latest run.

    // As shown.
    bool hasProgress() const { return m_progress.has_value(); }
    QString phaseText() const;      ///< Empty before the first report.
    double overallProgress() const; ///< 0 to 1.
    QString percentText() const;    ///< "10%": cut to whole percents.

    /// Starts a run. `done` is called on the main thread with its keyframes, after
    /// isGenerating() is false again.
    void generate(std::vector<CursorEvent> events, const UnifiedAutoZoom::Inputs& inputs,
                  std::function<void(Keyframes)> done);

signals:
    void isGeneratingChanged();
    void progressChanged();
    void errorChanged();
    void generatedCountChanged();

private:
    void setGenerating(bool isGenerating);
    void setProgress(const std::optional<Progress>& progress);
    void finish(Keyframes keyframes, const std::function<void(Keyframes)>& done);

    Executor& m_main;
    Executor& m_background;
    AutoZoomService m_service;
    bool m_isGenerating = false;
    std::optional<Progress> m_progress;
    std::optional<QString> m_error;
    int m_generatedCount = 0;
};

} // namespace tavi
