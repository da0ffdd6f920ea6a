#pragma once

#include "app/UserDefaults.h"

#include <QSettings>

#include <filesystem>

namespace tavi {

/// What is remembered stands in an INI file below the user's configuration folder.
class SettingsDefaults final : public UserDefaults {
public:
    /// `file` is made with the first thing that is stored.
    explicit SettingsDefaults(const std::filesystem::path& file);

    /// "tavlin/tavlin.conf" below $XDG_CONFIG_HOME.
    static std::filesystem::path standardFile();

    std::vector<std::string> stringArray(const std::string& key) const override;
    void setStringArray(const std::string& key, const std::vector<std::string>& value) override;

private:
    QSettings m_settings;
};

} // namespace tavi
