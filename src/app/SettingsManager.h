#pragma once

#include "project/AppSettings.h"

#include <QObject>

#include <filesystem>

namespace tavi {

/// The defaults of new takes while the program runs: reads `settings.json` once
/// and writes it whole at each assignment, at once.
///
/// One per process. Thread: main only; a save runs on the caller's thread.
/// Kept on purpose: what others write into the file meanwhile is not seen, and
/// the next assignment writes over it.
class SettingsManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool defaultCameraEnabled READ defaultCameraEnabled NOTIFY settingsChanged)
    Q_PROPERTY(bool defaultAudioEnabled READ defaultAudioEnabled NOTIFY settingsChanged)

public:
    /// Loads; a file that is absent or broken in any place gives the built-in
    /// defaults, and nothing is written.
    explicit SettingsManager(std::filesystem::path recordingsDirectory, QObject* parent = nullptr);

    const AppSettings& settings() const { return m_settings; }
    bool defaultCameraEnabled() const { return m_settings.defaultCameraEnabled; }
    bool defaultAudioEnabled() const { return m_settings.defaultAudioEnabled; }

    /// Stores and saves, whether or not anything is different.
    void setSettings(const AppSettings& settings);

signals:
    void settingsChanged();

private:
    std::filesystem::path m_directory;
    AppSettings m_settings;
};

} // namespace tavi
