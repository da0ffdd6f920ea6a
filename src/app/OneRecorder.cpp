#include "app/OneRecorder.h"

#include "base/MessageText.h"

#include <utility>

namespace tavi {

OneRecorder::OneRecorder(RecordingViewModel& model, std::filesystem::path lockFolder,
                         std::function<void(const std::string&)> refuse)
    : QObject(&model),
      m_model(model),
      m_folder(std::move(lockFolder)),
      m_refuse(std::move(refuse)) {
    for (const auto changed :
         {&RecordingViewModel::isCountingDownChanged, &RecordingViewModel::isStartingChanged,
          &RecordingViewModel::isRecordingChanged}) {
        // A moment later, since between two states of a start there is none.
        connect(&model, changed, this, &OneRecorder::follow, Qt::QueuedConnection);
    }
}

Result<RecorderLock, RecorderLockError> OneRecorder::acquire() const {
    if (!m_folder.empty()) {
        return RecorderLock::acquire(m_folder);
    }
    const auto folder = RecorderLock::folder();
    if (!folder) {
        return fail(folder.error());
    }
    return RecorderLock::acquire(*folder);
}

void OneRecorder::follow() {
    const bool isBusy = m_model.isCountingDown() || m_model.isStarting() || m_model.isRecording();
    if (!isBusy) {
        m_lock.reset();
        return;
    }
    if (m_lock) {
        return;
    }
    auto lock = acquire();
    if (lock) {
        m_lock.emplace(std::move(*lock));
    } else {
        m_model.cancelCountdown();
        m_refuse(translated(lock.error().message()).toStdString());
    }
}

} // namespace tavi
