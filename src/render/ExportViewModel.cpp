#include "render/ExportViewModel.h"

#include <QPointer>

#include <algorithm>
#include <ctime>
#include <utility>

namespace tavi {

namespace {

constexpr double kNoisyShare = 0.02; ///< Up to here nothing is estimated.

/// The name that the save panel proposes, with the user's own time.
std::string proposedName(Date date) {
    const auto seconds = static_cast<std::time_t>(date.sinceEpoch());
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[64];
    std::strftime(text, sizeof text, "Tavlin_%Y-%m-%d_%H-%M-%S.mp4", &local);
    return text;
}

} // namespace

ExportViewModel::ExportViewModel(Ports ports, QObject* parent)
    : QObject(parent),
      m_ports(std::move(ports)) {}

ExportViewModel::~ExportViewModel() {
    for (Task& task : m_tasks) {
        task.service->isCancelled = true;
    }
    for (Task& task : m_tasks) {
        task.thread.join();
    }
}

template<typename T>
void ExportViewModel::publish(T& field, T value, void (ExportViewModel::*changed)()) {
    if (field != value) {
        field = std::move(value);
        emit(this->*changed)();
    }
}

void ExportViewModel::exportProject(const EditProject& project) {
    if (m_isExporting) {
        return;
    }
    m_exportService.reset(); // what a cancelled one still has to say counts no more
    m_exportStartTime.reset();
    m_report.reset();
    publish(m_isExporting, true, &ExportViewModel::isExportingChanged);
    publish(m_progress, 0.0, &ExportViewModel::progressChanged);
    publish(m_error, {}, &ExportViewModel::errorChanged);
    publish(m_exportedURL, {}, &ExportViewModel::exportedURLChanged);
    publish(m_estimatedTimeRemaining, {}, &ExportViewModel::estimatedTimeRemainingChanged);
    m_ports.savePanel.chooseFile(
        proposedName(m_ports.clock.now()),
        [self = QPointer(this), copy = std::make_shared<const EditProject>(project)](
            const std::optional<std::filesystem::path>& output) {
            if (self && output) {
                self->start(copy, *output);
            } else if (self) {
                self->publish(self->m_isExporting, false, &ExportViewModel::isExportingChanged);
            }
        });
}

void ExportViewModel::start(const std::shared_ptr<const EditProject>& project,
                            const std::filesystem::path& output) {
    m_exportService = m_ports.makeService();
    m_exportStartTime = m_ports.clock.now();
    const QPointer self(this);
    VideoExportService* service = m_exportService.get();
    // What is posted looks at `self` on the main thread only.
    m_tasks.push_back(
        {m_exportService, std::thread([&main = m_ports.main, self, service, project, output] {
             Outcome outcome = service->exportProject(*project, output, [&](double value) {
                 main.post([self, service, value] {
                     if (self) {
                         self->showProgress(service, value);
                     }
                 });
             });
             main.post([self, service, output, outcome = std::move(outcome)] {
                 if (self) {
                     self->finish(service, output, outcome);
                 }
             });
         })});
}

void ExportViewModel::showProgress(const VideoExportService* service, double value) {
    if (service != m_exportService.get()) {
        return;
    }
    publish(m_progress, value, &ExportViewModel::progressChanged);
    if (value > kNoisyShare && m_exportStartTime) {
        const double elapsed = m_ports.clock.now().since(*m_exportStartTime);
        publish(m_estimatedTimeRemaining, std::optional(std::max(elapsed / value - elapsed, 0.0)),
                &ExportViewModel::estimatedTimeRemainingChanged);
    }
}

void ExportViewModel::finish(const VideoExportService* service, const std::filesystem::path& output,
                             const Outcome& outcome) {
    const bool isLast = service == m_exportService.get();
    join(service);
    if (!isLast) {
        return;
    }
    publish(m_estimatedTimeRemaining, {}, &ExportViewModel::estimatedTimeRemainingChanged);
    if (outcome) {
        m_report = *outcome;
    }
    // A film that is silently broken serves nobody: a writer that failed is a failure.
    const auto problem =
        outcome ? problemOf(*outcome, output) : std::optional(messageOf(outcome.error()));
    if (problem) {
        publish(m_error, problem, &ExportViewModel::errorChanged);
    } else {
        publish(m_exportedURL, std::optional(output), &ExportViewModel::exportedURLChanged);
    }
    publish(m_isExporting, false, &ExportViewModel::isExportingChanged);
}

void ExportViewModel::join(const VideoExportService* service) {
    const auto task = std::find_if(m_tasks.begin(), m_tasks.end(),
                                   [service](const Task& t) { return t.service.get() == service; });
    task->thread.join();
    m_tasks.erase(task);
}

void ExportViewModel::cancelExport() {
    if (m_exportService) {
        m_exportService->isCancelled = true;
    }
    publish(m_isExporting, false, &ExportViewModel::isExportingChanged);
}

void ExportViewModel::revealInFinder() {
    if (m_exportedURL) {
        m_ports.fileViewer.select(*m_exportedURL);
    }
}

} // namespace tavi
