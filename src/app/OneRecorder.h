#pragma once

#include "capture/RecorderLock.h"
#include "capture/RecordingViewModel.h"

#include <QObject>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tavi {

/// Holds the user's recorder lock from a countdown to the end of its take, so that one recorder
/// runs at a time and others can find and stop it. A child of its view model, since a view model
/// that goes saves its take first. Thread: main.
class OneRecorder : public QObject {
    Q_OBJECT

public:
    /// `lockFolder` empty: RecorderLock::folder(). A countdown that may not go on is ended, and
    /// `refuse` gets the reason for the user.
    OneRecorder(RecordingViewModel& model, std::filesystem::path lockFolder,
                std::function<void(const std::string&)> refuse);

private:
    void follow();
    Result<RecorderLock, RecorderLockError> acquire() const;

    RecordingViewModel& m_model;
    std::filesystem::path m_folder;
    std::function<void(const std::string&)> m_refuse;
    std::optional<RecorderLock> m_lock;
};

} // namespace tavi
