#pragma once

#include "base/Clock.h"
#include "base/Executor.h"
#include "render/SavePanel.h"
#include "render/VideoExportService.h"

#include <QObject>

#include <filesystem>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace tavi {

/// Runs one export at a time for a screen: asks for the file, publishes progress
/// and an estimate, and holds the result.
///
/// States: idle -> choosing a file -> running -> finished or failed; from these
///         back to choosing by exportProject(), from choosing back to idle when
///         the panel is dismissed.
/// Thread: main. Each engine runs on a thread of its own, and its calls come back
///         through the port; the destructor cancels and waits for them.
class ExportViewModel : public QObject {
    Q_OBJECT

public:
    /// Makes the engine of one export.
    using MakeService = std::function<std::unique_ptr<VideoExportService>()>;

    struct Ports {
        MakeService makeService;
        const Clock& clock;
        SavePanel& savePanel;
        FileViewer& fileViewer;
        Executor& main; ///< The thread of the model.
    };

    explicit ExportViewModel(Ports ports, QObject* parent = nullptr);
    ~ExportViewModel() override;

    double progress() const { return m_progress; }     ///< From 0 to about 1.
    bool isExporting() const { return m_isExporting; } ///< Choosing a file counts.
    const std::optional<std::filesystem::path>& exportedURL() const { return m_exportedURL; }
    /// For the user; absent while all is well.
    const std::optional<Message>& errorMessage() const { return m_error; }
    /// The same in English.
    std::optional<std::string> error() const {
        return m_error ? std::optional(m_error->english()) : std::nullopt;
    }

    /// Seconds; absent until two percent are done, which are too noisy to judge by.
    std::optional<double> estimatedTimeRemaining() const { return m_estimatedTimeRemaining; }

    /// How the last export that ran to its end went: warnings beside the film.
    const std::optional<ExportReport>& report() const { return m_report; }

    /// Starts an export of a copy of `project`; nothing while one is running.
    void exportProject(const EditProject& project);

    /// Ends the export. isExporting() is false at once; `error` becomes the
    /// cancellation's text when the engine has ended.
    void cancelExport();

    /// Shows the finished file in the file manager.
    void revealInFinder();

signals:
    void progressChanged();
    void isExportingChanged();
    void exportedURLChanged();
    void errorChanged();
    void estimatedTimeRemainingChanged();

private:
    using Outcome = Result<ExportReport, ExportFailure>;

    /// One engine at work.
    struct Task {
        std::shared_ptr<VideoExportService> service;
        std::thread thread;
    };

    void start(const std::shared_ptr<const EditProject>& project,
               const std::filesystem::path& output);
    void showProgress(const VideoExportService* service, double value);
    void finish(const VideoExportService* service, const std::filesystem::path& output,
                const Outcome& outcome);
    void join(const VideoExportService* service);

    template<typename T>
    void publish(T& field, T value, void (ExportViewModel::*changed)());

    Ports m_ports;
    double m_progress = 0;
    bool m_isExporting = false;
    std::optional<std::filesystem::path> m_exportedURL;
    std::optional<Message> m_error;
    std::optional<double> m_estimatedTimeRemaining;
    std::optional<ExportReport> m_report;
    std::shared_ptr<VideoExportService> m_exportService; ///< Of the last export.
    std::optional<Date> m_exportStartTime;
    std::list<Task> m_tasks; ///< Also cancelled ones that have not ended yet.
};

} // namespace tavi
