#include "app/SettingsManager.h"

namespace tavi {

SettingsManager::SettingsManager(std::filesystem::path recordingsDirectory, QObject* parent)
    : QObject(parent),
      m_directory(std::move(recordingsDirectory)),
      m_settings(loadAppSettings(m_directory)) {}

void SettingsManager::setSettings(const AppSettings& settings) {
    m_settings = settings;
    saveAppSettings(m_settings, m_directory);
    emit settingsChanged();
}

} // namespace tavi
